// SSA frames: one Dialogue line per call, read at the place that the frame list's cursor names; and the seek,
// which only moves that cursor.

#include <cstring>

#include "format/ssa/ssa_line.h"
#include "format/ssa/ssa_override.h"
#include "format/ssa/style_list.h"
#include "lines/line_output.h"
#include "markup/caption_text.h"
#include "markup/html_tag.h"
#include "markup/tag_command.h"
#include "text/buffer_units.h"
#include "text/char_reader.h"
#include "text/text_helpers.h"
#include "zyr_log.h"

namespace
{

enum FrameState : uint32_t {
    E_SSA_KEY,
    E_SSA_FIELD,      // one of the nine before the text
    E_SSA_TEXT_START, // the text's first unit
    E_SSA_TEXT,
    E_SSA_OVERRIDE,
    E_SSA_ESCAPE,    // the unit behind a backslash
    E_SSA_SKIP_LINE, // anything up to the CR
    E_SSA_LINE_END,  // from there to the LF
};

struct FrameScan {
    FrameState eState;
    uint32_t uiField; // of FieldTable
    bool bLineEnd;    // the line is complete
    SSAFrameInfo stFrame;
};

constexpr StopUnits CR_STOP = {1, {'\r'}, false};
constexpr StopUnits LF_STOP = {1, {'\n'}, false};
constexpr StopUnits KEY_STOPS = {2, {'\r', ':'}, false};
constexpr StopUnits FIELD_STOPS = {3, {'\r', ',', ' '}, false};
constexpr StopUnits OVERRIDE_STOPS = {3, {'\r', '{', '}'}, false};
constexpr StopUnits TEXT_STOPS = {5, {0, '\t', '\r', '{', '\\'}, true};

/** Put the units up to the next stop that the read buffer holds into the tag buffer. One place is left, so
 * that it is always Hold_Unit() that finds the buffer full. */
template <StopUnits STOPS>
void Hold_Run()
{
    constexpr uint32_t RUN_UNITS = TAG_BUF_UNITS - 1;
    TagControlInfo &stTag = *s_pstTagControlInfo;
    if (stTag.uiTagLength >= RUN_UNITS) return;
    uint16_t *const pusTarget = stTag.ausTagBuf + stTag.uiTagLength;
    stTag.uiTagLength += Take_PlainRun<STOPS>(pusTarget, RUN_UNITS - stTag.uiTagLength, false).uiUnits;
}

/** Put a unit into the tag buffer, and the run behind it. @return whether the unit has filled the buffer */
template <StopUnits STOPS>
bool Hold_Unit(uint16_t usChar)
{
    Collect_TagUnit(usChar, TAG_BUF_UNITS);
    Hold_Run<STOPS>();
    return s_pstTagControlInfo->uiTagLength == TAG_BUF_UNITS;
}

/** Let the state that skips the line see the unit. */
bool Skip_Line(FrameScan &stScan)
{
    stScan.eState = E_SSA_SKIP_LINE;
    return false;
}

// ---- Fields. Each function takes the field that the tag buffer holds, and gives whether the line goes on
// ----

uint32_t Get_Number(uint32_t uiFrom = 0)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    return QUIBCAPTPARS_Str2Number(stTag.ausTagBuf + uiFrom,
                                   static_cast<int32_t>(stTag.uiTagLength - uiFrom));
}

uint32_t Get_Time()
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    return Parse_SSAPts(stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
}

bool Finish_Marked(SSAFrameInfo &stFrame)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    for (uint32_t uiPos = 0; uiPos < stTag.uiTagLength; ++uiPos)
        if (Is_Digit(stTag.ausTagBuf[uiPos])) stFrame.uiMarked = stTag.ausTagBuf[uiPos] - uint32_t{'0'};
    return true;
}

bool Finish_Start(SSAFrameInfo &stFrame)
{
    stFrame.uiStartPTS = Get_Time();
    return stFrame.uiStartPTS != 0;
}

bool Finish_End(SSAFrameInfo &stFrame)
{
    stFrame.uiEndPTS = Get_Time();
    return stFrame.uiEndPTS != 0;
}

