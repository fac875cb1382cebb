#include "ZELKDesktopEntry.h"

#include <QFile>
#include <QUrl>

namespace {

constexpr qint64 mostBytes = 1 << 20;

QString unescaped(QStringView text)
{
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\\' || i + 1 == text.size()) {
            plain += text[i];
            continue;
        }
        switch (text[++i].unicode()) {
        case u's':
            plain += u' ';
            break;
        case u'n':
            plain += u'\n';
            break;
        case u't':
            plain += u'\t';
            break;
        case u'r':
            plain += u'\r';
            break;
        default:
            plain += text[i];
        }
    }
    return plain;
}

/// Takes a command line apart, one character after the other.
class CommandWords
{
public:
    QStringList of(const QString &command)
    {
        for (qsizetype i = 0; i < command.size(); ++i) {
            if (takesNext(command[i]) && i + 1 < command.size()) {
                addPair(command[i], command[i + 1]);
                ++i;
            } else {
                add(command[i]);
            }
        }
        endWord();
        return m_isQuoted ? QStringList() : m_words;
    }

private:
    bool takesNext(QChar character) const { return character == u'%' || (m_isQuoted && character == u'\\'); }
    /// Of the field codes a doubled sign stands for itself; all others would be what the menu hands over.
    void addPair(QChar first, QChar second)
    {
        if (first == u'\\' || second == u'%')
            addToWord(second);
    }
    void add(QChar character)
    {
        if (character == u'"') {
            m_isQuoted = !m_isQuoted;
            m_hasWord = true;
        } else if (!m_isQuoted && character.isSpace()) {
            endWord();
        } else {
            addToWord(character);
        }
    }
    void addToWord(QChar character)
    {
        m_word += character;
        m_hasWord = true;
    }
    void endWord()
    {
        if (m_hasWord)
            m_words.append(m_word);
        m_word.clear();
        m_hasWord = false;
    }

    QStringList m_words;
    QString m_word;
    bool m_hasWord = false;
    bool m_isQuoted = false;
};

} // namespace

std::optional<ZELKDesktopEntry> ZELKDesktopEntry::read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > mostBytes)
        return std::nullopt;
    return parse(file.read(mostBytes));
}

std::optional<ZELKDesktopEntry> ZELKDesktopEntry::parse(const QByteArray &text)
{
    ZELKDesktopEntry entry;
    bool isMainGroup = false;
    bool wasThere = false;
    for (const QByteArray &bytes : text.split('\n')) {
        const QString line = QString::fromUtf8(bytes).trimmed();
        const qsizetype sign = line.indexOf(u'=');
        if (line.startsWith(u'[')) {
            isMainGroup = line == QLatin1String("[Desktop Entry]") && !wasThere;
            wasThere = wasThere || isMainGroup;
        } else if (isMainGroup && sign > 0 && !line.startsWith(u'#')) {
            entry.m_values.insert(line.first(sign).trimmed(),
                                  unescaped(QStringView(line).sliced(sign + 1).trimmed()));
        }
    }
    if (!wasThere)
        return std::nullopt;
    return entry;
}

QString ZELKDesktopEntry::linkedPath() const
{
    if (value(QStringLiteral("Type")) != QLatin1String("Link"))
        return {};
    return QUrl(value(QStringLiteral("URL"))).toLocalFile();
}

QStringList ZELKDesktopEntry::command() const
{
    return CommandWords().of(value(QStringLiteral("Exec")));
}

QByteArray ZELKDesktopEntry::escaped(QString text)
{
    text.replace(u'\\', QLatin1String("\\\\"))
        .replace(u'\n', QLatin1String("\\n"))
        .replace(u'\r', QLatin1String("\\r"));
    return text.toUtf8();
}

QByteArray ZELKDesktopEntry::quoted(const QString &word)
{
    QString quoted;
    for (const QChar character : word) {
        if (QStringView(u"\\\"`$").contains(character))
            quoted += u'\\';
        else if (character == u'%')
            quoted += character;
        quoted += character;
    }
    return '"' + escaped(quoted) + '"';
}
