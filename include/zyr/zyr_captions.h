/*
 * The captions of a subtitle file as a list: what a program on a desktop calls.
 *
 *     zyrCaptions_load()       read a movie's subtitle, or a subtitle file, into a list
 *     zyrCaptions_get()        a caption of it: UTF-8 text, times, class, style
 *     zyrCaptions_getAt()      the captions that are on screen at a time
 *     zyrCaptions_free()       done
 *
 * and, to see captions as a box draws them:
 *
 *     zyrCaptions_openScreen(), zyrCaptions_draw(), zyrCaptions_closeScreen()
 *
 * Rules for every call here:
 *
 *  1. A list never changes after its load. There may be any number of lists, any thread may ask any of them,
 *     and several threads the same one. Only zyrCaptions_free() wants a list that nobody else still asks.
 *  2. Loads may be called from any thread. The engine behind them reads one file at a time, so they take
 *     turns under a lock of this library; no other call of a list takes the lock or touches the engine.
 *  3. A load always gives a list, also when it fails: zyrCaptions_getError() and zyrCaptions_getErrorText()
 *     tell. Only without any memory is it NULL. Every call takes a list that failed, and NULL, for an empty
 *     one.
 *  4. Texts are UTF-8, end with a zero byte, belong to the list and stay until it is freed.
 *  5. Times are milliseconds from the start of the movie.
 *  6. Nothing is printed, nothing ends the program, and nothing needs to be set up beforehand.
 *
 * Beside the engine. The engine, the display (zyr_subtitle.h, quib_caption.h, zyr_display.h) and the host
 * layer (zyr_host.h) have one state for the whole process and no lock. A program that calls them itself does
 * that while no load runs, and leaves the display alone while a screen is open. A load closes nothing: with a
 * subtitle open in the engine it fails with ZYR_CAPTIONS_BUSY. It leaves the host layer as it found it: line
 * ends, log sink and mapped names are the program's own again when it returns, and the engine's messages of
 * the load go to the list alone. Faults and hooks of the host layer reach the load as any other reading, its
 * counts go on, and captions start with the font colour that QUIBCAPT_SetFontColor() was given.
 */
#ifndef ZYR_CAPTIONS_H
#define ZYR_CAPTIONS_H

#include <stddef.h>
#include <stdint.h>

#include "zyr/zyr_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* --------------------------------------------------------------------------------------------------- load */

/** A subtitle file's captions. */
typedef struct ZyrCaptions ZyrCaptions;

/** How a load or a drawing ended. */
enum {
    ZYR_CAPTIONS_OK = 0,
    ZYR_CAPTIONS_BAD_ARGUMENT = 1, /* no path, no data, or a flag that is not known */
    ZYR_CAPTIONS_NOT_FOUND = 2,    /* no such file, or no subtitle beside the movie */
    ZYR_CAPTIONS_UNREADABLE = 3,   /* the system does not let it be read, or it is no regular file */
    ZYR_CAPTIONS_FOLDER = 4,       /* a folder */
    ZYR_CAPTIONS_NO_FORMAT = 5,    /* a subtitle of a kind that the engine does not read */
    ZYR_CAPTIONS_EMPTY = 6,        /* no bytes at all */
    ZYR_CAPTIONS_MALFORMED = 7,    /* not what its name says; the log lines tell more */
    ZYR_CAPTIONS_NO_CODE_PAGE = 8, /* there is no code page of the given name */
    ZYR_CAPTIONS_NO_CLASS = 9,     /* the file has no such language class */
    ZYR_CAPTIONS_NO_SEEK = 10,     /* the file cannot be read from the given time on */
    ZYR_CAPTIONS_BUSY = 11,        /* the program has a subtitle open in the engine, or a screen open */
    ZYR_CAPTIONS_TOO_LARGE = 12,   /* a file from 2 GiB on */
    ZYR_CAPTIONS_NO_MEMORY = 13,
    ZYR_CAPTIONS_NO_SCREEN = 14 /* the renderer does not start: no font, or no such output */
};

