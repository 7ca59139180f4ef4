// SAMI, reading ahead: the whole file is scanned once for SYNC and P tags, which give the frame index and the
// language classes. The STYLE block that declares the classes is passed over: what counts is what is used.

#include <algorithm>
#include <cstring>
#include <iterator>

#include "format/sami/sami_index.h"
#include "format/sami/sami_skip.h"
#include "format/sami/sami_usual.h"
#include "record/engine_log.h"
#include "text/char_reader.h"
#include "text/find_unit.h"
#include "text/text_helpers.h"

namespace
{

/** Where the scan stands in a tag that it looks at. */
enum SamiScanState : uint32_t {
    E_SAMI_OUTSIDE,     // also the rest of a tag that says nothing to the scan: only "<" matters in both
    E_SAMI_NAME,        // matching the tag's name
    E_SAMI_ATTRIBUTE,   // matching the name of its first attribute
    E_SAMI_SEEK_EQUALS, // anything before the "=", even a ">"
    E_SAMI_START_VALUE,
    E_SAMI_CLASS_VALUE,
};

/** A tag that the scan looks at. */
struct SamiTagRow {
    const char *pszName;
    const char *pszAttribute; // its first attribute; NULL: the tag ends the scan
    SamiScanState eValue;     // state that reads the attribute's value
};

constexpr SamiTagRow SamiTagTable[] = {
    {"SYNC", "START", E_SAMI_START_VALUE},
    {"P", "CLASS", E_SAMI_CLASS_VALUE},
    {"/BODY", nullptr, E_SAMI_OUTSIDE},
    {"/SAMI", nullptr, E_SAMI_OUTSIDE},
};

constexpr const SamiTagRow *SYNC_TAG = &SamiTagTable[0];

constexpr int32_t NO_MIN_PTS = 0x0FFFFFFF; // smallest time of no frames

/** Places and times of some frames. */
struct FrameStatistics {
    uint32_t uiNums;
    int64_t llFirstPos;
    int32_t iMinPTS;
    int64_t llLastPos;
    int32_t iMaxPTS;
};

/** The SYNC tag last recorded. */
struct CurrentFrame {
    bool bKnown;
    uint32_t uiEntries; // it has so many, the last ones of the index: one for each class that it names
    int32_t iPTS;
    int64_t llPos;
};

/** What stands between the SYNC tag last recorded and the next tag. */
enum SamiHead : uint32_t {
    E_SAMI_HEAD_ODD,  // something that the frame parser has to look at
    E_SAMI_HEAD_SYNC, // nothing but characters
    E_SAMI_HEAD_P,    // P tags of known classes, and whatever their text holds
};

struct SamiScan {
    void *hFile;
    SamiScanState eState;
    const SamiTagRow *pstTag;
    uint32_t uiMatched;                      // units of the name being matched
    int64_t llBytes;                         // bytes read since the scan began
    int64_t llTagBytes;                      // bytes read before the tag's "<"
    int64_t llSyncBytes;                     // the same of the SYNC tag last recorded
    uint32_t uiDigits;                       // digits of the START value
    uint32_t uiStart;                        // START value, ms
    uint16_t ausClass[ZYR_CLASS_NAME_UNITS]; // CLASS value in upper case
    uint32_t uiClassUnits;                   // units of it, also those beyond the room
    bool bSyncOpen;                          // the ">" of a SYNC tag is still to come
    bool bSkip;                              // what follows may be passed over up to the next tag
    SamiHead eHead;                          // what the frame parser will find before a P tag
    bool bOffStart;                          // the scan did not begin at the file's start
    CurrentFrame stFrame;
    FrameStatistics stPending;    // frames without a class so far
    FrameStatistics stPendingOld; // the same before the current frame
};

/** What a unit led to. */
enum ScanResult : uint32_t { E_SCAN_ON, E_SCAN_END, E_SCAN_FAILED };

/** How the scan ended. */
enum ScanEnd : uint32_t {
    E_END_OF_BODY, // at "</BODY>" or "</SAMI>"
    E_END_OF_FILE,
    E_END_OF_READING, // a read failed
    E_END_FAILED,     // a frame could not be recorded
};

// ---- Frames ----

/** Count the current frame as one without a class. */
void Count_Unclassified(SamiScan &stScan)
{
    const CurrentFrame &stFrame = stScan.stFrame;
    FrameStatistics &stPending = stScan.stPending;
    if (stPending.uiNums == 0) stPending.llFirstPos = stFrame.llPos;
    ++stPending.uiNums;
    stScan.stPendingOld = stPending;
    stPending.iMinPTS = std::min(stPending.iMinPTS, stFrame.iPTS);
    stPending.iMaxPTS = std::max(stPending.iMaxPTS, stFrame.iPTS);
    stPending.llLastPos = stFrame.llPos;
}

/** The current frame has a class: take it out of those that have none. */
void Uncount_Unclassified(SamiScan &stScan)
{
    if (stScan.stPending.uiNums > 0) --stScan.stPending.uiNums;
    stScan.stPending.iMinPTS = stScan.stPendingOld.iMinPTS;
    stScan.stPending.iMaxPTS = stScan.stPendingOld.iMaxPTS;
    stScan.stPending.llLastPos = stScan.stPendingOld.llLastPos;
}

/** @return bytes from the current frame's SYNC tag to behind the P tag that has just been read, if nothing stands in
 *          between that the frame parser has to look at; else 0. */
uint32_t Get_TextBytes(const SamiScan &stScan)
{
    return stScan.eHead == E_SAMI_HEAD_P ? static_cast<uint32_t>(stScan.llBytes - stScan.llSyncBytes) : 0;
}

/** Give the current frame one more entry while there is room. */
ScanResult Add_Entry(SamiScan &stScan, uint32_t uiClass)
{
    CurrentFrame &stFrame = stScan.stFrame;
    if (s_uiFrameInfoNums < s_uiFrameInfoMax) {
        ++stFrame.uiEntries;
        return Append_Frame({uiClass, stFrame.iPTS, Get_TextBytes(stScan), stFrame.llPos}) ? E_SCAN_ON
                                                                                           : E_SCAN_FAILED;
    }
    LOG_PARSER("Too Many Frame Information! [%d]\n", s_uiFrameInfoMax);
    return E_SCAN_ON;
}

/** The current frame names a class: the first one takes its entry, each further one an entry of its own. */
ScanResult Enter_Class(SamiScan &stScan, uint32_t uiClass)
{
    SamiFrameInfo *const pstEnd = s_pstFrameInfoArray + s_uiFrameInfoNums;
    SamiFrameInfo *const pstFirst = pstEnd - stScan.stFrame.uiEntries;
    if (pstFirst == pstEnd) return E_SCAN_ON;
    if (pstFirst->uiClassIndex == ZYR_CLASS_MAX) {
        pstFirst->uiClassIndex = uiClass;
        pstFirst->uiTextBytes = Get_TextBytes(stScan);
        return E_SCAN_ON;
    }
    const bool bEntered = std::any_of(
        pstFirst, pstEnd, [=](const SamiFrameInfo &stEntry) { return stEntry.uiClassIndex == uiClass; });
    return bEntered ? E_SCAN_ON : Add_Entry(stScan, uiClass);
}

/** Record the SYNC tag whose START value has just ended. */
ScanResult Record_Frame(SamiScan &stScan)
{
    int64_t llPos = 0;
    const int64_t llTell = Tell_ReadPosition(stScan.hFile, &llPos);
    if (llTell < 0) {
        LOG_PARSER("HeaderParser_SAMI() - File Tell Failed! (ERROR = %d)\n", static_cast<int32_t>(llTell));
        return E_SCAN_FAILED;
    }
    llPos -= stScan.llBytes - stScan.llTagBytes;
    stScan.bOffStart = stScan.bOffStart || llPos != stScan.llTagBytes;
    stScan.llSyncBytes = stScan.llTagBytes;
    stScan.stFrame = {true, 0, static_cast<int32_t>(stScan.uiStart), llPos};
    Count_Unclassified(stScan);
    return Add_Entry(stScan, ZYR_CLASS_MAX);
}

// ---- Classes ----

void Log_TooManyClasses()
{
    LOG_PARSER("HeaderParser_SAMI() - Too Many Language Class! [%d]\n",
               pstQuibCaptionParserInfo->uiClassNums);
}

/** @return the class of this name, which is added when it is new, or NULL (logged) when there is no room. */
CaptionClassInfo *Find_Class(const uint16_t *pusName, uint32_t uiUnits)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    for (uint32_t uiClass = 0; uiClass < stInfo.uiClassNums; ++uiClass) {
        CaptionClassInfo &stClass = stInfo.astClassInfo[uiClass];
        if (stClass.uiNameLength == uiUnits && std::equal(pusName, pusName + uiUnits, stClass.ausName))
            return &stClass;
    }
    if (stInfo.uiClassNums == ZYR_CLASS_MAX) {
        Log_TooManyClasses();
        return nullptr;
    }
    CaptionClassInfo &stClass = stInfo.astClassInfo[stInfo.uiClassNums++];
    std::copy(pusName, pusName + uiUnits, stClass.ausName);
    stClass.uiNameLength = uiUnits;
    return &stClass;
}

