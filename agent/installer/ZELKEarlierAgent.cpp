#include "ZELKEarlierAgent.h"

#include "ZELKFileManager.h"

#include <QFile>
#include <QFileInfo>

ZELKEarlierAgent::ZELKEarlierAgent(const ZELKInstalledAgent &place)
    : m_place(place)
    , m_isThere(QFileInfo(place.bundle()).isDir() && QFileInfo(place.unit()).isFile())
{
}

std::optional<QString> ZELKEarlierAgent::keep()
{
    if (!m_isThere)
        return std::nullopt;
    for (const QString &path : {m_place.unit(), m_place.removalPath(), m_place.removalService(),
                                m_place.policy(), m_place.installer()}) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            m_files.insert(path, file.readAll());
    }
    return ZELKFileManager::copyFolder(m_place.bundle(), m_place.earlierBundle());
}

std::optional<QString> ZELKEarlierAgent::restore() const
{
    if (!m_isThere)
        return std::nullopt;
    if (const auto problem = ZELKFileManager::copyFolder(m_place.earlierBundle(), m_place.bundle()))
        return problem;
    for (auto file = m_files.begin(); file != m_files.end(); ++file) {
        const auto kind = file.key() == m_place.installer() ? ZELKFileManager::Kind::Program
                                                            : ZELKFileManager::Kind::Document;
        if (const auto problem = ZELKFileManager::writeFile(file.key(), file.value(), kind))
            return problem;
    }
    return std::nullopt;
}

void ZELKEarlierAgent::forget() const
{
    ZELKFileManager::remove(m_place.earlierBundle());
}
