#pragma once

#include <QByteArray>

#include <vector>

/// The pages of 512 bytes in which a Word document says what its text looks like: each stretch of text, given
/// by where it ends, refers to properties further down on the same page. Stretches of characters and of
/// paragraphs have pages of their own.
class ZELKWordPages
{
public:
    enum class Kind { Characters, Paragraphs };
    static constexpr int pageSize = 512;

    /// `start` is where the text begins; all places are bytes of the document's stream.
    ZELKWordPages(Kind kind, quint32 start);

    /// The text from the end of the stretch before up to `end`, which must be further on. At most 255 bytes
    /// of properties.
    void append(quint32 end, const QByteArray &properties);
    /// Begins no new page: nothing is appended afterwards.
    void finish();

    /// Whole pages.
    const QByteArray &bytes() const { return m_bytes; }
    /// Which text each page is about, with the pages' numbers in the stream; `firstNumber` is the first
    /// one's.
    QByteArray index(quint32 firstNumber) const;

private:
    int placeFor(const QByteArray &block) const;
    void closePage();

    const Kind m_kind;
    quint32 m_end; ///< of the last stretch
    QByteArray m_bytes;
    std::vector<quint32> m_pageStarts;

    // The page that is being filled.
    struct Block
    {
        QByteArray bytes;
        int place;
    };
    std::vector<quint32> m_ends;
    std::vector<int> m_places; ///< of each stretch's properties
    std::vector<Block> m_blocks;
    int m_bottom;
};
