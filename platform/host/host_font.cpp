#include "host_parts.h"
#include "zyr/zyr_host.h"
#include "zyr_ccfb.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace
{

constexpr const char *BOX_FONT = "/system/fonts/DroidSansFallback.ttf";
constexpr const char *DESKTOP_FONT = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";

char *s_pszFont; // as set, nullptr for the default

} // namespace

const char *zyr_platform_fontPath(void)
{
    if (s_pszFont != nullptr) return s_pszFont;
    const char *pszWanted = getenv("ZYR_FONT");
    if (pszWanted != nullptr && pszWanted[0] != '\0') return pszWanted;
    return access(BOX_FONT, R_OK) == 0 ? BOX_FONT : DESKTOP_FONT;
}

void zyr_host_setFontFile(const char *pszPath)
{
    char *pszCopy = pszPath != nullptr ? strdup(pszPath) : nullptr;
    if (pszPath != nullptr && pszCopy == nullptr) return;
    free(s_pszFont);
    s_pszFont = pszCopy;
}

const char *zyr_host_getFontFile(void)
{
    return zyr_platform_fontPath();
}

void Reset_HostFont()
{
    zyr_host_setFontFile(nullptr);
}
