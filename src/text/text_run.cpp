#include "text/text_run.h"

namespace
{

constexpr uint32_t BLANK = 0x20;

/** Take UTF-8 characters of three bytes, with which most scripts are written, and lone blanks between them,
 * while a word can be read at each. */
void Take_ThreeByteUnits(HighRun &stTaken, const uint8_t *pucEnd, const uint16_t *pusEnd, bool bBlanks)
{
    HighRun stRun = stTaken;
    uint32_t uiWord = 0;
    while (stRun.pusNext < pusEnd && pucEnd - stRun.pucByte >= static_cast<ptrdiff_t>(sizeof(uiWord))) {
        std::memcpy(&uiWord, stRun.pucByte, sizeof(uiWord));
        if (Is_ThreeByteForm(uiWord)) {
            const uint32_t uiUnit = Get_ThreeByteUnit(uiWord);
            if (uiUnit < 0x80) break;
            *stRun.pusNext++ = static_cast<uint16_t>(uiUnit);
            stRun.pucByte += 3;
        } else if (bBlanks && (uiWord & 0x80FF) == (0x8000 | BLANK)) {
            *stRun.pusNext++ = BLANK;
            ++stRun.pucByte;
        } else {
            break;
        }
    }
    stTaken = stRun;
}

/** The same of double-byte characters. */
void Take_DoubleBytes(HighRun &stTaken, const uint8_t *pucEnd, const uint16_t *pusEnd, bool bBlanks)
{
    HighRun stRun = stTaken;
    while (stRun.pusNext < pusEnd && pucEnd - stRun.pucByte >= 2) {
        const uint32_t uiLead = stRun.pucByte[0];
        const uint32_t uiNext = stRun.pucByte[1];
        const bool bBlank = bBlanks && uiLead == BLANK && uiNext >= 0x80;
        if (uiLead < 0x80 && !bBlank) break;
        *stRun.pusNext++ = static_cast<uint16_t>(bBlank ? BLANK : uiLead << 8 | uiNext);
        stRun.pucByte += bBlank ? 1 : 2;
    }
    stTaken = stRun;
}

} // namespace

void Take_HighUnits(HighRun &stRun, const uint8_t *pucEnd, const uint16_t *pusEnd, bool bBlanks)
{
    const HighBytes eHigh = Get_HighBytes();
    if (eHigh == E_HIGH_UTF8) Take_ThreeByteUnits(stRun, pucEnd, pusEnd, bBlanks);
    if (eHigh == E_HIGH_DOUBLE) Take_DoubleBytes(stRun, pucEnd, pusEnd, bBlanks);
    while (stRun.pusNext < pusEnd && stRun.pucByte < pucEnd && *stRun.pucByte >= 0x80) {
        const uint32_t uiBytes = Decode_HighByte(stRun.pucByte, pucEnd, eHigh, stRun.pusNext);
        if (uiBytes == 0) break;
        stRun.pucByte += uiBytes;
        ++stRun.pusNext;
    }
}
