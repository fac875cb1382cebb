#pragma once

#include <QByteArray>
#include <QString>
#include <QtEndian>

#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-input-memory.h>

#include <memory>

/// Reads the text of a Word document, and is strict about whatever says where things stand in it: "fault" is
/// the first thing that is not so.
class WordReader
{
public:
    explicit WordReader(const QByteArray &file)
        : m_document(stream(file, "WordDocument"))
        , m_tables(stream(file, "1Table"))
    {
        if (!require(m_document.size() >= 4096 && m_tables.size() >= 4096, "streams"))
            return;
        require(number<quint16>(m_document, 0) == 0xA5EC && number<quint16>(m_document, 2) == 0xC1,
                "version");
        readText();
        readPages(12, 1);
        readPages(13, 13);
    }

    QString text;
    int pageCounts[2] = {0, 0}; ///< of characters, of paragraphs
    const char *fault = nullptr;

private:
    struct Release
    {
        void operator()(void *object) const { g_object_unref(object); }
    };

    static QByteArray stream(const QByteArray &file, const char *name)
    {
        const auto *bytes = reinterpret_cast<const guint8 *>(file.constData());
        const std::unique_ptr<GsfInput, Release> input(gsf_input_memory_new(bytes, file.size(), FALSE));
        const std::unique_ptr<GsfInfile, Release> container(gsf_infile_msole_new(input.get(), nullptr));
        const std::unique_ptr<GsfInput, Release> child(
            container ? gsf_infile_child_by_name(container.get(), name) : nullptr);
        if (!child)
            return {};
        QByteArray result(gsf_input_size(child.get()), '\0');
        return gsf_input_read(child.get(), size_t(result.size()), reinterpret_cast<guint8 *>(result.data()))
                   ? result
                   : QByteArray();
    }

    template <typename Number>
    Number number(const QByteArray &bytes, qsizetype offset)
    {
        return require(offset >= 0 && offset + qsizetype(sizeof(Number)) <= bytes.size(),
                       "a place beyond the end")
                   ? qFromLittleEndian<Number>(bytes.constData() + offset)
                   : Number();
    }

    bool require(bool condition, const char *what)
    {
        if (!condition && !fault)
            fault = what;
        return condition;
    }

    QByteArray table(int index)
    {
        const qsizetype place = 154 + 8 * index;
        const auto start = number<quint32>(m_document, place), size = number<quint32>(m_document, place + 4);
        require(start + size <= m_tables.size() && size > 0, "a table beyond the end");
        return m_tables.mid(start, size);
    }

    void readText()
    {
        const QByteArray pieces = table(33);
        const auto count = number<quint32>(pieces, 9);
        m_start = number<quint32>(pieces, 15);
        require(pieces.size() == 21 && count == number<quint32>(m_document, 76), "the length of the text");
        m_end = m_start + 2 * count;
        if (!require(m_end <= m_document.size(), "text beyond the end"))
            return;
        for (quint32 place = m_start; place < m_end; place += 2)
            text += QChar(number<quint16>(m_document, place));
    }

    /// Stretches follow each other without a gap from the first character to the last.
    void readPages(int index, int entrySize)
    {
        const QByteArray list = table(index);
        const qsizetype count = (list.size() - 4) / 8;
        pageCounts[entrySize == 13] = int(count);
        quint32 end = m_start;
        for (qsizetype i = 0; i < count && !fault; ++i) {
            require(number<quint32>(list, 4 * i) == end, "the start of a page");
            const qsizetype page = 512 * qsizetype(number<quint32>(list, 4 * (count + 1) + 4 * i));
            require(page >= m_end && page + 512 <= m_document.size(), "a page's place");
            end = readPage(m_document.mid(page, 512), end, entrySize);
        }
        require(number<quint32>(list, 4 * count) == end && end == m_end, "the end of the pages");
    }

    quint32 readPage(const QByteArray &page, quint32 end, int entrySize)
    {
        const int count = quint8(page.back());
        const int entries = 4 * (count + 1), properties = entries + count * entrySize;
        require(count > 0 && number<quint32>(page, 0) == end, "the start of a stretch");
        for (int i = 0; i < count && !fault; ++i) {
            const quint32 start = end;
            end = number<quint32>(page, 4 * (i + 1));
            if (!require(start < end && end <= m_end, "the end of a stretch"))
                break;
            const QStringView stretch = QStringView(text).mid((start - m_start) / 2, (end - start) / 2);
            require(entrySize == 1 || stretch.indexOf(u'\r') == stretch.size() - 1, "a paragraph");
            readProperties(page, 2 * quint8(page[entries + i * entrySize]), properties, entrySize == 13);
        }
        return end;
    }

    void readProperties(const QByteArray &page, int place, int least, bool isParagraph)
    {
        require(place >= least, "properties among the stretches");
        int size = quint8(page[place++]);
        if (isParagraph)
            size = size == 0 ? 2 * quint8(page[place++]) : 2 * size - 1;
        const int end = place + size;
        require(end <= 511, "properties beyond the page");
        for (place += isParagraph ? 2 : 0; place < end && !fault;) {
            constexpr int sizes[] = {1, 1, 2, 4, 2, 2, -1, 3};
            const int operand = sizes[number<quint16>(page, place) >> 13];
            place += 2 + (operand < 0 ? quint8(page[place + 2]) + 1 : operand);
        }
        require(place == end, "properties that do not fit");
    }

    const QByteArray m_document;
    const QByteArray m_tables;
    quint32 m_start = 0;
    quint32 m_end = 0;
};
