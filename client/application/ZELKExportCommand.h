#pragma once

#include "ZELKExportFormat.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class ZELKApplicationWiring;
class ZELKExportFile;
class ZELKExportSource;
class ZELKFileExport;

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

/// Exports the log, or the graph of the range that is chosen, to a file. Progress is shown to a terminal
/// where it takes longer than a second; Ctrl+C cancels.
class ZELKExportCommand : public QObject
{
    Q_OBJECT

public:
    /// What went wrong, in a sentence.
    using Complaint = std::function<void(const QString &)>;

    /// `wiring` must outlive the object.
    ZELKExportCommand(ZELKApplicationWiring &wiring, const Complaint &complain);

    /// False when the file is not there, which has been complained of.
    bool run(const ZELKExportRequest &request);

private:
    bool isOwnFile(const QString &path) const;
    std::unique_ptr<ZELKExportSource> source(const ZELKExportRequest &request) const;
    std::unique_ptr<ZELKExportSource> picture(const ZELKExportRequest &request) const;
    bool carryOut(ZELKFileExport &work);
    static void showProgress(double fraction);
    static void hideProgress();

    ZELKApplicationWiring &m_wiring;
    Complaint m_complain;
    bool m_isCancelled = false;
};
