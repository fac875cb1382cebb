#pragma once

#include <QString>

#include <memory>
#include <vector>

class QTranslator;

/// The string tables of one language over those of English, made by Qt Linguist: the context is the table's
/// name, the source text the key.
class ZELKStringTables
{
public:
    /// Reads FOLDER/lullwatch_LANGUAGE.qm and FOLDER/lullwatch_en.qm; those that are missing are passed over.
    ZELKStringTables(const QString &folder, const QString &language);
    ~ZELKStringTables();

    /// A null string when no table has the key.
    QString lookUp(const QString &table, const QString &key) const;

private:
    std::vector<std::unique_ptr<QTranslator>> m_translators;
};
