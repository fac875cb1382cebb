#pragma once

#include "TableWindow.h"
#include "ZELKEventVocabulary.h"
#include "ZELKInspectorTableView.h"
#include "ZELKLWCInspectorController.h"
#include "ZELKLWCInspectorLabelView.h"
#include "ZELKLWCInspectorWindow.h"

#include <QClipboard>
#include <QMainWindow>

/// A panel over a window with a table of days of use: battery readings, sleeps, a veto.
struct InspectorBed : Table
{
    QMainWindow window;
    ZELKNotificationQueue panelQueue;
    std::unique_ptr<ZELKLWCInspectorController> inspector;
    int updates = 0;

    explicit InspectorBed(int days = 2)
        : Table(0)
    {
        log.addExternalEntries(events(days));
        window.resize(300, 200);
        window.show();
        makeInspector();
    }
    void makeInspector()
    {
        inspector.reset();
        inspector = std::make_unique<ZELKLWCInspectorController>(
            ZELKLWCInspectorController::Outlets{range, controller, log, defaults, panelQueue, window});
        inspector->awakeFromNib();
        QObject::connect(inspector.get(), &ZELKLWCInspectorController::didUpdateContents, &window,
                         [this] { ++updates; });
    }
    ZELKLWCInspectorWindow &panel() { return inspector->inspectorWindow(); }
    static ZELKDictionary reading(int percentage)
    {
        return {{ZELKPropertyName, u"BAT0"_s},
                {ZELKPropertyIsPresent, true},
                {ZELKPropertyIsCharging, false},
                {ZELKPropertyCurrentCapacity, qlonglong(percentage)},
                {ZELKPropertyMaxCapacity, qlonglong(100)},
                {ZELKPropertyPowerSourceState, QString(ZELKPowerSourceBattery)},
                {ZELKPropertyTimeToEmpty, qlonglong(90)}};
    }
    static ZELKRawEvent battery(double date, int percentage)
    {
        return ZELKMakeRawEvent(ZELKDate(date), ZELKEventPowerStateChanged, ZELKMonitorPowerSource,
                                ZELKPropertiesText(reading(percentage)));
    }
    /// Each day: reading, its duplicate, reading, veto of two processes, sleep, wake, reading.
    static QList<ZELKRawEvent> events(int days)
    {
        QList<ZELKRawEvent> events;
        const auto add = [&](double hour, QLatin1String name, const ZELKDictionary &properties = {}) {
            events.append(ZELKMakeRawEvent(ZELKDate(logStart + hour * 3600.0), name, ZELKMonitorPowerEvents,
                                           properties.isEmpty() ? QString(ZELKEventNoProperties)
                                                                : ZELKPropertiesText(properties)));
        };
        const auto read = [&](double hour, int percentage) {
            events.append(battery(logStart + hour * 3600.0, percentage));
        };
        for (int i = 0; i < days; ++i) {
            const double morning = 24.0 * i + 8.0;
            read(morning, 90);
            read(morning + 0.5, 90);
            read(morning + 1.0, 80);
            add(morning + 2.0, ZELKEventSystemWillNotSleep,
                {{ZELKPropertyIdleSeconds, qlonglong(900)},
                 {ZELKPropertyProcesses, QVariantList{u"one (1)"_s, u"two (2)"_s}}});
            add(morning + 3.0, ZELKEventSystemWillSleep);
            add(morning + 9.0, ZELKEventSystemHasPoweredOn);
            read(morning + 9.1, 77);
        }
        return events;
    }
    int rowOf(const QString &event)
    {
        for (int row = 0; row < model().rowCount(); ++row)
            if (model().entryAtRow(row)->event() == event)
                return row;
        qFatal("no such entry");
    }
    /// The panel as words: labels in brackets, behind each the text of its part.
    QStringList shown() const
    {
        QStringList words;
        for (const auto &part : inspector->subViewControllers()) {
            QString text;
            if (const auto *label = part->view()->findChild<ZELKLWCInspectorLabelView *>())
                text = u'[' + label->attributedTitle().string() + u']';
            for (auto *textView : part->view()->findChildren<ZELKInspectorTextView *>())
                text += copied(*textView).replace(u'\n', u" | "_s).replace(u'\t', u'=') + u' ';
            words.append(text.trimmed());
        }
        return words;
    }
    static QString copied(ZELKInspectorTextView &textView)
    {
        textView.selectAll();
        textView.copy();
        QTextCursor cursor = textView.textCursor();
        cursor.clearSelection();
        textView.setTextCursor(cursor);
        return QGuiApplication::clipboard()->text();
    }
};
