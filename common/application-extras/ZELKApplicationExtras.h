#pragma once

#include "ZELKAboutPanel.h"
#include "ZELKApplicationsMenuOffer.h"
#include "ZELKUpdateCheck.h"

#include <QObject>

#include <memory>
#include <optional>

class QMenu;
class QWidget;
class ZELKBundle;

/// What belongs to any finished application: the panel that says what it is, the question for updates,
/// further items of the application's menu, and the offer to come into the applications menu.
class ZELKApplicationExtras : public QObject
{
    Q_OBJECT

public:
    struct World
    {
        const ZELKBundle &bundle; ///< to outlive the extras
        QIcon icon;
        QString executable;
        ZELKUpdateCheck::Run run = ZELKUpdateCheck::programs();
        /// Without one nothing is offered, as to a run with things of its own.
        std::optional<ZELKApplicationsMenuOffer::World> offer = {};
    };

    /// `defaults` must outlive the extras.
    ZELKApplicationExtras(const World &world, ZELKUserDefaults &defaults, QObject *parent = nullptr);

    /// Puts what there is to be done after the menu's first separator, or at its end where it has none: the
    /// question for updates, and each of the bundle's ZELKApplicationExtrasItems, an array of dictionaries
    /// with "title" and "url".
    void insertItems(QMenu &menu, QWidget &window);
    void orderFrontAboutPanel(QWidget &window) { m_about.orderFront(window); }
    /// Answers on the window, later.
    void checkForUpdates(QWidget &window);
    void offerToMoveToApplicationsFolder(QWidget &window);

private:
    void tellUpdates(QWidget &window, const ZELKUpdateCheck::Answer &answer) const;

    World m_world;
    ZELKAboutPanel m_about;
    std::unique_ptr<ZELKApplicationsMenuOffer> m_offer;
    bool m_isChecking = false;
};
