#include "code_page.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <memory>
#include <uchardet/uchardet.h>

#include "text_decode.h"
#include "zyr/zyr_captions.h"

namespace
{

constexpr size_t GUESS_BYTES = 4UL * 1024; // more makes a guess slower, not better

struct WiderRow {
    const char *pszName; // lower case
    const char *pszWider;
};
constexpr WiderRow WIDER[] = {
    {"euc-kr", "CP949"},    {"euckr", "CP949"},     {"ks_c_5601-1987", "CP949"}, {"uhc", "CP949"},
    {"gb2312", "GB18030"},  {"gbk", "GB18030"},     {"cp936", "GB18030"},        {"euc-cn", "GB18030"},
    {"shift_jis", "CP932"}, {"shift-jis", "CP932"}, {"sjis", "CP932"},           {"big5", "CP950"},
};

// The next line with a byte from 0x80 on, and where it begins; all others only speak for plain ASCII. Empty behind
// the last one.
std::string_view Find_HighLine(std::string_view strFile, size_t uiFrom)
{
    const size_t uiHigh = uiFrom + Count_Ascii(strFile.substr(uiFrom));
    if (uiHigh == strFile.size()) return {};
    const size_t uiBefore = uiHigh == 0 ? std::string_view::npos : strFile.rfind('\n', uiHigh - 1);
    const size_t uiStart = uiBefore == std::string_view::npos ? 0 : uiBefore + 1;
    const size_t uiEnd = std::min(strFile.find('\n', uiHigh), strFile.size() - 1) + 1;
    return strFile.substr(uiStart, uiEnd - uiStart);
}

template <typename LineStep>
void For_HighLines(std::string_view strFile, const LineStep &pfLine)
{
    size_t uiFrom = 0;
    for (std::string_view strLine; !(strLine = Find_HighLine(strFile, uiFrom)).empty();) {
        const auto uiStart = static_cast<size_t>(strLine.data() - strFile.data());
        if (!pfLine(strLine, uiStart)) return;
        uiFrom = uiStart + strLine.size();
    }
}

// Without the times, tags and fields before their text, which speak for plain ASCII too.
std::string Pick_HighLines(std::string_view strFile)
{
    std::string strLines;
    For_HighLines(strFile, [&](std::string_view strLine, size_t /*uiStart*/) {
        strLine.remove_prefix(strLine.find_last_of(",>", Count_Ascii(strLine)) + 1); // npos + 1 is 0
        strLines += strLine.substr(0, GUESS_BYTES);
        return strLines.size() < GUESS_BYTES;
    });
    return strLines;
}

// Empty where it has no idea.
std::string Detect_Charset(std::string_view strText)
{
    const std::unique_ptr<uchardet, void (*)(uchardet_t)> pstDetector(uchardet_new(), uchardet_delete);
    uchardet_handle_data(pstDetector.get(), strText.data(), strText.size());
    uchardet_data_end(pstDetector.get());
    return uchardet_get_charset(pstDetector.get());
}

} // namespace

bool Is_High(char cByte)
{
    return (cByte & 0x80) != 0;
}

std::string Widen_CodePage(const std::string &strName)
{
    for (const WiderRow &stRow : WIDER)
        if (strcasecmp(strName.c_str(), stRow.pszName) == 0) return stRow.pszWider;
    return strName;
}

std::vector<std::string> Guess_CodePages(std::string_view strFile)
{
    const std::string strLines = Pick_HighLines(strFile);
    std::vector<std::string> astrGuesses;
    if (strLines.empty()) return astrGuesses;
    const auto pfGuess = [&](std::string_view strText) {
        const std::string strGuess = Widen_CodePage(Detect_Charset(strText));
        const bool bNew = std::find(astrGuesses.begin(), astrGuesses.end(), strGuess) == astrGuesses.end();
        if (!bNew || strGuess == "ASCII" || strGuess.empty()) return false;
        const CodePageReader stReader(strGuess);
        if (!stReader.Is_Known()) return false;
        const bool bReadable = !stReader.Find_Unreadable(strLines);
        astrGuesses.insert(bReadable ? astrGuesses.begin() : astrGuesses.end(), strGuess);
        return bReadable;
    };
    if (!pfGuess(strLines)) pfGuess(strFile.substr(0, GUESS_BYTES));
    return astrGuesses;
}

size_t Find_UnreadableByte(std::string_view strFile, const std::string &strCodePage)
{
    const CodePageReader stReader(strCodePage);
    size_t uiFound = ZYR_CAPTIONS_NOWHERE;
    For_HighLines(strFile, [&](std::string_view strLine, size_t uiStart) {
        const std::optional<size_t> uiBad = stReader.Find_Unreadable(strLine);
        if (uiBad) uiFound = uiStart + *uiBad;
        return !uiBad;
    });
    return uiFound;
}
