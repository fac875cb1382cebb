#include "ZELKRtfError.h"

#include <string>

namespace {

const char *text(ZELKRtfError::Code code)
{
    switch (code) {
    case ZELKRtfError::Code::NotRichText:
        return "This is not rich text";
    case ZELKRtfError::Code::TooLarge:
        return "The rich text is too large";
    case ZELKRtfError::Code::TooDeep:
        return "The groups are nested too deeply";
    case ZELKRtfError::Code::Truncated:
        return "The rich text ends too early";
    case ZELKRtfError::Code::Unbalanced:
        return "A group is closed that was not opened";
    case ZELKRtfError::Code::MalformedByte:
        return "A byte is not written as two hexadecimal digits";
    }
    return "The rich text is damaged";
}

} // namespace

ZELKRtfError::ZELKRtfError(Code code, qsizetype offset)
    : std::runtime_error(text(code) + std::string(" (at byte ") + std::to_string(offset) + ").")
    , m_code(code)
    , m_offset(offset)
{
}
