/* The usual SubRip entry: a number line, a time line of the full form, text with tags and entities in good form. */
#pragma once

#include <cstdint>

/** Take the entry at the read position, if it is usual, as the current stream's frame. @return whether it was */
bool Take_UsualSubRip();

/** Pass over the entry at the read position, if it is usual. @param[out] puiStart  its start, ms @return whether it was */
bool Pass_UsualSubRip(uint32_t *puiStart);
