// SAMI, frame by frame: the frame index says where the next SYNC tag of the class stands; from there the SYNC
// tag, the P tag that names the class, and the text up to the next SYNC tag are read. A SYNC tag may hold a
// paragraph for each of several classes: those of the others are passed over, before the text and in it.

#include <algorithm>
#include <cstdint>

#include "format/sami/sami_classes.h"
#include "format/sami/sami_index.h"
#include "format/sami/sami_skip.h"
#include "format/sami/sami_usual.h"
#include "format/seek_index.h"
#include "markup/caption_text.h"
#include "markup/html_tag.h"
#include "record/engine_log.h"
#include "text/char_reader.h"
#include "text/text_helpers.h"

namespace
{

constexpr const char *FRAME_PARSER_NAME = "FrameParser_SAMI";

enum SamiFrameState : uint32_t {
    E_FRAME_SEEK_TAG, // before the text, outside a tag
    E_FRAME_HEAD_TAG, // before the text, in a tag
    E_FRAME_TEXT,     // the text states stand in the order of MarkupState
    E_FRAME_TAG,
    E_FRAME_ENTITY,
    E_FRAME_OTHER, // in the text, in a paragraph of another class
    E_FRAME_OTHER_TAG,
};

/** A tag before the text, as far as its name tells. */
enum HeadTag : uint32_t {
    E_HEAD_NAME,  // the name has not ended yet
    E_HEAD_OTHER, // neither of the two
    E_HEAD_SYNC,
    E_HEAD_P,
};

/** What leads on to the text. */
enum Expected : uint32_t {
    E_EXPECT_SYNC,
    E_EXPECT_P,     // a good SYNC tag was read: nearly any tag begins the text
    E_EXPECT_OWN_P, // a P tag of another class has followed: only one that selects this class does
};

struct SamiFrame {
    SamiFrameState eState;
    HeadTag eTag;
    Expected eExpected;
    bool bTimesOnly; // the SYNC tag to be read is known to lead nowhere; the next place follows it
    bool bLogged;    // the SYNC tag at hand has led to a log line
    bool bDone;      // reading has ended, with iResult: 1 for a frame
    int32_t iResult;
    uint32_t uiPlace;     // of the SYNC tag at hand; NO_SYNC_PLACE while nobody has asked
    uint32_t uiClassBits; // classes that its P tags have selected
    void *hFile;
    int32_t iStart; // of the SYNC tag, ms
    int32_t iEnd;   // of the SYNC tag, ms
};

/** @return whether the tag buffer holds exactly this text, ASCII case aside. */
template <uint32_t BYTES>
bool Is_TagText(const char (&szText)[BYTES])
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    if (stTag.uiTagLength != BYTES - 1) return false;
    for (uint32_t uiPos = 0; uiPos < BYTES - 1; ++uiPos)
        if (To_Upper(stTag.ausTagBuf[uiPos]) != static_cast<uint8_t>(szText[uiPos])) return false;
    return true;
}

void End_Frame(SamiFrame &stFrame, int32_t iResult)
{
    stFrame.bDone = true;
    stFrame.iResult = iResult;
}

void Start_HeadTag(SamiFrame &stFrame)
{
    s_pstTagControlInfo->ausTagBuf[0] = '<';
    s_pstTagControlInfo->uiTagLength = 1;
    stFrame.eState = E_FRAME_HEAD_TAG;
    stFrame.eTag = E_HEAD_NAME;
}

void Start_Text(SamiFrame &stFrame)
{
    pstQuibCaptionParserInfo->uiConvLength = 0;
    stFrame.eState = E_FRAME_TEXT;
}

void Fail_Seek(SamiFrame &stFrame, int64_t llReached)
{
    LOG_PARSER("FrameParser_SAMI() - File Seek Failed! (ERROR = %d)\n", static_cast<int32_t>(llReached));
    End_Frame(stFrame, -1);
}

