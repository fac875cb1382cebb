#include "ZELKRtfWriter.h"

#include "ZELKRtfBody.h"
#include "ZELKRtfLooks.h"

QByteArray ZELKRtfWriter::write(const ZELKAttributedString &text)
{
    ZELKRtfLooks looks;
    for (const ZELKAttributedString::Run &run : text.runs())
        looks.add(run.attributes);
    QByteArray out = looks.head();
    ZELKRtfBody(looks).append(out, text);
    return out + ZELKRtfBody::tail;
}
