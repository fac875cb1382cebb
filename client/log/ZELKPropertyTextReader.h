#pragma once

#include "ZELKPackedProperties.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Reads the property-list text of an event straight into a packed record.
///
/// Three readers stand behind one another. Texts that differ from an earlier one only in their values are
/// matched against a template of it. Texts in the usual form (a flat dictionary behind a prologue that the
/// property-list reader has accepted) are scanned, and become a template. Everything else goes to the
/// property-list reader, which alone decides what is faulty: the first two accept only what it would read the
/// same way.
class ZELKPropertyTextReader
{
public:
    /// `texts` and `properties` outlive this object.
    ZELKPropertyTextReader(ZELKStringPool &texts, ZELKPackedProperties &properties);

    struct Result
    {
        /// Nothing when the text is no dictionary.
        std::optional<ZELKPackedProperties::Ref> properties;
        /// Why; empty when the reader gave nothing without an error.
        QString error;
    };
    Result read(std::string_view text);

private:
    using Values = std::vector<ZELKPackedProperties::NamedValue>;
    /// Where a value stood in the text it was scanned from.
    struct Span
    {
        std::size_t begin = 0;
        std::size_t end = 0;
    };
    class Scanner;

    /// A fixed stretch of text and the value behind it.
    struct Part
    {
        std::string fixed;
        ZELKPackedProperties::Field field;
        std::string lastText;
        ZELKStringPool::Id lastId = ZELKStringPool::nil;
    };
    struct Template
    {
        ZELKPackedProperties::ShapeId shape = 0;
        std::vector<Part> parts;
        std::string tail;
    };

    std::optional<ZELKPackedProperties::Ref> match(Template &candidate, std::string_view text);
    bool matchValue(Part &part, std::string_view &rest, char *at);
    bool matchText(Part &part, std::string_view &rest, char *at);
    std::optional<ZELKPackedProperties::Ref> matchAny(std::string_view text);
    std::optional<ZELKPackedProperties::Ref> scan(std::string_view text);
    void learn(std::string_view text, const std::vector<Span> &spans, ZELKPackedProperties::Ref ref);
    Result readInFull(std::string_view text);
    void learnPrologue(std::string_view text);

    ZELKStringPool &m_texts;
    ZELKPackedProperties &m_properties;
    std::vector<std::string> m_prologues; // accepted by the property-list reader
    std::vector<Template> m_templates;
    Values m_values;
    std::vector<Span> m_spans;
};
