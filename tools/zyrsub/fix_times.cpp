#include "fix_times.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "text_tools.h"
#include "zyr/zyr_captions.h"

static constexpr size_t NOWHERE = std::string_view::npos;
static constexpr std::string_view DIGITS = "0123456789";

static bool Is_Digit(char cChar)
{
    return cChar >= '0' && cChar <= '9';
}

// The last number is a fraction when it is the fourth, or when another sign than a colon stands before it.
static std::optional<int64_t> Sum_Numbers(const std::vector<std::string> &astrNumbers, char cLastSign)
{
    if (astrNumbers.size() < 2 || astrNumbers.size() > 4) return std::nullopt;
    const bool bFraction = astrNumbers.size() == 4 || cLastSign != ':';
    int64_t llMs = 0;
    for (size_t ui = 0; ui + (bFraction ? 1 : 0) < astrNumbers.size(); ++ui) {
        if (astrNumbers[ui].size() > 6) return std::nullopt;
        llMs = llMs * 60 + std::stoll(astrNumbers[ui]);
    }
    const std::string strFraction = bFraction ? (astrNumbers.back() + "000").substr(0, 3) : "0";
    return llMs * 1000 + std::stoll(strFraction);
}

std::optional<int64_t> Read_LooseTime(std::string_view strTime)
{
    std::vector<std::string> astrNumbers(1);
    char cLastSign = 0;
    bool bNegative = false;
    for (const char cChar : strTime) {
        if (cChar == ' ' || cChar == '\t') continue;
        if (cChar == '-' && astrNumbers.size() == 1 && astrNumbers[0].empty())
            bNegative = true;
        else if (Is_Digit(cChar))
            astrNumbers.back() += cChar;
        else if (std::string_view(":.,;").find(cChar) != NOWHERE && !astrNumbers.back().empty()) {
            astrNumbers.emplace_back();
            cLastSign = cChar;
        } else {
            return std::nullopt;
        }
    }
    if (astrNumbers.back().empty()) return std::nullopt;
    const std::optional<int64_t> llMs = Sum_Numbers(astrNumbers, cLastSign);
    return llMs && bNegative ? -*llMs : llMs;
}

// A time at the beginning of a text, up to what no time is made of.
static std::string_view Cut_Time(std::string_view strText)
{
    const size_t uiFirst = std::min(strText.find_first_of(DIGITS), strText.size());
    size_t uiEnd = std::min(strText.find_first_not_of("0123456789:.,; \t", uiFirst), strText.size());
    // A blank ends it where no sign stands around.
    for (size_t ui = uiFirst; ui + 1 < uiEnd; ++ui)
        if (strText[ui] == ' ' && Is_Digit(strText[ui + 1]) && ui > 0 && Is_Digit(strText[ui - 1]))
            uiEnd = ui;
    while (uiEnd > 0 && !Is_Digit(strText[uiEnd - 1])) --uiEnd;
    return strText.substr(0, uiEnd);
}

static std::string Trim(std::string_view strText)
{
    const size_t uiFirst = strText.find_first_not_of(" \t");
    if (uiFirst == NOWHERE) return "";
    return std::string(strText.substr(uiFirst, strText.find_last_not_of(" \t") + 1 - uiFirst));
}

// A whole time, with nothing else on the line: an end is missing.
static bool Is_Alone(std::string_view strLine)
{
    static constexpr std::string_view FORM = "00:00:00,000";
    if (strLine.size() != FORM.size()) return false;
    for (size_t ui = 0; ui < FORM.size(); ++ui)
        if (Is_Digit(FORM[ui]) ? !Is_Digit(strLine[ui])
                               : strLine[ui] != FORM[ui] && !(FORM[ui] == ',' && strLine[ui] == '.'))
            return false;
    return true;
}

static std::optional<TimeLine> Read_SubRip(std::string_view strLine)
{
    if (Is_Alone(strLine)) return TimeLine{*Read_LooseTime(strLine), *Read_LooseTime(strLine), "", ""};
    const size_t uiArrow = std::min(strLine.find("-->"), strLine.find("->"));
    if (uiArrow == NOWHERE) return std::nullopt;
    const std::string_view strEnd = strLine.substr(strLine.find('>', uiArrow) + 1);
    const std::string_view strTime = Cut_Time(strEnd);
    const std::optional<int64_t> llStart = Read_LooseTime(strLine.substr(0, uiArrow));
    const std::optional<int64_t> llEnd = Read_LooseTime(strTime);
    if (!llStart) return std::nullopt;
    return TimeLine{*llStart, llEnd.value_or(*llStart), "", Trim(strEnd.substr(llEnd ? strTime.size() : 0))};
}

