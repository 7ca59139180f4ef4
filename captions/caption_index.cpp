#include "caption_index.h"

#include <algorithm>
#include <climits>
#include <numeric>

namespace
{

// A part of the index's row.
struct Stretch {
    uint32_t uiFirst;
    uint32_t uiEnd;

    bool Is_Empty() const { return uiFirst >= uiEnd; }
    uint32_t Get_Middle() const { return uiFirst + (uiEnd - uiFirst) / 2; }
    Stretch Get_Before() const { return {uiFirst, Get_Middle()}; }
    Stretch Get_Behind() const { return {Get_Middle() + 1, uiEnd}; }
};

Stretch Get_Stretch(const ZyrCaptions &stList, uint32_t uiOrder)
{
    return {stList.stIndex.auiFirst[uiOrder], stList.stIndex.auiFirst[uiOrder + 1]};
}

const CaptionRecord &Get_Record(const ZyrCaptions &stList, uint32_t uiPlace)
{
    return stList.astRecords[stList.stIndex.auiCaptions[uiPlace]];
}

void Sort_Captions(ZyrCaptions &stList)
{
    std::vector<uint32_t> &auiCaptions = stList.stIndex.auiCaptions;
    auiCaptions.resize(stList.astRecords.size());
    std::iota(auiCaptions.begin(), auiCaptions.end(), 0U);
    const auto pfBefore = [&](uint32_t uiA, uint32_t uiB) {
        const CaptionRecord &stA = stList.astRecords[uiA];
        const CaptionRecord &stB = stList.astRecords[uiB];
        return stA.ucOrder != stB.ucOrder ? stA.ucOrder < stB.ucOrder : stA.iStart < stB.iStart;
    };
    if (!std::is_sorted(auiCaptions.begin(), auiCaptions.end(), pfBefore))
        std::stable_sort(auiCaptions.begin(), auiCaptions.end(), pfBefore);
    for (const CaptionRecord &stRecord : stList.astRecords) ++stList.stIndex.auiFirst[stRecord.ucOrder + 1U];
    std::partial_sum(stList.stIndex.auiFirst.begin(), stList.stIndex.auiFirst.end(),
                     stList.stIndex.auiFirst.begin());
}

void Close_OpenEnds(ZyrCaptions &stList, Stretch stStretch)
{
    for (uint32_t uiPlace = stStretch.uiFirst; uiPlace + 1 < stStretch.uiEnd; ++uiPlace) {
        CaptionRecord &stRecord = stList.astRecords[stList.stIndex.auiCaptions[uiPlace]];
        if (stRecord.iEnd == ZYR_CAPTIONS_OPEN_END)
            stRecord.iShownUntil = Get_Record(stList, uiPlace + 1).iStart;
    }
}

// @return the latest end in the stretch; as deep as the logarithm of its length
int32_t Build_Tree(ZyrCaptions &stList, Stretch stStretch)
{
    if (stStretch.Is_Empty()) return INT32_MIN;
    const uint32_t uiMiddle = stStretch.Get_Middle();
    const int32_t iSides =
        std::max(Build_Tree(stList, stStretch.Get_Before()), Build_Tree(stList, stStretch.Get_Behind()));
    int32_t &iLatest = stList.stIndex.aiLatestEnd[uiMiddle];
    iLatest = std::max(iSides, Get_Record(stList, uiMiddle).iShownUntil);
    return iLatest;
}

void Collect(const ZyrCaptions &stList, Stretch stStretch, int32_t iTime, std::vector<uint32_t> &auiCaptions)
{
    if (stStretch.Is_Empty() || stList.stIndex.aiLatestEnd[stStretch.Get_Middle()] <= iTime) return;
    Collect(stList, stStretch.Get_Before(), iTime, auiCaptions);
    const uint32_t uiMiddle = stStretch.Get_Middle();
    const CaptionRecord &stRecord = Get_Record(stList, uiMiddle);
    if (stRecord.iStart > iTime) return;
    if (stRecord.iShownUntil > iTime) auiCaptions.push_back(stList.stIndex.auiCaptions[uiMiddle]);
    Collect(stList, stStretch.Get_Behind(), iTime, auiCaptions);
}

// The first place in the stretch whose caption starts at a time, or later.
uint32_t Find_Place(const ZyrCaptions &stList, Stretch stStretch, int64_t llTime)
{
    while (!stStretch.Is_Empty()) {
        const bool bBefore = Get_Record(stList, stStretch.Get_Middle()).iStart >= llTime;
        stStretch = bBefore ? stStretch.Get_Before() : stStretch.Get_Behind();
    }
    return stStretch.uiFirst;
}

} // namespace

