/*
 * Runs of plain text out of the current stream's read buffer. Both calls take only what the buffer holds and
 * stop before whatever is not plain: a stop unit, a character that the buffer's end cuts, a byte that is not
 * decoded here. Get_CharCode() then reads that character; a run may well be empty.
 */
#pragma once

#include <cstddef>
#include <initializer_list>

#include "text/byte_block.h"
#include "text/char_reader.h"

/** A run that was taken. */
struct PlainRun {
    uint32_t uiUnits; // units taken
    bool bLastBlank;  // the last unit taken (or the one before the run) is a blank
};

template <StopUnits STOPS>
struct StopTable {
    bool abStop[128];
    constexpr StopTable() : abStop()
    {
        for (uint32_t uiUnit = 0; uiUnit < 128; ++uiUnit) abStop[uiUnit] = STOPS.Holds(uiUnit);
    }
    constexpr bool Is_Stop(uint32_t uiUnit, bool bPrevBlank) const
    {
        return uiUnit < 128 && (abStop[uiUnit] || (STOPS.bBlankRuns && bPrevBlank && uiUnit == 0x20));
    }
};

template <StopUnits STOPS>
inline constexpr StopTable<STOPS> STOP_TABLE{};

/** How the bytes from 0x80 on are to be read. */
enum HighBytes : uint32_t { E_HIGH_SINGLE, E_HIGH_DOUBLE, E_HIGH_UTF8, E_HIGH_UNKNOWN };

inline HighBytes Get_HighBytes()
{
    if (s_uiTextEncoding == E_TEXT_ENCODING_UTF8) return E_HIGH_UTF8;
    if ((s_uiParsingOption & E_PARSING_OPTION_SINGLE_BYTE) != 0) return E_HIGH_SINGLE;
    return pstQuibCaptionParserInfo->uiOutputTextCharacterSet == E_OUTPUT_CHARSET_ANSI ? E_HIGH_DOUBLE
                                                                                       : E_HIGH_UNKNOWN;
}

/** @return whether a word begins with three bytes of the form of one UTF-8 character. */
constexpr bool Is_ThreeByteForm(uint32_t uiWord)
{
    return (uiWord & 0xC0C0F0) == 0x8080E0;
}

constexpr uint32_t Get_ThreeByteUnit(uint32_t uiWord)
{
    return (uiWord & 0x0F) << 12 | (uiWord >> 2 & 0xFC0) | (uiWord >> 16 & 0x3F);
}

/** Decode a UTF-8 character of two or three bytes. @return its bytes, or 0 to leave it to the reader. */
inline uint32_t Decode_Utf8(const uint8_t *pucByte, const uint8_t *pucEnd, uint16_t *pusUnit)
{
    uint32_t uiWord = 0;
    std::memcpy(&uiWord, pucByte, pucEnd - pucByte >= 3 ? 3 : static_cast<size_t>(pucEnd - pucByte));
    uint32_t uiUnit = 0;
    uint32_t uiBytes = 0;
    if (Is_ThreeByteForm(uiWord)) {
        uiUnit = Get_ThreeByteUnit(uiWord);
        uiBytes = 3;
    } else if ((uiWord & 0xC0E0) == 0x80C0) {
        uiUnit = (uiWord & 0x1F) << 6 | (uiWord >> 8 & 0x3F);
        uiBytes = 2;
    }
    *pusUnit = static_cast<uint16_t>(uiUnit);
    return uiUnit < 0x80 ? 0 : uiBytes; // an overlong form may hide a stop unit
}

/** Decode a character that begins with a byte of 0x80 or above. @return its bytes, or 0 to leave it to the
 * reader. */
inline uint32_t Decode_HighByte(const uint8_t *pucByte, const uint8_t *pucEnd, HighBytes eHigh,
                                uint16_t *pusUnit)
{
    if (eHigh == E_HIGH_UTF8) return Decode_Utf8(pucByte, pucEnd, pusUnit);
    const uint32_t uiLead = pucByte[0];
    if (eHigh == E_HIGH_SINGLE) {
        *pusUnit = static_cast<uint16_t>(uiLead);
        return 1;
    }
    if (eHigh != E_HIGH_DOUBLE || pucEnd - pucByte < 2) return 0;
    *pusUnit = static_cast<uint16_t>((uiLead << 8) | pucByte[1]);
    return 2;
}

/** How far the bytes and units of a run have been taken. */
struct HighRun {
    const uint8_t *pucByte;
    uint16_t *pusNext;
};

