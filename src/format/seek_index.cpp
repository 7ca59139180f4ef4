#include "format/seek_index.h"

#include <algorithm>
#include <cstddef>

#include "record/engine_log.h"
#include "text/char_reader.h"
#include "zyr_base.h"

namespace
{

/** A place, and what is known of the block from it to the next one. */
struct SeekBlock {
    SeekPlace stPlace;
    uint32_t uiMaxStart;
    uint32_t uiStarts;
    bool bQuiet;            // scanned from end to end, and nothing was logged
    uint32_t uiMaxSoFar;    // of this block and all before it, while it is one of the settled ones
    uint32_t uiStartsSoFar; // likewise
};

// Odd numbers: when every other place goes, the last one stays.
constexpr uint32_t PLACES_MIN = 65;
constexpr uint32_t PLACES_MAX = 4097; // 200 KB
constexpr int64_t FIRST_BLOCK_BYTES = 1024;

/** Entries whose starts decide all times that a scan remembers, however it began. */
constexpr uint32_t SETTLED_STARTS = 2;

SeekBlock *s_pstBlock = nullptr; // without memory for it seeks are slower, and that is all
uint32_t s_uiRoom = 0;           // places that there is memory for
uint32_t s_uiPlaces = 0;
uint32_t s_uiSettled = 0;                   // blocks from the first one on that are all quiet
int64_t s_llBlockBytes = FIRST_BLOCK_BYTES; // least length of a block
bool s_bInStep = true;                      // where the reader goes on is the end of an entry

/** What the places are of. */
struct IndexedFile {
    void *hFile;
    uint32_t uiReaderRound; // the same handle may stand for another file once the reader has begun anew
    uint32_t uiOption;      // parsing option with which it was read

