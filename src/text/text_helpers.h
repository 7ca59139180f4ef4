/* Numbers and names in 16-bit text. QUIBCAPTPARS_Str2Number() and _StrCmp() are declared in
 * zyr/quib_caption.h. */
#pragma once

#include <cstdint>

constexpr bool Is_Digit(uint32_t uiUnit)
{
    return uiUnit - '0' < 10;
}

constexpr bool Is_Blank(uint32_t uiUnit)
{
    return uiUnit == ' ' || uiUnit == '\t';
}

constexpr bool Is_LineEnd(uint32_t uiUnit)
{
    return uiUnit == '\r' || uiUnit == '\n';
}

constexpr bool Is_Space(uint32_t uiUnit)
{
    return Is_Blank(uiUnit) || Is_LineEnd(uiUnit);
}

/** Fold an ASCII letter to upper case. */
constexpr uint32_t To_Upper(uint32_t uiUnit)
{
    return uiUnit - 'a' < 26 ? uiUnit - 'a' + 'A' : uiUnit;
}

/** @return value of a hexadecimal digit of either case, or -1. */
constexpr int32_t Get_HexValue(uint32_t uiUnit)
{
    if (Is_Digit(uiUnit)) return static_cast<int32_t>(uiUnit - '0');
    const uint32_t uiLetter = To_Upper(uiUnit) - 'A';
    return uiLetter < 6 ? static_cast<int32_t>(uiLetter + 10) : -1;
}

/** 24-bit RRGGBB (or any 32-bit word with those low bits) as RGB565. */
constexpr uint16_t Get_Rgb565(uint32_t uiColour)
{
    return static_cast<uint16_t>(((uiColour >> 8) & 0xF800) | ((uiColour >> 5) & 0x07E0) |
                                 ((uiColour >> 3) & 0x001F));
}

/** Compare uiLen bytes, ASCII case aside. Zero bytes are compared like others. @return 1 equal, 0 different,
 * uiLen 0 or a NULL. */
uint32_t Compare_StringNoCase(const void *pvA, const void *pvB, uint32_t uiLen);

/**
 * Copy up to uiMax ASCII units as bytes into a zero-filled buffer.
 *
 * @return units copied; less than uiLen when a unit above 0x7F stands there, which *pusBad then is
 */
uint32_t Copy_AsciiUnits(char *pszTarget, const uint16_t *pusUnits, uint32_t uiLen, uint16_t *pusBad);