void Build_Index(ZyrCaptions &stList)
{
    Sort_Captions(stList);
    stList.stIndex.aiLatestEnd.resize(stList.astRecords.size());
    for (uint32_t uiOrder = 0; uiOrder < ORDER_NUMS; ++uiOrder) {
        Close_OpenEnds(stList, Get_Stretch(stList, uiOrder));
        Build_Tree(stList, Get_Stretch(stList, uiOrder));
    }
    std::vector<int32_t> &aiEnds = stList.stIndex.aiEnds;
    aiEnds.reserve(stList.astRecords.size());
    for (const CaptionRecord &stRecord : stList.astRecords) aiEnds.push_back(stRecord.iShownUntil);
    if (!std::is_sorted(aiEnds.begin(), aiEnds.end())) std::sort(aiEnds.begin(), aiEnds.end());
}

OrderSpan Find_Orders(const ZyrCaptions &stList, uint32_t uiClass)
{
    if (uiClass == ZYR_CAPTIONS_ALL) return {0, ORDER_NUMS};
    const auto itOrder = std::find(stList.auiOrder.begin(), stList.auiOrder.end(), uiClass);
    if (stList.bTogether || itOrder == stList.auiOrder.end()) return {0, 0};
    const auto uiOrder = static_cast<uint32_t>(itOrder - stList.auiOrder.begin());
    return {uiOrder, uiOrder + 1};
}

void List_CaptionsAt(const ZyrCaptions &stList, OrderSpan stOrders, int32_t iTime,
                     std::vector<uint32_t> &auiCaptions)
{
    for (uint32_t uiOrder = stOrders.uiFirst; uiOrder < stOrders.uiEnd; ++uiOrder)
        Collect(stList, Get_Stretch(stList, uiOrder), iTime, auiCaptions);
}

uint32_t Find_NextCaption(const ZyrCaptions &stList, OrderSpan stOrders, int32_t iTime)
{
    uint32_t uiBest = ZYR_CAPTIONS_NONE;
    for (uint32_t uiOrder = stOrders.uiFirst; uiOrder < stOrders.uiEnd; ++uiOrder) {
        const Stretch stStretch = Get_Stretch(stList, uiOrder);
        const uint32_t uiPlace = Find_Place(stList, stStretch, int64_t{iTime} + 1);
        if (uiPlace == stStretch.uiEnd) continue;
        const uint32_t uiCaption = stList.stIndex.auiCaptions[uiPlace];
        if (uiBest == ZYR_CAPTIONS_NONE ||
            stList.astRecords[uiCaption].iStart < stList.astRecords[uiBest].iStart)
            uiBest = uiCaption;
    }
    return uiBest;
}

uint32_t Find_PreviousCaption(const ZyrCaptions &stList, OrderSpan stOrders, int32_t iTime)
{
    uint32_t uiBest = ZYR_CAPTIONS_NONE;
    for (uint32_t uiOrder = stOrders.uiFirst; uiOrder < stOrders.uiEnd; ++uiOrder) {
        const Stretch stStretch = Get_Stretch(stList, uiOrder);
        const uint32_t uiPlace = Find_Place(stList, stStretch, iTime);
        if (uiPlace == stStretch.uiFirst) continue;
        const uint32_t uiCaption = stList.stIndex.auiCaptions[uiPlace - 1];
        if (uiBest == ZYR_CAPTIONS_NONE ||
            stList.astRecords[uiCaption].iStart >= stList.astRecords[uiBest].iStart)
            uiBest = uiCaption;
    }
    return uiBest;
}

int32_t Find_NextChange(const ZyrCaptions &stList, int32_t iTime)
{
    const std::vector<int32_t> &aiEnds = stList.stIndex.aiEnds;
    const auto itEnd = std::upper_bound(aiEnds.begin(), aiEnds.end(), iTime);
    const uint32_t uiNext = Find_NextCaption(stList, {0, ORDER_NUMS}, iTime);
    const int32_t iStart =
        uiNext == ZYR_CAPTIONS_NONE ? ZYR_CAPTIONS_OPEN_END : stList.astRecords[uiNext].iStart;
    return std::min(iStart, itEnd == aiEnds.end() ? ZYR_CAPTIONS_OPEN_END : *itEnd);
}
