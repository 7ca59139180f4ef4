#include "code_page.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <uchardet/uchardet.h>

#include "subtitle_source.h"
#include "text_convert.h"

static constexpr size_t GUESS_BYTES = 256UL * 1024; // more makes a guess slower, not better

struct WiderRow {
    const char *pszName; // lower case
    const char *pszWider;
};
static constexpr WiderRow WIDER[] = {
    {"euc-kr", "CP949"},    {"euckr", "CP949"},     {"ks_c_5601-1987", "CP949"}, {"uhc", "CP949"},
    {"gb2312", "GB18030"},  {"gbk", "GB18030"},     {"cp936", "GB18030"},        {"euc-cn", "GB18030"},
    {"shift_jis", "CP932"}, {"shift-jis", "CP932"}, {"sjis", "CP932"},           {"big5", "CP950"},
};

std::string Widen_CodePage(const std::string &strName)
{
    for (const WiderRow &stRow : WIDER)
        if (Lower_Case(strName) == stRow.pszName) return stRow.pszWider;
    return strName;
}

bool Is_SingleByte(const std::string &strCodePage)
{
    const Converter stConverter("UTF-8", strCodePage);
    for (int iByte = 0x80; iByte < 0x100; ++iByte)
        if (stConverter.Is_CutShort(std::string(1, static_cast<char>(iByte)))) return false;
    return true;
}

// The lines that tell code pages apart; all others only speak for plain ASCII.
static std::string Pick_HighLines(std::string_view strFile)
{
    std::string strLines;
    while (!strFile.empty() && strLines.size() < GUESS_BYTES) {
        const size_t uiEnd = std::min(strFile.find('\n'), strFile.size() - 1) + 1;
        const std::string_view strLine = strFile.substr(0, uiEnd);
        if (std::any_of(strLine.begin(), strLine.end(), Is_High)) strLines += strLine;
        strFile.remove_prefix(uiEnd);
    }
    return strLines;
}

// Empty where it has no idea.
static std::string Detect_Charset(std::string_view strText)
{
    const std::unique_ptr<uchardet, void (*)(uchardet_t)> pstDetector(uchardet_new(), uchardet_delete);
    uchardet_handle_data(pstDetector.get(), strText.data(), strText.size());
    uchardet_data_end(pstDetector.get());
    return uchardet_get_charset(pstDetector.get());
}

std::vector<std::string> Guess_CodePages(std::string_view strFile)
{
    const std::string strLines = Pick_HighLines(strFile);
    std::vector<std::string> astrGuesses;
    for (const std::string_view strText : {std::string_view(strLines), strFile.substr(0, GUESS_BYTES)}) {
        const std::string strGuess = Widen_CodePage(Detect_Charset(strText));
        const bool bNew = std::find(astrGuesses.begin(), astrGuesses.end(), strGuess) == astrGuesses.end();
        if (bNew && strGuess != "ASCII" && !strGuess.empty() && Is_CodePageKnown(strGuess))
            astrGuesses.push_back(strGuess);
    }
    if (strLines.empty()) astrGuesses.clear();
    std::stable_partition(astrGuesses.begin(), astrGuesses.end(), [&](const std::string &strGuess) {
        return !Converter("UTF-8", strGuess).Find_Unreadable(strFile);
    });
    return astrGuesses;
}