    bool operator==(const IndexedFile &stOther) const = default;
};

IndexedFile s_stIndexed = {};

/** Forget what is known of another file, or of the same one read otherwise. */
void Forget_OtherFile()
{
    const IndexedFile stNow = {s_hSubtitleFile, Get_ReaderRound(), s_uiParsingOption};
    if (s_stIndexed == stNow) return;
    Forget_SeekPlaces();
    s_stIndexed = stNow;
}

void Start_Block(SeekTrack &stTrack, uint32_t uiBlock)
{
    stTrack.uiBlock = uiBlock;
    stTrack.uiNext = uiBlock + 1;
    stTrack.uiMaxStart = 0;
    stTrack.uiStarts = 0;
    stTrack.bLogged = false;
}

/** Tell what is known from the first block on, as far as all are quiet. */
void Settle_Blocks()
{
    for (; s_uiSettled < s_uiPlaces && s_pstBlock[s_uiSettled].bQuiet; ++s_uiSettled) {
        SeekBlock &stBlock = s_pstBlock[s_uiSettled];
        const SeekBlock stBefore = s_uiSettled == 0 ? SeekBlock{} : s_pstBlock[s_uiSettled - 1];
        stBlock.uiMaxSoFar = std::max(stBefore.uiMaxSoFar, stBlock.uiMaxStart);
        stBlock.uiStartsSoFar = stBefore.uiStartsSoFar + stBlock.uiStarts;
    }
}

/** Let blocks be twice as long, two and two becoming one. */
void Halve_Places()
{
    const uint32_t uiKept = (s_uiPlaces + 1) / 2;
    for (uint32_t uiBlock = 0; uiBlock < uiKept; ++uiBlock) {
        SeekBlock &stBlock = s_pstBlock[uiBlock];
        stBlock = s_pstBlock[size_t{2} * uiBlock];
        if (uiBlock + 1 == uiKept) break;
        const SeekBlock &stSecond = s_pstBlock[size_t{2} * uiBlock + 1];
        stBlock.uiMaxStart = std::max(stBlock.uiMaxStart, stSecond.uiMaxStart);
        stBlock.uiStarts += stSecond.uiStarts;
        stBlock.bQuiet = stBlock.bQuiet && stSecond.bQuiet;
    }
    s_uiPlaces = uiKept;
    s_llBlockBytes *= 2;
    s_uiSettled = 0;
    Settle_Blocks();
}

/** Make room for twice as many places. */
bool Grow_Room()
{
    const uint32_t uiRoom = s_uiRoom == 0 ? PLACES_MIN : 2 * s_uiRoom - 1;
    if (uiRoom > PLACES_MAX) return false;
    SeekBlock *const pstBlock = static_cast<SeekBlock *>(ZYR_malloc(uiRoom * sizeof(SeekBlock)));
    if (pstBlock == nullptr) return false;
    std::copy_n(s_pstBlock, s_uiPlaces, pstBlock);
    if (s_pstBlock != nullptr) ZYR_free(s_pstBlock);
    s_pstBlock = pstBlock;
    s_uiRoom = uiRoom;
    return true;
}

/** Add a place behind all others. */
void Add_Place(const SeekPlace &stPlace)
{
    if (s_uiPlaces == s_uiRoom && !Grow_Room()) {
        if (s_uiRoom == 0) return;
        Halve_Places();
    }
    s_pstBlock[s_uiPlaces++] = {stPlace, 0, 0, false, 0, 0};
}

/** The block that was scanned ends here. */
void Describe_Block(const SeekTrack &stTrack)
{
    SeekBlock &stBlock = s_pstBlock[stTrack.uiBlock];
    stBlock.uiMaxStart = stTrack.uiMaxStart;
    stBlock.uiStarts = stTrack.uiStarts;
    stBlock.bQuiet = !stTrack.bLogged;
    s_uiSettled = std::min(s_uiSettled, stTrack.uiBlock);
    Settle_Blocks();
}

/** Look ahead to the end of a known block, or to where the block that is scanned is long enough. */
void Set_NextPos(SeekTrack &stTrack)
{
    if (stTrack.uiScanned < SETTLED_STARTS)
        stTrack.llNextPos = 0;
    else if (stTrack.uiNext < s_uiPlaces)
        stTrack.llNextPos = s_pstBlock[stTrack.uiNext].stPlace.llPos;
    else if (s_uiPlaces > 0)
        stTrack.llNextPos = s_pstBlock[s_uiPlaces - 1].stPlace.llPos + s_llBlockBytes;
}

/** @return starts in the blocks before a settled one, or before the first one that is not */
uint32_t Get_StartsBefore(uint32_t uiBlock)
{
    return uiBlock == 0 || uiBlock > s_uiSettled ? 0 : s_pstBlock[uiBlock - 1].uiStartsSoFar;
}

/** @return the block that a scan can go on with as far as the settled blocks tell: none before starts after the
 *          target */
uint32_t Skip_SettledBlocks(const SeekTrack &stTrack)
{
    const uint32_t uiFirst = stTrack.uiBlock;
    const uint32_t uiEnd = std::min(s_uiSettled, s_uiPlaces - 1);
    if (uiFirst >= uiEnd) return uiFirst;
    const SeekBlock *const pstBeyond = std::upper_bound(
        s_pstBlock + uiFirst, s_pstBlock + uiEnd, stTrack.uiTargetMs,
        [](uint32_t uiTime, const SeekBlock &stBlock) { return uiTime < stBlock.uiMaxSoFar; });
    return static_cast<uint32_t>(pstBeyond - s_pstBlock);
}

/** Learn from a scan that stands at the end of an entry. */
void Note_SeekPlace(SeekTrack &stTrack, const SeekPlace &stPlace)
{
    while (stTrack.uiNext < s_uiPlaces && s_pstBlock[stTrack.uiNext].stPlace.llPos < stPlace.llPos) {
        ++stTrack.uiNext; // passed without a stop there: the scan is out of step
        stTrack.uiBlock = NO_SEEK_BLOCK;
        s_bInStep = false;
    }
    const bool bKnown = stTrack.uiNext < s_uiPlaces;
    if (bKnown && s_pstBlock[stTrack.uiNext].stPlace.llPos > stPlace.llPos) return;
    if (!bKnown && (!s_bInStep || s_uiPlaces == 0 || stTrack.uiScanned < SETTLED_STARTS ||
                    stPlace.llPos < s_pstBlock[s_uiPlaces - 1].stPlace.llPos + s_llBlockBytes))
        return;
    if (stTrack.uiBlock != NO_SEEK_BLOCK) Describe_Block(stTrack);
    if (!bKnown) {
        Add_Place(stPlace);
        stTrack.uiNext = s_uiPlaces - 1;
    }
    s_bInStep = true;
    Start_Block(stTrack, stTrack.uiNext);
}

} // namespace

