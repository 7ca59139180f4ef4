/*
 * The caption engine's record and its lower calls.
 *
 * A player needs only zyr/zyr_subtitle.h. This header is for hosts that look into the engine's state, drive
 * it frame by frame themselves, or plug in below it. Rules for every call here:
 *
 *  1. One caller at a time; the engine has one record and keeps no lock.
 *  2. Times are milliseconds from the start of the movie, file positions are byte offsets, and text is held
 * as 16-bit units: UTF-16 code units for UTF-16 and UTF-8 files; for code-page files the byte's code, or
 *     (lead << 8) | trail for a double-byte character.
 *  3. Every pointer in the record belongs to the engine. QUIB_CAPTION_Close() frees them all.
 *  4. Without a record, or with no stream chosen (uiCurrStream 5), the lower calls do nothing and give their
 *     failure result.
 */
#ifndef ZYR_QUIB_CAPTION_H
#define ZYR_QUIB_CAPTION_H

#include <stdint.h>

#include "zyr/zyr_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A file position; 8-aligned in records on every machine. */
typedef int64_t ZyrFilePos __attribute__((aligned(8)));

/** Format of the open file; the row of CaptionParserTable. */
typedef enum CaptionFormat {
    E_CAPTION_FORMAT_SAMI = 0,
    E_CAPTION_FORMAT_SUBRIP = 1,
    E_CAPTION_FORMAT_SUBVIEWER = 2,
    E_CAPTION_FORMAT_SSA = 3,
    E_CAPTION_FORMAT_NONE = 4 /* no file is open */
} CaptionFormat;

/** Character set of the delivered text. */
typedef enum OutputCharset {
    E_OUTPUT_CHARSET_NONE = 0,
    E_OUTPUT_CHARSET_ANSI = 1,  /* the file's own code page; lines end with 0x0A */
    E_OUTPUT_CHARSET_UTF16 = 2, /* host byte order; lines end with 0x000A */
    E_OUTPUT_CHARSET_UTF8 = 3
} OutputCharset;

/** How a seek goes about it, by its bBackward; any other value counts as E_SEEK_FORWARD. */
typedef enum SeekDirection {
    E_SEEK_FORWARD = 0,   /* from the last time handled on */
    E_SEEK_BACKWARD = 1,  /* back from there */
    E_SEEK_FROM_START = 3 /* on from the first frame, in SubRip and SSA; E_SEEK_FORWARD in the others */
} SeekDirection;

enum {
    ZYR_CLASS_MAX = 7,             /* language classes of a file */
    ZYR_STREAM_MAX = 5,            /* classes read side by side; as uiCurrStream: no stream chosen */
    ZYR_LINE_MAX = 6,              /* output lines of a frame */
    ZYR_CLASS_NAME_UNITS = 12,     /* units of a class name */
    ZYR_FILE_NAME_BYTES = 514,     /* bytes of the subtitle file name, closing zero included */
    ZYR_OUT_TEXT_BYTES = 2048,     /* bytes of the output text, two closing zero bytes included */
    ZYR_CLASS_NAME_BYTES = 30,     /* bytes of a class name in UTF-8, closing zero included */
    ZYR_SSA_HEADER_UNITS = 512,    /* units that the SSA header texts share */
    ZYR_SSA_NAME_UNITS = 51,       /* units of a style's name and of its font's name */
    ZYR_SSA_FRAME_NAME_UNITS = 52, /* units of a Dialogue line's Style field */
    ZYR_SUBVIEWER_FONT_UNITS = 30  /* units of the SubViewer font name */
};

/** CaptionStreamInfo::iStreamDataSize once the stream's data is exhausted; also a parser's result then. */
#define NO_CAPTION_DATA (-1111)

/** One language class: a SAMI CLASS. Every other format has exactly one class, which is unnamed. */
typedef struct CaptionClassInfo {
    uint16_t ausName[ZYR_CLASS_NAME_UNITS]; /* name in upper case, not terminated */
    uint32_t uiNameLength;                  /* units in ausName; 0 = the class of frames without a class */
    uint16_t ausAltName[ZYR_CLASS_MAX][ZYR_CLASS_NAME_UNITS]; /* names of the classes folded into this one */
    uint32_t auiAltNameLength[ZYR_CLASS_MAX];                 /* units of each */
    uint32_t uiAltNameNums;                                   /* further names held */
    ZyrFilePos llFirstFramePos;                               /* where the class's first frame begins */
    int32_t iMinPTS;                                          /* smallest frame time, ms (SAMI) */
    ZyrFilePos llLastFramePos;                                /* where the class's last frame begins (SAMI) */
    int32_t iMaxPTS;                                          /* largest frame time, ms (SAMI) */
    uint32_t uiFrameNums;                                     /* frames of the class (SAMI) */
} CaptionClassInfo;

