#pragma once

#include "ZELKTextAttributes.h"

#include <QMetaType>
#include <QString>

#include <vector>

/// A text whose characters have attributes. A plain value. Positions and lengths count UTF-16 units; ranges
/// that reach beyond the text are drawn in to it.
///
/// Paragraphs end with "\n"; U+2028 breaks a line within one.
class ZELKAttributedString
{
public:
    /// Neighbouring characters of the same attributes. There are no empty runs, and no two alike side by
    /// side, so that equal texts have equal runs.
    struct Run
    {
        qsizetype length = 0;
        ZELKTextAttributes attributes;

        bool operator==(const Run &) const = default;
    };

    ZELKAttributedString() = default;
    explicit ZELKAttributedString(const QString &text, const ZELKTextAttributes &attributes = {});

    const QString &string() const { return m_text; }
    qsizetype length() const { return m_text.size(); }
    bool isEmpty() const { return m_text.isEmpty(); }
    const std::vector<Run> &runs() const { return m_runs; }
    /// Those of the character at `index`; of no font and no colour where there is none.
    ZELKTextAttributes attributesAt(qsizetype index) const;

    void append(const QString &text, const ZELKTextAttributes &attributes);
    void append(const ZELKAttributedString &other);
    /// Replaces characters by a text that takes the attributes of the first one replaced; with none replaced,
    /// of the one before the place, or else of the one behind it.
    void replaceCharacters(qsizetype position, qsizetype length, const QString &text);
    ZELKAttributedString substring(qsizetype position, qsizetype length) const;
    /// With all sizes and lengths so many times as large; those that the platform decides stay its own.
    ZELKAttributedString scaled(double factor) const;

    /// Applies `change` to the attributes of every run in the range.
    template <typename Change>
    void changeAttributes(qsizetype position, qsizetype length, const Change &change)
    {
        const std::size_t first = splitAt(position);
        const std::size_t end = splitAt(position + length);
        for (std::size_t i = first; i < end; ++i)
            change(m_runs[i].attributes);
        mergeFrom(first);
    }
    template <typename Change>
    void changeAttributes(const Change &change)
    {
        changeAttributes(0, length(), change);
    }

    bool operator==(const ZELKAttributedString &) const = default;

private:
    /// Makes a run begin at `position`; answers its number (that of the last and one at the text's end).
    std::size_t splitAt(qsizetype position);
    /// Joins runs that became alike, from the one before `first` on.
    void mergeFrom(std::size_t first);

    QString m_text;
    std::vector<Run> m_runs;
};

Q_DECLARE_METATYPE(ZELKAttributedString)
