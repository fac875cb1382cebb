#include "ZELKScriptObjects.h"

#include "ZELKLWCLog.h"
#include "ZELKLWCLogSlice.h"
#include "ZELKScriptCommand.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusVariant>

#include <limits>

namespace {

using Object = ZELKScriptObject;
using Subject = ZELKScriptObjects::Subject;

/// So that an answer stays below what a bus carries, whatever its paths are.
constexpr int mostEvents = 600'000;

double unixSeconds(ZELKDate date)
{
    return date.timeIntervalSinceReferenceDate() + ZELKDate::secondsFrom1970;
}

QVariant path(const QString &path)
{
    return QVariant::fromValue(QDBusObjectPath(path));
}

Object::Error invalid(const QString &text)
{
    return {QDBusError::errorString(QDBusError::InvalidArgs), text};
}

class Application : public Object
{
public:
    explicit Application(const Subject &subject)
        : m_subject(subject)
    {
    }
    QString interface() const override { return QStringLiteral("org.zelk.lullwatch.Application"); }
    std::vector<Property> properties() const override
    {
        return {{QStringLiteral("database"), QStringLiteral("o")},
                {QStringLiteral("visibleSlice"), QStringLiteral("o")},
                {QStringLiteral("version"), QStringLiteral("s")}};
    }
    std::vector<Method> methods() const override
    {
        return {{QStringLiteral("handlesKey"),
                 {{QStringLiteral("key"), QStringLiteral("s")},
                  {QStringLiteral("handles"), QStringLiteral("b"), true}},
                 QStringLiteral("Whether the application has an object under that key.")}};
    }
    QStringList children() const override
    {
        return {QStringLiteral("database"), QStringLiteral("visibleSlice")};
    }
    QVariant value(const QString &property) const override
    {
        if (property == QLatin1String("version"))
            return m_subject.version;
        return path(property == QLatin1String("database") ? m_subject.log.objectSpecifier()
                                                          : m_subject.slice.objectSpecifier());
    }
    std::optional<Error> call(const QString & /*method*/, const QVariantList &arguments,
                              QVariantList &answer) override
    {
        answer = {m_subject.handlesKey(arguments.first().toString())};
        return std::nullopt;
    }

private:
    const Subject &m_subject;
};

class Database : public Object
{
public:
    explicit Database(const Subject &subject)
        : m_log(subject.log)
    {
    }
    QString interface() const override { return QStringLiteral("org.zelk.lullwatch.Database"); }
    std::vector<Property> properties() const override
    {
        return {
            {QStringLiteral("count"), QStringLiteral("u"), false, false,
             QStringLiteral("How many entries there are: entries/0 to entries/COUNT-1, as they arrived.")}};
    }
    QVariant value(const QString & /*property*/) const override { return uint(m_log.count()); }

private:
    const ZELKLWCLog &m_log;
};

class Entry : public Object
{
public:
    explicit Entry(const ZELKLWCLogEntry &entry)
        : m_entry(entry)
    {
    }
    QString interface() const override { return QStringLiteral("org.zelk.lullwatch.Entry"); }
    std::vector<Property> properties() const override
    {
        return {{QStringLiteral("summary"), QStringLiteral("s")},
                {QStringLiteral("monitor"), QStringLiteral("s")},
                {QStringLiteral("group"), QStringLiteral("s")},
                {QStringLiteral("date"), QStringLiteral("d"), false, false,
                 QStringLiteral("Seconds since 1 January 1970 UTC.")},
                {QStringLiteral("visible"), QStringLiteral("b"), false, false,
                 QStringLiteral("Whether it lies in the range that is shown.")},
                {QStringLiteral("duplicates"), QStringLiteral("u"), false, false,
                 QStringLiteral("How many repetitions it has: duplicates/0 to duplicates/COUNT-1.")}};
    }
    QVariant value(const QString &property) const override
    {
        if (property == QLatin1String("date"))
            return unixSeconds(m_entry.date());
        if (property == QLatin1String("visible"))
            return m_entry.visible();
        if (property == QLatin1String("duplicates"))
            return uint(m_entry.duplicates().size());
        return m_entry.scriptingProperties().string(property);
    }

private:
    const ZELKLWCLogEntry &m_entry;
};

class Slice : public Object
{
public:
    explicit Slice(const Subject &subject)
        : m_slice(subject.slice)
    {
    }
    QString interface() const override { return QStringLiteral("org.zelk.lullwatch.VisibleSlice"); }
    std::vector<Property> properties() const override;
    std::vector<Method> methods() const override
    {
        return {{QStringLiteral("export"),
                 {{QStringLiteral("arguments"), QStringLiteral("a{sv}")}},
                 QStringLiteral(
                     "Writes the graph as a PNG file: destinationFile, width and height (150 to 15000), "
                     "title and border (0 or 1).")}};
    }
    QVariant value(const QString &property) const override;
    std::optional<Error> setValue(const QString &property, const QVariant &value) override;
    std::optional<Error> call(const QString &method, const QVariantList &arguments,
                              QVariantList &answer) override;

private:
    QVariant events() const;
    QVariant summary() const;
    const ZELKDictionary &totals() const;