static std::optional<TimeLine> Read_SubViewer(std::string_view strLine)
{
    static constexpr size_t BARE_DIGITS = 16;
    if (strLine.find_first_not_of("0123456789:.,;- \t") != NOWHERE) return std::nullopt;
    std::string strPlain(strLine);
    std::erase_if(strPlain, [](char cChar) { return !Is_Digit(cChar); });
    const auto pfBare = [&](size_t uiAt) {
        return strPlain.substr(uiAt, 2) + ":" + strPlain.substr(uiAt + 2, 2) + ":" +
               strPlain.substr(uiAt + 4, 2) + "." + strPlain.substr(uiAt + 6, 2);
    };
    const size_t uiComma = strLine.find(',');
    std::string strStart(strLine.substr(0, uiComma));
    std::string strEnd(uiComma == NOWHERE ? "" : strLine.substr(uiComma + 1));
    if (strLine.find(':') == NOWHERE || uiComma == NOWHERE) {
        if (strPlain.size() != BARE_DIGITS) return std::nullopt;
        strStart = pfBare(0);
        strEnd = pfBare(BARE_DIGITS / 2);
    }
    const std::optional<int64_t> llStart = Read_LooseTime(strStart);
    const std::optional<int64_t> llEnd = Read_LooseTime(strEnd);
    if (!llStart || !llEnd) return std::nullopt;
    return TimeLine{*llStart, *llEnd, "", ""};
}

static std::optional<TimeLine> Read_Ssa(std::string_view strLine)
{
    if (!Lower_Case(std::string(strLine.substr(0, 9))).starts_with("dialogue:")) return std::nullopt;
    const size_t uiStart = strLine.find(',');
    const size_t uiEnd = uiStart == NOWHERE ? NOWHERE : strLine.find(',', uiStart + 1);
    const size_t uiRest = uiEnd == NOWHERE ? NOWHERE : strLine.find(',', uiEnd + 1);
    if (uiRest == NOWHERE) return std::nullopt;
    const std::optional<int64_t> llStart = Read_LooseTime(strLine.substr(uiStart + 1, uiEnd - uiStart - 1));
    const std::optional<int64_t> llEnd = Read_LooseTime(strLine.substr(uiEnd + 1, uiRest - uiEnd - 1));
    if (!llStart) return std::nullopt;
    return TimeLine{*llStart, llEnd.value_or(*llStart), std::string(strLine.substr(0, uiStart + 1)),
                    std::string(strLine.substr(uiRest))};
}

std::optional<TimeLine> Read_TimeLine(uint32_t uiFormat, std::string_view strLine)
{
    switch (uiFormat) {
    case ZYR_CAPTIONS_SUBRIP: return Read_SubRip(strLine);
    case ZYR_CAPTIONS_SUBVIEWER: return Read_SubViewer(strLine);
    case ZYR_CAPTIONS_SSA: return Read_Ssa(strLine);
    default: return std::nullopt;
    }
}

static std::string Write_Time(int64_t llMs, const char *pszForm, int iDivisor)
{
    char szTime[64];
    llMs = std::max<int64_t>(llMs, 0);
    std::snprintf(szTime, sizeof szTime, pszForm, static_cast<int>(llMs / 3600000),
                  static_cast<int>(llMs / 60000 % 60), static_cast<int>(llMs / 1000 % 60),
                  static_cast<int>(llMs % 1000) / iDivisor);
    return szTime;
}

std::string Write_TimeLine(uint32_t uiFormat, const TimeLine &stLine)
{
    static constexpr const char *SUBRIP = "%02d:%02d:%02d,%03d";
    static constexpr const char *SUBVIEWER = "%02d:%02d:%02d.%02d";
    static constexpr const char *SSA = "%d:%02d:%02d.%02d";
    if (uiFormat == ZYR_CAPTIONS_SUBRIP)
        return Write_Time(stLine.llStart, SUBRIP, 1) + " --> " + Write_Time(stLine.llEnd, SUBRIP, 1);
    if (uiFormat == ZYR_CAPTIONS_SUBVIEWER)
        return Write_Time(stLine.llStart, SUBVIEWER, 10) + "," + Write_Time(stLine.llEnd, SUBVIEWER, 10);
    // A start of 0 is none to the box.
    const int64_t llStart = std::max<int64_t>(stLine.llStart, 10);
    return stLine.strLead + Write_Time(llStart, SSA, 10) + "," +
           Write_Time(std::max(stLine.llEnd, llStart), SSA, 10) + stLine.strRest;
}
