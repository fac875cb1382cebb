#include "ZELKPropertyList.h"

#include "ZELKBinaryListGuard.h"
#include "ZELKDate.h"
#include "ZELKDictionary.h"
#include "ZELKListLimits.h"
#include "ZELKXmlListGuard.h"

#include <QtEndian>

#include <plist/plist.h>

#include <algorithm>
#include <array>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <memory>
#include <type_traits>

namespace {

struct FreeList
{
    void operator()(plist_t list) const { plist_free(list); }
};
using List = std::unique_ptr<std::remove_pointer_t<plist_t>, FreeList>;

struct FreeMemory
{
    void operator()(void *memory) const { std::free(memory); }
};

using Render = void (*)(plist_t, char **, std::uint32_t *);

QByteArray rendered(plist_t list, Render render)
{
    char *memory = nullptr;
    std::uint32_t size = 0;
    render(list, &memory, &size);
    const std::unique_ptr<char, FreeMemory> owner(memory);
    return memory ? QByteArray(memory, qsizetype(size)) : QByteArray();
}

/// The library reads and writes reals by the C library's locale.
class NeutralLocale
{
public:
    NeutralLocale()
        : m_neutral(newlocale(LC_ALL_MASK, "C", nullptr))
        , m_before(uselocale(m_neutral))
    {
    }
    ~NeutralLocale()
    {
        uselocale(m_before);
        if (m_neutral)
            freelocale(m_neutral);
    }
    NeutralLocale(const NeutralLocale &) = delete;
    NeutralLocale &operator=(const NeutralLocale &) = delete;

private:
    locale_t m_neutral;
    locale_t m_before;
};

// The library's calls for dates keep whole microseconds within 68 years of the reference date, and those for
// integers do not tell 2^64 - 1 from -1. A binary list of one value tells and keeps everything.
constexpr qsizetype loneMarker = 8;
constexpr qsizetype loneBody = 9;
constexpr char wideInteger = 0x14;
constexpr char dateMarker = 0x33;

plist_t loneValue(char marker, const QByteArray &body)
{
    QByteArray bytes = QByteArrayLiteral("bplist00") + marker + body;
    const auto table = quint64(bytes.size());
    bytes += char(loneMarker);
    bytes += QByteArray(6, '\0') + '\1' + '\1';
    for (const quint64 number : {quint64(1), quint64(0), table}) {
        std::array<char, sizeof number> bigEndian;
        qToBigEndian(number, bigEndian.data());
        bytes.append(bigEndian.data(), bigEndian.size());
    }
    plist_t value = nullptr;
    plist_from_bin(bytes.constData(), std::uint32_t(bytes.size()), &value);
    return value;
}

QByteArray bigEndianBytes(quint64 number)
{
    QByteArray bytes(sizeof number, Qt::Uninitialized);
    qToBigEndian(number, bytes.data());
    return bytes;
}

QVariant readInteger(plist_t node)
{
    std::uint64_t value = 0;
    plist_get_uint_val(node, &value);
    constexpr auto most = std::uint64_t(std::numeric_limits<qlonglong>::max());
    if (value > most && rendered(node, plist_to_bin).at(loneMarker) == wideInteger)
        return QVariant::fromValue(qulonglong(value));
    return QVariant::fromValue(qlonglong(value));
}

QVariant readDate(plist_t node)
{
    const QByteArray lone = rendered(node, plist_to_bin);
    if (lone.size() < loneBody + qsizetype(sizeof(quint64)))
        return {};
    const auto bits = qFromBigEndian<quint64>(lone.constData() + loneBody);
    return QVariant::fromValue(ZELKDate(std::bit_cast<double>(bits)));
}

QVariant readValue(plist_t node, std::size_t level);

QVariant readArray(plist_t node, std::size_t level)
{
    QVariantList list;
    list.reserve(qsizetype(plist_array_get_size(node)));
    void *position = nullptr;
    plist_array_new_iter(node, &position);
    const std::unique_ptr<void, FreeMemory> owner(position);
    for (plist_t item = nullptr; plist_array_next_item(node, position, &item), item;) {
        const QVariant value = readValue(item, level + 1);
        if (!value.isValid())
            return {};
        list.append(value);
    }
    return list;
}

QVariant readDictionary(plist_t node, std::size_t level)
{
    std::vector<ZELKDictionary::Item> items;
    items.reserve(plist_dict_get_size(node));
    void *position = nullptr;
    plist_dict_new_iter(node, &position);
    const std::unique_ptr<void, FreeMemory> owner(position);
    for (;;) {
        char *key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, position, &key, &item);
        const std::unique_ptr<char, FreeMemory> keyOwner(key);
        if (!item)
            break;
        const QVariant value = readValue(item, level + 1);
        if (!value.isValid())
            return {};
        items.emplace_back(QString::fromUtf8(key ? key : ""), value);
    }
    return QVariant::fromValue(ZELKDictionary::fromItems(std::move(items)));
}

