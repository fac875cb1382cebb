#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class QAction;
class QLabel;
class QMainWindow;
class QPushButton;
class ZELKSymbolLabel;

/// What stands in the list's place while there is nothing to list: why, what can be done about it, and a
/// button that does it.
class ZELKEmptyPage : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. `window` outlives the page.
    explicit ZELKEmptyPage(QMainWindow &window);

    struct Content
    {
        QString symbol; ///< as ZELKSymbolIcon has them
        QString headline;
        QString hint;              ///< may be empty
        QAction *remedy = nullptr; ///< what the button does; null for no button
        QString label = {};        ///< what it is called; empty for what the remedy is called
    };
    void show(const Content &content);

private:
    void followRemedy();

    ZELKSymbolLabel *m_icon;
    QLabel *m_headline;
    QLabel *m_hint;
    QPushButton *m_button;
    QPointer<QAction> m_remedy;
    QString m_remedyLabel;
};
