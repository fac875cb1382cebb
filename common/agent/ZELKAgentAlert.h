#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// A question to the user, as the window is to show it: informational, as a sheet on the main window.
struct ZELKAgentAlert
{
    /// What a sheet ends with: the number of its button, from FirstButton on in the order of `buttons`. Being
    /// closed in another way counts as the last button.
    enum ReturnCode { FirstButton = 1000, SecondButton = 1001, ThirdButton = 1002 };

    QString message;
    QString informative;
    QStringList buttons;
    /// Where the help button leads; without it there is none.
    QString helpAnchor;
    /// Name of the interface file with the accessory view; empty for none. Its view is to hold a pop-up
    /// "installAlertLocationButton" whose items are tagged with Location.
    QString accessoryInterface;

    /// The tags of the pop-up's items.
    enum Location { ForAllUsers = 1, ForThisUser = 2 };

    // Faults of what the alert is made of, reported by whoever shows it. They throw.
    [[noreturn]] static void failToAddButton();
    [[noreturn]] static void failWithoutInterface();
    [[noreturn]] static void failWithoutView();
    [[noreturn]] static void failWithoutChoice();

    bool operator==(const ZELKAgentAlert &) const = default;
};

/// Shows the alerts.
class ZELKAgentAlerts
{
public:
    /// `locationTag` is the tag of the pop-up's selected item, 0 where there is none.
    using EndHandler = std::function<void(int returnCode, int locationTag)>;

    virtual ~ZELKAgentAlerts() = default;

    /// Does not wait. `ended` is called once, later, when the alert is gone from the screen.
    virtual void beginSheet(const ZELKAgentAlert &alert, const EndHandler &ended) = 0;
};