bool Finish_Style(SSAFrameInfo &stFrame)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint32_t uiUnits = stTag.uiTagLength < ZYR_SSA_FRAME_NAME_UNITS
                                 ? stTag.uiTagLength
                                 : static_cast<uint32_t>(ZYR_SSA_FRAME_NAME_UNITS);
    std::memcpy(stFrame.ausStyleName, stTag.ausTagBuf, uiUnits * sizeof(uint16_t));
    stFrame.pstStyle = Find_Style(stTag.ausTagBuf, stTag.uiTagLength);
    return true;
}

bool Finish_Name(SSAFrameInfo & /*stFrame*/)
{
    return true;
}

bool Finish_MarginL(SSAFrameInfo &stFrame)
{
    stFrame.uiMarginL = Get_Number();
    return true;
}

bool Finish_MarginR(SSAFrameInfo &stFrame)
{
    stFrame.uiMarginR = Get_Number();
    return true;
}

bool Finish_MarginV(SSAFrameInfo &stFrame)
{
    stFrame.uiMarginV = Get_Number();
    return true;
}

/** ";" y1 ";" y2 ";" delay, from unit uiPos of the tag buffer on. */
void Parse_ScrollUp(SSAFrameInfo &stFrame, uint32_t uiPos)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    uint32_t uiStart = 0; // of the parameter that is open
    uint32_t uiOpened = 0;
    for (; uiPos < stTag.uiTagLength && uiOpened < 3; ++uiPos) {
        if (stTag.ausTagBuf[uiPos] != ';') continue;
        const uint32_t uiValue =
            QUIBCAPTPARS_Str2Number(stTag.ausTagBuf + uiStart, static_cast<int32_t>(uiPos - uiStart));
        if (uiOpened == 1) stFrame.uiEffectY1 = uiValue;
        if (uiOpened == 2) stFrame.uiEffectY2 = uiValue;
        ++uiOpened;
        uiStart = uiPos + 1;
    }
    if (uiOpened == 3) stFrame.uiEffectDelay = Get_Number(uiStart);
}

/** One separator, then the delay. */
void Parse_Banner(SSAFrameInfo &stFrame, uint32_t uiPos)
{
    if (uiPos < s_pstTagControlInfo->uiTagLength) stFrame.uiEffectDelay = Get_Number(uiPos + 1);
}

void Parse_Karaoke(SSAFrameInfo & /*stFrame*/, uint32_t /*uiPos*/) {}

struct EffectRow {
    const char *pszName; // as the field has it, without blanks
    uint32_t uiEffect;
    void (*pfParse)(SSAFrameInfo &stFrame, uint32_t uiPos);
};

constexpr EffectRow EffectTable[] = {
    {"Karaoke", 1, Parse_Karaoke},
    {"Scrollup", 2, Parse_ScrollUp},
    {"Banner", 3, Parse_Banner},
};
constexpr uint32_t EFFECT_UNITS = 29; // longest effect that is looked at

bool Finish_Effect(SSAFrameInfo &stFrame)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    if (stTag.uiTagLength == 0 || stTag.uiTagLength > EFFECT_UNITS) return true;
    char szEffect[EFFECT_UNITS + 1] = {};
    uint16_t usBad = 0;
    if (Copy_AsciiUnits(szEffect, stTag.ausTagBuf, stTag.uiTagLength, &usBad) < stTag.uiTagLength) {
        __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG, " [%d] Bad SSA Effect Name Character! [0x%04X]\n",
                            __LINE__, usBad);
        return true;
    }
    for (const EffectRow &stRow : EffectTable) {
        const uint32_t uiNameLen = static_cast<uint32_t>(std::strlen(stRow.pszName));
        if (Compare_StringNoCase(stRow.pszName, szEffect, uiNameLen) == 0) continue;
        stFrame.uiEffect = stRow.uiEffect;
        stRow.pfParse(stFrame, uiNameLen);
        break;
    }
    return true;
}

