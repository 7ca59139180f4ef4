#include "text/find_unit.h"

#include <bit>
#include <cstddef>
#include <cstring>

#include "text/char_reader.h"
#include "text/text_block.h"

namespace
{

/** What a search looks for. */
struct UnitSearch {
    uint8_t ucFirst;
    uint8_t ucSecond;
    bool bBigEndian;
};

/** A block's hits, a bit for each byte, and the bytes that may hide one. */
struct BlockHits {
    uint32_t uiHit;
    uint32_t uiUnsure;
};

/** @return a bit for each byte that can begin an overlong form of another character. */
inline uint32_t Find_Overlong(const TextBlock &stBlock, const uint8_t *pucByte)
{
    const auto stTwo = stBlock.Find_Equal(0xC0) | stBlock.Find_Equal(0xC1);
    const auto stThree = stBlock.Find_Equal(0xE0);
    if (TextBlock::Get_Bits(stTwo | stThree) == 0) return 0;
    return TextBlock::Get_Bits(stTwo | stThree.Without(TextBlock::Load(pucByte + 1).Find_AtLeast(0xA0)));
}

/** @param[in,out] uiCarry  the bits that one block leaves for the next one; 0 at first */
template <TextKind KIND>
inline BlockHits Look_AtBlock(const uint8_t *pucByte, const UnitSearch &stSearch, uint32_t &uiCarry)
{
    const TextBlock stBlock = TextBlock::Load(pucByte);
    if constexpr (KIND == E_TEXT_UTF16) {
        const TextBlock stUnits = stSearch.bBigEndian ? stBlock.Get_SwappedUnits() : stBlock;
        return {TextBlock::Get_Bits(stUnits.Find_EqualUnit(stSearch.ucFirst) |
                                    stUnits.Find_EqualUnit(stSearch.ucSecond)),
                0};
    }
    BlockHits stHits = {
        TextBlock::Get_Bits(stBlock.Find_Equal(stSearch.ucFirst) | stBlock.Find_Equal(stSearch.ucSecond)), 0};
    if (KIND == E_TEXT_UTF8 && stBlock.Get_HighBits() != 0) stHits.uiUnsure = Find_Overlong(stBlock, pucByte);
    if constexpr (KIND == E_TEXT_DOUBLE) stHits.uiHit &= ~Find_SecondBytes(stBlock.Get_HighBits(), uiCarry);
    return stHits;
}

template <TextKind KIND>
inline const uint8_t *Search(const uint8_t *pucByte, const uint8_t *pucEnd, UnitSearch stSearch)
{
    const uint8_t *const pucLast = pucEnd - (FOUND_AHEAD + static_cast<ptrdiff_t>(BLOCK_BYTES));
    uint32_t uiCarry = 0;
    for (; pucByte <= pucLast; pucByte += BLOCK_BYTES) {
        const BlockHits stHits = Look_AtBlock<KIND>(pucByte, stSearch, uiCarry);
        if ((stHits.uiHit | stHits.uiUnsure) == 0) continue;
        const uint32_t uiPos = static_cast<uint32_t>(std::countr_zero(stHits.uiHit | 1u << BLOCK_BYTES));
        if (stHits.uiUnsure != 0 && (stHits.uiUnsure & ((1u << uiPos) - 1)) != 0) return nullptr;
        if (stHits.uiHit != 0) return pucByte + uiPos;
    }
    return nullptr;
}

/** Find_Unit(), made once more where the characters are constants. */
inline const uint8_t *Find(TextKind eKind, const uint8_t *pucByte, const uint8_t *pucEnd, UnitSearch stSearch)
{
    switch (eKind) {
    case E_TEXT_UTF8: return Search<E_TEXT_UTF8>(pucByte, pucEnd, stSearch);
    case E_TEXT_DOUBLE: return Search<E_TEXT_DOUBLE>(pucByte, pucEnd, stSearch);
    case E_TEXT_SINGLE: return Search<E_TEXT_SINGLE>(pucByte, pucEnd, stSearch);
    case E_TEXT_UTF16: return Search<E_TEXT_UTF16>(pucByte, pucEnd, stSearch);
    default: return nullptr;
    }
}

template <TextKind KIND>
inline bool Is_Unit(const uint8_t *pucUnit, uint8_t ucUnit, const UnitSearch &stSearch)
{
    return (KIND == E_TEXT_UTF16 ? Get_Utf16Unit(pucUnit, stSearch.bBigEndian) : *pucUnit) == ucUnit;
}

/** @return whether CR LF stands at a place. */
template <TextKind KIND>
inline bool Is_CrLf(const uint8_t *pucUnit, const UnitSearch &stSearch)
{
    if (KIND == E_TEXT_UTF16)
        return Is_Unit<KIND>(pucUnit, '\r', stSearch) && Is_Unit<KIND>(pucUnit + 2, '\n', stSearch);
    uint16_t usBytes;
    std::memcpy(&usBytes, pucUnit, sizeof(usBytes));
    return usBytes == ('\n' << 8 | '\r');
}

/** @return the place behind the empty line, or NULL as Find_EmptyLine() */
template <TextKind KIND>
inline const uint8_t *Search_EmptyLine(const uint8_t *pucByte, const uint8_t *pucEnd, UnitSearch stSearch)
{
    constexpr size_t UNIT_BYTES = KIND == E_TEXT_UTF16 ? 2 : 1;
    const uint8_t *const pucLast = pucEnd - (FOUND_AHEAD + static_cast<ptrdiff_t>(BLOCK_BYTES));
    const uint8_t *pucLine = pucByte; // where the current line begins
    uint32_t uiCarry = 0;
    for (; pucByte <= pucLast; pucByte += BLOCK_BYTES) {
        const BlockHits stHits = Look_AtBlock<KIND>(pucByte, stSearch, uiCarry);
        if (stHits.uiUnsure != 0) return nullptr;
        for (uint32_t uiHit = stHits.uiHit; uiHit != 0; uiHit &= uiHit - 1) {
            const uint8_t *const pucUnit = pucByte + std::countr_zero(uiHit);
            const bool bTwice = KIND == E_TEXT_UTF16 || stSearch.ucSecond != '\r'; // a line end may hit again
            if (bTwice && pucUnit < pucLine) continue;
            // A line of bytes that decode to nothing would be an empty one.
            if (!Is_CrLf<KIND>(pucUnit, stSearch) || !Is_CountedAlone(KIND, pucLine, pucUnit)) return nullptr;
            if (pucUnit == pucLine) return pucUnit + 2 * UNIT_BYTES;
            pucLine = pucUnit + 2 * UNIT_BYTES;
        }
    }
    return nullptr;
}

/** Find_EmptyLine(), made once more where there is no odd character. */
[[gnu::always_inline]] inline const uint8_t *Find_Empty(TextKind eKind, const uint8_t *pucByte,
                                                        const uint8_t *pucEnd, UnitSearch stSearch)
{
    switch (eKind) {
    case E_TEXT_UTF8: return Search_EmptyLine<E_TEXT_UTF8>(pucByte, pucEnd, stSearch);
    case E_TEXT_DOUBLE: return Search_EmptyLine<E_TEXT_DOUBLE>(pucByte, pucEnd, stSearch);
    case E_TEXT_SINGLE: return Search_EmptyLine<E_TEXT_SINGLE>(pucByte, pucEnd, stSearch);
    case E_TEXT_UTF16: return Search_EmptyLine<E_TEXT_UTF16>(pucByte, pucEnd, stSearch);
    default: return nullptr;
    }
}

} // namespace

