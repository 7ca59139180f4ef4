#include "fix_rules.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "fix_times.h"
#include "text_tools.h"

static constexpr size_t NOWHERE = std::string_view::npos;

// A finding, its place in the text, and the line that it is on.
struct FixPlace {
    const ZyrFinding &stFinding;
    size_t uiAt;
    size_t uiBytes;
    size_t uiLine;
};

static bool Is_Empty(std::string_view strLine)
{
    return strLine.find_first_not_of(" \t") == NOWHERE;
}

static bool Is_NumberLine(std::string_view strLine)
{
    return !Is_Empty(strLine) && strLine.find_first_not_of("0123456789 \t") == NOWHERE;
}

static std::string Get_Text(const FixPlan &stPlan, const FixPlace &stPlace)
{
    return stPlan.stText.Get().substr(stPlace.uiAt, stPlace.uiBytes);
}

static void Replace(FixPlan &stPlan, const FixPlace &stPlace, size_t uiBytes, const std::string &strNew,
                    const std::string &strWhat)
{
    stPlan.Add(stPlace.uiAt, uiBytes, strNew, stPlace.stFinding.pszCode, strWhat);
}

// ------------------------------------------------------------------------------------------------- lines

static std::string Number_Entry(const FixPlan &stPlan, size_t uiLine)
{
    size_t uiEntries = 1;
    for (size_t ui = 0; ui < uiLine; ++ui)
        uiEntries += Read_TimeLine(stPlan.uiFormat, stPlan.stText.Get_Line(ui)) ? 1 : 0;
    return std::to_string(uiEntries);
}

static void Fix_TimeLine(FixPlan &stPlan, const FixPlace &stPlace)
{
    const std::string_view strLine = stPlan.stText.Get_Line(stPlace.uiLine);
    std::optional<TimeLine> stTimes = Read_TimeLine(stPlan.uiFormat, strLine);
    if (!stTimes || stTimes->llEnd < 0) return;
    const bool bNumber = stPlan.uiFormat == ZYR_CAPTIONS_SUBRIP &&
                         std::string_view(stPlace.stFinding.pszCode) == "ZYR-SRT-004";
    const std::string strNumber = bNumber ? Number_Entry(stPlan, stPlace.uiLine) + "\n" : "";
    const std::string strTimes = Write_TimeLine(stPlan.uiFormat, *stTimes);
    stPlan.Add(stPlan.stText.Get_Start(stPlace.uiLine), strLine.size(), strNumber + strTimes,
               stPlace.stFinding.pszCode,
               bNumber ? "a number and the times " + strTimes + " written"
                       : "the times written as " + strTimes);
}

static void Fix_TimeLineText(FixPlan &stPlan, const FixPlace &stPlace)
{
    size_t uiFirst = stPlace.uiAt;
    while (uiFirst > 0 && stPlan.stText.Get()[uiFirst - 1] == ' ') --uiFirst;
    stPlan.Add(uiFirst, stPlace.uiAt - uiFirst, "\n", stPlace.stFinding.pszCode,
               "the text put on a line of its own");
}

// An entry or a frame begins here, and the box does not see it.
static void Fix_Swallowed(FixPlan &stPlan, const FixPlace &stPlace)
{
    const FixText &stText = stPlan.stText;
    const bool bSubRip = stPlan.uiFormat == ZYR_CAPTIONS_SUBRIP;
    const bool bNumber = stPlace.uiLine > 0 && Is_NumberLine(stText.Get_Line(stPlace.uiLine - 1));
    const size_t uiFirst = bSubRip && bNumber ? stPlace.uiLine - 1 : stPlace.uiLine;
    const std::string strNumber = bSubRip && !bNumber ? Number_Entry(stPlan, stPlace.uiLine) + "\n" : "";
    const size_t uiBlank =
        uiFirst > 0 && Is_Empty(stText.Get_Line(uiFirst - 1)) ? stText.Get_Line(uiFirst - 1).size() : 0;
    const size_t uiAt = stText.Get_Start(uiFirst);
    if (uiBlank > 0) // a line of blanks becomes the empty one
        stPlan.Add(uiAt - 1 - uiBlank, uiBlank + 1, "\n" + strNumber, stPlace.stFinding.pszCode,
                   "blanks taken out of an empty line");
    else
        stPlan.Add(uiAt, 0, "\n" + strNumber, stPlace.stFinding.pszCode, "an empty line put in front");
}

