#pragma once

#include "ZELKDictionary.h"

#include <QString>

#include <memory>

class ZELKStringTables;

/// A folder with an Info.plist, resources, string tables and, for a program, its executable.
///
///   BUNDLE/Info.plist
///   BUNDLE/NAME.TYPE                     resources
///   BUNDLE/translations/lullwatch_LL.qm  string tables, the table's name as context
class ZELKBundle
{
public:
    /// An empty bundle: no path, no Info.plist; look-ups of texts answer the key.
    ZELKBundle();
    /// `language` chooses the tables ("en_GB", falling back to "en"); English where the language has none.
    explicit ZELKBundle(const QString &path, const QString &language = QStringLiteral("en"));
    ~ZELKBundle();

    /// The bundle that belongs to an executable: $ZELK_MAIN_BUNDLE when set, else ../share/lullwatch beside
    /// the executable's folder.
    static QString mainBundlePath(const QString &executableFolder);

    QString path() const { return m_path; }
    /// True when the Info.plist was there and was a dictionary.
    bool isValid() const { return m_valid; }
    const ZELKDictionary &infoDictionary() const { return m_info; }
    /// An invalid variant when Info.plist lacks the key.
    QVariant objectForInfoDictionaryKey(const QString &key) const { return m_info.value(key); }
    QString bundleIdentifier() const { return m_info.string(QStringLiteral("CFBundleIdentifier")); }
    /// The absolute path named by CFBundleExecutable; empty without one.
    QString executablePath() const;
    /// The path of a resource that exists, else empty.
    QString pathForResource(const QString &name, const QString &type) const;
    /// The text of `key` in `table`; else `value`, or the key when `value` is empty.
    QString localizedStringForKey(const QString &key, const QString &value, const QString &table) const;

private:
    QString m_path;
    bool m_valid = false;
    ZELKDictionary m_info;
    std::unique_ptr<const ZELKStringTables> m_tables;
};
