#include "ZELKInstalledAgent.h"

#include <QFile>

#include <utility>

static void initialiseTemplates()
{
    Q_INIT_RESOURCE(installer);
}

QStringList ZELKInstalledAgent::unitFiles() const
{
    return {wantedFolder() + QLatin1Char('/') + unitName(),
            wantedFolder() + QLatin1Char('/') + removalPathName(), unit(), removalPath(), removalService()};
}

QByteArray ZELKInstalledAgent::filledTemplate(const QString &name) const
{
    initialiseTemplates();
    QFile file(QStringLiteral(":/lullwatch/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString text = QString::fromUtf8(file.readAll());
    const std::pair<const char *, QString> words[] = {
        {"@LABEL@", label()},     {"@USER@", user()}, {"@PROGRAM@", program()},  {"@INSTALLER@", installer()},
        {"@REQUEST@", request()}, {"@HOME@", home()}, {"@UNITS@", unitFolder()},
    };
    for (const auto &[word, value] : words)
        text.replace(QLatin1String(word), value);
    return text.toUtf8();
}
