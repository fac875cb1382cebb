#pragma once

#include "ZELKAttributedString.h"

#include <QVariant>

/// Turns objects into text for a column or a label.
///
/// An object is a ZELKDate, a QDateTime (a calendar date in its zone), a pointer to an entry, a
/// ZELKAttributedString, a QString, a number, or an invalid variant for none; a formatter says which of these
/// it knows.
class ZELKFormatter
{
public:
    virtual ~ZELKFormatter() = default;

    virtual QString stringForObjectValue(const QVariant &object) const = 0;
    virtual ZELKAttributedString
    attributedStringForObjectValue(const QVariant &object, const ZELKTextAttributes &defaults = {}) const = 0;
    /// The object that a text stands for. False where there is none, with a reason in `error` where one is
    /// asked for.
    virtual bool getObjectValue(QVariant &object, const QString &text, QString *error) const = 0;
};
