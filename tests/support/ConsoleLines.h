#pragma once

#include <QStringList>
#include <QtGlobal>

/// The console's lines while it lives.
class ConsoleLines
{
public:
    ConsoleLines()
        : m_before(qInstallMessageHandler(
              [](QtMsgType, const QMessageLogContext &, const QString &line) { kept().append(line); }))
    {
        kept().clear();
    }
    ~ConsoleLines() { qInstallMessageHandler(m_before); }

    QStringList lines() const { return kept(); }
    qsizetype size() const { return kept().size(); }
    int count(const char *part) const { return int(kept().filter(QString::fromUtf8(part)).size()); }
    void clear() { kept().clear(); }

private:
    static QStringList &kept()
    {
        static QStringList lines;
        return lines;
    }
    QtMessageHandler m_before;
};
