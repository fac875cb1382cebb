#pragma once

#include <QLabel>

/// One line of plain text that gives way: what does not fit ends in "…" and shows whole in the tool tip.
class ZELKElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ZELKElidedLabel(QWidget *parent = nullptr);

    QString fullText() const { return m_fullText; }
    /// Line breaks become spaces.
    void setFullText(const QString &text);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void elide();

    QString m_fullText;
};
