/*
 * Passing over SYNC tags of other classes.
 *
 * The header and the frame parser do not read P tags alike: a tag with two attributes names a class for the
 * one and none for the other. Where a SYNC tag is a frame of a class that none of its P tags selects, the
 * frame parser goes on to the next SYNC tag, and may do so down to the end of the file, for every single
 * frame. So the places of all SYNC tags are kept, and what was once seen to be passed in silence is not read
 * again.
 *
 * A place is a SYNC tag with attributes and a ">". Places are numbered in file order; behind the last SYNC
 * tag follows the place where the header's scan ended.
 */
#pragma once

#include <cstdint>

constexpr uint32_t NO_SYNC_PLACE = UINT32_MAX;

/** Begin an empty list of places. */
void Begin_SyncPlaces();

/** Add a SYNC tag. @return false without memory (logged). */
bool Append_SyncPlace(int64_t llFilePos);

/** Complete the list. @param[in] llEndPos  where the scan ended. @return false without memory (logged). */
bool Finish_SyncPlaces(int64_t llEndPos);

/** Forget the places, or only what is known of them: the classes have changed. */
void Drop_SyncPlaces();
void Forget_PassedPlaces();

/** @return first place from a file position on; NO_SYNC_PLACE when nothing is known of places. */
uint32_t Find_SyncPlace(int64_t llFilePos);

/** @return file position of a place. */
int64_t Get_PlacePosition(uint32_t uiPlace);

/** @return whether SYNC tags may be passed over from a place on: it is not the end. */
bool Is_SyncTagPlace(uint32_t uiPlace);

/** Note that a SYNC tag is passed without a word by all classes but those whose bits are set: they have a P
 * tag there. */
void Note_PassedPlace(uint32_t uiPlace, uint32_t uiClassBits);

/** @return first place from uiPlace on that a class may not pass over. */
uint32_t Find_NextStop(uint32_t uiClass, uint32_t uiPlace);

/**
 * @return place of a frame's SYNC tag at a file position when not only this one can be passed over; else
 *         NO_SYNC_PLACE
 */
uint32_t Find_PassedStart(uint32_t uiClass, int64_t llFilePos);
