#include "StoreFixture.h"

#include <QCoreApplication>

#include <cstdio>

using namespace Qt::StringLiterals;

/// usage: store_event_writer BUNDLE-FOLDER CACHE-FILE TOTAL PIECE
///
/// Caches the events of a history from where the cache ends, a piece in each transaction, and writes a line
/// after each.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QList<ZELKRawEvent> events = history(arguments[3].toInt());
    const qsizetype piece = arguments[4].toInt();
    ZELKLWCStore store({std::make_shared<ZELKBundle>(arguments[1]), std::make_shared<ZELKSQLitePort>(),
                        QDBusConnection(u"none"_s), arguments[2]});
    qsizetype done = store.sortedCachedEventsFromDate(std::nullopt, std::nullopt).size();
    for (; done < events.size(); done += piece) {
        if (!store.cacheEvents(events.mid(done, piece)))
            return 1;
        std::puts("kept");
        std::fflush(stdout);
    }
    store.applicationWillTerminate();
    return 0;
}