/** Take characters that begin with a byte of 0x80 or above. @param[in] bBlanks  also blanks in front of such
 * a character */
void Take_HighUnits(HighRun &stRun, const uint8_t *pucEnd, const uint16_t *pusEnd, bool bBlanks);

template <StopUnits STOPS>
PlainRun Take_ByteRun(CaptionStreamInfo &stInfo, uint16_t *pusTarget, uint32_t uiMax, bool bPrevBlank)
{
    constexpr ptrdiff_t BLOCK = BLOCK_BYTES;
    HighRun stRun = {stInfo.pucStreamBuf + stInfo.iStreamBufIndex, pusTarget};
    const uint8_t *const pucEnd = stInfo.pucStreamBuf + stInfo.iStreamDataSize;
    const uint16_t *const pusEnd = pusTarget + uiMax;
    while (stRun.pusNext < pusEnd && stRun.pucByte < pucEnd) {
        if (*stRun.pucByte >= 0x80) {
            const uint16_t *const pusFirst = stRun.pusNext;
            Take_HighUnits(stRun, pucEnd, pusEnd, !STOPS.Holds(0x20));
            if (stRun.pusNext == pusFirst) break;
            bPrevBlank = stRun.pusNext[-1] == 0x20;
        } else if (pusEnd - stRun.pusNext >= BLOCK && pucEnd - stRun.pucByte >= BLOCK) {
            const uint32_t uiPlain = Find_StopByte<STOPS, false>(stRun.pucByte, bPrevBlank);
            Store_Units(stRun.pusNext, stRun.pucByte);
            stRun.pusNext += uiPlain;
            stRun.pucByte += uiPlain;
            if (uiPlain > 0) bPrevBlank = stRun.pucByte[-1] == 0x20;
            if (uiPlain < BLOCK_BYTES && *stRun.pucByte < 0x80) break;
        } else {
            if (STOP_TABLE<STOPS>.Is_Stop(*stRun.pucByte, bPrevBlank)) break;
            bPrevBlank = *stRun.pucByte == 0x20;
            *stRun.pusNext++ = *stRun.pucByte++;
        }
    }
    stInfo.iStreamBufIndex = static_cast<int32_t>(stRun.pucByte - stInfo.pucStreamBuf);
    return {static_cast<uint32_t>(stRun.pusNext - pusTarget), bPrevBlank};
}

template <StopUnits STOPS>
PlainRun Take_UnitRun(CaptionStreamInfo &stInfo, uint16_t *pusTarget, uint32_t uiMax, bool bPrevBlank)
{
    const bool bBigEndian = s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE;
    const uint8_t *const pucBytes = stInfo.pucStreamBuf + stInfo.iStreamBufIndex;
    const uint32_t uiHeld = static_cast<uint32_t>(stInfo.iStreamDataSize - stInfo.iStreamBufIndex) / 2;
    const uint32_t uiEnd = uiHeld < uiMax ? uiHeld : uiMax;
    uint32_t uiUnits = 0;
    while (uiUnits < uiEnd) {
        const uint8_t *const pucUnit = pucBytes + size_t{2} * uiUnits;
        uint32_t uiPlain =
            uiEnd - uiUnits >= BLOCK_UNITS ? Find_StopUnit<STOPS>(pucUnit, bBigEndian, bPrevBlank) : 1;
        const bool bStop = uiPlain < BLOCK_UNITS && uiEnd - uiUnits >= BLOCK_UNITS;
        for (uint32_t uiIndex = 0; uiIndex < uiPlain; ++uiIndex) {
            const uint32_t uiFirst = pucUnit[size_t{2} * uiIndex];
            const uint32_t uiSecond = pucUnit[size_t{2} * uiIndex + 1];
            pusTarget[uiUnits + uiIndex] =
                static_cast<uint16_t>(bBigEndian ? (uiFirst << 8) | uiSecond : (uiSecond << 8) | uiFirst);
        }
        if (uiEnd - uiUnits < BLOCK_UNITS && STOP_TABLE<STOPS>.Is_Stop(pusTarget[uiUnits], bPrevBlank)) break;
        uiUnits += uiPlain;
        if (uiPlain > 0) bPrevBlank = pusTarget[uiUnits - 1] == 0x20;
        if (bStop) break;
    }
    stInfo.iStreamBufIndex += static_cast<int32_t>(2 * uiUnits);
    return {uiUnits, bPrevBlank};
}