/** Count the current frame for the class of the P tag whose CLASS value has just ended. */
ScanResult Assign_Class(SamiScan &stScan)
{
    const uint32_t uiUnits = std::min(stScan.uiClassUnits, static_cast<uint32_t>(ZYR_CLASS_NAME_UNITS));
    CaptionClassInfo *const pstClass = Find_Class(stScan.ausClass, uiUnits);
    const CurrentFrame &stFrame = stScan.stFrame;
    if (pstClass == nullptr) stScan.eHead = E_SAMI_HEAD_ODD;
    if (pstClass == nullptr || !stFrame.bKnown) return E_SCAN_ON;
    (pstClass->uiFrameNums > 0 ? pstClass->llLastFramePos : pstClass->llFirstFramePos) = stFrame.llPos;
    pstClass->iMinPTS = std::min(pstClass->iMinPTS, stFrame.iPTS);
    pstClass->iMaxPTS = std::max(pstClass->iMaxPTS, stFrame.iPTS);
    ++pstClass->uiFrameNums;
    Uncount_Unclassified(stScan);
    return Enter_Class(stScan, static_cast<uint32_t>(pstClass - pstQuibCaptionParserInfo->astClassInfo));
}

/** Make the frames that have no class a class without a name. */
void Add_UnnamedClass(const FrameStatistics &stPending)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (stInfo.uiClassNums == ZYR_CLASS_MAX) {
        Log_TooManyClasses();
        return;
    }
    for (uint32_t uiFrame = 0; uiFrame < s_uiFrameInfoNums; ++uiFrame)
        if (s_pstFrameInfoArray[uiFrame].uiClassIndex == ZYR_CLASS_MAX)
            s_pstFrameInfoArray[uiFrame].uiClassIndex = stInfo.uiClassNums;
    CaptionClassInfo &stClass = stInfo.astClassInfo[stInfo.uiClassNums++];
    stClass.uiNameLength = 0;
    stClass.llFirstFramePos = stPending.llFirstPos;
    stClass.iMinPTS = stPending.iMinPTS;
    stClass.llLastFramePos = stPending.llLastPos;
    stClass.iMaxPTS = stPending.iMaxPTS;
    stClass.uiFrameNums = stPending.uiNums;
}

