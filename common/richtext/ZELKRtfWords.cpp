#include "ZELKRtfWords.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>

namespace {

using Group = ZELKRtfGroup;
using Parameter = std::optional<int>;
using Paragraph = ZELKParagraphStyle;

std::string_view view(QByteArrayView word)
{
    return {word.data(), std::size_t(word.size())};
}

/// Points of a length in twips; nothing on paper is longer than two metres.
double points(Parameter twips)
{
    constexpr int most = 113386;
    return std::clamp(twips.value_or(0), -most, most) / 20.0;
}

/// A word that switches on, and off with a 0 behind it.
bool isOn(Parameter parameter)
{
    return parameter.value_or(1) != 0;
}

template <bool ZELKTextAttributes::*Member>
void set(Group &group, Parameter parameter)
{
    group.attributes.*Member = isOn(parameter);
}

template <double Paragraph::*Member>
void setLength(Group &group, Parameter parameter)
{
    group.attributes.paragraph.*Member = points(parameter);
}

template <Paragraph::Alignment Alignment>
void align(Group &group, Parameter)
{
    group.attributes.paragraph.alignment = Alignment;
}

template <ZELKTabStop::Kind Kind>
void nextTab(Group &group, Parameter)
{
    group.nextTab = Kind;
}

void addTab(Group &group, Parameter parameter)
{
    constexpr qsizetype most = 64;
    QList<ZELKTabStop> &stops = group.attributes.paragraph.tabStops;
    if (stops.size() < most)
        stops.append({points(parameter), group.nextTab});
    group.nextTab = ZELKTabStop::Kind::Left;
}

void setSize(Group &group, Parameter halfPoints)
{
    constexpr int most = 3276;
    const int size = halfPoints.value_or(24);
    group.attributes.pointSize = size > 0 ? std::min(size, most) / 2.0 : Group::usualSize;
}

void forgetParagraph(Group &group, Parameter)
{
    group.attributes.paragraph = {};
    group.lineSpacing = 0;
    group.spacingIsFactor = false;
    group.nextTab = ZELKTabStop::Kind::Left;
}

void forgetCharacter(Group &group, Parameter)
{
    const Paragraph paragraph = group.attributes.paragraph;
    group.attributes = Group().attributes;
    group.attributes.paragraph = paragraph;
    group.font = Group::defaultFont;
    group.colour = 0;
    group.isHidden = false;
}

const std::unordered_map<std::string_view, ZELKRtfWords::Change> &changes()
{
    using Alignment = Paragraph::Alignment;
    using Tab = ZELKTabStop::Kind;
    constexpr auto underline = &set<&ZELKTextAttributes::underline>;
    static const std::unordered_map<std::string_view, ZELKRtfWords::Change> table{
        {"b", &set<&ZELKTextAttributes::bold>},
        {"i", &set<&ZELKTextAttributes::italic>},
        {"ul", underline},
        {"uld", underline},
        {"uldash", underline},
        {"uldb", underline},
        {"ulth", underline},
        {"ulw", underline},
        {"ulwave", underline},
        {"ulnone", [](Group &group, Parameter) { group.attributes.underline = false; }},
        {"f", [](Group &group, Parameter number) { group.font = std::max(number.value_or(0), 0); }},
        {"fs", &setSize},
        {"cf", [](Group &group, Parameter number) { group.colour = number.value_or(0); }},
        {"v", [](Group &group, Parameter on) { group.isHidden = isOn(on); }},
        {"plain", &forgetCharacter},
        {"uc",
         [](Group &group, Parameter length) { group.fallbackLength = std::max(length.value_or(1), 0); }},
        {"pard", &forgetParagraph},
        {"ql", &align<Alignment::Left>},
        {"qr", &align<Alignment::Right>},
        {"qc", &align<Alignment::Centre>},
        {"qj", &align<Alignment::Justified>},
        {"fi", &setLength<&Paragraph::firstLineIndent>},
        {"li", &setLength<&Paragraph::leftIndent>},
        {"ri", &setLength<&Paragraph::rightIndent>},
        {"sb", &setLength<&Paragraph::spacingBefore>},
        {"sa", &setLength<&Paragraph::spacingAfter>},
        {"sl", [](Group &group, Parameter length) { group.lineSpacing = length.value_or(0); }},
        {"slmult", [](Group &group, Parameter on) { group.spacingIsFactor = isOn(on); }},
        {"tqc", &nextTab<Tab::Centre>},
        {"tqr", &nextTab<Tab::Right>},
        {"tqdec", &nextTab<Tab::Decimal>},
        {"tx", &addTab}};
    return table;
}

/// Each between blanks.
constexpr std::string_view skippedDestinations =
    " annotation atnauthor atnid author bkmkend bkmkstart buptim category colorschememapping comment "
    "company creatim datafield datastore doccomm fchars ffname filetbl fldinst footer footerf footerl "
    "footerr footnote ftncn ftnsep ftnsepc generator header headerf headerl headerr hlinkbase info "
    "keywords latentstyles lchars listoverridetable listtable manager nonshppict objdata object "
    "operator pgdsctbl pict printim private revtbl revtim rsidtbl rxe shpinst stylesheet subject tc "
    "themedata title txe xe xmlnstbl ";

} // namespace

ZELKRtfWords::Change ZELKRtfWords::change(QByteArrayView word)
{
    const auto found = changes().find(view(word));
    return found == changes().end() ? nullptr : found->second;
}

char16_t ZELKRtfWords::character(QByteArrayView word)
{
    static const std::unordered_map<std::string_view, char16_t> table{
        {"par", u'\n'},        {"sect", u'\n'},     {"row", u'\n'},      {"page", u'\f'},
        {"line", 0x2028},      {"tab", u'\t'},      {"cell", u'\t'},     {"emdash", 0x2014},
        {"endash", 0x2013},    {"emspace", 0x2003}, {"enspace", 0x2002}, {"qmspace", 0x2005},
        {"bullet", 0x2022},    {"lquote", 0x2018},  {"rquote", 0x2019},  {"ldblquote", 0x201C},
        {"rdblquote", 0x201D}, {"ltrmark", 0x200E}, {"rtlmark", 0x200F}, {"zwj", 0x200D},
        {"zwnj", 0x200C},      {"zwbo", 0x200B},    {"zwnbo", 0x2060}};
    const auto found = table.find(view(word));
    return found == table.end() ? u'\0' : found->second;
}

char16_t ZELKRtfWords::characterOfSymbol(char symbol)
{
    switch (symbol) {
    case '\\':
    case '{':
    case '}':
        return char16_t(symbol);
    case '~':
        return 0x00A0;
    case '_':
        return 0x2011;
    case '-':
        return 0x00AD;
    case '\t':
        return u'\t';
    case '\r':
    case '\n':
        return u'\n';
    default:
        return 0;
    }
}

bool ZELKRtfWords::isSkippedDestination(QByteArrayView word)
{
    const std::string padded = ' ' + std::string(view(word)) + ' ';
    return skippedDestinations.find(padded) != std::string_view::npos;
}
