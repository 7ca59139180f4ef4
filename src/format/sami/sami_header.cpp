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

constexpr uint16_t TEXT_BYTES_MAX = 0x7FFF; // from a SYNC tag to a text that may be usual

constexpr int32_t NO_MIN_PTS = 0x0FFFFFFF; // smallest time of no frames

/** Times of some frames, and where the last one stands. */
struct FrameExtent {
    int32_t iMinPTS;
    int32_t iMaxPTS;
    int64_t llLastPos;
};

/** Some frames. */
struct FrameStatistics {
    uint32_t uiNums;
    int64_t llFirstPos;
    FrameExtent stExtent;
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
    E_SAMI_HEAD_P,    // P tags of known classes, each of another, and whatever their text holds
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
    uint16_t ausTextEnd[ZYR_CLASS_MAX];      // of the current frame's entries, while eHead is E_SAMI_HEAD_P
    SamiClassForms stForms;
    bool bOffStart; // the scan did not begin at the file's start
    CurrentFrame stFrame;
    FrameStatistics stPending; // frames without a class so far
    FrameExtent stExtentOld;   // of the same before the current frame
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
    stScan.stExtentOld = stPending.stExtent;
    stPending.stExtent = {std::min(stPending.stExtent.iMinPTS, stFrame.iPTS),
                          std::max(stPending.stExtent.iMaxPTS, stFrame.iPTS), stFrame.llPos};
}

/** The current frame has a class: take it out of those that have none. */
inline void Uncount_Unclassified(SamiScan &stScan)
{
    if (stScan.stPending.uiNums > 0) --stScan.stPending.uiNums;
    stScan.stPending.stExtent = stScan.stExtentOld;
}

/** @return bytes from the current frame's SYNC tag to behind the P tag that has just been read; TEXT_BYTES_MAX stands for
 *          more. */
inline uint16_t Get_TextBytes(const SamiScan &stScan)
{
    return static_cast<uint16_t>(std::min<int64_t>(stScan.llBytes - stScan.llSyncBytes, TEXT_BYTES_MAX));
}

/** Give the current frame one more entry while there is room. */
inline ScanResult Add_Entry(SamiScan &stScan, uint32_t uiClass)
{
    CurrentFrame &stFrame = stScan.stFrame;
    if (s_uiFrameInfoNums < s_uiFrameInfoMax) {
        ++stFrame.uiEntries;
        const bool bDone = Append_Frame({uiClass, stFrame.iPTS, Get_TextBytes(stScan), 0, stFrame.llPos});
        return bDone ? E_SCAN_ON : E_SCAN_FAILED;
    }
    stScan.eHead = E_SAMI_HEAD_ODD;
    LOG_PARSER("Too Many Frame Information! [%d]\n", s_uiFrameInfoMax);
    return E_SCAN_ON;
}

/** The current frame names a class: the first one takes its entry, each further one an entry of its own. */
inline ScanResult Enter_Class(SamiScan &stScan, uint32_t uiClass)
{
    SamiFrameInfo *const pstEnd = s_pstFrameInfoArray + s_uiFrameInfoNums;
    SamiFrameInfo *const pstFirst = pstEnd - stScan.stFrame.uiEntries;
    if (pstFirst == pstEnd) return E_SCAN_ON;
    if (pstFirst->uiClassIndex == ZYR_CLASS_MAX) {
        pstFirst->uiClassIndex = uiClass;
        pstFirst->usTextBytes = Get_TextBytes(stScan);
        return E_SCAN_ON;
    }
    const bool bEntered = std::any_of(
        pstFirst, pstEnd, [=](const SamiFrameInfo &stEntry) { return stEntry.uiClassIndex == uiClass; });
    if (!bEntered) return Add_Entry(stScan, uiClass);
    stScan.eHead = E_SAMI_HEAD_ODD;
    return E_SCAN_ON;
}

/** Record the SYNC tag that stands at a file position. */
ScanResult Record_Frame(SamiScan &stScan, int64_t llPos)
{
    stScan.bOffStart = stScan.bOffStart || llPos != stScan.llTagBytes;
    stScan.llSyncBytes = stScan.llTagBytes;
    stScan.stFrame = {true, 0, static_cast<int32_t>(stScan.uiStart), llPos};
    Count_Unclassified(stScan);
    return Add_Entry(stScan, ZYR_CLASS_MAX);
}

/** Record the SYNC tag whose START value has just ended. */
ScanResult End_StartValue(SamiScan &stScan)
{
    int64_t llPos = 0;
    const int64_t llTell = Tell_ReadPosition(stScan.hFile, &llPos);
    if (llTell >= 0) return Record_Frame(stScan, llPos - (stScan.llBytes - stScan.llTagBytes));
    LOG_PARSER("HeaderParser_SAMI() - File Tell Failed! (ERROR = %d)\n", static_cast<int32_t>(llTell));
    return E_SCAN_FAILED;
}

