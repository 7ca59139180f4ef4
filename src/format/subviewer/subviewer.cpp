// SubViewer frames: a time line, text lines, an empty line; frame after frame, in file order. Every line ends
// with CR LF. There is no index, so a seek scans.

#include "format/seek_index.h"
#include "format/subviewer/subviewer_usual.h"
#include "markup/caption_text.h"
#include "markup/tag_command.h"
#include "record/engine_log.h"
#include "text/char_reader.h"
#include "text/text_helpers.h"

namespace
{

/** Where a frame stands. The seek knows no brackets: they are text to it. */
enum SubViewerState : uint32_t {
    E_SUB_TIME,
    E_SUB_LINE_END, // matching CR LF CR LF
    E_SUB_TEXT,
    E_SUB_BRACKET,
};

constexpr uint32_t TIME_DIGITS = 8; // hh mm ss cc

struct SubViewerScan {
    const char *pszFunction; // for the log
    SubViewerState eState;
    bool bGood;           // the frame's time line is; the text of a frame with a bad one is skipped
    bool bFrameEnd;       // the line end pattern is complete
    uint32_t uiMatched;   // units of that pattern seen
    uint32_t auiTime[2];  // start and end: 1/100 s while their digits are read, ms afterwards
    uint32_t uiTimeIndex; // 0 the start time is being read, 1 the end time
    uint32_t uiDigits;    // digits of it seen
    bool bLogged;         // something of the frame has been logged
};

// ---- The states that the frame parser and the seek share ----

bool Add_TimeDigit(SubViewerScan &stScan, uint16_t usChar)
{
    if (stScan.uiDigits == TIME_DIGITS) return false;
    const bool bSixty = stScan.uiDigits == 2 || stScan.uiDigits == 4; // tens of minutes, tens of seconds
    uint32_t &uiTime = stScan.auiTime[stScan.uiTimeIndex];
    uiTime = uiTime * (bSixty ? 6 : 10) + (usChar - '0');
    ++stScan.uiDigits;
    return true;
}

bool Finish_StartTime(SubViewerScan &stScan)
{
    if (stScan.uiTimeIndex != 0 || stScan.uiDigits != TIME_DIGITS) return false;
    stScan.auiTime[0] *= 10;
    stScan.uiTimeIndex = 1;
    stScan.uiDigits = 0;
    return true;
}

bool Finish_EndTime(SubViewerScan &stScan)
{
    if (stScan.uiTimeIndex != 1 || stScan.uiDigits != TIME_DIGITS) return false;
    stScan.auiTime[1] *= 10;
    return true;
}

/** Take a unit of hh:mm:ss.cc,hh:mm:ss.cc. Separators may be left out. @return whether it is in its place. */
bool Add_TimeUnit(SubViewerScan &stScan, uint16_t usChar)
{
    if (Is_Digit(usChar)) return Add_TimeDigit(stScan, usChar);
    switch (usChar) {
    case ':': return stScan.uiDigits == 2 || stScan.uiDigits == 4;
    case '.': return stScan.uiDigits == 6;
    case ',': return Finish_StartTime(stScan);
    default: return false;
    }
}

void Log_BadTime(SubViewerScan &stScan)
{
    LOG_PARSER("%s() - OOPS!! ERROR!!\n", stScan.pszFunction);
    stScan.bLogged = true;
}

/** Note that a line has ended: its CR may have been seen. */
void Begin_LineEnd(SubViewerScan &stScan, uint16_t usChar)
{
    stScan.eState = E_SUB_LINE_END;
    stScan.uiMatched = usChar == '\r' ? 1 : 0;
}

/** One unit of the time line. @return whether a good time line has just ended. */
bool Step_Time(SubViewerScan &stScan, uint16_t usChar)
{
    if (Add_TimeUnit(stScan, usChar)) return false;
    const bool bLineEnd = Is_LineEnd(usChar);
    const bool bEmptyLine = bLineEnd && stScan.uiTimeIndex == 0 && stScan.uiDigits == 0;
    stScan.bGood = bLineEnd && Finish_EndTime(stScan);
    if (!stScan.bGood) Log_BadTime(stScan);
    if (bEmptyLine) return false;
    Begin_LineEnd(stScan, usChar);
    return stScan.bGood;
}

/** One unit where a line has ended, or of a bad frame. @return whether it begins a text line. */
bool Step_LineEnd(SubViewerScan &stScan, uint16_t usChar)
{
    if (Matches_EntryEnd(stScan.uiMatched, usChar)) {
        stScan.bFrameEnd = ++stScan.uiMatched == ENTRY_END_UNITS;
        return false;
    }
    if (!stScan.bGood) {
        stScan.uiMatched = usChar == '\r' ? 1 : 0;
        return false;
    }
    if (stScan.uiMatched != 2) {
        LOG_PARSER(">>>>> CR + LF is Bad! <<<<<\n");
        stScan.bLogged = true;
    }
    stScan.eState = E_SUB_TEXT;
    return true;
}

/** The next frame begins. */
void Begin_Frame(SubViewerScan &stScan)
{
    stScan = {stScan.pszFunction, E_SUB_TIME, false, false, 0, {0, 0}, 0, 0, false};
}

// ---- Frame parser ----

constexpr char BREAK_TAG[] = "[BR]";
constexpr uint32_t BREAK_TAG_UNITS = 4;

void End_TextLine(SubViewerScan &stScan, uint16_t usChar)
{
    Lay_Out_Text();
    Begin_LineEnd(stScan, usChar);
}

void Step_Text(SubViewerScan &stScan, uint16_t usChar)
{
    if (Is_Blank(usChar)) {
        Append_FoldedBlank();
        return;
    }
    pstQuibCaptionParserInfo->ucPrevBlank = 0;
    if (usChar == '[') {
        Begin_Markup(usChar);
        stScan.eState = E_SUB_BRACKET;
    } else if (Is_LineEnd(usChar)) {
        End_TextLine(stScan, usChar);
    } else {
        Append_Unit(usChar);
    }
}

/** A bracket is collected only as far as it spells a line break, of any case; all else is text. */
void Step_Bracket(SubViewerScan &stScan, uint16_t usChar)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    if (To_Upper(usChar) == static_cast<uint32_t>(BREAK_TAG[stTag.uiTagLength])) {
        Collect_TagUnit(usChar, TAG_TEXT_UNITS);
        if (stTag.uiTagLength < BREAK_TAG_UNITS) return;
        Execute_TagCommand(E_TAGCMD_LINE_BREAK, nullptr);
        stScan.eState = E_SUB_TEXT;
        return;
    }
    Append_Units(stTag.ausTagBuf, stTag.uiTagLength);
    if (usChar == '[') {
        stTag.uiTagLength = 1; // the buffer still begins with a bracket
    } else if (Is_LineEnd(usChar)) {
        End_TextLine(stScan, usChar);
    } else {
        Append_Unit(usChar);
        stScan.eState = E_SUB_TEXT;
    }
}

