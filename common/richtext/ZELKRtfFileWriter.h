#pragma once

#include "ZELKRtfBody.h"
#include "ZELKRtfLooks.h"
#include "ZELKTextFileWriter.h"

/// Long rich text files (RTF), as ZELKRtfWriter writes short ones: with the fonts and colours that were
/// announced. They may have any length, and the device need not be able to go back.
class ZELKRtfFileWriter : public ZELKTextFileWriter
{
public:
    using ZELKTextFileWriter::ZELKTextFileWriter;

private:
    void begin() override;
    void write(const ZELKAttributedString &piece) override;
    void end() override;
    void flush();

    ZELKRtfLooks m_looks;
    ZELKRtfBody m_body{m_looks};
    QByteArray m_waiting; ///< for the device
};