constexpr bool (*FieldTable[])(SSAFrameInfo &stFrame) = {
    Finish_Marked,  Finish_Start,   Finish_End,     Finish_Style,  Finish_Name,
    Finish_MarginL, Finish_MarginR, Finish_MarginV, Finish_Effect,
};
constexpr uint32_t FIELDS = sizeof(FieldTable) / sizeof(FieldTable[0]);

// ---- Style ----

uint32_t Get_AlignmentMode(uint32_t uiAlignment)
{
    uint32_t uiMode = DISPLAY_MODE_CENTER;
    if ((uiAlignment & 1) != 0) uiMode |= (uiAlignment & 2) != 0 ? DISPLAY_MODE_RIGHT : DISPLAY_MODE_LEFT;
    if ((uiAlignment & 4) != 0) return uiMode | DISPLAY_MODE_TOP;
    return (uiAlignment & 8) != 0 ? uiMode | DISPLAY_MODE_MIDDLE : uiMode;
}

void Apply_Style(const SSAStyleInfo &stStyle)
{
    Set_TextStyle(E_TAGCMD_SET_DISPLAY_MODE, Get_AlignmentMode(stStyle.uiAlignment));
    Set_TextStyle(E_TAGCMD_SET_FONT_COLOR, Get_Rgb565(stStyle.uiPrimaryColour));
    if (stStyle.uiBorderStyle != 0)
        Set_TextStyle(E_TAGCMD_SET_FONT_OUTLINECOLOR, Get_Rgb565(stStyle.uiBackColour));
    if (stStyle.uiBold != 0) Set_TextStyle(E_TAGCMD_SET_DISPLAY_MODE, DISPLAY_MODE_BOLD);
    if (stStyle.uiItalic != 0) Set_TextStyle(E_TAGCMD_SET_DISPLAY_MODE, DISPLAY_MODE_ITALIC);
    if (stStyle.uiFontSize != 0) Set_TextStyle(E_TAGCMD_SET_FONT_SIZE, stStyle.uiFontSize);
}

// ---- States. Each function gives whether its unit is done with; if not, the next state sees it again ----

/** Take the field that the tag buffer holds. @return whether another one follows */
bool Finish_Field(FrameScan &stScan)
{
    const bool bGoesOn = FieldTable[stScan.uiField](stScan.stFrame);
    s_pstTagControlInfo->uiTagLength = 0;
    ++stScan.uiField;
    stScan.eState = !bGoesOn ? E_SSA_SKIP_LINE : stScan.uiField == FIELDS ? E_SSA_TEXT_START : E_SSA_FIELD;
    return stScan.eState == E_SSA_FIELD;
}

bool Step_Field(FrameScan &stScan, uint16_t usChar)
{
    if (usChar == ' ') return true;
    if (usChar == '\r') return Skip_Line(stScan);
    if (usChar == ',') {
        if (Finish_Field(stScan)) Hold_Run<FIELD_STOPS>();
        return true;
    }
    return Hold_Unit<FIELD_STOPS>(usChar) ? Skip_Line(stScan) : true;
}

constexpr DigitPattern TIME_FIELDS("0:00:00.00,0:00:00.00,");
constexpr uint32_t END_PLACE = 11;  // of the end time
constexpr uint32_t START_FIELD = 1; // of FieldTable

/** @return ms of the time at a place of the pattern. */
uint32_t Get_UsualTime(const PatternDigits &stDigits, uint32_t uiPlace)
{
    const uint32_t uiMinutes = stDigits.aucDigit[uiPlace] * 60u + stDigits.Get_Pair(uiPlace + 2);
    const uint32_t uiSeconds = uiMinutes * 60 + stDigits.Get_Pair(uiPlace + 5);
    return uiSeconds * 1000 + stDigits.Get_Pair(uiPlace + 8) * 10;
}

/** Look at both time fields where the first one begins. @return their bytes, or 0 unless both are good and in
 * their usual form. */
