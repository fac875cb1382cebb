#pragma once

#include <QString>

/// The console log: one line an event, on standard error through Qt's message handler (info level).
namespace ZELKConsole {

/// Line breaks and other control characters of `text` are written as escapes, so that it stays one line;
/// texts of more than 4,000 characters are cut with "…".
void log(const QString &text);

/// A control character as people write it: \n, \u001b.
QString escaped(QChar character);

} // namespace ZELKConsole