// Text behind an empty line goes to the text before it.
static void Fix_BehindEmpty(FixPlan &stPlan, const FixPlace &stPlace)
{
    const FixText &stText = stPlan.stText;
    size_t uiFirst = stPlace.uiLine;
    while (uiFirst > 0 && Is_Empty(stText.Get_Line(uiFirst - 1))) --uiFirst;
    if (uiFirst == 0 || uiFirst == stPlace.uiLine) return;
    const size_t uiAt = stText.Get_Start(uiFirst);
    stPlan.Add(uiAt, stText.Get_Start(stPlace.uiLine) - uiAt, "", stPlace.stFinding.pszCode,
               "the empty line in front taken out");
}

static void Fix_EmptyLine(FixPlan &stPlan, const FixPlace &stPlace)
{
    Replace(stPlan, stPlace, 1, "", "an empty line taken out");
}

static void Fix_Refused(FixPlan &stPlan, const FixPlace &stPlace)
{
    for (size_t uiLine = 0; stPlan.uiFormat == ZYR_CAPTIONS_SUBVIEWER && uiLine < stPlan.stText.Count_Lines();
         ++uiLine) {
        if (!Read_TimeLine(stPlan.uiFormat, stPlan.stText.Get_Line(uiLine))) continue;
        return stPlan.Add(stPlan.stText.Get_Start(uiLine), 0, "[SUBTITLE]\n", stPlace.stFinding.pszCode,
                          "the field [SUBTITLE] put in front of the first frame");
    }
}

// The time line of a caption stands on its first line or soon behind it.
static std::optional<size_t> Find_TimeLine(const FixPlan &stPlan, size_t uiLine)
{
    static constexpr size_t NEAR = 8;
    for (size_t ui = uiLine; ui < std::min(uiLine + NEAR, stPlan.stText.Count_Lines()); ++ui)
        if (Read_TimeLine(stPlan.uiFormat, stPlan.stText.Get_Line(ui))) return ui;
    return std::nullopt;
}

// As long as the text takes to read, but not into the next caption.
static void Fix_Never(FixPlan &stPlan, const FixPlace &stPlace)
{
    static constexpr int64_t READ_MS = 60; // a character
    const std::optional<size_t> uiLine = Find_TimeLine(stPlan, stPlace.uiLine);
    if (!uiLine) return;
    TimeLine stTimes = *Read_TimeLine(stPlan.uiFormat, stPlan.stText.Get_Line(*uiLine));
    const ZyrCaptions *const pstCaptions = zyrFindings_getCaptions(stPlan.pstFindings);
    ZyrCaption stCaption;
    zyrCaptions_get(pstCaptions, stPlace.stFinding.uiCaption, &stCaption);
    stTimes.llEnd = stTimes.llStart + std::clamp<int64_t>(READ_MS * stCaption.uiTextBytes, 1000, 5000);
    ZyrCaption stNext;
    if (zyrCaptions_get(pstCaptions, stPlace.stFinding.uiCaption + 1, &stNext) == ZYR_CAPTIONS_OK &&
        stNext.iStart > stTimes.llStart)
        stTimes.llEnd = std::min<int64_t>(stTimes.llEnd, stNext.iStart);
    const std::string strNew = Write_TimeLine(stPlan.uiFormat, stTimes);
    stPlan.Add(stPlan.stText.Get_Start(*uiLine), stPlan.stText.Get_Line(*uiLine).size(), strNew,
               stPlace.stFinding.pszCode, "an end put in that its text can be read until");
}

static void Fix_Order(FixPlan &stPlan, const FixPlace & /*stPlace*/)
{
    stPlan.bSort = true;
}

// ------------------------------------------------------------------------------------------------- text