void Expect_Paragraph(SamiFrame &stFrame, int32_t iStart, int32_t iEnd)
{
    stFrame.iStart = iStart;
    stFrame.iEnd = iEnd;
    stFrame.eExpected = E_EXPECT_P;
}

/** Read on at a SYNC tag, or at the end. */
void Go_To_Place(SamiFrame &stFrame, uint32_t uiPlace)
{
    stFrame.uiPlace = uiPlace;
    stFrame.uiClassBits = 0;
    stFrame.eState = E_FRAME_SEEK_TAG;
    stFrame.eExpected = E_EXPECT_SYNC;
    const int64_t llReached =
        Move_ReadPosition(stFrame.hFile, Get_PlacePosition(uiPlace), E_READ_AHEAD_SHORT);
    if (llReached < 0) Fail_Seek(stFrame, llReached);
}

/** The times of a SYNC tag that is known to lead nowhere are read: read on at the next place. */
void Leave_KnownTag(SamiFrame &stFrame)
{
    if (!stFrame.bTimesOnly || stFrame.eExpected == E_EXPECT_SYNC) return;
    stFrame.bTimesOnly = false;
    Go_To_Place(stFrame, stFrame.uiPlace + 1);
}

/** Read on behind a SYNC tag that does not lead to the text, at the next one that may. */
void Read_On_Behind(SamiFrame &stFrame, uint32_t uiPassed)
{
    const uint32_t uiStop = Find_NextStop(pstQuibCaptionParserInfo->uiCurrClass, uiPassed + 1);
    // A text that begins there without a good SYNC tag has the times of the tag before.
    stFrame.bTimesOnly = uiStop > uiPassed + 1;
    Go_To_Place(stFrame, stFrame.bTimesOnly ? uiStop - 1 : uiStop);
    Leave_KnownTag(stFrame);
}

/** The SYNC tag at hand has not led to the text: read on at the next one that may. */
void Pass_SyncTag(SamiFrame &stFrame)
{
    const bool bLogged = stFrame.bLogged;
    stFrame.bLogged = false;
    stFrame.eExpected = E_EXPECT_SYNC;
    if (stFrame.uiPlace == NO_SYNC_PLACE)
        stFrame.uiPlace = Find_SyncPlace(pstQuibCaptionParserInfo->llCurrFilePos);
    if (!Is_SyncTagPlace(stFrame.uiPlace)) return;
    if (!bLogged) Note_PassedPlace(stFrame.uiPlace, stFrame.uiClassBits);
    Read_On_Behind(stFrame, stFrame.uiPlace);
}

/** The name of a tag before the text has ended: what is it? */
void Note_TagName(SamiFrame &stFrame)
{
    stFrame.eTag = E_HEAD_OTHER;
    if (Is_TagText("<SYNC")) {
        stFrame.eTag = E_HEAD_SYNC;
        if (stFrame.eExpected != E_EXPECT_SYNC) Pass_SyncTag(stFrame); // the later SYNC tag counts
    } else if (stFrame.eExpected != E_EXPECT_SYNC && Is_TagText("<P")) {
        stFrame.eTag = E_HEAD_P;
    }
}

/** @return whether the P tag just parsed selects the frame's class. */
bool Selects_OwnClass()
{
    return s_pstTagControlInfo->uiSelectedClass == pstQuibCaptionParserInfo->uiCurrClass;
}

void Take_ParagraphTag(SamiFrame &stFrame)
{
    if (Selects_OwnClass()) {
        Start_Text(stFrame);
        return;
    }
    stFrame.uiClassBits |= 1u << s_pstTagControlInfo->uiSelectedClass;
    stFrame.eExpected = E_EXPECT_OWN_P;
}

void Drop_SyncTag(SamiFrame &stFrame)
{
    LOG_PARSER("%s() - Failed to parse the caption tag!\n", FRAME_PARSER_NAME);
    Pass_SyncTag(stFrame);
}

