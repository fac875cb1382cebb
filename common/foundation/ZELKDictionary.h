#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <utility>
#include <vector>

/// A dictionary that keeps the order in which its keys were first set. Implicit sharing is not needed: the
/// dictionaries of this program are small, and looked up by a walk.
///
/// Values are property-list values: QString, bool, qlonglong (qulonglong above its range), double, ZELKDate,
/// QByteArray, QVariantList, ZELKDictionary; or an object of a registered value type that describes itself
/// (see ZELKValue).
class ZELKDictionary
{
public:
    using Item = std::pair<QString, QVariant>;

    ZELKDictionary() = default;
    ZELKDictionary(std::initializer_list<Item> items);
    /// The same as inserting them one by one, in a time that suits any number of them.
    static ZELKDictionary fromItems(std::vector<Item> items);

    /// A new key goes last; an old key keeps its place and takes the new value.
    void insert(const QString &key, const QVariant &value);
    void remove(const QString &key);
    bool contains(const QString &key) const;
    /// An invalid variant when the key is absent.
    QVariant value(const QString &key) const;
    QString string(const QString &key) const { return value(key).toString(); }
    QStringList keys() const;
    qsizetype size() const { return qsizetype(m_items.size()); }
    bool isEmpty() const { return m_items.empty(); }

    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

    /// The same keys with equal values, in whatever order.
    bool operator==(const ZELKDictionary &other) const;

private:
    std::vector<Item> m_items;
};

Q_DECLARE_METATYPE(ZELKDictionary)
