/*
 * The SSA frame list: one node per Dialogue line, in start-time order, with a cursor.
 *
 * Node 0 is the head sentinel, nodes 1 .. uiNodeNum are the frames, and node uiNodeNum + 1 is the tail. All
 * stand in one array that grows as lines are found; a time is looked up by halving.
 */
#pragma once

#include <cstdint>

struct CaptionFrameNode {
    uint32_t uiPTS;    // start of the Dialogue line, ms; 0 in the sentinels
    int64_t llFilePos; // where the line begins, bytes; 0 in the head, -1 in the tail
};

struct CaptionFrameList {
    CaptionFrameNode *pastNode; // uiCapacity nodes, sentinels included; NULL before the buffers are made
    uint32_t uiCapacity;
    uint32_t uiNodeNum;  // frames
    uint32_t uiCurrNode; // the cursor: index of a node or of a sentinel
};

extern CaptionFrameList s_stCaptionFrameList;

/** Make the empty list. @return 1, or -1 without memory. */
int32_t Create_CaptionFrameList();

/** Free the list's memory. */
void Destroy_CaptionFrameList();

/** Take all frames out; the cursor then stands on the tail. @return 1. */
int32_t Clear_CaptionFrameList();

/** Put a frame behind all others, whatever its time. @return 1, or -1 without memory. */
int32_t Append_CaptionFrame(uint32_t uiPTS, int64_t llFilePos);

/**
 * Bring the frames into time order, equal times in the order of appending. The cursor stays on the frame it
 * is on.
 *
 * @return 1, or -1 without memory; the order is then unchanged
 */
int32_t Sort_CaptionFrames();

/** @return index of the tail sentinel. */
inline uint32_t Get_TailNode()
{
    return s_stCaptionFrameList.uiNodeNum + 1;
}
