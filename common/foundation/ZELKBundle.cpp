#include "ZELKBundle.h"

#include "ZELKPropertyList.h"
#include "ZELKStringTables.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

QVariant readPropertyListFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    return ZELKPropertyList::read({bytes.constData(), std::size_t(bytes.size())}).value;
}

} // namespace

ZELKBundle::ZELKBundle() = default;
ZELKBundle::~ZELKBundle() = default;

ZELKBundle::ZELKBundle(const QString &path, const QString &language)
    : m_path(path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath()))
{
    if (m_path.isEmpty())
        return;
    const QVariant info = readPropertyListFile(m_path + QStringLiteral("/Info.plist"));
    m_valid = info.metaType() == QMetaType::fromType<ZELKDictionary>();
    if (m_valid)
        m_info = info.value<ZELKDictionary>();
    m_tables = std::make_unique<ZELKStringTables>(m_path + QStringLiteral("/translations"), language);
}

QString ZELKBundle::mainBundlePath(const QString &executableFolder)
{
    const QString chosen = qEnvironmentVariable("ZELK_MAIN_BUNDLE");
    return chosen.isEmpty() ? QDir::cleanPath(executableFolder + QStringLiteral("/../share/lullwatch"))
                            : chosen;
}

QString ZELKBundle::executablePath() const
{
    const QString name = m_info.string(QStringLiteral("CFBundleExecutable"));
    return name.isEmpty() ? QString() : QDir::cleanPath(QDir(m_path).absoluteFilePath(name));
}

QString ZELKBundle::pathForResource(const QString &name, const QString &type) const
{
    if (m_path.isEmpty() || name.isEmpty())
        return {};
    const QString path = m_path + QLatin1Char('/') + (type.isEmpty() ? name : name + QLatin1Char('.') + type);
    return QFileInfo::exists(path) ? path : QString();
}

QString ZELKBundle::localizedStringForKey(const QString &key, const QString &value,
                                          const QString &table) const
{
    const QString text = m_tables ? m_tables->lookUp(table, key) : QString();
    if (!text.isNull())
        return text;
    return value.isEmpty() ? key : value;
}