uint32_t Match_TimeFields(FrameScan &stScan, const BufferUnits &stUnits)
{
    PatternDigits stDigits;
    if (stUnits.iNums < static_cast<int32_t>(TIME_FIELDS.uiUnits) ||
        !Match_Pattern<TIME_FIELDS>(stUnits, 0, &stDigits))
        return 0;
    const uint32_t uiStart = Get_UsualTime(stDigits, 0);
    const uint32_t uiEnd = Get_UsualTime(stDigits, END_PLACE);
    if (uiStart == 0 || uiEnd == 0) return 0;
    stScan.stFrame.uiStartPTS = uiStart;
    stScan.stFrame.uiEndPTS = uiEnd;
    stScan.uiField = START_FIELD + 2;
    return TIME_FIELDS.uiUnits;
}

/** What Step_Field() does, for the ASCII bytes that the read buffer holds: fields are short and many. */
void Take_AsciiFields(FrameScan &stScan)
{
    if (s_uiTextEncoding == E_TEXT_ENCODING_UTF16LE || s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE) return;
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint8_t *pucByte = stInfo.pucStreamBuf + stInfo.iStreamBufIndex;
    const uint8_t *const pucEnd = stInfo.pucStreamBuf + stInfo.iStreamDataSize;
    while (pucEnd - pucByte >= static_cast<ptrdiff_t>(BLOCK_BYTES) &&
           stTag.uiTagLength + BLOCK_BYTES < TAG_BUF_UNITS) {
        const uint32_t uiPlain = Find_StopByte<FIELD_STOPS, false>(pucByte, false);
        Store_Units(stTag.ausTagBuf + stTag.uiTagLength, pucByte);
        stTag.uiTagLength += uiPlain;
        pucByte += uiPlain;
        if (uiPlain == BLOCK_BYTES) continue;
        if (*pucByte != ' ' && *pucByte != ',') break;
        if (*pucByte++ == ' ') continue;
        if (!Finish_Field(stScan)) break;
        if (stScan.uiField == START_FIELD)
            pucByte += Match_TimeFields(stScan, {pucByte, 1, 0, static_cast<int32_t>(pucEnd - pucByte)});
    }
    stInfo.iStreamBufIndex = static_cast<int32_t>(pucByte - stInfo.pucStreamBuf);
}

void Begin_Fields(FrameScan &stScan)
{
    stScan.eState = E_SSA_FIELD;
    Take_AsciiFields(stScan);
}

bool Step_Key(FrameScan &stScan, uint16_t usChar)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    if (usChar == '\r') return Skip_Line(stScan);
    if (usChar != ':') return Hold_Unit<KEY_STOPS>(usChar) ? Skip_Line(stScan) : true;
    Collect_TagUnit(usChar, TAG_BUF_UNITS);
    const uint32_t eType = Get_SSALineType(stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
    stTag.uiTagLength = 0;
    if (eType != E_SSA_LINE_DIALOGUE) return Skip_Line(stScan);
    Begin_Fields(stScan);
    return true;
}

bool Step_TextStart(FrameScan &stScan)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (stScan.stFrame.pstStyle != nullptr) Apply_Style(*stScan.stFrame.pstStyle);
    stInfo.stSSAFrameInfo = stScan.stFrame;
    stInfo.uiConvLength = 0;
    stScan.eState = E_SSA_TEXT;
    return false;
}

void Begin_Escaped(FrameScan &stScan, FrameState eState)
{
    Lay_Out_Text(); // what stands before it keeps its style
    s_pstTagControlInfo->uiTagLength = 0;
    stScan.eState = eState;
}

bool Step_Text(FrameScan &stScan, uint16_t usChar)
{
    if (usChar == ' ' || usChar == '\t') {
        Append_FoldedBlank();
        return true;
    }
    pstQuibCaptionParserInfo->ucPrevBlank = 0;
    switch (usChar) {
    case 0: return true;
    case '\r': return Skip_Line(stScan);
    case '{': Begin_Escaped(stScan, E_SSA_OVERRIDE); return true;
    case '\\': Begin_Escaped(stScan, E_SSA_ESCAPE); return true;
    default: Append_Unit(usChar); return true;
    }
}

