/*
 * What the seeks of a format without an index have found out about the file. The scan of a seek leaves a
 * place behind every few kilobytes; a later scan that comes by goes on from the last place before its target.
 *
 * A place is the end of an entry. Between two places lies a block; a block is passed over when nothing in it
 * starts after the target, and when scanning it logs nothing: what is due in the log is logged every time.
 */
#pragma once

#include <cstdint>

#include "text/char_reader.h"

/** Where a scan stands between two entries, and all that it remembers there. */
struct SeekPlace {
    int64_t llPos;       // where the next entry begins
    int64_t llPrevPos;   // where the entry before it begins
    uint32_t uiPrevTime; // start of an earlier entry, ms: the format says which
    uint32_t uiLastTime; // start of the last entry, ms
};

/** A scan on its way over the index. */
struct SeekTrack {
    uint32_t uiTargetMs;
    uint32_t uiBlock;    // block that is scanned from its first byte on, or NO_SEEK_BLOCK
    uint32_t uiNext;     // first known place that lies ahead
    uint32_t uiMaxStart; // in the block so far, ms
    uint32_t uiStarts;   // likewise: entries with a start
    uint32_t uiScanned;  // entries with a start since the scan began
    bool bLogged;        // something of the block has been logged
    int64_t llNextPos;   // before it the end of an entry is nothing that the index could learn or tell
};

/** A seek on its way from entry to entry. */
struct SeekScan {
    SeekPlace stPlace;
    SeekTrack stTrack;
    bool bBeyond; // an entry starts after the target
};

constexpr uint32_t NO_SEEK_BLOCK = UINT32_MAX;

/** Forget everything, and give its memory back. */
void Forget_SeekPlaces();

/** Begin a scan at a place. @param[in] bAtStart  the place is where the stream's first entry begins */
SeekTrack Begin_SeekTrack(const SeekPlace &stPlace, uint32_t uiTargetMs, bool bAtStart);

/** An entry's start has been read. @return whether it is at or before the target, so that the scan goes on */
inline bool Pass_SeekStart(SeekScan &stSeek, uint32_t uiStart)
{
    SeekTrack &stTrack = stSeek.stTrack;
    stSeek.bBeyond = stTrack.uiTargetMs < uiStart;
    if (stSeek.bBeyond) return false;
    if (uiStart > stTrack.uiMaxStart) stTrack.uiMaxStart = uiStart;
    ++stTrack.uiStarts;
    ++stTrack.uiScanned;
    return true;
}

/** The scan stands where a place may be: learn from it, and pass over what is known. @return as Skip_SeekBlocks() */
int64_t Reach_SeekPlace(SeekTrack &stTrack, SeekPlace &stPlace, void *hFile);

/**
 * The scan has come to the end of an entry, which stPlace is by now: learn from it, and pass over what is known.
 *
 * @param[in] bLogged  something of the entry has been logged
 *
 * @return as Skip_SeekBlocks()
 */
inline int64_t Pass_SeekEntry(SeekScan &stSeek, bool bLogged, void *hFile)
{
    SeekTrack &stTrack = stSeek.stTrack;
    stTrack.bLogged = stTrack.bLogged || bLogged;
    return stSeek.stPlace.llPos < stTrack.llNextPos ? 1 : Reach_SeekPlace(stTrack, stSeek.stPlace, hFile);
}

/**
 * Let a scan that stands at stPlace go on from the last known place that it would come to anyway, which
 * stPlace then is.
 *
 * @return 1, or a negative value when the file could not be moved there
 */
int64_t Skip_SeekBlocks(SeekTrack &stTrack, SeekPlace &stPlace, void *hFile);

/** Report that a seek could not move the file. @param[in] pszSeek  the seek's name @return -1 */
int32_t Fail_SeekMove(const char *pszSeek, int64_t llReached);

/** Report that a frame parser or a seek could not read the file. @return iResult */
int32_t Fail_Read(const char *pszParser, int32_t iResult);

/** End a seek: let reading go on from a position, with a time as the last handled one. @return 1, or -1
 * (logged) */
int32_t Resume_Reading(const char *pszSeek, void *hFile, int64_t llPos, uint32_t uiTime,
                       ReadAhead eReadAhead);

/**
 * Scan until an entry starts after the target, or the data ends, and let reading go on from the place reached.
 *
 * @param[in] pszSeek  the seek's name, for the log
 * @param[in] fnTake   int64_t (uint16_t): takes a unit; below 0 when the file could not be moved
 * @param[in] fnPass   int64_t (): passes a usual entry at once; 0 when none stands there, else as fnTake
 *
 * @return the seek's result: 1, or a negative value (logged)
 */
template <typename TakeUnit, typename PassUsual>
int32_t Scan_ToTarget(SeekScan &stSeek, void *hFile, const char *pszSeek, const TakeUnit &fnTake,
                      const PassUsual &fnPass)
{
    int64_t llReached = Skip_SeekBlocks(stSeek.stTrack, stSeek.stPlace, hFile);
    while (!stSeek.bBeyond && llReached >= 0) {
        const int64_t llPassed = fnPass();
        if (llPassed != 0) {
            llReached = llPassed;
            continue;
        }
        uint16_t usChar = 0;
        const bool bRefill = Get_HeldBytes(Get_StreamInfo()) == 0;
        const int32_t iResult = Get_CharCode(hFile, &usChar, 1);
        if (bRefill && iResult > 0 &&
            Give_BytesBack(iResult)) // a usual entry may begin in what has just been read
            continue;
        if (iResult == 0 || iResult == NO_CAPTION_DATA) break;
        if (iResult < 0) return Fail_Read(pszSeek, iResult);
        llReached = fnTake(usChar);
    }
    if (llReached < 0) return Fail_SeekMove(pszSeek, llReached);
    return Resume_Reading(pszSeek, hFile, stSeek.stPlace.llPrevPos, stSeek.stPlace.uiPrevTime,
                          E_READ_AHEAD_FULL);
}
