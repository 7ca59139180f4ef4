/* The header alone, as C99, and a load from C. */
#include "zyr/zyr_captions.h"

uint32_t Count_FromC(const char *pszPath);

uint32_t Count_FromC(const char *pszPath)
{
    ZyrCaptions *pstCaptions = zyrCaptions_load(pszPath, NULL);
    const uint32_t uiCaptions = zyrCaptions_count(pstCaptions);
    zyrCaptions_free(pstCaptions);
    return uiCaptions;
}