/** A SYNC tag, or a P tag where one is expected, is complete. */
void Parse_HeadTag(SamiFrame &stFrame)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    const int32_t iResult = Parse_HtmlTag(stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
    stFrame.bLogged = stFrame.bLogged || stTag.bLogged || iResult == -1;
    if (iResult == -1)
        Drop_SyncTag(stFrame);
    else if (stFrame.eTag == E_HEAD_SYNC)
        Expect_Paragraph(stFrame, stTag.iSyncStart, stTag.iSyncEnd);
    else
        Take_ParagraphTag(stFrame);
    Leave_KnownTag(stFrame);
}

/** A tag before the text is complete. */
void Finish_HeadTag(SamiFrame &stFrame)
{
    stFrame.eState = E_FRAME_SEEK_TAG;
    if (stFrame.eTag == E_HEAD_SYNC || stFrame.eTag == E_HEAD_P)
        Parse_HeadTag(stFrame);
    else if (stFrame.eExpected == E_EXPECT_P || Is_TagText("</BODY>") || Is_TagText("</SAMI>"))
        Start_Text(stFrame);
}

/** @return whether the P tag just parsed has a CLASS. */
bool Names_Class()
{
    return s_pstTagControlInfo->pusClassName != nullptr;
}

// One function per state. Each gives whether its unit is done with; if not, the next state sees it again.

bool Step_SeekTag(SamiFrame &stFrame, uint16_t usChar)
{
    if (usChar == '<') Start_HeadTag(stFrame);
    return true;
}

bool Step_HeadTag(SamiFrame &stFrame, uint16_t usChar)
{
    if (usChar == '<') {
        Start_HeadTag(stFrame);
        return true;
    }
    if (Is_Space(usChar) && stFrame.eTag == E_HEAD_NAME) Note_TagName(stFrame);
    if (stFrame.eState != E_FRAME_HEAD_TAG) return true; // reading goes on elsewhere
    Collect_TagUnit(usChar, TAG_TEXT_UNITS);
    if (usChar == '>') Finish_HeadTag(stFrame);
    return true;
}

SamiFrameState Get_MarkupState(MarkupState eState)
{
    return static_cast<SamiFrameState>(E_FRAME_TEXT + static_cast<uint32_t>(eState));
}

bool Step_Text(SamiFrame &stFrame, uint16_t usChar)
{
    if (usChar == 0 || Is_LineEnd(usChar))
        pstQuibCaptionParserInfo->ucPrevBlank = 0;
    else
        stFrame.eState = Get_MarkupState(Step_MarkupText(usChar));
    return true;
}

/** A SYNC tag ends the frame as soon as its name is there; the next read begins with it. */
void Check_FrameEnd(SamiFrame &stFrame)
{
    if (Is_TagText("<SYNC")) End_Frame(stFrame, 1);
}

bool Step_FrameTag(SamiFrame &stFrame, uint16_t usChar)
{
    const MarkupStep stStep = Step_Tag(usChar, FRAME_PARSER_NAME);
    stFrame.eState = Get_MarkupState(stStep.eNext);
    if (stStep.uiTag == E_HTML_TAG_P && Names_Class() && !Selects_OwnClass()) stFrame.eState = E_FRAME_OTHER;
    if (stFrame.eState == E_FRAME_TAG) Check_FrameEnd(stFrame);
    return true;
}

bool Step_FrameEntity(SamiFrame &stFrame, uint16_t usChar)
{
    const MarkupStep stStep = Step_Entity(usChar);
    stFrame.eState = Get_MarkupState(stStep.eNext);
    return !stStep.bAgain;
}

void Start_OtherTag(SamiFrame &stFrame)
{
    s_pstTagControlInfo->ausTagBuf[0] = '<';
    s_pstTagControlInfo->uiTagLength = 1;
    stFrame.eState = E_FRAME_OTHER_TAG;
}

bool Step_Other(SamiFrame &stFrame, uint16_t usChar)
{
    if (usChar == '<') Start_OtherTag(stFrame);
    return true;
}

