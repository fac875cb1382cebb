#pragma once

#include "ZELKAttributedString.h"

#include <QByteArray>

class ZELKRtfLooks;

/// The text of a rich text file, piece by piece: run by run, with the style of a paragraph before it where
/// that is another one than before.
class ZELKRtfBody
{
public:
    /// `looks` are all that the pieces have.
    explicit ZELKRtfBody(const ZELKRtfLooks &looks)
        : m_looks(looks)
    {
    }

    void append(QByteArray &out, const ZELKAttributedString &piece);

    static constexpr const char *tail = "}\n";

private:
    const ZELKRtfLooks &m_looks;
    ZELKParagraphStyle m_style; ///< of the paragraph so far
    bool m_startsParagraph = true;
};
