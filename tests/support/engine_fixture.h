/* What the engine's tests share: a subtitle out of memory, what is played of it as one text, the log. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/invariants.h"
#include "zyr/zyr_host.h"

inline void Check_Invariants()
{
    const char *const pszBroken = Find_BrokenInvariant();
    EXPECT_EQ(pszBroken, nullptr) << pszBroken;
}

#include "support/checked_calls.h"

/** Encodings that a test file can be written in; pure ASCII text in E_ANSI is detected as a code page. */
enum TestEncoding { E_ANSI, E_UTF16LE, E_UTF16BE, E_UTF8 };

constexpr TestEncoding ENCODINGS[] = {E_ANSI, E_UTF16LE, E_UTF16BE, E_UTF8};

/** Bytes that a read gives at most: a refill falls everywhere. 0 = all that were asked for. */
constexpr uint32_t READ_SIZES[] = {0, 1, 2, 3, 5, 7, 511};

inline std::string Repeat(std::string_view strPiece, size_t uiTimes)
{
    std::string strAll;
    for (size_t uiTime = 0; uiTime < uiTimes; ++uiTime) strAll += strPiece;
    return strAll;
}

/** A SubRip entry. */
inline std::string Entry(const std::string &strBody, const std::string &strTimes = "0:0:1,0 0:0:2,0")
{
    return "1\r\n" + strTimes + "\r\n" + strBody + "\r\n\r\n";
}

/** Write UTF-8 text (characters up to U+FFFF) in an encoding, with its byte order mark; E_ANSI copies the
 * bytes. */
inline std::string Encode(std::string_view strText, TestEncoding eEncoding)
{
    if (eEncoding == E_ANSI) return std::string(strText);
    if (eEncoding == E_UTF8) return "\xEF\xBB\xBF" + std::string(strText);
    std::string strOut = eEncoding == E_UTF16LE ? "\xFF\xFE" : "\xFE\xFF";
    for (size_t uiPos = 0; uiPos < strText.size();) {
        const auto fnByte = [&](size_t uiAt) {
            return static_cast<uint32_t>(static_cast<uint8_t>(strText[uiAt]));
        };
        uint32_t uiUnit = fnByte(uiPos);
        const size_t uiMore = uiUnit < 0x80 ? 0 : uiUnit < 0xE0 ? 1 : 2;
        if (uiMore > 0) uiUnit &= uiMore == 1 ? 0x1F : 0x0F;
        for (size_t uiNext = 1; uiNext <= uiMore; ++uiNext)
            uiUnit = (uiUnit << 6) | (fnByte(uiPos + uiNext) & 0x3F);
        uiPos += uiMore + 1;
        const char cHigh = static_cast<char>(uiUnit >> 8);
        const char cLow = static_cast<char>(uiUnit & 0xFF);
        strOut += eEncoding == E_UTF16LE ? cLow : cHigh;
        strOut += eEncoding == E_UTF16LE ? cHigh : cLow;
    }
    return strOut;
}

/** Output text as UTF-8, whatever the character set (code-page bytes are left as they are). */
inline std::string To_Utf8(std::string_view strText, uint32_t uiCharset)
{
    if (uiCharset != E_OUTPUT_CHARSET_UTF16) return std::string(strText);
    std::string strOut;
    for (size_t uiPos = 0; uiPos + 1 < strText.size(); uiPos += 2) {
        const uint16_t usUnit = static_cast<uint16_t>(static_cast<uint8_t>(strText[uiPos]) |
                                                      (static_cast<uint8_t>(strText[uiPos + 1]) << 8));
        uint8_t aucChar[8] = {};
        const int32_t iBytes = _UnicodeToUTF8(&usUnit, 1, aucChar, sizeof(aucChar));
        strOut.append(reinterpret_cast<const char *>(aucChar), static_cast<size_t>(iBytes));
    }
    return strOut;
}

struct TestFrame {
    uint32_t uiStream;
    int32_t iStart;
    int32_t iEnd;
    std::string strText; // UTF-8, or code-page bytes; lines joined by newlines
};

