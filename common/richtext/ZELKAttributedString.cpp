#include "ZELKAttributedString.h"

#include <algorithm>

ZELKAttributedString::ZELKAttributedString(const QString &text, const ZELKTextAttributes &attributes)
{
    append(text, attributes);
}

ZELKTextAttributes ZELKAttributedString::attributesAt(qsizetype index) const
{
    if (index < 0 || index >= length())
        return {};
    // Texts grow at their end, and who lets one grow often asks what it ends with.
    const qsizetype lastStart = length() - m_runs.back().length;
    if (index >= lastStart)
        return m_runs.back().attributes;
    auto run = m_runs.begin();
    for (qsizetype end = run->length; index >= end; end += run->length)
        ++run;
    return run->attributes;
}

void ZELKAttributedString::append(const QString &text, const ZELKTextAttributes &attributes)
{
    if (text.isEmpty())
        return;
    m_text += text;
    if (!m_runs.empty() && m_runs.back().attributes == attributes)
        m_runs.back().length += text.size();
    else
        m_runs.push_back({text.size(), attributes});
}

void ZELKAttributedString::append(const ZELKAttributedString &other)
{
    if (other.isEmpty())
        return;
    const std::size_t seam = m_runs.size();
    const std::vector<Run> added = other.m_runs; // the other one may be this one
    m_text += other.m_text;
    m_runs.insert(m_runs.end(), added.begin(), added.end());
    mergeFrom(seam);
}

void ZELKAttributedString::replaceCharacters(qsizetype position, qsizetype length, const QString &text)
{
    const qsizetype from = std::clamp(position, qsizetype(0), m_text.size());
    const qsizetype end = std::clamp(position + std::max(length, qsizetype(0)), from, m_text.size());
    if (end > from && !text.isEmpty()) {
        // Within the first character's run there is nothing to split.
        qsizetype start = 0;
        auto run = m_runs.begin();
        while (start + run->length <= from)
            start += (run++)->length;
        if (end <= start + run->length) {
            run->length += text.size() - (end - from);
            m_text.replace(from, end - from, text);
            return;
        }
    }
    const ZELKTextAttributes attributes = attributesAt(end > from ? from : std::max(from - 1, qsizetype(0)));
    const std::size_t first = splitAt(from);
    const std::size_t last = splitAt(end);
    m_runs.erase(m_runs.begin() + std::ptrdiff_t(first), m_runs.begin() + std::ptrdiff_t(last));
    if (!text.isEmpty())
        m_runs.insert(m_runs.begin() + std::ptrdiff_t(first), {text.size(), attributes});
    m_text.replace(from, end - from, text);
    mergeFrom(first);
}

ZELKAttributedString ZELKAttributedString::substring(qsizetype position, qsizetype length) const
{
    const qsizetype from = std::clamp(position, qsizetype(0), m_text.size());
    const qsizetype end = std::clamp(position + std::max(length, qsizetype(0)), from, m_text.size());
    ZELKAttributedString part;
    part.m_text = m_text.mid(from, end - from);
    qsizetype start = 0;
    for (const Run &run : m_runs) {
        const qsizetype shared = std::min(end, start + run.length) - std::max(from, start);
        if (shared > 0)
            part.m_runs.push_back({shared, run.attributes});
        start += run.length;
        if (start >= end)
            break;
    }
    return part;
}

ZELKAttributedString ZELKAttributedString::scaled(double factor) const
{
    ZELKAttributedString result = *this;
    result.changeAttributes([factor](ZELKTextAttributes &attributes) {
        attributes.pointSize *= factor;
        ZELKParagraphStyle &style = attributes.paragraph;
        for (double *length : {&style.firstLineIndent, &style.leftIndent, &style.rightIndent,
                               &style.spacingBefore, &style.spacingAfter})
            *length *= factor;
        if (style.lineSpacingKind != ZELKParagraphStyle::LineSpacing::Multiple)
            style.lineSpacing *= factor;
        for (ZELKTabStop &stop : style.tabStops)
            stop.position *= factor;
    });
    return result;
}

std::size_t ZELKAttributedString::splitAt(qsizetype position)
{
    std::size_t number = 0;
    while (number < m_runs.size() && position >= m_runs[number].length)
        position -= m_runs[number++].length;
    if (number == m_runs.size() || position <= 0)
        return number;
    Run tail = m_runs[number];
    tail.length -= position;
    m_runs[number].length = position;
    m_runs.insert(m_runs.begin() + std::ptrdiff_t(number) + 1, tail);
    return number + 1;
}

void ZELKAttributedString::mergeFrom(std::size_t first)
{
    if (m_runs.empty())
        return;
    std::size_t last = first == 0 ? 0 : std::min(first, m_runs.size()) - 1;
    for (std::size_t next = last + 1; next < m_runs.size(); ++next) {
        if (m_runs[last].attributes == m_runs[next].attributes)
            m_runs[last].length += m_runs[next].length;
        else if (++last != next)
            m_runs[last] = std::move(m_runs[next]);
    }
    m_runs.resize(last + 1);
}