static void Append_Utf8(uint32_t uiCharacter, std::string &strOut)
{
    if (uiCharacter < 0x80) {
        strOut += static_cast<char>(uiCharacter);
        return;
    }
    if (uiCharacter < 0x800) {
        strOut += static_cast<char>(0xC0 | (uiCharacter >> 6));
    } else {
        strOut += static_cast<char>(0xE0 | (uiCharacter >> 12));
        strOut += static_cast<char>(0x80 | ((uiCharacter >> 6) & 0x3F));
    }
    strOut += static_cast<char>(0x80 | (uiCharacter & 0x3F));
}

// What stands in for a character that takes four bytes of UTF-8.
static const char *Find_Substitute(std::string_view strCharacter)
{
    static constexpr struct {
        const char *pszFirst, *pszLast, *pszNew;
    } SUBSTITUTES[] = {
        {"\xF0\x9F\x8E\xB5", "\xF0\x9F\x8E\xB5", "\xE2\x99\xAA"}, // a note
        {"\xF0\x9F\x8E\xB6", "\xF0\x9F\x8E\xBC", "\xE2\x99\xAB"}, // notes
        {"\xF0\x9F\x92\x93", "\xF0\x9F\x92\x9F", "\xE2\x99\xA5"}, // hearts
        {"\xF0\x9F\x98\x80", "\xF0\x9F\x99\x84", "\xE2\x98\xBA"}, // faces
    };
    for (const auto &stRow : SUBSTITUTES)
        if (strCharacter >= stRow.pszFirst && strCharacter <= stRow.pszLast) return stRow.pszNew;
    return "*";
}

static void Fix_Astral(FixPlan &stPlan, const FixPlace &stPlace)
{
    static constexpr size_t BYTES = 4;
    const std::string strText = Get_Text(stPlan, stPlace);
    std::string strNew;
    for (size_t ui = 0; ui < strText.size();) {
        const bool bAstral = (strText[ui] & 0xF8) == 0xF0 && ui + BYTES <= strText.size();
        strNew += bAstral ? Find_Substitute(std::string_view(strText).substr(ui, BYTES))
                          : std::string(1, strText[ui]);
        ui += bAstral ? BYTES : 1;
    }
    Replace(stPlan, stPlace, stPlace.uiBytes, strNew, "\"" + strText + "\" replaced by \"" + strNew + "\"");
}

// The character of an entity that the box leaves as it is: those of HTML that it lacks, other letter cases, and
// hexadecimal numbers.
static std::string Decode_Entity(const std::string &strEntity)
{
    static constexpr struct {
        const char *pszName;
        uint32_t uiCharacter;
    } NAMES[] = {{"bull", 0x2022},  {"hellip", 0x2026}, {"prime", 0x2032}, {"oline", 0x203E},
                 {"frasl", 0x2044}, {"circ", 0x2C6},    {"tilde", 0x2DC},  {"ensp", ' '},
                 {"emsp", ' '},     {"thinsp", ' '},    {"zwnj", 0x200C},  {"zwj", 0x200D},
                 {"lrm", 0x200E},   {"rlm", 0x200F},    {"apos", '\''},    {"amp", '&'},
                 {"quot", '"'},     {"nbsp", ' '},      {"copy", 0xA9},    {"reg", 0xAE},
                 {"lt", '<'},       {"gt", '>'},        {"num", '#'},      {"lowbar", '_'}};
    std::string strOut;
    const std::string strName = Lower_Case(strEntity.substr(1, strEntity.find(';') - 1));
    for (const auto &stRow : NAMES)
        if (strName == stRow.pszName) Append_Utf8(stRow.uiCharacter, strOut);
    const int iBase = strName.starts_with("#x") ? 16 : 10;
    const size_t uiDigits = iBase == 16 ? 2 : 1;
    uint32_t uiNumber = 0;
    if (strName.starts_with("#") && strName.size() > uiDigits &&
        std::from_chars(strName.data() + uiDigits, strName.data() + strName.size(), uiNumber, iBase).ptr ==
            strName.data() + strName.size() &&
        uiNumber >= ' ' && uiNumber < 0xD800)
        Append_Utf8(uiNumber, strOut);
    return strOut == "<" ? "&lt;" : strOut;
}