    ZELKLWCLogSlice &m_slice;
    mutable std::optional<ZELKDictionary> m_totals;
};

std::vector<Object::Property> Slice::properties() const
{
    const QString date =
        QStringLiteral("Seconds since 1 January 1970 UTC; what is set is taken to whole days.");
    const QString seconds = QStringLiteral("Seconds of the range.");
    return {{QStringLiteral("start"), QStringLiteral("d"), true, false, date},
            {QStringLiteral("end"), QStringLiteral("d"), true, false, date},
            {QStringLiteral("title"), QStringLiteral("s")},
            {QStringLiteral("duration"), QStringLiteral("d"), false, false, seconds},
            {QStringLiteral("events"), QStringLiteral("ao"), false, true,
             QStringLiteral("The entries of the range.")},
            {QStringLiteral("awake"), QStringLiteral("d"), false, false, seconds},
            {QStringLiteral("asleep"), QStringLiteral("d"), false, false, seconds},
            {QStringLiteral("off"), QStringLiteral("d"), false, false, seconds},
            {QStringLiteral("summary"), QStringLiteral("a{sd}"), false, false,
             QStringLiteral("Seconds of the range in each state; empty where it has no entries.")}};
}

QVariant Slice::value(const QString &property) const
{
    if (property == QLatin1String("start"))
        return unixSeconds(m_slice.start());
    if (property == QLatin1String("end"))
        return unixSeconds(m_slice.end());
    if (property == QLatin1String("title"))
        return m_slice.title();
    if (property == QLatin1String("duration"))
        return m_slice.duration();
    if (property == QLatin1String("awake"))
        return ZELKLWCLogSlice::awake(totals());
    if (property == QLatin1String("asleep"))
        return ZELKLWCLogSlice::asleep(totals());
    if (property == QLatin1String("off"))
        return ZELKLWCLogSlice::off(totals());
    return property == QLatin1String("events") ? events() : summary();
}

QVariant Slice::events() const
{
    if (m_slice.countOfEvents() > mostEvents)
        return {};
    QList<QDBusObjectPath> paths;
    for (const ZELKLWCLogEntry *entry : m_slice.events())
        paths.append(QDBusObjectPath(entry->objectSpecifier()));
    return QVariant::fromValue(paths);
}

/// Of all entries of the range, once for an answer that tells several of them.
const ZELKDictionary &Slice::totals() const
{
    if (!m_totals)
        m_totals = m_slice.summary().value_or(ZELKDictionary());
    return *m_totals;
}

QVariant Slice::summary() const
{
    QDBusArgument map;
    map.beginMap(QMetaType::fromType<QString>(), QMetaType::fromType<double>());
    for (const auto &[state, seconds] : totals()) {
        map.beginMapEntry();
        map << state << seconds.toDouble();
        map.endMapEntry();
    }
    map.endMap();
    return QVariant::fromValue(map);
}

std::optional<Object::Error> Slice::setValue(const QString &property, const QVariant &value)
{
    bool isNumber = false;
    const double seconds = value.toDouble(&isNumber);
    if (!isNumber || !(std::abs(seconds) < 1e12))
        return invalid(QStringLiteral("A date is a number of seconds since 1 January 1970 UTC"));
    const ZELKDate date = ZELKDate::fromSecondsSince1970(seconds);
    if (property == QLatin1String("start"))
        m_slice.setStart(date);
    else
        m_slice.setEnd(date);
    return std::nullopt;
}

std::optional<Object::Error> Slice::call(const QString & /*method*/, const QVariantList &arguments,
                                         QVariantList & /*answer*/)
{
    ZELKScriptCommand command;
    const auto named = qdbus_cast<QVariantMap>(arguments.first());
    for (auto argument = named.begin(); argument != named.end(); ++argument)
        command.evaluatedArguments.insert(argument.key(), argument.value());
    m_slice.scriptExport(command);
    if (command.scriptErrorNumber == 0)
        return std::nullopt;
    return Error{errorName(), command.scriptErrorString, command.scriptErrorNumber};
}

/// A number as a path has it: no sign, no zeros before it.
std::optional<int> index(const QString &text)
{
    bool isNumber = false;
    const int index = text.toInt(&isNumber);
    if (!isNumber || index < 0 || QString::number(index) != text)
        return std::nullopt;
    return index;
}

/// "entries/N" and "entries/N/duplicates/M".
const ZELKLWCLogEntry *entryAt(const ZELKLWCLog &log, const QStringList &names)
{
    const bool isDuplicate = names.size() == 4 && names[2] == QLatin1String("duplicates");
    if (names.first() != QLatin1String("entries") || !(names.size() == 2 || isDuplicate))
        return nullptr;
    const auto number = index(names[1]);
    if (!number || *number >= log.count())
        return nullptr;
    const ZELKLWCLogEntry *entry = log.objectAtIndex(*number);
    if (!isDuplicate)
        return entry;
    const QList<ZELKLWCLogEntry *> duplicates = entry->duplicates();
    const auto place = index(names[3]);
    return place && *place < duplicates.size() ? duplicates[*place] : nullptr;
}

} // namespace

QString ZELKScriptObjects::applicationPath()
{
    return QStringLiteral("/org/zelk/lullwatch");
}

std::unique_ptr<ZELKScriptObject> ZELKScriptObjects::objectAtPath(const Subject &subject, const QString &path)
{
    if (path == applicationPath())
        return std::make_unique<Application>(subject);
    if (path == subject.slice.objectSpecifier())
        return std::make_unique<Slice>(subject);
    const QString database = subject.log.objectSpecifier();
    if (path == database)
        return std::make_unique<Database>(subject);
    if (!path.startsWith(database + u'/'))
        return nullptr;
    const ZELKLWCLogEntry *entry = entryAt(subject.log, path.sliced(database.size() + 1).split(u'/'));
    return entry ? std::make_unique<Entry>(*entry) : nullptr;
}
