#include "ZELKRawEventWriter.h"

#include <QVarLengthArray>
#include <QtEndian>

#include <algorithm>

namespace {

// With up to 14 pairs the count stands in the marker, and a reference to one of 29 objects is one byte.
constexpr qsizetype mostPairs = 14;
constexpr qsizetype longestCountInMarker = 14;
constexpr char dictionaryMarker = char(0xd0);
constexpr char asciiMarker = 0x50;
constexpr char wideMarker = 0x60;

int bytesNeeded(quint64 number)
{
    if (number < 1ULL << 8)
        return 1;
    if (number < 1ULL << 16)
        return 2;
    return number < 1ULL << 24 ? 3 : 4;
}

/// Texts that the library writes as they are.
bool isPlain(const QString &text)
{
    return text.isValidUtf16() && !text.contains(QChar(u'\0'));
}

class FlatWriter
{
public:
    /// Nothing for a dictionary that is not flat.
    QByteArray write(const ZELKRawEvent &event)
    {
        if (event.size() > mostPairs || !collect(event))
            return {};
        const auto references = qsizetype(m_keys.size() + m_values.size());
        m_bytes.reserve(64 + references + 2 * m_length);
        m_bytes.append("bplist00", 8);
        m_offsets.append(m_bytes.size());
        m_bytes.append(char(dictionaryMarker | char(m_keys.size())));
        for (const auto *list : {&m_keys, &m_values})
            for (const int number : *list)
                m_bytes.append(char(number));
        for (const QString &text : m_texts)
            append(text);
        appendTable();
        return m_bytes;
    }

private:
    /// The objects in the library's order: the dictionary, then key and value by turns; a value that was
    /// there before is the same object again.
    bool collect(const ZELKRawEvent &event)
    {
        QVarLengthArray<int, mostPairs> values; // positions in m_texts
        for (const auto &[key, value] : event) {
            if (value.typeId() != QMetaType::QString || !isPlain(key))
                return false;
            const QString text = value.toString();
            if (!isPlain(text))
                return false;
            m_keys.append(add(key));
            const auto same = std::find_if(values.begin(), values.end(),
                                           [&](int position) { return m_texts[position] == text; });
            m_values.append(same != values.end() ? *same + 1 : add(text));
            if (same == values.end())
                values.append(int(m_texts.size()) - 1);
        }
        return true;
    }

    int add(const QString &text)
    {
        m_texts.append(text);
        m_length += text.size();
        return int(m_texts.size());
    }

    void append(const QString &text)
    {
        m_offsets.append(m_bytes.size());
        const bool isAscii =
            std::all_of(text.begin(), text.end(), [](QChar character) { return character.unicode() < 0x80; });
        const char marker = isAscii ? asciiMarker : wideMarker;
        if (text.size() <= longestCountInMarker) {
            m_bytes.append(char(marker | char(text.size())));
        } else {
            m_bytes.append(char(marker | 0x0f));
            appendInteger(quint64(text.size()));
        }
        const qsizetype start = m_bytes.size();
        m_bytes.resize(start + text.size() * (isAscii ? 1 : 2));
        char *to = m_bytes.data() + start;
        if (isAscii)
            std::transform(text.begin(), text.end(), to,
                           [](QChar character) { return character.toLatin1(); });
        else
            qToBigEndian<char16_t>(text.utf16(), text.size(), to);
    }

    void appendNumber(quint64 number, int width)
    {
        for (int byte = width - 1; byte >= 0; --byte)
            m_bytes.append(char(number >> (8 * byte)));
    }

    /// An integer object has 1, 2, 4 or 8 bytes.
    void appendInteger(quint64 number)
    {
        const int needed = bytesNeeded(number);
        const int power = needed == 1 ? 0 : needed == 2 ? 1 : 2;
        m_bytes.append(char(0x10 | power));
        appendNumber(number, 1 << power);
    }

    void appendTable()
    {
        const auto table = quint64(m_bytes.size());
        const int width = bytesNeeded(table);
        for (const qsizetype offset : m_offsets)
            appendNumber(quint64(offset), width);
        m_bytes.append(6, '\0');
        m_bytes.append(char(width));
        m_bytes.append(char(1)); // bytes of a reference
        appendNumber(quint64(m_offsets.size()), 8);
        appendNumber(0, 8); // the top object
        appendNumber(table, 8);
    }

    QByteArray m_bytes;
    QVarLengthArray<QString, 2 * mostPairs> m_texts;
    QVarLengthArray<int, mostPairs> m_keys; // numbers of objects; the dictionary is 0
    QVarLengthArray<int, mostPairs> m_values;
    QVarLengthArray<qsizetype, 2 * mostPairs + 1> m_offsets;
    qsizetype m_length = 0; // characters of all texts
};

} // namespace

ZELKPropertyList::Written ZELKRawEventWriter::write(const ZELKRawEvent &event)
{
    const QByteArray bytes = FlatWriter().write(event);
    return bytes.isEmpty() ? ZELKPropertyList::writeBinary(QVariant::fromValue(event))
                           : ZELKPropertyList::Written{bytes, {}};
}
