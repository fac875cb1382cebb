#pragma once

#include "ZELKDateFormatter.h"
#include "ZELKFormatter.h"

#include <QObject>

#include <optional>

class ZELKUserDefaults;

/// Writes dates as "date, time"; while relative dates are on, today, tomorrow and yesterday go by their
/// names. Clock, zone, locale and names are the current environment's, asked for each text. It only formats.
class ZELKLWCRelativeDateFormatter : public QObject, public ZELKFormatter
{
    Q_OBJECT
    Q_PROPERTY(bool relativeDates READ relativeDates WRITE setRelativeDates NOTIFY relativeDatesChanged)

public:
    /// `defaults` must outlive the formatter.
    explicit ZELKLWCRelativeDateFormatter(ZELKUserDefaults &defaults, QObject *parent = nullptr);

    /// From here on the setting "relativeDates" decides, whenever it changes.
    void awakeFromNib();

    /// Of a ZELKDate or a QDateTime, whose day is that of its own zone; empty for everything else. Days are
    /// compared as days of the calendar: 23:59 yesterday and 00:01 today are one apart.
    QString stringForObjectValue(const QVariant &object) const override;
    /// The same in the given attributes: with the label font where they have none, always in the colour of
    /// the palette's text, and cut at the end where it does not fit.
    ZELKAttributedString
    attributedStringForObjectValue(const QVariant &object,
                                   const ZELKTextAttributes &defaults = {}) const override;
    /// Always false.
    bool getObjectValue(QVariant &object, const QString &text, QString *error) const override;

    /// Short date without time, and short time without date, unless others were set.
    const ZELKDateFormatter &dateFormatter() const;
    void setDateFormatter(const ZELKDateFormatter &formatter) { m_dateFormatter = formatter; }
    const ZELKDateFormatter &timeFormatter() const;
    void setTimeFormatter(const ZELKDateFormatter &formatter) { m_timeFormatter = formatter; }

    bool relativeDates() const { return m_relativeDates; }
    void setRelativeDates(bool relativeDates);

Q_SIGNALS:
    void relativeDatesChanged(bool relativeDates);

private:
    QString dateText(ZELKDate date, qint64 day) const;

    ZELKUserDefaults &m_defaults;
    mutable std::optional<ZELKDateFormatter> m_timeFormatter;
    mutable std::optional<ZELKDateFormatter> m_dateFormatter;
    bool m_relativeDates = false;
};
