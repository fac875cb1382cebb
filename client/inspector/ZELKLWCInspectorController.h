#pragma once

#include "ZELKLWCInspectorSubViewController.h"

#include <QObject>
#include <QPointer>

#include <vector>

class ZELKLWCDateRangeController;
class ZELKLWCInspectorWindow;
class ZELKLWCLog;
class ZELKLWCLogTableController;
class ZELKNotificationQueue;
class ZELKUserDefaults;

/// The inspector: a floating panel with the details of what is selected in the log table. Of one entry these
/// are its attributes, of several their statistics. It is made anew when the selection, the listed entries or
/// the date range change, once for all changes of a burst, and never while it is hidden. The setting
/// "info-visible" and whether the panel is shown are the same, both ways.
class ZELKLWCInspectorController : public QObject
{
    Q_OBJECT

public:
    using SubViewControllers = std::vector<ZELKLWCInspectorSubViewController::Pointer>;

    static constexpr QLatin1String visibleKey{"info-visible"};
    /// By which the panel's frame is remembered.
    static constexpr QLatin1String frameName{"Inspector"};

    /// What the controller stands between; none owned, all to outlive it.
    struct Outlets
    {
        ZELKLWCDateRangeController &dateRange;
        ZELKLWCLogTableController &tableController;
        ZELKLWCLog &log;
        ZELKUserDefaults &defaults;
        ZELKNotificationQueue &queue;
        QWidget &window; ///< over which the panel floats; it owns the panel
    };

    explicit ZELKLWCInspectorController(const Outlets &outlets, QObject *parent = nullptr);
    ~ZELKLWCInspectorController() override;
    /// From here on table and date range are followed.
    void awakeFromNib();
    /// The panel comes back, on the next pass of the event loop, if it was there when the program ended.
    void applicationDidFinishLaunching();

    /// A panel whose interface file is missing or malformed asserts "Unable to load %@ nib.".
    void loadInspectorFromNib();
    /// Both are loaded when they are first asked for.
    ZELKLWCInspectorWindow &inspectorWindow();
    QWidget &containerView();
    bool isVisible() const;
    /// Shows the panel, and what is selected now.
    void showInformationPanel();
    void hideInformationPanel();
    /// Remembers where the panel is.
    void saveFrame() const;

    void updateContents();
    /// From top to bottom.
    const SubViewControllers &subViewControllers() const { return m_subViewControllers; }
    void addSubViewController(ZELKLWCInspectorSubViewController::Pointer controller);
    void removeSubViewController(const ZELKLWCInspectorSubViewController *controller);
    void removeAllSubViewControllers();
    void layoutSubViewControllers();

    /// Notices that the program is asked to end.
    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void visibleChanged(bool isVisible);
    /// The panel was brought up to date.
    void didUpdateContents();

private:
    /// A label where there is one, and the value below it.
    struct Part
    {
        QString label;
        QVariant value;
        QString key;
        qsizetype repetitions = 0; ///< of a single entry: may grow at any time
    };
    using Parts = std::vector<Part>;

    Parts parts() const;
    bool isShown(const Parts &parts) const;
    bool hasSameSelection(const Parts &parts) const;
    void bindVisible();
    void panelBecameVisible(bool isVisible);
    void programGoesOn();
    void observedValueDidChange();
    void inspectorSelectionCoalescedDidChange();
    void lookDidChange();
    void followCaret(const QWidget &view);

    Outlets m_outlets;
    QPointer<ZELKLWCInspectorWindow> m_inspectorWindow; // owned by the window
    QPointer<QWidget> m_containerView;
    SubViewControllers m_subViewControllers;
    Parts m_shown;
    bool m_isUpToDate = false; // the sub-views show `m_shown`
    bool m_isEnding = false;   // the program
};
