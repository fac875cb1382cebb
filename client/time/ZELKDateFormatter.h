#pragma once

#include "ZELKDate.h"

#include <QString>

/// A date as the current environment's zone and locale write it. A plain value.
class ZELKDateFormatter
{
public:
    enum class Style { None, Short };

    constexpr ZELKDateFormatter(Style date, Style time)
        : m_date(date)
        , m_time(time)
    {
    }

    Style dateStyle() const { return m_date; }
    Style timeStyle() const { return m_time; }
    /// Date and time, of the styles that are not None, with a space between the two.
    QString stringFromDate(ZELKDate date) const;

    bool operator==(const ZELKDateFormatter &) const = default;

private:
    Style m_date;
    Style m_time;
};
