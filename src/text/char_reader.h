/* Reading the subtitle file, character by character, through the read buffer of the current stream. */
#pragma once

#include <cstdint>

#include "record/parser_state.h"
#include "text/text_kind.h"

/** The part of Get_CharCode() that refills the buffer and decodes characters of several bytes. */
int32_t Get_DecodedChar(void *hFile, uint16_t *pusChar, int32_t iRawMode);

/**
 * Read one character.
 *
 * @param[out] pusChar   the character, as one 16-bit unit
 * @param[in]  iRawMode  1: double-byte characters are passed over and given as 0xFFFF
 * @return bytes taken from the file, passed-over ones included; 0 at its end; negative on a failed read, and
 *         NO_CAPTION_DATA once the stream is marked as exhausted
 */
inline int32_t Get_CharCode(void *hFile, uint16_t *pusChar, int32_t iRawMode)
{
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    if (stInfo.iStreamBufIndex < stInfo.iStreamDataSize && !Is_Utf16Text()) {
        const uint8_t ucByte = stInfo.pucStreamBuf[stInfo.iStreamBufIndex];
        if (ucByte < 0x80) {
            ++stInfo.iStreamBufIndex;
            *pusChar = ucByte;
            return 1;
        }
    }
    return Get_DecodedChar(hFile, pusChar, iRawMode);
}

/** @return file position of the next character, bytes; after a failed read, when nothing is held, the file's.
 */
int64_t Get_ReadPosition(void *hFile);

/** The same. @return where the file stands, or a negative value when it had to be asked and did not say */
int64_t Tell_ReadPosition(void *hFile, int64_t *pllPos);

/** The same, whatever the reader knows: a host may have moved the file. */
int64_t Ask_ReadPosition(void *hFile, int64_t *pllPos);

/** The same without asking the file. @return whether it is known */
bool Get_KnownPosition(const void *hFile, int64_t *pllPos);

/**
 * Ask the file, which a host may have moved, whether the next character stands at a position.
 *
 * @return false also when the file does not tell, and once the stream is marked as exhausted
 */
bool Is_ReaderAt(void *hFile, int64_t llPos);

/** How much of the file the next refill is likely to need. */
enum ReadAhead : uint32_t {
    E_READ_AHEAD_FULL,  // the text behind the position will be read on
    E_READ_AHEAD_SHORT, // a jump: one frame is wanted
};

/**
 * Move the reader of the current stream, which also takes an end-of-data mark away. When the buffer still
 * holds the position, it is used as it is.
 *
 * @return the position reached, or a negative value when the file could not be moved
 */
int64_t Move_ReadPosition(void *hFile, int64_t llPos, ReadAhead eReadAhead);

/**
 * The same for a position that the buffer holds, and as far as it holds what stands behind it: the file is not moved,
 * which must be done before more of it is read.
 *
 * @return false with nothing changed when the buffer does not hold it
 */
bool Go_ToHeld(const void *hFile, int64_t llPos);

/** Have the buffer hold what is read next. @return 1, or what reading it gives: 0 at the end of the file, negative (logged) */
int32_t Hold_NextByte(void *hFile);

/** Refill the current stream's buffer. @return bytes read, 0 at the end of the file, negative on an error. */
int32_t Fill_StreamBuffer(void *hFile);

/** Forget what the read buffers hold: another file, or other buffers, are in use. */
void Forget_StreamBuffers();

/** @return a number that changes whenever Forget_StreamBuffers() is called: what was learnt of a file goes then. */
uint32_t Get_ReaderRound();

/** Let the reader give bytes again that it has just taken. @return whether the buffer holds them all */
inline bool Give_BytesBack(int32_t iBytes)
{
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    if (iBytes > stInfo.iStreamBufIndex) return false;
    stInfo.iStreamBufIndex -= iBytes;
    return true;
}

/** What the current stream's read buffer holds and has not given yet. */
struct HeldBytes {
    const uint8_t *pucBegin;
    const uint8_t *pucEnd;
};

inline HeldBytes Look_Ahead()
{
    const CaptionStreamInfo &stInfo = Get_StreamInfo();
    const uint8_t *const pucBegin = stInfo.pucStreamBuf + stInfo.iStreamBufIndex;
    return {pucBegin, pucBegin + Get_HeldBytes(stInfo)};
}

/** Take bytes that the read buffer holds. */
inline void Take_HeldBytes(uint32_t uiBytes)
{
    Get_StreamInfo().iStreamBufIndex += static_cast<int32_t>(uiBytes);
}

/** Mark the current stream's data as exhausted. */
inline void Mark_EndOfData()
{
    Get_StreamInfo().iStreamDataSize = NO_CAPTION_DATA;
}
