/* What holds of the engine's record and statics whenever an exported call has come back, whatever the call, the file
 * and the host have done. */
#pragma once

/** @return what does not hold, or NULL */
const char *Find_BrokenInvariant();
