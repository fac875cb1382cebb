#pragma once

#include "ZELKFormatter.h"

#include <QList>
#include <QString>

class QFont;
class ZELKLWCLogEntry;

/// Turns an entry into the rich text that tables and reports show of it. The look comes from two templates of
/// the main bundle, "ZELKLWCLogEntryFormatter.rtf" and "ZELKLWCLogEntryFormatterWithDetail.rtf": the first
/// occurrence of each placeholder is replaced by a value of the entry, in the look of the placeholder's first
/// character. It only formats.
///
/// Templates are written for text of 10 points and scaled to the reader's font: setFontScale(scaleForFont(…))
/// whenever that changes.
class ZELKLWCLogEntryFormatter final : public ZELKFormatter
{
public:
    struct Placeholder
    {
        QString text;    ///< matched exactly
        QString keyPath; ///< what ZELKEntryKeyPath calls the value
    };

    /// "[primary]" for "summary", "[supplimentary]" for "attributesAsString".
    static QList<Placeholder> standardPlaceholders();

    /// Loads both templates; asserts where that cannot be done. Placeholders are handled in their order, each
    /// in the text that the one before it has left.
    explicit ZELKLWCLogEntryFormatter(QList<Placeholder> placeholders = standardPlaceholders());

    /// The rich text resource of that name. Asserts for a null name, for a resource that is missing, and for
    /// one that is no rich text; throws ZELKRtfError for one that is damaged, though some of it was read.
    ZELKAttributedString attributedStringFromRTF(const QString &anRTFFilename) const;

    /// Without a detail line, and with one; as they were loaded or set, not scaled.
    const ZELKAttributedString &templateEntry() const { return m_compact.loaded; }
    void setTemplateEntry(const ZELKAttributedString &text);
    const ZELKAttributedString &templateEntryWithDetail() const { return m_withDetail.loaded; }
    void setTemplateEntryWithDetail(const ZELKAttributedString &text);
    /// Which of them is in force; false at first.
    bool showDetail() const { return m_showDetail; }
    void setShowDetail(bool showDetail) { m_showDetail = showDetail; }

    /// How much larger than written a template is shown; 1 at first. Numbers that are not above 0 mean 1.
    double fontScale() const { return m_fontScale; }
    void setFontScale(double scale);
    /// The scale at which the compact template's first character has the size of `font`.
    double scaleForFont(const QFont &font) const;

    /// Of a `ZELKLWCLogEntry *`: the template in force, filled in. An attributed string stays as it is; for
    /// everything else, and a null pointer, it is the template with its placeholders. The default attributes
    /// are not looked at. A value that cannot be had leaves its placeholder standing and a console line.
    ZELKAttributedString
    attributedStringForObjectValue(const QVariant &object,
                                   const ZELKTextAttributes &defaults = {}) const override;
    /// The same without the look.
    QString stringForObjectValue(const QVariant &object) const override;
    /// Always false.
    bool getObjectValue(QVariant &object, const QString &text, QString *error) const override;
    /// What a row of fixed height shows of an entry: values are one line each, their line ends and control
    /// characters spaces, and no longer than what ZELKTextLines draws.
    ZELKAttributedString attributedStringForRow(ZELKLWCLogEntry &entry) const;

    /// Height of each row in pixels, with some air: of the template, not of any entry.
    double rowHeight() const { return rowHeightWithDetail(m_showDetail); }
    double rowHeightWithDetail(bool withDetail) const;

private:
    struct Template
    {
        ZELKAttributedString loaded;
        ZELKAttributedString scaled;
    };
    using Adapt = QString (*)(const QString &value);

    ZELKAttributedString filled(ZELKLWCLogEntry &entry, Adapt adapt) const;
    const Template &current() const { return m_showDetail ? m_withDetail : m_compact; }

    QList<Placeholder> m_placeholders;
    Template m_compact;
    Template m_withDetail;
    bool m_showDetail = false;
    double m_fontScale = 1.0;
};
