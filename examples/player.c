/*
 * A media player's subtitles: the engine says which caption comes when, a clock runs, and the renderer draws
 * what is due over the picture.
 *
 *     player MOVIE [SPEED [FROM [PICTURE]]]
 *
 * SPEED times the real time (0: without waiting), from FROM milliseconds on. PICTURE is a PPM file for
 * the screen with the caption shown last.
 */
#define _POSIX_C_SOURCE 200809L

#include <errno.h>
#include <iconv.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <zyr/zyr_display.h>
#include <zyr/zyr_host.h>
#include <zyr/zyr_subtitle.h>

enum { SCREEN_WIDTH = 800, SCREEN_HEIGHT = 480, TEXT_UNITS = 2048 };
static const int32_t OPEN_END = 0x7FFFFFFF; /* the file does not tell when the caption goes */

typedef struct Caption {
    int32_t iStartMs;
    int32_t iEndMs;
    int32_t iUnits;
    uint16_t ausText[TEXT_UNITS];
    char szText[TEXT_UNITS]; /* for the list on standard output */
} Caption;

typedef struct Clock {
    double dSpeed;
    double dFromMs; /* movie time when the clock was started; with a speed of 0, now */
    struct timespec stStarted;
} Clock;

/* ---- The clock. A real player asks its audio output instead. ---- */

static int32_t Get_MovieTime(const Clock *pstClock)
{
    struct timespec stNow;
    clock_gettime(CLOCK_MONOTONIC, &stNow);
    const double dRealMs = (double)(stNow.tv_sec - pstClock->stStarted.tv_sec) * 1e3 +
                           (double)(stNow.tv_nsec - pstClock->stStarted.tv_nsec) / 1e6;
    return (int32_t)(pstClock->dFromMs + dRealMs * pstClock->dSpeed);
}

static void Wait_Until(Clock *pstClock, int32_t iTimeMs)
{
    if (pstClock->dSpeed <= 0) {
        if (iTimeMs > pstClock->dFromMs) pstClock->dFromMs = iTimeMs;
        return;
    }
    for (int32_t iLeftMs; (iLeftMs = iTimeMs - Get_MovieTime(pstClock)) > 0;) {
        const double dRealMs = iLeftMs / pstClock->dSpeed + 1;
        const struct timespec stPause = {(time_t)(dRealMs / 1e3), (long)(dRealMs * 1e6) % 1000000000L};
        nanosleep(&stPause, NULL);
    }
}

/* ---- Text: whatever the file's character set, the renderer takes UTF-16 in the machine's byte order. ----
 */

static const char *Get_Utf16Name(void)
{
    const uint16_t usOne = 1;
    return *(const uint8_t *)&usOne == 1 ? "UTF-16LE" : "UTF-16BE";
}

static const char *Get_CharsetName(void)
{
    switch (zyrSubtitle_getOutputTextCharacterSet()) {
    case 1: return "CP949"; /* the file is in a code page: the player has to know which */
    case 2: return Get_Utf16Name();
    default: return "UTF-8";
    }
}

/* Returns the bytes written; what cannot be read is left out. */
static size_t Convert_Text(const char *pszTo, char *pcIn, size_t uiBytes, char *pcOut, size_t uiRoom)
{
    char *const pcStart = pcOut;
    iconv_t hIconv = iconv_open(pszTo, Get_CharsetName());
    if (hIconv == (iconv_t)-1) return 0;
    while (uiBytes > 0 && iconv(hIconv, &pcIn, &uiBytes, &pcOut, &uiRoom) == (size_t)-1 && errno != E2BIG) {
        ++pcIn;
        --uiBytes;
    }
    iconv_close(hIconv);
    return (size_t)(pcOut - pcStart);
}

/* ---- The engine: one caption ahead of the clock. ---- */

static bool Read_Caption(Caption *pstCaption)
{
    uint32_t uiStream, uiLines, uiBytes;
    uint8_t *pucText;
    if (zyrSubtitle_getFrame(&uiStream, &pstCaption->iStartMs, &pstCaption->iEndMs, &uiLines, &uiBytes,
                             &pucText) != 0)
        return false;
    size_t uiOut = Convert_Text(Get_Utf16Name(), (char *)pucText, uiBytes, (char *)pstCaption->ausText,
                                sizeof pstCaption->ausText - 2);
    pstCaption->iUnits = (int32_t)(uiOut / 2);
    pstCaption->ausText[pstCaption->iUnits] = 0;
    uiOut =
        Convert_Text("UTF-8", (char *)pucText, uiBytes, pstCaption->szText, sizeof pstCaption->szText - 1);
    pstCaption->szText[uiOut] = '\0';
    return true;
}

