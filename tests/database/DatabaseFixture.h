#pragma once

#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKDatabaseController.h"
#include "ZELKFailingSQLitePort.h"
#include "ZELKPropertyList.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// A controller that notes its hooks and can hide its SQL.
class HookedController : public ZELKDatabaseController
{
public:
    using ZELKDatabaseController::ZELKDatabaseController;
    ~HookedController() override { closeDatabase(); }

    QString className() const override { return QStringLiteral("Hooked"); }
    std::optional<QString> SQLForKey(const QString &key) override
    {
        return hideSQL ? std::nullopt : ZELKDatabaseController::SQLForKey(key);
    }
    void databaseWillOpen(const QString &path) override { note(QStringLiteral("willOpen ") + path); }
    void databaseDidOpen() override
    {
        note(QStringLiteral("didOpen"));
        if (!openScript.isEmpty())
            executeStatements(openScript);
    }
    void databaseWillClose() override { note(QStringLiteral("willClose")); }
    void note(const QString &hook)
    {
        if (hooks)
            hooks->append(hook);
    }

    QStringList *hooks = nullptr;
    QString openScript;
    bool hideSQL = false;
};

/// A folder with a bundle whose Info.plist is the application's own, less the waiting for the disk, with
/// statements for the tests beside it.
struct DatabaseFixture
{
    using Call = ZELKFailingSQLitePort::Call;

    QTemporaryDir folder;
    ZELKDictionary info;
    std::shared_ptr<ZELKFailingSQLitePort> port = std::make_shared<ZELKFailingSQLitePort>();

    DatabaseFixture()
    {
        QFile file(QStringLiteral(ZELK_INFO_PLIST));
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        info =
            ZELKPropertyList::read({bytes.constData(), size_t(bytes.size())}).value.value<ZELKDictionary>();
        const QString create = info.string(QLatin1String("ZELKDatabaseSQLCreate"));
        info.insert(
            QLatin1String("ZELKDatabaseSQLCreate"),
            QString(create).replace(QLatin1String("synchronous = FULL"), QLatin1String("synchronous = OFF")));
        set("CFBundleVersion", "1.2");
        set("Table", "CREATE TABLE IF NOT EXISTS t (a TEXT UNIQUE, b BLOB)");
        set("Insert", "INSERT INTO t VALUES (@a, @b)");
        set("All", "SELECT a, b FROM t ORDER BY a");
        set("Echo", "SELECT @v AS v, typeof(@v) AS type");
    }
    void set(const char *key, const char *value)
    {
        info.insert(QLatin1String(key), QString::fromUtf8(value));
    }

    std::shared_ptr<const ZELKBundle> bundle() const
    {
        write("Info.plist", ZELKPropertyList::writeXml(QVariant::fromValue(info)).bytes);
        return std::make_shared<ZELKBundle>(folder.path());
    }
    void write(const char *name, const QByteArray &bytes) const
    {
        QFile file(folder.filePath(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    template <typename Controller = ZELKDatabaseController>
    std::unique_ptr<Controller> make(const QString &caches = {}) const
    {
        return std::make_unique<Controller>(bundle(), port, caches.isEmpty() ? folder.path() : caches);
    }
};

inline QString key(const char *name)
{
    return QString::fromLatin1(name);
}

/// The message that `action` raises; empty when it raises none.
template <typename Action>
QString raised(const Action &action)
{
    try {
        action();
    } catch (const ZELKAssertionFailure &failure) {
        return failure.message();
    }
    return {};
}

inline ZELKDictionary rowAB(const char *a, const QByteArray &b)
{
    return {{key("@a"), QString::fromUtf8(a)}, {key("@b"), b}};
}
