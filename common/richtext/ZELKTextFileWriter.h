#pragma once

#include "ZELKAttributedString.h"

#include <cstdint>

class QIODevice;

/// Writes a text that may be longer than memory is large into a file, piece by piece: who has the text
/// appends it at a pace of its own (some lines, a look at the clock and at the cancel button, the next
/// lines), and finishes. How far it is the caller knows best.
///
///     ZELKWordFileWriter writer(device); // or ZELKRtfFileWriter
///     writer.announce(prefix);           // all looks, before the first piece
///     writer.announce(look);
///     writer.append(prefix);
///     for (…)
///         writer.append(date + "\t" + ZELKTextFileWriter::withinParagraph(summary) + "\n", look);
///     if (!writer.finish())
///         … writer.failure(), device.errorString()
///
/// In a text "\n" ends a paragraph, U+2028 breaks a line within one, and "\t" leads to the next tab stop. A
/// piece may begin and end anywhere but between the two halves of a character. A paragraph has the style of
/// its first character.
///
/// Without finish(), or after a failure, what the device holds is no whole file; removing it is the caller's
/// part. So is the device, which has to be open for writing, empty, and to outlive the writer.
class ZELKTextFileWriter
{
public:
    enum class Failure : std::uint8_t {
        None,
        Device,      ///< it did not take what was written: ask it for its error
        NotSeekable, ///< it cannot go back, as the format needs
        TooLarge     ///< more than the format can count
    };

    explicit ZELKTextFileWriter(QIODevice &device);
    ZELKTextFileWriter(const ZELKTextFileWriter &) = delete;
    ZELKTextFileWriter &operator=(const ZELKTextFileWriter &) = delete;
    virtual ~ZELKTextFileWriter();

    /// Fonts and colours that pieces will have, which some formats name at a file's beginning. Those that
    /// were not announced before the first piece may be left out.
    void announce(const ZELKTextAttributes &look);
    void announce(const ZELKAttributedString &text);

    /// Whether all went well so far. After a failure nothing more is written.
    bool append(const ZELKAttributedString &piece);
    bool append(const QString &text, const ZELKTextAttributes &look);
    /// Makes the file whole; nothing can be appended any more. Takes little time beside the pieces.
    bool finish();
    Failure failure() const { return m_failure; }

    /// A value that is to stay in one paragraph whatever it holds: each end of a line or a paragraph in it
    /// ("\n", "\r\n", "\r", "\v", "\f", U+0085, U+2029) becomes a break within one (U+2028). Tabs stay.
    static QString withinParagraph(const QString &value);

protected:
    virtual void begin() = 0;
    virtual void write(const ZELKAttributedString &piece) = 0;
    virtual void end() = 0;
    const QList<ZELKTextAttributes> &looks() const { return m_looks; }
    QIODevice &device() { return m_device; }
    void fail(Failure failure);

private:
    bool start();

    QIODevice &m_device;
    QList<ZELKTextAttributes> m_looks; ///< each once
    Failure m_failure = Failure::None;
    bool m_isStarted = false;
    bool m_isFinished = false;
};
