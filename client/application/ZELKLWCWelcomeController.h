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
    /// From here on agent and log are followed, and the view's font and size. The first look is taken a
    /// second later; whoever knows before that agent and log were asked calls applyLogLabels() at once.
    void awakeFromNib();
    /// Puts the labels there, as large as the application's font asks for, or takes them away. Where the view
    /// is too small for all of the banner, its last paragraphs are left out. A label that the main bundle
    /// lacks is reported as a failed assertion, and the other one is shown without it.
    void applyLogLabels();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fitLabels();

    Outlets m_outlets;
    ZELKAttributedString m_clickStart; // as its file has it; empty where it is not to be shown
    ZELKAttributedString m_welcome;    // likewise
};