void Clear_Classes()
{
    pstQuibCaptionParserInfo->uiClassNums = 0;
    for (CaptionClassInfo &stClass : pstQuibCaptionParserInfo->astClassInfo) {
        stClass.uiNameLength = 0;
        stClass.llFirstFramePos = 0;
        stClass.iMinPTS = NO_MIN_PTS;
        stClass.llLastFramePos = 0;
        stClass.iMaxPTS = 0;
        stClass.uiFrameNums = 0;
    }
}

// ---- The scan: one function per state ----

void Start_Tag(SamiScan &stScan, int32_t iBytes)
{
    stScan.eState = E_SAMI_NAME;
    stScan.eHead = E_SAMI_HEAD_ODD;
    stScan.bSyncOpen = false;
    stScan.pstTag = SamiTagTable;
    stScan.uiMatched = 0;
    stScan.llTagBytes = stScan.llBytes - iBytes;
}

/** @return the tag whose name goes on with this unit, or NULL. */
const SamiTagRow *Find_Tag(const SamiScan &stScan, uint32_t uiUnit)
{
    for (const SamiTagRow *pstRow = stScan.pstTag; pstRow != std::end(SamiTagTable); ++pstRow)
        if (std::strncmp(pstRow->pszName, stScan.pstTag->pszName, stScan.uiMatched) == 0 &&
            static_cast<uint8_t>(pstRow->pszName[stScan.uiMatched]) == uiUnit)
            return pstRow;
    return nullptr;
}

