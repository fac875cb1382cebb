#pragma once

#include "ZELKLWCExportController.h"

class QAction;
class QMainWindow;
class ZELKApplicationWiring;

/// The menu's item that exports, and what is told when an export fails.
class ZELKExportActions : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. Both outlive the object.
    ZELKExportActions(QMainWindow &window, ZELKApplicationWiring &wiring);

private:
    void validate();

    ZELKLWCExportController m_controller;
    QAction *m_export;
};
