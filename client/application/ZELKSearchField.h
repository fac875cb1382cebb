#pragma once

#include <QLineEdit>

class QToolButton;
class ZELKSymbolLabel;

/// Where the text to filter by is typed. Escape empties it, and leaves it when it is empty; the arrow keys
/// and Return go on to the list.
class ZELKSearchField : public QLineEdit
{
    Q_OBJECT

public:
    explicit ZELKSearchField(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user is done with the field, and looks at what it left in the list.
    void finished();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QSize sizeForCharacters(int count) const;
    void placeSymbols();
    void colourPlaceholder();

    // A line edit's own symbols stay small, whatever the font.
    ZELKSymbolLabel *m_glass;
    QToolButton *m_clear;
};
