#pragma once

#include "ZELKEnvironment.h"
#include "ZELKInterfaceLoader.h"

#include <QMainWindow>

/// The main window's interface file, for the classes that look after its parts.
namespace ZELKMainWindowInterface {

inline QString className()
{
    return QStringLiteral("ZELKLWCMainWindowController");
}

/// A text of the window's own table.
inline QString text(const char *topic)
{
    return ZELKInterfaceLoader::textOfTopic(className(), topic);
}

/// As people here write it.
inline QString number(std::uint64_t value)
{
    return ZELKEnvironment::current().locale.toString(qulonglong(value));
}

/// One that is missing raises.
template <typename Type>
Type *outlet(const QMainWindow &window, const char *name)
{
    return ZELKInterfaceLoader::outlet<Type>(window, className(), name);
}

/// A widget that the file does not have.
template <typename Type>
Type *make(QWidget *parent, const char *name)
{
    auto *widget = new Type(parent);
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

} // namespace ZELKMainWindowInterface