/** A file, and what is played of it from its beginning to its end. */
struct PlayCase {
    const char *pszWhy;
    std::string strFile;
    std::string strFrames; // as EngineTest::Play() gives them
};

inline std::vector<uint16_t> Units(std::string_view strText)
{
    std::vector<uint16_t> vecUnits;
    for (const char cUnit : strText) vecUnits.push_back(static_cast<uint8_t>(cUnit));
    return vecUnits;
}

/** @return what a function of some units and their number gives. */
template <typename Function>
auto Ask(Function fnAsked, std::string_view strText)
{
    const std::vector<uint16_t> vecUnits = Units(strText);
    return fnAsked(vecUnits.data(), static_cast<int32_t>(vecUnits.size()));
}

class EngineTest : public testing::Test
{
protected:
    void SetUp() override
    {
        zyr_host_reset();
        zyr_host_setLogSink(Take_Log, this);
    }

    void TearDown() override
    {
        zyr_host_failAllocation(0, 0);
        zyr_host_setFileHook(nullptr, nullptr);
        zyrSubtitle_close();
        EXPECT_EQ(zyr_host_liveBytes(), 0u) << "memory was left behind";
        EXPECT_EQ(zyr_host_openFiles(), 0u) << "a file was left open";
        QUIBCAPT_SetFontColor(0xFFFF);
        zyr_host_reset();
    }

    /** Let a file exist in memory and open it as the subtitle of a movie. @param[in] pszEnding  such as
     * ".srt" */
    uint32_t Open(const char *pszEnding, std::string strFile, int32_t iOption = 0)
    {
        zyrSubtitle_close();
        m_strFile = std::move(strFile);
        m_strName = std::string("zyrhost:film") + pszEnding;
        m_vecLog.clear();
        zyr_host_mapMemory(m_strName.c_str(), m_strFile.data(), static_cast<uint32_t>(m_strFile.size()));
        const uint32_t uiResult = zyrSubtitle_open("zyrhost:film.avi", iOption);
        zyr_host_mapMemory(m_strName.c_str(), nullptr, 0);
        return uiResult;
    }

    /** @return whether there was a frame. */
    bool Read_Frame(TestFrame *pstFrame)
    {
        uint32_t uiLines = 0;
        uint32_t uiBytes = 0;
        uint8_t *pucText = nullptr;
        if (zyrSubtitle_getFrame(&pstFrame->uiStream, &pstFrame->iStart, &pstFrame->iEnd, &uiLines, &uiBytes,
                                 &pucText) != 0)
            return false;
        const std::string_view strText(reinterpret_cast<const char *>(pucText), uiBytes);
        EXPECT_EQ(pucText[uiBytes], 0);
        EXPECT_EQ(pucText[uiBytes + 1], 0);
        pstFrame->strText = To_Utf8(strText, zyrSubtitle_getOutputTextCharacterSet());
        if (!pstFrame->strText.empty()) {
            EXPECT_LE(uiLines, 1 + std::count(pstFrame->strText.begin(), pstFrame->strText.end(), '\n'));
        }
        return true;
    }

    /**
     * @return what the next call gives: "1000-2000 line|line". "!" stands before it for each message about
     * the text, "2:" for any other stream than the first, "open" for an end that nobody tells. Without a
     * frame: "none".
     */
    std::string Next()
    {
        const size_t uiBefore = m_vecLog.size();
        TestFrame stFrame;
        const bool bFrame = Read_Frame(&stFrame);
        const auto itNew = m_vecLog.begin() + static_cast<ptrdiff_t>(uiBefore);
        std::string strSeen(static_cast<size_t>(std::count_if(itNew, m_vecLog.end(), Is_AboutText)), '!');
        if (!bFrame) return strSeen + "none";
        if (stFrame.uiStream != 0) strSeen += std::to_string(stFrame.uiStream) + ":";
        std::replace(stFrame.strText.begin(), stFrame.strText.end(), '\n', '|');
        return strSeen + std::to_string(stFrame.iStart) + "-" +
               (stFrame.iEnd == INT32_MAX ? "open" : std::to_string(stFrame.iEnd)) + " " + stFrame.strText;
    }

