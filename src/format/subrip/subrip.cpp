// SubRip: a number line, a time line, text lines, an empty line; entry after entry, in file order. Every line
// ends with CR LF. There is no header and no index, so a seek scans.

#include "format/seek_index.h"
#include "format/subrip/subrip_usual.h"
#include "lines/line_output.h"
#include "markup/caption_text.h"
#include "markup/html_tag.h"
#include "markup/tag_command.h"
#include "record/engine_log.h"
#include "text/char_reader.h"
#include "text/text_helpers.h"

namespace
{

constexpr const char *FRAME_PARSER_NAME = "FrameParser_SubRip";

/** Where an entry stands. The frame parser and the seek differ only in what they do with the text. */
enum SubRipState : uint32_t {
    E_SRT_SEEK_NUMBER, // anything before the entry's number
    E_SRT_NUMBER,
    E_SRT_SEEK_TIME, // anything before the time line
    E_SRT_TIME,
    E_SRT_AFTER_TIME, // the time line's end
    E_SRT_TEXT,
    E_SRT_TAG,
    E_SRT_ENTITY,
    E_SRT_LINE_END, // matching CR LF CR LF
};

constexpr uint32_t TIME_NUMBERS = 8;            // hours, minutes, seconds, milliseconds; twice
constexpr uint32_t TIME_UNITS = CONV_BUF_UNITS; // units of a time line that are looked at

/** The numbers of a time line, taken as they come: separators may be anything. */
struct TimeLine {
    uint32_t uiUnits;   // units seen
    uint32_t uiNumbers; // numbers seen, also those beyond the slots
    bool bInNumber;     // the last unit was a digit
    uint32_t auiNumber[TIME_NUMBERS];
};

struct SubRipScan {
    SubRipState eState;
    SubRipState eReturn; // state that goes on after a line end
    uint32_t uiMatched;  // units of the line end pattern seen
    bool bEntryEnd;      // the pattern is complete
    bool bLogged;        // something of the entry's structure has been logged
    TimeLine stTime;
};

void Add_TimeUnit(TimeLine &stTime, uint16_t usChar)
{
    if (stTime.uiUnits == TIME_UNITS) return;
    ++stTime.uiUnits;
    const bool bDigit = Is_Digit(usChar);
    if (bDigit && !stTime.bInNumber) ++stTime.uiNumbers;
    stTime.bInNumber = bDigit;
    if (!bDigit || stTime.uiNumbers > TIME_NUMBERS) return;
    uint32_t &uiNumber = stTime.auiNumber[stTime.uiNumbers - 1];
    uiNumber = uiNumber * 10 + (usChar - '0');
}

/** @return milliseconds of the four numbers from uiFirst on, wrapping. */
uint32_t Get_Time(const TimeLine &stTime, uint32_t uiFirst)
{
    const uint32_t *const puiNumber = stTime.auiNumber + uiFirst;
    return puiNumber[0] * 3600000u + puiNumber[1] * 60000u + puiNumber[2] * 1000u + puiNumber[3];
}

void Check_TimeLine(SubRipScan &stScan)
{
    if (stScan.stTime.uiNumbers == TIME_NUMBERS) return;
    LOG_PARSER("SUBRIP PTS FORMAT is BAD! Number Argument = [%d]\n", stScan.stTime.uiNumbers);
    stScan.bLogged = true;
}

/** A line of the current state has ended: its CR has been seen. */
void Start_LineEnd(SubRipScan &stScan)
{
    stScan.eReturn = stScan.eState;
    stScan.eState = E_SRT_LINE_END;
    stScan.uiMatched = 1;
}

// One function per state that the frame parser and the seek share. Each gives whether its unit is done with;
// if not, the next state sees it again.

bool Step_SeekNumber(SubRipScan &stScan, uint16_t usChar)
{
    if (!Is_Digit(usChar)) return true;
    stScan.eState = E_SRT_NUMBER;
    return false;
}

bool Step_Number(SubRipScan &stScan, uint16_t usChar)
{
    if (Is_Digit(usChar)) return true;
    stScan.eState = E_SRT_SEEK_TIME;
    if (usChar == '\r') {
        Start_LineEnd(stScan);
        return true;
    }
    LOG_PARSER("Unexpected Character! (0x%02X)\n", usChar);
    stScan.bLogged = true;
    return true;
}

bool Step_SeekTime(SubRipScan &stScan, uint16_t usChar)
{
    if (!Is_Digit(usChar)) return true;
    stScan.stTime = {};
    stScan.eState = E_SRT_TIME;
    return false;
}

bool Step_Time(SubRipScan &stScan, uint16_t usChar)
{
    if (usChar != '\r') {
        Add_TimeUnit(stScan.stTime, usChar);
        return true;
    }
    Check_TimeLine(stScan);
    stScan.eState = E_SRT_AFTER_TIME;
    return false;
}

bool Step_AfterTime(SubRipScan &stScan, uint16_t usChar)
{
    if (usChar == '\r') {
        Start_LineEnd(stScan);
        return true;
    }
    stScan.eState = E_SRT_TEXT;
    return false;
}

/** What a unit means for the line end pattern. */
enum LineEndStep : uint32_t {
    E_LINE_END_MATCH,  // goes on, or the entry is complete
    E_LINE_END_CRLF,   // a line ended; the unit begins the next one
    E_LINE_END_BROKEN, // a CR without its LF
};

LineEndStep Step_LineEnd(SubRipScan &stScan, uint16_t usChar)
{
    if (Matches_EntryEnd(stScan.uiMatched, usChar)) {
        stScan.bEntryEnd = ++stScan.uiMatched == ENTRY_END_UNITS;
        return E_LINE_END_MATCH;
    }
    stScan.eState = stScan.eReturn;
    if (stScan.uiMatched == 2) return E_LINE_END_CRLF;
    LOG_PARSER(">>>>> CR + LF is Bad! <<<<<\n");
    stScan.bLogged = true;
    return E_LINE_END_BROKEN;
}

bool Step_Header(SubRipScan &stScan, uint16_t usChar)
{
    switch (stScan.eState) {
    case E_SRT_SEEK_NUMBER: return Step_SeekNumber(stScan, usChar);
    case E_SRT_NUMBER: return Step_Number(stScan, usChar);
    case E_SRT_SEEK_TIME: return Step_SeekTime(stScan, usChar);
    case E_SRT_TIME: return Step_Time(stScan, usChar);
    default: return Step_AfterTime(stScan, usChar);
    }
}

bool Is_HeaderState(SubRipState eState)
{
    return eState <= E_SRT_AFTER_TIME;
}

// ---- Frame parser ----

/** The text states stand in the order of MarkupState. */
SubRipState Get_MarkupState(MarkupState eState)
{
    return static_cast<SubRipState>(E_SRT_TEXT + static_cast<uint32_t>(eState));
}

void End_TextLine()
{
    Lay_Out_Text();
    Execute_TagCommand(E_TAGCMD_LINE_BREAK, nullptr);
}

bool Step_Text(SubRipScan &stScan, uint16_t usChar)
{
    if (usChar == '\r' || usChar == 0) {
        pstQuibCaptionParserInfo->ucPrevBlank = 0;
        if (usChar == '\r') Start_LineEnd(stScan);
        return true;
    }
    stScan.eState = Get_MarkupState(Step_MarkupText(usChar));
    return true;
}

bool Step_FrameTag(SubRipScan &stScan, uint16_t usChar)
{
    stScan.eState = Get_MarkupState(Step_Tag(usChar, FRAME_PARSER_NAME).eNext);
    if (usChar == '\r') Start_LineEnd(stScan); // a tag may span lines
    return true;
}

bool Step_FrameEntity(SubRipScan &stScan, uint16_t usChar)
{
    const MarkupStep stStep = Step_Entity(usChar);
    stScan.eState = Get_MarkupState(stStep.eNext);
    return !stStep.bAgain;
}

bool Step_FrameLineEnd(SubRipScan &stScan, uint16_t usChar)
{
    const LineEndStep eStep = Step_LineEnd(stScan, usChar);
    if (eStep == E_LINE_END_MATCH) return true;
    if (eStep == E_LINE_END_CRLF && stScan.eState == E_SRT_TEXT) End_TextLine();
    return false;
}

bool Step_Frame(SubRipScan &stScan, uint16_t usChar)
{
    switch (stScan.eState) {
    case E_SRT_TEXT: return Step_Text(stScan, usChar);
    case E_SRT_TAG: return Step_FrameTag(stScan, usChar);
    case E_SRT_ENTITY: return Step_FrameEntity(stScan, usChar);
    case E_SRT_LINE_END: return Step_FrameLineEnd(stScan, usChar);
    default: return Step_Header(stScan, usChar);
    }
}

int32_t Complete_Frame(const SubRipScan &stScan)
{
    Complete_FrameText();
    Set_FrameTimes(Get_Time(stScan.stTime, 0), Get_Time(stScan.stTime, TIME_NUMBERS / 2));
    return 1;
}

/** The literal reading of an entry. */
[[gnu::noinline]] int32_t Read_Entry(void *hFile)
{
    SubRipScan stScan = {};
    while (!stScan.bEntryEnd) {
        uint16_t usChar = 0;
        const int32_t iResult = Get_CharCode(hFile, &usChar, 0);
        if (iResult < 0) return Fail_Read(FRAME_PARSER_NAME, iResult);
        if (iResult == 0) {
            Mark_EndOfData();
            return Is_HeaderState(stScan.eState) ? NO_CAPTION_DATA : Complete_Frame(stScan);
        }
        while (!Step_Frame(stScan, usChar)) {}
    }
    return Complete_Frame(stScan);
}

// ---- Seek ----

constexpr const char *SEEK_NAME = "Seek_SubRip";

bool Step_SeekText(SubRipScan &stScan, uint16_t usChar)
{
    if (usChar == '\r') Start_LineEnd(stScan);
    return true;
}

/** The entry before is from now on the one that the scan has passed; so is its time. */
int64_t Pass_Entry(SeekScan &stSeek, bool bLogged, void *hFile)
{
    SeekPlace &stPlace = stSeek.stPlace;
    stPlace = {Get_ReadPosition(hFile), stPlace.llPos, stPlace.uiLastTime, stPlace.uiLastTime};
    return Pass_SeekEntry(stSeek, bLogged, hFile);
}

/** Note an entry's start. @return whether it is not beyond the target */
bool Pass_Start(SeekScan &stSeek, uint32_t uiStart)
{
    if (!Pass_SeekStart(stSeek, uiStart)) return false;
    stSeek.stPlace.uiLastTime = uiStart;
    return true;
}

bool Step_Seek(SubRipScan &stScan, SeekScan &stSeek, uint16_t usChar)
{
    switch (stScan.eState) {
    case E_SRT_TEXT: return Step_SeekText(stScan, usChar);
    case E_SRT_LINE_END: return Step_LineEnd(stScan, usChar) == E_LINE_END_MATCH;
    case E_SRT_TIME:
        if (Step_Time(stScan, usChar)) return true;
        return !Pass_Start(stSeek, Get_Time(stScan.stTime, 0));
    default: return Step_Header(stScan, usChar);
    }
}

} // namespace