ScanResult Step_Name(SamiScan &stScan, uint32_t uiUnit)
{
    const SamiTagRow *const pstTag = uiUnit == 0 ? nullptr : Find_Tag(stScan, uiUnit);
    if (pstTag != nullptr) {
        stScan.pstTag = pstTag;
        ++stScan.uiMatched;
        return E_SCAN_ON;
    }
    stScan.eState = E_SAMI_OUTSIDE;
    if (stScan.pstTag->pszName[stScan.uiMatched] != '\0') return E_SCAN_ON;
    if (stScan.pstTag->pszAttribute == nullptr) return uiUnit == '>' ? E_SCAN_END : E_SCAN_ON;
    if (!Is_TagSpace(uiUnit)) return E_SCAN_ON;
    stScan.eState = E_SAMI_ATTRIBUTE;
    stScan.uiMatched = 0;
    stScan.bSyncOpen = stScan.pstTag == SYNC_TAG;
    return E_SCAN_ON;
}

ScanResult Step_Attribute(SamiScan &stScan, uint32_t uiUnit)
{
    if (uiUnit == ' ' && stScan.uiMatched == 0) return E_SCAN_ON;
    const char *const pszAttribute = stScan.pstTag->pszAttribute;
    if (static_cast<uint8_t>(pszAttribute[stScan.uiMatched]) != uiUnit)
        stScan.eState = E_SAMI_OUTSIDE;
    else if (pszAttribute[++stScan.uiMatched] == '\0')
        stScan.eState = E_SAMI_SEEK_EQUALS;
    return E_SCAN_ON;
}

ScanResult Step_SeekEquals(SamiScan &stScan, uint32_t uiUnit)
{
    if (uiUnit != '=') return E_SCAN_ON;
    stScan.eState = stScan.pstTag->eValue;
    stScan.uiDigits = 0;
    stScan.uiStart = 0;
    stScan.uiClassUnits = 0;
    return E_SCAN_ON;
}

ScanResult Step_StartValue(SamiScan &stScan, uint32_t uiUnit)
{
    if (Is_Digit(uiUnit)) {
        stScan.uiStart = stScan.uiStart * 10 + (uiUnit - '0');
        ++stScan.uiDigits;
        return E_SCAN_ON;
    }
    stScan.eState = E_SAMI_OUTSIDE;
    const bool bGood = stScan.uiDigits > 0 && (uiUnit == ' ' || uiUnit == '>');
    return bGood ? Record_Frame(stScan) : E_SCAN_ON;
}

ScanResult Step_ClassValue(SamiScan &stScan, uint32_t uiUnit)
{
    if (!Is_TagSpace(uiUnit) && uiUnit != '>') {
        if (stScan.uiClassUnits < ZYR_CLASS_NAME_UNITS)
            stScan.ausClass[stScan.uiClassUnits] = static_cast<uint16_t>(uiUnit);
        ++stScan.uiClassUnits;
        return E_SCAN_ON;
    }
    stScan.eState = E_SAMI_OUTSIDE;
    return stScan.uiClassUnits > 0 ? Assign_Class(stScan) : E_SCAN_ON;
}

ScanResult Step_Scan(SamiScan &stScan, uint32_t uiUnit)
{
    switch (stScan.eState) {
    case E_SAMI_NAME: return Step_Name(stScan, uiUnit);
    case E_SAMI_ATTRIBUTE: return Step_Attribute(stScan, uiUnit);
    case E_SAMI_SEEK_EQUALS: return Step_SeekEquals(stScan, uiUnit);
    case E_SAMI_START_VALUE: return Step_StartValue(stScan, uiUnit);
    case E_SAMI_CLASS_VALUE: return Step_ClassValue(stScan, uiUnit);
    default: return E_SCAN_ON;
    }
}

/** Note the place of a SYNC tag that is complete. @return false without memory (logged). */
bool Close_SyncTag(SamiScan &stScan)
{
    if (!stScan.bSyncOpen) return true;
    stScan.bSyncOpen = false;
    stScan.bSkip = true;
    return Append_SyncPlace(stScan.llTagBytes);
}

// ---- The usual tags at once ----

