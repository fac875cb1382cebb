#pragma once

#include "ZELKOutputCommand.h"

#include <QString>

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

/// Prints the window's table to a PDF file.
class ZELKPrintCommand : public ZELKOutputCommand
{
public:
    /// All must outlive the object.
    ZELKPrintCommand(ZELKApplicationWiring &wiring, ZELKLWCMainWindowController &window,
                     const Complaint &complain);

    /// False when the file is not there, which has been complained of.
    bool run(const ZELKPrintRequest &request);

private:
    ZELKLWCMainWindowController &m_window;
};
