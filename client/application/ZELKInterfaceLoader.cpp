#include "ZELKInterfaceLoader.h"

#include "ZELKColourButton.h"
#include "ZELKElidedLabel.h"
#include "ZELKEnvironment.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCLogTableView.h"
#include "ZELKSearchField.h"
#include "ZELKSymbolIcon.h"
#include "ZELKSymbolLabel.h"

#include <QAction>
#include <QFile>

#include <array>
#include <utility>

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

template <typename Type>
QWidget *makeWidget(QWidget *parent)
{
    return new Type(parent);
}

/// Our own classes that interface files name.
constexpr std::pair<const char *, QWidget *(*)(QWidget *)> ourWidgets[] = {
    {"ZELKLWCEntriesView", makeWidget<ZELKLWCEntriesView>},
    {"ZELKLWCLogTableView", makeWidget<ZELKLWCLogTableView>},
    {"ZELKElidedLabel", makeWidget<ZELKElidedLabel>},
    {"ZELKSymbolLabel", makeWidget<ZELKSymbolLabel>},
    {"ZELKSearchField", makeWidget<ZELKSearchField>},
    {"ZELKColourButton", makeWidget<ZELKColourButton>}};

} // namespace

std::unique_ptr<QWidget> ZELKInterfaceLoader::loadInterface(const ZELKBundle &mainBundle,
                                                            const QString &className)
{
    std::unique_ptr<QWidget> root = loadIfSound(mainBundle, className);
    if (!root)
        ZELKAssertion::fail(QStringLiteral("client/") + className, 0,
                            ZELKFormat("%@ interface file is missing or malformed", {className}));
    return root;
}

std::unique_ptr<QWidget> ZELKInterfaceLoader::loadIfSound(const ZELKBundle &mainBundle,
                                                          const QString &className)
{
    ZELKInterfaceLoader loader;
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

QString ZELKInterfaceLoader::text(const QString &className, const QString &key)
{
    return ZELKEnvironment::current().mainBundle->localizedStringForKey(key, {}, className);
}

void ZELKInterfaceLoader::localise(QObject &root, const QString &className)
{
    localiseObject(root, className);
    for (QObject *object : root.findChildren<QObject *>())
        localiseObject(*object, className);
}

QWidget *ZELKInterfaceLoader::createWidget(const QString &className, QWidget *parent, const QString &name)
{
    for (const auto &[ourName, make] : ourWidgets) {
        if (className != QLatin1String(ourName))
            continue;
        QWidget *widget = make(parent);
        widget->setObjectName(name);
        return widget;
    }
    return QUiLoader::createWidget(className, parent, name);
}
