// The header pass of SSA: the whole file is read once, when it is opened. Each Dialogue line becomes a node
// of the frame list, each Style line a style; titles are kept. The text of the Dialogue lines is left to the
// frame parser.

#include <cstring>

#include "format/seek_index.h"
#include "format/ssa/frame_list.h"
#include "format/ssa/ssa_line.h"
#include "format/ssa/ssa_usual.h"
#include "format/ssa/style_list.h"
#include "record/engine_log.h"
#include "text/char_reader.h"
#include "text/text_helpers.h"

namespace
{

/** Sections of the file, by the rows of SectionTable. */
enum SSASection : uint32_t {
    E_SSA_SECTION_SCRIPT_INFO,
    E_SSA_SECTION_STYLES,
    E_SSA_SECTION_EVENTS,
    E_SSA_SECTION_UNKNOWN, // passed over up to the next "["
};

constexpr const char *SectionTable[] = {"Script Info", "v4 Styles", "Events"};
static_assert(std::size(SectionTable) == E_SSA_SECTION_UNKNOWN);

enum HeaderState : uint32_t {
    E_HEADER_FIND_SECTION, // anything before a "["
    E_HEADER_SECTION,      // the name behind it
    E_HEADER_SKIP_LINE,    // anything up to the CR
    E_HEADER_LINE_END,     // from there to the LF
    E_HEADER_KEY,
    E_HEADER_VALUE,  // of a title
    E_HEADER_STYLE,  // the fields of a style
    E_HEADER_MARKED, // first field of a Dialogue line
    E_HEADER_START,  // its second field
};

constexpr int64_t NO_POSITION = -1;

/** Number fields of a Style line, behind the style's and the font's name. */
constexpr uint32_t SSAStyleInfo::*const STYLE_NUMBERS[] = {
    &SSAStyleInfo::uiFontSize,       &SSAStyleInfo::uiPrimaryColour, &SSAStyleInfo::uiSecondaryColour,
    &SSAStyleInfo::uiTertiaryColour, &SSAStyleInfo::uiBackColour,    &SSAStyleInfo::uiBold,
    &SSAStyleInfo::uiItalic,         &SSAStyleInfo::uiBorderStyle,   &SSAStyleInfo::uiOutline,
    &SSAStyleInfo::uiShadow,         &SSAStyleInfo::uiAlignment,     &SSAStyleInfo::uiMarginL,
    &SSAStyleInfo::uiMarginR,        &SSAStyleInfo::uiMarginV,       &SSAStyleInfo::uiAlphaLevel,
    &SSAStyleInfo::uiEncoding,
};
constexpr uint32_t STYLE_NAMES = 2;
constexpr uint32_t LAST_STYLE_FIELD = STYLE_NAMES + sizeof(STYLE_NUMBERS) / sizeof(STYLE_NUMBERS[0]) - 1;

struct HeaderScan {
    void *hFile;
    HeaderState eState;
    uint32_t eSection;
    int32_t iRawMode;
    int32_t iResult;      // 1, or why the pass ends
    int64_t llEventsPos;  // where the lines of [Events] begin; NO_POSITION before it was found
    int64_t llLineBytes;  // bytes of the line read so far; right in the states that need it
    uint32_t eTitle;      // which title the value is
    uint32_t uiTextUnits; // units of ausSSAHeaderText that are used up
    uint32_t uiField;     // of the Style line
    SSAStyleInfo stStyle; // the Style line so far
};

/** Let the next state see the unit again. */
bool Hand_On(HeaderScan &stScan, HeaderState eState)
{
    stScan.eState = eState;
    return false;
}

/** Where the reader stands. @return false when the file does not tell */
bool Get_Position(HeaderScan &stScan, int64_t *pllPos)
{
    const int64_t llTold = Ask_ReadPosition(stScan.hFile, pllPos);
    if (llTold >= 0) return true;
    LOG_PARSER("HeaderParser_SSA() - File Tell Failed! (ERROR = %d)\n", static_cast<int32_t>(llTold));
    *pllPos = NO_POSITION;
    stScan.iResult = -1;
    return false;
}

/** Keep the title that the tag buffer holds, while there is room for titles. */
void Store_Title(HeaderScan &stScan)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    uint16_t *const pusPlace = stInfo.ausSSAHeaderText + stScan.uiTextUnits;
    stScan.uiTextUnits += stTag.uiTagLength + 1;
    if (stScan.uiTextUnits >= ZYR_SSA_HEADER_UNITS) return;
    std::memcpy(pusPlace, stTag.ausTagBuf, stTag.uiTagLength * sizeof(uint16_t));
    switch (stScan.eTitle) {
    case E_SSA_LINE_TITLE:
        stInfo.pusSSATitle = pusPlace;
        stInfo.uiSSATitleLength = stTag.uiTagLength;
        break;
    case E_SSA_LINE_ORIGINAL_SCRIPT:
        stInfo.pusSSAOriginalScript = pusPlace;
        stInfo.uiSSAOriginalScriptLength = stTag.uiTagLength;
        break;
    default:
        stInfo.pusSSAScriptType = pusPlace;
        stInfo.uiSSAScriptTypeLength = stTag.uiTagLength;
        break;
    }
}

