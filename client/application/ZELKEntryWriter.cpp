#include "ZELKEntryWriter.h"

#include "ZELKCommandLineText.h"
#include "ZELKEntryJson.h"
#include "ZELKFormat.h"
#include "ZELKLWCLog.h"
#include "ZELKTextOutput.h"

namespace {

class TableWriter final : public ZELKEntryWriter
{
public:
    using ZELKEntryWriter::ZELKEntryWriter;

    void begin() override { writeRow(ZELKCommandLineText("Date"), ZELKCommandLineText("Summary")); }

    void write(const ZELKLWCLogEntry &entry, std::uint64_t) override
    {
        ++m_count;
        writeRow(entry.date().description(), ZELKTextOutput::safe(entry.summary()));
    }

    void end() override
    {
        const auto all = std::uint64_t(log().count());
        output().write(counted(all) + QLatin1Char('\n'));
    }

private:
    QString counted(std::uint64_t all) const
    {
        if (m_count == all)
            return all == 1 ? ZELKCommandLineText("1 entry")
                            : ZELKFormat(ZELKCommandLineText("%lu entries"), {all});
        return ZELKFormat(all == 1 ? ZELKCommandLineText("%lu of 1 entry")
                                   : ZELKCommandLineText("%lu of %lu entries"),
                          {m_count, all});
    }

    void writeRow(const QString &date, const QString &summary)
    {
        // As long as each date describes itself.
        constexpr int dateWidth = 25;
        output().write(date.leftJustified(dateWidth) + QLatin1String("  ") + summary + QLatin1Char('\n'));
    }

    std::uint64_t m_count = 0;
};

class TsvWriter final : public ZELKEntryWriter
{
public:
    using ZELKEntryWriter::ZELKEntryWriter;

    /// The entry's own text, but for tabs and line breaks within its parts.
    void write(const ZELKLWCLogEntry &entry, std::uint64_t) override
    {
        const QStringList parts{entry.date().description(), ZELKTextOutput::safe(entry.summary()),
                                ZELKTextOutput::safe(entry.attributesAsString())};
        output().write(parts.join(QLatin1Char('\t')) + QLatin1Char('\n'));
    }
};

class JsonWriter final : public ZELKEntryWriter
{
public:
    using ZELKEntryWriter::ZELKEntryWriter;

    void begin() override { output().write(std::string_view("[")); }

    void write(const ZELKLWCLogEntry &entry, std::uint64_t index) override
    {
        m_object.resize(0);
        m_object += m_isFirst ? "\n" : ",\n";
        ZELKEntryJson::appendEntry(m_object, log(), entry, index);
        output().write(std::string_view(m_object.constData(), std::size_t(m_object.size())));
        m_isFirst = false;
    }

    void end() override { output().write(std::string_view(m_isFirst ? "]\n" : "\n]\n")); }

private:
    QByteArray m_object; // keeps its room
    bool m_isFirst = true;
};

} // namespace

std::unique_ptr<ZELKEntryWriter> ZELKEntryWriter::make(Format format, const ZELKLWCLog &log,
                                                       ZELKTextOutput &output)
{
    switch (format) {
    case Format::Tsv:
        return std::make_unique<TsvWriter>(log, output);
    case Format::Json:
        return std::make_unique<JsonWriter>(log, output);
    case Format::Table:
        break;
    }
    return std::make_unique<TableWriter>(log, output);
}
