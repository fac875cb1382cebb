#pragma once

#include <QDBusMessage>
#include <QString>
#include <QVariant>

#include <optional>
#include <vector>

/// One thing that scripts can address, as the bus sees it: made when it is asked for, gone after the answer.
class ZELKScriptObject
{
public:
    /// What went wrong with a request; the name is one of D-Bus or of ours.
    struct Error
    {
        QString name;
        QString text;
        int number = 0; ///< follows the text in the answer when it is not 0
    };
    struct Property
    {
        QString name;
        QString type; ///< D-Bus signature
        bool isWritable = false;
        /// Told only when it is asked for by name: it may be as long as the log.
        bool isExplicit = false;
        QString purpose = {};
    };
    struct Argument
    {
        QString name;
        QString type;
        bool isOut = false;
    };
    struct Method
    {
        QString name;
        std::vector<Argument> arguments;
        QString purpose;
    };

    static QString errorName() { return QStringLiteral("org.zelk.lullwatch.ScriptError"); }

    virtual ~ZELKScriptObject() = default;
    virtual QString interface() const = 0;
    virtual std::vector<Property> properties() const = 0;
    virtual std::vector<Method> methods() const { return {}; }
    /// Names of the objects below that are worth listing.
    virtual QStringList children() const { return {}; }
    /// Of one of the properties.
    virtual QVariant value(const QString &property) const = 0;
    /// Of one that is writable.
    virtual std::optional<Error> setValue(const QString & /*property*/, const QVariant & /*value*/)
    {
        return std::nullopt;
    }
    /// One of the methods, with arguments of its signature.
    virtual std::optional<Error> call(const QString & /*method*/, const QVariantList & /*arguments*/,
                                      QVariantList & /*answer*/)
    {
        return std::nullopt;
    }

    std::optional<Property> property(const QString &name) const;
    /// The interface as XML.
    QString introspection() const;
};