static bool Open_Subtitle(const char *pszMovie, uint32_t uiFromMs)
{
    const uint32_t uiFirstClass = 0;
    if (zyrSubtitle_open(pszMovie, 0) != 0) return false;
    zyrSubtitle_selectClass(1, &uiFirstClass); /* one language at a time; only SAMI files have more */
    return uiFromMs == 0 || zyrSubtitle_seek(uiFromMs) == 0;
}

/* ---- The screen: a player lays the caption plane over its video; here the video is black. ---- */

static bool Open_Screen(void)
{
    zyr_host_setProperty("ro.board.platform", "zyr72xx"); /* on the box the settings program has done this */
    zyr_host_setProperty("persist.sys.output_mode", "lcd");
    return zyr_display_open() == 0 && zyr_display_setFontSize(32) == 0;
}

static bool Write_Picture(const char *pszPath)
{
    static uint8_t s_aucRgba[SCREEN_WIDTH * SCREEN_HEIGHT * 4];
    memset(s_aucRgba, 0, sizeof s_aucRgba);
    zyr_host_composeCaption(s_aucRgba, SCREEN_WIDTH, SCREEN_HEIGHT);
    FILE *pstFile = fopen(pszPath, "wb");
    if (pstFile == NULL) return false;
    fprintf(pstFile, "P6 %d %d 255\n", SCREEN_WIDTH, SCREEN_HEIGHT);
    for (size_t uiByte = 0; uiByte < sizeof s_aucRgba; uiByte += 4) fwrite(&s_aucRgba[uiByte], 1, 3, pstFile);
    return fclose(pstFile) == 0;
}

/* A caption without text clears the screen too: SAMI files have them. */
static void Show(const Caption *pstCaption, int32_t iTimeMs, const char *pszPicture)
{
    const bool bText = pstCaption != NULL && pstCaption->iUnits > 0;
    if (bText) {
        zyr_display_displayString(pstCaption->ausText, pstCaption->iUnits);
        zyr_display_setOnoff(1);
    } else {
        zyr_display_clearString();
    }
    printf("%7ld ms  %s\n", (long)iTimeMs, bText ? pstCaption->szText : "-");
    fflush(stdout);
    if (bText && pszPicture != NULL) Write_Picture(pszPicture);
}

/* ---- The player's loop: wait for whatever comes first, the next caption or the end of the one shown. ----
 */

static void Play(Clock *pstClock, const char *pszPicture)
{
    static Caption s_stNext;
    int32_t iHideMs = OPEN_END;
    while (Read_Caption(&s_stNext)) {
        if (iHideMs < s_stNext.iStartMs) {
            Wait_Until(pstClock, iHideMs);
            Show(NULL, iHideMs, pszPicture);
            iHideMs = OPEN_END;
        }
        Wait_Until(pstClock, s_stNext.iStartMs);
        if (s_stNext.iEndMs <= Get_MovieTime(pstClock)) continue; /* over already: a seek may lead here */
        Show(&s_stNext, s_stNext.iStartMs, pszPicture);
        iHideMs = s_stNext.iEndMs;
    }
    if (iHideMs == OPEN_END) return; /* stays until the movie ends */
    Wait_Until(pstClock, iHideMs);
    Show(NULL, iHideMs, pszPicture);
}

int main(int argc, char **argv)
{
    if (argc < 2 || argc > 5) {
        fprintf(stderr, "player MOVIE [SPEED [FROM [PICTURE]]]\n");
        return 2;
    }
    Clock stClock = {argc > 2 ? strtod(argv[2], NULL) : 1, argc > 3 ? strtod(argv[3], NULL) : 0, {0, 0}};
    zyr_host_setLineEnds(1); /* the engine reads CR LF; files of any line end then play */
    if (!Open_Subtitle(argv[1], (uint32_t)stClock.dFromMs)) {
        fprintf(stderr, "player: no subtitle for %s\n", argv[1]);
        return 1;
    }
    const bool bScreen = Open_Screen();
    if (bScreen) {
        clock_gettime(CLOCK_MONOTONIC, &stClock.stStarted);
        Play(&stClock, argc > 4 ? argv[4] : NULL);
        zyr_display_close();
    } else {
        fprintf(stderr, "player: no display; is the caption font installed?\n");
    }
    zyrSubtitle_close();
    return bScreen ? 0 : 1;
}
