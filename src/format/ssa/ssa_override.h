/* Override blocks of SSA text: "{\" name parameter "}". */
#pragma once

#include <cstdint>

/**
 * Carry an override block out; one that is malformed or not known is logged.
 *
 * @param[in] pusBlock  the units behind the "{"
 * @param[in] uiLen     units, the closing "}" included
 */
void Apply_SSAOverride(const uint16_t *pusBlock, uint32_t uiLen);
