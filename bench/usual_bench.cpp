/* usual_bench FILE: how many of a file's frames the engine read in its usual way. It links the engine's objects, whose counter
 * the library does not export. */
#include <cstdint>
#include <cstdio>
#include <string>

#include "zyr/zyr_subtitle.h"

/** Entries read in the usual way since the program began; an engine that has only one way is without it. */
extern uint32_t s_uiUsualEntries __attribute__((weak));

int main(int iArguments, char **ppszArguments)
{
    if (iArguments != 2) return 2;
    const std::string strFile = ppszArguments[1];
    if (zyrSubtitle_open((strFile.substr(0, strFile.rfind('.')) + ".avi").c_str(), 0) != 0) return 1;
    uint32_t uiFrames = 0;
    uint32_t uiStream = 0;
    uint32_t uiLines = 0;
    uint32_t uiLength = 0;
    int32_t iStart = 0;
    int32_t iEnd = 0;
    uint8_t *pucText = nullptr;
    while (zyrSubtitle_getFrame(&uiStream, &iStart, &iEnd, &uiLines, &uiLength, &pucText) == 0) ++uiFrames;
    printf("frames %u\n", uiFrames);
    if (&s_uiUsualEntries != nullptr) printf("usual %u\n", s_uiUsualEntries);
    return 0;
}
