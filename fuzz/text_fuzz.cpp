/* Numbers, names and UTF-8: any units in a block that ends where they do, each result held against a second, simple
 * way to it. */

#include <algorithm>
#include <memory>
#include <vector>

#include "engine_input.h"
#include "format/ssa/ssa_line.h"
#include "text/encoding.h"
#include "text/text_helpers.h"

const size_t g_uiSteeringBytes = 4;

namespace
{

using Units = std::vector<uint16_t>;

/** A block that holds the units and nothing more, so that a unit too far is seen. */
std::unique_ptr<uint16_t[]> Copy_Tight(const Units &ausUnits)
{
    std::unique_ptr<uint16_t[]> ausTight(new uint16_t[ausUnits.size()]);
    std::copy(ausUnits.begin(), ausUnits.end(), ausTight.get());
    return ausTight;
}

int Get_Digit(uint16_t usUnit, uint32_t uiBase)
{
    const uint32_t uiLower = usUnit | 0x20u;
    const uint32_t uiDigit = usUnit >= '0' && usUnit <= '9' ? usUnit - '0' : uiLower - 'a' + 10;
    const bool bDigit = usUnit < 0x80 && (usUnit <= '9' ? usUnit >= '0' : uiLower >= 'a') && uiDigit < uiBase;
    return bDigit ? static_cast<int>(uiDigit) : -1;
}

uint32_t Get_Number(const Units &ausUnits)
{
    const bool bHex = ausUnits.size() >= 2 && ausUnits[0] == '&' && ausUnits[1] == 'H';
    const size_t uiFirst = bHex ? 2 : 0;
    if (ausUnits.size() - uiFirst > 8) return 0;
    uint64_t ullNumber = 0;
    for (size_t uiUnit = uiFirst; uiUnit < ausUnits.size(); ++uiUnit) {
        const int iDigit = Get_Digit(ausUnits[uiUnit], bHex ? 16 : 10);
        if (iDigit < 0) break;
        ullNumber = ullNumber * (bHex ? 16 : 10) + static_cast<uint32_t>(iDigit);
    }
    return static_cast<uint32_t>(ullNumber);
}

/** HMMSSCC, whatever stands in between. */
uint32_t Get_Pts(const Units &ausUnits)
{
    std::string strDigits;
    for (const uint16_t usUnit : ausUnits)
        if (Get_Digit(usUnit, 10) >= 0) strDigits += static_cast<char>(usUnit);
    if (strDigits.size() != 7) return 0;
    const auto fnPart = [&](size_t uiPos, size_t uiLength) {
        return static_cast<uint32_t>(std::stoul(strDigits.substr(uiPos, uiLength)));
    };
    return ((fnPart(0, 1) * 60 + fnPart(1, 2)) * 60 + fnPart(3, 2)) * 1000 + fnPart(5, 2) * 10;
}

std::string Encode_Utf8(const Units &ausUnits)
{
    std::string strText;
    for (size_t uiUnit = 0; uiUnit < ausUnits.size(); ++uiUnit) {
        uint32_t uiCode = ausUnits[uiUnit];
        const bool bPair = uiCode >= 0xD800 && uiCode < 0xDC00 && uiUnit + 1 < ausUnits.size() &&
                           (ausUnits[uiUnit + 1] & 0xFC00) == 0xDC00;
        if (bPair) uiCode = 0x10000 + ((uiCode & 0x3FF) << 10 | (ausUnits[++uiUnit] & 0x3FFu));
        if (!bPair && (uiCode & 0xF800) == 0xD800) uiCode = 0xFFFD;
        const int iBytes = uiCode < 0x80 ? 1 : uiCode < 0x800 ? 2 : uiCode < 0x10000 ? 3 : 4;
        static constexpr uint32_t LEADS[] = {0, 0, 0xC0, 0xE0, 0xF0};
        strText += static_cast<char>(LEADS[iBytes] | uiCode >> 6 * (iBytes - 1));
        for (int iByte = iBytes - 2; iByte >= 0; --iByte)
            strText += static_cast<char>(0x80 | (uiCode >> 6 * iByte & 0x3F));
    }
    return strText;
}

void Try_Utf8(const Units &ausUnits, size_t uiRoom)
{
    const std::unique_ptr<uint16_t[]> ausTight = Copy_Tight(ausUnits);
    const std::unique_ptr<uint8_t[]> aucTarget(new uint8_t[uiRoom]);
    const std::string strExpected = Encode_Utf8(ausUnits);
    const int32_t iBytes = _UnicodeToUTF8(ausTight.get(), static_cast<int32_t>(ausUnits.size()),
                                          aucTarget.get(), static_cast<int32_t>(uiRoom));
    if (uiRoom == 0) return;
    const bool bFits = strExpected.size() < uiRoom;
    const std::string strGot(reinterpret_cast<const char *>(aucTarget.get()), static_cast<size_t>(iBytes));
    Demand(strGot == (bFits ? strExpected : ""), "units are encoded whole, or there is no room");
    Demand(!bFits || aucTarget[strExpected.size()] == 0, "a zero follows encoded text");
}

void Try_Numbers(const Units &ausUnits)
{
    const std::unique_ptr<uint16_t[]> ausTight = Copy_Tight(ausUnits);
    const auto iUnits = static_cast<int32_t>(ausUnits.size());
    Demand(QUIBCAPTPARS_Str2Number(ausTight.get(), iUnits) == Get_Number(ausUnits), "a number is its digits");
    Demand(Parse_SSAPts(ausTight.get(), iUnits) == Get_Pts(ausUnits), "seven digits are a time");
    Demand(Get_SSALineType(ausTight.get(), iUnits) <= E_SSA_LINE_UNKNOWN, "a line is of a kind, or of none");
}

void Try_Comparing(const Units &ausUnits, size_t uiSplit)
{
    const Units ausA(ausUnits.begin(), ausUnits.begin() + static_cast<ptrdiff_t>(uiSplit));
    const Units ausB(ausUnits.begin() + static_cast<ptrdiff_t>(uiSplit), ausUnits.end());
    const size_t uiUnits = std::min(ausA.size(), ausB.size());
    const auto pusA = Copy_Tight(ausA), pusB = Copy_Tight(ausB);
    const bool bEqual =
        std::equal(ausA.begin(), ausA.begin() + static_cast<ptrdiff_t>(uiUnits), ausB.begin());
    Demand((QUIBCAPTPARS_StrCmp(pusA.get(), pusB.get(), static_cast<int32_t>(uiUnits)) == 1) == bEqual,
           "texts are equal unit by unit");
    const auto uiBytes = static_cast<uint32_t>(uiUnits * 2);
    Demand(uiBytes == 0 || !bEqual || Compare_StringNoCase(pusA.get(), pusB.get(), uiBytes) == 1,
           "equal bytes are equal in any case");
}

/** The decision must not depend on where the bytes are cut. */
void Try_Encoding(const std::vector<uint8_t> &aucBytes, size_t uiSplit)
{
    Utf8Count stWhole = {}, stParts = {};
    const auto uiBytes = static_cast<uint32_t>(aucBytes.size()), uiFirst = static_cast<uint32_t>(uiSplit);
    Get_MarkedEncoding(aucBytes.data(), static_cast<int32_t>(uiBytes));
    Count_Utf8(&stWhole, aucBytes.data(), uiBytes);
    if (!Count_Utf8(&stParts, aucBytes.data(), uiFirst))
        Count_Utf8(&stParts, aucBytes.data() + uiFirst, uiBytes - uiFirst);
    Demand(Decide_Encoding(stWhole) == Decide_Encoding(stParts), "an encoding is found wherever reads end");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucData, size_t uiSize)
{
    if (uiSize > 4096) return 0;
    FuzzInput stInput(pucData, uiSize);
    FuzzInput stSteps = stInput.Take_Tail(g_uiSteeringBytes);
    const size_t uiNumber = stSteps.Take_Number();
    const std::span<const uint8_t> aucRest = stInput.Get_Rest();
    Units ausWide, ausNarrow(aucRest.begin(), aucRest.end());
    for (size_t uiByte = 0; uiByte + 1 < aucRest.size(); uiByte += 2)
        ausWide.push_back(static_cast<uint16_t>(aucRest[uiByte] | aucRest[uiByte + 1] << 8));
    for (const Units &ausUnits : {ausWide, ausNarrow}) {
        Try_Utf8(ausUnits, uiNumber % (3 * ausUnits.size() + 2));
        Try_Utf8(ausUnits, Encode_Utf8(ausUnits).size() + (uiNumber & 1));
        Try_Numbers(ausUnits);
        Try_Comparing(ausUnits, uiNumber % (ausUnits.size() + 1));
    }
    const std::vector<uint8_t> aucTight(aucRest.begin(), aucRest.end());
    Try_Encoding(aucTight, uiNumber % (aucTight.size() + 1));
    return 0;
}
