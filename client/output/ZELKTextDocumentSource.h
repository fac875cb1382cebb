#pragma once

#include "ZELKAttributedString.h"
#include "ZELKLogSource.h"
#include "ZELKTextFileWriter.h"

#include <functional>
#include <memory>

/// A document with a paragraph an entry: date and summary, divided by a tab. The main bundle may have rich
/// texts that stand before and behind them: ExportPrefix.rtf and ExportSuffix.rtf.
class ZELKTextDocumentSource : public ZELKLogSource
{
public:
    /// Makes what writes the document's format.
    using MakeWriter = std::function<std::unique_ptr<ZELKTextFileWriter>(QIODevice &device)>;

    ZELKTextDocumentSource(const ZELKLWCLog &log, const MakeWriter &makeWriter);

    int systemError() const override;

protected:
    bool begin(QIODevice &device) override;
    bool writeEntries(QIODevice &device, int first, int end) override;
    bool end(QIODevice &device) override;

private:
    MakeWriter m_makeWriter;
    std::unique_ptr<ZELKTextFileWriter> m_writer;
    ZELKAttributedString m_suffix;
};
