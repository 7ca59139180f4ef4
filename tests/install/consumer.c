/* A program of somebody else: what the installed headers and libraries must give it. */
#include <stdio.h>
#include <stdlib.h>
#include <zyr/zyr_display.h>
#include <zyr/zyr_host.h>
#include <zyr/zyr_subtitle.h>

enum { DISPLAY_WIDTH = 800, DISPLAY_HEIGHT = 480 }; /* the LCD */

static int Is_CaptionSeen(void)
{
    static uint8_t s_aucRgba[DISPLAY_WIDTH * DISPLAY_HEIGHT * 4];
    if (zyr_host_composeCaption(s_aucRgba, DISPLAY_WIDTH, DISPLAY_HEIGHT) != 0) return 0;
    for (size_t uiByte = 0; uiByte < sizeof s_aucRgba; ++uiByte)
        if (s_aucRgba[uiByte] != 0 && uiByte % 4 != 3) return 1;
    return 0;
}

static int Is_TextShown(void)
{
    static const uint16_t ausText[] = {'L', 'a', 'm', 'p', 0};
    zyr_host_setProperty("ro.board.platform", "zyr72xx");
    zyr_host_setProperty("persist.sys.output_mode", "lcd");
    if (zyr_display_open() != 0) return 0;
    zyr_display_displayString(ausText, 4);
    zyr_display_setOnoff(1);
    const int iSeen = Is_CaptionSeen();
    zyr_display_close();
    return iSeen;
}

int main(int argc, char **argv)
{
    uint32_t uiStream, uiLines, uiBytes, uiFrames = 0;
    int32_t iStart, iEnd;
    uint8_t *pucText;

    if (argc != 2 || zyr_host_version() != ZYR_HOST_VERSION || ZYR_VERSION < ZYR_MAKE_VERSION(1, 0, 0))
        return 2;
    zyr_host_setLineEnds(1); /* bare line feeds: only the host layer in use makes them end lines */
    if (zyrSubtitle_open(argv[1], 0) != 0) return 3;
    while (zyrSubtitle_getFrame(&uiStream, &iStart, &iEnd, &uiLines, &uiBytes, &pucText) == 0) ++uiFrames;
    zyrSubtitle_close();
    if (zyr_host_allocations() == 0) return 4; /* somebody else's layer was asked */
    if (zyr_host_liveBytes() != 0) return 5;
    printf("%lu frames, caption %s\n", (unsigned long)uiFrames, Is_TextShown() ? "shown" : "missing");
    return 0;
}
