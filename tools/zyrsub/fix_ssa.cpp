// Lines of SSA scripts in the one order of fields that the box reads, whatever their Format lines say.
#include "fix_rules.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "fix_times.h"
#include "text_tools.h"

static constexpr size_t NOWHERE = std::string_view::npos;

static const std::vector<std::string> DIALOGUE_FIELDS = {"marked",  "start",   "end",     "style",  "name",
                                                         "marginl", "marginr", "marginv", "effect", "text"};
static const std::vector<std::string> STYLE_FIELDS = {
    "name",       "fontname", "fontsize", "primarycolour", "secondarycolour", "tertiarycolour",
    "backcolour", "bold",     "italic",   "borderstyle",   "outline",         "shadow",
    "alignment",  "marginl",  "marginr",  "marginv",       "alphalevel",      "encoding"};
static constexpr const char *STYLE_FORMAT =
    "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, TertiaryColour, BackColour, Bold, "
    "Italic, "
    "BorderStyle, Outline, Shadow, Alignment, MarginL, MarginR, MarginV, AlphaLevel, Encoding";
static constexpr const char *EVENT_FORMAT =
    "Format: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text";

enum SsaSection : uint8_t {
    E_SECTION_NONE,
    E_SECTION_INFO,
    E_SECTION_STYLES,
    E_SECTION_EVENTS,
    E_SECTION_OTHER
};

// Where the walk through the lines stands.
struct SsaWalk {
    const FixText &stText;
    std::vector<FixEdit> astEdits = {};
    SsaSection eSection = E_SECTION_NONE;
    bool bPlus = false;                       // styles of version 4+
    std::vector<std::string> astrStyles = {}; // names of the fields, as the Format lines give them
    std::vector<std::string> astrEvents = {};
};

static std::string Trim(std::string_view strText)
{
    const size_t uiFirst = strText.find_first_not_of(" \t");
    if (uiFirst == NOWHERE) return "";
    return std::string(strText.substr(uiFirst, strText.find_last_not_of(" \t") + 1 - uiFirst));
}

// The last field takes what is left, commas and all.
static std::vector<std::string> Split_Fields(std::string_view strText, size_t uiMost)
{
    std::vector<std::string> astrFields;
    while (astrFields.size() + 1 < uiMost) {
        const size_t uiComma = strText.find(',');
        if (uiComma == NOWHERE) break;
        astrFields.emplace_back(strText.substr(0, uiComma));
        strText.remove_prefix(uiComma + 1);
    }
    astrFields.emplace_back(strText);
    return astrFields;
}

static void Replace_Line(SsaWalk &stWalk, size_t uiLine, const std::string &strNew, const char *pszCode,
                         const std::string &strWhat)
{
    const std::string_view strOld = stWalk.stText.Get_Line(uiLine);
    if (strOld != strNew)
        stWalk.astEdits.push_back({stWalk.stText.Get_Start(uiLine), strOld.size(), strNew, pszCode, strWhat});
}

static void Read_Section(SsaWalk &stWalk, size_t uiLine, const std::string &strLower)
{
    stWalk.bPlus = strLower.starts_with("[v4+ styles") || strLower.starts_with("[v4 styles+");
    stWalk.eSection = strLower.starts_with("[script info")                 ? E_SECTION_INFO
                      : strLower.starts_with("[v4 styles") || stWalk.bPlus ? E_SECTION_STYLES
                      : strLower.starts_with("[events")                    ? E_SECTION_EVENTS
                                                                           : E_SECTION_OTHER;
    if (stWalk.bPlus)
        Replace_Line(stWalk, uiLine, "[v4 Styles]", "ZYR-SSA-004", "the section named [v4 Styles]");
}

// A Format line that is cut short says nothing.
static void Read_Format(SsaWalk &stWalk, size_t uiLine, const std::string &strValue)
{
    std::vector<std::string> astrNames = Split_Fields(Lower_Case(strValue), 100);
    for (std::string &strName : astrNames) {
        strName = Trim(strName);
        if (strName == "layer") strName = "marked";
        if (strName == "actor") strName = "name";
        if (strName == "outlinecolour") strName = "tertiarycolour";
    }
    const bool bStyles = stWalk.eSection == E_SECTION_STYLES;
    const char *const pszLast = bStyles ? "encoding" : "text";
    if (astrNames.back() != pszLast || stWalk.eSection == E_SECTION_OTHER) return;
    (bStyles ? stWalk.astrStyles : stWalk.astrEvents) = astrNames;
    if (astrNames != (bStyles ? STYLE_FIELDS : DIALOGUE_FIELDS))
        Replace_Line(stWalk, uiLine, bStyles ? STYLE_FORMAT : EVENT_FORMAT,
                     bStyles ? "ZYR-SSA-006" : "ZYR-SSA-010",
                     "the fields named in the order that the box reads");
}

// From the number block of version 4+ to the numbers of version 4.
static std::string Convert_Alignment(const std::string &strValue)
{
    static constexpr std::array<const char *, 10> OLD = {"2", "1", "2", "3", "9", "10", "11", "5", "6", "7"};
    const int iNew = std::atoi(strValue.c_str());
    return iNew >= 1 && iNew <= 9 ? OLD[static_cast<size_t>(iNew)] : "2";
}

static std::string Convert_Style(const std::string &strName, const std::string &strValue, bool bPlus)
{
    if (strName == "alignment" && bPlus) return Convert_Alignment(strValue);
    if ((strName == "bold" || strName == "italic") && strValue == "-1")
        return "1"; // a sign is no number to the box
    return strValue;
}