/** Flags of a load. */
enum {
    /** Line ends as the file has them, as on the box, which reads only CR LF. Else all of them end lines. */
    ZYR_CAPTIONS_BOX_LINE_ENDS = 1,
    /** Every byte of a code page is a character. A code page without characters of two bytes implies it. */
    ZYR_CAPTIONS_SINGLE_BYTE = 2,
    /** The classes of one moment joined in one caption, as the engine joins them. */
    ZYR_CAPTIONS_TOGETHER = 4
};

/** What a load may be told. Every field may be 0. */
typedef struct ZyrCaptionsOptions {
    const char *pszCodePage;        /* of text without a Unicode encoding, as iconv names it; NULL: found out
                                       from the bytes, CP949 where they tell nothing */
    const char *const *ppszClasses; /* language classes to read, by name in any letter case or by index, in
                                       this order; "" or "(unnamed)" is the class without a name */
    uint32_t uiClasses;             /* their number; 0: every class of the file */
    uint32_t uiFlags;               /* ZYR_CAPTIONS_BOX_LINE_ENDS and so on */
    uint32_t uiFromMs; /* above 0: only what a player gets after zyrSubtitle_seek() to this time */
} ZyrCaptionsOptions;

/**
 * Read a subtitle file into a list.
 *
 * @param[in] pszPath     a subtitle file (.smi .sami .srt .sub .ssa, in any letter case), which is read
 *                        itself; any other name is a movie, which need not exist, and the subtitle beside it
 *                        is found as the box finds it
 * @param[in] pstOptions  NULL for none
 * @return the list, to be freed with zyrCaptions_free(); NULL without memory
 */
ZYR_API ZyrCaptions *zyrCaptions_load(const char *pszPath, const ZyrCaptionsOptions *pstOptions);

/**
 * Read a subtitle file from memory into a list.
 *
 * @param[in] pvData      the file's bytes, not needed after the call
 * @param[in] pszName     a name whose ending tells the format, and that error sentences use; without a known
 *                        ending, or NULL, the format is told by the text itself
 * @return as zyrCaptions_load()
 */
ZYR_API ZyrCaptions *zyrCaptions_loadMemory(const void *pvData, size_t uiBytes, const char *pszName,
                                            const ZyrCaptionsOptions *pstOptions);

/** Free a list and every text that it has given; NULL is ignored. */
ZYR_API void zyrCaptions_free(ZyrCaptions *pstCaptions);

/** @return how the load ended: ZYR_CAPTIONS_OK, or what went wrong; ZYR_CAPTIONS_NO_MEMORY for NULL. */
ZYR_API int zyrCaptions_getError(const ZyrCaptions *pstCaptions);

/** @return a sentence that names the file and says what is wrong and what to do; empty after a good load. */
ZYR_API const char *zyrCaptions_getErrorText(const ZyrCaptions *pstCaptions);

/* ----------------------------------------------------------------------------------------------- captions */

/** As an end: the file does not tell it. As a time: never. */
#define ZYR_CAPTIONS_OPEN_END 0x7FFFFFFF
/** As an index: there is none. */
#define ZYR_CAPTIONS_NONE 0xFFFFFFFFu
/** As a class: all of them; also the class of captions joined by ZYR_CAPTIONS_TOGETHER. */
#define ZYR_CAPTIONS_ALL 0xFFFFFFFFu

/** Bits of ZyrCaptionStyle::uiDisplayMode. */
enum {
    ZYR_CAPTIONS_UNDERLINE = 0x0002,
    ZYR_CAPTIONS_BOLD = 0x0004,
    ZYR_CAPTIONS_ITALIC = 0x0008,
    ZYR_CAPTIONS_LEFT = 0x0010,
    ZYR_CAPTIONS_CENTER = 0x0020,
    ZYR_CAPTIONS_RIGHT = 0x0040,
    ZYR_CAPTIONS_HEADING_1 = 0x0080, /* and on to level 6, 0x1000 */
    ZYR_CAPTIONS_TOP = 0x2000,
    ZYR_CAPTIONS_MIDDLE = 0x4000
};