/** Place and times of one stream between its frames. */
typedef struct CaptionStreamState {
    ZyrFilePos llStartFilePos; /* the class's first frame */
    ZyrFilePos llCurrFilePos;  /* where the last frame read began, or where reading resumes after a seek */
    int32_t iCurrPTS;          /* last handled time, ms; -1 = nothing read yet */
    int32_t iStartPTS;         /* last frame: shown from, ms */
    int32_t iEndPTS;           /* last frame: shown until, ms */
    uint32_t uiClassIndex;     /* the class that this stream reads */
} CaptionStreamState;

/** One stream's read buffer. */
typedef struct CaptionStreamInfo {
    uint8_t *pucStreamBuf;   /* 65536 bytes */
    int32_t iStreamDataSize; /* valid bytes, or NO_CAPTION_DATA */
    int32_t iStreamBufIndex; /* next byte */
} CaptionStreamInfo;

/** Values of a SubViewer file's header. */
typedef struct SubViewerHeaderInfo {
    uint32_t uiDelay;                               /* DELAY */
    uint32_t uiColf;                                /* COLF: six hexadecimal digits as a 24-bit number */
    uint32_t uiSize;                                /* SIZE */
    uint16_t ausFontName[ZYR_SUBVIEWER_FONT_UNITS]; /* FONT, not terminated */
    uint32_t uiFontNameLength;                      /* units in ausFontName */
} SubViewerHeaderInfo;

/** One Style line of an SSA file, fields in the line's order. Colours are the numbers as written. */
typedef struct SSAStyleInfo {
    uint16_t ausStyleName[ZYR_SSA_NAME_UNITS]; /* padded with zeros, not terminated when full */
    uint16_t ausFontName[ZYR_SSA_NAME_UNITS];  /* blanks removed; padded likewise */
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
    uint32_t uiAlignment; /* bit values 1 and 2: place across; 4: top; 8: middle */
    uint32_t uiMarginL;
    uint32_t uiMarginR;
    uint32_t uiMarginV;
    uint32_t uiAlphaLevel;
    uint32_t uiEncoding;
} SSAStyleInfo;

/** A style in the list that the record heads. */
typedef struct SSAStyleNode {
    SSAStyleInfo stStyle;
    struct SSAStyleNode *pstNext; /* NULL at the end */
} SSAStyleNode;

/** Fields of the SSA Dialogue line last parsed. */
typedef struct SSAFrameInfo {
    uint32_t uiMarked;                               /* last digit of the Marked field */
    uint32_t uiStartPTS;                             /* ms */
    uint32_t uiEndPTS;                               /* ms */
    uint16_t ausStyleName[ZYR_SSA_FRAME_NAME_UNITS]; /* the Style field */
    uint32_t uiMarginL;
    uint32_t uiMarginR;
    uint32_t uiMarginV;
    uint32_t uiEffect;            /* 0 none, 1 karaoke, 2 scroll up, 3 banner */
    uint32_t uiEffectY1;          /* scroll up: upper edge */
    uint32_t uiEffectY2;          /* scroll up: lower edge */
    uint32_t uiEffectDelay;       /* scroll up and banner */
    const SSAStyleInfo *pstStyle; /* the line's style, or NULL */
} SSAFrameInfo;