/**
 * Take plain units off the current stream.
 *
 * @param[out] pusTarget   room for uiMax units; what lies behind the units taken may be overwritten
 * @param[in]  bPrevBlank  the unit before the run is a blank, so that a blank at its start would be a second
 * one
 */
template <StopUnits STOPS>
PlainRun Take_PlainRun(uint16_t *pusTarget, uint32_t uiMax, bool bPrevBlank)
{
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    if (stInfo.iStreamBufIndex >= stInfo.iStreamDataSize) return {0, bPrevBlank};
    if (s_uiTextEncoding - E_TEXT_ENCODING_UTF16LE <= 1u)
        return Take_UnitRun<STOPS>(stInfo, pusTarget, uiMax, bPrevBlank);
    return Take_ByteRun<STOPS>(stInfo, pusTarget, uiMax, bPrevBlank);
}

/** @return whether the next byte of single-byte or UTF-8 text is known to be a stop: a run would be empty. */
template <StopUnits STOPS>
inline bool Is_StopAhead()
{
    const CaptionStreamInfo &stInfo = Get_StreamInfo();
    return s_uiTextEncoding - E_TEXT_ENCODING_UTF16LE > 1u &&
           stInfo.iStreamBufIndex < stInfo.iStreamDataSize &&
           STOP_TABLE<STOPS>.Is_Stop(stInfo.pucStreamBuf[stInfo.iStreamBufIndex], false);
}

/** @return whether the read buffer begins with a whole character in good form: the reader will give it next.
 */
inline bool Is_CharAhead()
{
    const CaptionStreamInfo &stInfo = Get_StreamInfo();
    const int32_t iHeld = Get_HeldBytes(stInfo);
    if (s_uiTextEncoding - E_TEXT_ENCODING_UTF16LE <= 1u) return iHeld >= 2;
    const uint8_t *const pucByte = stInfo.pucStreamBuf + stInfo.iStreamBufIndex;
    uint16_t usUnit = 0;
    return iHeld > 0 &&
           (*pucByte < 0x80 || Decode_HighByte(pucByte, pucByte + iHeld, Get_HighBytes(), &usUnit) > 0);
}

/**
 * Offer the units below 0x80 that the read buffer holds, one after the other, until fnTake(unit) refuses one
 * or another kind of unit stands there.
 */
template <typename Take>
inline void Take_AsciiUnits(Take fnTake)
{
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    const uint8_t *const pucEnd = stInfo.pucStreamBuf + stInfo.iStreamDataSize;
    const uint8_t *pucByte = stInfo.pucStreamBuf + stInfo.iStreamBufIndex;
    if (s_uiTextEncoding - E_TEXT_ENCODING_UTF16LE <= 1u) {
        const uint32_t uiLow = s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE ? 1 : 0;
        while (pucEnd - pucByte >= 2 && pucByte[1 - uiLow] == 0 && pucByte[uiLow] < 0x80 &&
               fnTake(pucByte[uiLow]))
            pucByte += 2;
    } else {
        while (pucByte < pucEnd && *pucByte < 0x80 && fnTake(*pucByte)) ++pucByte;
    }
    if (pucByte <= pucEnd) stInfo.iStreamBufIndex = static_cast<int32_t>(pucByte - stInfo.pucStreamBuf);
}

/** UTF-8 lead bytes that may begin an overlong form of a stop unit; every other byte from 0x80 on can be
 * passed over. */
template <StopUnits STOPS>
consteval StopUnits Add_OverlongLeads()
{
    StopUnits stStops = STOPS;
    for (const uint8_t ucLead : {uint8_t{0xC0}, uint8_t{0xC1}, uint8_t{0xE0}})
        stStops.aucUnit[stStops.uiNums++] = ucLead;
    return stStops;
}

/**
 * Step back from pucStop over bytes that decode to no character: the reader counts them to the character
 * behind them, so it must be the one that passes over them.
 *
 * @param[in] pucStart  a place before pucStop where a character begins
 */
inline const uint8_t *Unskip_Dropped(const uint8_t *pucStart, const uint8_t *pucStop)
{
    const uint8_t *pucByte = pucStop;
    while (pucByte > pucStart && pucByte[-1] >= 0x80) --pucByte;
    const uint8_t *pucBehindChar = pucByte;
    while (pucByte < pucStop) {
        uint16_t usUnit = 0;
        const uint32_t uiBytes = Decode_Utf8(pucByte, pucStop, &usUnit);
        pucByte += uiBytes == 0 ? 1 : uiBytes;
        if (uiBytes != 0) pucBehindChar = pucByte;
    }
    return pucBehindChar;
}

