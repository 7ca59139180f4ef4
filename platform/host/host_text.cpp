#include "host_text.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdlib>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace
{

// A block of the file is looked at in one step. The marks of a block have MARK_BITS bits for each of its
// bytes, the first byte's lowest; a unit is marked by all its bits or by its highest one.
#if defined(__SSE2__)
constexpr size_t BLOCK_BYTES = 16;
constexpr uint32_t MARK_BITS = 1;
constexpr uint64_t ALL_MARKS = 0xFFFF;
#else
static_assert(std::endian::native == std::endian::little, "the first byte of a word is its lowest");
constexpr size_t BLOCK_BYTES = 8;
constexpr uint32_t MARK_BITS = 8;
constexpr uint64_t ALL_MARKS = ~uint64_t{0};
#endif

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

// Marks the units of a block that are usUnit.
template <typename Unit>
uint64_t Mark_Units(const uint8_t *pucIn, Unit usUnit)
{
#if defined(__SSE2__)
    const __m128i vBlock = _mm_loadu_si128(reinterpret_cast<const __m128i *>(pucIn));
    const __m128i vEqual = sizeof(Unit) == 1
                               ? _mm_cmpeq_epi8(vBlock, _mm_set1_epi8(static_cast<char>(usUnit)))
                               : _mm_cmpeq_epi16(vBlock, _mm_set1_epi16(static_cast<int16_t>(usUnit)));
    return static_cast<uint32_t>(_mm_movemask_epi8(vEqual));
#else
    constexpr uint64_t ONES = ~uint64_t{0} / static_cast<Unit>(~Unit{0});
    constexpr uint64_t LOW_BITS = ~(ONES << (CHAR_BIT * sizeof(Unit) - 1));
    const uint64_t ullDifference = Load_Unit<uint64_t>(pucIn) ^ (ONES * usUnit);
    return ~(((ullDifference & LOW_BITS) + LOW_BITS) | ullDifference | LOW_BITS);
#endif
}

template <typename Unit, Unit usCr, Unit usLf>
void Write_LineEnd(Piece *pstPiece)
{
    constexpr Unit LINE_END[2] = {usCr, usLf};
    memcpy(pstPiece->pucOut, LINE_END, sizeof(LINE_END));
    pstPiece->pucOut += sizeof(LINE_END);
}

void Advance(Piece *pstPiece, size_t uiBytes)
{
    pstPiece->pucIn += uiBytes;
    pstPiece->pucOut += uiBytes;
}

// Copies blocks whose CRs and LFs all stand in pairs as they are, and turns LFs without a CR into pairs; that
// is all there is in most files. Stops in front of any other CR, or with less than a block left. The output
// has room for a block past the text.
template <typename Unit, Unit usCr, Unit usLf>
void Copy_CommonBlocks(Piece *pstPiece)
{
    constexpr uint32_t UNIT_MARK_BITS = MARK_BITS * sizeof(Unit);
    uint64_t ullAfterCr = 0; // the mark of the first unit when the block before ended with a CR
    while (pstPiece->pucEnd - pstPiece->pucIn >= static_cast<ptrdiff_t>(BLOCK_BYTES)) {
        const uint64_t ullCrs = Mark_Units<Unit>(pstPiece->pucIn, usCr);
        const uint64_t ullLfs = Mark_Units<Unit>(pstPiece->pucIn, usLf);
        memcpy(pstPiece->pucOut, pstPiece->pucIn, BLOCK_BYTES);
        if (ullLfs == ((ullCrs << UNIT_MARK_BITS & ALL_MARKS) | ullAfterCr)) {
            Advance(pstPiece, BLOCK_BYTES);
            ullAfterCr = ullCrs >> (BLOCK_BYTES * MARK_BITS - UNIT_MARK_BITS);
            continue;
        }
        if (ullAfterCr != 0) break;
        const uint64_t ullMarks = ullCrs | ullLfs;
        Advance(pstPiece, static_cast<size_t>(std::countr_zero(ullMarks)) / UNIT_MARK_BITS * sizeof(Unit));
        if ((ullMarks & (~ullMarks + 1) & ullCrs) != 0) return;
        pstPiece->pucIn += sizeof(Unit);
        Write_LineEnd<Unit, usCr, usLf>(pstPiece);
    }
    if (ullAfterCr == 0) return;
    pstPiece->pucIn -= sizeof(Unit); // back to the CR: what follows it has not been looked at
    pstPiece->pucOut -= sizeof(Unit);
}

// Copies up to a CR or LF that is to be looked at, or until less than a unit is left.
template <typename Unit, Unit usCr, Unit usLf>
void Copy_CommonUnits(Piece *pstPiece)
{
    Copy_CommonBlocks<Unit, usCr, usLf>(pstPiece);
    while (pstPiece->pucEnd - pstPiece->pucIn >= static_cast<ptrdiff_t>(sizeof(Unit))) {
        const auto usUnit = Load_Unit<Unit>(pstPiece->pucIn);
        if (usUnit == usCr || usUnit == usLf) return;
        memcpy(pstPiece->pucOut, &usUnit, sizeof(Unit));
        Advance(pstPiece, sizeof(Unit));
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
    for (;;) {
        Copy_CommonUnits<Unit, usCr, usLf>(pstPiece);
        if (pstPiece->pucEnd - pstPiece->pucIn < static_cast<ptrdiff_t>(sizeof(Unit))) break;
        const size_t uiUnits = Measure_LineEnd<Unit, usCr, usLf>(*pstPiece);
        if (uiUnits == 0) return;
        pstPiece->pucIn += uiUnits * sizeof(Unit);
        Write_LineEnd<Unit, usCr, usLf>(pstPiece);
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

// Room for the worst piece, nothing but line ends of one unit, and the block that a copy may write past it.
bool Reserve_Room(HostText *pstText, size_t uiBytes)
{
    if (uiBytes > INT32_MAX) return false;
    const size_t uiNeeded = pstText->uiBytes + 2 * uiBytes + BLOCK_BYTES;
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
