#include "text/find_unit.h"

#include <bit>
#include <cstddef>

#include "text/text_block.h"

namespace
{

constexpr uint32_t BLOCK_BITS = (1u << BLOCK_BYTES) - 1;

/** What a search looks for. */
struct UnitSearch {
    uint8_t ucFirst;
    uint8_t ucSecond;
    bool bBigEndian;
};

/** @return whether a character in good form begins here, three bytes of which can be looked at. */
bool Begins_Utf8(const uint8_t *pucByte)
{
    const auto fnContinues = [=](uint32_t uiByte) { return (pucByte[uiByte] & 0xC0) == 0x80; };
    if (pucByte[0] < 0x80) return true;
    if ((pucByte[0] & 0xE0) == 0xC0) return fnContinues(1);
    return (pucByte[0] & 0xF0) == 0xE0 && fnContinues(1) && fnContinues(2);
}

template <TextKind KIND>
const uint8_t *Search(const uint8_t *pucByte, const uint8_t *pucEnd, const UnitSearch &stSearch)
{
    uint32_t uiCarry = 0;
    for (; pucEnd - pucByte >= FOUND_AHEAD + static_cast<int32_t>(BLOCK_BYTES); pucByte += BLOCK_BYTES) {
        TextBlock stBlock = TextBlock::Load(pucByte);
        uint32_t uiHit = 0;
        if constexpr (KIND == E_TEXT_UTF16) {
            if (stSearch.bBigEndian) stBlock = stBlock.Get_SwappedUnits();
            uiHit = TextBlock::Get_Bits(stBlock.Find_EqualUnit(stSearch.ucFirst) |
                                        stBlock.Find_EqualUnit(stSearch.ucSecond));
        } else {
            uiHit = TextBlock::Get_Bits(stBlock.Find_Equal(stSearch.ucFirst) |
                                        stBlock.Find_Equal(stSearch.ucSecond));
        }
        if constexpr (KIND == E_TEXT_UTF8) {
            const uint32_t uiBefore = uiHit == 0 ? BLOCK_BITS : (uiHit - 1) & ~uiHit;
            const auto stOverlong = Find_OverlongLeads(stBlock, TextBlock::Load(pucByte + 1));
            if ((TextBlock::Get_Bits(stOverlong) & uiBefore) != 0) return nullptr;
        }
        if constexpr (KIND == E_TEXT_DOUBLE)
            uiHit &= ~Find_SecondBytes(TextBlock::Get_Bits(stBlock.Find_AtLeast(0x80)), uiCarry);
        if (uiHit != 0) return pucByte + std::countr_zero(uiHit);
    }
    return nullptr;
}

/** @return whether a UTF-8 character of several bytes ends right before a place. */
bool Ends_Utf8(const uint8_t *pucStart, const uint8_t *pucEnd)
{
    const ptrdiff_t iHeld = pucEnd - pucStart;
    if (iHeld < 2 || (pucEnd[-1] & 0xC0) != 0x80) return false;
    if ((pucEnd[-2] & 0xE0) == 0xC0) return true;
    return iHeld >= 3 && (pucEnd[-2] & 0xC0) == 0x80 && (pucEnd[-3] & 0xF0) == 0xE0;
}

} // namespace

const uint8_t *Find_Unit(TextKind eKind, const uint8_t *pucByte, const uint8_t *pucEnd, uint8_t ucFirst,
                         uint8_t ucSecond)
{
    const UnitSearch stSearch = {ucFirst, ucSecond, s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE};
    switch (eKind) {
    case E_TEXT_UTF8: return Search<E_TEXT_UTF8>(pucByte, pucEnd, stSearch);
    case E_TEXT_DOUBLE: return Search<E_TEXT_DOUBLE>(pucByte, pucEnd, stSearch);
    case E_TEXT_SINGLE: return Search<E_TEXT_SINGLE>(pucByte, pucEnd, stSearch);
    case E_TEXT_UTF16: return Search<E_TEXT_UTF16>(pucByte, pucEnd, stSearch);
    default: return nullptr;
    }
}

uint32_t Skip_To(uint8_t ucFirst, uint8_t ucSecond)
{
    CaptionStreamInfo &stStream = Get_StreamInfo();
    if (stStream.iStreamBufIndex >= stStream.iStreamDataSize) return 0;
    const TextKind eKind = Get_TextKind();
    const uint8_t *const pucStart = stStream.pucStreamBuf + stStream.iStreamBufIndex;
    const uint8_t *const pucEnd = stStream.pucStreamBuf + stStream.iStreamDataSize;
    const uint8_t *pucFound = Find_Unit(eKind, pucStart, pucEnd, ucFirst, ucSecond);
    if (pucFound == nullptr) return 0;
    if (eKind == E_TEXT_UTF8)
        while (pucFound > pucStart && pucFound[-1] >= 0x80 && !Ends_Utf8(pucStart, pucFound)) --pucFound;
    stStream.iStreamBufIndex += static_cast<int32_t>(pucFound - pucStart);
    return static_cast<uint32_t>(pucFound - pucStart);
}

int32_t Find_EmptyLine(uint32_t uiSkipUnits, uint8_t ucOdd)
{
    const CaptionStreamInfo &stStream = Get_StreamInfo();
    const uint8_t *const pucEnd = stStream.pucStreamBuf + stStream.iStreamDataSize;
    const uint32_t uiUnitBytes = Get_UnitBytes();
    const uint32_t uiLow = s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE ? 1 : 0;
    const TextKind eKind = Get_TextKind();
    const auto fnIs = [=](const uint8_t *pucUnit, uint8_t ucUnit) {
        return pucUnit[uiLow] == ucUnit && (uiUnitBytes == 1 || pucUnit[1 - uiLow] == 0);
    };
    const uint8_t *pucByte = stStream.pucStreamBuf + stStream.iStreamBufIndex + uiSkipUnits * uiUnitBytes;
    for (;;) {
        pucByte = Find_Unit(eKind, pucByte, pucEnd, '\r', ucOdd);
        if (pucByte == nullptr || !fnIs(pucByte, '\r') || !fnIs(pucByte + uiUnitBytes, '\n')) return -1;
        pucByte += 2 * uiUnitBytes;
        if (eKind == E_TEXT_UTF8 && !Begins_Utf8(pucByte)) return -1; // where a line begins is not sure
        if (!fnIs(pucByte, '\r')) continue;
        if (!fnIs(pucByte + uiUnitBytes, '\n')) return -1;
        return static_cast<int32_t>(pucByte + 2 * uiUnitBytes - stStream.pucStreamBuf);
    }
}

int32_t Find_LineEnd(uint32_t uiSkipUnits)
{
    const CaptionStreamInfo &stStream = Get_StreamInfo();
    const uint8_t *const pucEnd = stStream.pucStreamBuf + stStream.iStreamDataSize;
    const uint32_t uiUnitBytes = Get_UnitBytes();
    const uint32_t uiLow = s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE ? 1 : 0;
    const uint8_t *pucByte =
        stStream.pucStreamBuf + stStream.iStreamBufIndex + size_t{uiSkipUnits} * uiUnitBytes;
    pucByte = Find_Unit(Get_TextKind(), pucByte, pucEnd, '\r', '\r');
    if (pucByte == nullptr) return -1;
    pucByte += uiUnitBytes;
    if (pucByte[uiLow] != '\n' || (uiUnitBytes > 1 && pucByte[1 - uiLow] != 0)) return -1;
    return static_cast<int32_t>(pucByte + uiUnitBytes - stStream.pucStreamBuf);
}
