// SYNC and P tags of SAMI written as the box reads them.
#include "fix_rules.h"

#include <algorithm>
#include <optional>

#include "text_tools.h"

static constexpr size_t NOWHERE = std::string_view::npos;
static constexpr std::string_view DIGITS = "0123456789";

// A tag's attribute as it is written.
struct TagAttribute {
    std::string strName;  // lower case
    std::string strValue; // without its quotation marks
    bool bQuoted = false;
};

static std::vector<TagAttribute> Read_Attributes(std::string_view strTag)
{
    std::vector<TagAttribute> astAttributes;
    size_t uiAt = std::min(strTag.find_first_of(" \t\n"), strTag.size());
    while (uiAt < strTag.size()) {
        TagAttribute stOne;
        uiAt = std::min(strTag.find_first_not_of(" \t\n", uiAt), strTag.size());
        const size_t uiName = uiAt;
        uiAt = std::min(strTag.find_first_of("= \t\n", uiAt), strTag.size());
        stOne.strName = Lower_Case(std::string(strTag.substr(uiName, uiAt - uiName)));
        const size_t uiEquals = strTag.find_first_not_of(" \t\n", uiAt);
        if (uiEquals != NOWHERE && strTag[uiEquals] == '=') {
            uiAt = std::min(strTag.find_first_not_of(" \t\n", uiEquals + 1), strTag.size());
            stOne.bQuoted = uiAt < strTag.size() && (strTag[uiAt] == '"' || strTag[uiAt] == '\'');
            const size_t uiValue = uiAt + (stOne.bQuoted ? 1 : 0);
            uiAt = std::min(stOne.bQuoted ? strTag.find(strTag[uiAt], uiValue)
                                          : strTag.find_first_of(" \t\n", uiValue),
                            strTag.size());
            stOne.strValue =
                std::string(strTag.substr(std::min(uiValue, uiAt), uiAt - std::min(uiValue, uiAt)));
            if (stOne.bQuoted) ++uiAt;
        }
        if (!stOne.strName.empty()) astAttributes.push_back(stOne);
    }
    return astAttributes;
}

static const TagAttribute *Find_Attribute(const std::vector<TagAttribute> &astAttributes,
                                          std::string_view strName)
{
    for (const TagAttribute &stOne : astAttributes)
        if (stOne.strName == strName) return &stOne;
    return nullptr;
}

// The digits that a value begins with.
static std::string Get_Digits(const TagAttribute *pstAttribute)
{
    if (pstAttribute == nullptr) return "";
    const size_t uiFirst = pstAttribute->strValue.find_first_not_of(" \t");
    if (uiFirst == NOWHERE) return "";
    return pstAttribute->strValue.substr(
        uiFirst,
        std::min(pstAttribute->strValue.find_first_not_of(DIGITS, uiFirst), pstAttribute->strValue.size()) -
            uiFirst);
}

static std::optional<FixEdit> Plan_Sync(std::string_view strTag, size_t uiAt)
{
    const std::vector<TagAttribute> astAttributes = Read_Attributes(strTag.substr(0, strTag.size() - 1));
    const TagAttribute *const pstStart = Find_Attribute(astAttributes, "start");
    const TagAttribute *const pstEnd = Find_Attribute(astAttributes, "end");
    const std::string strStart = Get_Digits(pstStart);
    const std::string strEnd = Get_Digits(pstEnd);
    if (strStart.empty()) return std::nullopt;
    const bool bEnd = pstEnd == nullptr || (pstEnd->strValue == strEnd && !strEnd.empty());
    const bool bFirst = pstStart == astAttributes.data();
    const bool bTight = Lower_Case(std::string(strTag)).find("start=" + strStart) != NOWHERE;
    if (bEnd && bFirst && !pstStart->bQuoted && pstStart->strValue == strStart && bTight) return std::nullopt;
    const std::string strNew = "<SYNC Start=" + strStart + (strEnd.empty() ? "" : " End=" + strEnd) + ">";
    const char *const pszCode = !bFirst             ? "ZYR-SMI-002"
                                : pstStart->bQuoted ? "ZYR-SMI-001"
                                : bEnd              ? "ZYR-SMI-003"
                                                    : "ZYR-SMI-004";
    return FixEdit{uiAt, strTag.size(), strNew, pszCode, "written as " + strNew};
}

// The box wants CLASS alone; a name has no blanks there.
static std::optional<FixEdit> Plan_Paragraph(std::string_view strTag, size_t uiAt)
{
    const std::vector<TagAttribute> astAttributes = Read_Attributes(strTag.substr(0, strTag.size() - 1));
    const TagAttribute *const pstClass = Find_Attribute(astAttributes, "class");
    if (pstClass == nullptr || pstClass->strValue.empty()) return std::nullopt;
    if (astAttributes.size() == 1 && !pstClass->bQuoted) return std::nullopt;
    std::string strName = pstClass->strValue;
    std::replace(strName.begin(), strName.end(), ' ', '_');
    const std::string strNew = "<P Class=" + strName + ">";
    return FixEdit{uiAt, strTag.size(), strNew, pstClass->bQuoted ? "ZYR-SMI-008" : "ZYR-SMI-009",
                   "written as " + strNew};
}

static bool Is_Tag(const std::string &strLower, size_t uiAt, std::string_view strName)
{
    if (strLower.compare(uiAt + 1, strName.size(), strName) != 0) return false;
    const size_t uiNext = uiAt + 1 + strName.size();
    return uiNext >= strLower.size() || std::string_view(" \t\n>").find(strLower[uiNext]) != NOWHERE;
}

// Ends of the body that captions follow.
static void Plan_BodyEnds(const std::string &strLower, std::vector<FixEdit> &astEdits)
{
    const size_t uiLast = strLower.rfind("<sync");
    for (const std::string strEnd : {"</body>", "</sami>"})
        for (size_t uiAt = strLower.find(strEnd); uiAt < uiLast && uiLast != NOWHERE;
             uiAt = strLower.find(strEnd, uiAt + 1))
            astEdits.push_back(
                {uiAt, strEnd.size(), "", "ZYR-SMI-006", strEnd + " in front of captions taken out"});
}

std::vector<FixEdit> Plan_SamiTags(const FixText &stText)
{
    const std::string &strText = stText.Get();
    const std::string strLower = Lower_Case(strText);
    std::vector<FixEdit> astEdits;
    bool bComments = true; // one may end
    for (size_t uiAt = strText.find('<'); uiAt != NOWHERE; uiAt = strText.find('<', uiAt + 1)) {
        if (bComments && strLower.compare(uiAt, 4, "<!--") == 0) {
            const size_t uiEnd = strText.find("-->", uiAt);
            bComments = uiEnd != NOWHERE;
            uiAt = bComments ? uiEnd : uiAt;
        }
        const size_t uiClose = strText.find('>', uiAt);
        if (uiClose == NOWHERE) break;
        const std::string_view strTag = std::string_view(strText).substr(uiAt, uiClose + 1 - uiAt);
        std::optional<FixEdit> stEdit;
        if (Is_Tag(strLower, uiAt, "sync")) stEdit = Plan_Sync(strTag, uiAt);
        if (Is_Tag(strLower, uiAt, "p")) stEdit = Plan_Paragraph(strTag, uiAt);
        if (stEdit) astEdits.push_back(std::move(*stEdit));
    }
    Plan_BodyEnds(strLower, astEdits);
    return astEdits;
}
