#pragma once

#include "ZELKDate.h"
#include "ZELKDictionary.h"

#include <QByteArray>
#include <QString>

#include <string>
#include <string_view>

/// A raw event as it travels and is cached: a dictionary with the keys "date" (seconds since the reference
/// date,
/// "%lf"), "description", "monitor" and "properties" (property-list text or "NULL"), all texts.
using ZELKRawEvent = ZELKDictionary;

/// Makes a raw event; `properties` is property-list text, "NULL" when there are none.
ZELKRawEvent ZELKMakeRawEvent(ZELKDate date, const QString &event, const QString &monitor,
                              const QString &properties = QStringLiteral("NULL"));

/// Seconds since the reference date as "%lf" writes them: six decimals, C locale.
QString ZELKDateText(ZELKDate date);

/// True when `text` is a finite number from first to last character, as every date of a raw event is.
bool ZELKIsDateText(std::string_view text);

/// The property-list text of a raw event's "properties".
QString ZELKPropertiesText(const ZELKDictionary &properties);

/// The four texts of a raw event as UTF-8, pointing into the bytes they were read from or into the reader.
/// That the properties, the longest by far, are UTF-8 is left to their own reader to check.
struct ZELKRawEventView
{
    std::string_view date;
    std::string_view description;
    std::string_view monitor;
    std::string_view properties;
};

/// Reads the serialised form of raw events: a binary property list of the whole dictionary. The usual form, a
/// flat dictionary of exactly the four texts, is read in place; anything else goes through the property-list
/// reader, which alone decides whether the bytes are faulty.
class ZELKRawEventReader
{
public:
    enum class Kind {
        Texts,      ///< view() holds the event
        Dictionary, ///< dictionary() holds the event: another form, or other values than texts
        Faulty      ///< error() says why
    };

    /// What it answers stays valid until the next call or the end of `bytes`, whichever is first.
    Kind read(std::string_view bytes);

    const ZELKRawEventView &view() const { return m_view; }
    const ZELKRawEvent &dictionary() const { return m_dictionary; }
    const QString &error() const { return m_error; }

private:
    ZELKRawEventView m_view;
    ZELKRawEvent m_dictionary;
    QString m_error;
    std::string m_scratch;
};