static void Fix_Entity(FixPlan &stPlan, const FixPlace &stPlace)
{
    const std::string strEntity = Get_Text(stPlan, stPlace);
    const std::string strNew = Decode_Entity(strEntity);
    if (strNew.empty()) return;
    Replace(stPlan, stPlace, stPlace.uiBytes, strNew, strEntity + " written as \"" + strNew + "\"");
}

static void Fix_OpenTag(FixPlan &stPlan, const FixPlace &stPlace)
{
    Replace(stPlan, stPlace, 1, "&lt;", "\"<\" written as &lt;");
}

static void Fix_Tag(FixPlan &stPlan, const FixPlace &stPlace)
{
    const std::string strTag = Lower_Case(Get_Text(stPlan, stPlace));
    if (strTag.starts_with("<br/") || strTag.starts_with("<br\\"))
        Replace(stPlan, stPlace, stPlace.uiBytes, "<br>", "written as <br>");
}

static void Fix_Override(FixPlan &stPlan, const FixPlace &stPlace)
{
    const std::string strText = Get_Text(stPlan, stPlace);
    const size_t uiClose = strText.find('}');
    if (strText.starts_with("{\\") && uiClose != NOWHERE)
        Replace(stPlan, stPlace, uiClose + 1, "", strText.substr(0, uiClose + 1) + " taken out");
}

static void Fix_Colour(FixPlan &stPlan, const FixPlace &stPlace)
{
    std::string strColour = Lower_Case(Get_Text(stPlan, stPlace));
    const std::string strDigits = strColour.substr(strColour.starts_with("#") ? 1 : 0);
    const size_t uiGrey = strColour.find("grey");
    if (strDigits.size() == 3 && strDigits.find_first_not_of("0123456789abcdef") == NOWHERE)
        strColour = {'#', strDigits[0], strDigits[0], strDigits[1], strDigits[1], strDigits[2], strDigits[2]};
    else if (uiGrey != NOWHERE)
        strColour.replace(uiGrey, 4, "gray");
    else
        return;
    Replace(stPlan, stPlace, stPlace.uiBytes, strColour, "the colour written as " + strColour);
}

// Where it is a <br/> that the box does not know, that is mended.
static void Fix_Joined(FixPlan &stPlan, const FixPlace &stPlace)
{
    if (Lower_Case(Get_Text(stPlan, stPlace)).find("<br/") != NOWHERE) return;
    size_t uiAt = stPlace.uiAt + 1;
    while (uiAt < stPlan.stText.Get().size() && (stPlan.stText.Get()[uiAt] & 0xC0) == 0x80) ++uiAt;
    stPlan.Add(uiAt, 0, " ", stPlace.stFinding.pszCode, "a blank put between the words");
}

static void Fix_Added(FixPlan &stPlan, const FixPlace &stPlace)
{
    if (Lower_Case(Get_Text(stPlan, stPlace)).starts_with("[br]"))
        Replace(stPlan, stPlace, 4, "", "[br] at the beginning of a line taken out");
}

// Text that an open brace hides from the box.
static void Fix_Missing(FixPlan &stPlan, const FixPlace &stPlace)
{
    if (stPlan.uiFormat == ZYR_CAPTIONS_SSA && stPlan.stText.Get()[stPlace.uiAt] == '{')
        Replace(stPlan, stPlace, 1, "(", "the brace that nothing closes written as a bracket");
}

// ------------------------------------------------------------------------------------------------- SAMI and SSA

static std::string Get_FirstClass(const FixPlan &stPlan)
{
    ZyrCaptionClass stClass;
    zyrCaptions_getClass(zyrFindings_getCaptions(stPlan.pstFindings), 0, &stClass);
    return stClass.pszName == nullptr ? "" : stClass.pszName;
}

