#pragma once

#include "ZELKInstalledAgent.h"

#include <QByteArray>
#include <QMap>

#include <optional>

/// The agent that was installed before another one takes its place: kept until that one runs, so that an
/// installation that fails leaves the computer with the agent it had.
class ZELKEarlierAgent
{
public:
    explicit ZELKEarlierAgent(const ZELKInstalledAgent &place);

    /// There is a bundle with its unit. What has only one of them is no agent that could be brought back.
    bool isThere() const { return m_isThere; }

    // What went wrong, else nothing; where no agent is there, nothing is done.

    /// Copies the bundle aside and remembers the other files.
    std::optional<QString> keep();
    /// Puts all of it back. Links and job are the caller's to renew.
    std::optional<QString> restore() const;
    /// Deletes what was copied aside.
    void forget() const;

private:
    ZELKInstalledAgent m_place;
    bool m_isThere;
    QMap<QString, QByteArray> m_files;
};
