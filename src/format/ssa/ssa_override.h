/* Override blocks of SSA text: "{\" name parameter "}". */
#pragma once

#include <cstdint>

/**
 * Carry an override block out.
 *
 * @param[in] pusBlock  the units behind the "{"
 * @param[in] uiLen     units, the closing "}" included
 * @return false when it is malformed or not known (what is known of the reason is logged)
 */
bool Apply_SSAOverride(const uint16_t *pusBlock, uint32_t uiLen);
