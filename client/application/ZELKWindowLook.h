#pragma once

#include <QObject>

class QMainWindow;

/// Gives the main window the measures that its font asks for: margins, symbols and headings. Again whenever
/// the font or the style becomes another one.
class ZELKWindowLook : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. `window` outlives the look.
    explicit ZELKWindowLook(QMainWindow &window);

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// The measures were taken anew.
    void measured();

private:
    void measure();
    void measureToolBar() const;
    void enlarge(const char *label, double factor) const;
    void setMargins(const char *layout, double horizontally, double vertically) const;

    QMainWindow &m_window;
};
