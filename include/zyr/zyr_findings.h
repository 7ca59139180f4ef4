/*
 * What a box makes of a subtitle file that its author did not mean.
 *
 *     zyrFindings_load()       read a subtitle file, and look for all that comes out otherwise
 *     zyrFindings_get()        a finding of it: place, code, severity, sentence
 *     zyrFindings_getRule()    what a code means, with an example
 *     zyrFindings_free()       done
 *
 * The truth is what the engine delivers of the file and what it logs on the way. A plain reading of the same
 * file, as a person reads it, is held against that and tells where and why the two part. The rules of
 * zyr_captions.h hold here as well: findings never change after their load, every call takes NULL, and texts
 * are UTF-8 and belong to the findings.
 */
#ifndef ZYR_FINDINGS_H
#define ZYR_FINDINGS_H

#include <stddef.h>
#include <stdint.h>

#include "zyr/zyr_captions.h"
#include "zyr/zyr_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What is wrong with a file. */
typedef struct ZyrFindings ZyrFindings;

/** How bad a finding is; worse ones have larger numbers. */
enum {
    ZYR_FINDING_DOUBTFUL = 1, /* shown as it is written, but it may not be what was meant */
    ZYR_FINDING_CHANGED = 2,  /* shown, but otherwise than it was meant */
    ZYR_FINDING_LOST = 3      /* text or captions are never seen */
};

/** What a code stands for. */
typedef struct ZyrFindingRule {
    const char *pszCode;        /* "ZYR-SRT-002"; it never changes its meaning */
    uint32_t uiSeverity;        /* ZYR_FINDING_LOST and so on */
    const char *pszSeverity;    /* "lost", "changed", "doubtful" */
    const char *pszFormats;     /* "SubRip", "SAMI", "SubRip, SAMI" ..., "all" */
    const char *pszTitle;       /* a few words */
    const char *pszExplanation; /* what the box does, and what to write instead */
    const char *pszFile;        /* a name for a file of the example */
    const char
        *pszExample; /* a file that has it; "\n" stands for CR LF, "\r" for LF, "\1" for the character 0 */
} ZyrFindingRule;

/** Tell a code, 0 on. @return ZYR_CAPTIONS_OK, or ZYR_CAPTIONS_BAD_ARGUMENT; *pstRule is then all 0. */
ZYR_API int zyrFindings_getRule(uint32_t uiRule, ZyrFindingRule *pstRule);

/** @return the number of a code, in any letter case, for zyrFindings_getRule(); or ZYR_CAPTIONS_NONE. */
ZYR_API uint32_t zyrFindings_findRule(const char *pszCode);

/** What to look for. Every field may be 0. */
typedef struct ZyrFindingsOptions {
    const ZyrCaptionsOptions *pstCaptions; /* how to read the file; its line ends, joined classes and first
                                              time are left out */
    uint32_t
        uiCharactersPerSecond; /* more are too fast to read; 0: 25, ZYR_CAPTIONS_NONE: any number is fine */
    uint32_t uiLongestMs;  /* a caption that stays longer is doubtful; 0: 15000, ZYR_CAPTIONS_NONE: never */
    const char *pszOutput; /* also try how captions fit there, a name of zyrCaptions_getOutput(), and
                                       whether the font has their characters; NULL: nothing is drawn */
    uint32_t uiFontSize;   /* as zyrCaptions_openScreen() takes it */
} ZyrFindingsOptions;

/** A finding. */
typedef struct ZyrFinding {
    uint32_t uiRule;     /* for zyrFindings_getRule() */
    const char *pszCode; /* the rule's */
    uint32_t uiSeverity; /* the rule's */
    uint32_t uiLine;     /* 1 on, where every kind of line end counts; 0: the file as a whole */
    uint32_t uiColumn;   /* 1 on, in characters; 0 with line 0 */
    uint32_t uiColumns;  /* characters of the line that it is about, at least 1 */
    size_t uiOffset;     /* bytes into the file */
    uint32_t uiCaption;  /* the caption of zyrFindings_getCaptions() that it is about, or ZYR_CAPTIONS_NONE */
    uint32_t uiClass;    /* that caption's class, or ZYR_CAPTIONS_NONE */
    const char *pszSentence; /* what the box does here */
    const char *pszText;     /* what in the file it is about, at most 1000 bytes; may be empty, and may go
                                on behind the line */
    const char *pszLine;     /* the whole line, without its end */
} ZyrFinding;

/** Look for all findings of a file. @return as zyrCaptions_load() */
ZYR_API ZyrFindings *zyrFindings_load(const char *pszPath, const ZyrFindingsOptions *pstOptions);

/** Look for all findings of a file in memory. @return as zyrCaptions_loadMemory() */
ZYR_API ZyrFindings *zyrFindings_loadMemory(const void *pvData, size_t uiBytes, const char *pszName,
                                            const ZyrFindingsOptions *pstOptions);

/** Free findings with their captions and texts; NULL is ignored. */
ZYR_API void zyrFindings_free(ZyrFindings *pstFindings);

/**
 * @return ZYR_CAPTIONS_OK, also for a file that the box does not read, which is a finding; the error of a load
 *         that could not read the bytes or did not know an option
 */
ZYR_API int zyrFindings_getError(const ZyrFindings *pstFindings);

/** @return a sentence that tells the error; empty without one. */
ZYR_API const char *zyrFindings_getErrorText(const ZyrFindings *pstFindings);

/** @return findings. Their indexes, 0 on, follow the file; those of one place, the worst first. */
ZYR_API uint32_t zyrFindings_count(const ZyrFindings *pstFindings);

/** Tell a finding. @return ZYR_CAPTIONS_OK, or ZYR_CAPTIONS_BAD_ARGUMENT; *pstFinding is then all 0. */
ZYR_API int zyrFindings_get(const ZyrFindings *pstFindings, uint32_t uiIndex, ZyrFinding *pstFinding);

/**
 * The captions that findings are about: those of the file once its lines end in CR LF, as zyrCaptions_load()
 * gives them without ZYR_CAPTIONS_BOX_LINE_ENDS. It belongs to the findings, and is NULL after an error.
 */
ZYR_API const ZyrCaptions *zyrFindings_getCaptions(const ZyrFindings *pstFindings);

/** The captions that the box gets of the file as it is; the same list where all lines end in CR LF. */
ZYR_API const ZyrCaptions *zyrFindings_getBoxCaptions(const ZyrFindings *pstFindings);

#ifdef __cplusplus
}
#endif

#endif
