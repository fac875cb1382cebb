#pragma once

#include "ZELKLWCDateRangeController.h"

#include <QList>
#include <QObject>

class QAction;
class QActionGroup;
class QComboBox;
class QMainWindow;
class QMenu;
class ZELKBundle;
class ZELKCustomRange;
class ZELKElidedLabel;
class ZELKLWCLog;

/// What chooses the date range in the main window: the pop-up and the menu of presets, the sheet for other
/// days, the actions that move the range, and the label that names it.
class ZELKRangeControls : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. All three outlive the controls.
    ZELKRangeControls(QMainWindow &window, const ZELKBundle &bundle, ZELKLWCDateRangeController &dateRange,
                      ZELKLWCLog &log);

private:
    using Action = ZELKLWCDateRangeController::Action;

    void fillPresets();
    QAction *makePreset(int tag);
    void take(int tag);
    void connectMoves(QMainWindow &window);
    void move(Action kind);
    void follow(ZELKLWCLog &log);
    void selectTag(int tag);
    void validate();

    struct ValidatedAction
    {
        QAction *action;
        Action kind;
    };

    ZELKLWCDateRangeController &m_dateRange;
    ZELKLWCLog &m_log;
    ZELKCustomRange *m_customRange; // owned by the window
    QComboBox *m_filterPopUpButton;
    QMenu *m_rangeMenu;
    QActionGroup *m_presets;
    ZELKElidedLabel *m_periodLabel;
    QList<ValidatedAction> m_moves;
};