void Finish_Override(FrameScan &stScan)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    if (!Apply_SSAOverride(stTag.ausTagBuf, stTag.uiTagLength))
        __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG,
                            " [%d] FrameParser_SSA() - Failed to parse the caption tag!\n", __LINE__);
    stTag.uiTagLength = 0;
    stScan.eState = E_SSA_TEXT;
}

bool Step_Override(FrameScan &stScan, uint16_t usChar)
{
    if (usChar == '}') {
        Collect_TagUnit(usChar, TAG_BUF_UNITS);
        Finish_Override(stScan);
        return true;
    }
    if (usChar == '\r' || usChar == '{') return Skip_Line(stScan);
    return Hold_Unit<OVERRIDE_STOPS>(usChar) ? Skip_Line(stScan) : true;
}

bool Step_Escape(FrameScan &stScan, uint16_t usChar)
{
    stScan.eState = E_SSA_TEXT;
    if (To_Upper(usChar) == 'N')
        Execute_TagCommand(E_TAGCMD_LINE_BREAK, nullptr);
    else
        Append_Unit('\\');
    return true;
}

bool Step_SkipLine(FrameScan &stScan, uint16_t usChar)
{
    if (usChar == '\r')
        stScan.eState = E_SSA_LINE_END;
    else
        Skip_PlainRun<CR_STOP>();
    return true;
}

bool Step_LineEnd(FrameScan &stScan, uint16_t usChar)
{
    stScan.bLineEnd = usChar == '\n';
    if (!stScan.bLineEnd) Skip_PlainRun<LF_STOP>();
    return true;
}

bool Step_Frame(FrameScan &stScan, uint16_t usChar)
{
    switch (stScan.eState) {
    case E_SSA_KEY: return Step_Key(stScan, usChar);
    case E_SSA_FIELD: return Step_Field(stScan, usChar);
    case E_SSA_TEXT_START: return Step_TextStart(stScan);
    case E_SSA_TEXT: return Step_Text(stScan, usChar);
    case E_SSA_OVERRIDE: return Step_Override(stScan, usChar);
    case E_SSA_ESCAPE: return Step_Escape(stScan, usChar);
    case E_SSA_SKIP_LINE: return Step_SkipLine(stScan, usChar);
    default: return Step_LineEnd(stScan, usChar);
    }
}

constexpr int32_t FRAME = 1;
constexpr int32_t FRAME_BEHIND_LIST = -6;

int32_t Complete_Frame(const SSAFrameInfo &stFrame)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    Complete_FrameText();
    stInfo.iStartPTS = static_cast<int32_t>(stFrame.uiStartPTS);
    stInfo.iCurrPTS = stInfo.iStartPTS;
    stInfo.iEndPTS = static_cast<int32_t>(stFrame.uiEndPTS);
    if (s_stCaptionFrameList.uiCurrNode == Get_TailNode()) return FRAME_BEHIND_LIST;
    ++s_stCaptionFrameList.uiCurrNode;
    return FRAME;
}

// ---- Seek ----

/** First node of [uiFrom, uiEnd) whose time is above uiMs, or, if bEqual, at least uiMs; uiEnd when there is
 * none. */
uint32_t Find_Node(uint32_t uiFrom, uint32_t uiEnd, uint32_t uiMs, bool bEqual)
{
    const CaptionFrameNode *const pastNode = s_stCaptionFrameList.pastNode;
    while (uiFrom < uiEnd) {
        const uint32_t uiMiddle = uiFrom + (uiEnd - uiFrom) / 2;
        if (pastNode[uiMiddle].uiPTS > uiMs || (bEqual && pastNode[uiMiddle].uiPTS == uiMs))
            uiEnd = uiMiddle;
        else
            uiFrom = uiMiddle + 1;
    }
    return uiFrom;
}

/**
 * Move the cursor for a time: forward to the first node that starts after it, backward to the last one that
 * starts before it (the head at worst). A cursor on the tail stays there.
 *
 * @return the node that was looked at last: the cursor's, or the last of all before the tail
 */
