#include "ZELKRtfColourTable.h"

#include <algorithm>

using Kind = ZELKRtfToken::Kind;

void ZELKRtfColourTable::take(const ZELKRtfToken &token)
{
    constexpr int full = 255;
    const int value = std::clamp(token.parameter.value_or(0), 0, full);
    if (token.kind == Kind::Text) {
        for (auto ends = std::count(token.bytes.begin(), token.bytes.end(), ';'); ends > 0; --ends)
            finish();
    } else if (token.bytes == "red") {
        m_red = value;
    } else if (token.bytes == "green") {
        m_green = value;
    } else if (token.bytes == "blue") {
        m_blue = value;
    } else if (token.bytes == "ctextone") {
        m_isText = true;
    } else if (token.bytes == "ctint") {
        m_isTinted = value < full;
    }
}

void ZELKRtfColourTable::finish()
{
    using Role = ZELKTextColour::Role;
    if (m_isText)
        m_colours.append(ZELKTextColour::of(m_isTinted ? Role::DisabledControlText : Role::ControlText));
    else if (m_red >= 0 || m_green >= 0 || m_blue >= 0)
        m_colours.append(ZELKTextColour::rgb(std::max(m_red, 0), std::max(m_green, 0), std::max(m_blue, 0)));
    else
        m_colours.append(ZELKTextColour());
    m_red = m_green = m_blue = -1;
    m_isText = m_isTinted = false;
}

ZELKTextColour ZELKRtfColourTable::colour(int number) const
{
    return m_colours.value(number);
}
