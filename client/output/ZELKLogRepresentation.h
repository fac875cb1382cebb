#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

class ZELKExportSource;
class ZELKLWCLog;

/// The whole log as data for other programs.
namespace ZELKLogRepresentation {

/// The types there are.
constexpr char tabularText[] = "text/tab-separated-values";
constexpr char richText[] = "text/rtf";
constexpr char propertyList[] = "xml/plist";
constexpr char wordDocument[] = "word/doc";

/// The log in that type, to be written piece by piece; null, and "Unsupported
/// ZELKLog::dataRepresentationOfType:%@" on the console, for a type that is none of these. The log must
/// outlive the source.
std::unique_ptr<ZELKExportSource> sourceOfType(const ZELKLWCLog &log, const QString &type);

/// The same in memory; null where there is no such type.
QByteArray dataRepresentationOfType(const ZELKLWCLog &log, const QString &type);

} // namespace ZELKLogRepresentation
