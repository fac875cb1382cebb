#pragma once

#include <QByteArray>

#include <utmpx.h>

/// A record as the system's accounting file keeps it, at `seconds` since 1970.
inline QByteArray accountingRecord(short type, const char *user, qint64 seconds, const char *line = "~")
{
    utmpx record = {};
    record.ut_type = type;
    qstrncpy(record.ut_user, user, sizeof record.ut_user);
    qstrncpy(record.ut_line, line, sizeof record.ut_line);
    record.ut_tv.tv_sec = decltype(record.ut_tv.tv_sec)(seconds);
    return QByteArray(reinterpret_cast<const char *>(&record), sizeof record);
}
