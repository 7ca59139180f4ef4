/*
 * The usual forms of the two tags that make up a SAMI file, straight from the read buffer. Nearly all SYNC
 * and P tags have them; all others, and those that the buffer's end cuts, are left to the state machines.
 */
#pragma once

#include <cstdint>

#include "caption/parser_state.h"
#include "parser/text_helpers.h"

constexpr uint32_t USUAL_TAG_UNITS = 32; // more than such a tag has
constexpr uint32_t USUAL_DIGITS = 9;     // of a time: no overflow

/** The next units of the read buffer, as long as they are single bytes or UTF-16. */
struct BufferUnits {
    const uint8_t *pucBytes;
    uint32_t uiUnitBytes; // 1 or 2
    uint32_t uiLow;       // byte of a unit that holds its low half
    bool bEnough;         // USUAL_TAG_UNITS units are there

    uint32_t operator[](uint32_t uiPos) const
    {
        if (uiUnitBytes == 1) return pucBytes[uiPos];
        return pucBytes[2 * uiPos + uiLow] | static_cast<uint32_t>(pucBytes[2 * uiPos + 1 - uiLow]) << 8;
    }
};

inline BufferUnits Get_BufferUnits()
{
    const CaptionStreamInfo &stInfo = Get_StreamInfo();
    const uint32_t uiUnitBytes = s_uiTextEncoding - E_TEXT_ENCODING_UTF16LE <= 1u ? 2 : 1;
    return {stInfo.pucStreamBuf + stInfo.iStreamBufIndex, uiUnitBytes,
            s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE ? 1u : 0u,
            stInfo.iStreamDataSize - stInfo.iStreamBufIndex >=
                static_cast<int32_t>(USUAL_TAG_UNITS * uiUnitBytes)};
}

/** Take units off the read buffer. @return their bytes. */
inline uint32_t Take_BufferUnits(const BufferUnits &stUnits, uint32_t uiNums)
{
    Get_StreamInfo().iStreamBufIndex += static_cast<int32_t>(uiNums * stUnits.uiUnitBytes);
    return uiNums * stUnits.uiUnitBytes;
}

/** @return whether the units begin with this text (given in upper case), in any case. */
template <uint32_t BYTES>
inline bool Begins_With(const BufferUnits &stUnits, const char (&szText)[BYTES])
{
    for (uint32_t uiPos = 0; uiPos < BYTES - 1; ++uiPos)
        if (To_Upper(stUnits[uiPos]) != static_cast<uint8_t>(szText[uiPos])) return false;
    return true;
}

/** Look at a tag "<SYNC START=1000>". @return its units, or 0 for anything else. */
inline uint32_t Match_SyncTag(const BufferUnits &stUnits, uint32_t *puiStart)
{
    constexpr uint32_t VALUE = sizeof("<SYNC START=") - 1;
    if (!Begins_With(stUnits, "<SYNC START=")) return 0;
    uint32_t uiPos = VALUE;
    *puiStart = 0;
    for (; uiPos < VALUE + USUAL_DIGITS && Is_Digit(stUnits[uiPos]); ++uiPos)
        *puiStart = *puiStart * 10 + (stUnits[uiPos] - '0');
    return uiPos > VALUE && stUnits[uiPos] == '>' ? uiPos + 1 : 0;
}

/**
 * Look at a tag "<P CLASS=KRCC>".
 *
 * @param[out] pusName  room for ZYR_CLASS_NAME_UNITS units; the name in upper case
 * @return units of the tag, or 0 for anything else
 */
inline uint32_t Match_ParagraphTag(const BufferUnits &stUnits, uint16_t *pusName, uint32_t *puiUnits)
{
    constexpr uint32_t VALUE = sizeof("<P CLASS=") - 1;
    if (!Begins_With(stUnits, "<P CLASS=")) return 0;
    uint32_t uiNums = 0;
    for (; uiNums < ZYR_CLASS_NAME_UNITS; ++uiNums) {
        const uint32_t uiUnit = To_Upper(stUnits[VALUE + uiNums]);
        if (!Is_Digit(uiUnit) && uiUnit - 'A' >= 26) break;
        pusName[uiNums] = static_cast<uint16_t>(uiUnit);
    }
    *puiUnits = uiNums;
    return uiNums > 0 && stUnits[VALUE + uiNums] == '>' ? VALUE + uiNums + 1 : 0;
}
