// SubViewer frames: a time line, text lines, an empty line; frame after frame, in file order. Every line ends
// with CR LF. There is no index, so a seek scans.

#include "format/seek_index.h"
#include "markup/caption_text.h"
#include "markup/tag_command.h"
#include "text/buffer_units.h"
#include "text/char_reader.h"
#include "text/text_helpers.h"
#include "zyr_log.h"

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
    __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG, " [%d] %s() - OOPS!! ERROR!!\n", __LINE__,
                        stScan.pszFunction);
    stScan.bLogged = true;
}

constexpr DigitPattern TIME_LINE("00:00:00.00,00:00:00.00\r\n");
constexpr uint32_t END_PLACE = 12; // of the end time

/** @return ms of the time at a place of the pattern. */
uint32_t Get_UsualTime(const PatternDigits &stDigits, uint32_t uiPlace)
{
    const uint32_t uiMinutes = stDigits.Get_Pair(uiPlace) * 60 + stDigits.Get_Pair(uiPlace + 3);
    const uint32_t uiSeconds = uiMinutes * 60 + stDigits.Get_Pair(uiPlace + 6);
    return uiSeconds * 1000 + stDigits.Get_Pair(uiPlace + 9) * 10;
}

/** Note that a line has ended: its CR, or the LF too, may have been seen. */
void Begin_LineEnd(SubViewerScan &stScan, uint32_t uiMatched)
{
    stScan.eState = E_SUB_LINE_END;
    stScan.uiMatched = uiMatched == 0 ? 0 : Take_EntryEnd(uiMatched);
    stScan.bFrameEnd = stScan.uiMatched == ENTRY_END_UNITS;
}

/** Take the usual time line at the read position, if it stands there. @return whether it did. */
bool Take_UsualTimes(SubViewerScan &stScan)
{
    const BufferUnits stUnits = Get_BufferUnits();
    PatternDigits stDigits;
    if (stUnits.iNums < static_cast<int32_t>(TIME_LINE.uiUnits) ||
        !Match_Pattern<TIME_LINE>(stUnits, 0, &stDigits))
        return false;
    Take_BufferUnits(stUnits, TIME_LINE.uiUnits);
    stScan.auiTime[0] = Get_UsualTime(stDigits, 0);
    stScan.auiTime[1] = Get_UsualTime(stDigits, END_PLACE);
    stScan.bGood = true;
    Begin_LineEnd(stScan, 2);
    return true;
}

/** One unit of the time line. @return whether a good time line has just ended. */
bool Step_Time(SubViewerScan &stScan, uint16_t usChar)
{
    if (Add_TimeUnit(stScan, usChar)) {
        Take_AsciiUnits([&stScan](uint8_t ucUnit) { return Add_TimeUnit(stScan, ucUnit); });
        return false;
    }
    const bool bLineEnd = Is_LineEnd(usChar);
    const bool bEmptyLine = bLineEnd && stScan.uiTimeIndex == 0 && stScan.uiDigits == 0;
    stScan.bGood = bLineEnd && Finish_EndTime(stScan);
    if (!stScan.bGood) Log_BadTime(stScan);
    if (bEmptyLine) return false;
    Begin_LineEnd(stScan, usChar == '\r' ? 1 : 0);
    return stScan.bGood;
}

constexpr StopUnits CR_STOP = {1, {'\r'}, false};

