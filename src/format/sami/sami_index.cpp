#include "format/sami/sami_index.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "format/stable_sort.h"
#include "record/engine_log.h"

SamiFrameInfo *s_pstFrameInfoArray = nullptr;
uint32_t s_uiFrameInfoMax = 0;
uint32_t s_uiFrameInfoNums = 0;
uint32_t *s_puiSyncPlaces = nullptr;
uint32_t s_auiClassFrameCursor[ZYR_CLASS_MAX] = {};

namespace
{

constexpr uint32_t BYTES_PER_FRAME = 40; // no reasonable file has more SYNC tags than one in so many bytes
constexpr uint32_t SPARE_FRAMES = 100;   // and these
constexpr uint32_t FIRST_FRAMES = 1024;  // entries to begin with: a quarter of the most, but so many at least
constexpr uint32_t FIRST_FRAMES_MAX = 8192; // and so many at most
constexpr uint32_t FRAME_GROWTH = 4;        // and so many times as many whenever they do not do
constexpr uint32_t NEAR_FRAMES = 4;         // entries to look at before the class's own list is searched

uint32_t s_uiIndexedOption = 0;                   // how bytes were taken for characters
bool s_bSorted = true;                            // the entries stand in time order
int32_t s_iLastPTS = 0;                           // time of the last one
uint32_t s_uiFrameRoom = 0;                       // entries that the array has room for
bool s_bOrdered = false;                          // the two below hold
uint32_t s_auiClassStart[ZYR_CLASS_MAX + 2] = {}; // where each class's entries begin in the class order

/** The entries' numbers, class after class and ascending in each; they stand behind the room for entries. */
uint32_t *Get_ClassOrder()
{
    return reinterpret_cast<uint32_t *>(s_pstFrameInfoArray + s_uiFrameRoom);
}

SamiFrameInfo *Allocate_Frames(uint32_t uiRoom)
{
    return static_cast<SamiFrameInfo *>(
        Allocate_FrameMemory(uiRoom * static_cast<uint32_t>(sizeof(SamiFrameInfo) + sizeof(uint32_t))));
}

/** Find out which entries belong to which class: only who seeks or has many classes asks that. */
void Order_Classes()
{
    s_bOrdered = true;
    uint32_t auiPlace[ZYR_CLASS_MAX + 2] = {}; // one slot later than its class, so that the sums are starts
    for (uint32_t uiFrame = 0; uiFrame < s_uiFrameInfoNums; ++uiFrame)
        ++auiPlace[s_pstFrameInfoArray[uiFrame].uiClassIndex + 1];
    for (uint32_t uiClass = 1; uiClass < ZYR_CLASS_MAX + 2; ++uiClass)
        auiPlace[uiClass] += auiPlace[uiClass - 1];
    std::copy(std::begin(auiPlace), std::end(auiPlace), s_auiClassStart);
    for (uint32_t uiFrame = 0; uiFrame < s_uiFrameInfoNums; ++uiFrame)
        Get_ClassOrder()[auiPlace[s_pstFrameInfoArray[uiFrame].uiClassIndex]++] = uiFrame;
}

/** The numbers of one class's entries. */
struct ClassFrames {
    const uint32_t *puiBegin;
    const uint32_t *puiEnd;
};

ClassFrames Get_ClassFrames(uint32_t uiClass)
{
    if (!s_bOrdered) Order_Classes();
    return {Get_ClassOrder() + s_auiClassStart[uiClass], Get_ClassOrder() + s_auiClassStart[uiClass + 1]};
}

void Replace_Frames(SamiFrameInfo *pastFrame, uint32_t uiRoom)
{
    if (s_pstFrameInfoArray != nullptr) QUIBCAPTCB_Deallocate_Memory(s_pstFrameInfoArray);
    s_pstFrameInfoArray = pastFrame;
    s_uiFrameRoom = uiRoom;
}

bool Grow_Frames()
{
    const uint32_t uiFirst = std::clamp(s_uiFrameInfoMax / FRAME_GROWTH, FIRST_FRAMES, FIRST_FRAMES_MAX);
    const uint32_t uiRoom =
        std::min(s_uiFrameInfoMax, s_uiFrameRoom == 0 ? uiFirst : FRAME_GROWTH * s_uiFrameRoom);
    SamiFrameInfo *const pastFrame = Allocate_Frames(uiRoom);
    if (pastFrame == nullptr) return false;
    if (s_uiFrameInfoNums > 0)
        std::memcpy(pastFrame, s_pstFrameInfoArray, s_uiFrameInfoNums * sizeof(SamiFrameInfo));
    Replace_Frames(pastFrame, uiRoom);
    return true;
}

/** Key whose unsigned order is the order of the times. */
uint32_t Get_TimeKey(const SamiFrameInfo &stFrame)
{
    return static_cast<uint32_t>(stFrame.iPTS) ^ 0x80000000u;
}

/** @return whether an entry's time, taken as unsigned, is before a target. */
bool Is_Before(uint32_t uiFrame, uint32_t uiTargetMs)
{
    return static_cast<uint32_t>(s_pstFrameInfoArray[uiFrame].iPTS) < uiTargetMs;
}

/** @return whether one of the first uiNums entries is of the same SYNC tag and class. */
bool Has_Twin(const SamiFrameInfo &stFrame, uint32_t uiNums)
{
    for (; uiNums > 0 && s_pstFrameInfoArray[uiNums - 1].llFilePos == stFrame.llFilePos; --uiNums)
        if (s_pstFrameInfoArray[uiNums - 1].uiClassIndex == stFrame.uiClassIndex) return true;
    return false;
}

} // namespace

