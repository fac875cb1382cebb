#pragma once

#include <QString>

/// A text of the command line's string table. The keys are the English sentences themselves, so that they can
/// be read where there is no table.
QString ZELKCommandLineText(const char *key);
