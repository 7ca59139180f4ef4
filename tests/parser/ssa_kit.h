/* What the tests of SSA share: lines of a file, and playing it. */
#pragma once

#include <cstdio>

#include "caption/frame_list.h"
#include "support/engine_fixture.h"

inline const std::string INFO = "[Script Info]\r\nTitle: My Film\r\n[v4 Styles]\r\n";
inline const std::string EVENTS = "[Events]\r\nFormat: Marked, Start, End\r\n";

/** A Style line; strRest are the 16 numbers behind the font's name. */
inline std::string Style(const std::string &strName, const std::string &strRest)
{
    return "Style: " + strName + ",Arial," + strRest + "\r\n";
}

inline const std::string DEFAULT_STYLE = Style("Default", "20,255,0,0,65280,0,0,0,0,0,2,0,0,0,0,0");

inline std::string Line(const std::string &strStart, const std::string &strText,
                        const std::string &strStyle = "None", const std::string &strEffect = "")
{
    return "Dialogue: Marked=0," + strStart + ",0:00:09.50," + strStyle + ",,0000,0000,0000," + strEffect +
           "," + strText + "\r\n";
}

inline std::string Second(uint32_t uiSecond, const std::string &strText)
{
    return Line("0:00:0" + std::to_string(uiSecond) + ".00", strText);
}

inline std::string Repeat(char cUnit, size_t uiNums)
{
    return std::string(uiNums, cUnit);
}

class SsaTest : public EngineTest
{
protected:
    bool Play(const std::string &strFile) { return Open(".ssa", strFile) == 0; }

    /** Texts of all frames from the first line on, or of those from where the reader stands. */
    std::string Read_Texts(bool bFromStart = true)
    {
        if (bFromStart) zyrSubtitle_seek(0);
        std::string strTexts;
        for (const TestFrame &stFrame : Read_All()) strTexts += stFrame.strText + "|";
        return strTexts;
    }

    /** The one line of a file that has the default style. */
    TestFrame Play_Line(const std::string &strLine)
    {
        TestFrame stFrame = {0, -1, -1, "(none)"};
        if (Play(INFO + DEFAULT_STYLE + EVENTS + strLine)) Read_Frame(&stFrame);
        return stFrame;
    }

    /** How the text looks in the end: mode, size, colour, outline colour, highlight. */
    static std::string Get_Look()
    {
        const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        char szLook[64];
        snprintf(szLook, sizeof(szLook), "%X %u %04X %X %u", stInfo.uiDisplayMode, stInfo.uiFontSize,
                 stInfo.usFontColor, stInfo.usOutlineColor, stInfo.uiHighlight);
        return szLook;
    }

    static const SSAFrameInfo &Get_Fields() { return pstQuibCaptionParserInfo->stSSAFrameInfo; }
};
