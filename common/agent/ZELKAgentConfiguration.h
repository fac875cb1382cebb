#pragma once

#include "ZELKAssertion.h"
#include "ZELKBundle.h"

#include <QString>

/// What the agent controller reads from the main bundle, and how it reports what it does not find there.
namespace ZELKAgentConfiguration {

/// Also the name of its string table, of its interface file and the beginning of its keys.
QString className();
const ZELKBundle &mainBundle();
/// A text of Info.plist that has to be there; throws otherwise.
QString infoString(const QString &key);
QString localised(const QString &key);
/// The key is a format that takes the class's name and a number.
QString localisedWithNumber(const char *keyFormat, int number);

[[noreturn]] void fail(const QString &message);
/// Throws when `isThere` is false.
void require(bool isThere, const char *parameter);

} // namespace ZELKAgentConfiguration