/** The engine's one record. The working fields describe the stream now being parsed. */
typedef struct QuibCaptionParserInfo {
    ZyrFilePos llStartFilePos;   /* working copy of CaptionStreamState */
    ZyrFilePos llCurrFilePos;    /* likewise */
    int32_t iCurrPTS;            /* likewise */
    int32_t iStartPTS;           /* frame just parsed: shown from, ms */
    int32_t iEndPTS;             /* frame just parsed: shown until, ms */
    uint32_t uiLineIndex;        /* output line being filled, 0..5; 6 = the frame is full */
    uint32_t uiDisplayMode;      /* DISPLAY_MODE bits of the frame's text */
    uint32_t uiFontSize;         /* current font size */
    uint16_t usFontColor;        /* current font colour, RGB565 */
    uint16_t usOutlineColor;     /* current outline colour, RGB565 */
    uint32_t uiHighlight;        /* current highlight value */
    uint8_t ucPrevBlank;         /* 1 while the last unit put into pusConvBuf was a blank */
    uint32_t uiConvLength;       /* units waiting in pusConvBuf */
    uint16_t *pusConvBuf;        /* 300 units of decoded text on their way to the lines */
    uint32_t uiBreakLength;      /* length of the current line at its last blank run; 0 = none */
    uint32_t uiWordUnits;        /* non-blank units put into the current line */
    uint32_t uiWordUnitsAtBreak; /* uiWordUnits when the last blank run began */
    uint32_t *puiLineLength;     /* units in each of the frame's 6 lines */
    char szSubtitleFileName[ZYR_FILE_NAME_BYTES];
    uint32_t uiClassNums;
    CaptionClassInfo astClassInfo[ZYR_CLASS_MAX];
    uint32_t uiStreamNums;
    uint32_t uiCurrStream; /* stream being parsed; 5 = none chosen yet */
    CaptionStreamState astStreamState[ZYR_STREAM_MAX];
    uint32_t uiCurrClass; /* class of the stream being parsed */
    int32_t iNextPTS;     /* SAMI: smallest next-frame time of the streams; 0x0FFFFFFF = none */
    CaptionStreamInfo astStreamInfo[ZYR_STREAM_MAX];
    SubViewerHeaderInfo stSubViewerInfo;
    uint16_t ausSSAHeaderText[ZYR_SSA_HEADER_UNITS]; /* the texts below, each followed by a unit 0 */
    uint32_t uiSSATitleLength;
    uint16_t *pusSSATitle;
    uint32_t uiSSAOriginalScriptLength;
    uint16_t *pusSSAOriginalScript;
    uint32_t uiSSAScriptTypeLength;
    uint16_t *pusSSAScriptType;
    SSAStyleNode *pstSSAStyleList; /* first style, or NULL */
    SSAFrameInfo stSSAFrameInfo;
    uint32_t uiOutStreamIndex; /* output block: stream of the frame */
    int32_t iOutStartPTS;      /* output block: shown from, ms */
    int32_t iOutEndPTS;        /* output block: shown until, ms */
    uint32_t uiOutLineNums;    /* output block: lines */
    uint32_t uiOutputTextCharacterSet;
    uint32_t uiOutTextLength;               /* output block: bytes of text */
    uint8_t aucOutText[ZYR_OUT_TEXT_BYTES]; /* output block: the text, at least two zero bytes behind it */
    uint8_t aucClassName[ZYR_CLASS_NAME_BYTES]; /* the name last given by zyrSubtitleHandler_getClassName() */
} QuibCaptionParserInfo;

/** The record, or NULL while nothing is open. */
extern ZYR_API QuibCaptionParserInfo *pstQuibCaptionParserInfo;

/** What a format plugs into the frame pump. A NULL entry is reported when it is needed. */
typedef struct CaptionParser {
    /** Read the header once per open. @return 1, other values fail the open. */
    int32_t (*pfHeaderParser)(void *hFile);
    /** Read one frame of the current stream. @return 1 a frame, -6 a frame and the last of its list, else
     * none. */
    int32_t (*pfFrameParser)(void);
    /** Place the current stream for a time. @return 1, other values are failures. */
    int32_t (*pfSeek)(uint32_t uiTargetMs, uint32_t bBackward, int32_t iCurrPTS,
                      QuibCaptionParserInfo *pstInfo);
} CaptionParser;

/* ---- Engine: the frame pump
 * --------------------------------------------------------------------------------- */

/** Make the record and its buffers; a subtitle that is open is closed first. @return 1, or -1 without memory.
 */
ZYR_API int32_t QUIB_CAPTION_Open(void);

/** Free the record and every buffer. The file itself, and what zyrSubtitle_open() remembers of it, stay. */
ZYR_API void QUIB_CAPTION_Close(void);

/** Read the next frame, of the stream whose next frame is earliest, into the output block. @return 2, or -2
 * when there is none. */
