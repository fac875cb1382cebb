#pragma once

#include <cstdint>

class QIODevice;

/// What is exported, piece by piece, so that whoever exports it can show how far it is and end it. Used once.
class ZELKExportSource
{
public:
    enum class Outcome : std::uint8_t {
        More,
        Whole,
        Failed ///< systemError() says why
    };

    ZELKExportSource() = default;
    virtual ~ZELKExportSource() = default;
    ZELKExportSource(const ZELKExportSource &) = delete;
    ZELKExportSource &operator=(const ZELKExportSource &) = delete;

    /// Writes the next piece, which takes some milliseconds. The device, the same each time, can go back.
    virtual Outcome writeSome(QIODevice &device) = 0;
    /// How much of it is written, from 0 to 1.
    virtual double fraction() const = 0;
    /// The error number (errno) of a failure that is not the device's; 0 for those.
    virtual int systemError() const { return 0; }
};
