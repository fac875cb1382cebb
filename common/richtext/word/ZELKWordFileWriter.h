#pragma once

#include "ZELKTextFileWriter.h"

#include <memory>

/// Documents in the binary format of word processors from 1997 to 2003 (.doc), which those of today read too.
///
/// Text is Unicode; characters have fonts, sizes, bold, italic, underline and colours, paragraphs have
/// alignment, indents, tab stops and spacing. Sizes are rounded to half points, lengths to twentieths. What
/// has no font is 12 points of a sans serif. Colours that a palette decides are black, or grey where dimmed.
/// Control characters and halves of characters, which the format uses for purposes of its own, become spaces
/// and U+FFFD. The page is A4.
///
/// The device must be able to go back (files can, pipes cannot). A document has less than 1 GiB of text (2
/// bytes for each UTF-16 unit), and in memory are 20 bytes for each paragraph and change of looks. Readers
/// have limits of their own: word processors of that time take some 32 MB of text.
class ZELKWordFileWriter : public ZELKTextFileWriter
{
public:
    struct Properties
    {
        QString title; ///< left out when empty, as the other one
        QString application;
    };

    explicit ZELKWordFileWriter(QIODevice &device, const Properties &properties = {});
    ~ZELKWordFileWriter() override;

private:
    void begin() override;
    void write(const ZELKAttributedString &piece) override;
    void end() override;

    class Document;
    std::unique_ptr<Document> m_document;
};
