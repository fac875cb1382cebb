#pragma once

#include <QImage>
#include <QMap>
#include <QString>

/// Pictures of the real window, over the sample log in a home of its own that goes afterwards.
class ZELKGuidePictures
{
public:
    explicit ZELKGuidePictures(const QString &bundleFolder)
        : m_bundleFolder(bundleFolder)
    {
    }

    /// By name; each with two pixels for a point. What the window lacks is thrown.
    QMap<QString, QImage> take() const;

private:
    QString m_bundleFolder;
};
