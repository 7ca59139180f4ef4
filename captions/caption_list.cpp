#include "caption_list.h"

#include <algorithm>

#include "caption_index.h"

namespace
{

constexpr std::string_view NO_BREAK_SPACE = "\xC2\xA0";

void Count_Caption(ZyrCaptions &stList, const CaptionRecord &stRecord)
{
    const bool bOpen = stRecord.iShownUntil == ZYR_CAPTIONS_OPEN_END;
    stList.iLastEnd = std::max(stList.iLastEnd, bOpen ? stRecord.iStart : stRecord.iShownUntil);
    stList.uiBadCharacters += stRecord.usBad;
    if (Has_VisibleText(stList.Get_Text(stRecord))) ++stList.uiWithText;
    if (stList.bTogether) return;
    LanguageClass &stClass = stList.astClasses[stList.auiOrder[stRecord.ucOrder]];
    const bool bFirst = stClass.uiCaptions++ == 0;
    stClass.iFirst = bFirst ? stRecord.iStart : std::min(stClass.iFirst, stRecord.iStart);
    stClass.iLast = bFirst ? stRecord.iStart : std::max(stClass.iLast, stRecord.iStart);
}

} // namespace

void Fail_Load(ZyrCaptions &stList, int iError, const std::string &strSentence)
{
    stList.iError = iError;
    stList.strError = (stList.strFile.empty() ? "unnamed subtitle" : stList.strFile) + ": " + strSentence;
}

void Finish_List(ZyrCaptions &stList)
{
    stList.strText.shrink_to_fit();
    stList.astRecords.shrink_to_fit();
    stList.astStyles.shrink_to_fit();
    stList.strLog.shrink_to_fit();
    stList.astLog.shrink_to_fit();
    for (size_t uiOrder = 0; uiOrder < stList.auiOrder.size(); ++uiOrder)
        stList.astClasses[stList.auiOrder[uiOrder]].uiOrder = static_cast<uint32_t>(uiOrder);
    Build_Index(stList);
    for (const CaptionRecord &stRecord : stList.astRecords) Count_Caption(stList, stRecord);
}

std::string Show_ClassName(const std::string &strName)
{
    return strName.empty() ? "(unnamed)" : strName;
}

bool Has_VisibleText(std::string_view strUtf8)
{
    while (!strUtf8.empty()) {
        const bool bBlank = strUtf8[0] == ' ' || (strUtf8[0] >= '\t' && strUtf8[0] <= '\r');
        const bool bNoBreak = strUtf8.starts_with(NO_BREAK_SPACE);
        if (!bBlank && !bNoBreak) return true;
        strUtf8.remove_prefix(bNoBreak ? NO_BREAK_SPACE.size() : 1);
    }
    return false;
}
