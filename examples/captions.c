/* Prints every caption of a subtitle file, or of the subtitle beside a movie, as UTF-8. */
#include <stdio.h>
#include <zyr/zyr_captions.h>

int main(int argc, char **argv)
{
    ZyrCaptions *pstCaptions = zyrCaptions_load(argc > 1 ? argv[1] : NULL, NULL);
    const int iError = zyrCaptions_getError(pstCaptions);
    ZyrCaption stCaption; /* an end that the file does not tell is ZYR_CAPTIONS_OPEN_END */

    if (iError != ZYR_CAPTIONS_OK) fprintf(stderr, "%s\n", zyrCaptions_getErrorText(pstCaptions));
    for (uint32_t ui = 0; zyrCaptions_get(pstCaptions, ui, &stCaption) == ZYR_CAPTIONS_OK; ++ui) {
        printf("%ld to %ld ms\n", (long)stCaption.iStart, (long)stCaption.iEnd);
        printf("%s\n", stCaption.pszText);
    }
    zyrCaptions_free(pstCaptions);
    return iError;
}
