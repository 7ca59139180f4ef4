// SSA frames: one Dialogue line per call, read at the place that the frame list's cursor names; and the seek,
// which only moves that cursor.

#include <algorithm>

#include "format/seek_index.h"
#include "format/ssa/frame_list.h"
#include "format/ssa/ssa_fields.h"
#include "format/ssa/ssa_line.h"
#include "format/ssa/ssa_override.h"
#include "format/ssa/ssa_usual.h"
#include "lines/line_output.h"
#include "markup/caption_text.h"
#include "markup/html_tag.h"
#include "markup/tag_command.h"
#include "record/engine_log.h"
#include "text/char_reader.h"
#include "text/text_helpers.h"

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
    uint32_t eField; // SSAField
    bool bLineEnd;   // the line is complete
    SSAFrameInfo stFrame;
};

/** Let the state that skips the line see the unit. */
bool Skip_Line(FrameScan &stScan)
{
    stScan.eState = E_SSA_SKIP_LINE;
    return false;
}

// One function per state. Each gives whether its unit is done with; if not, the next state sees it again.

bool Step_Key(FrameScan &stScan, uint16_t usChar)
{
    if (usChar == '\r') return Skip_Line(stScan);
    const bool bFull = Hold_SSAUnit(usChar);
    if (usChar != ':') return bFull ? Skip_Line(stScan) : true;
    TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint32_t eType = Get_SSALineType(stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
    stTag.uiTagLength = 0;
    stScan.eState = eType == E_SSA_LINE_DIALOGUE ? E_SSA_FIELD : E_SSA_SKIP_LINE;
    return true;
}

void Finish_Field(FrameScan &stScan)
{
    const bool bGoesOn = Finish_SSAField(stScan.eField, stScan.stFrame);
    s_pstTagControlInfo->uiTagLength = 0;
    ++stScan.eField;
    if (!bGoesOn)
        stScan.eState = E_SSA_SKIP_LINE;
    else if (stScan.eField == E_SSA_FIELDS)
        stScan.eState = E_SSA_TEXT_START;
}

bool Step_Field(FrameScan &stScan, uint16_t usChar)
{
    if (usChar == ' ') return true;
    if (usChar == '\r') return Skip_Line(stScan);
    if (usChar != ',') return Hold_SSAUnit(usChar) ? Skip_Line(stScan) : true;
    Finish_Field(stScan);
    return true;
}

bool Step_TextStart(FrameScan &stScan)
{
    Begin_SSAText(stScan.stFrame);
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
    if (Is_Blank(usChar)) {
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

bool Step_Override(FrameScan &stScan, uint16_t usChar)
{
    if (usChar == '\r' || usChar == '{') return Skip_Line(stScan);
    const bool bFull = Hold_SSAUnit(usChar);
    if (usChar != '}') return bFull ? Skip_Line(stScan) : true;
    TagControlInfo &stTag = *s_pstTagControlInfo;
    Apply_SSAOverride(stTag.ausTagBuf, stTag.uiTagLength);
    stTag.uiTagLength = 0;
    stScan.eState = E_SSA_TEXT;
    return true;
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
    if (usChar == '\r') stScan.eState = E_SSA_LINE_END;
    return true;
}

bool Step_LineEnd(FrameScan &stScan, uint16_t usChar)
{
    stScan.bLineEnd = usChar == '\n';
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

/** Show a line's times, and go on to the next line. */
int32_t Finish_Line(const SSAFrameInfo &stFrame)
{
    Set_FrameTimes(stFrame.uiStartPTS, stFrame.uiEndPTS);
    if (s_stCaptionFrameList.uiCurrNode == Get_TailNode()) return FRAME_BEHIND_LIST;
    ++s_stCaptionFrameList.uiCurrNode;
    return FRAME;
}

/** The literal reading of a line. @param[in] iHeld  as Hold_NextByte() gave it */
int32_t Read_Line(void *hFile, int32_t iHeld)
{
    s_pstTagControlInfo->uiTagLength = 0;
    FrameScan stScan = {};
    while (!stScan.bLineEnd) {
        uint16_t usChar = 0;
        const int32_t iResult = iHeld > 0 ? Get_CharCode(hFile, &usChar, 0) : iHeld;
        if (iResult < 0) return Fail_Read("FrameParser_SSA", iResult);
        if (iResult == 0) {
            Mark_EndOfData();
            break;
        }
        while (!Step_Frame(stScan, usChar)) {}
    }
    Complete_FrameText();
    return Finish_Line(stScan.stFrame);
}

// ---- Seek ----

/**
 * Move the cursor for a time: forward to the first node that starts after it, backward to the last one that
 * starts before it (the head at worst). A cursor on the tail stays there.
 *
 * @return the node that was looked at last: the cursor's, or the last of all before the tail
 */
const CaptionFrameNode *Move_Cursor(uint32_t uiTargetMs, uint32_t bBackward)
{
    CaptionFrameList &stList = s_stCaptionFrameList;
    CaptionFrameNode *const pstTail = stList.pastNode + Get_TailNode();
    if (bBackward == E_SEEK_FROM_START) stList.uiCurrNode = 1;
    CaptionFrameNode *pstCurr = stList.pastNode + stList.uiCurrNode;
    if (pstCurr == pstTail) return nullptr;
    const auto fnIsBefore = [=](const CaptionFrameNode &stNode) { return stNode.uiPTS < uiTargetMs; };
    const auto fnIsNotBehind = [=](const CaptionFrameNode &stNode) { return stNode.uiPTS <= uiTargetMs; };
    if (bBackward == E_SEEK_BACKWARD) // the head is before any time
        pstCurr = std::partition_point(stList.pastNode, pstCurr + 1, fnIsBefore) - 1;
    else
        pstCurr = std::partition_point(pstCurr, pstTail, fnIsNotBehind);
    stList.uiCurrNode = static_cast<uint32_t>(pstCurr - stList.pastNode);
    return pstCurr - (pstCurr == pstTail ? 1 : 0);
}

/** Move the file to a line, and read it. @param[in] bTryUsual  it may yet turn out to be usual */
[[gnu::noinline]] int32_t Read_Frame(void *hFile, int64_t llWanted, bool bTryUsual)
{
    const bool bThere = Is_ReaderAt(hFile, llWanted);
    const int64_t llReached = bThere ? llWanted : Move_ReadPosition(hFile, llWanted, E_READ_AHEAD_SHORT);
    if (llReached < 0) {
        LOG_PARSER("FrameParser_SSA() - Failed in setting a seek position of caption file!\n");
        return -1;
    }
    pstQuibCaptionParserInfo->llCurrFilePos = llReached;
    const int32_t iHeld = Hold_NextByte(hFile);
    const SSAFrameInfo *const pstUsual = bTryUsual && iHeld > 0 ? Take_UsualDialogue() : nullptr;
    return pstUsual != nullptr ? Finish_Line(*pstUsual) : Read_Line(hFile, iHeld);
}

} // namespace

int32_t FrameParser_SSA(void)
{
    if (!Is_StreamReady() || s_stCaptionFrameList.uiNodeNum == 0) return -1;
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    Clear_TagQueue();
    const int64_t llWanted = s_stCaptionFrameList.pastNode[s_stCaptionFrameList.uiCurrNode].llFilePos;
    const bool bHeld = Go_ToHeld(hFile, llWanted);
    const SSAFrameInfo *pstUsual = bHeld ? Take_UsualDialogue() : nullptr;
    if (pstUsual == nullptr) return Read_Frame(hFile, llWanted, !bHeld);
    pstQuibCaptionParserInfo->llCurrFilePos = llWanted;
    return Finish_Line(*pstUsual);
}

int32_t Seek_SSA(uint32_t uiTargetMs, uint32_t bBackward, int32_t /*iCurrPTS*/,
                 QuibCaptionParserInfo * /*pstInfo*/)
{
    if (!Is_StreamReady()) return -1;
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    int64_t llPos = stInfo.llCurrFilePos;
    uint32_t uiTime = static_cast<uint32_t>(stInfo.iCurrPTS);
    if (uiTargetMs == 0) {
        s_stCaptionFrameList.uiCurrNode = 1; // the first one, or the tail
        llPos = stInfo.llStartFilePos;
        uiTime = 0;
    } else if (const CaptionFrameNode *const pstNode = Move_Cursor(uiTargetMs, bBackward)) {
        llPos = pstNode->llFilePos;
        uiTime = pstNode->uiPTS;
    }
    if (llPos < 0) {
        LOG_PARSER("Seek_SSA() - Parse_GetCurrFrameFilePos() Failed! (ERROR = %d)\n",
                   static_cast<int32_t>(llPos));
        return -1;
    }
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    return Resume_Reading("Seek_SSA", hFile, llPos, uiTime, E_READ_AHEAD_SHORT);
}
