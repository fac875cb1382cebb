#pragma once

#include "ZELKDictionary.h"

#include <QObject>
#include <QSettings>

/// The user's settings over a layer of registered ones, with a signal for each change.
class ZELKUserDefaults : public QObject
{
    Q_OBJECT

public:
    /// Settings kept in the INI file `path`, made when first written to.
    explicit ZELKUserDefaults(const QString &path, QObject *parent = nullptr);

    /// Values that hold where the user has set nothing. Adds to what was registered before.
    void registerDefaults(const ZELKDictionary &defaults);

    /// The user's value, else the registered one, else an invalid variant.
    QVariant value(const QString &key) const;
    double doubleForKey(const QString &key) const;
    int integerForKey(const QString &key) const;
    bool boolForKey(const QString &key) const;
    QString stringForKey(const QString &key) const { return value(key).toString(); }
    /// An invalid value removes the user's value.
    void setValue(const QString &key, const QVariant &value);

    /// Values that a bound control returns to when it is reverted.
    const ZELKDictionary &initialValues() const { return m_initialValues; }
    void setInitialValues(const ZELKDictionary &values) { m_initialValues = values; }

Q_SIGNALS:
    /// Posted when the effective value of a key became another one.
    void valueChanged(const QString &key, const QVariant &value);

private:
    QSettings m_settings;
    ZELKDictionary m_registered;
    ZELKDictionary m_initialValues;
};
