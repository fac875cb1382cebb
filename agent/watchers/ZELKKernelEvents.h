#pragma once

#include <QObject>
#include <QString>

#include <map>
#include <optional>
#include <string_view>

/// One word of the kernel about a device that came, went or changed (a "uevent").
struct ZELKKernelEvent
{
    QString action;     ///< "add", "remove", "change", ...
    QString devicePath; ///< below /sys: "/devices/platform/dock.0"
    QString subsystem;
    std::map<QString, QString> properties; ///< these among them

    /// Of the message that the kernel sends; nothing when it is not formed like one.
    static std::optional<ZELKKernelEvent> parse(std::string_view message);

    QString property(const char *key) const;
};

/// Where the kernel's words about devices come from. Injected, so that a test can speak for the kernel.
class ZELKKernelEvents : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// False, with one console line, when there is nothing to hear.
    virtual bool start() = 0;
    virtual void stop() = 0;

Q_SIGNALS:
    void received(const ZELKKernelEvent &event);
    /// There were more than could be kept: anything may have changed.
    void lost();
};
