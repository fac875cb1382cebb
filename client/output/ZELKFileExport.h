#pragma once

#include "ZELKExportSource.h"
#include "ZELKOutputWork.h"

/// One export to a file.
class ZELKFileExport : public ZELKOutputWork
{
public:
    ZELKFileExport(std::unique_ptr<ZELKExportSource> source, std::unique_ptr<ZELKExportFile> file);

protected:
    State produce() override;
    double producedFraction() const override { return m_source->fraction(); }

private:
    std::unique_ptr<ZELKExportSource> m_source;
};