QString readText(plist_t node)
{
    std::uint64_t size = 0;
    const char *text = plist_get_string_ptr(node, &size);
    return text ? QString::fromUtf8(text, qsizetype(size)) : QStringLiteral("");
}

QByteArray readData(plist_t node)
{
    std::uint64_t size = 0;
    const char *data = plist_get_data_ptr(node, &size);
    return data && size > 0 ? QByteArray(data, qsizetype(size)) : QByteArray("", 0);
}

QVariant readBoolean(plist_t node)
{
    std::uint8_t value = 0;
    plist_get_bool_val(node, &value);
    return value != 0;
}

QVariant readReal(plist_t node)
{
    double value = 0.0;
    plist_get_real_val(node, &value);
    return value;
}

/// Invalid for what is no value of ours.
QVariant readValue(plist_t node, std::size_t level)
{
    if (level > ZELKListLimits::deepestLevel)
        return {};
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
        return readBoolean(node);
    case PLIST_UINT:
        return readInteger(node);
    case PLIST_REAL:
        return readReal(node);
    case PLIST_STRING:
        return readText(node);
    case PLIST_ARRAY:
        return readArray(node, level);
    case PLIST_DICT:
        return readDictionary(node, level);
    case PLIST_DATE:
        return readDate(node);
    case PLIST_DATA:
        return readData(node);
    default:
        return {};
    }
}

/// Builds the library's tree of a value. The first thing that cannot be written is the error.
class ListBuilder
{
public:
    explicit ListBuilder(bool isXml)
        : m_isXml(isXml)
    {
    }

    List build(const QVariant &value)
    {
        List list(node(value, 1));
        return m_error.isEmpty() ? std::move(list) : List();
    }

    const QString &error() const { return m_error; }

private:
    plist_t refuse(const QString &error)
    {
        if (m_error.isEmpty())
            m_error = error;
        return nullptr;
    }

    /// The library ends a text at a NUL; part of a text is not what was asked for.
    QByteArray utf8(const QString &text)
    {
        if (text.contains(QChar(u'\0')))
            refuse(QStringLiteral("A text with a NUL character cannot be written to a property list."));
        return text.toUtf8();
    }

    plist_t node(const QVariant &value, std::size_t level)
    {
        if (level > ZELKListLimits::deepestLevel)
            return refuse(QStringLiteral("The value is nested too deeply for a property list."));
        switch (value.typeId()) {
        case QMetaType::QString:
            return plist_new_string(utf8(value.toString()).constData());
        case QMetaType::Bool:
            return plist_new_bool(value.toBool() ? 1 : 0);
        case QMetaType::Float:
        case QMetaType::Double:
            return plist_new_real(value.toDouble());
        case QMetaType::QByteArray:
            return data(value.toByteArray());
        case QMetaType::QVariantList:
        case QMetaType::QStringList:
            return array(value.toList(), level);
        default:
            return otherNode(value, level);
        }
    }

