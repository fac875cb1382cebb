#pragma once

#include <QObject>

class QDialog;
class QWidget;
class ZELKBundle;
class ZELKColourButton;
class ZELKUserDefaults;

/// The preferences' window. What is set there holds at once; it stays open beside the main window.
class ZELKPreferences : public QObject
{
    Q_OBJECT

public:
    /// Loads the window, hidden. `window` owns it and the preferences; `defaults` must outlive both.
    ZELKPreferences(QWidget &window, const ZELKBundle &bundle, ZELKUserDefaults &defaults);

    void show();
    /// Every setting that the window shows becomes what it is initially.
    void revertToInitialValues();

private:
    void bindColour();
    void showColour();

    ZELKUserDefaults &m_defaults;
    QDialog *m_dialog;
    ZELKColourButton *m_colour;
};
