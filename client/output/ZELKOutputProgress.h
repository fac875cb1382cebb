#pragma once

#include "ZELKOutputWork.h"
#include "ZELKProgressSheet.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

class QWidget;

/// Carries work out from the event loop, a slice at a time. Where it takes longer than a second, a sheet
/// shows how far it is and can cancel it; nothing else is done in the window meanwhile. Destroyed before it
/// ends, it has cancelled the work.
class ZELKOutputProgress : public QObject
{
    Q_OBJECT

public:
    static constexpr int patience = 1000; ///< milliseconds until the sheet

    /// What the sheet says.
    struct Texts
    {
        QString title;
        QString text;
    };

    /// `window` must outlive the object.
    ZELKOutputProgress(std::unique_ptr<ZELKOutputWork> work, const Texts &texts, QWidget &window,
                       QObject *parent = nullptr);
    ~ZELKOutputProgress() override;

    /// The first slice is done before this returns: most work has no other.
    void start();

Q_SIGNALS:
    /// Once, when there is nothing more to do; the work has gone by then. `error` is the work's, null also
    /// where it was cancelled.
    void ended(const QString &error);

private:
    void turn();
    void advance();
    void showSheet();
    void updateSheet();
    void end(const QString &error);

    std::unique_ptr<ZELKOutputWork> m_work;
    Texts m_texts;
    QWidget &m_window;
    QPointer<ZELKProgressSheet> m_sheet; // the window's, and gone with this
    QTimer m_turn;
    QTimer m_wait;
};