/** @return whether the complete tag is a P tag with attributes. */
bool Is_ParagraphTag()
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    return stTag.uiTagLength > 2 && To_Upper(stTag.ausTagBuf[1]) == 'P' && Is_Space(stTag.ausTagBuf[2]);
}

/** Only a P tag whose CLASS selects the frame's class leads back to its text. */
void Finish_OtherTag(SamiFrame &stFrame)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    stFrame.eState = E_FRAME_OTHER;
    if (!Is_ParagraphTag()) return;
    Parse_HtmlTag(stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
    if (Names_Class() && Selects_OwnClass()) stFrame.eState = E_FRAME_TEXT;
}

bool Step_OtherTag(SamiFrame &stFrame, uint16_t usChar)
{
    if (usChar == '<') {
        Start_OtherTag(stFrame);
        return true;
    }
    Collect_TagUnit(usChar, TAG_TEXT_UNITS);
    if (usChar == '>')
        Finish_OtherTag(stFrame);
    else
        Check_FrameEnd(stFrame);
    return true;
}

bool Step_Frame(SamiFrame &stFrame, uint16_t usChar)
{
    switch (stFrame.eState) {
    case E_FRAME_SEEK_TAG: return Step_SeekTag(stFrame, usChar);
    case E_FRAME_HEAD_TAG: return Step_HeadTag(stFrame, usChar);
    case E_FRAME_TEXT: return Step_Text(stFrame, usChar);
    case E_FRAME_TAG: return Step_FrameTag(stFrame, usChar);
    case E_FRAME_ENTITY: return Step_FrameEntity(stFrame, usChar);
    case E_FRAME_OTHER: return Step_Other(stFrame, usChar);
    default: return Step_OtherTag(stFrame, usChar);
    }
}

/** A frame ends where the next one of its class begins, if there is one. @return 1 */
int32_t Set_Times(int32_t iStart, int32_t iEnd)
{
    const uint32_t uiNext = Find_NextFrame(pstQuibCaptionParserInfo->uiCurrClass);
    const int32_t iNext = uiNext < s_uiFrameInfoNums ? s_pstFrameInfoArray[uiNext].iPTS : iEnd;
    Set_FrameTimes(static_cast<uint32_t>(iStart), static_cast<uint32_t>(iNext));
    return 1;
}

/** The file has ended before a text began: the last SYNC tag leads nowhere. */
void Note_EndOfFile(const SamiFrame &stFrame)
{
    const bool bLast = Is_SyncTagPlace(stFrame.uiPlace) && !Is_SyncTagPlace(stFrame.uiPlace + 1);
    if (bLast && !stFrame.bLogged) Note_PassedPlace(stFrame.uiPlace, stFrame.uiClassBits);
}

/** Go to a frame's SYNC tag and read from there. */
void Read_From(SamiFrame &stFrame, int64_t llFilePos)
{
    const int64_t llReached = Move_ReadPosition(stFrame.hFile, llFilePos, E_READ_AHEAD_SHORT);
    if (llReached < 0) {
        Fail_Seek(stFrame, llReached);
        return;
    }
    const int32_t iRead = Get_StreamInfo().iStreamDataSize == 0 ? Fill_StreamBuffer(stFrame.hFile) : 1;
    if (iRead >= 1) return;
    LOG_PARSER("FrameParser_SAMI() - QUIBCAPTCB_FileRead() Failed! (ERROR = %d)\n", iRead);
    End_Frame(stFrame, iRead);
}

/** Begin with the frame at a file position, or where it is known to be read from. */
void Start_Frame(SamiFrame &stFrame, int64_t llFilePos)
{
    stFrame.uiPlace = Find_PassedStart(pstQuibCaptionParserInfo->uiCurrClass, llFilePos);
    if (stFrame.uiPlace == NO_SYNC_PLACE)
        Read_From(stFrame, llFilePos);
    else
        Read_On_Behind(stFrame, stFrame.uiPlace);
    if (!stFrame.bDone) pstQuibCaptionParserInfo->llCurrFilePos = llFilePos;
}