int32_t HeaderParser_SubRip(void * /*hFile*/)
{
    if (!Is_HeaderReady()) return -1;
    pstQuibCaptionParserInfo->uiClassNums = 1;
    pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos = 0;
    return 1;
}

int32_t FrameParser_SubRip(void)
{
    if (!Is_StreamReady()) return -1;
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    Clear_TagQueue();
    pstQuibCaptionParserInfo->llCurrFilePos = Get_ReadPosition(hFile);
    pstQuibCaptionParserInfo->uiConvLength = 0; // text of a frame that failed in the middle
    return Take_UsualSubRip() ? 1 : Read_Entry(hFile);
}

int32_t Seek_SubRip(uint32_t uiTargetMs, uint32_t bBackward, int32_t /*iCurrPTS*/,
                    QuibCaptionParserInfo * /*pstInfo*/)
{
    if (!Is_StreamReady()) return -1;
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    if (uiTargetMs == 0) return Resume_Reading(SEEK_NAME, hFile, stInfo.llStartFilePos, 0, E_READ_AHEAD_FULL);

    const uint32_t uiCurrTime = static_cast<uint32_t>(stInfo.iCurrPTS);
    const bool bFromStart = bBackward == E_SEEK_BACKWARD || bBackward == E_SEEK_FROM_START;
    SeekPlace stPlace = {};
    if (bFromStart) {
        const int64_t llReached = Move_ReadPosition(hFile, stInfo.llStartFilePos, E_READ_AHEAD_FULL);
        if (llReached < 0) {
            LOG_PARSER("Seek_SubRip() - Failed in setting a seek position of caption file!\n");
            return -1;
        }
        stPlace = {llReached, llReached, 0, 0};
    } else {
        stPlace = {Get_ReadPosition(hFile), stInfo.llCurrFilePos, uiCurrTime, uiCurrTime};
    }
    SeekScan stSeek = {stPlace, Begin_SeekTrack(stPlace, uiTargetMs, bFromStart), false};
    SubRipScan stScan = {};
    const auto fnTake = [&](uint16_t usChar) -> int64_t {
        while (!Step_Seek(stScan, stSeek, usChar)) {}
        if (!stScan.bEntryEnd) return 1;
        const bool bLogged = stScan.bLogged;
        stScan = {};
        return Pass_Entry(stSeek, bLogged, hFile);
    };
    const auto fnPassUsual = [&]() -> int64_t {
        uint32_t uiStart = 0;
        if (stScan.eState != E_SRT_SEEK_NUMBER || stScan.bLogged || !Pass_UsualSubRip(&uiStart)) return 0;
        return Pass_Start(stSeek, uiStart) ? Pass_Entry(stSeek, false, hFile) : 1;
    };
    return Scan_ToTarget(stSeek, hFile, SEEK_NAME, fnTake, fnPassUsual);
}
