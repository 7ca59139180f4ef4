/* What the SAMI tests share: files made of SYNC blocks, and the classes of an open file as text. */
#pragma once

#include <string>
#include <vector>

#include "caption/parser_state.h"
#include "support/engine_fixture.h"

/** One SYNC block: 'S' + time, 'P' + class. */
inline std::string Sync(int64_t llTime, const std::string &strClass, const std::string &strText = "")
{
    return "<SYNC Start=" + std::to_string(llTime) + "><P Class=" + strClass + ">" + strText + "\r\n";
}

/** Blocks of one class, 10 ms apart. */
inline std::string Syncs(const std::string &strClass, int iNums, int iFirstTime = 0)
{
    std::string strAll;
    for (int iBlock = 0; iBlock < iNums; ++iBlock)
        strAll += Sync(iFirstTime + 10 * iBlock, strClass, strClass + std::to_string(iBlock));
    return strAll;
}

inline std::string Repeat(const std::string &strPiece, int iTimes)
{
    std::string strAll;
    for (int iTime = 0; iTime < iTimes; ++iTime) strAll += strPiece;
    return strAll;
}

class SamiTest : public EngineTest
{
protected:
    /** @return "KRCC+ENCC 3 @10-80 1000-3000 | ...": names, frames, first and last place, smallest and
     * largest time */
    static std::string Get_Classes()
    {
        std::string strAll;
        const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        for (uint32_t uiClass = 0; uiClass < stInfo.uiClassNums; ++uiClass) {
            const CaptionClassInfo &stClass = stInfo.astClassInfo[uiClass];
            strAll += (uiClass == 0 ? "" : " | ") + Get_Name(stClass.ausName, stClass.uiNameLength);
            for (uint32_t uiAlt = 0; uiAlt < stClass.uiAltNameNums; ++uiAlt)
                strAll += "+" + Get_Name(stClass.ausAltName[uiAlt], stClass.auiAltNameLength[uiAlt]);
            strAll += " " + std::to_string(stClass.uiFrameNums) + " @" +
                      std::to_string(stClass.llFirstFramePos) + "-" + std::to_string(stClass.llLastFramePos) +
                      " " + std::to_string(stClass.iMinPTS) + "-" + std::to_string(stClass.iMaxPTS);
        }
        return strAll;
    }

    /** The same without places and times. */
    static std::string Get_Counts()
    {
        std::string strAll;
        const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        for (uint32_t uiClass = 0; uiClass < stInfo.uiClassNums; ++uiClass) {
            const CaptionClassInfo &stClass = stInfo.astClassInfo[uiClass];
            strAll += (uiClass == 0 ? "" : " ") + Get_Name(stClass.ausName, stClass.uiNameLength);
            for (uint32_t uiAlt = 0; uiAlt < stClass.uiAltNameNums; ++uiAlt)
                strAll += "+" + Get_Name(stClass.ausAltName[uiAlt], stClass.auiAltNameLength[uiAlt]);
            strAll += ":" + std::to_string(stClass.uiFrameNums);
        }
        return strAll;
    }

    /** @return the texts of all frames, each with its start: "1000 Hello|2000 World". */
    std::string Read_Texts()
    {
        std::string strAll;
        for (const TestFrame &stFrame : Read_All())
            strAll += (strAll.empty() ? "" : "|") + std::to_string(stFrame.iStart) + " " + stFrame.strText;
        return strAll;
    }

    /** @return what so many calls give; a call without a frame gives one without a text, on stream 9. */
    std::vector<TestFrame> Call_Often(int iCalls)
    {
        std::vector<TestFrame> vecFrames;
        for (int iCall = 0; iCall < iCalls; ++iCall) {
            TestFrame stFrame;
            vecFrames.push_back(Read_Frame(&stFrame) ? stFrame : TestFrame{9, 0, 0, ""});
        }
        return vecFrames;
    }

    /** From now on the bytes asked of the file are counted. */
    void Count_Reads()
    {
        m_llBytesRead = 0;
        zyr_host_setFileHook(
            [](int iCall, uint32_t, int32_t iReal, void *pvBytes) {
                if (iCall == ZYR_HOST_READ) *static_cast<int64_t *>(pvBytes) += iReal;
                return iReal;
            },
            &m_llBytesRead);
    }

    int64_t m_llBytesRead = 0;

private:
    static std::string Get_Name(const uint16_t *pusName, uint32_t uiUnits)
    {
        std::string strName;
        for (uint32_t uiUnit = 0; uiUnit < uiUnits; ++uiUnit) strName += static_cast<char>(pusName[uiUnit]);
        return strName.empty() ? "-" : strName;
    }
};
