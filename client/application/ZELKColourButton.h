#pragma once

#include <QColor>
#include <QPushButton>

/// A button that shows a colour and lets the user choose another one. While the user tries colours, each is
/// told at once; giving up tells the one before.
class ZELKColourButton : public QPushButton
{
    Q_OBJECT

public:
    explicit ZELKColourButton(QWidget *parent = nullptr);

    QColor colour() const { return m_colour; }
    /// Tells nobody.
    void setColour(const QColor &colour);

Q_SIGNALS:
    void colourChosen(const QColor &colour);

protected:
    void changeEvent(QEvent *event) override;

private:
    void choose();
    void take(const QColor &colour);
    void showColour();

    QColor m_colour = Qt::white;
};