/** The style that a caption's text ended with: what was in force behind its last character. */
typedef struct ZyrCaptionStyle {
    uint32_t uiFontSize;
    uint32_t uiDisplayMode;
    uint32_t uiHighlight;
    uint16_t usColor;        /* RGB565 */
    uint16_t usOutlineColor; /* RGB565 */
    uint32_t uiSsaStyle; /* SSA: the line's style, for zyrCaptions_getSsaStyle(); else ZYR_CAPTIONS_NONE */
    uint32_t uiMarked;   /* SSA, as all below: the Dialogue line's own fields */
    uint32_t uiMarginLeft;
    uint32_t uiMarginRight;
    uint32_t uiMarginVertical;
    uint32_t uiEffect; /* 0 none, 1 karaoke, 2 scroll up, 3 banner */
    uint32_t uiEffectTop;
    uint32_t uiEffectBottom;
    uint32_t uiEffectDelay;
} ZyrCaptionStyle;

/** A caption. */
typedef struct ZyrCaption {
    int32_t iStart;
    int32_t iEnd;             /* ZYR_CAPTIONS_OPEN_END when the file does not tell it */
    int32_t iShownUntil;      /* iEnd; of an open end the next start of the class, or ZYR_CAPTIONS_OPEN_END */
    uint32_t uiClass;         /* for zyrCaptions_getClass(); ZYR_CAPTIONS_ALL when classes are joined */
    const char *pszText;      /* lines with a newline between them; empty for a caption that only clears */
    uint32_t uiTextBytes;     /* without the closing zero */
    uint32_t uiLines;         /* as the engine counts them: 0..6 */
    uint32_t uiBadCharacters; /* places in the text that could not be read, each shown as U+FFFD */
    uint32_t uiSource; /* where the caption begins in the file, bytes: its number or time line, SYNC tag
                                 or Dialogue line; with joined classes that of the first of them */
    const ZyrCaptionStyle *pstStyle;
} ZyrCaption;

/** @return captions of the list. Their indexes, 0 on, follow the order in which the engine delivers them. */
ZYR_API uint32_t zyrCaptions_count(const ZyrCaptions *pstCaptions);

/** Tell a caption. @return ZYR_CAPTIONS_OK, or ZYR_CAPTIONS_BAD_ARGUMENT; *pstCaption is then all 0. */
ZYR_API int zyrCaptions_get(const ZyrCaptions *pstCaptions, uint32_t uiIndex, ZyrCaption *pstCaption);

/**
 * Tell which captions are on screen at a time: from iStart on, until before iShownUntil.
 *
 * @param[in]  uiClass     a class, or ZYR_CAPTIONS_ALL
 * @param[out] puiIndexes  the captions, class by class in the order of the load, each in the order of starts;
 *                         may be NULL with uiRoom 0
 * @param[in]  uiRoom      how many fit there
 * @return how many there are, also beyond uiRoom
 */
ZYR_API uint32_t zyrCaptions_getAt(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime,
                                   uint32_t *puiIndexes, uint32_t uiRoom);

/**
 * Give the text on screen at a time, those of several captions below each other.
 *
 * @param[out] pszText  the text, ended by a zero byte, cut between characters when it does not fit; may be
 *                      NULL with uiRoom 0
 * @param[in]  uiRoom   bytes of pszText
 * @return bytes of the whole text, without the zero
 */
ZYR_API size_t zyrCaptions_getTextAt(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime,
                                     char *pszText, size_t uiRoom);

/** @return the first caption that starts after a time, or ZYR_CAPTIONS_NONE. */
ZYR_API uint32_t zyrCaptions_getNext(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime);

/** @return the last caption that starts before a time, or ZYR_CAPTIONS_NONE. */
ZYR_API uint32_t zyrCaptions_getPrevious(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime);

