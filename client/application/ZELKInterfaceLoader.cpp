#include "ZELKInterfaceLoader.h"

#include "ZELKElidedLabel.h"
#include "ZELKEnvironment.h"

#include <QFile>

#include <array>

namespace {

constexpr std::array localisedProperties = {
    "text",    "title",     "windowTitle",    "iconText",
    "toolTip", "statusTip", "accessibleName", "accessibleDescription"};

void localiseObject(QObject &object, const QString &className)
{
    for (const char *property : localisedProperties) {
        const QString key = object.property(property).toString();
        if (key.startsWith(className + QLatin1Char('.')))
            object.setProperty(property, ZELKInterfaceLoader::text(className, key));
    }
}

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
    if (root)
        localise(*root, className);
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
    if (className != QLatin1String("ZELKElidedLabel"))
        return QUiLoader::createWidget(className, parent, name);
    auto *label = new ZELKElidedLabel(parent);
    label->setObjectName(name);
    return label;
}