template <StopUnits STOPS>
inline const uint8_t *Find_Utf8Stop(const uint8_t *pucByte, const uint8_t *pucEnd)
{
    constexpr StopUnits BYTE_STOPS = Add_OverlongLeads<STOPS>();
    while (pucEnd - pucByte >= static_cast<ptrdiff_t>(BLOCK_BYTES)) {
        const uint32_t uiPlain = Find_StopByte<BYTE_STOPS, true>(pucByte, false);
        pucByte += uiPlain;
        if (uiPlain < BLOCK_BYTES) return pucByte;
    }
    while (pucByte < pucEnd && !BYTE_STOPS.Holds(*pucByte)) ++pucByte;
    return pucByte;
}

template <StopUnits STOPS>
inline const uint8_t *Skip_Utf8Run(const uint8_t *pucStart, const uint8_t *pucEnd)
{
    const uint8_t *const pucStop = Find_Utf8Stop<STOPS>(pucStart, pucEnd);
    return pucStop > pucStart && pucStop[-1] >= 0x80 ? Unskip_Dropped(pucStart, pucStop) : pucStop;
}

template <StopUnits STOPS>
inline const uint8_t *Skip_AnsiRun(const uint8_t *pucByte, const uint8_t *pucEnd)
{
    const bool bSingle = (s_uiParsingOption & E_PARSING_OPTION_SINGLE_BYTE) != 0;
    while (pucByte < pucEnd) {
        if (pucEnd - pucByte >= static_cast<ptrdiff_t>(BLOCK_BYTES)) {
            const uint32_t uiPlain = Find_StopByte<STOPS, false>(pucByte, false);
            pucByte += uiPlain;
            if (uiPlain == BLOCK_BYTES) continue;
        }
        if (*pucByte < 0x80 ? STOP_TABLE<STOPS>.Is_Stop(*pucByte, false) : !bSingle && pucEnd - pucByte < 2)
            break;
        pucByte += *pucByte < 0x80 || bSingle ? 1 : 2;
    }
    return pucByte;
}

template <StopUnits STOPS>
inline const uint8_t *Skip_Utf16Run(const uint8_t *pucByte, const uint8_t *pucEnd)
{
    const bool bBigEndian = s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE;
    while (pucEnd - pucByte >= static_cast<ptrdiff_t>(BLOCK_BYTES)) {
        const uint32_t uiPlain = Find_StopUnit<STOPS>(pucByte, bBigEndian, false);
        pucByte += size_t{2} * uiPlain;
        if (uiPlain < BLOCK_UNITS) return pucByte;
    }
    for (; pucEnd - pucByte >= 2; pucByte += 2) {
        const uint32_t uiUnit = bBigEndian ? (static_cast<uint32_t>(pucByte[0]) << 8) | pucByte[1]
                                           : (static_cast<uint32_t>(pucByte[1]) << 8) | pucByte[0];
        if (STOP_TABLE<STOPS>.Is_Stop(uiUnit, false)) break;
    }
    return pucByte;
}

/** Pass over units that are no stops (STOPS.bBlankRuns must be false). @return bytes passed over. */
template <StopUnits STOPS>
inline uint32_t Skip_PlainRun()
{
    static_assert(!STOPS.bBlankRuns);
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    if (stInfo.iStreamBufIndex >= stInfo.iStreamDataSize) return 0;
    const uint8_t *const pucStart = stInfo.pucStreamBuf + stInfo.iStreamBufIndex;
    const uint8_t *const pucEnd = stInfo.pucStreamBuf + stInfo.iStreamDataSize;
    const uint8_t *pucByte = pucStart;
    if (s_uiTextEncoding - E_TEXT_ENCODING_UTF16LE <= 1u)
        pucByte = Skip_Utf16Run<STOPS>(pucStart, pucEnd);
    else if (s_uiTextEncoding == E_TEXT_ENCODING_UTF8)
        pucByte = Skip_Utf8Run<STOPS>(pucStart, pucEnd);
    else
        pucByte = Skip_AnsiRun<STOPS>(pucStart, pucEnd);
    stInfo.iStreamBufIndex = static_cast<int32_t>(pucByte - stInfo.pucStreamBuf);
    return static_cast<uint32_t>(pucByte - pucStart);
}