/** One unit where a line has ended, or of a bad frame. @return whether it begins a text line. */
bool Step_LineEnd(SubViewerScan &stScan, uint16_t usChar)
{
    if (Matches_EntryEnd(stScan.uiMatched, usChar)) {
        stScan.bFrameEnd = ++stScan.uiMatched == ENTRY_END_UNITS;
        return false;
    }
    if (!stScan.bGood) {
        stScan.uiMatched = usChar == '\r' ? 1 : 0;
        if (stScan.uiMatched == 0) Skip_PlainRun<CR_STOP>();
        return false;
    }
    if (stScan.uiMatched != 2) {
        __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG, " [%d] >>>>> CR + LF is Bad! <<<<<\n", __LINE__);
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

constexpr StopUnits TEXT_STOPS = {4, {'\t', '\r', '\n', '['}, true};
constexpr char BREAK_TAG[] = "[BR]";
constexpr uint32_t BREAK_TAG_UNITS = 4;

void End_TextLine(SubViewerScan &stScan, uint16_t usChar)
{
    Lay_Out_Text();
    Begin_LineEnd(stScan, usChar == '\r' ? 1 : 0);
}

void Step_Text(SubViewerScan &stScan, uint16_t usChar)
{
    if (usChar == ' ' || usChar == '\t') {
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
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    Complete_FrameText();
    stInfo.iCurrPTS = static_cast<int32_t>(stScan.auiTime[0]);
    stInfo.iStartPTS = stInfo.iCurrPTS;
    stInfo.iEndPTS = static_cast<int32_t>(stScan.auiTime[1]);
    return 1;
}

// ---- Seek ----

constexpr const char *SEEK_NAME = "Seek_SubViewer";

constexpr StopUnits LINE_END_STOPS = {2, {'\r', '\n'}, false};

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
        if (Is_LineEnd(usChar))
            Begin_LineEnd(stScan, usChar == '\r' ? 1 : 0);
        else
            Skip_PlainRun<LINE_END_STOPS>();
        break;
    }
}

int64_t Pass_Frame(SubViewerScan &stScan, SeekScan &stSeek, void *hFile)
{
    stSeek.stPlace.llPrevPos = stSeek.stPlace.llPos;
    stSeek.stPlace.llPos = Get_ReadPosition(hFile);
    const bool bLogged = stScan.bLogged;
    Begin_Frame(stScan);
    return Pass_SeekEntry(stSeek, bLogged, hFile);
}

} // namespace

int32_t FrameParser_SubViewer(void)
{
    if (!Is_StreamReady()) return -1;
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    pstQuibCaptionParserInfo->llCurrFilePos = Get_ReadPosition(hFile);
    pstQuibCaptionParserInfo->uiConvLength = 0;
    SubViewerScan stScan = {};
    stScan.pszFunction = "FrameParser_SubViewer";
    Take_UsualTimes(stScan);
    while (!stScan.bFrameEnd) {
        if (stScan.eState == E_SUB_TEXT) Append_PlainRun<TEXT_STOPS>();
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

int32_t Seek_SubViewer(uint32_t uiTargetMs, uint32_t bBackward, int32_t /*iCurrPTS*/,
                       QuibCaptionParserInfo * /*pstInfo*/)
{
    if (!Is_StreamReady()) return -1;
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    const int64_t llStart = stInfo.llStartFilePos;
    if (uiTargetMs == 0) return Resume_Reading(SEEK_NAME, hFile, llStart, 0);

    SeekPlace stPlace = {llStart, llStart, 0, 0};
    if (bBackward == 1) {
        if (Move_ReadPosition(hFile, llStart, E_READ_AHEAD_FULL) < 0) {
            __android_log_print(
                ZYR_LOG_ERROR, PARSER_LOG_TAG,
                " [%d] Seek_SubViewer() - Failed in setting a seek position of caption file!\n", __LINE__);
            return -1;
        }
    } else {
        const uint32_t uiCurrTime = static_cast<uint32_t>(stInfo.iCurrPTS);
        stPlace = {Get_ReadPosition(hFile), stInfo.llCurrFilePos, uiCurrTime, uiCurrTime};
    }
    pstQuibCaptionParserInfo->uiConvLength = 0;
    SeekScan stSeek = {stPlace, Begin_SeekTrack(stPlace, uiTargetMs, bBackward == 1), false};
    SubViewerScan stScan = {};
    stScan.pszFunction = SEEK_NAME;
    return Scan_ToTarget(
        stSeek, hFile, SEEK_NAME,
        [&](uint16_t usChar) {
            Step_Seek(stScan, stSeek, usChar);
            return stScan.bFrameEnd && !stSeek.bBeyond ? Pass_Frame(stScan, stSeek, hFile) : 1;
        },
        [] { return int64_t{0}; });
}
