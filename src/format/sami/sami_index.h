/*
 * The frame index of a SAMI file: an entry for each class that a SYNC tag names (one for a tag that names none),
 * in the file's order while the header is read and in time order from then on. Beside the entries it holds, for each class, which of them are its own, so that
 * nothing ever walks over the entries of other classes.
 */
#pragma once

#include <cstdint>

#include "record/parser_state.h"

/** A class's frame of a SAMI file. The array is in time order once the header is read. */
struct SamiFrameInfo {
    uint32_t uiClassIndex; // class of the frame; ZYR_CLASS_MAX while it has none
    int32_t iPTS;          // ms
    uint16_t usTextBytes;  // bytes from its place to the text
    uint16_t usTextEnd;    // and to behind the text, if nothing else needs to be read; 0 = that is not known
    int64_t llFilePos;     // its place: where the "<" of the SYNC tag stands
};

extern SamiFrameInfo *s_pstFrameInfoArray;
extern uint32_t s_uiFrameInfoMax;                     // most frames that the file's size allows for
extern uint32_t s_uiFrameInfoNums;                    // frames in the array
extern uint32_t *s_puiSyncPlaces;                     // where SYNC tags stand (format/sami/sami_skip.h)
extern uint32_t s_auiClassFrameCursor[ZYR_CLASS_MAX]; // per class: the entry to look from for its next frame

/** Take memory for what is known of the file's frames. @return NULL when there is none (logged). */
void *Allocate_FrameMemory(uint32_t uiBytes);

/** Begin an empty index for a file of s_llCaptionFileSize bytes. @return false without memory (logged). */
bool Begin_FrameIndex();

/** @return whether bytes are still taken for characters as when the index was begun. */
bool Is_IndexedOption();

/** Add an entry; the index must not be full. @return false without memory (logged). */
bool Append_Frame(const SamiFrameInfo &stFrame);

/** Bring the entries into time order, equal times in file order. @return false without memory (logged). */
bool Finish_FrameIndex();

/** Forget all entries; what they stood in stays until the buffers are freed. */
void Drop_FrameIndex();

/** Entries belong to other classes now. */
void Forget_ClassOrder();

/** Two classes have become one: where a SYNC tag has several entries of a class now, keep the first. */
void Drop_TwinFrames();

/** @return whether there is an entry of this number, and it is of a class. */
inline bool Is_ClassFrame(uint32_t uiClass, uint32_t uiFrame)
{
    return uiFrame < s_uiFrameInfoNums && s_pstFrameInfoArray[uiFrame].uiClassIndex == uiClass;
}

/** @return first entry of a class from entry uiFrom on; s_uiFrameInfoNums when there is none. */
uint32_t Find_ClassFrame(uint32_t uiClass, uint32_t uiFrom);

/**
 * Find the entry before the first one of a class that does not start before a time. Times are compared
 * unsigned, entry after entry in time order: an entry with a negative time counts as a late one.
 *
 * @return the class's entry before it, or entry 0 (whatever its class) when there is none
 */
uint32_t Find_FrameBefore(uint32_t uiClass, uint32_t uiTargetMs);
