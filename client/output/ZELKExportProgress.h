#pragma once

#include "ZELKFileExport.h"
#include "ZELKProgressSheet.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <memory>

class QWidget;

/// Carries an export out from the event loop, a slice at a time. Where it takes longer than a second, a sheet
/// shows how far it is and can cancel it; nothing else is done in the window meanwhile. Destroyed before it
/// ends, it has cancelled the export.
class ZELKExportProgress : public QObject
{
    Q_OBJECT

public:
    static constexpr int patience = 1000; ///< milliseconds until the sheet

    /// `window` must outlive the object.
    ZELKExportProgress(std::unique_ptr<ZELKFileExport> work, QWidget &window, QObject *parent = nullptr);
    ~ZELKExportProgress() override;

    /// The first slice is done before this returns: most exports have no other.
    void start();
    /// Of what was given; ended.
    const ZELKFileExport &work() const { return *m_work; }

Q_SIGNALS:
    /// Once: done, failed or cancelled.
    void ended(bool isCancelled);

private:
    void advance();
    void showSheet();
    void end(bool isCancelled);

    std::unique_ptr<ZELKFileExport> m_work;
    QWidget &m_window;
    QPointer<ZELKProgressSheet> m_sheet; // the window's
    QTimer m_turn;
    QTimer m_wait;
};
