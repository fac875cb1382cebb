#include "ZELKSystemFonts.h"

#include <QFont>
#include <QFontInfo>
#include <QGuiApplication>

namespace {

bool hasWindowSystem()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance());
}

} // namespace

QString ZELKSystemFonts::family()
{
    return hasWindowSystem() ? QGuiApplication::font().family() : QString();
}

double ZELKSystemFonts::systemFontSize()
{
    constexpr double usual = 10.0;
    if (!hasWindowSystem())
        return usual;
    const double size = QGuiApplication::font().pointSizeF();
    return size > 0.0 ? size : QFontInfo(QGuiApplication::font()).pointSizeF();
}

double ZELKSystemFonts::labelFontSize()
{
    return systemFontSize() * 0.85;
}

double ZELKSystemFonts::smallSystemFontSize()
{
    return systemFontSize() * 0.9;
}

double ZELKSystemFonts::miniSystemFontSize()
{
    return systemFontSize() * 0.8;
}
