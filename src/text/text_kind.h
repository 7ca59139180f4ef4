/* How the bytes of the open file's text are to be taken. */
#pragma once

#include <cstdint>

#include "record/parser_state.h"

/** @return the character set in which text goes out unless the host asks for another one. */
inline uint32_t Get_OwnCharset()
{
    static constexpr uint32_t CHARSETS[] = {E_OUTPUT_CHARSET_ANSI, E_OUTPUT_CHARSET_UTF16,
                                            E_OUTPUT_CHARSET_UTF16, E_OUTPUT_CHARSET_UTF8};
    return CHARSETS[s_uiTextEncoding];
}

/** Text that goes out as it stands in the file (E_TEXT_SINGLE: but for a zero before each byte from 0x80 on). */
enum TextKind : uint32_t {
    E_TEXT_UTF8,
    E_TEXT_DOUBLE, // a byte from 0x80 on begins a character of two bytes
    E_TEXT_SINGLE,
    E_TEXT_UTF16,
    E_TEXT_OTHER, // the host has asked for another output than the text's own
};

inline TextKind Get_TextKind()
{
    if (pstQuibCaptionParserInfo->uiOutputTextCharacterSet != Get_OwnCharset()) return E_TEXT_OTHER;
    switch (s_uiTextEncoding) {
    case E_TEXT_ENCODING_UTF8: return E_TEXT_UTF8;
    case E_TEXT_ENCODING_ANSI:
        return (s_uiParsingOption & E_PARSING_OPTION_SINGLE_BYTE) != 0 ? E_TEXT_SINGLE : E_TEXT_DOUBLE;
    default: return E_TEXT_UTF16;
    }
}

/** @return whether a character is a 16-bit unit, of whichever byte order. */
inline bool Is_Utf16Text()
{
    return s_uiTextEncoding - E_TEXT_ENCODING_UTF16LE <= 1u;
}

inline bool Is_BigEndianText()
{
    return s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE;
}

/** @return the UTF-16 unit that stands at a place. */
inline uint16_t Get_Utf16Unit(const uint8_t *pucUnit, bool bBigEndian)
{
    return static_cast<uint16_t>(bBigEndian ? pucUnit[0] << 8 | pucUnit[1] : pucUnit[1] << 8 | pucUnit[0]);
}

/** @return bytes of the smallest character. */
inline uint32_t Get_UnitBytes()
{
    return Is_Utf16Text() ? 2 : 1;
}
