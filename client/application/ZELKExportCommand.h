#pragma once

#include "ZELKExportFormat.h"
#include "ZELKOutputCommand.h"

#include <QString>

#include <optional>

/// What "lullwatch export" is asked for. A value.
struct ZELKExportRequest
{
    static constexpr int usualWidth = 1200;
    static constexpr int usualHeight = 300;

    /// The options' values as they were given; nothing for those that were not.
    struct Words
    {
        std::optional<QString> format;
        std::optional<QString> output;
        std::optional<QString> width;
        std::optional<QString> height;
        bool hasRange = false;
    };

    int tag = ZELKExportFormat::TabText;
    /// "-" for standard output.
    QString output;
    int width = usualWidth; ///< of a picture, in points
    int height = usualHeight;

    bool isPicture() const;
    /// Takes the words; answers what is wrong with them, or an empty text.
    QString take(const Words &words);
};

/// Exports the log, or the graph of the range that is chosen, to a file.
class ZELKExportCommand : public ZELKOutputCommand
{
public:
    ZELKExportCommand(ZELKApplicationWiring &wiring, const Complaint &complain);

    /// False when the file is not there, which has been complained of.
    bool run(const ZELKExportRequest &request);

private:
    QImage picture(const ZELKExportRequest &request) const;
};
