#include "ZELKListSource.h"

#include "ZELKConsole.h"
#include "ZELKDictionary.h"
#include "ZELKFormat.h"
#include "ZELKLWCLogEntry.h"
#include "ZELKPropertyList.h"

#include <QIODevice>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

namespace {

/// What an array with something in it begins and ends with; and one without.
struct Frame
{
    QByteArray opening;
    QByteArray closing;
    QByteArray empty;
};

Frame makeFrame()
{
    const QByteArray tag = "<array>\n";
    const QByteArray list = ZELKPropertyList::writeXml(QVariantList{true}).bytes;
    return {list.first(list.indexOf(tag) + tag.size()), list.mid(list.indexOf("</array>")),
            ZELKPropertyList::writeXml(QVariantList()).bytes};
}

const Frame &frame()
{
    static const Frame made = makeFrame();
    return made;
}

bool isCarried(char32_t character)
{
    if (character < 0x20)
        return character == U'\t' || character == U'\n' || character == U'\r';
    return character < 0xD800 || (character > 0xDFFF && character < 0xFFFE) || character > 0xFFFF;
}

/// Halves of characters that stand alone are none of XML's either.
QString carriedText(const QString &text)
{
    const auto isPlain = [](QChar unit) { return isCarried(unit.unicode()); };
    if (std::all_of(text.begin(), text.end(), isPlain))
        return text;
    std::u32string characters = text.toStdU32String();
    std::replace_if(characters.begin(), characters.end(), std::not_fn(isCarried),
                    char32_t(QChar::ReplacementCharacter));
    return QString::fromStdU32String(characters);
}

QVariant carriedDictionary(const ZELKDictionary &dictionary)
{
    std::vector<ZELKDictionary::Item> items;
    items.reserve(std::size_t(dictionary.size()));
    for (const auto &[key, value] : dictionary)
        items.emplace_back(carriedText(key), ZELKListSource::carriedByXml(value));
    return QVariant::fromValue(ZELKDictionary::fromItems(std::move(items)));
}

} // namespace

QVariant ZELKListSource::carriedByXml(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return carriedText(value.toString());
    if (value.userType() == qMetaTypeId<ZELKDictionary>())
        return carriedDictionary(value.value<ZELKDictionary>());
    if (value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QStringList)
        return value;
    QVariantList list = value.toList();
    for (QVariant &item : list)
        item = carriedByXml(item);
    return list;
}

bool ZELKListSource::writeEntries(QIODevice &device, int first, int end)
{
    QVariantList entries;
    entries.reserve(end - first);
    for (int i = first; i < end; ++i)
        entries.append(carriedByXml(QVariant::fromValue(entry(i).exportAsDictionary())));
    const QByteArray items = itemsOf(entries);
    return items.isEmpty() || (writeOpening(device) && device.write(items) == items.size());
}

/// Between the array's opening and closing; empty when there is nothing that can be written.
QByteArray ZELKListSource::itemsOf(const QVariantList &entries)
{
    const ZELKPropertyList::Written list = ZELKPropertyList::writeXml(entries);
    if (list.error.isEmpty())
        return list.bytes.sliced(frame().opening.size(),
                                 list.bytes.size() - frame().opening.size() - frame().closing.size());
    if (entries.size() > 1) {
        QByteArray items;
        for (const QVariant &entry : entries)
            items += itemsOf({entry});
        return items;
    }
    ZELKConsole::log(ZELKFormat("Error: %@", {list.error}));
    return {};
}

bool ZELKListSource::writeOpening(QIODevice &device)
{
    return std::exchange(m_isOpen, true) || device.write(frame().opening) == frame().opening.size();
}

bool ZELKListSource::end(QIODevice &device)
{
    const QByteArray &closing = m_isOpen ? frame().closing : frame().empty;
    return device.write(closing) == closing.size();
}
