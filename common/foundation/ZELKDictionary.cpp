#include "ZELKDictionary.h"

#include "ZELKValue.h"

#include <QHash>

#include <algorithm>

namespace {

template <typename Items>
auto itemOf(Items &items, const QString &key)
{
    return std::find_if(items.begin(), items.end(), [&](const auto &item) { return item.first == key; });
}

std::vector<const ZELKDictionary::Item *> sortedByKey(const std::vector<ZELKDictionary::Item> &items)
{
    std::vector<const ZELKDictionary::Item *> sorted;
    sorted.reserve(items.size());
    for (const auto &item : items)
        sorted.push_back(&item);
    std::sort(sorted.begin(), sorted.end(), [](const auto *a, const auto *b) { return a->first < b->first; });
    return sorted;
}

} // namespace

ZELKDictionary::ZELKDictionary(std::initializer_list<Item> items)
{
    m_items.reserve(items.size());
    for (const auto &[key, value] : items)
        insert(key, value);
}

ZELKDictionary ZELKDictionary::fromItems(std::vector<Item> items)
{
    ZELKDictionary dictionary;
    constexpr std::size_t mostWalked = 32;
    if (items.size() <= mostWalked) {
        dictionary.m_items.reserve(items.size());
        for (Item &item : items)
            dictionary.insert(item.first, item.second);
        return dictionary;
    }
    QHash<QString, std::size_t> places;
    std::size_t count = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto known = places.constFind(items[i].first);
        if (known != places.constEnd()) {
            items[*known].second = std::move(items[i].second);
            continue;
        }
        places.insert(items[i].first, count);
        if (i != count)
            items[count] = std::move(items[i]);
        ++count;
    }
    items.resize(count);
    dictionary.m_items = std::move(items);
    return dictionary;
}

void ZELKDictionary::insert(const QString &key, const QVariant &value)
{
    const auto found = itemOf(m_items, key);
    if (found == m_items.end())
        m_items.emplace_back(key, value);
    else
        found->second = value;
}

void ZELKDictionary::remove(const QString &key)
{
    const auto found = itemOf(m_items, key);
    if (found != m_items.end())
        m_items.erase(found);
}

bool ZELKDictionary::contains(const QString &key) const
{
    return itemOf(m_items, key) != m_items.end();
}

QVariant ZELKDictionary::value(const QString &key) const
{
    const auto found = itemOf(m_items, key);
    return found == m_items.end() ? QVariant() : found->second;
}

QStringList ZELKDictionary::keys() const
{
    QStringList keys;
    keys.reserve(size());
    for (const auto &item : m_items)
        keys.append(item.first);
    return keys;
}

bool ZELKDictionary::operator==(const ZELKDictionary &other) const
{
    if (size() != other.size())
        return false;
    const auto same = [](const Item &a, const Item &b) {
        return a.first == b.first && ZELKValue::isEqual(a.second, b.second);
    };
    const auto sameKey = [](const Item &a, const Item &b) { return a.first == b.first; };
    if (std::equal(begin(), end(), other.begin(), sameKey))
        return std::equal(begin(), end(), other.begin(), same);
    const auto mine = sortedByKey(m_items);
    const auto theirs = sortedByKey(other.m_items);
    return std::equal(mine.begin(), mine.end(), theirs.begin(),
                      [&](const Item *a, const Item *b) { return same(*a, *b); });
}