/** @return the next time after this one at which a caption comes or goes, or ZYR_CAPTIONS_OPEN_END. */
ZYR_API int32_t zyrCaptions_getNextChange(const ZyrCaptions *pstCaptions, int32_t iTime);

/* ----------------------------------------------------------------------------------------------- the file */

/** The formats, as CaptionFormat of quib_caption.h numbers them. */
enum {
    ZYR_CAPTIONS_SAMI = 0,
    ZYR_CAPTIONS_SUBRIP = 1,
    ZYR_CAPTIONS_SUBVIEWER = 2,
    ZYR_CAPTIONS_SSA = 3,
    ZYR_CAPTIONS_UNKNOWN = 4 /* the load failed before that */
};

/** Why a file is read in its encoding. */
enum {
    ZYR_CAPTIONS_BY_MARK = 0,    /* it begins with a byte order mark */
    ZYR_CAPTIONS_BY_SCAN = 1,    /* its bytes from 0x80 on are UTF-8, or too many of them are not */
    ZYR_CAPTIONS_BY_FALLBACK = 2 /* neither: the code page */
};

/** As a place in a file: there is none. */
#define ZYR_CAPTIONS_NOWHERE ((size_t)-1)

/** What a file is. */
typedef struct ZyrCaptionsFile {
    const char *pszFile;       /* the subtitle file: the path, or the name given with the memory */
    uint32_t uiFormat;         /* ZYR_CAPTIONS_SAMI and so on */
    const char *pszFormat;     /* "SAMI", "SubRip", "SubViewer", "SSA" or "none" */
    const char *pszEncoding;   /* "UTF-8", "UTF-16LE", "UTF-16BE", or "ANSI": a code page */
    const char *pszCodePage;   /* that ANSI text is read in, as iconv names it; NULL for the others */
    uint32_t bGuessed;         /* 1: the code page was found out, or is CP949 for want of a better */
    uint32_t bSingleByte;      /* 1: every byte of it is a character */
    uint32_t uiRule;           /* ZYR_CAPTIONS_BY_MARK and so on */
    uint32_t uiUtf8Characters; /* characters of several bytes that the scan saw, and bytes that UTF-8 does */
    uint32_t uiNotUtf8;        /* not allow where they stand; both 0 with a mark */
    size_t uiScanned;          /* bytes until the scan had seen enough */
    size_t uiFirstNotUtf8;     /* where the scan met the first of them, or ZYR_CAPTIONS_NOWHERE */
    size_t uiFirstUnreadable;  /* the first byte that the encoding in use cannot read, or ..._NOWHERE */
    uint8_t ucFirstNotUtf8;    /* the bytes at these two places */
    uint8_t ucFirstUnreadable;
    uint32_t uiCodePages;     /* likely code pages, for zyrCaptions_getCodePage() */
    uint32_t uiCaptions;      /* captions of the list */
    uint32_t uiWithText;      /* those that show something: a character beyond blanks */
    uint32_t uiBadCharacters; /* of all captions */
    uint32_t uiClasses;       /* classes of the file, chosen or not */
    uint32_t uiSsaStyles;     /* SSA, as the texts below; those are empty when the file does not tell */
    uint32_t uiLogLines;      /* messages of the engine during the load */
    int32_t iLastEnd;         /* when the last caption goes, or starts where it never goes */
    const char *pszTitle;
    const char *pszOriginalScript;
    const char *pszScriptType;
    uint32_t uiDelay; /* SubViewer, as all below */
    uint32_t uiColor; /* 24 bits, as the file writes them */
    uint32_t uiFontSize;
    const char *pszFont;
} ZyrCaptionsFile;

/** Tell what the file is. @return ZYR_CAPTIONS_OK, or ZYR_CAPTIONS_BAD_ARGUMENT for a NULL pointer. */
ZYR_API int zyrCaptions_getFile(const ZyrCaptions *pstCaptions, ZyrCaptionsFile *pstFile);

