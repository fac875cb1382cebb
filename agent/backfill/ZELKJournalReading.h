#pragma once

#include "ZELKDate.h"
#include "ZELKSleepHistory.h"

#include <QProcess>
#include <QTimer>

#include <optional>
#include <vector>

/// Has the files of a journal read, one after the other, each by a process of its own (ZELKJournalReader),
/// and gathers what they tell. A file that its reader dies on, is slow on, or calls damaged, is one console
/// line; what was read of it counts. Files that the user may not read are one line together.
class ZELKJournalReading : public QObject
{
    Q_OBJECT

public:
    static constexpr int mostSecondsAFile = 120;
    static constexpr std::size_t mostMarks = 100000;

    /// `program` knows ZELKJournalReader::option.
    explicit ZELKJournalReading(const QString &program, QObject *parent = nullptr);
    ~ZELKJournalReading() override;

    /// A file itself; of a folder the journal files in it and in its folders, by name. What only users wrote
    /// is left out. A folder that may not be looked into stands for its files.
    static QStringList files(const QStringList &paths);

    /// May be followed by another start() once it has finished. What is dated before `since` need not be
    /// told; files that were last written before are left out.
    void start(const QStringList &files, std::optional<ZELKDate> since = std::nullopt);
    /// Ends at once, without a signal.
    void stop();
    void setLimit(int milliseconds) { m_limit.setInterval(milliseconds); }

Q_SIGNALS:
    /// Not `complete` when no reader could be started, or the user may read none of the files.
    void finished(const std::vector<ZELKSleepMark> &marks, bool complete);

private:
    void readNext();
    void takeLines();
    void take(const QByteArray &line);
    void fileFinished(QProcess::ExitStatus status);
    void failedToStart();
    void complain(const QString &reason) const;
    void finish(bool complete);

    QString m_program;
    QProcess m_reader;
    QTimer m_limit;
    QStringList m_files;
    QStringList m_options;
    bool m_mayRead = true;
    QString m_file;
    QString m_fault;
    std::vector<ZELKSleepMark> m_marks;
};