/** A line's first character is text whatever it is: a bracket there begins no tag. */
void Begin_TextLine(uint16_t usChar)
{
    Execute_TagCommand(E_TAGCMD_LINE_BREAK, nullptr);
    Append_Unit(usChar);
}

void Step_Frame(SubViewerScan &stScan, uint16_t usChar)
{
    switch (stScan.eState) {
    case E_SUB_TIME: Step_Time(stScan, usChar); break;
    case E_SUB_LINE_END:
        if (Step_LineEnd(stScan, usChar)) Begin_TextLine(usChar);
        break;
    case E_SUB_TEXT: Step_Text(stScan, usChar); break;
    case E_SUB_BRACKET: Step_Bracket(stScan, usChar); break;
    }
}

int32_t Complete_Frame(const SubViewerScan &stScan)
{
    Complete_FrameText();
    Set_FrameTimes(stScan.auiTime[0], stScan.auiTime[1]);
    return 1;
}

/** The literal reading of a frame. */
[[gnu::noinline]] int32_t Read_Frame(void *hFile)
{
    SubViewerScan stScan = {};
    stScan.pszFunction = "FrameParser_SubViewer";
    while (!stScan.bFrameEnd) {
        uint16_t usChar = 0;
        const int32_t iResult = Get_CharCode(hFile, &usChar, 0);
        if (iResult < 0) return Fail_Read(stScan.pszFunction, iResult);
        if (iResult == 0) {
            Mark_EndOfData();
            return stScan.eState == E_SUB_TIME ? NO_CAPTION_DATA : Complete_Frame(stScan);
        }
        Step_Frame(stScan, usChar);
        if (stScan.bFrameEnd && !stScan.bGood) Begin_Frame(stScan); // a bad frame has been skipped
    }
    return Complete_Frame(stScan);
}

