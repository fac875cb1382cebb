#include "ZELKLWCLogEntryFormatter.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKEntryKeyPath.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKLWCLogEntry.h"
#include "ZELKRtfReader.h"
#include "ZELKTextDocument.h"
#include "ZELKTextLines.h"
#include "ZELKValue.h"

#include <QFile>
#include <QFontInfo>
#include <QUrl>

#include <optional>
#include <utility>

namespace {

const QString className = QStringLiteral("ZELKLWCLogEntryFormatter");
const QString sourceFile = QStringLiteral("client/ZELKLWCLogEntryFormatter");
const QString resourceType = QStringLiteral("rtf");

/// The path of the resource; asserts where it is missing.
QString requiredResource(const QString &name)
{
    const QString path = ZELKEnvironment::current().mainBundle->pathForResource(name, resourceType);
    if (path.isEmpty())
        ZELKAssertion::fail(
            sourceFile, 0,
            ZELKFormat("%@ Required resource %@.%@ is missing.", {className, name, resourceType}));
    return path;
}

[[noreturn]] void failMalformed(const QString &path, const QString &reason)
{
    ZELKAssertion::fail(
        sourceFile, 0,
        ZELKFormat("%@ Resource is malformed %@: %@",
                   {className, QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded), reason}));
}

/// The text of an entry's value; none, and a console line, where it cannot be had.
std::optional<QString> valueText(ZELKLWCLogEntry &entry, const QString &keyPath)
{
    try {
        const QVariant value = ZELKEntryKeyPath::value(entry, keyPath);
        return value.isValid() ? ZELKValue::description(value) : QString();
    } catch (const std::exception &) {
        ZELKConsole::log(ZELKFormat("%@ Class %@ does not respond to keyPath %@.",
                                    {className, ZELKEntryKeyPath::className(entry), keyPath}));
        return std::nullopt;
    }
}

QString unchanged(const QString &value)
{
    return value;
}

/// As much of a value as a row can show, on one line.
QString oneLine(const QString &value)
{
    QString line = value.left(ZELKTextLines::longestLine);
    for (QChar &character : line)
        if (character.isSpace() || character.category() == QChar::Other_Control)
            character = QLatin1Char(' ');
    return line;
}

ZELKLWCLogEntry *entryOf(const QVariant &object)
{
    return object.metaType() == QMetaType::fromType<ZELKLWCLogEntry *>() ? object.value<ZELKLWCLogEntry *>()
                                                                         : nullptr;
}

} // namespace

QList<ZELKLWCLogEntryFormatter::Placeholder> ZELKLWCLogEntryFormatter::standardPlaceholders()
{
    return {{QStringLiteral("[primary]"), QStringLiteral("summary")},
            {QStringLiteral("[supplimentary]"), QStringLiteral("attributesAsString")}};
}

ZELKLWCLogEntryFormatter::ZELKLWCLogEntryFormatter(QList<Placeholder> placeholders)
    : m_placeholders(std::move(placeholders))
{
    setTemplateEntry(attributedStringFromRTF(className));
    setTemplateEntryWithDetail(attributedStringFromRTF(className + QStringLiteral("WithDetail")));
}

ZELKAttributedString ZELKLWCLogEntryFormatter::attributedStringFromRTF(const QString &anRTFFilename) const
{
    if (anRTFFilename.isNull())
        ZELKAssertion::failParameter(sourceFile, 0, "anRTFFilename");
    const QString path = requiredResource(anRTFFilename);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        failMalformed(path, file.errorString());
    const ZELKRtfReader::Result result = ZELKRtfReader::read(file.read(ZELKRtfReader::mostBytes + 1));
    if (!result.text)
        failMalformed(path, result.error ? result.error->localizedDescription() : QString());
    if (result.error)
        throw *result.error;
    return *result.text;
}

// MARK: templates

void ZELKLWCLogEntryFormatter::setTemplateEntry(const ZELKAttributedString &text)
{
    m_compact = {text, text.scaled(m_fontScale)};
}

void ZELKLWCLogEntryFormatter::setTemplateEntryWithDetail(const ZELKAttributedString &text)
{
    m_withDetail = {text, text.scaled(m_fontScale)};
}

void ZELKLWCLogEntryFormatter::setFontScale(double scale)
{
    m_fontScale = scale > 0.0 ? scale : 1.0;
    for (Template *one : {&m_compact, &m_withDetail})
        one->scaled = one->loaded.scaled(m_fontScale);
}

double ZELKLWCLogEntryFormatter::scaleForFont(const QFont &font) const
{
    const double written = m_compact.loaded.attributesAt(0).pointSize;
    return written > 0.0 ? QFontInfo(font).pointSizeF() / written : 1.0;
}

double ZELKLWCLogEntryFormatter::rowHeightWithDetail(bool withDetail) const
{
    constexpr double air = 1.1;
    return ZELKTextDocument::height((withDetail ? m_withDetail : m_compact).scaled) * air;
}

// MARK: formatting

ZELKAttributedString
ZELKLWCLogEntryFormatter::attributedStringForObjectValue(const QVariant &object,
                                                         const ZELKTextAttributes &) const
{
    if (object.metaType() == QMetaType::fromType<ZELKAttributedString>())
        return object.value<ZELKAttributedString>();
    ZELKLWCLogEntry *entry = entryOf(object);
    return entry ? filled(*entry, &unchanged) : current().scaled;
}

QString ZELKLWCLogEntryFormatter::stringForObjectValue(const QVariant &object) const
{
    return attributedStringForObjectValue(object).string();
}

bool ZELKLWCLogEntryFormatter::getObjectValue(QVariant &, const QString &, QString *error) const
{
    if (error)
        *error = QStringLiteral("Unsupported conversion from string to entry.");
    return false;
}

ZELKAttributedString ZELKLWCLogEntryFormatter::attributedStringForRow(ZELKLWCLogEntry &entry) const
{
    return filled(entry, &oneLine);
}

ZELKAttributedString ZELKLWCLogEntryFormatter::filled(ZELKLWCLogEntry &entry, Adapt adapt) const
{
    ZELKAttributedString text = current().scaled;
    for (const Placeholder &placeholder : m_placeholders) {
        // Searched each time: a value may bring the next placeholder along, which then is the first.
        const qsizetype place = text.string().indexOf(placeholder.text);
        if (place < 0)
            continue;
        if (const std::optional<QString> value = valueText(entry, placeholder.keyPath))
            text.replaceCharacters(place, placeholder.text.size(), adapt(*value));
    }
    return text;
}
