#pragma once

#include "ZELKAttributedString.h"

#include <QTextEdit>

/// A text of the inspector, as high as it is: it can be selected and copied, with the mouse and with keys,
/// and not changed. Where rows have cells, these are divided by tabs in what is copied.
class ZELKInspectorTextView : public QTextEdit
{
    Q_OBJECT
    Q_PROPERTY(int mostLines READ mostLines WRITE setMostLines)

public:
    explicit ZELKInspectorTextView(QWidget *parent = nullptr);

    void setAttributedText(const ZELKAttributedString &text);
    /// Of so many lines it scrolls what is longer; 0 for a text that is never too long.
    int mostLines() const { return m_mostLines; }
    void setMostLines(int lines);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, 0}; }

Q_SIGNALS:
    /// A place in the view where the user's keys are.
    void caretMoved(const QRect &place);

protected:
    /// Makes the document what it is to be, in the present font and colours.
    virtual void fill(QTextDocument &document) const;
    void refill();

    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    QMimeData *createMimeDataFromSelection() const override;

private:
    ZELKAttributedString m_text;
    int m_mostLines = 0;
};
