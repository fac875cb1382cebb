#pragma once

#include "PropertyLists.h"
#include "Raised.h"
#include "Rows.h"
#include "ZELKBundle.h"
#include "ZELKDatabaseController.h"
#include "ZELKFailingSQLitePort.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

/// A controller that notes its hooks and can hide its SQL.
class HookedController : public ZELKDatabaseController
{
public:
    using ZELKDatabaseController::ZELKDatabaseController;
    ~HookedController() override { closeDatabase(); }

    QString className() const override { return u"Hooked"_s; }
    std::optional<QString> SQLForKey(const QString &key) override
    {
        return hideSQL ? std::nullopt : ZELKDatabaseController::SQLForKey(key);
    }
    void databaseWillOpen(const QString &path) override { note(u"willOpen "_s + path); }
    void databaseDidOpen() override
    {
        note(u"didOpen"_s);
        if (!openScript.isEmpty())
            executeStatements(openScript);
    }
    void databaseWillClose() override { note(u"willClose"_s); }
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
        info = listIn(readFile(QStringLiteral(ZELK_INFO_PLIST)));
        QString create = info.string(u"ZELKDatabaseSQLCreate"_s);
        set("ZELKDatabaseSQLCreate", create.replace("synchronous = FULL"_L1, "synchronous = OFF"_L1));
        set("CFBundleVersion", u"1.2"_s);
        set("Table", u"CREATE TABLE IF NOT EXISTS t (a TEXT UNIQUE, b BLOB)"_s);
        set("Insert", u"INSERT INTO t VALUES (@a, @b)"_s);
        set("Replace", u"INSERT OR REPLACE INTO t VALUES (@a, @b)"_s);
        set("All", u"SELECT a, b FROM t ORDER BY a"_s);
        set("Echo", u"SELECT @v AS v, typeof(@v) AS type"_s);
    }
    void set(const char *key, const QString &value) { info.insert(QLatin1String(key), value); }
    QString path(const QString &name) const { return folder.filePath(name); }

    std::shared_ptr<const ZELKBundle> bundle() const
    {
        writeList(path(u"Info.plist"_s), info);
        return std::make_shared<ZELKBundle>(folder.path());
    }
    template <typename Controller = ZELKDatabaseController>
    std::unique_ptr<Controller> make(const QString &caches = {}) const
    {
        return std::make_unique<Controller>(bundle(), port, caches.isEmpty() ? folder.path() : caches);
    }
};

inline ZELKDictionary rowAB(const char *a, const QByteArray &b)
{
    return {{u"@a"_s, QString::fromUtf8(a)}, {u"@b"_s, b}};
}

/// Leaves the table with the rows a, b and c, unless the device fails; may be called again.
inline void fillTable(ZELKDatabaseController &controller, const QByteArray &bytes = "x")
{
    controller.executeStatements(u"Table"_s);
    for (const char *name : {"a", "b", "c"}) {
        controller.executeStatement(u"Replace"_s, rowAB(name, bytes));
        if (controller.lastResult().failed())
            return;
    }
}
