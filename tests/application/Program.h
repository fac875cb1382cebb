#pragma once

#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

struct Outcome
{
    int status = -1;
    QString output;
    QString complaints;
    /// What was complained of, without the console's own lines.
    QStringList complaintLines() const { return complaints.split(u'\n').filter(u"lullwatch: "_s); }
};

/// Runs the built program with a home of its own, in Berlin, without display and buses.
class Program
{
public:
    Outcome run(const char *words, const QByteArray &input = {}) const
    {
        return runScript(u"$LULLWATCH "_s + QString::fromUtf8(words), input);
    }
    Outcome runScript(const QString &script, const QByteArray &input = {}) const
    {
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(u"/bin/bash"_s, {u"-c"_s, script});
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(100000) || process.exitStatus() != QProcess::NormalExit)
            return {};
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    QProcessEnvironment environment() const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString &unset : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
            environment.remove(unset);
        for (const QString &folder :
             {u"HOME"_s, u"XDG_CONFIG_HOME"_s, u"XDG_DATA_HOME"_s, u"XDG_RUNTIME_DIR"_s})
            environment.insert(folder, m_home.path());
        for (const QString &bus : {u"DBUS_SESSION_BUS_ADDRESS"_s, u"DBUS_SYSTEM_BUS_ADDRESS"_s})
            environment.insert(bus, u"unix:path=/nowhere/at/all"_s);
        environment.insert(u"TZ"_s, u"Europe/Berlin"_s);
        environment.insert(u"LULLWATCH"_s, QStringLiteral(LULLWATCH));
        return environment;
    }
    QString path(const QString &name) const { return m_home.filePath(name); }

private:
    QTemporaryDir m_home;
};