/** A language class; files of other formats than SAMI have one without a name. */
typedef struct ZyrCaptionClass {
    const char *pszName;     /* in upper case; empty for the captions without a class */
    const char *pszLanguage; /* BCP 47 tag where the name says it, as "ko" for KRCC; else NULL */
    uint32_t uiOrder;        /* its place among the classes that were read, or ZYR_CAPTIONS_NONE */
    uint32_t uiFolded;       /* names of classes that the engine has put into this one */
    uint32_t uiCaptions;     /* of the class that are in the list */
    int32_t iFirstStart;     /* smallest and largest start of them; 0 without any */
    int32_t iLastStart;
} ZyrCaptionClass;

/** Tell a class. @return ZYR_CAPTIONS_OK, or ZYR_CAPTIONS_BAD_ARGUMENT; *pstClass is then all 0. */
ZYR_API int zyrCaptions_getClass(const ZyrCaptions *pstCaptions, uint32_t uiClass, ZyrCaptionClass *pstClass);

/** @return a name of a class that was put into this one, or NULL. */
ZYR_API const char *zyrCaptions_getFoldedName(const ZyrCaptions *pstCaptions, uint32_t uiClass,
                                              uint32_t uiName);

/** A code page that a file's bytes speak for. */
typedef struct ZyrCaptionCodePage {
    const char *pszName;    /* as iconv names it */
    const char *pszPreview; /* a line of the captions, read so; empty when no caption needs a code page */
    uint32_t bInUse;        /* 1: the list was read in it */
} ZyrCaptionCodePage;

/**
 * Tell a code page, the likeliest first; the one in use is always among them. Only ANSI files with bytes from
 * 0x80 on have any.
 *
 * @return ZYR_CAPTIONS_OK, or ZYR_CAPTIONS_BAD_ARGUMENT; *pstCodePage is then all 0
 */
ZYR_API int zyrCaptions_getCodePage(const ZyrCaptions *pstCaptions, uint32_t uiIndex,
                                    ZyrCaptionCodePage *pstCodePage);

/** A Style line of an SSA file; numbers as the file writes them. */
typedef struct ZyrCaptionSsaStyle {
    const char *pszName;
    const char *pszFont;
    uint32_t uiFontSize;
    uint32_t uiPrimaryColour;
    uint32_t uiSecondaryColour;
    uint32_t uiTertiaryColour;
    uint32_t uiBackColour;
    uint32_t uiBold;
    uint32_t uiItalic;
    uint32_t uiBorderStyle;
    uint32_t uiOutline;
    uint32_t uiShadow;
    uint32_t uiAlignment;
    uint32_t uiMarginLeft;
    uint32_t uiMarginRight;
    uint32_t uiMarginVertical;
    uint32_t uiAlphaLevel;
    uint32_t uiEncoding;
} ZyrCaptionSsaStyle;

/** Tell a style. @return ZYR_CAPTIONS_OK, or ZYR_CAPTIONS_BAD_ARGUMENT; *pstStyle is then all 0. */
ZYR_API int zyrCaptions_getSsaStyle(const ZyrCaptions *pstCaptions, uint32_t uiIndex,
                                    ZyrCaptionSsaStyle *pstStyle);

/** A message of the engine during the load. */
typedef struct ZyrCaptionLogLine {
    int32_t iPriority;   /* 3 debug, 6 error */
    const char *pszTag;  /* NULL for a message without one */
    const char *pszText; /* most end with a newline of their own; names are the caller's */
    uint32_t uiCaption;  /* the caption before which it was written; zyrCaptions_count() behind the last */
} ZyrCaptionLogLine;

/** Tell a message. @return ZYR_CAPTIONS_OK, or ZYR_CAPTIONS_BAD_ARGUMENT; *pstLine is then all 0. */
ZYR_API int zyrCaptions_getLogLine(const ZyrCaptions *pstCaptions, uint32_t uiIndex,
                                   ZyrCaptionLogLine *pstLine);

/* ------------------------------------------------------------------------------------------------ drawing */

