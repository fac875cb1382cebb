#pragma once

#include "ZELKTextFileWriter.h"

#include <memory>

class ZELKWordDocument;

/// Documents in the binary format of word processors from 1997 to 2003 (.doc), which those of today read too.
///
/// Text is Unicode; characters have fonts, sizes, bold, italic, underline and colours, paragraphs have
/// alignment, indents, tab stops and spacing. Sizes are rounded to half points, lengths to twentieths. What
/// has no font is 12 points of a sans serif. Colours that a palette decides are black, or grey where dimmed.
/// Control characters and halves of characters, which the format uses for purposes of its own, become spaces
/// and U+FFFD. The page is A4.
///
/// The device must be able to go back (files can, pipes cannot). Of a document in writing, what its text
/// looks like is in memory: 18 bytes for each paragraph, 5 for each change of looks.
class ZELKWordFileWriter : public ZELKTextFileWriter
{
public:
    /// The format counts bytes up to 2 GiB: text (2 for each UTF-16 unit) and looks together. Readers may
    /// have limits of their own; programs of that time took some 32 MB of text.
    static constexpr qint64 mostBytes = 0x7FFF0000;

    struct Properties
    {
        QString title; ///< left out when empty, as the other one
        QString application;
        qint64 mostBytes = ZELKWordFileWriter::mostBytes; ///< what is longer is refused
    };

    explicit ZELKWordFileWriter(QIODevice &device);
    ZELKWordFileWriter(QIODevice &device, const Properties &properties);
    ~ZELKWordFileWriter() override;

private:
    void begin() override;
    void write(const ZELKAttributedString &piece) override;
    void end() override;
    void require(bool isTaken);

    const Properties m_properties;
    std::unique_ptr<ZELKWordDocument> m_document;
};
