#include "host_text.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr size_t WORD_BYTES = sizeof(uint64_t);

struct Piece {
    const uint8_t *pucIn;
    const uint8_t *pucEnd;
    uint8_t *pucOut;
    bool bLast;
};

template <typename Unit>
Unit Load_Unit(const uint8_t *pucIn)
{
    Unit usUnit;
    memcpy(&usUnit, pucIn, sizeof(usUnit));
    return usUnit;
}

// The highest bit of each unit of the result is set where the word's unit is 0. Above the first such unit (in
// memory order) others may be marked too, which is why only the first is looked at.
template <typename Unit>
constexpr uint64_t Mark_ZeroUnits(uint64_t ullWord)
{
    constexpr uint64_t ONES = ~uint64_t{0} / static_cast<Unit>(~Unit{0});
    return (ullWord - ONES) & ~ullWord & (ONES << (CHAR_BIT * sizeof(Unit) - 1));
}

// Bytes of a word in front of its first CR or LF, in memory order; 8 when it has neither.
template <typename Unit, Unit usCr, Unit usLf>
size_t Count_PlainBytes(uint64_t ullWord)
{
    constexpr uint64_t ONES = ~uint64_t{0} / static_cast<Unit>(~Unit{0});
    if constexpr (std::endian::native == std::endian::big) {
        // Turned over as a whole, the units are in order but each of them is swapped; so are the ones
        // searched for.
        ullWord = __builtin_bswap64(ullWord);
    }
    const auto Find = [ullWord](Unit usUnit) {
        if (std::endian::native == std::endian::big && sizeof(Unit) == 2)
            usUnit = static_cast<Unit>(__builtin_bswap16(usUnit));
        return Mark_ZeroUnits<Unit>(ullWord ^ (ONES * usUnit));
    };
    const uint64_t ullMarks = Find(usCr) | Find(usLf);
    return static_cast<size_t>(std::countr_zero(ullMarks)) / CHAR_BIT / sizeof(Unit) * sizeof(Unit);
}

// Copies up to the next CR or LF, or until less than a unit is left. The output has room for a word past the
// text.
template <typename Unit, Unit usCr, Unit usLf>
void Copy_PlainUnits(Piece *pstPiece)
{
    while (pstPiece->pucEnd - pstPiece->pucIn >= static_cast<ptrdiff_t>(WORD_BYTES)) {
        const auto ullWord = Load_Unit<uint64_t>(pstPiece->pucIn);
        memcpy(pstPiece->pucOut, &ullWord, WORD_BYTES);
        const size_t uiPlain = Count_PlainBytes<Unit, usCr, usLf>(ullWord);
        pstPiece->pucIn += uiPlain;
        pstPiece->pucOut += uiPlain;
        if (uiPlain < WORD_BYTES) return;
    }
    while (pstPiece->pucEnd - pstPiece->pucIn >= static_cast<ptrdiff_t>(sizeof(Unit))) {
        const auto usUnit = Load_Unit<Unit>(pstPiece->pucIn);
        if (usUnit == usCr || usUnit == usLf) return;
        memcpy(pstPiece->pucOut, &usUnit, sizeof(Unit));
        pstPiece->pucIn += sizeof(Unit);
        pstPiece->pucOut += sizeof(Unit);
    }
}

// Units of the line end that the piece begins with; 0 when only what follows the piece can tell.
template <typename Unit, Unit usCr, Unit usLf>
size_t Measure_LineEnd(const Piece &stPiece)
{
    const size_t uiUnits = static_cast<size_t>(stPiece.pucEnd - stPiece.pucIn) / sizeof(Unit);
    const auto Get_Unit = [&stPiece](size_t uiIndex) {
        return Load_Unit<Unit>(stPiece.pucIn + uiIndex * sizeof(Unit));
    };
    if (Get_Unit(0) == usLf) return 1;
    if (uiUnits < 2) return stPiece.bLast ? 1 : 0;
    if (Get_Unit(1) == usLf) return 2;
    if (Get_Unit(1) != usCr) return 1;
    if (uiUnits < 3) return stPiece.bLast ? 1 : 0;
    return Get_Unit(2) == usLf ? 3 : 1;
}

template <typename Unit, Unit usCr, Unit usLf>
void Convert_Piece(Piece *pstPiece)
{
    constexpr Unit LINE_END[2] = {usCr, usLf};
    for (;;) {
        Copy_PlainUnits<Unit, usCr, usLf>(pstPiece);
        if (pstPiece->pucEnd - pstPiece->pucIn < static_cast<ptrdiff_t>(sizeof(Unit))) break;
        const size_t uiUnits = Measure_LineEnd<Unit, usCr, usLf>(*pstPiece);
        if (uiUnits == 0) return;
        pstPiece->pucIn += uiUnits * sizeof(Unit);
        memcpy(pstPiece->pucOut, LINE_END, sizeof(LINE_END));
        pstPiece->pucOut += sizeof(LINE_END);
    }
    if (pstPiece->bLast && pstPiece->pucIn < pstPiece->pucEnd) *pstPiece->pucOut++ = *pstPiece->pucIn++;
}

HostTextUnit Detect_Unit(const uint8_t *pucPiece, size_t uiBytes)
{
    if (uiBytes < 2) return E_HOST_TEXT_BYTES;
    const auto usMark = Load_Unit<uint16_t>(pucPiece);
    if (usMark == 0xFEFF) return E_HOST_TEXT_UTF16_SAME;
    return usMark == 0xFFFE ? E_HOST_TEXT_UTF16_SWAPPED : E_HOST_TEXT_BYTES;
}

// Room for the worst piece, nothing but line ends of one unit, and the word that a copy may write past it.
bool Reserve_Room(HostText *pstText, size_t uiBytes)
{
    if (uiBytes > INT32_MAX) return false;
    const size_t uiNeeded = pstText->uiBytes + 2 * uiBytes + WORD_BYTES;
    if (uiNeeded <= pstText->uiRoom) return true;
    const size_t uiRoom = std::max(uiNeeded, pstText->uiRoom + pstText->uiRoom / 2);
    auto *pucData = static_cast<uint8_t *>(realloc(pstText->pucData, uiRoom));
    if (pucData == nullptr) return false;
    pstText->pucData = pucData;
    pstText->uiRoom = uiRoom;
    return true;
}

} // namespace

bool Append_HostText(HostText *pstText, const uint8_t *pucPiece, size_t uiBytes, bool bLast, size_t *puiTaken)
{
    if (pstText->eUnit == E_HOST_TEXT_UNKNOWN) pstText->eUnit = Detect_Unit(pucPiece, uiBytes);
    if (!Reserve_Room(pstText, uiBytes)) return false;
    Piece stPiece = {pucPiece, pucPiece + uiBytes, pstText->pucData + pstText->uiBytes, bLast};
    switch (pstText->eUnit) {
    case E_HOST_TEXT_UTF16_SAME: Convert_Piece<uint16_t, 0x000D, 0x000A>(&stPiece); break;
    case E_HOST_TEXT_UTF16_SWAPPED: Convert_Piece<uint16_t, 0x0D00, 0x0A00>(&stPiece); break;
    default: Convert_Piece<uint8_t, '\r', '\n'>(&stPiece); break;
    }
    *puiTaken = static_cast<size_t>(stPiece.pucIn - pucPiece);
    pstText->uiBytes = static_cast<size_t>(stPiece.pucOut - pstText->pucData);
    return pstText->uiBytes <= INT32_MAX;
}