/** Take the field that the tag buffer holds; the last one completes the style. */
void Finish_StyleField(HeaderScan &stScan)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint32_t uiNameUnits = stTag.uiTagLength < ZYR_SSA_NAME_UNITS
                                     ? stTag.uiTagLength
                                     : static_cast<uint32_t>(ZYR_SSA_NAME_UNITS);
    if (stScan.uiField < STYLE_NAMES)
        std::memcpy(stScan.uiField == 0 ? stScan.stStyle.ausStyleName : stScan.stStyle.ausFontName,
                    stTag.ausTagBuf, uiNameUnits * sizeof(uint16_t));
    else
        stScan.stStyle.*STYLE_NUMBERS[stScan.uiField - STYLE_NAMES] =
            QUIBCAPTPARS_Str2Number(stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
    if (stScan.uiField == LAST_STYLE_FIELD)
        Add_SSAStyleInfo(&stScan.stStyle); // without memory: one style less
    stTag.uiTagLength = 0;
}

void Add_Frame(HeaderScan &stScan, uint32_t uiPTS, int64_t llPos)
{
    if (Append_CaptionFrame(uiPTS, llPos) == 1) return;
    LOG_PARSER("HeaderParser_SSA() - Add Frame Failed!\n");
    stScan.iResult = -1;
}

/** Index the usual Dialogue lines that the read buffer holds from the line's begin on. */
void Take_UsualLines(HeaderScan &stScan)
{
    int64_t llBehind = NO_POSITION;
    while (stScan.iResult == 1) {
        uint32_t uiPTS = 0;
        const uint32_t uiBytes = Pass_UsualDialogue(&uiPTS);
        if (uiBytes == 0) return;
        stScan.iRawMode = 1;
        if (llBehind >= 0)
            llBehind += uiBytes; // the file is asked once
        else if (!Get_Position(stScan, &llBehind))
            return;
        Add_Frame(stScan, uiPTS, llBehind - uiBytes);
    }
}

// One function per state. Each gives whether its unit is done with; if not, the next state sees it again.

bool Step_FindSection(HeaderScan &stScan, uint16_t usChar)
{
    if (usChar != '[') return true;
    s_pstTagControlInfo->uiTagLength = 0;
    stScan.eState = E_HEADER_SECTION;
    return true;
}

