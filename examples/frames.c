/* Prints every caption of the subtitle beside a movie, as the engine delivers it: in UTF-8, in UTF-16 of this machine's
 * byte order, or in the file's own code page; the first line printed tells which. captions.c always prints UTF-8. */
#include <stdio.h>
#include <zyr/zyr_host.h>
#include <zyr/zyr_subtitle.h>

int main(int argc, char **argv)
{
    static const char *const apszCharsets[] = {"none", "the file's code page", "UTF-16", "UTF-8"};
    uint32_t uiStream, uiLines, uiBytes;
    int32_t iStart, iEnd;
    uint8_t *pucText;

    if (argc != 2) return 2;
    zyr_host_setLineEnds(1); /* the engine reads CR LF; files of any line end then play */
    if (zyrSubtitle_open(argv[1], 0) != 0) return 1;
    printf("text in %s\n", apszCharsets[zyrSubtitle_getOutputTextCharacterSet()]);
    while (zyrSubtitle_getFrame(&uiStream, &iStart, &iEnd, &uiLines, &uiBytes, &pucText) == 0) {
        printf("%ld to %ld ms\n", (long)iStart, (long)iEnd);
        printf("%.*s\n", (int)uiBytes, (const char *)pucText);
    }
    return (int)zyrSubtitle_close();
}
