#pragma once

#include "ZELKAttributedString.h"
#include "ZELKCompoundFile.h"
#include "ZELKWordHeader.h"
#include "ZELKWordPages.h"

/// A Word document while it is written. Its first stream holds the text and then the pages that say what the
/// text looks like; its header, which comes first, and the second stream say where all that is, and are
/// written last.
///
/// Operations answer whether the device took everything.
class ZELKWordDocument
{
public:
    explicit ZELKWordDocument(QIODevice &device);

    bool begin();
    bool append(const ZELKAttributedString &piece);
    bool finish(const QString &title, const QString &application);
    /// Bytes of the first stream, were it finished now.
    qint64 size() const;

private:
    void startLook(const ZELKTextAttributes &look);
    void startStyle(const ZELKParagraphStyle &style);
    void appendRun(QStringView text, const ZELKTextAttributes &look);
    int fontNumber(const QString &family);
    void endText();
    bool appendPages();
    bool endStream();
    void put(const QByteArray &bytes);
    bool flush();

    ZELKCompoundFile m_file;
    QByteArray m_waiting;   ///< for the stream
    quint32 m_position = 0; ///< in the stream, with what waits
    ZELKWordPages m_characters{ZELKWordPages::Kind::Characters, ZELKWordHeader::room};
    ZELKWordPages m_paragraphs{ZELKWordPages::Kind::Paragraphs, ZELKWordHeader::room};
    ZELKWordHeader m_header;
    ZELKWordTables::Contents m_contents;
    ZELKTextAttributes m_look;
    QByteArray m_lookProperties;
    quint32 m_lookStart = ZELKWordHeader::room; ///< where text begins that looks as the last
    ZELKParagraphStyle m_style;
    QByteArray m_styleProperties;
    bool m_startsParagraph = true;
};
