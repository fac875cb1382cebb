#pragma once

#include "ZELKLWABurst.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class ZELKLWAEventStore;

/// Settles the store's events when their burst is over. No timer runs between bursts.
class ZELKLWASettler : public QObject
{
    Q_OBJECT

public:
    explicit ZELKLWASettler(ZELKLWAEventStore &store, QObject *parent = nullptr);

    /// Takes what somebody else added, or an agent that was killed left, for a burst of now.
    void lookForStrays();
    /// At once, as at the end.
    void settleNow();

private:
    void note();
    void look();

    ZELKLWAEventStore &m_store;
    ZELKLWABurst m_burst;
    QElapsedTimer m_clock;
    QTimer m_timer;
};
