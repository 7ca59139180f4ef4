/* Made by make_declarations.py from the public headers. */
typedef struct ZyrCaptions ZyrCaptions;
enum {
    ZYR_CAPTIONS_OK = 0,
    ZYR_CAPTIONS_BAD_ARGUMENT = 1,
    ZYR_CAPTIONS_NOT_FOUND = 2,
    ZYR_CAPTIONS_UNREADABLE = 3,
    ZYR_CAPTIONS_FOLDER = 4,
    ZYR_CAPTIONS_NO_FORMAT = 5,
    ZYR_CAPTIONS_EMPTY = 6,
    ZYR_CAPTIONS_MALFORMED = 7,
    ZYR_CAPTIONS_NO_CODE_PAGE = 8,
    ZYR_CAPTIONS_NO_CLASS = 9,
    ZYR_CAPTIONS_NO_SEEK = 10,
    ZYR_CAPTIONS_BUSY = 11,
    ZYR_CAPTIONS_TOO_LARGE = 12,
    ZYR_CAPTIONS_NO_MEMORY = 13,
    ZYR_CAPTIONS_NO_SCREEN = 14
};
enum {
    ZYR_CAPTIONS_BOX_LINE_ENDS = 1,
    ZYR_CAPTIONS_SINGLE_BYTE = 2,
    ZYR_CAPTIONS_TOGETHER = 4
};
typedef struct ZyrCaptionsOptions {
    const char *pszCodePage;
    const char *const *ppszClasses;
    uint32_t uiClasses;
    uint32_t uiFlags;
    uint32_t uiFromMs;
} ZyrCaptionsOptions;
ZyrCaptions *zyrCaptions_load(const char *pszPath, const ZyrCaptionsOptions *pstOptions);
ZyrCaptions *zyrCaptions_loadMemory(const void *pvData, size_t uiBytes, const char *pszName,
                                            const ZyrCaptionsOptions *pstOptions);
void zyrCaptions_free(ZyrCaptions *pstCaptions);
int zyrCaptions_getError(const ZyrCaptions *pstCaptions);
const char *zyrCaptions_getErrorText(const ZyrCaptions *pstCaptions);
#define ZYR_CAPTIONS_OPEN_END 0x7FFFFFFF
#define ZYR_CAPTIONS_NONE 0xFFFFFFFFu
#define ZYR_CAPTIONS_ALL 0xFFFFFFFFu
enum {
    ZYR_CAPTIONS_UNDERLINE = 0x0002,
    ZYR_CAPTIONS_BOLD = 0x0004,
    ZYR_CAPTIONS_ITALIC = 0x0008,
    ZYR_CAPTIONS_LEFT = 0x0010,
    ZYR_CAPTIONS_CENTER = 0x0020,
    ZYR_CAPTIONS_RIGHT = 0x0040,
    ZYR_CAPTIONS_HEADING_1 = 0x0080,
    ZYR_CAPTIONS_TOP = 0x2000,
    ZYR_CAPTIONS_MIDDLE = 0x4000
};
typedef struct ZyrCaptionStyle {
    uint32_t uiFontSize;
    uint32_t uiDisplayMode;
    uint32_t uiHighlight;
    uint16_t usColor;
    uint16_t usOutlineColor;
    uint32_t uiSsaStyle;
    uint32_t uiMarked;
    uint32_t uiMarginLeft;
    uint32_t uiMarginRight;
    uint32_t uiMarginVertical;
    uint32_t uiEffect;
    uint32_t uiEffectTop;
    uint32_t uiEffectBottom;
    uint32_t uiEffectDelay;
} ZyrCaptionStyle;
typedef struct ZyrCaption {
    int32_t iStart;
    int32_t iEnd;
    int32_t iShownUntil;
    uint32_t uiClass;
    const char *pszText;
    uint32_t uiTextBytes;
    uint32_t uiLines;
    uint32_t uiBadCharacters;
    uint32_t uiSource;
    const ZyrCaptionStyle *pstStyle;
} ZyrCaption;
uint32_t zyrCaptions_count(const ZyrCaptions *pstCaptions);
int zyrCaptions_get(const ZyrCaptions *pstCaptions, uint32_t uiIndex, ZyrCaption *pstCaption);
uint32_t zyrCaptions_getAt(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime,
                                   uint32_t *puiIndexes, uint32_t uiRoom);
