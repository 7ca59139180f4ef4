#include "text/encoding.h"

#include "record/parser_state.h"
#include "text/text_block.h"

namespace
{

constexpr uint32_t INVALID_MAX = 20;   // more invalid bytes than this: not UTF-8
constexpr uint32_t SEQUENCES_MAX = 10; // more complete sequences than this: UTF-8

/** Continuation bytes that a lead byte announces; 0 for a byte that cannot lead. */
uint32_t Get_Announced(uint8_t ucByte)
{
    if (ucByte < 0xC2) return 0;
    if (ucByte < 0xE0) return 1;
    return ucByte < 0xF0 ? 2 : 3;
}

/** Count one byte of 0x80 or above, or any byte while continuation bytes are expected. */
void Count_Byte(Utf8Count *pstCount, uint8_t ucByte)
{
    if (ucByte == 0xC0 || ucByte == 0xC1 || ucByte > 0xF4) {
        ++pstCount->uiInvalid;
        pstCount->uiPending = 0;
    } else if (pstCount->uiPending > 0) {
        if ((ucByte & 0xC0) != 0x80) {
            ++pstCount->uiInvalid;
            pstCount->uiPending = 0;
        } else if (--pstCount->uiPending == 0) {
            ++pstCount->uiSequences;
        }
    } else if (ucByte >= 0x80) {
        pstCount->uiPending = Get_Announced(ucByte);
        if (pstCount->uiPending == 0) ++pstCount->uiInvalid;
    }
}

/** @return length of the run of bytes below 0x80 at the start. */
uint32_t Skip_Ascii(const uint8_t *pucBytes, uint32_t uiBytes)
{
    constexpr uint32_t STEP = 4 * BLOCK_BYTES;
    const auto fnLoad = [=](uint32_t uiPos) { return TextBlock::Load(pucBytes + uiPos); };
    uint32_t uiPos = 0;
    for (; uiPos + STEP <= uiBytes; uiPos += STEP) {
        const TextBlock stAll = fnLoad(uiPos) | fnLoad(uiPos + BLOCK_BYTES) |
                                fnLoad(uiPos + 2 * BLOCK_BYTES) | fnLoad(uiPos + 3 * BLOCK_BYTES);
        if (stAll.Get_HighBits() != 0) break;
    }
    while (uiPos < uiBytes && pucBytes[uiPos] < 0x80) ++uiPos;
    return uiPos;
}

} // namespace

uint32_t Get_MarkedEncoding(const uint8_t *pucBytes, int32_t iBytes)
{
    if (iBytes >= 2 && pucBytes[0] == 0xFF && pucBytes[1] == 0xFE) return E_TEXT_ENCODING_UTF16LE;
    if (iBytes >= 2 && pucBytes[0] == 0xFE && pucBytes[1] == 0xFF) return E_TEXT_ENCODING_UTF16BE;
    if (iBytes >= 3 && pucBytes[0] == 0xEF && pucBytes[1] == 0xBB && pucBytes[2] == 0xBF)
        return E_TEXT_ENCODING_UTF8;
    return E_TEXT_ENCODING_ANSI;
}

bool Count_Utf8(Utf8Count *pstCount, const uint8_t *pucBytes, uint32_t uiBytes)
{
    for (uint32_t uiPos = 0; uiPos < uiBytes; ++uiPos) {
        if (pstCount->uiPending == 0) uiPos += Skip_Ascii(pucBytes + uiPos, uiBytes - uiPos);
        if (uiPos == uiBytes) break;
        Count_Byte(pstCount, pucBytes[uiPos]);
        if (pstCount->uiInvalid > INVALID_MAX || pstCount->uiSequences > SEQUENCES_MAX) return true;
    }
    return false;
}

uint32_t Decide_Encoding(const Utf8Count &stCount)
{
    if (stCount.uiInvalid > INVALID_MAX) return E_TEXT_ENCODING_ANSI;
    if (stCount.uiSequences > SEQUENCES_MAX) return E_TEXT_ENCODING_UTF8;
    return stCount.uiSequences >= 1 && stCount.uiInvalid == 0 ? E_TEXT_ENCODING_UTF8 : E_TEXT_ENCODING_ANSI;
}
