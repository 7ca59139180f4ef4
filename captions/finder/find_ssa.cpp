// SSA lines as a person sees them, held against the captions that come of them.
#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "finder.h"

namespace
{

constexpr size_t NOWHERE = std::string_view::npos;
constexpr size_t FIELDS = 9; // before the text
constexpr size_t STYLE_FIELDS = 18;

enum DialogueField : size_t { E_FIELD_MARKED, E_FIELD_START, E_FIELD_END, E_FIELD_STYLE };

struct Dialogue {
    size_t uiLine = 0;  // its index
    size_t uiFirst = 0; // places in the file's text
    size_t uiEnd = 0;
    std::array<size_t, FIELDS + 1> auiFields = {}; // where fields begin; the last is the text
    size_t uiFields = 0;
    bool bSection = false; // in one that is read
};

// Where the scan of the lines stands.
struct Scan {
    Finder &stFinder;
    std::vector<Dialogue> astDialogues = {};
    bool bSection = false;
    bool bPlus = false; // in [V4+ Styles]
};

std::string Drop_Blanks(std::string_view strText)
{
    std::string strPlain(strText);
    std::erase(strPlain, ' ');
    return strPlain;
}

// "1:02:03.04"
std::optional<int64_t> Read_Time(std::string_view strTime)
{
    static constexpr std::string_view FORM = "0:00:00.00";
    const std::string strPlain = Drop_Blanks(strTime);
    if (strPlain.size() != FORM.size()) return std::nullopt;
    int64_t llTime = 0;
    for (size_t ui = 0; ui < FORM.size(); ++ui) {
        if (Is_Digit(strPlain[ui]) != Is_Digit(FORM[ui])) return std::nullopt;
        if (!Is_Digit(FORM[ui]) && strPlain[ui] != FORM[ui]) return std::nullopt;
        if (Is_Digit(FORM[ui])) llTime = llTime * (ui == 2 || ui == 5 ? 6 : 10) + (strPlain[ui] - '0');
    }
    return llTime * 10;
}

std::string_view Get_Field(const Finder &stFinder, const Dialogue &stLine, size_t uiField)
{
    if (uiField >= stLine.uiFields) return "";
    const size_t uiEnd = uiField + 1 < stLine.uiFields ? stLine.auiFields[uiField + 1] - 1 : stLine.uiEnd;
    return std::string_view(stFinder.stFile.Get_Text())
        .substr(stLine.auiFields[uiField], uiEnd - stLine.auiFields[uiField]);
}

Dialogue Read_Dialogue(const PlainFile &stFile, size_t uiLine, size_t uiKey, bool bSection)
{
    const std::string_view strLine = stFile.Get_Line(uiLine);
    Dialogue stDialogue;
    stDialogue.uiLine = uiLine;
    stDialogue.uiFirst = stFile.Get_Lines()[uiLine].uiText;
    stDialogue.uiEnd = stDialogue.uiFirst + strLine.size();
    stDialogue.bSection = bSection;
    for (size_t uiAt = uiKey; uiAt != NOWHERE && stDialogue.uiFields <= FIELDS;
         uiAt = strLine.find(',', uiAt)) {
        if (stDialogue.uiFields > 0) ++uiAt;
        stDialogue.auiFields[stDialogue.uiFields++] = stDialogue.uiFirst + uiAt;
    }
    return stDialogue;
}

void Add_Line(Finder &stFinder, FindingRule eRule, size_t uiLine, std::string strSentence,
              uint32_t uiCaption = ZYR_CAPTIONS_NONE)
{
    stFinder.Add(eRule, stFinder.stFile.Get_Lines()[uiLine].uiText, stFinder.stFile.Get_Line(uiLine).size(),
                 uiCaption, std::move(strSentence));
}

void Read_Section(Scan &stScan, size_t uiLine, const std::string &strLower)
{
    stScan.bSection = false;
    for (const char *const pszKnown : {"[script info", "[v4 styles", "[events"})
        stScan.bSection = stScan.bSection || strLower.starts_with(pszKnown);
    stScan.bPlus = strLower.starts_with("[v4+ styles") || strLower.starts_with("[v4 styles+");
    if (stScan.bPlus && !stScan.bSection)
        Add_Line(stScan.stFinder, E_RULE_SSA_STYLES_PLUS, uiLine,
                 "the box passes this section over and knows none of its styles");
}

void Read_Style(Scan &stScan, size_t uiLine, std::string_view strLine)
{
    const auto uiFields = static_cast<size_t>(std::count(strLine.begin(), strLine.end(), ',')) + 1;
    if (!stScan.bSection || uiFields == STYLE_FIELDS) return;
    Add_Line(stScan.stFinder, E_RULE_SSA_STYLE_SHORT, uiLine,
             "the style has " + Show_Count(uiFields, "field") + " where the box takes 18" +
                 (uiFields < STYLE_FIELDS ? ", and is left out" : ", and its numbers mean something else"));
}

void Read_Line(Scan &stScan, size_t uiLine)
{
    const std::string_view strLine = stScan.stFinder.stFile.Get_Line(uiLine);
    const size_t uiFirst = std::min(strLine.find_first_not_of(" \t"), strLine.size());
    const std::string strLower = Lower(strLine.substr(uiFirst));
    if (strLower.starts_with("[")) return Read_Section(stScan, uiLine, strLower);
    if (strLower.starts_with("style:")) return Read_Style(stScan, uiLine, strLine);
    if (!strLower.starts_with("dialogue:")) return;
    stScan.astDialogues.push_back(
        Read_Dialogue(stScan.stFinder.stFile, uiLine, uiFirst + sizeof "dialogue:" - 1, stScan.bSection));
}

// Why the box makes no caption of a line.
void Add_NotShown(Finder &stFinder, const Dialogue &stLine)
{
    const std::string_view strStart = Get_Field(stFinder, stLine, E_FIELD_START);
    const bool bTime = Read_Time(strStart).value_or(0) > 0;
    if (!stLine.bSection)
        return Add_Line(stFinder, E_RULE_SSA_SECTION, stLine.uiLine,
                        "the line stands in no section that the box reads, and is not shown");
    if (stFinder.stFile.Get_Text()[stLine.uiFirst] == ' ' ||
        stFinder.stFile.Get_Text()[stLine.uiFirst] == '\t')
        return Add_Line(stFinder, E_RULE_SSA_INDENTED, stLine.uiLine,
                        "a blank stands before the key: the box does not see the line");
    if (!bTime && stLine.uiFields > E_FIELD_START)
        return stFinder.Add(E_RULE_SSA_START, stLine.auiFields[E_FIELD_START], strStart.size(),
                            ZYR_CAPTIONS_NONE,
                            "the box cannot use the start " + Quote(strStart) + " and never shows the line");
    Add_Line(stFinder, E_RULE_SSA_FIELDS, stLine.uiLine, "the box makes no caption of this line");
}

void Find_Style(Finder &stFinder, const Dialogue &stLine, uint32_t uiCaption)
{
    const ZyrCaption &stCaption = stFinder.astCaptions[uiCaption];
    const std::string_view strStyle = Get_Field(stFinder, stLine, E_FIELD_STYLE);
    ZyrCaptionSsaStyle stFound;
    const bool bFound = zyrCaptions_getSsaStyle(stFinder.pstMeant, stCaption.pstStyle->uiSsaStyle,
                                                &stFound) == ZYR_CAPTIONS_OK;
    if (strStyle.empty() || stLine.uiFields <= E_FIELD_STYLE) return;
    if (!bFound && stFinder.stAbout.uiSsaStyles > 0)
        stFinder.Add(E_RULE_SSA_STYLE_UNKNOWN, stLine.auiFields[E_FIELD_STYLE], strStyle.size(), uiCaption,
                     "the box finds no style " + Quote(strStyle) + ": the line has the box's own look");
}

void Find_InDialogue(Finder &stFinder, const Dialogue &stLine, uint32_t uiCaption)
{
    if (stLine.uiFields <= FIELDS)
        return Add_Line(stFinder, E_RULE_SSA_FIELDS, stLine.uiLine,
                        "the line has " + Show_Count(stLine.uiFields, "field") +
                            " where the box takes 9 and the text",
                        uiCaption);
    const std::string_view strEnd = Get_Field(stFinder, stLine, E_FIELD_END);
    if (!Read_Time(strEnd) && stFinder.astCaptions[uiCaption].iEnd == 0)
        return stFinder.Add(E_RULE_SSA_END, stLine.auiFields[E_FIELD_END], strEnd.size(), uiCaption,
                            "the box cannot read the end " + Quote(strEnd) +
                                " and does not show the line's text");
    Find_Style(stFinder, stLine, uiCaption);
    PlainText stMeant(stFinder.stFile.Get_Text());
    stMeant.Read_Ssa(stLine.auiFields[FIELDS], stLine.uiEnd);
    Find_InText(stFinder, uiCaption, stMeant, [](size_t) { return E_RULE_TEXT_MISSING; });
}

// Play begins with the first line of the file.
void Find_BeforeFirst(Finder &stFinder, const std::vector<Dialogue> &astDialogues)
{
    std::optional<int64_t> llFirst;
    for (const Dialogue &stLine : astDialogues) {
        const std::optional<int64_t> llStart = Read_Time(Get_Field(stFinder, stLine, E_FIELD_START));
        if (!stLine.bSection || llStart.value_or(0) == 0) continue;
        if (!llFirst) llFirst = llStart;
        if (*llStart < *llFirst)
            Add_Line(stFinder, E_RULE_SSA_BEFORE_FIRST, stLine.uiLine,
                     "the line begins at " + Show_Time(*llStart) +
                         " and play begins with the file's first line, at " + Show_Time(*llFirst));
    }
}

} // namespace

void Find_InSsa(Finder &stFinder)
{
    Scan stScan{stFinder};
    for (size_t uiLine = 0; uiLine < stFinder.stFile.Get_Lines().size(); ++uiLine) Read_Line(stScan, uiLine);
    std::map<size_t, uint32_t> auiCaptions; // by line
    for (uint32_t uiCaption = 0; uiCaption < stFinder.astCaptions.size(); ++uiCaption)
        auiCaptions[stFinder.stFile.Find_Line(stFinder.auiPlaces[uiCaption])] = uiCaption;
    for (const Dialogue &stLine : stScan.astDialogues) {
        const auto itCaption = auiCaptions.find(stLine.uiLine);
        if (itCaption == auiCaptions.end())
            Add_NotShown(stFinder, stLine);
        else
            Find_InDialogue(stFinder, stLine, itCaption->second);
    }
    Find_BeforeFirst(stFinder, stScan.astDialogues);
}