const uint8_t *Find_Unit(TextKind eKind, const uint8_t *pucByte, const uint8_t *pucEnd, uint8_t ucFirst,
                         uint8_t ucSecond)
{
    return Find(eKind, pucByte, pucEnd, {ucFirst, ucSecond, Is_BigEndianText()});
}

const uint8_t *Find_TagOpen(TextKind eKind, const uint8_t *pucByte, const uint8_t *pucEnd)
{
    return Find(eKind, pucByte, pucEnd, {'<', '<', Is_BigEndianText()});
}

bool Ends_Utf8(const uint8_t *pucFrom, const uint8_t *pucEnd)
{
    const ptrdiff_t iHeld = pucEnd - pucFrom;
    if (iHeld < 2 || (pucEnd[-1] & 0xC0) != 0x80) return false;
    if ((pucEnd[-2] & 0xE0) == 0xC0) return true;
    return iHeld >= 3 && (pucEnd[-2] & 0xC0) == 0x80 && (pucEnd[-3] & 0xF0) == 0xE0;
}

uint32_t Skip_To(uint8_t ucFirst, uint8_t ucSecond)
{
    const HeldBytes stHeld = Look_Ahead();
    if (stHeld.pucBegin == stHeld.pucEnd) return 0;
    const TextKind eKind = Get_TextKind();
    const uint8_t *pucFound = Find_Unit(eKind, stHeld.pucBegin, stHeld.pucEnd, ucFirst, ucSecond);
    if (pucFound == nullptr) return 0;
    while (!Is_CountedAlone(eKind, stHeld.pucBegin, pucFound)) --pucFound;
    const uint32_t uiBytes = static_cast<uint32_t>(pucFound - stHeld.pucBegin);
    Take_HeldBytes(uiBytes);
    return uiBytes;
}

const uint8_t *Find_EmptyLine(TextKind eKind, const uint8_t *pucByte, const uint8_t *pucEnd, uint8_t ucOdd)
{
    const bool bBigEndian = Is_BigEndianText();
    return ucOdd == '\r' ? Find_Empty(eKind, pucByte, pucEnd, {'\r', '\r', bBigEndian})
                         : Find_Empty(eKind, pucByte, pucEnd, {'\r', ucOdd, bBigEndian});
}

uint32_t Find_LineEnd(uint32_t uiSkipUnits)
{
    const HeldBytes stHeld = Look_Ahead();
    const uint32_t uiUnitBytes = Get_UnitBytes();
    const uint8_t *pucByte = Find_Unit(Get_TextKind(), stHeld.pucBegin + size_t{uiSkipUnits} * uiUnitBytes,
                                       stHeld.pucEnd, '\r', '\r');
    if (pucByte == nullptr) return 0;
    pucByte += uiUnitBytes;
    if ((Is_Utf16Text() ? Get_Utf16Unit(pucByte, Is_BigEndianText()) : *pucByte) != '\n') return 0;
    return static_cast<uint32_t>(pucByte - stHeld.pucBegin) + uiUnitBytes;
}