// ---- Seek ----

constexpr const char *SEEK_NAME = "Seek_SubViewer";

/** The seek leads to the start before that of the last good frame. */
void Check_SeekTime(SeekScan &stSeek, uint32_t uiStart)
{
    if (!Pass_SeekStart(stSeek, uiStart)) return;
    stSeek.stPlace.uiPrevTime = stSeek.stPlace.uiLastTime;
    stSeek.stPlace.uiLastTime = uiStart;
}

void Step_Seek(SubViewerScan &stScan, SeekScan &stSeek, uint16_t usChar)
{
    switch (stScan.eState) {
    case E_SUB_TIME:
        if (Step_Time(stScan, usChar)) Check_SeekTime(stSeek, stScan.auiTime[0]);
        break;
    case E_SUB_LINE_END: Step_LineEnd(stScan, usChar); break;
    default:
        if (Is_LineEnd(usChar)) Begin_LineEnd(stScan, usChar);
        break;
    }
}

int64_t Pass_Frame(SeekScan &stSeek, bool bLogged, void *hFile)
{
    stSeek.stPlace.llPrevPos = stSeek.stPlace.llPos;
    stSeek.stPlace.llPos = Get_ReadPosition(hFile);
    return Pass_SeekEntry(stSeek, bLogged, hFile);
}

} // namespace

int32_t FrameParser_SubViewer(void)
{
    if (!Is_StreamReady()) return -1;
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    pstQuibCaptionParserInfo->llCurrFilePos = Get_ReadPosition(hFile);
    pstQuibCaptionParserInfo->uiConvLength = 0;
    return Take_UsualSubViewer() ? 1 : Read_Frame(hFile);
}

int32_t Seek_SubViewer(uint32_t uiTargetMs, uint32_t bBackward, int32_t /*iCurrPTS*/,
                       QuibCaptionParserInfo * /*pstInfo*/)
{
    if (!Is_StreamReady()) return -1;
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    const int64_t llStart = stInfo.llStartFilePos;
    if (uiTargetMs == 0) return Resume_Reading(SEEK_NAME, hFile, llStart, 0, E_READ_AHEAD_FULL);

    SeekPlace stPlace = {llStart, llStart, 0, 0};
    if (bBackward == E_SEEK_BACKWARD) {
        if (Move_ReadPosition(hFile, llStart, E_READ_AHEAD_FULL) < 0) {
            LOG_PARSER("Seek_SubViewer() - Failed in setting a seek position of caption file!\n");
            return -1;
        }
    } else {
        const uint32_t uiCurrTime = static_cast<uint32_t>(stInfo.iCurrPTS);
        stPlace = {Get_ReadPosition(hFile), stInfo.llCurrFilePos, uiCurrTime, uiCurrTime};
    }
    pstQuibCaptionParserInfo->uiConvLength = 0;
    SeekScan stSeek = {stPlace, Begin_SeekTrack(stPlace, uiTargetMs, bBackward == E_SEEK_BACKWARD), false};
    SubViewerScan stScan = {};
    stScan.pszFunction = SEEK_NAME;
    const auto fnTake = [&](uint16_t usChar) -> int64_t {
        Step_Seek(stScan, stSeek, usChar);
        if (!stScan.bFrameEnd || stSeek.bBeyond) return 1;
        const bool bLogged = stScan.bLogged;
        Begin_Frame(stScan);
        return Pass_Frame(stSeek, bLogged, hFile);
    };
    const auto fnPassUsual = [&]() -> int64_t {
        uint32_t uiStart = 0;
        const bool bFresh = stScan.eState == E_SUB_TIME && stScan.uiDigits == 0 && stScan.uiTimeIndex == 0;
        if (!bFresh || stScan.bLogged || !Pass_UsualSubViewer(&uiStart)) return 0;
        Check_SeekTime(stSeek, uiStart);
        return stSeek.bBeyond ? 1 : Pass_Frame(stSeek, false, hFile);
    };
    return Scan_ToTarget(stSeek, hFile, SEEK_NAME, fnTake, fnPassUsual);
}
