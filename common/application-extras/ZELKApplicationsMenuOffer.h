#pragma once

#include "ZELKApplicationsMenu.h"

#include <QObject>

#include <functional>

class QMessageBox;
class QWidget;
class ZELKUserDefaults;

/// Offers a program that no menu knows, as one that was only unpacked somewhere, to be put into the user's
/// applications menu, and to be started again from there.
class ZELKApplicationsMenuOffer : public QObject
{
    Q_OBJECT

public:
    /// Set by who does not want to be asked again.
    static constexpr char suppressKey[] = "moveToApplicationsFolderAlertSuppress";

    struct World
    {
        ZELKApplicationsMenu menu;
        ZELKApplicationsMenu::Application application;
        /// Starts a command and lets it go; false when that fails.
        std::function<bool(const QStringList &command)> startDetached;
        std::function<void()> quit;
    };

    /// `defaults` must outlive the offer.
    ZELKApplicationsMenuOffer(World world, ZELKUserDefaults &defaults);

    /// Window-modal, without waiting. Nothing happens where the menu starts this program already, or nobody
    /// wants to be asked.
    void offer(QWidget &window);

private:
    void answered(QWidget &window, const QMessageBox &box, bool isAccepted);
    void add(QWidget &window);
    void tellAdded(QWidget &window);
    void startAgain(QWidget &window);

    World m_world;
    ZELKUserDefaults &m_defaults;
};