static void Read_Style(SsaWalk &stWalk, size_t uiLine, const std::string &strValue)
{
    const std::vector<std::string> &astrNames = stWalk.astrStyles;
    const std::vector<std::string> astrOld = Split_Fields(strValue, 100);
    const bool bSame = astrNames.empty() || astrNames == STYLE_FIELDS;
    if (bSame || astrOld.size() < astrNames.size()) return;
    const bool bPlus = std::find(astrNames.begin(), astrNames.end(), "scalex") != astrNames.end();
    std::string strNew = "Style: ";
    for (const std::string &strName : STYLE_FIELDS) {
        const auto itName = std::find(astrNames.begin(), astrNames.end(), strName);
        const std::string strOne =
            itName == astrNames.end() ? "0" : Trim(astrOld[static_cast<size_t>(itName - astrNames.begin())]);
        if (!strNew.ends_with(": ")) strNew += ',';
        strNew += Convert_Style(strName, strOne, bPlus);
    }
    Replace_Line(stWalk, uiLine, strNew, "ZYR-SSA-006", "the style written with the 18 fields of version 4");
}

static std::string Get_Default(const std::string &strName)
{
    if (strName == "marked") return "Marked=0";
    return strName.starts_with("margin") ? "0" : "";
}

// The fields in the box's order; nothing when the line has fewer than its Format line.
static std::string Reorder_Dialogue(const SsaWalk &stWalk, const std::string &strValue)
{
    const std::vector<std::string> &astrNames = stWalk.astrEvents;
    const std::vector<std::string> astrOld = Split_Fields(strValue, astrNames.size());
    if (astrOld.size() < astrNames.size()) return "";
    std::string strNew = "Dialogue: ";
    for (const std::string &strName : DIALOGUE_FIELDS) {
        const auto itName = std::find(astrNames.begin(), astrNames.end(), strName);
        const std::string strOne = itName == astrNames.end()
                                       ? Get_Default(strName)
                                       : astrOld[static_cast<size_t>(itName - astrNames.begin())];
        if (!strNew.ends_with("Dialogue: ")) strNew += ',';
        strNew += strName == "text" ? strOne : Trim(strOne);
    }
    return strNew;
}

static void Read_Dialogue(SsaWalk &stWalk, size_t uiLine, const std::string &strKept,
                          const std::string &strValue)
{
    const bool bSame = stWalk.astrEvents.empty() || stWalk.astrEvents == DIALOGUE_FIELDS;
    std::string strNew = strKept;
    const char *pszCode = "ZYR-SSA-011";
    std::string strWhat = "the blanks in front of the key taken out";
    if (!bSame && !Reorder_Dialogue(stWalk, strValue).empty()) {
        strNew = Reorder_Dialogue(stWalk, strValue);
        pszCode = "ZYR-SSA-010";
        strWhat = "the fields put in the order that the box reads";
    }
    std::optional<TimeLine> stTimes = Read_TimeLine(ZYR_CAPTIONS_SSA, strNew);
    if (stTimes && stTimes->llEnd >= 0 && Write_TimeLine(ZYR_CAPTIONS_SSA, *stTimes) != strNew &&
        stTimes->llEnd >= stTimes->llStart) {
        strNew = Write_TimeLine(ZYR_CAPTIONS_SSA, *stTimes);
        if (bSame) pszCode = "ZYR-SSA-001";
        strWhat =
            bSame ? "the times written as the box reads them" : strWhat + ", and the times as it reads them";
    }
    if (stWalk.eSection == E_SECTION_NONE) {
        stWalk.eSection = E_SECTION_EVENTS;
        strNew = "[Script Info]\nScriptType: v4.00\n\n[Events]\n" + strNew;
        pszCode = "ZYR-SSA-003";
        strWhat = "the sections [Script Info] and [Events] put in front";
    }
    Replace_Line(stWalk, uiLine, strNew, pszCode, strWhat);
}

static void Read_Line(SsaWalk &stWalk, size_t uiLine)
{
    const std::string_view strLine = stWalk.stText.Get_Line(uiLine);
    const std::string strKept(strLine.substr(std::min(strLine.find_first_not_of(" \t"), strLine.size())));
    const std::string strLower = Lower_Case(strKept);
    const std::string strValue = Trim(strKept.substr(std::min(strKept.find(':') + 1, strKept.size())));
    if (strLower.starts_with("[")) return Read_Section(stWalk, uiLine, strLower);
    if (strLower.starts_with("format:")) return Read_Format(stWalk, uiLine, strValue);
    if (strLower.starts_with("style:") && stWalk.eSection == E_SECTION_STYLES) {
        if (strKept != strLine)
            Replace_Line(stWalk, uiLine, strKept, "ZYR-SSA-011", "the blanks in front of the key taken out");
        return Read_Style(stWalk, uiLine, strValue);
    }
    if (strLower.starts_with("dialogue:")) return Read_Dialogue(stWalk, uiLine, strKept, strValue);
    if (strLower.starts_with("scripttype:") && strLower.find('+') != NOWHERE)
        Replace_Line(stWalk, uiLine, "ScriptType: v4.00", "ZYR-SSA-004",
                     "the script said to be of version 4");
}

std::vector<FixEdit> Plan_SsaLines(const FixText &stText)
{
    SsaWalk stWalk{stText};
    for (size_t uiLine = 0; uiLine < stText.Count_Lines(); ++uiLine) Read_Line(stWalk, uiLine);
    return stWalk.astEdits;
}
