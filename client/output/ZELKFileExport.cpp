#include "ZELKFileExport.h"

#include "ZELKSystemErrorText.h"

#include <cerrno>
#include <utility>

ZELKFileExport::ZELKFileExport(std::unique_ptr<ZELKExportSource> source, std::unique_ptr<ZELKExportFile> file)
    : ZELKOutputWork(std::move(file))
    , m_source(std::move(source))
{
}

ZELKOutputWork::State ZELKFileExport::produce()
{
    switch (m_source->writeSome(file())) {
    case ZELKExportSource::Outcome::More:
        return State::Producing;
    case ZELKExportSource::Outcome::Whole:
        return State::Placing;
    case ZELKExportSource::Outcome::Failed:
        break;
    }
    if (file().systemError() != 0)
        return fail(file().systemErrorText());
    const int reason = m_source->systemError();
    return fail(ZELKSystemErrorText(reason != 0 ? reason : EIO));
}
