#include "format/ssa/frame_list.h"

#include "format/stable_sort.h"
#include "record/host_callbacks.h"

namespace
{

constexpr CaptionFrameList NO_LIST = {nullptr, 0, 0, 1}; // the cursor is on the tail
constexpr uint32_t FIRST_NODES = 64; // a kilobyte: every format pays for it, only SSA uses it
constexpr uint32_t SENTINELS = 2;

} // namespace

CaptionFrameList s_stCaptionFrameList = NO_LIST;

namespace
{

/** Capacity after uiCapacity, bounded by what one allocation can ask for. */
uint32_t Get_NextCapacity(uint32_t uiCapacity)
{
    constexpr uint32_t MOST_NODES = UINT32_MAX / sizeof(CaptionFrameNode);
    return uiCapacity > MOST_NODES / 2 ? MOST_NODES : uiCapacity * 2;
}

bool Grow_List()
{
    CaptionFrameList &stList = s_stCaptionFrameList;
    const uint32_t uiCapacity = Get_NextCapacity(stList.uiCapacity);
    if (uiCapacity == stList.uiCapacity || !Grow_Array(stList.pastNode, stList.uiCapacity, uiCapacity))
        return false;
    stList.uiCapacity = uiCapacity;
    return true;
}

} // namespace

int32_t Create_CaptionFrameList()
{
    Destroy_CaptionFrameList();
    if (!Grow_Array(s_stCaptionFrameList.pastNode, 0, FIRST_NODES)) return -1;
    s_stCaptionFrameList.uiCapacity = FIRST_NODES;
    return Clear_CaptionFrameList();
}

void Destroy_CaptionFrameList()
{
    Free_And_Clear(s_stCaptionFrameList.pastNode);
    s_stCaptionFrameList = NO_LIST;
}

int32_t Clear_CaptionFrameList()
{
    CaptionFrameList &stList = s_stCaptionFrameList;
    if (stList.pastNode == nullptr) return 1;
    stList.uiNodeNum = 0;
    stList.pastNode[0] = {0, 0};
    stList.pastNode[1] = {0, -1};
    stList.uiCurrNode = Get_TailNode();
    return 1;
}

int32_t Append_CaptionFrame(uint32_t uiPTS, int64_t llFilePos)
{
    CaptionFrameList &stList = s_stCaptionFrameList;
    if (stList.pastNode == nullptr) return -1;
    if (stList.uiNodeNum + SENTINELS >= stList.uiCapacity && !Grow_List()) return -1;
    const bool bAtTail = stList.uiCurrNode == Get_TailNode();
    stList.pastNode[Get_TailNode()] = {uiPTS, llFilePos};
    ++stList.uiNodeNum;
    stList.pastNode[Get_TailNode()] = {0, -1};
    if (bAtTail) stList.uiCurrNode = 1;
    return 1;
}

int32_t Sort_CaptionFrames()
{
    CaptionFrameList &stList = s_stCaptionFrameList;
    const auto fnKeyOf = [](const CaptionFrameNode &stNode) { return stNode.uiPTS; };
    if (stList.pastNode == nullptr || Is_Sorted(stList.pastNode + 1, stList.uiNodeNum, fnKeyOf)) return 1;

    CaptionFrameNode *pastNode = nullptr;
    if (!Grow_Array(pastNode, 0, stList.uiCapacity)) return -1;
    const CaptionFrameNode stCurr = stList.pastNode[stList.uiCurrNode];
    pastNode[0] = stList.pastNode[0];
    pastNode[Get_TailNode()] = stList.pastNode[Get_TailNode()];
    Sort_Stable(stList.pastNode + 1, pastNode + 1, stList.uiNodeNum, fnKeyOf);
    Free_And_Clear(stList.pastNode);
    stList.pastNode = pastNode;
    // A line's place in the file names it: no two frames share one.
    for (uint32_t uiNode = 1; uiNode < Get_TailNode(); ++uiNode)
        if (pastNode[uiNode].llFilePos == stCurr.llFilePos) stList.uiCurrNode = uiNode;
    return 1;
}