size_t zyrCaptions_getTextAt(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime,
                                     char *pszText, size_t uiRoom);
uint32_t zyrCaptions_getNext(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime);
uint32_t zyrCaptions_getPrevious(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime);
int32_t zyrCaptions_getNextChange(const ZyrCaptions *pstCaptions, int32_t iTime);
enum {
    ZYR_CAPTIONS_SAMI = 0,
    ZYR_CAPTIONS_SUBRIP = 1,
    ZYR_CAPTIONS_SUBVIEWER = 2,
    ZYR_CAPTIONS_SSA = 3,
    ZYR_CAPTIONS_UNKNOWN = 4
};
enum {
    ZYR_CAPTIONS_BY_MARK = 0,
    ZYR_CAPTIONS_BY_SCAN = 1,
    ZYR_CAPTIONS_BY_FALLBACK = 2
};
typedef struct ZyrCaptionsFile {
    const char *pszFile;
    uint32_t uiFormat;
    const char *pszFormat;
    const char *pszEncoding;
    const char *pszCodePage;
    uint32_t bGuessed;
    uint32_t bSingleByte;
    uint32_t uiRule;
    uint32_t uiUtf8Characters;
    uint32_t uiNotUtf8;
    size_t uiScanned;
    size_t uiFirstNotUtf8;
    size_t uiFirstUnreadable;
    uint8_t ucFirstNotUtf8;
    uint8_t ucFirstUnreadable;
    uint32_t uiCodePages;
    uint32_t uiCaptions;
    uint32_t uiWithText;
    uint32_t uiBadCharacters;
    uint32_t uiClasses;
    uint32_t uiSsaStyles;
    uint32_t uiLogLines;
    int32_t iLastEnd;
    const char *pszTitle;
    const char *pszOriginalScript;
    const char *pszScriptType;
    uint32_t uiDelay;
    uint32_t uiColor;
    uint32_t uiFontSize;
    const char *pszFont;
} ZyrCaptionsFile;
int zyrCaptions_getFile(const ZyrCaptions *pstCaptions, ZyrCaptionsFile *pstFile);
typedef struct ZyrCaptionClass {
    const char *pszName;
    const char *pszLanguage;
    uint32_t uiOrder;
    uint32_t uiFolded;
    uint32_t uiCaptions;
    int32_t iFirstStart;
    int32_t iLastStart;
} ZyrCaptionClass;
int zyrCaptions_getClass(const ZyrCaptions *pstCaptions, uint32_t uiClass, ZyrCaptionClass *pstClass);
const char *zyrCaptions_getFoldedName(const ZyrCaptions *pstCaptions, uint32_t uiClass,
                                              uint32_t uiName);
typedef struct ZyrCaptionCodePage {
    const char *pszName;
    const char *pszPreview;
    uint32_t bInUse;
} ZyrCaptionCodePage;
int zyrCaptions_getCodePage(const ZyrCaptions *pstCaptions, uint32_t uiIndex,
                                    ZyrCaptionCodePage *pstCodePage);
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
int zyrCaptions_getSsaStyle(const ZyrCaptions *pstCaptions, uint32_t uiIndex,
                                    ZyrCaptionSsaStyle *pstStyle);
typedef struct ZyrCaptionLogLine {
    int32_t iPriority;
    const char *pszTag;
    const char *pszText;
    uint32_t uiCaption;
} ZyrCaptionLogLine;
int zyrCaptions_getLogLine(const ZyrCaptions *pstCaptions, uint32_t uiIndex,
                                   ZyrCaptionLogLine *pstLine);