const CaptionFrameNode *Move_Cursor(uint32_t uiTargetMs, uint32_t bBackward)
{
    CaptionFrameList &stList = s_stCaptionFrameList;
    const uint32_t uiTail = Get_TailNode();
    if (bBackward == 3) stList.uiCurrNode = 1;
    if (stList.uiCurrNode == uiTail) return nullptr;
    if (bBackward == 1) {
        stList.uiCurrNode = Find_Node(0, stList.uiCurrNode + 1, uiTargetMs, true) - 1;
        return stList.pastNode + stList.uiCurrNode;
    }
    stList.uiCurrNode = Find_Node(stList.uiCurrNode, uiTail, uiTargetMs, false);
    return stList.pastNode + stList.uiCurrNode - (stList.uiCurrNode == uiTail ? 1 : 0);
}

} // namespace

int32_t FrameParser_SSA(void)
{
    if (!Is_StreamReady() || s_stCaptionFrameList.uiNodeNum == 0) return -1;
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    Clear_TagQueue();
    const int64_t llWanted = s_stCaptionFrameList.pastNode[s_stCaptionFrameList.uiCurrNode].llFilePos;
    const bool bThere = Is_ReaderAt(hFile, llWanted);
    const int64_t llReached = bThere ? llWanted : Move_ReadPosition(hFile, llWanted, E_READ_AHEAD_SHORT);
    if (llReached < 0) {
        __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG,
                            " [%d] FrameParser_SSA() - Failed in setting a seek position of caption file!\n",
                            __LINE__);
        return -1;
    }
    pstQuibCaptionParserInfo->llCurrFilePos = llReached;
    s_pstTagControlInfo->uiTagLength = 0;
    FrameScan stScan = {};
    if (Take_DialogueKey() > 0)
        Begin_Fields(stScan);
    else
        Hold_Run<KEY_STOPS>();
    for (;;) {
        if (stScan.eState == E_SSA_TEXT) Append_PlainRun<TEXT_STOPS>();
        uint16_t usChar = 0;
        const int32_t iResult = Get_CharCode(hFile, &usChar, 0);
        if (iResult < 0) {
            __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG,
                                " [%d] FrameParser_SSA() - Get_CharCode() Failed! (ERROR = %d)\n", __LINE__,
                                iResult);
            return iResult;
        }
        if (iResult == 0) {
            Mark_EndOfData();
            return Complete_Frame(stScan.stFrame);
        }
        while (!Step_Frame(stScan, usChar)) {}
        if (stScan.bLineEnd) return Complete_Frame(stScan.stFrame);
    }
}

int32_t Seek_SSA(uint32_t uiTargetMs, uint32_t bBackward, int32_t /*iCurrPTS*/,
                 QuibCaptionParserInfo * /*pstInfo*/)
{
    if (!Is_StreamReady()) return -1;
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    int64_t llPos = stInfo.llCurrFilePos;
    int32_t iTime = stInfo.iCurrPTS;
    if (uiTargetMs == 0) {
        s_stCaptionFrameList.uiCurrNode = 1; // the first one, or the tail
        llPos = stInfo.llStartFilePos;
        iTime = 0;
    } else if (const CaptionFrameNode *const pstNode = Move_Cursor(uiTargetMs, bBackward)) {
        llPos = pstNode->llFilePos;
        iTime = static_cast<int32_t>(pstNode->uiPTS);
    }
    if (llPos < 0) {
        __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG,
                            " [%d] Seek_SSA() - Parse_GetCurrFrameFilePos() Failed! (ERROR = %d)\n", __LINE__,
                            static_cast<int32_t>(llPos));
        return -1;
    }
    const int64_t llReached =
        Move_ReadPosition(QUIBCAPTCB_GetFileHandleOfSubtitle(), llPos, E_READ_AHEAD_SHORT);
    if (llReached < 0) {
        __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG,
                            " [%d] Seek_SSA() - QUIBCAPTCB_FileSeek() Failed! (ERROR = %d)\n", __LINE__,
                            static_cast<int32_t>(llReached));
        return -1;
    }
    stInfo.llCurrFilePos = llPos;
    stInfo.iCurrPTS = iTime;
    return 1;
}
