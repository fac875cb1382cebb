#include "ZELKStringTables.h"

#include <QFileInfo>
#include <QStringList>
#include <QTranslator>

namespace {

/// "de_AT", "de", "en": the nearest tables first.
QStringList languagesFor(const QString &language)
{
    QStringList languages;
    QString nearest = language;
    nearest.replace(QLatin1Char('-'), QLatin1Char('_'));
    while (!nearest.isEmpty()) {
        languages.append(nearest);
        nearest.truncate(qMax(nearest.lastIndexOf(QLatin1Char('_')), qsizetype(0)));
    }
    languages.append(QStringLiteral("en"));
    languages.removeDuplicates();
    return languages;
}

} // namespace

ZELKStringTables::ZELKStringTables(const QString &folder, const QString &language)
{
    for (const QString &name : languagesFor(language)) {
        // QTranslator looks for shorter names by itself when a file is missing; it shall not.
        const QString path = folder + QStringLiteral("/lullwatch_") + name + QStringLiteral(".qm");
        auto translator = std::make_unique<QTranslator>();
        if (QFileInfo(path).isFile() && translator->load(path))
            m_translators.push_back(std::move(translator));
    }
}

ZELKStringTables::~ZELKStringTables() = default;

QString ZELKStringTables::lookUp(const QString &table, const QString &key) const
{
    if (key.isEmpty())
        return {};
    const QByteArray context = table.toUtf8();
    const QByteArray source = key.toUtf8();
    for (const auto &translator : m_translators) {
        const QString text = translator->translate(context.constData(), source.constData());
        if (!text.isNull())
            return text;
    }
    return {};
}