// Text in front of a SYNC's first paragraph.
static void Fix_NotShown(FixPlan &stPlan, const FixPlace &stPlace)
{
    const std::string strText = Lower_Case(stPlan.stText.Get().substr(stPlace.uiAt, 5));
    const std::string strClass = Get_FirstClass(stPlan);
    const std::string strNew = strClass.empty() ? "<P>" : "<P Class=" + strClass + ">";
    const size_t uiClose = strText == "<sync" ? stPlan.stText.Get().find('>', stPlace.uiAt) : stPlace.uiAt;
    if (strText.starts_with("<p") || uiClose == NOWHERE) return;
    stPlan.Add(uiClose + (strText == "<sync" ? 1 : 0), 0, strNew, stPlace.stFinding.pszCode,
               strNew + " put in front of the text");
}

static void Fix_Comment(FixPlan &stPlan, const FixPlace &stPlace)
{
    const std::string &strText = stPlan.stText.Get();
    const size_t uiFirst = strText.rfind("<!--", stPlace.uiAt);
    const size_t uiEnd = strText.find("-->", stPlace.uiAt);
    if (uiFirst != NOWHERE && uiEnd != NOWHERE)
        stPlan.Add(uiFirst, uiEnd + 3 - uiFirst, "", stPlace.stFinding.pszCode, "the comment taken out");
}

static void Fix_Overrides(FixPlan &stPlan, const FixPlace &stPlace)
{
    const std::string strText = Get_Text(stPlan, stPlace);
    std::string strNew;
    for (size_t ui = 0; ui < strText.size(); ++ui) {
        if (strText[ui] == '\\' && ui > 1) strNew += "}{";
        strNew += strText[ui];
    }
    Replace(stPlan, stPlace, stPlace.uiBytes, strNew, strText + " written as " + strNew);
}

static void Fix_Style(FixPlan &stPlan, const FixPlace &stPlace)
{
    if (Get_Text(stPlan, stPlace).starts_with("*"))
        Replace(stPlan, stPlace, 1, "", "the star in front of the style's name taken out");
}

using FixStep = void (*)(FixPlan &, const FixPlace &);

static void Split_Caption(FixPlan &stPlan, const FixPlace &stPlace)
{
    Plan_Split(stPlan, stPlace.stFinding, stPlace.uiAt);
}

void Plan_Finding(FixPlan &stPlan, const ZyrFinding &stFinding, size_t uiAt)
{
    static constexpr struct {
        std::string_view strCode;
        FixStep pfStep;
    } STEPS[] = {
        {"ZYR-FILE-001", Fix_Refused},     {"ZYR-TEXT-001", Split_Caption}, {"ZYR-TEXT-004", Fix_Astral},
        {"ZYR-TEXT-005", Fix_Missing},     {"ZYR-TEXT-006", Fix_Added},     {"ZYR-TEXT-007", Fix_Joined},
        {"ZYR-TEXT-008", Fix_Tag},         {"ZYR-TEXT-009", Fix_Entity},    {"ZYR-TEXT-010", Fix_OpenTag},
        {"ZYR-TEXT-011", Fix_Colour},      {"ZYR-TEXT-012", Fix_Override},  {"ZYR-TIME-002", Fix_Order},
        {"ZYR-TIME-003", Fix_Never},       {"ZYR-SRT-001", Fix_TimeLine},   {"ZYR-SRT-002", Fix_TimeLine},
        {"ZYR-SRT-004", Fix_TimeLine},     {"ZYR-SRT-005", Fix_Swallowed},  {"ZYR-SRT-006", Fix_BehindEmpty},
        {"ZYR-SRT-008", Fix_TimeLineText}, {"ZYR-SMI-005", Fix_NotShown},   {"ZYR-SMI-007", Fix_Comment},
        {"ZYR-SUB-001", Fix_TimeLine},     {"ZYR-SUB-002", Fix_Swallowed},  {"ZYR-SUB-003", Fix_BehindEmpty},
        {"ZYR-SUB-006", Fix_EmptyLine},    {"ZYR-SSA-005", Fix_Style},      {"ZYR-SSA-008", Fix_Overrides},
        {"ZYR-SSA-009", Fix_Order},
    };
    const std::string_view strCode = stFinding.pszCode;
    for (const auto &stStep : STEPS)
        if (stStep.strCode == strCode)
            stStep.pfStep(stPlan, {stFinding, uiAt, std::string_view(stFinding.pszText).size(),
                                   stPlan.stText.Find_Line(uiAt)});
}