/** An output of the box, and the display's size on it. */
typedef struct ZyrCaptionOutput {
    const char *pszName; /* "lcd", "hdmi-1080p" ... */
    uint32_t uiWidth;    /* pixels */
    uint32_t uiHeight;
} ZyrCaptionOutput;

/** Tell an output, 0 on. @return ZYR_CAPTIONS_OK, or ZYR_CAPTIONS_BAD_ARGUMENT; *pstOutput is then all 0. */
ZYR_API int zyrCaptions_getOutput(uint32_t uiIndex, ZyrCaptionOutput *pstOutput);

/** A rectangle of a picture, pixels. */
typedef struct ZyrCaptionBox {
    uint32_t uiX;
    uint32_t uiY;
    uint32_t uiWidth; /* 0: there is nothing */
    uint32_t uiHeight;
} ZyrCaptionBox;

/** The box's renderer, open for one output. */
typedef struct ZyrCaptionScreen ZyrCaptionScreen;

/**
 * Open the renderer for one output. There is one display in a process: a second screen is refused until the
 * first is closed. Loads go on beside it.
 *
 * @param[in]  pszOutput  a name of zyrCaptions_getOutput(); NULL: "lcd"
 * @param[in]  uiFontSize 28, 32, 36 or 40: 4, 8, 12 or 16 pixels above the output's own size; else that size
 * @param[in]  iPosition  pixels between the caption and the display's bottom; below 0: 16
 * @param[out] ppstScreen the screen, or NULL after a failure
 * @return ZYR_CAPTIONS_OK; ..._BAD_ARGUMENT, ..._BUSY, ..._NO_SCREEN or ..._NO_MEMORY
 *
 * The output's properties of the host layer and its font are the program's own again when this returns. The
 * calls of a screen are for one thread at a time.
 */
ZYR_API int zyrCaptions_openScreen(const char *pszOutput, uint32_t uiFontSize, int32_t iPosition,
                                   ZyrCaptionScreen **ppstScreen);

/** Close a screen; NULL is ignored. */
ZYR_API void zyrCaptions_closeScreen(ZyrCaptionScreen *pstScreen);

/**
 * Draw a text as the output shows it.
 *
 * @param[in]  pszText  UTF-8, lines with newlines between them; empty or NULL clears
 * @param[out] pucRgba  the output's width x height pixels of four bytes (red, green, blue, alpha), rows
 *                      without a gap. Everything outside the caption's marks is left as it is, so that it may
 *                      hold a picture or be all 0; NULL: only pstBox is asked for
 * @param[out] pstBox   where the box stands, cut to the output; marks are nowhere else. May be NULL
 * @return ZYR_CAPTIONS_OK; ..._BAD_ARGUMENT without a screen; ..._NO_SCREEN when the display refuses;
 *         ..._NO_MEMORY
 */
ZYR_API int zyrCaptions_draw(ZyrCaptionScreen *pstScreen, const char *pszText, uint8_t *pucRgba,
                             ZyrCaptionBox *pstBox);

/** Draw what is on screen at a time; as zyrCaptions_draw() with the text of zyrCaptions_getTextAt(). */
ZYR_API int zyrCaptions_drawAt(ZyrCaptionScreen *pstScreen, const ZyrCaptions *pstCaptions, uint32_t uiClass,
                               int32_t iTime, uint8_t *pucRgba, ZyrCaptionBox *pstBox);

/**
 * Tell which characters of a text the screen's font cannot show; a hollow shape stands for each.
 *
 * @param[out] puiCharacters  Unicode characters, each once, in the order of the text; may be NULL with
 *                            uiRoom 0
 * @param[in]  uiRoom         how many fit there
 * @return how many there are, also beyond uiRoom
 */
ZYR_API uint32_t zyrCaptions_getMissing(const ZyrCaptionScreen *pstScreen, const char *pszText,
                                        uint32_t *puiCharacters, uint32_t uiRoom);

#ifdef __cplusplus
}
#endif

#endif
