/* What the SAMI tests share: files made of SYNC blocks, and the classes of an open file as text. */
#pragma once

#include "format/sami/sami_index.h"
#include "record/parser_state.h"
#include "support/engine_fixture.h"

/** One SYNC block. */
inline std::string Sync(int64_t llTime, const std::string &strClass, const std::string &strText = "")
{
    return "<SYNC Start=" + std::to_string(llTime) + "><P Class=" + strClass + ">" + strText + "\r\n";
}

/** Blocks of one class, 10 ms apart. */
inline std::string Syncs(const std::string &strClass, uint32_t uiNums, uint32_t uiFirstTime = 0)
{
    std::string strAll;
    for (uint32_t uiBlock = 0; uiBlock < uiNums; ++uiBlock)
        strAll += Sync(uiFirstTime + 10 * uiBlock, strClass, strClass + std::to_string(uiBlock));
    return strAll;
}

class SamiTest : public EngineTest
{
protected:
    void Open_File(const std::string &strFile) { ASSERT_EQ(Open(".smi", strFile), 0u) << strFile; }

    static void Select(const std::vector<uint32_t> &vecClasses)
    {
        ASSERT_EQ(zyrSubtitle_selectClass(static_cast<int32_t>(vecClasses.size()), vecClasses.data()), 0u);
    }

    /** Let the header's own call scan the open file from a place on: no small class is folded into another.
     */
    static void Scan_Again(int32_t iPlace = 0)
    {
        pstQuibCaptionParserInfo->uiCurrStream = 0;
        ASSERT_EQ(QuibCaptionParser_Init_CaptionStreamVariables(TRACK_GetFileHandleOfSubtitleData()), 1);
        pstQuibCaptionParserInfo->astStreamInfo[0].iStreamBufIndex = iPlace;
        ASSERT_EQ(HeaderParser_SAMI(TRACK_GetFileHandleOfSubtitleData()), 1);
    }

    /** @return class that has a name, or ZYR_CLASS_MAX. */
    static uint32_t Find_Class(const char *pszName)
    {
        uint32_t uiClass = 0;
        while (uiClass < ZYR_CLASS_MAX && Get_Names(uiClass) != pszName) ++uiClass;
        return uiClass;
    }

    /** @return "KRCC+ENCC:3 -:1": names, frames */
    static std::string Get_Counts()
    {
        std::string strAll;
        for (uint32_t uiClass = 0; uiClass < pstQuibCaptionParserInfo->uiClassNums; ++uiClass)
            strAll += (uiClass == 0 ? "" : " ") + Get_Names(uiClass) + ":" +
                      std::to_string(pstQuibCaptionParserInfo->astClassInfo[uiClass].uiFrameNums);
        return strAll;
    }

    /** @return "KRCC+ENCC:3 -:1 1000-3000 5-5 @10-80 @0-20": the same, then the times and places of each:
     * smallest and largest, first and last */
    static std::string Get_Classes()
    {
        std::string strTimes, strPlaces;
        for (uint32_t uiClass = 0; uiClass < pstQuibCaptionParserInfo->uiClassNums; ++uiClass) {
            const CaptionClassInfo &stClass = pstQuibCaptionParserInfo->astClassInfo[uiClass];
            strTimes += " " + std::to_string(stClass.iMinPTS) + "-" + std::to_string(stClass.iMaxPTS);
            strPlaces +=
                " @" + std::to_string(stClass.llFirstFramePos) + "-" + std::to_string(stClass.llLastFramePos);
        }
        return Get_Counts() + strTimes + strPlaces;
    }

    /** @return "X5@0 -6@20 ": each entry of the index; 7 = no class */
    static std::string Get_Entries()
    {
        std::string strAll;
        for (uint32_t uiFrame = 0; uiFrame < s_uiFrameInfoNums; ++uiFrame) {
            const SamiFrameInfo &stFrame = s_pstFrameInfoArray[uiFrame];
            strAll += (stFrame.uiClassIndex < pstQuibCaptionParserInfo->uiClassNums
                           ? Get_Names(stFrame.uiClassIndex)
                           : std::to_string(stFrame.uiClassIndex)) +
                      std::to_string(stFrame.iPTS) + "@" + std::to_string(stFrame.llFilePos) + " ";
        }
        return strAll;
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
    static std::string Get_Names(uint32_t uiClass)
    {
        const CaptionClassInfo &stClass = pstQuibCaptionParserInfo->astClassInfo[uiClass];
        std::string strNames = Get_Name(stClass.ausName, stClass.uiNameLength);
        for (uint32_t uiAlt = 0; uiAlt < stClass.uiAltNameNums; ++uiAlt)
            strNames += "+" + Get_Name(stClass.ausAltName[uiAlt], stClass.auiAltNameLength[uiAlt]);
        return strNames;
    }

    static std::string Get_Name(const uint16_t *pusName, uint32_t uiUnits)
    {
        const std::string strName(pusName, pusName + uiUnits);
        return strName.empty() ? "-" : strName;
    }
};