// ---- Classes ----

void Log_TooManyClasses()
{
    LOG_PARSER("HeaderParser_SAMI() - Too Many Language Class! [%d]\n",
               pstQuibCaptionParserInfo->uiClassNums);
}

/** @return the class of this name, which is added when it is new; ZYR_CLASS_MAX (logged) when there is no room. */
uint32_t Find_Class(const uint16_t *pusName, uint32_t uiUnits)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    for (uint32_t uiClass = 0; uiClass < stInfo.uiClassNums; ++uiClass) {
        const CaptionClassInfo &stClass = stInfo.astClassInfo[uiClass];
        if (stClass.uiNameLength == uiUnits && std::equal(pusName, pusName + uiUnits, stClass.ausName))
            return uiClass;
    }
    if (stInfo.uiClassNums == ZYR_CLASS_MAX) {
        Log_TooManyClasses();
        return ZYR_CLASS_MAX;
    }
    CaptionClassInfo &stClass = stInfo.astClassInfo[stInfo.uiClassNums];
    std::copy(pusName, pusName + uiUnits, stClass.ausName);
    stClass.uiNameLength = uiUnits;
    return stInfo.uiClassNums++;
}

/** Count the current frame for a class. */
inline void Count_ForClass(const CurrentFrame &stFrame, uint32_t uiClass)
{
    CaptionClassInfo &stClass = pstQuibCaptionParserInfo->astClassInfo[uiClass];
    if (stClass.uiFrameNums++ > 0) [[likely]]
        stClass.llLastFramePos = stFrame.llPos;
    else
        stClass.llFirstFramePos = stFrame.llPos;
    if (stFrame.iPTS < stClass.iMinPTS) [[unlikely]]
        stClass.iMinPTS = stFrame.iPTS;
    if (stFrame.iPTS > stClass.iMaxPTS) stClass.iMaxPTS = stFrame.iPTS;
}

/** The current frame has a P tag of a class; ZYR_CLASS_MAX = one without room. */
inline ScanResult Assign_Class(SamiScan &stScan, uint32_t uiClass)
{
    if (uiClass == ZYR_CLASS_MAX) stScan.eHead = E_SAMI_HEAD_ODD;
    if (uiClass == ZYR_CLASS_MAX || !stScan.stFrame.bKnown) return E_SCAN_ON;
    Count_ForClass(stScan.stFrame, uiClass);
    Uncount_Unclassified(stScan);
    return Enter_Class(stScan, uiClass);
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
    stClass.iMinPTS = stPending.stExtent.iMinPTS;
    stClass.llLastFramePos = stPending.stExtent.llLastPos;
    stClass.iMaxPTS = stPending.stExtent.iMaxPTS;
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
    if (!Is_Space(uiUnit)) return E_SCAN_ON;
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
    return bGood ? End_StartValue(stScan) : E_SCAN_ON;
}

