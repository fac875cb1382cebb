#pragma once

#include <QString>

#include <cstring>

/// What the system says of an error number (errno), in the user's language.
inline QString ZELKSystemErrorText(int number)
{
    return QString::fromLocal8Bit(std::strerror(number));
}
