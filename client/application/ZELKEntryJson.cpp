#include "ZELKEntryJson.h"

#include "ZELKLWCLog.h"
#include "ZELKValue.h"

#include <array>
#include <charconv>
#include <cmath>

namespace {

/// The shortest digits that read back as the same number; with an exponent only where the zeros would be
/// many.
void appendNumber(QByteArray &out, double value)
{
    if (!std::isfinite(value)) {
        out += "null";
        return;
    }
    const double size = std::abs(value);
    const bool isPlain = size == 0.0 || (size >= 1e-5 && size < 1e16);
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   isPlain ? std::chars_format::fixed : std::chars_format::scientific)
                         .ptr;
    out.append(text.data(), qsizetype(end - text.data()));
}

void appendDate(QByteArray &out, ZELKDate date)
{
    appendNumber(out, date.timeIntervalSinceReferenceDate());
}

/// Before each but the first item behind `opening`.
void divide(QByteArray &out, char opening)
{
    if (!out.endsWith(opening))
        out += ", ";
}

void appendMember(QByteArray &out, const QString &key, const QVariant &value)
{
    divide(out, '{');
    ZELKEntryJson::appendString(out, key);
    out += ": ";
    ZELKEntryJson::appendValue(out, value);
}

void appendObject(QByteArray &out, const ZELKDictionary &dictionary)
{
    out += '{';
    for (const auto &[key, item] : dictionary)
        appendMember(out, key, item);
    out += '}';
}

void appendArray(QByteArray &out, const QVariantList &list)
{
    out += '[';
    for (const QVariant &item : list) {
        if (!item.isValid())
            continue; // nothing that a property list could have held
        divide(out, '[');
        ZELKEntryJson::appendValue(out, item);
    }
    out += ']';
}

void appendAttributes(QByteArray &out, const ZELKLWCLogEntry &entry)
{
    const ZELKDictionary values = entry.attributeValues();
    out += '{';
    for (const QString &key : entry.attributes())
        appendMember(out, key, values.value(key));
    out += '}';
}

void appendDuplicates(QByteArray &out, const ZELKLWCLogEntry &entry)
{
    out += '[';
    for (const ZELKLWCLogEntry *duplicate : entry.duplicates()) {
        divide(out, '[');
        appendDate(out, duplicate->date());
    }
    out += ']';
}

void appendPair(QByteArray &out, const ZELKLWCLog &log, const ZELKLWCLogEntry &entry)
{
    const auto index = entry.pair() ? log.indexOfEntry(entry.pair()) : std::nullopt;
    out += index ? QByteArray::number(qulonglong(*index)) : QByteArrayLiteral("null");
}

/// null for a null string.
void appendStringOrNull(QByteArray &out, const QString &text)
{
    if (text.isNull())
        out += "null";
    else
        ZELKEntryJson::appendString(out, text);
}

} // namespace

void ZELKEntryJson::appendString(QByteArray &out, const QString &text)
{
    out += '"';
    qsizetype done = 0;
    const auto appendPlain = [&](qsizetype end) { out += QStringView(text).mid(done, end - done).toUtf8(); };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t code = text.at(i).unicode();
        const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
        if (!isControl && code != '"' && code != '\\')
            continue;
        appendPlain(i);
        if (code == '\n')
            out += "\\n";
        else if (code == '\t')
            out += "\\t";
        else if (isControl)
            out += QString::asprintf("\\u%04x", unsigned(code)).toLatin1();
        else
            out += '\\' + QByteArray(1, char(code));
        done = i + 1;
    }
    appendPlain(text.size());
    out += '"';
}

void ZELKEntryJson::appendValue(QByteArray &out, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        out += "null";
        return;
    case QMetaType::Bool:
        out += value.toBool() ? "true" : "false";
        return;
    case QMetaType::Int:
    case QMetaType::LongLong:
        out += QByteArray::number(value.toLongLong());
        return;
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        out += QByteArray::number(value.toULongLong());
        return;
    case QMetaType::Float:
    case QMetaType::Double:
        return appendNumber(out, value.toDouble());
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return appendArray(out, value.toList());
    default:
        break;
    }
    if (value.typeId() == qMetaTypeId<ZELKDictionary>())
        return appendObject(out, value.value<ZELKDictionary>());
    if (value.typeId() == qMetaTypeId<ZELKDate>())
        return appendDate(out, value.value<ZELKDate>());
    appendString(out, ZELKValue::description(value));
}

void ZELKEntryJson::appendEntry(QByteArray &out, const ZELKLWCLog &log, const ZELKLWCLogEntry &entry,
                                std::uint64_t index)
{
    out += "{\"index\": ";
    out += QByteArray::number(qulonglong(index));
    out += ", \"date\": ";
    appendDate(out, entry.date());
    out += ", \"finalDate\": ";
    appendDate(out, entry.finalDate());
    out += ", \"event\": ";
    appendString(out, entry.event());
    out += ", \"monitor\": ";
    appendString(out, entry.monitor());
    out += ", \"group\": ";
    appendString(out, entry.group());
    out += ", \"summary\": ";
    appendString(out, entry.summary());
    out += ", \"pair\": ";
    appendPair(out, log, entry);
    out += ", \"pairRepresents\": ";
    appendStringOrNull(out, entry.pairRepresents());
    out += ", \"duplicates\": ";
    appendDuplicates(out, entry);
    out += ", \"attributes\": ";
    appendAttributes(out, entry);
    out += '}';
}