ZYR_API int32_t QUIB_CAPTION_ParsingProcess(void);

/**
 * Read the frames of all streams that start at the next moment and join their texts in the output block.
 * uiOutTextLength counts the two closing zero bytes here. @return 2, or -2 when there is none.
 */
ZYR_API int32_t QUIB_CAPTION_ParsingProcessEx(void);

/** Drop SAMI frames that start before iTargetMs. @return 2, or -2 when a frame could not be read. */
ZYR_API int32_t QUIB_CAPTION_PreParsingProcessEx(int32_t iTargetMs);

/** Place every stream for a time. @return 1 (also when nothing is open), or -1. */
ZYR_API int32_t QUIB_CAPTION_SeekCaptionFrame(uint32_t uiTargetMs);

/* ---- Engine: settings and output
 * ---------------------------------------------------------------------------- */

/** Set the font height that every frame starts with. @return 1, or -3 for any height but 16. */
ZYR_API int32_t QUIBCAPT_SetFontHeight(uint32_t uiHeight);
ZYR_API uint32_t QUIBCAPT_GetFontHeight(void);

/** Set the font colour that every frame starts with (low 16 bits, RGB565; white at the start). */
ZYR_API void QUIBCAPT_SetFontColor(uint32_t uiColor);
ZYR_API uint32_t QUIBCAPT_GetFontColor(void);

/** Keep an edge colour for the host; the engine itself does not use it. */
ZYR_API void QUIBCAPT_SetFontEdgeColor(uint32_t uiColor);
ZYR_API uint32_t QUIBCAPT_GetFontEdgeColor(void);

/** Let the first one or two streams, whose buffers must exist, read these classes (SAMI). @return streams set
 * up, 0..2. */
ZYR_API int32_t QUIBCAPT_Set_ClassType(uint32_t uiFirstClass, uint32_t uiSecondClass);

/** Lay the units waiting in pusConvBuf out into the current stream's lines; none are left waiting. */
ZYR_API void Convert_CaptionStringToBitmap(void);

/** Write the current stream's lines to the output block. */
ZYR_API void Display_LineBitmapDataToDisplayBuffer(void);

/** Write the lines of all streams to the output block. */
ZYR_API void Display_LineBitmapDataToDisplayBufferEx(void);

/**
 * Encode UTF-16 as UTF-8, always followed by a zero byte; a lone surrogate becomes U+FFFD.
 *
 * @param[in]  iUnits  units of pusSource
 * @param[in]  iSize   bytes of pucTarget
 * @return bytes written without the zero, or 0 when the text did not fit (what was written stays, terminated)
 */
ZYR_API int32_t _UnicodeToUTF8(const uint16_t *pusSource, int32_t iUnits, uint8_t *pucTarget, int32_t iSize);

/* ---- Host callbacks: memory and files
 * ----------------------------------------------------------------------- */

/** Allocate uiSize bytes; uiAlignment is at most what ZYR_malloc() gives. @return the block or NULL (logged).
 */
ZYR_API void *QUIBCAPTCB_Allocate_Aligned_Memory(uint32_t uiSize, uint32_t uiAlignment);
ZYR_API void *QUIBCAPTCB_Allocate_Memory(uint32_t uiSize);
ZYR_API void QUIBCAPTCB_Deallocate_Memory(void *pvBlock);

/** @return the open subtitle file, or NULL (logged). */
ZYR_API void *QUIBCAPTCB_GetFileHandleOfSubtitle(void);

/** Read up to uiBytes bytes. @return bytes read, 0 at the end, negative on an error (logged). */
ZYR_API int32_t QUIBCAPTCB_FileRead(void *hFile, uint8_t *pucBuffer, uint32_t uiBytes);

/** Move the file. @return the new position; -1 for an origin other than 0, 1, 2, -2 when the move failed
 * (both logged). */
ZYR_API int64_t QUIBCAPTCB_FileSeek(void *hFile, int64_t llOffset, int32_t iOrigin);

/** @return the file's position, or a negative value (logged). */
ZYR_API int64_t QUIBCAPTCB_FileTell(void *hFile);

/** Turn a double-byte character into one unit: byte 0 to its first byte in memory, byte 1 to its second.
 * @return 2, or 0 for a NULL. */
