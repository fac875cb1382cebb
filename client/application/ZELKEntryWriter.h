#pragma once

#include <cstdint>
#include <memory>

class ZELKLWCLog;
class ZELKLWCLogEntry;
class ZELKTextOutput;

/// Writes entries one by one, in some format.
class ZELKEntryWriter
{
public:
    enum class Format {
        Table, ///< date and summary in columns, for people
        Tsv,   ///< a line an entry: date, summary, attributes
        Json,  ///< an array of objects, see ZELKEntryJson
    };

    /// Both must outlive the writer.
    static std::unique_ptr<ZELKEntryWriter> make(Format format, const ZELKLWCLog &log,
                                                 ZELKTextOutput &output);
    ZELKEntryWriter(const ZELKLWCLog &log, ZELKTextOutput &output)
        : m_log(log)
        , m_output(output)
    {
    }
    virtual ~ZELKEntryWriter() = default;
    ZELKEntryWriter(const ZELKEntryWriter &) = delete;
    ZELKEntryWriter &operator=(const ZELKEntryWriter &) = delete;

    virtual void begin() {}
    /// `index` is the entry's position in the whole log.
    virtual void write(const ZELKLWCLogEntry &entry, std::uint64_t index) = 0;
    virtual void end() {}

protected:
    const ZELKLWCLog &log() const { return m_log; }
    ZELKTextOutput &output() const { return m_output; }

private:
    const ZELKLWCLog &m_log;
    ZELKTextOutput &m_output;
};
