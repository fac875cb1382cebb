#pragma once

#include "ZELKAssertion.h"
#include "ZELKFormat.h"

#include <QUiLoader>
#include <QWidget>

#include <memory>
#include <vector>

class QDialog;
class ZELKBundle;

/// Loads an interface file of the main bundle, named after the class that it belongs to. Its texts are keys
/// of the string table of that name. An action's property "symbol" names its symbol. Labels that elide and
/// symbols are known to every file; the widgets of other libraries are given along.
class ZELKInterfaceLoader : public QUiLoader
{
    Q_OBJECT

public:
    static constexpr char symbolProperty[] = "symbol";

    /// A class that a file may name.
    struct Widget
    {
        QString className;
        QWidget *(*make)(QWidget *parent);
    };
    using Widgets = std::vector<Widget>;
    template <typename Type>
    static Widget widget()
    {
        return {QString::fromLatin1(Type::staticMetaObject.className()),
                [](QWidget *parent) -> QWidget * { return new Type(parent); }};
    }

    /// A missing or malformed file raises "%@ interface file is missing or malformed".
    static std::unique_ptr<QWidget> loadInterface(const ZELKBundle &mainBundle, const QString &className,
                                                  const Widgets &widgets = {});
    /// The same for a class that reports such a file in its own words: null.
    static std::unique_ptr<QWidget> loadIfSound(const ZELKBundle &mainBundle, const QString &className,
                                                const Widgets &widgets = {});
    /// As loadInterface, for a file whose root is a window of that type; any other root raises "%@ window is
    /// not connected.".
    template <typename Type>
    static std::unique_ptr<Type> loadWindow(const ZELKBundle &mainBundle, const QString &className,
                                            const Widgets &widgets = {})
    {
        std::unique_ptr<QWidget> root = loadInterface(mainBundle, className, widgets);
        auto *window = qobject_cast<Type *>(root.get());
        if (!window)
            failUnconnected(className, "window");
        [[maybe_unused]] const QWidget *handedOn = root.release();
        return std::unique_ptr<Type>(window);
    }
    /// A dialog that `window` owns and that stays in front of it, hidden yet; it raises as loadWindow does.
    /// QDialog::open makes a sheet of it, which `window` waits for; with QWidget::show both can be used.
    static QDialog *loadDialog(const ZELKBundle &mainBundle, const QString &className, QWidget &window,
                               const Widgets &widgets = {});
    /// The text of `key` in the table that belongs to the class.
    static QString text(const QString &className, const QString &key);
    /// The same for a key that begins with the class's name, as those of interface files do: "%@.%s".
    static QString textOfTopic(const QString &className, const char *topic);

    /// The object of that name; one that is missing raises "%@ %@ is not connected.".
    template <typename Type>
    static Type *outlet(const QWidget &root, const QString &className, const char *name)
    {
        if (auto *found = root.findChild<Type *>(QString::fromLatin1(name)))
            return found;
        failUnconnected(className, name);
    }

    QWidget *createWidget(const QString &className, QWidget *parent, const QString &name) override;

private:
    explicit ZELKInterfaceLoader(const Widgets &widgets);
    [[noreturn]] static void failUnconnected(const QString &className, const char *name);
    static void localise(QObject &root, const QString &className);

    Widgets m_widgets;
};
