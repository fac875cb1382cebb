#include "ZELKInterfaceLoader.h"

#include "ZELKElidedLabel.h"
#include "ZELKEnvironment.h"
#include "ZELKSymbolIcon.h"
#include "ZELKSymbolLabel.h"

#include <QAction>
#include <QDialog>
#include <QFile>

#include <array>

namespace {

constexpr std::array localisedProperties = {
    "text",      "title",          "windowTitle",           "iconText",       "toolTip",
    "statusTip", "accessibleName", "accessibleDescription", "placeholderText"};

void localiseObject(QObject &object, const QString &className)
{
    for (const char *property : localisedProperties) {
        const QString key = object.property(property).toString();
        if (key.startsWith(className + QLatin1Char('.')))
            object.setProperty(property, ZELKInterfaceLoader::text(className, key));
    }
}

/// Symbols are for buttons; a menu reads better without.
void giveSymbols(const QWidget &root, const ZELKBundle &bundle)
{
    for (QAction *action : root.findChildren<QAction *>()) {
        const QString symbol = action->property(ZELKInterfaceLoader::symbolProperty).toString();
        if (symbol.isEmpty())
            continue;
        action->setIcon(ZELKSymbolIcon::icon(bundle, symbol));
        action->setIconVisibleInMenu(false);
    }
}

} // namespace

ZELKInterfaceLoader::ZELKInterfaceLoader(const Widgets &widgets)
    : m_widgets(widgets)
{
    m_widgets.push_back(widget<ZELKElidedLabel>());
    m_widgets.push_back(widget<ZELKSymbolLabel>());
}

std::unique_ptr<QWidget> ZELKInterfaceLoader::loadInterface(const ZELKBundle &mainBundle,
                                                            const QString &className, const Widgets &widgets)
{
    std::unique_ptr<QWidget> root = loadIfSound(mainBundle, className, widgets);
    if (!root)
        ZELKAssertion::fail(QStringLiteral("client/") + className, 0,
                            ZELKFormat("%@ interface file is missing or malformed", {className}));
    return root;
}

std::unique_ptr<QWidget> ZELKInterfaceLoader::loadIfSound(const ZELKBundle &mainBundle,
                                                          const QString &className, const Widgets &widgets)
{
    ZELKInterfaceLoader loader(widgets);
    loader.setTranslationEnabled(false);
    const QString path = mainBundle.pathForResource(className, QStringLiteral("ui"));
    QFile file(path);
    std::unique_ptr<QWidget> root;
    if (!path.isEmpty() && file.open(QIODevice::ReadOnly))
        root.reset(loader.load(&file));
    if (root) {
        localise(*root, className);
        giveSymbols(*root, mainBundle);
    }
    return root;
}

QDialog *ZELKInterfaceLoader::loadDialog(const ZELKBundle &mainBundle, const QString &className,
                                         QWidget &window, const Widgets &widgets)
{
    QDialog *dialog = loadWindow<QDialog>(mainBundle, className, widgets).release();
    dialog->setParent(&window, Qt::Dialog);
    return dialog;
}

QString ZELKInterfaceLoader::text(const QString &className, const QString &key)
{
    return ZELKEnvironment::current().mainBundle->localizedStringForKey(key, {}, className);
}

QString ZELKInterfaceLoader::textOfTopic(const QString &className, const char *topic)
{
    return text(className, ZELKFormat("%@.%s", {className, topic}));
}

void ZELKInterfaceLoader::failUnconnected(const QString &className, const char *name)
{
    ZELKAssertion::fail(QStringLiteral("client/") + className, 0,
                        ZELKFormat("%@ %@ is not connected.", {className, name}));
}

void ZELKInterfaceLoader::localise(QObject &root, const QString &className)
{
    localiseObject(root, className);
    for (QObject *object : root.findChildren<QObject *>())
        localiseObject(*object, className);
}

QWidget *ZELKInterfaceLoader::createWidget(const QString &className, QWidget *parent, const QString &name)
{
    for (const Widget &ours : m_widgets) {
        if (className != ours.className)
            continue;
        QWidget *widget = ours.make(parent);
        widget->setObjectName(name);
        return widget;
    }
    return QUiLoader::createWidget(className, parent, name);
}