/** Take the tag at the read position if it is a usual one. @return whether it was taken. */
bool Take_UsualTag(SamiScan &stScan, ScanResult *peResult)
{
    SamiTag stTag;
    if (!Match_SamiTag(&stTag)) return false;
    if (stTag.eKind == E_SAMI_TAG_SYNC) stScan.llTagBytes = stScan.llBytes;
    stScan.llBytes += stTag.uiBytes;
    Take_HeldBytes(stTag.uiBytes);
    stScan.bSyncOpen = false;
    if (stTag.eKind == E_SAMI_TAG_SYNC) {
        stScan.uiStart = stTag.uiStart;
        stScan.eHead = E_SAMI_HEAD_SYNC;
        *peResult = Append_SyncPlace(stScan.llTagBytes) ? Record_Frame(stScan) : E_SCAN_FAILED;
    } else if (stTag.eKind == E_SAMI_TAG_P) {
        stScan.uiClassUnits = stTag.uiNameUnits;
        std::copy(stTag.ausName, stTag.ausName + stTag.uiNameUnits, stScan.ausClass);
        if (stScan.eHead == E_SAMI_HEAD_SYNC) stScan.eHead = E_SAMI_HEAD_P;
        *peResult = Assign_Class(stScan);
    } else if (stScan.eHead == E_SAMI_HEAD_SYNC) {
        stScan.eHead = E_SAMI_HEAD_ODD;
    }
    return true;
}

/** Pass over what says nothing to the scan, and take the usual tags in between. */
ScanResult Scan_Outside(SamiScan &stScan)
{
    ScanResult eResult = E_SCAN_ON;
    do stScan.llBytes += Skip_To('<', stScan.bSyncOpen ? '>' : '<');
    while (s_bUsualReading && Take_UsualTag(stScan, &eResult) && eResult == E_SCAN_ON);
    return eResult;
}

/** Scan up to the end, whatever it is. */
ScanEnd Scan_File(SamiScan &stScan)
{
    for (;;) {
        const bool bSkip = stScan.eState == E_SAMI_OUTSIDE && stScan.bSkip;
        if (bSkip && Scan_Outside(stScan) == E_SCAN_FAILED) return E_END_FAILED;
        stScan.bSkip = false;
        uint16_t usChar = 0;
        const int32_t iBytes = Get_CharCode(stScan.hFile, &usChar, 1);
        if (iBytes <= 0) return iBytes == 0 ? E_END_OF_FILE : E_END_OF_READING;
        stScan.llBytes += iBytes;
        if (usChar == '<') {
            Start_Tag(stScan, iBytes);
            continue;
        }
        stScan.bSkip =
            stScan.eState != E_SAMI_OUTSIDE; // once behind each tag: what stopped it stands there still
        if (usChar == '>' && !Close_SyncTag(stScan)) return E_END_FAILED;
        const ScanResult eResult = Step_Scan(stScan, To_Upper(usChar));
        if (eResult != E_SCAN_ON) return eResult == E_SCAN_END ? E_END_OF_BODY : E_END_FAILED;
    }
}

/** Complete classes and index. @return false without memory (logged). */
bool Finish_Scan(const SamiScan &stScan, ScanEnd eEnd)
{
    if (stScan.stPending.uiNums > 0) Add_UnnamedClass(stScan.stPending);
    // A list that a read error cut short would hide tags that a later read may well give.
    if (stScan.bOffStart || eEnd == E_END_OF_READING) Begin_SyncPlaces();
    const int64_t llEndPos = eEnd == E_END_OF_BODY ? stScan.llTagBytes : stScan.llBytes;
    return Finish_FrameIndex() && Finish_SyncPlaces(llEndPos);
}

} // namespace

int32_t HeaderParser_SAMI(void *hFile)
{
    if (!Is_HeaderReady() || !Begin_FrameIndex()) return -1;
    Begin_SyncPlaces();
    Clear_Classes();
    SamiScan stScan = {};
    stScan.hFile = hFile;
    stScan.bSkip = true;
    stScan.stPending.iMinPTS = NO_MIN_PTS;
    const ScanEnd eEnd = Scan_File(stScan);
    if (eEnd != E_END_FAILED && Finish_Scan(stScan, eEnd)) return 1;
    Drop_FrameIndex();
    Drop_SyncPlaces();
    return -1;
}
