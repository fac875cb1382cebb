#pragma once

#include "ZELKAttributedString.h"

#include <QObject>

class ZELKAgentController;
class ZELKLWCEntriesView;
class ZELKLWCLog;

/// Tells newcomers, in the graph that has nothing to show yet, what this is and what to do next. Its words
/// are gone as soon as the agent is installed or the log has an entry.
class ZELKLWCWelcomeController : public QObject
{
    Q_OBJECT

public:
    /// What the controller stands between; none owned, all to outlive it.
    struct Outlets
    {
        ZELKAgentController &agentController;
        ZELKLWCEntriesView &entriesView;
        ZELKLWCLog &log;
    };

    explicit ZELKLWCWelcomeController(const Outlets &outlets, QObject *parent = nullptr);
    /// From here on agent and log are followed. The first look is taken a second later, when the agent had
    /// time to answer and the cache was read.
    void awakeFromNib();
    /// Puts the labels there, or takes them away. A label that the main bundle lacks asserts.
    void applyLogLabels();

private:
    Outlets m_outlets;
};
