/* The usual SubViewer frame: a time line of the full form, text with line breaks in good form. */
#pragma once

#include <cstdint>

/** Take the frame at the read position, if it is usual, as the current stream's frame. @return whether it was */
bool Take_UsualSubViewer();

/** Pass over the frame at the read position, if it is usual. @param[out] puiStart  its start, ms @return whether it was */
bool Pass_UsualSubViewer(uint32_t *puiStart);