typedef struct ZyrCaptionOutput {
    const char *pszName;
    uint32_t uiWidth;
    uint32_t uiHeight;
} ZyrCaptionOutput;
int zyrCaptions_getOutput(uint32_t uiIndex, ZyrCaptionOutput *pstOutput);
typedef struct ZyrCaptionBox {
    uint32_t uiX;
    uint32_t uiY;
    uint32_t uiWidth;
    uint32_t uiHeight;
} ZyrCaptionBox;
typedef struct ZyrCaptionScreen ZyrCaptionScreen;
int zyrCaptions_openScreen(const char *pszOutput, uint32_t uiFontSize, int32_t iPosition,
                                   ZyrCaptionScreen **ppstScreen);
void zyrCaptions_closeScreen(ZyrCaptionScreen *pstScreen);
int zyrCaptions_draw(ZyrCaptionScreen *pstScreen, const char *pszText, uint8_t *pucRgba,
                             ZyrCaptionBox *pstBox);
int zyrCaptions_drawAt(ZyrCaptionScreen *pstScreen, const ZyrCaptions *pstCaptions, uint32_t uiClass,
                               int32_t iTime, uint8_t *pucRgba, ZyrCaptionBox *pstBox);
uint32_t zyrCaptions_getMissing(const ZyrCaptionScreen *pstScreen, const char *pszText,
                                        uint32_t *puiCharacters, uint32_t uiRoom);
typedef struct ZyrFindings ZyrFindings;
enum {
    ZYR_FINDING_DOUBTFUL = 1,
    ZYR_FINDING_CHANGED = 2,
    ZYR_FINDING_LOST = 3
};
typedef struct ZyrFindingRule {
    const char *pszCode;
    uint32_t uiSeverity;
    const char *pszSeverity;
    const char *pszFormats;
    const char *pszTitle;
    const char *pszExplanation;
    const char *pszFile;
    const char
        *pszExample;
} ZyrFindingRule;
int zyrFindings_getRule(uint32_t uiRule, ZyrFindingRule *pstRule);
uint32_t zyrFindings_findRule(const char *pszCode);
typedef struct ZyrFindingsOptions {
    const ZyrCaptionsOptions *pstCaptions;
    uint32_t
        uiCharactersPerSecond;
    uint32_t uiLongestMs;
    const char *pszOutput;
    uint32_t uiFontSize;
} ZyrFindingsOptions;
typedef struct ZyrFinding {
    uint32_t uiRule;
    const char *pszCode;
    uint32_t uiSeverity;
    uint32_t uiLine;
    uint32_t uiColumn;
    uint32_t uiColumns;
    size_t uiOffset;
    uint32_t uiCaption;
    uint32_t uiClass;
    const char *pszSentence;
    const char *pszText;
    const char *pszLine;
} ZyrFinding;
ZyrFindings *zyrFindings_load(const char *pszPath, const ZyrFindingsOptions *pstOptions);
ZyrFindings *zyrFindings_loadMemory(const void *pvData, size_t uiBytes, const char *pszName,
                                            const ZyrFindingsOptions *pstOptions);
void zyrFindings_free(ZyrFindings *pstFindings);
int zyrFindings_getError(const ZyrFindings *pstFindings);
const char *zyrFindings_getErrorText(const ZyrFindings *pstFindings);
uint32_t zyrFindings_count(const ZyrFindings *pstFindings);
int zyrFindings_get(const ZyrFindings *pstFindings, uint32_t uiIndex, ZyrFinding *pstFinding);
const ZyrCaptions *zyrFindings_getCaptions(const ZyrFindings *pstFindings);
const ZyrCaptions *zyrFindings_getBoxCaptions(const ZyrFindings *pstFindings);
