#include "finder.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

void Finder::Add(FindingRule eRule, size_t uiText, size_t uiTextBytes, uint32_t uiCaption,
                 std::string strSentence)
{
    astFindings.push_back({eRule, uiText, uiTextBytes, uiCaption, std::move(strSentence)});
}

void Finder::Add_ForFile(FindingRule eRule, std::string strSentence)
{
    astFindings.push_back({eRule, 0, 0, ZYR_CAPTIONS_NONE, std::move(strSentence), true});
}

bool Finder::Has_Near(size_t uiFirst, size_t uiEnd, uint32_t uiSeverity) const
{
    return std::any_of(astFindings.begin(), astFindings.end(), [&](const FindingRecord &stOne) {
        return !stOne.bWholeFile && stOne.uiText >= uiFirst && stOne.uiText < uiEnd &&
               Get_Rules()[stOne.eRule].uiSeverity >= uiSeverity;
    });
}

std::string Show_Time(int64_t llMs)
{
    char szText[48];
    if (llMs == ZYR_CAPTIONS_OPEN_END) return "never";
    const int64_t llPlain = llMs < 0 ? -llMs : llMs;
    std::snprintf(szText, sizeof szText, "%s%" PRId64 ":%02" PRId64 ":%02" PRId64 ".%03" PRId64,
                  llMs < 0 ? "-" : "", llPlain / 3600000, llPlain / 60000 % 60, llPlain / 1000 % 60,
                  llPlain % 1000);
    return szText;
}

std::string Show_Count(size_t uiNumber, const char *pszOne)
{
    return std::to_string(uiNumber) + " " + pszOne + (uiNumber == 1 ? "" : "s");
}

std::string Quote(std::string_view strUtf8)
{
    static constexpr size_t MOST = 40;
    std::string strText;
    for (const char cChar : strUtf8.substr(0, MOST))
        strText += static_cast<unsigned char>(cChar) < ' ' ? ' ' : cChar;
    if (strUtf8.size() > MOST) {
        while (!strText.empty() && (strText.back() & 0xC0) == 0x80) strText.pop_back();
        if (!strText.empty() && (strText.back() & 0x80) != 0) strText.pop_back();
        strText += "...";
    }
    return '"' + strText + '"';
}
