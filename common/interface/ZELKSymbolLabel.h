#pragma once

#include <QIcon>
#include <QWidget>

/// Shows one of our symbols, so many lines of its font high.
class ZELKSymbolLabel : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString symbol READ symbol WRITE setSymbol)
    Q_PROPERTY(double lines READ lines WRITE setLines)
    Q_PROPERTY(bool dimmed READ isDimmed WRITE setDimmed)

public:
    explicit ZELKSymbolLabel(QWidget *parent = nullptr);

    /// As ZELKSymbolIcon has them; one that is not there raises.
    QString symbol() const { return m_symbol; }
    void setSymbol(const QString &symbol);
    double lines() const { return m_lines; }
    void setLines(double lines);
    /// In the colour of what is disabled.
    bool isDimmed() const { return m_isDimmed; }
    void setDimmed(bool isDimmed);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_symbol;
    QIcon m_icon;
    double m_lines = 1.0;
    bool m_isDimmed = false;
};