void Read_Unit(SamiFrame &stFrame)
{
    uint16_t usChar = 0;
    const int32_t iResult = Get_CharCode(stFrame.hFile, &usChar, 0);
    if (iResult > 0) {
        while (!Step_Frame(stFrame, usChar)) {}
    } else if (iResult == 0) {
        Mark_EndOfData();
        if (stFrame.eState < E_FRAME_TEXT) Note_EndOfFile(stFrame);
        End_Frame(stFrame, stFrame.eState < E_FRAME_TEXT ? NO_CAPTION_DATA : 1);
    } else {
        End_Frame(stFrame, Fail_Read(FRAME_PARSER_NAME, iResult));
    }
}

/** @return whether a frame is usual, and read from its own SYNC tag. */
inline bool Take_UsualFrame(const SamiFrameInfo &stEntry)
{
    const uint32_t uiPassed = Find_PassedStart(pstQuibCaptionParserInfo->uiCurrClass, stEntry.llFilePos);
    return uiPassed == NO_SYNC_PLACE && Take_UsualSami(stEntry);
}

/** Move the file to a frame, and read it. @param[in] bTryUsual  it may yet turn out to be usual */
[[gnu::noinline]] int32_t Read_Frame(void *hFile, const SamiFrameInfo &stEntry, bool bTryUsual)
{
    SamiFrame stFrame = {};
    stFrame.hFile = hFile;
    stFrame.iEnd = OPEN_END_PTS;
    Start_Frame(stFrame, stEntry.llFilePos);
    if (bTryUsual && !stFrame.bDone && stFrame.uiPlace == NO_SYNC_PLACE && Take_UsualSami(stEntry))
        return Set_Times(stEntry.iPTS, OPEN_END_PTS);
    while (!stFrame.bDone) Read_Unit(stFrame);
    if (stFrame.iResult != 1) return stFrame.iResult;
    Complete_FrameText();
    return Set_Times(stFrame.iStart, stFrame.iEnd);
}

} // namespace

int32_t FrameParser_SAMI(void)
{
    if (!Is_StreamReady()) return -1;
    Clear_TagQueue();
    const uint32_t uiClass = pstQuibCaptionParserInfo->uiCurrClass;
    const uint32_t uiFrame = Find_NextFrame(uiClass);
    if (uiFrame >= s_uiFrameInfoNums) {
        Mark_EndOfData();
        return NO_CAPTION_DATA;
    }
    s_auiClassFrameCursor[uiClass] = uiFrame + 1;
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    const SamiFrameInfo &stEntry = s_pstFrameInfoArray[uiFrame];
    const bool bHeld = Go_ToHeld(hFile, stEntry.llFilePos);
    if (!bHeld || !Take_UsualFrame(stEntry)) return Read_Frame(hFile, stEntry, !bHeld);
    pstQuibCaptionParserInfo->llCurrFilePos = stEntry.llFilePos;
    return Set_Times(stEntry.iPTS, OPEN_END_PTS);
}

int32_t Seek_SAMI(uint32_t uiTargetMs, uint32_t /*bBackward*/, int32_t /*iCurrPTS*/,
                  QuibCaptionParserInfo * /*pstInfo*/)
{
    if (!Is_StreamReady()) return -1;
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (s_uiFrameInfoNums == 0 || stInfo.uiCurrClass >= ZYR_CLASS_MAX) return -1;
    const uint32_t uiPick = Find_FrameBefore(stInfo.uiCurrClass, uiTargetMs);
    const SamiFrameInfo &stPick = s_pstFrameInfoArray[uiPick];
    s_auiClassFrameCursor[stInfo.uiCurrClass] = uiPick;
    return Resume_Reading("Seek_SAMI", hFile, stPick.llFilePos, static_cast<uint32_t>(stPick.iPTS) - 1,
                          E_READ_AHEAD_SHORT);
}