ScanResult Step_ClassValue(SamiScan &stScan, uint32_t uiUnit)
{
    if (!Is_Space(uiUnit) && uiUnit != '>') {
        if (stScan.uiClassUnits < ZYR_CLASS_NAME_UNITS)
            stScan.ausClass[stScan.uiClassUnits] = static_cast<uint16_t>(uiUnit);
        ++stScan.uiClassUnits;
        return E_SCAN_ON;
    }
    stScan.eState = E_SAMI_OUTSIDE;
    if (stScan.uiClassUnits == 0) return E_SCAN_ON;
    const uint32_t uiUnits = std::min(stScan.uiClassUnits, static_cast<uint32_t>(ZYR_CLASS_NAME_UNITS));
    return Assign_Class(stScan, Find_Class(stScan.ausClass, uiUnits));
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

/** A tag ends the text of the current frame's last entry. */
inline void Note_TextEnd(SamiScan &stScan, const SamiTag &stTag, int64_t llTagBytes)
{
    SamiFrameInfo *const pstEnd = s_pstFrameInfoArray + s_uiFrameInfoNums;
    const uint32_t uiEntries = stScan.stFrame.uiEntries;
    const int64_t llBytes = llTagBytes - stScan.llSyncBytes - stTag.uiLineEndBytes;
    const int64_t llEnd = std::max<int64_t>(llBytes, pstEnd[-1].usTextBytes);
    const uint16_t usEnd = static_cast<uint16_t>(llEnd < TEXT_BYTES_MAX ? llEnd : 0);
    if (uiEntries == 1 && stTag.bSync) {
        pstEnd[-1].usTextEnd = usEnd;
        return;
    }
    stScan.ausTextEnd[uiEntries - 1] = usEnd;
    if (!stTag.bSync) return; // a later tag may still make other texts of them
    for (uint32_t uiEntry = 0; uiEntry < uiEntries; ++uiEntry)
        (pstEnd - uiEntries)[uiEntry].usTextEnd = stScan.ausTextEnd[uiEntry];
}

/** Record a SYNC tag with the P tag right behind it, whose class is known; there is room. */
inline ScanResult Record_UsualFrame(SamiScan &stScan, const SamiTag &stTag, int64_t llPos)
{
    stScan.eHead = E_SAMI_HEAD_P;
    stScan.llSyncBytes = stScan.llTagBytes;
    stScan.stFrame = {true, 1, static_cast<int32_t>(stTag.uiStart), llPos};
    stScan.stExtentOld = stScan.stPending.stExtent; // counted as one without a class, and taken out again
    Count_ForClass(stScan.stFrame, stTag.uiClass);
    const uint16_t usTextBytes = static_cast<uint16_t>(stTag.pucBehind - stTag.pucTag);
    const bool bDone = Append_Frame({stTag.uiClass, stScan.stFrame.iPTS, usTextBytes, 0, llPos});
    return bDone ? E_SCAN_ON : E_SCAN_FAILED;
}

[[gnu::noinline]] ScanResult Take_UsualParagraph(SamiScan &stScan, const SamiTag &stTag)
{
    if (stScan.eHead == E_SAMI_HEAD_SYNC) stScan.eHead = E_SAMI_HEAD_P;
    if (stTag.uiClass < ZYR_CLASS_MAX) return Assign_Class(stScan, stTag.uiClass);
    const uint32_t uiClass = Find_Class(stTag.ausName, stTag.uiNameUnits);
    if (uiClass < ZYR_CLASS_MAX) Note_ClassForm(stTag, uiClass, &stScan.stForms);
    return Assign_Class(stScan, uiClass);
}

[[gnu::noinline]] ScanResult Take_UsualSync(SamiScan &stScan, const SamiTag &stTag, int64_t llPos)
{
    stScan.eHead = E_SAMI_HEAD_SYNC;
    stScan.uiStart = stTag.uiStart;
    const ScanResult eResult = Record_Frame(stScan, llPos);
    return stTag.bParagraph && eResult == E_SCAN_ON ? Take_UsualParagraph(stScan, stTag) : eResult;
}

/** Take the usual tags from the read position on, whose place in the file is known. */
[[gnu::noinline]] ScanResult Take_UsualTags(SamiScan &stScan, int64_t llOffset)
{
    SamiTagFinder stFinder;
    SamiTag stTag;
    ScanResult eResult = E_SCAN_ON;
    if (!Begin_SamiTags(&stFinder, &stScan.stForms)) return eResult;
    const uint8_t *const pucFrom = stFinder.stText.pucByte;
    const int64_t llFrom = stScan.llBytes;
    for (bool bFound = true; bFound && eResult == E_SCAN_ON;) {
        bFound = Find_SamiTag(stFinder, &stTag);
        const int64_t llTagBytes = llFrom + (stTag.pucTag - pucFrom);
        stScan.llBytes = llFrom + (stTag.pucBehind - pucFrom);
        if (stTag.bOthersBefore && stScan.eHead == E_SAMI_HEAD_SYNC) stScan.eHead = E_SAMI_HEAD_ODD;
        if (!bFound) break;
        if (stScan.eHead == E_SAMI_HEAD_P) Note_TextEnd(stScan, stTag, llTagBytes);
        if (!stTag.bSync) {
            eResult = Take_UsualParagraph(stScan, stTag);
            continue;
        }
        stScan.llTagBytes = llTagBytes;
        if (!Append_SyncPlace(llTagBytes))
            eResult = E_SCAN_FAILED;
        else if (stTag.uiClass < ZYR_CLASS_MAX && s_uiFrameInfoNums < s_uiFrameInfoMax)
            eResult = Record_UsualFrame(stScan, stTag, llOffset + llTagBytes);
        else
            eResult = Take_UsualSync(stScan, stTag, llOffset + llTagBytes);
    }
    Take_HeldBytes(static_cast<uint32_t>(stScan.llBytes - llFrom));
    return eResult;
}

/** Pass over what says nothing to the scan, and take the usual tags in between. */
ScanResult Scan_Outside(SamiScan &stScan)
{
    int64_t llPos = 0;
    ScanResult eResult = E_SCAN_ON;
    if (!stScan.bSyncOpen && Get_KnownPosition(stScan.hFile, &llPos)) {
        stScan.bOffStart = stScan.bOffStart || llPos != stScan.llBytes;
        eResult = Take_UsualTags(stScan, llPos - stScan.llBytes);
    }
    if (eResult == E_SCAN_ON) stScan.llBytes += Skip_To('<', stScan.bSyncOpen ? '>' : '<');
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
    stScan.stPending.stExtent.iMinPTS = NO_MIN_PTS;
    const ScanEnd eEnd = Scan_File(stScan);
    if (eEnd != E_END_FAILED && Finish_Scan(stScan, eEnd)) return 1;
    Drop_FrameIndex();
    Drop_SyncPlaces();
    return -1;
}
