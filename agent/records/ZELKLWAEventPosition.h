#pragma once

#include "ZELKDate.h"

#include <QtGlobal>

#include <compare>

/// A date as the records keep it: whole microseconds since 2001-01-01 UTC, drawn in to the bounds of the
/// type; NaN becomes the lowest.
qint64 ZELKLWATimeOf(ZELKDate date);

/// Where an event stands among all: by time, then by the order of arrival.
struct ZELKLWAEventPosition
{
    qint64 time = 0;
    qint64 row = 0;

    friend auto operator<=>(const ZELKLWAEventPosition &, const ZELKLWAEventPosition &) = default;
};

/// The settled events that a request asks for: those dated from `from` to `to`, both inclusive, and all that
/// settled later than `settledAfter`, whatever their date. A caller asks from its previous request plus one
/// second, so what settled since then would otherwise fall between two requests.
struct ZELKLWAEventRange
{
    qint64 from = 0;
    qint64 to = 0;
    qint64 settledAfter = 0;

    /// Of a request in seconds since 2001-01-01 UTC; nothing when either is NaN.
    static ZELKLWAEventRange requested(double from, double to);

    bool holds(qint64 time, qint64 settled) const
    {
        return (from <= time && time <= to) || settled > settledAfter;
    }
};