    /** @return all that Next() gives up to the end: "1000-2000 a; 2000-open b". */
    std::string Play()
    {
        std::string strAll;
        for (std::string strNext = Next(); !strNext.ends_with("none"); strNext = Next())
            strAll += (strAll.empty() ? "" : "; ") + strNext;
        return strAll;
    }

    std::string Play(const char *pszEnding, const std::string &strFile)
    {
        return Open(pszEnding, strFile) == 0 ? Play() : "(not opened)";
    }

    /** @return what so many calls give, those without a frame included. */
    std::string Play_Calls(size_t uiCalls)
    {
        std::string strAll;
        for (size_t uiCall = 0; uiCall < uiCalls; ++uiCall) strAll += Next() + "; ";
        return strAll;
    }

    /** Frames up to the end. */
    size_t Count_Frames()
    {
        size_t uiFrames = 0;
        for (TestFrame stFrame; Read_Frame(&stFrame);) ++uiFrames;
        return uiFrames;
    }

    /** Each file must give its frames in every encoding and wherever a refill falls. */
    void Expect_Played(const char *pszEnding, std::span<const PlayCase> astCases)
    {
        for (const PlayCase &stCase : astCases)
            for (const TestEncoding eEncoding : ENCODINGS)
                for (const uint32_t uiReadSize : READ_SIZES) {
                    SCOPED_TRACE(testing::Message() << stCase.pszWhy << ": encoding " << eEncoding
                                                    << ", reads of " << uiReadSize);
                    Read_InChunks(uiReadSize);
                    EXPECT_EQ(Play(pszEnding, Encode(stCase.strFile, eEncoding)), stCase.strFrames);
                }
        Read_InChunks(0);
    }

    /** @return text of the first frame of a file, or a note that there is none. */
    std::string Read_FirstText(const char *pszEnding, const std::string &strFile)
    {
        TestFrame stFrame;
        if (Open(pszEnding, strFile) != 0) return "(not opened)";
        return Read_Frame(&stFrame) ? stFrame.strText : "(no frame)";
    }

    /** From now on a read gives at most so many bytes; 0 = all that were asked for. */
    void Read_InChunks(uint32_t uiBytes)
    {
        m_uiChunk = uiBytes;
        zyr_host_setFileHook(uiBytes == 0 ? nullptr : Shorten_Read, this);
    }

    /** @return log lines that hold a text. */
    size_t Count_Log(std::string_view strPart) const
    {
        return static_cast<size_t>(
            std::count_if(m_vecLog.begin(), m_vecLog.end(), [&](const std::string &strLine) {
                return strLine.find(strPart) != std::string::npos;
            }));
    }

    std::vector<std::string> m_vecLog;

private:
    /** Whether a message is about the text, and not about reading it. */
    static bool Is_AboutText(const std::string &strLine)
    {
        return strLine.find("Get_CharCode()") == std::string::npos &&
               strLine.find("Failed in caption file parsing") == std::string::npos;
    }

    static void Take_Log(int /*iPriority*/, const char *pszTag, const char *pszText, void *pvTest)
    {
        static_cast<EngineTest *>(pvTest)->m_vecLog.push_back(std::string(pszTag == nullptr ? "" : pszTag) +
                                                              ":" + pszText);
    }

    static int32_t Shorten_Read(int iCall, uint32_t uiAsked, int32_t iReal, void *pvTest)
    {
        const uint32_t uiChunk = static_cast<EngineTest *>(pvTest)->m_uiChunk;
        return iCall == ZYR_HOST_READ && uiAsked > uiChunk ? static_cast<int32_t>(uiChunk) : iReal;
    }

    std::string m_strFile;
    std::string m_strName;
    uint32_t m_uiChunk = 0;
};
