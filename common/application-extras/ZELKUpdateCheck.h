#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// Asks what brought this program onto the computer for a newer version of it: the package manager when the
/// program belongs to a package, else the catalogue of applications (AppStream). Nothing is fetched from
/// anywhere: known is what the system knows.
class ZELKUpdateCheck : public QObject
{
    Q_OBJECT

public:
    struct Answer
    {
        enum class Kind { Newest, Newer, Unknown };
        Kind kind = Kind::Unknown;
        QString version; ///< the newest one known
        QString source;  ///< the program that knew, such as "apt"

        bool operator==(const Answer &) const = default;
    };
    /// What a program printed; nothing when it is not there or failed.
    using Output = std::optional<QByteArray>;
    /// Runs a program in the C locale and tells, later, what came of it.
    using Run = std::function<void(const QString &program, const QStringList &arguments,
                                   const std::function<void(const Output &)> &then)>;

    /// Of the program at that path, known to catalogues by that identifier.
    struct Subject
    {
        QString executable;
        QString identifier;
        QString version;
    };

    explicit ZELKUpdateCheck(Subject subject, Run run = programs(), QObject *parent = nullptr);
    /// Real programs, ended when they take longer than ten seconds.
    static Run programs();

    void start();

    /// "lullwatch: /usr/bin/lullwatch" to "lullwatch"; empty for several owners or none.
    static QString packageOf(const QByteArray &owners);
    /// What apt would install, against what is.
    static Answer answerOfApt(const QByteArray &policy);
    /// The newest release of a component, against `version`.
    static Answer answerOfCatalogue(const QByteArray &component, const QString &version);

Q_SIGNALS:
    void finished(const ZELKUpdateCheck::Answer &answer);

private:
    void askPackageManager(const QString &package);
    void askCatalogue();

    Subject m_subject;
    Run m_run;
};