bool Step_Section(HeaderScan &stScan, uint16_t usChar)
{
    const bool bFull = Hold_SSAUnit(usChar);
    if (usChar == ']') {
        const TagControlInfo &stTag = *s_pstTagControlInfo;
        stScan.eSection =
            Find_SSAName(SectionTable, stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
        stScan.eState = stScan.eSection == E_SSA_SECTION_UNKNOWN ? E_HEADER_FIND_SECTION : E_HEADER_SKIP_LINE;
        return true;
    }
    return usChar == '[' || usChar == '\r' || bFull ? Hand_On(stScan, E_HEADER_FIND_SECTION) : true;
}

bool Step_SkipLine(HeaderScan &stScan, uint16_t usChar)
{
    if (usChar == '\r') stScan.eState = E_HEADER_LINE_END;
    return true;
}

bool Step_LineEnd(HeaderScan &stScan, uint16_t usChar)
{
    if (usChar != '\n') return true;
    if (stScan.eSection == E_SSA_SECTION_EVENTS && stScan.llEventsPos < 0)
        Get_Position(stScan, &stScan.llEventsPos);
    Take_UsualLines(stScan);
    s_pstTagControlInfo->uiTagLength = 0;
    stScan.llLineBytes = 0;
    stScan.eState = E_HEADER_KEY;
    return true;
}

bool Begin_Value(HeaderScan &stScan)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint32_t eType = Get_SSALineType(stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
    stTag.uiTagLength = 0;
    switch (eType) {
    case E_SSA_LINE_DIALOGUE:
        stScan.iRawMode = 1; // from here on only times and line ends are read
        stScan.eState = E_HEADER_MARKED;
        break;
    case E_SSA_LINE_STYLE:
        stScan.stStyle = {};
        stScan.uiField = 0;
        stScan.eState = E_HEADER_STYLE;
        break;
    case E_SSA_LINE_UNKNOWN: stScan.eState = E_HEADER_SKIP_LINE; break;
    default:
        stScan.eTitle = eType;
        stScan.eState = E_HEADER_VALUE;
        break;
    }
    return true;
}

bool Step_Key(HeaderScan &stScan, uint16_t usChar)
{
    const bool bFull = Hold_SSAUnit(usChar);
    if (usChar == ':') return Begin_Value(stScan);
    if (usChar == '\r' || usChar == ';' || bFull) return Hand_On(stScan, E_HEADER_SKIP_LINE);
    return usChar == '[' ? Hand_On(stScan, E_HEADER_FIND_SECTION) : true;
}

bool Step_Value(HeaderScan &stScan, uint16_t usChar)
{
    if (stScan.uiTextUnits >= ZYR_SSA_HEADER_UNITS) return Hand_On(stScan, E_HEADER_SKIP_LINE);
    if (usChar != '\r' && usChar != ';') {
        Collect_TagUnit(usChar, TAG_BUF_UNITS);
        return true;
    }
    Store_Title(stScan);
    return Hand_On(stScan, E_HEADER_SKIP_LINE);
}

bool Step_Style(HeaderScan &stScan, uint16_t usChar)
{
    if (usChar == ' ') return true;
    if (usChar == ',') {
        Finish_StyleField(stScan);
        if (stScan.uiField++ == LAST_STYLE_FIELD) stScan.eState = E_HEADER_SKIP_LINE;
        return true;
    }
    if (usChar != '\r' && usChar != ';' && !Hold_SSAUnit(usChar)) return true;
    if (stScan.uiField == LAST_STYLE_FIELD) Finish_StyleField(stScan);
    return Hand_On(stScan, E_HEADER_SKIP_LINE);
}

bool Step_Marked(HeaderScan &stScan, uint16_t usChar)
{
    if (usChar == '\r') return Hand_On(stScan, E_HEADER_SKIP_LINE);
    if (usChar == ',') stScan.eState = E_HEADER_START;
    return true;
}

bool Step_Start(HeaderScan &stScan, uint16_t usChar)
{
    if (usChar == ' ') return true;
    if (usChar != ',')
        return usChar == '\r' || Hold_SSAUnit(usChar) ? Hand_On(stScan, E_HEADER_SKIP_LINE) : true;
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint32_t uiPTS = Parse_SSAPts(stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
    int64_t llPos = 0;
    if (uiPTS != 0 && Get_Position(stScan, &llPos)) Add_Frame(stScan, uiPTS, llPos - stScan.llLineBytes);
    stScan.eState = E_HEADER_SKIP_LINE;
    return true;
}

bool Step_Header(HeaderScan &stScan, uint16_t usChar)
{
    switch (stScan.eState) {
    case E_HEADER_FIND_SECTION: return Step_FindSection(stScan, usChar);
    case E_HEADER_SECTION: return Step_Section(stScan, usChar);
    case E_HEADER_SKIP_LINE: return Step_SkipLine(stScan, usChar);
    case E_HEADER_LINE_END: return Step_LineEnd(stScan, usChar);
    case E_HEADER_KEY: return Step_Key(stScan, usChar);
    case E_HEADER_VALUE: return Step_Value(stScan, usChar);
    case E_HEADER_STYLE: return Step_Style(stScan, usChar);
    case E_HEADER_MARKED: return Step_Marked(stScan, usChar);
    default: return Step_Start(stScan, usChar);
    }
}

void Set_Class(int64_t llFirstFramePos)
{
    pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos = llFirstFramePos;
    pstQuibCaptionParserInfo->uiClassNums = 1;
}

/** Read to the end of the file. @return 1, -1, or a negative reader result. */
int32_t Scan_File(HeaderScan &stScan)
{
    while (stScan.iResult == 1) {
        uint16_t usChar = 0;
        const int32_t iBytes = Get_CharCode(stScan.hFile, &usChar, stScan.iRawMode);
        if (iBytes < 0) {
            Set_Class(0);
            return Fail_Read("HeaderParser_SSA", iBytes);
        }
        if (iBytes == 0) {
            Mark_EndOfData();
            Set_Class(stScan.llEventsPos);
            return 1;
        }
        stScan.llLineBytes += iBytes;
        while (!Step_Header(stScan, usChar)) {}
    }
    return stScan.iResult;
}

} // namespace

int32_t HeaderParser_SSA(void *hFile)
{
    if (!Is_HeaderReady()) return -1;
    Clear_CaptionFrameList();
    HeaderScan stScan = {};
    stScan.hFile = hFile;
    stScan.eSection = E_SSA_SECTION_UNKNOWN;
    stScan.iResult = 1;
    stScan.llEventsPos = NO_POSITION;
    const int32_t iResult = Scan_File(stScan);
    Index_Styles();
    if (Sort_CaptionFrames() == 1) return iResult;
    Clear_CaptionFrameList(); // in file order it would be of no use
    if (iResult != 1) return iResult;
    LOG_PARSER("HeaderParser_SSA() - Add Frame Failed!\n");
    return -1;
}
