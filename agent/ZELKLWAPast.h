#pragma once

#include "ZELKLWABackfill.h"
#include "ZELKLWAEventStore.h"
#include "ZELKLWAOptions.h"

#include <QObject>

/// Adds the past that files tell of to the records, on the user's request. An agent may be recording there at
/// the same time; its clients get the events with their next request.
class ZELKLWAPast : public QObject
{
    Q_OBJECT

public:
    ZELKLWAPast(const std::shared_ptr<const ZELKBundle> &bundle, const ZELKLWAOptions &options,
                QObject *parent = nullptr);

    /// Once in its life. A place that is not there is one console line, and the others are read.
    void start();

Q_SIGNALS:
    /// `told` counts the events that the files tell of, those that are recorded already among them;
    /// `leftOut` those from times in which an agent recorded here, which it told of in its own words.
    /// `complete` when every place could be read and every event kept.
    void finished(int told, int leftOut, bool complete);

private:
    std::vector<ZELKLWAEvent> unlikeRecorded(const std::vector<ZELKLWAEvent> &sleeps);
    void take(const std::vector<ZELKLWAEvent> &events);
    void end(bool complete);

    ZELKLWABackfillPlaces m_places;
    QString m_settings;
    ZELKLWAEventStore m_store;
    std::unique_ptr<ZELKLWABackfill> m_backfill;
    bool m_allThere = true;
    int m_told = 0;
    int m_leftOut = 0;
    std::vector<ZELKLWAEventStore::Period> m_recorded;
};
