/* What the targets of the engine share: checked calls, a host that fails or lies, what was seen of a file. */
#pragma once

#include <climits>
#include <string>

#include "fuzz_input.h"
#include "support/invariants.h"
#include "zyr/quib_caption.h"
#include "zyr/zyr_host.h"

/** What every machine must see alike. */
inline void Tell_Record(const QuibCaptionParserInfo &stInfo)
{
    for (const int64_t llNumber :
         {int64_t{stInfo.uiOutStreamIndex}, int64_t{stInfo.iOutStartPTS}, int64_t{stInfo.iOutEndPTS},
          int64_t{stInfo.uiOutLineNums}, int64_t{stInfo.uiDisplayMode}, int64_t{stInfo.usFontColor},
          int64_t{stInfo.uiClassNums}, int64_t{stInfo.uiStreamNums}})
        Tell_Number(llNumber);
    Tell_Bytes(stInfo.aucOutText, stInfo.uiOutTextLength);
    for (const CaptionStreamState &stState : stInfo.astStreamState)
        for (const int64_t llNumber : {int64_t{stState.llCurrFilePos}, int64_t{stState.iCurrPTS},
                                       int64_t{stState.iStartPTS}, int64_t{stState.iEndPTS}})
            Tell_Number(llNumber);
}

inline void Check_Invariants()
{
    const char *const pszBroken = Find_BrokenInvariant();
    Demand(pszBroken == nullptr, pszBroken);
    if (g_bTelling && pstQuibCaptionParserInfo != nullptr) Tell_Record(*pstQuibCaptionParserInfo);
}

#include "support/checked_calls.h"

/** A lie about one kind of file call: the nth one, or all from that one on. */
struct HostLie {
    int iCall;
    uint32_t uiNth; // 0 = no lie
    int32_t iMore;  // added to what the call really gives
    bool bFromThenOn;
};

/** How a file is read: whole or in short pieces, truly or with a lie. */
struct ReadManner {
    uint32_t uiChunk; // bytes that a read gives at most; 0 = all
    HostLie stLie;
};

inline int32_t Tell_Lie(HostLie &stLie, int32_t iReal)
{
    if (stLie.uiNth > 1) {
        --stLie.uiNth;
        return iReal;
    }
    if (!stLie.bFromThenOn) stLie.uiNth = 0;
    return static_cast<int32_t>(static_cast<uint32_t>(iReal) + static_cast<uint32_t>(stLie.iMore));
}

inline int32_t Hook_FileCall(int iCall, uint32_t uiAsked, int32_t iReal, void *pvManner)
{
    ReadManner &stManner = *static_cast<ReadManner *>(pvManner);
    const bool bShort = iCall == ZYR_HOST_READ && stManner.uiChunk != 0 && uiAsked > stManner.uiChunk;
    const int32_t iTold = bShort ? static_cast<int32_t>(stManner.uiChunk) : iReal;
    return stManner.stLie.uiNth != 0 && stManner.stLie.iCall == iCall ? Tell_Lie(stManner.stLie, iTold)
                                                                      : iTold;
}

/** Let reads give more than was asked for or less, seeks fail that have moved, tells be wrong. */
inline HostLie Take_Lie(FuzzInput &stSteps)
{
    static constexpr int32_t MORE[] = {1, 2, 511, 65536, -1, -2, -1111, INT_MIN};
    const int iCall = ZYR_HOST_READ + stSteps.Take_Byte() % 3;
    const int32_t iMore = MORE[stSteps.Take_Byte() % 8];
    const uint8_t ucWhen = stSteps.Take_Byte();
    return {iCall, 1u + ucWhen % 64, iMore, ucWhen >= 128};
}

/** Let calls fail honestly. */
inline void Break_Host(FuzzInput &stSteps)
{
    static constexpr int32_t RESULTS[] = {-1, -1111, 0, 1, 511, 65537, INT_MAX, INT_MIN};
    const int iCall = stSteps.Take_Byte() % 5;
    const uint8_t ucWhen = stSteps.Take_Byte();
    const int32_t iResult = iCall == ZYR_HOST_READ ? RESULTS[stSteps.Take_Byte() % 8] : -1;
    if (iCall > ZYR_HOST_TELL)
        zyr_host_failAllocation(1u + ucWhen % 32, ucWhen >= 128);
    else
        zyr_host_failFile(iCall, 1u + ucWhen % 64, iResult, ucWhen >= 128);
}

/** A host that works again. */
inline void Mend_Host()
{
    zyr_host_failAllocation(0, 0);
    for (int iCall = ZYR_HOST_OPEN; iCall <= ZYR_HOST_TELL; ++iCall) zyr_host_failFile(iCall, 0, 0, 0);
    zyr_host_setFileHook(nullptr, nullptr);
}

inline void Expect_AllGivenBack()
{
    Demand(zyr_host_liveBytes() == 0, "close gives all memory back");
    Demand(zyr_host_openFiles() == 0, "close closes the file");
}

/** A log line without what may differ: the number of its source line, how long the header took. */
inline std::string Get_LogText(const std::string &strLine)
{
    const size_t uiTime = strLine.find("Header Parsing Time");
    if (uiTime != std::string::npos) return strLine.substr(0, uiTime);
    const size_t uiOpen = strLine.find('[');
    const size_t uiClose = strLine.find(']', uiOpen);
    return uiClose == std::string::npos ? strLine : strLine.substr(0, uiOpen) + strLine.substr(uiClose);
}

/** A log sink. */
inline void Tell_Log(int, const char *, const char *pszText, void *)
{
    const std::string strText = Get_LogText(pszText);
    Tell_Bytes(strText.data(), strText.size());
}
