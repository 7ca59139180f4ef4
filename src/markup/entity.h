/* Character entities: "&name;" and "&#digits;". */
#pragma once

#include <cstdint>

/**
 * Look an entity up.
 *
 * @param[in] pusEntity  begins at the "&"
 * @param[in] iLen       units, the closing ";" included if there is one; a name needs none, a number does
 * @return the UTF-16 unit, or 0 when the text is no known entity
 */
uint16_t Get_EntityCharCode(const uint16_t *pusEntity, int32_t iLen);
