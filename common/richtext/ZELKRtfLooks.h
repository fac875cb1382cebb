#pragma once

#include "ZELKTextAttributes.h"

#include <QByteArray>
#include <QStringList>

/// The fonts and colours of a rich text file, which it names at its beginning and its text refers to by
/// number. Number 0 is "none of its own" in both.
class ZELKRtfLooks
{
public:
    void add(const ZELKTextAttributes &look);

    /// The file's beginning.
    QByteArray head() const;
    /// What a group begins with for its text to look like this. A font or a colour that was not added is left
    /// out.
    QByteArray words(const ZELKTextAttributes &look) const;

    /// A word of rich text and its number.
    static QByteArray word(const char *name, int number);
    /// A character as itself, unless it would mean something or is not ASCII.
    static void appendEscaped(QByteArray &out, QChar character);

private:
    QByteArray fontTable() const;
    QByteArray colourTable() const;

    QStringList m_fonts;
    QList<ZELKTextColour> m_colours;
};
