#pragma once

#include "ZELKSQLitePort.h"

#include <sqlite3.h>

#include <map>
#include <optional>
#include <set>
#include <vector>

/// The real SQLite over a device that fails when told to. Keeps account of what is open, and in its
/// destructor closes what the program under test gave up without closing.
class ZELKFailingSQLitePort : public ZELKSQLitePort
{
public:
    enum class Call { Any, Open, Close, Exec, Prepare, Reset, BindText, BindBlob, Step, Finalize };

    ~ZELKFailingSQLitePort() override
    {
        m_open.insert(m_freed.begin(), m_freed.end());
        for (sqlite3 *database : m_open)
            ZELKSQLitePort::close(database);
    }

    /// The `nth` call of that kind from now, and the `times` - 1 after it, answer `code` and do nothing.
    void fail(Call call, int code, int nth = 1, int times = 1)
    {
        m_faults.push_back({call, code, nth, times});
    }
    void heal()
    {
        m_faults.clear();
        m_failed = false;
    }
    int count(Call call) { return m_counts[call]; }
    size_t connections() const { return m_open.size(); }
    size_t freedConnections() const { return m_freed.size(); }
    int statements() const { return m_statements; }

    int open(const char *path, sqlite3 **database) override
    {
        const std::optional<int> code = fault(Call::Open);
        const int result = ZELKSQLitePort::open(path, database);
        m_open.insert(*database);
        return code.value_or(result);
    }
    int close(sqlite3 *database) override
    {
        const int code = answer(Call::Close, [&] { return ZELKSQLitePort::close(database); });
        if (code == SQLITE_OK)
            m_open.erase(database);
        return code;
    }
    void free(void *memory) override
    {
        auto *database = static_cast<sqlite3 *>(memory);
        if (m_open.erase(database) != 0)
            m_freed.insert(database);
        else
            ZELKSQLitePort::free(memory);
    }
    int exec(sqlite3 *database, const char *sql, char **error) override
    {
        const std::optional<int> code = fault(Call::Exec);
        if (code)
            *error = sqlite3_mprintf("device failed");
        return code ? *code : ZELKSQLitePort::exec(database, sql, error);
    }
    const char *errmsg(sqlite3 *database) override
    {
        return m_failed ? "device failed" : ZELKSQLitePort::errmsg(database);
    }
    int prepare(sqlite3 *database, const char *sql, sqlite3_stmt **statement) override
    {
        const int code =
            answer(Call::Prepare, [&] { return ZELKSQLitePort::prepare(database, sql, statement); });
        m_statements += *statement ? 1 : 0;
        return code;
    }
    int finalize(sqlite3_stmt *statement) override
    {
        --m_statements;
        ++m_counts[Call::Finalize];
        return ZELKSQLitePort::finalize(statement);
    }
    int reset(sqlite3_stmt *statement) override
    {
        return answer(Call::Reset, [&] { return ZELKSQLitePort::reset(statement); });
    }
    int bindText(sqlite3_stmt *statement, int index, const char *text) override
    {
        return answer(Call::BindText, [&] { return ZELKSQLitePort::bindText(statement, index, text); });
    }
    int bindBlob(sqlite3_stmt *statement, int index, const void *bytes, int size) override
    {
        return answer(Call::BindBlob,
                      [&] { return ZELKSQLitePort::bindBlob(statement, index, bytes, size); });
    }
    int step(sqlite3_stmt *statement) override
    {
        return answer(Call::Step, [&] { return ZELKSQLitePort::step(statement); });
    }

private:
    struct Fault
    {
        Call call;
        int code;
        int countdown;
        int times;
    };

    std::optional<int> fault(Call call)
    {
        ++m_counts[call];
        ++m_counts[Call::Any];
        std::optional<int> code;
        for (Fault &fault : m_faults)
            if ((fault.call == call || fault.call == Call::Any) && --fault.countdown <= 0 &&
                fault.times-- > 0)
                code = fault.code;
        m_failed = m_failed || code;
        return code;
    }
    template <typename Real>
    int answer(Call call, const Real &real)
    {
        const std::optional<int> code = fault(call);
        return code ? *code : real();
    }

    std::vector<Fault> m_faults;
    std::map<Call, int> m_counts;
    std::set<sqlite3 *> m_open;
    std::set<sqlite3 *> m_freed;
    int m_statements = 0;
    bool m_failed = false;
};
