#include "ZELKLWCLogSlice.h"

#include "ZELKEventVocabulary.h"
#include "ZELKGraphImage.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCLog.h"
#include "ZELKScriptCommand.h"

#include <QSaveFile>
#include <QUrl>

#include <algorithm>
#include <memory>

namespace {

QString pathOf(const QVariant &destination)
{
    const QString text = destination.toString();
    return text.startsWith(QLatin1String("file:")) ? QUrl(text).toLocalFile() : text;
}

/// A relative path would begin wherever this program happens to be.
bool writeFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    return path.startsWith(u'/') && !bytes.isEmpty() && file.open(QIODevice::WriteOnly) &&
           file.write(bytes) == bytes.size() && file.commit();
}

} // namespace

ZELKLWCLogSlice::ZELKLWCLogSlice(const Outlets &outlets, QObject *parent)
    : QObject(parent)
    , m_outlets(outlets)
{
}

ZELKDate ZELKLWCLogSlice::start() const
{
    const auto range = m_outlets.dateRange.absoluteDuration();
    return range ? range->startDate() : ZELKDate::distantPast();
}

void ZELKLWCLogSlice::setStart(ZELKDate date)
{
    m_outlets.dateRange.setStartingDay(date);
}

ZELKDate ZELKLWCLogSlice::end() const
{
    const auto range = m_outlets.dateRange.absoluteDuration();
    return range ? range->endDate() : ZELKDate::distantPast();
}

void ZELKLWCLogSlice::setEnd(ZELKDate date)
{
    m_outlets.dateRange.setEndingDay(date);
}

void ZELKLWCLogSlice::setStartAndEnd(ZELKDate start, ZELKDate end)
{
    using DateRange = ZELKLWCDateRangeController;
    const ZELKDate first = std::max(DateRange::floorDate(start), m_outlets.dateRange.distantPast());
    m_outlets.dateRange.setAbsoluteDuration(std::make_shared<ZELKLWCAbsoluteDuration>(
        ZELKLWCAbsoluteDuration::absoluteDurationFromDate(first, DateRange::ceilingDate(end))));
}

double ZELKLWCLogSlice::duration() const
{
    const auto range = m_outlets.dateRange.absoluteDuration();
    return range ? range->duration() : 0.0;
}

QString ZELKLWCLogSlice::title() const
{
    const auto range = m_outlets.dateRange.absoluteDuration();
    return range ? range->periodDescription() : QString();
}

QList<ZELKLWCLogEntry *> ZELKLWCLogSlice::events() const
{
    return m_outlets.log.visibleEntriesArray();
}

std::uint64_t ZELKLWCLogSlice::countOfEvents() const
{
    return m_outlets.log.countOfVisibleEntries();
}

std::optional<ZELKLWCLogEntrySelection>
ZELKLWCLogSlice::selectionFromEvents(const ZELKLWCLogEntrySelection::Entries &events) const
{
    if (events.isEmpty())
        return std::nullopt;
    const auto range = m_outlets.dateRange.absoluteDuration();
    return ZELKLWCLogEntrySelection(events,
                                    range ? std::optional(*range) : ZELKLWCLogEntrySelection::Period());
}

std::optional<ZELKDictionary> ZELKLWCLogSlice::summary() const
{
    const auto selection = selectionFromEvents(events());
    if (!selection)
        return std::nullopt;
    return selection->summary();
}

double ZELKLWCLogSlice::awake(const ZELKDictionary &summary)
{
    return summary.value(ZELKStateAwake).toDouble();
}

double ZELKLWCLogSlice::asleep(const ZELKDictionary &summary)
{
    return summary.value(ZELKStateAsleep).toDouble();
}

double ZELKLWCLogSlice::off(const ZELKDictionary &summary)
{
    return summary.value(ZELKStateOff).toDouble();
}

QString ZELKLWCLogSlice::objectSpecifier() const
{
    return QStringLiteral("/org/zelk/lullwatch/visibleSlice");
}

float ZELKLWCLogSlice::evaluatedNumericArgumentFrom(ZELKScriptCommand &command, const QString &key,
                                                    float minimum, float maximum, float base)
{
    const QVariant argument = command.evaluatedArguments.value(key);
    if (!argument.isValid())
        return base;
    const float value = argument.toFloat();
    if (!(value >= minimum)) { // also what is no number
        command.setScriptError(ZELKScriptCommand::parameterError, QStringLiteral("Parameter too small"));
        return 0.0F;
    }
    if (value > maximum) {
        command.setScriptError(ZELKScriptCommand::parameterError, QStringLiteral("Parameter too large"));
        return 0.0F;
    }
    return value;
}

void ZELKLWCLogSlice::scriptExport(ZELKScriptCommand &command)
{
    constexpr float smallest = ZELKGraphImage::smallestSide;
    constexpr float largest = ZELKGraphImage::largestSide;
    ZELKLWCEntriesView &graph = m_outlets.graph;
    const auto argument = [&command](const char *key, float minimum, float maximum, float base) {
        return evaluatedNumericArgumentFrom(command, QString::fromLatin1(key), minimum, maximum, base);
    };
    const float width = argument("width", smallest, largest, float(graph.width()));
    const float height = argument("height", smallest, largest, float(graph.height()));
    const bool hasTitle = argument("title", 0.0F, 1.0F, 1.0F) != 0.0F;
    const bool hasBorder = argument("border", 0.0F, 1.0F, 1.0F) != 0.0F;

    const bool wasTitled = graph.isTitled();
    const bool wasBordered = graph.isBordered();
    graph.setTitled(hasTitle);
    graph.setBordered(hasBorder);
    const QImage image = graph.imageValueWithWidth(width, height);
    graph.setTitled(wasTitled);
    graph.setBordered(wasBordered);

    const QString path = pathOf(command.evaluatedArguments.value(QStringLiteral("destinationFile")));
    if (!writeFile(path, ZELKGraphImage::PNGRepresentation(image)))
        command.setScriptError(ZELKScriptCommand::fileError, QStringLiteral("Unable to create file"));
}
