/* What both passes over an SSA file do with lines as most files write them. */
#pragma once

#include <cstring>

#include "text/char_reader.h"

/**
 * Take the key of a Dialogue line, if the read buffer holds it at the reader's place in its usual spelling,
 * one byte a unit. Whatever else stands there is left to the states that read keys.
 *
 * @return bytes taken, or 0
 */
inline uint32_t Take_DialogueKey()
{
    constexpr char KEY[] = "Dialogue:";
    constexpr uint32_t KEY_BYTES = sizeof(KEY) - 1;
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    if (Get_HeldBytes(stInfo) < static_cast<int32_t>(KEY_BYTES) ||
        s_uiTextEncoding == E_TEXT_ENCODING_UTF16LE || s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE ||
        std::memcmp(stInfo.pucStreamBuf + stInfo.iStreamBufIndex, KEY, KEY_BYTES) != 0)
        return 0;
    stInfo.iStreamBufIndex += static_cast<int32_t>(KEY_BYTES);
    return KEY_BYTES;
}
