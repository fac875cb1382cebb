#pragma once

#include "ZELKPrintOperation.h"
#include "ZELKProgressSheet.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

class QWidget;

/// Carries printing out from the event loop, a slice at a time. Where it takes longer than a second, a sheet
/// shows how far it is and can cancel it. Destroyed before it ends, it has cancelled the printing.
class ZELKPrintProgress : public QObject
{
    Q_OBJECT

public:
    static constexpr int patience = 1000; ///< milliseconds until the sheet

    /// `window` must outlive the object.
    ZELKPrintProgress(std::unique_ptr<ZELKPrintOperation> operation, QWidget &window,
                      QObject *parent = nullptr);
    ~ZELKPrintProgress() override;

    void start();

Q_SIGNALS:
    /// Once, when there is nothing more to do. `error` is null unless the printing failed.
    void ended(const QString &error);

private:
    void advance();
    void showSheet();
    void end(const QString &error);

    std::unique_ptr<ZELKPrintOperation> m_operation;
    QWidget &m_window;
    QPointer<ZELKProgressSheet> m_sheet; // the window's
    QTimer m_turn;
    QTimer m_wait;
};
