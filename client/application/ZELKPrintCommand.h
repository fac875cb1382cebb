#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class QPrinter;
class ZELKApplicationWiring;
class ZELKLWCMainWindowController;

/// What "lullwatch print" is asked for. A value.
struct ZELKPrintRequest
{
    QString output;
    QString paper; ///< "A4" or "Letter"; empty for what is usual here
    bool isLandscape = false;

    /// What is wrong with it, or an empty text.
    QString complaint() const;
};

/// Prints the window's table to a PDF file. Ctrl+C cancels.
class ZELKPrintCommand : public QObject
{
    Q_OBJECT

public:
    /// What went wrong, in a sentence.
    using Complaint = std::function<void(const QString &)>;

    /// All must outlive the object.
    ZELKPrintCommand(ZELKApplicationWiring &wiring, ZELKLWCMainWindowController &window,
                     const Complaint &complain);

    /// False when the file is not there, which has been complained of.
    bool run(const ZELKPrintRequest &request);

private:
    bool isOwnFile(const QString &path) const;

    ZELKApplicationWiring &m_wiring;
    ZELKLWCMainWindowController &m_window;
    Complaint m_complain;
    bool m_isCancelled = false;
};
