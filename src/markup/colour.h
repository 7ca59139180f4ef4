/* Colour values of markup: names, and hexadecimal RRGGBB with or without "#". */
#pragma once

#include <cstdint>

/** Longest value that is looked at. */
constexpr uint32_t COLOUR_UNITS = 30;

/**
 * Resolve a colour.
 *
 * @param[in]  pusValue   the value; units above 0x7F and more than COLOUR_UNITS are refused
 * @param[out] pusColour  RGB565
 * @return whether it is a colour; if not, the reason is logged
 */
bool Resolve_Colour(const uint16_t *pusValue, uint32_t uiLen, uint16_t *pusColour);

/**
 * Copy a colour value as text, refusing what cannot be one.
 *
 * @param[out] szText  room for COLOUR_UNITS + 1 bytes, zero-filled behind the text
 * @return false when it is too long or not ASCII, which is logged
 */
bool Copy_ColourText(char *szText, const uint16_t *pusValue, uint32_t uiLen);

/** Read hexadecimal digits. @return false at the first other unit, which is logged with the whole text. */
bool Parse_HexColour(const char *pszDigits, uint32_t uiLen, const char *pszText, uint32_t *puiValue);
