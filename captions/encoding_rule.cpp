#include "encoding_rule.h"

#include "text_decode.h"
#include "zyr/zyr_captions.h"

namespace
{

constexpr uint32_t ENOUGH_INVALID = 21;    // then it is no UTF-8
constexpr uint32_t ENOUGH_CHARACTERS = 11; // then it is

struct MarkRow {
    std::string_view strMark;
    const char *pszEncoding;
};
constexpr MarkRow MARKS[] = {{"\xFF\xFE", "UTF-16LE"}, {"\xFE\xFF", "UTF-16BE"}, {"\xEF\xBB\xBF", "UTF-8"}};

// Where a scan stands.
struct Scan {
    EncodingRule &stRule;
    uint32_t uiAwaited; // bytes that the character begun still wants

    void Refuse()
    {
        if (stRule.uiInvalid++ == 0) stRule.uiFirstInvalid = stRule.uiScanned;
        uiAwaited = 0;
    }
};

// A byte that breaks a character off is itself passed over: it begins no new one.
void Scan_Byte(Scan &stScan, uint8_t ucByte)
{
    const bool bNever = ucByte == 0xC0 || ucByte == 0xC1 || ucByte > 0xF4;
    const bool bTail = (ucByte & 0xC0) == 0x80;
    if (!bNever && bTail && stScan.uiAwaited > 0) {
        if (--stScan.uiAwaited == 0) ++stScan.stRule.uiCharacters;
    } else if (bNever || bTail || stScan.uiAwaited > 0) {
        stScan.Refuse();
    } else {
        stScan.uiAwaited = ucByte < 0xE0 ? 1 : ucByte < 0xF0 ? 2 : 3;
    }
}

bool Is_Enough(const EncodingRule &stRule)
{
    return stRule.uiInvalid >= ENOUGH_INVALID || stRule.uiCharacters >= ENOUGH_CHARACTERS;
}

} // namespace

EncodingRule Find_EncodingRule(std::string_view strFile)
{
    EncodingRule stRule;
    stRule.uiFirstInvalid = ZYR_CAPTIONS_NOWHERE;
    for (const MarkRow &stRow : MARKS)
        if (strFile.starts_with(stRow.strMark)) {
            stRule.uiRule = ZYR_CAPTIONS_BY_MARK;
            stRule.pszEncoding = stRow.pszEncoding;
            return stRule;
        }
    Scan stScan{stRule, 0};
    while (!Is_Enough(stRule)) {
        if (stScan.uiAwaited == 0) stRule.uiScanned += Count_Ascii(strFile.substr(stRule.uiScanned));
        if (stRule.uiScanned == strFile.size()) break;
        Scan_Byte(stScan, static_cast<uint8_t>(strFile[stRule.uiScanned]));
        ++stRule.uiScanned;
    }
    const bool bUtf8 = stRule.uiInvalid < ENOUGH_INVALID && stRule.uiCharacters > 0 &&
                       (stRule.uiInvalid == 0 || stRule.uiCharacters >= ENOUGH_CHARACTERS);
    stRule.uiRule = bUtf8 || Is_Enough(stRule) ? ZYR_CAPTIONS_BY_SCAN : ZYR_CAPTIONS_BY_FALLBACK;
    if (bUtf8) stRule.pszEncoding = "UTF-8";
    return stRule;
}
