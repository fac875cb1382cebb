#include "ZELKScriptObject.h"

#include <QXmlStreamWriter>

#include <algorithm>

namespace {

void writeAnnotation(QXmlStreamWriter &writer, const char *name, const QString &value)
{
    writer.writeEmptyElement(QStringLiteral("annotation"));
    writer.writeAttribute(QStringLiteral("name"), QString::fromLatin1(name));
    writer.writeAttribute(QStringLiteral("value"), value);
}

void writeProperty(QXmlStreamWriter &writer, const ZELKScriptObject::Property &property)
{
    writer.writeStartElement(QStringLiteral("property"));
    writer.writeAttribute(QStringLiteral("name"), property.name);
    writer.writeAttribute(QStringLiteral("type"), property.type);
    writer.writeAttribute(QStringLiteral("access"),
                          property.isWritable ? QStringLiteral("readwrite") : QStringLiteral("read"));
    writeAnnotation(writer, "org.freedesktop.DBus.Property.EmitsChangedSignal", QStringLiteral("false"));
    if (property.isExplicit)
        writeAnnotation(writer, "org.zelk.lullwatch.Explicit", QStringLiteral("true"));
    if (!property.purpose.isEmpty())
        writeAnnotation(writer, "org.gtk.GDBus.DocString", property.purpose);
    writer.writeEndElement();
}

void writeMethod(QXmlStreamWriter &writer, const ZELKScriptObject::Method &method)
{
    writer.writeStartElement(QStringLiteral("method"));
    writer.writeAttribute(QStringLiteral("name"), method.name);
    for (const ZELKScriptObject::Argument &argument : method.arguments) {
        writer.writeEmptyElement(QStringLiteral("arg"));
        writer.writeAttribute(QStringLiteral("name"), argument.name);
        writer.writeAttribute(QStringLiteral("type"), argument.type);
        writer.writeAttribute(QStringLiteral("direction"),
                              argument.isOut ? QStringLiteral("out") : QStringLiteral("in"));
    }
    writeAnnotation(writer, "org.gtk.GDBus.DocString", method.purpose);
    writer.writeEndElement();
}

} // namespace

std::optional<ZELKScriptObject::Property> ZELKScriptObject::property(const QString &name) const
{
    const std::vector<Property> all = properties();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Property &property) { return property.name == name; });
    if (found == all.end())
        return std::nullopt;
    return *found;
}

QString ZELKScriptObject::introspection() const
{
    QString xml;
    QXmlStreamWriter writer(&xml);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(2);
    writer.writeStartElement(QStringLiteral("interface"));
    writer.writeAttribute(QStringLiteral("name"), interface());
    for (const Property &property : properties())
        writeProperty(writer, property);
    for (const Method &method : methods())
        writeMethod(writer, method);
    writer.writeEndElement();
    for (const QString &child : children()) {
        writer.writeEmptyElement(QStringLiteral("node"));
        writer.writeAttribute(QStringLiteral("name"), child);
    }
    writer.writeEndDocument(); // finishes the last of them
    return xml;
}