void Forget_SeekPlaces()
{
    if (s_pstBlock != nullptr) ZYR_free(s_pstBlock);
    s_pstBlock = nullptr;
    s_uiRoom = 0;
    s_uiPlaces = 0;
    s_uiSettled = 0;
    s_llBlockBytes = FIRST_BLOCK_BYTES;
    s_bInStep = true;
}

SeekTrack Begin_SeekTrack(const SeekPlace &stPlace, uint32_t uiTargetMs, bool bAtStart)
{
    Forget_OtherFile();
    if (bAtStart && s_uiPlaces > 0 && s_pstBlock[0].stPlace.llPos != stPlace.llPos) Forget_SeekPlaces();
    SeekTrack stTrack = {uiTargetMs, NO_SEEK_BLOCK, 0, 0, 0, 0, false, 0};
    if (bAtStart) {
        if (s_uiPlaces == 0) Add_Place(stPlace);
        s_bInStep = true;
        stTrack.uiScanned = SETTLED_STARTS;
        if (s_uiPlaces > 0) Start_Block(stTrack, 0);
        return stTrack;
    }
    const SeekBlock *const pstNext = std::lower_bound(
        s_pstBlock, s_pstBlock + s_uiPlaces, stPlace.llPos,
        [](const SeekBlock &stBlock, int64_t llPos) { return stBlock.stPlace.llPos < llPos; });
    stTrack.uiNext = static_cast<uint32_t>(pstNext - s_pstBlock);
    if (stTrack.uiNext < s_uiPlaces && pstNext->stPlace.llPos == stPlace.llPos)
        Start_Block(stTrack, stTrack.uiNext);
    return stTrack;
}

int64_t Skip_SeekBlocks(SeekTrack &stTrack, SeekPlace &stPlace, void *hFile)
{
    if (stTrack.uiBlock == NO_SEEK_BLOCK) return 1;
    uint32_t uiBlock = Skip_SettledBlocks(stTrack);
    uint32_t uiScanned = stTrack.uiScanned + Get_StartsBefore(uiBlock) - Get_StartsBefore(stTrack.uiBlock);
    while (uiBlock + 1 < s_uiPlaces && s_pstBlock[uiBlock].bQuiet &&
           s_pstBlock[uiBlock].uiMaxStart <= stTrack.uiTargetMs)
        uiScanned += s_pstBlock[uiBlock++].uiStarts;
    if (uiBlock == stTrack.uiBlock || uiScanned < SETTLED_STARTS) return 1;
    stPlace = s_pstBlock[uiBlock].stPlace;
    stTrack.uiScanned = uiScanned;
    Start_Block(stTrack, uiBlock);
    // The frame parser is likely to go on from one of these two: one read then serves the scan and the frame.
    const int64_t llReached = Move_ReadPosition(hFile, stPlace.llPrevPos, E_READ_AHEAD_FULL);
    return llReached < 0 ? llReached : Move_ReadPosition(hFile, stPlace.llPos, E_READ_AHEAD_FULL);
}

int64_t Reach_SeekPlace(SeekTrack &stTrack, SeekPlace &stPlace, void *hFile)
{
    Note_SeekPlace(stTrack, stPlace);
    const int64_t llReached = Skip_SeekBlocks(stTrack, stPlace, hFile);
    Set_NextPos(stTrack);
    return llReached;
}

int32_t Fail_SeekMove(const char *pszSeek, int64_t llReached)
{
    s_bInStep = false;
    LOG_PARSER("%s() - QUIBCAPTCB_FileSeek() Failed! (ERROR = %d)\n", pszSeek,
               static_cast<int32_t>(llReached));
    return -1;
}

int32_t Fail_Read(const char *pszParser, int32_t iResult)
{
    if (iResult != NO_CAPTION_DATA) s_bInStep = false; // the end of the data is a place like any other
    LOG_PARSER("%s() - Get_CharCode() Failed! (ERROR = %d)\n", pszParser, iResult);
    return iResult;
}

int32_t Resume_Reading(const char *pszSeek, void *hFile, int64_t llPos, uint32_t uiTime, ReadAhead eReadAhead)
{
    const int64_t llReached = Move_ReadPosition(hFile, llPos, eReadAhead);
    if (llReached < 0) return Fail_SeekMove(pszSeek, llReached);
    pstQuibCaptionParserInfo->llCurrFilePos = llPos;
    pstQuibCaptionParserInfo->iCurrPTS = static_cast<int32_t>(uiTime);
    return 1;
}
