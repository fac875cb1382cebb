#include "ZELKSymbolIcon.h"

#include "ZELKAssertion.h"
#include "ZELKBundle.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

namespace {

class SymbolEngine final : public QIconEngine
{
public:
    explicit SymbolEngine(QByteArray svg)
        : m_svg(std::move(svg))
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        QByteArray svg = m_svg;
        svg.replace("currentColor", colour(mode).name().toLatin1());
        QSvgRenderer renderer(svg);
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        renderer.render(painter, rect);
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }
    QIconEngine *clone() const override { return new SymbolEngine(*this); }

private:
    static QColor colour(QIcon::Mode mode)
    {
        const QPalette palette = QGuiApplication::palette();
        if (mode == QIcon::Selected)
            return palette.color(QPalette::HighlightedText);
        return palette.color(mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active,
                             QPalette::ButtonText);
    }

    QByteArray m_svg;
};

} // namespace

QIcon ZELKSymbolIcon::icon(const ZELKBundle &bundle, const QString &name)
{
    QFile file(bundle.pathForResource(QStringLiteral("icons/") + name, QStringLiteral("svg")));
    if (file.fileName().isEmpty() || !file.open(QIODevice::ReadOnly))
        ZELKAssertion::fail(QStringLiteral("client/ZELKSymbolIcon"), 0,
                            ZELKFormat("%@ Missing '%@.svg'.", {QStringLiteral("ZELKSymbolIcon"), name}));
    return QIcon(new SymbolEngine(file.readAll()));
}
