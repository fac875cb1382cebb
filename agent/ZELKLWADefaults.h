#pragma once

#include <QObject>
#include <QVariantMap>

class ZELKUserDefaults;

/// The settings that the application may send to the agent. They are kept in the agent's own settings.
///
///   powerSupplyInterval   seconds between two readings of the batteries, 10 to 3600
class ZELKLWADefaults : public QObject
{
    Q_OBJECT

public:
    explicit ZELKLWADefaults(ZELKUserDefaults &settings, QObject *parent = nullptr);

    /// Takes over each known key whose value is a whole number within its bounds; the others give a console
    /// line each and change nothing.
    void setDefaultsWithDictionary(const QVariantMap &defaults);
    int powerSupplyInterval() const;

Q_SIGNALS:
    void powerSupplyIntervalChanged(int seconds);

private:
    void set(const QString &key, const QVariant &value);

    ZELKUserDefaults &m_settings;
};
