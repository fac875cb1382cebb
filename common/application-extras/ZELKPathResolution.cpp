#include "ZELKPathResolution.h"

#include "ZELKDesktopEntry.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <filesystem>

namespace {

using namespace ZELKPathResolution;

/// As many as the system follows itself.
constexpr int mostLinks = 40;

/// Where one path has led so far, and what is still to be walked.
class Walk
{
public:
    Walk(const QString &path, const QString &folder)
        : m_reached(path.startsWith(u'/') ? QString() : folder)
    {
        append(path);
    }

    Result run()
    {
        while (!m_ahead.isEmpty()) {
            const QString component = m_ahead.takeFirst();
            if (component == QLatin1String(".."))
                m_reached.truncate(std::max<qsizetype>(0, m_reached.lastIndexOf(u'/')));
            else if (const Outcome outcome = step(component); outcome != Outcome::Resolved)
                return {outcome, m_reached};
        }
        return {Outcome::Resolved, m_reached.isEmpty() ? QStringLiteral("/") : m_reached};
    }

private:
    /// Ahead of what is ahead already.
    void append(const QString &path)
    {
        QStringList components = path.split(u'/', Qt::SkipEmptyParts);
        components.removeAll(QStringLiteral("."));
        m_ahead = components + m_ahead;
    }

    Outcome step(const QString &component)
    {
        const QString before = m_reached;
        m_reached += u'/' + component;
        const QFileInfo info(m_reached);
        const QString target = targetOf(info);
        if (!target.isEmpty()) {
            if (++m_links > mostLinks)
                return Outcome::Loop;
            m_reached = target.startsWith(u'/') ? QString() : before;
            append(target);
            return Outcome::Resolved;
        }
        const bool isThere = info.exists() && (m_ahead.isEmpty() || info.isDir());
        return isThere ? Outcome::Resolved : Outcome::Missing;
    }

    /// Empty for what is no link.
    static QString targetOf(const QFileInfo &info)
    {
        if (info.isSymLink())
            return linkText(info.filePath());
        if (info.isFile() && info.suffix() == QLatin1String("desktop"))
            if (const auto entry = ZELKDesktopEntry::read(info.filePath()))
                return entry->linkedPath();
        return {};
    }

    /// As it was written; Qt would take ".." away before it was walked.
    static QString linkText(const QString &path)
    {
        std::error_code failure;
        return QFile::decodeName(
            std::filesystem::read_symlink(QFile::encodeName(path).toStdString(), failure).c_str());
    }

    QString m_reached; // without a slash at its end
    QStringList m_ahead;
    int m_links = 0;
};

} // namespace

Result ZELKPathResolution::resolve(const QString &path, const QString &folder)
{
    return Walk(path, folder).run();
}
