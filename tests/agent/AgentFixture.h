#pragma once

#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKLWAEvent.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

/// The agent's bundle as it was built.
inline QString agentBundlePath()
{
    return QString::fromLocal8Bit(AGENT_BUNDLE);
}

inline std::shared_ptr<const ZELKBundle> agentBundle()
{
    return std::make_shared<const ZELKBundle>(agentBundlePath());
}

/// What the console was told while it lives.
class ConsoleLines
{
public:
    ConsoleLines()
    {
        lines().clear();
        m_before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { lines().append(text); });
    }
    ~ConsoleLines() { qInstallMessageHandler(m_before); }

    static QStringList &lines()
    {
        static QStringList told;
        return told;
    }

private:
    QtMessageHandler m_before;
};

/// A clock that a test puts where it likes.
class AtTime
{
public:
    explicit AtTime(ZELKDate now)
        : m_clock(std::make_shared<ZELKFixedClock>(now))
        , m_scope(environment(m_clock))
    {
    }
    ZELKFixedClock &clock() { return *m_clock; }

private:
    static ZELKEnvironment environment(const std::shared_ptr<ZELKFixedClock> &clock)
    {
        ZELKEnvironment environment = ZELKEnvironment::system();
        environment.clock = clock;
        return environment;
    }

    std::shared_ptr<ZELKFixedClock> m_clock;
    ZELKEnvironmentScope m_scope;
};

inline void writeFile(const QString &path, const QByteArray &bytes,
                      QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Truncate)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(mode));
    QCOMPARE(file.write(bytes), bytes.size());
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QString testData(const char *name)
{
    return QStringLiteral(ZELK_TEST_DATA "/") + QString::fromLatin1(name);
}
