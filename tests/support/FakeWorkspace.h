#pragma once

#include "ZELKWorkspace.h"

#include <QHash>

using namespace Qt::StringLiterals;

/// Applications as the test says. A launch adds an instance and a termination takes it away, at once, unless
/// told otherwise.
class FakeWorkspace final : public ZELKWorkspace
{
public:
    QHash<QString, int> instances;             ///< how many run, by bundle identifier
    int registrationStatus = 0;                ///< what registerBundle answers
    bool launchesByIdentifier = true;          ///< else they fail
    std::optional<ZELKAgentError> launchError; ///< what a launch by place fails with
    bool refusesToTerminate = false;
    bool terminatesLate = false; ///< the instance stays; the test takes it away

    QList<QUrl> registered;
    QStringList launches; ///< identifiers and places, in order
    QStringList lastArguments;
    int terminations = 0;

    std::vector<ZELKRunningApplication>
    runningApplicationsWithBundleIdentifier(const QString &identifier) const override
    {
        std::vector<ZELKRunningApplication> running;
        for (int number = 1; number <= instances.value(identifier); ++number)
            running.push_back({number, 0});
        return running;
    }

    int registerBundle(const QUrl &bundle) override
    {
        registered.append(bundle);
        return registrationStatus;
    }

    std::optional<ZELKAgentError> launchApplicationWithBundleIdentifier(const QString &identifier,
                                                                        const QStringList &arguments) override
    {
        launches.append(identifier);
        if (!launchesByIdentifier)
            return ZELKAgentError(u"FakeWorkspace"_s, 1, u"unknown identifier"_s);
        lastArguments = arguments;
        ++instances[identifier];
        return std::nullopt;
    }

    std::optional<ZELKAgentError> launchApplicationAtURL(const QUrl &bundle,
                                                         const QStringList &arguments) override
    {
        launches.append(bundle.toLocalFile());
        if (launchError)
            return launchError;
        lastArguments = arguments;
        QString identifier = bundle.fileName();
        identifier.chop(4); // ".app"
        ++instances[identifier];
        return std::nullopt;
    }

    bool terminate(const ZELKRunningApplication &) override
    {
        if (refusesToTerminate)
            return false;
        ++terminations;
        if (!terminatesLate)
            instances.clear();
        return true;
    }
};