void *Allocate_FrameMemory(uint32_t uiBytes)
{
    void *const pvMemory = QUIBCAPTCB_Allocate_Memory(uiBytes);
    if (pvMemory == nullptr) LOG_PARSER("Frame Information Array Memory Allocation Failed!\n");
    return pvMemory;
}

bool Begin_FrameIndex()
{
    Replace_Frames(nullptr, 0);
    Drop_FrameIndex();
    s_bSorted = true;
    s_iLastPTS = INT32_MIN;
    s_uiIndexedOption = s_uiParsingOption & E_PARSING_OPTION_SINGLE_BYTE;
    s_uiFrameInfoMax = static_cast<uint32_t>(s_llCaptionFileSize / BYTES_PER_FRAME) + SPARE_FRAMES;
    return Grow_Frames();
}

bool Is_IndexedOption()
{
    return s_uiIndexedOption == (s_uiParsingOption & E_PARSING_OPTION_SINGLE_BYTE);
}

bool Append_Frame(const SamiFrameInfo &stFrame)
{
    if (s_uiFrameInfoNums == s_uiFrameRoom && !Grow_Frames()) return false;
    if (stFrame.iPTS < s_iLastPTS) s_bSorted = false;
    s_iLastPTS = stFrame.iPTS;
    s_pstFrameInfoArray[s_uiFrameInfoNums++] = stFrame;
    return true;
}

bool Finish_FrameIndex()
{
    const uint32_t uiNums = s_uiFrameInfoNums;
    if (!s_bSorted) {
        SamiFrameInfo *const pastFrame = Allocate_Frames(uiNums);
        if (pastFrame == nullptr) return false;
        Sort_Stable(s_pstFrameInfoArray, pastFrame, uiNums, Get_TimeKey);
        Replace_Frames(pastFrame, uiNums);
    }
    s_bOrdered = false;
    return true;
}

void Drop_FrameIndex()
{
    s_uiFrameInfoNums = 0;
    for (uint32_t &uiCursor : s_auiClassFrameCursor) uiCursor = 0;
}

void Forget_ClassOrder()
{
    s_bOrdered = false;
}

void Drop_TwinFrames()
{
    uint32_t uiKept = 0;
    for (uint32_t uiFrame = 0; uiFrame < s_uiFrameInfoNums; ++uiFrame) {
        for (uint32_t &uiCursor : s_auiClassFrameCursor)
            if (uiCursor == uiFrame) uiCursor = uiKept;
        const SamiFrameInfo stFrame = s_pstFrameInfoArray[uiFrame];
        if (!Has_Twin(stFrame, uiKept)) s_pstFrameInfoArray[uiKept++] = stFrame;
    }
    for (uint32_t &uiCursor : s_auiClassFrameCursor) uiCursor = std::min(uiCursor, uiKept);
    s_uiFrameInfoNums = uiKept;
}

uint32_t Find_ClassFrame(uint32_t uiClass, uint32_t uiFrom)
{
    for (uint32_t uiFrame = uiFrom; uiFrame < s_uiFrameInfoNums; ++uiFrame) {
        if (s_pstFrameInfoArray[uiFrame].uiClassIndex == uiClass) return uiFrame;
        if (uiFrame - uiFrom < NEAR_FRAMES) continue;
        const ClassFrames stFrames = Get_ClassFrames(uiClass);
        const uint32_t *const puiFrame = std::lower_bound(stFrames.puiBegin, stFrames.puiEnd, uiFrame);
        return puiFrame == stFrames.puiEnd ? s_uiFrameInfoNums : *puiFrame;
    }
    return s_uiFrameInfoNums;
}

uint32_t Find_FrameBefore(uint32_t uiClass, uint32_t uiTargetMs)
{
    const ClassFrames stFrames = Get_ClassFrames(uiClass);
    // Negative times come first and are the late ones as unsigned numbers, so each part ascends by itself.
    const uint32_t *const puiSplit =
        std::partition_point(stFrames.puiBegin, stFrames.puiEnd,
                             [](uint32_t uiFrame) { return s_pstFrameInfoArray[uiFrame].iPTS < 0; });
    const auto fnIsBefore = [=](uint32_t uiFrame) { return Is_Before(uiFrame, uiTargetMs); };
    const uint32_t *puiStop = std::partition_point(stFrames.puiBegin, puiSplit, fnIsBefore);
    if (puiStop == puiSplit) puiStop = std::partition_point(puiSplit, stFrames.puiEnd, fnIsBefore);
    return puiStop == stFrames.puiBegin ? 0 : puiStop[-1];
}