ZYR_API int32_t QUIBCAPTCB_ConvertANSI2Unicode(const uint8_t *pucSource, uint16_t *pusTarget);

/** Tell the engine which file to read. The engine does not take the handle over. */
ZYR_API void TRACK_SetFileHandleOfSubtitleData(void *hFile);
ZYR_API void *TRACK_GetFileHandleOfSubtitleData(void);

/* ---- Parser services
 * ---------------------------------------------------------------------------------------- */

/** @return the parsers' version, 36. */
ZYR_API uint32_t QUIBCAPTPARS_Get_VerInfo(void);

/** Set the parsing option bits: 1 unknown markup stays in the text; 2 every byte of a code-page file is one
 * character. */
ZYR_API void QUIBCAPTPARS_Set_ParsingOption(uint32_t uiOption);

/** Number of a text: decimal digits (up to 8 units), or "&H" and up to 8 hexadecimal digits. @return 0 for
 * any other text. */
ZYR_API uint32_t QUIBCAPTPARS_Str2Number(const uint16_t *pusStr, int32_t iLen);

/** Compare iLen units exactly. @return 1 equal (also for iLen below 1), -1 different. */
ZYR_API int32_t QUIBCAPTPARS_StrCmp(const uint16_t *pusA, const uint16_t *pusB, int32_t iLen);

/** Make the parsers' buffers. @return 1, or -1 for an argument of 0 or without memory. */
ZYR_API int32_t QuibCaptionParser_Create_MemoryBuffers(uint32_t uiConvUnits, uint32_t uiMaxLines,
                                                       uint32_t uiStreamBytes);
ZYR_API void QuibCaptionParser_Destroy_MemoryBuffers(void);

/** Free the SSA styles. */
ZYR_API void QuibCaptionParser_Destroy_SSA_MemoryBuffers(void);

/** Measure hFile, find its encoding and fill the first stream buffer. @return 1, or -1 for an empty or
 * unreadable file. */
ZYR_API int32_t QuibCaptionParser_Init_CaptionStreamVariables(void *hFile);

/* ---- SAMI classes
 * ------------------------------------------------------------------------------------------- */

/** @return start of the class's next frame, ms; -2 class above 6; -3 no next frame. */
ZYR_API int32_t CAPTIONPARS_SAMI_GetNextFramePTS(uint32_t uiClass);

/** Fold the last class, which must be unnamed, into another. @return 1; -4 fewer than 2 classes; -5 it has a
 * name; -2 bad target. */
ZYR_API int32_t CAPTIONPARS_SAMI_MergeUndefinedLanguage(uint32_t uiTargetClass);

/** Fold class uiFrom into class uiTo and remove it. @return 1; -4 fewer than 2 classes; -2 equal or unknown
 * classes. */
ZYR_API int32_t CAPTIONPARS_SAMI_MergeMultiLanguages(uint32_t uiFrom, uint32_t uiTo);

/* ---- Formats: the rows of CaptionParserTable
 * ---------------------------------------------------------------- */

ZYR_API int32_t HeaderParser_SAMI(void *hFile);
ZYR_API int32_t FrameParser_SAMI(void);
ZYR_API int32_t Seek_SAMI(uint32_t uiTargetMs, uint32_t bBackward, int32_t iCurrPTS,
                          QuibCaptionParserInfo *pstInfo);
ZYR_API int32_t HeaderParser_SubRip(void *hFile);
ZYR_API int32_t FrameParser_SubRip(void);
ZYR_API int32_t Seek_SubRip(uint32_t uiTargetMs, uint32_t bBackward, int32_t iCurrPTS,
                            QuibCaptionParserInfo *pstInfo);
ZYR_API int32_t HeaderParser_SubViewer(void *hFile);
ZYR_API int32_t FrameParser_SubViewer(void);
ZYR_API int32_t Seek_SubViewer(uint32_t uiTargetMs, uint32_t bBackward, int32_t iCurrPTS,
                               QuibCaptionParserInfo *pstInfo);
ZYR_API int32_t HeaderParser_SSA(void *hFile);
ZYR_API int32_t FrameParser_SSA(void);
ZYR_API int32_t Seek_SSA(uint32_t uiTargetMs, uint32_t bBackward, int32_t iCurrPTS,
                         QuibCaptionParserInfo *pstInfo);

#ifdef __cplusplus
}
#endif

#endif