    plist_t otherNode(const QVariant &value, std::size_t level)
    {
        switch (value.typeId()) {
        case QMetaType::Short:
        case QMetaType::Int:
        case QMetaType::Long:
        case QMetaType::LongLong:
            return plist_new_uint(std::uint64_t(value.toLongLong()));
        case QMetaType::UShort:
        case QMetaType::UInt:
        case QMetaType::ULong:
        case QMetaType::ULongLong:
            return unsignedInteger(value.toULongLong());
        default:
            break;
        }
        if (value.typeId() == qMetaTypeId<ZELKDate>())
            return date(value.value<ZELKDate>());
        if (value.typeId() == qMetaTypeId<ZELKDictionary>())
            return dictionary(value.value<ZELKDictionary>(), level);
        return refuse(QStringLiteral("A value of type \"%1\" cannot be written to a property list.")
                          .arg(QString::fromLatin1(value.isValid() ? value.typeName() : "nil")));
    }

    static plist_t unsignedInteger(qulonglong value)
    {
        const bool isWide = value > qulonglong(std::numeric_limits<qlonglong>::max());
        return isWide ? loneValue(wideInteger, QByteArray(8, '\0') + bigEndianBytes(value))
                      : plist_new_uint(value);
    }

    static plist_t data(const QByteArray &bytes)
    {
        return plist_new_data(bytes.constData(), std::uint64_t(bytes.size()));
    }

    /// XML has whole seconds and four digits for the year.
    plist_t date(ZELKDate date) const
    {
        double seconds = date.timeIntervalSinceReferenceDate();
        if (m_isXml)
            seconds = std::floor(
                ZELKDate::fromDateTime(date.toDateTime(QTimeZone::utc())).timeIntervalSinceReferenceDate());
        return loneValue(dateMarker, bigEndianBytes(std::bit_cast<quint64>(seconds)));
    }

    plist_t array(const QVariantList &items, std::size_t level)
    {
        List list(plist_new_array());
        for (const QVariant &item : items) {
            const plist_t child = node(item, level + 1);
            if (!child)
                return nullptr;
            plist_array_append_item(list.get(), child);
        }
        return list.release();
    }

    plist_t dictionary(const ZELKDictionary &items, std::size_t level)
    {
        List list(plist_new_dict());
        for (const auto &[key, item] : items) {
            const plist_t child = node(item, level + 1);
            if (!child)
                return nullptr;
            plist_dict_set_item(list.get(), utf8(key).constData(), child);
        }
        return list.release();
    }

    bool m_isXml;
    QString m_error;
};

ZELKPropertyList::Written write(const QVariant &value, Render render)
{
    const NeutralLocale locale;
    ListBuilder builder(render == plist_to_xml);
    const List list = builder.build(value);
    if (!list)
        return {{}, builder.error()};
    const QByteArray bytes = rendered(list.get(), render);
    return {bytes, bytes.isEmpty() ? QStringLiteral("The property list could not be written.") : QString()};
}

} // namespace

ZELKPropertyList::Result ZELKPropertyList::read(std::string_view bytes)
{
    if (bytes.empty())
        return {{}, QStringLiteral("The property list is empty.")};
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max())
        return {{}, QStringLiteral("The property list is too large.")};
    const bool isBinary = bytes.starts_with("bplist");
    if (!isBinary && bytes.starts_with("\xef\xbb\xbf"))
        bytes.remove_prefix(3);
    const QString objection =
        isBinary ? ZELKBinaryListGuard::objectionTo(bytes) : ZELKXmlListGuard::objectionTo(bytes);
    if (!objection.isEmpty())
        return {{}, objection};

    const NeutralLocale locale;
    plist_t root = nullptr;
    (isBinary ? plist_from_bin : plist_from_xml)(bytes.data(), std::uint32_t(bytes.size()), &root);
    const List list(root);
    const QVariant value = root ? readValue(root, 1) : QVariant();
    return {value, value.isValid() ? QString() : QStringLiteral("The property list is damaged.")};
}

ZELKPropertyList::Written ZELKPropertyList::writeBinary(const QVariant &value)
{
    return write(value, plist_to_bin);
}

ZELKPropertyList::Written ZELKPropertyList::writeXml(const QVariant &value)
{
    return write(value, plist_to_xml);
}
