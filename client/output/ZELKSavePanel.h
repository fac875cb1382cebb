#pragma once

#include <QFileDialog>
#include <QString>

/// Asks for a file to save to: below the name stands a view of the caller's, and the name always has the
/// extension that is required of it. A sheet of its window when it is opened with open(); folders can be
/// made.
class ZELKSavePanel : public QFileDialog
{
    Q_OBJECT

public:
    explicit ZELKSavePanel(QWidget *window);

    /// Becomes a child of the panel until its owner takes it out again.
    void setAccessoryView(QWidget *view);

    /// Without the point. A name that had the former one gets the new one in its place.
    void setRequiredFileType(const QString &suffix);
    QString requiredFileType() const { return m_suffix; }

    /// What stands in the panel now.
    QString fileName() const;
    void setFileName(const QString &name);
    /// With the required extension.
    QString filePath() const { return selectedFiles().value(0); }

public Q_SLOTS:
    void accept() override;

private:
    QString withSuffix(const QString &name) const;

    QString m_suffix;
};
