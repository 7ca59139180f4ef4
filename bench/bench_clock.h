/* Processor time, and the loop that both programs are measured by: one unmeasured round, then the asked number. Wall time
 * would punish the longer of two runs on a busy machine. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

inline double Get_Microseconds()
{
    timespec stTime = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &stTime);
    return static_cast<double>(stTime.tv_sec) * 1e6 + static_cast<double>(stTime.tv_nsec) / 1e3;
}

inline void Check(bool bGood, const char *pszWhat)
{
    if (bGood) return;
    fprintf(stderr, "%s failed\n", pszWhat);
    exit(1);
}

/** What one program can measure: pfRun alone is timed, the other two surround it. */
struct Operation {
    const char *pszName;
    void (*pfPrepare)();
    uint32_t (*pfRun)(); // @return how many times it did what the name says
    void (*pfFinish)();
};

/* Instructions are counted in here and nowhere else: a profiler knows it by its name. */
extern "C" [[gnu::noinline]] uint32_t Run_Measured(const Operation *pstOperation);

extern "C" uint32_t Run_Measured(const Operation *pstOperation)
{
    return pstOperation->pfRun();
}

/** Run an operation, print the median time of one, in microseconds, and how many a round does. */
inline void Measure_Operation(const Operation &stOperation, uint32_t uiRounds)
{
    std::vector<double> vdTimes;
    uint32_t uiCount = 0;
    for (uint32_t uiRound = 0; uiRound <= uiRounds; ++uiRound) {
        if (stOperation.pfPrepare != nullptr) stOperation.pfPrepare();
        const double dStart = Get_Microseconds();
        if (uiRound == 0)
            stOperation.pfRun();
        else
            uiCount = Run_Measured(&stOperation);
        if (uiRound > 0) vdTimes.push_back((Get_Microseconds() - dStart) / uiCount);
        if (stOperation.pfFinish != nullptr) stOperation.pfFinish();
    }
    std::nth_element(vdTimes.begin(), vdTimes.begin() + uiRounds / 2, vdTimes.end());
    printf("us %.3f\ncount %u\n", vdTimes[uiRounds / 2], uiCount);
}

inline const Operation *Find_Operation(const Operation *pstFirst, size_t uiNums, const char *pszName)
{
    for (size_t uiIndex = 0; uiIndex < uiNums; ++uiIndex)
        if (strcmp(pstFirst[uiIndex].pszName, pszName) == 0) return pstFirst + uiIndex;
    return nullptr;
}
