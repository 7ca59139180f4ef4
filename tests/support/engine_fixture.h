/* What the engine's tests share: a subtitle out of memory, its frames as values, the log as text. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "zyr/quib_caption.h"
#include "zyr/zyr_host.h"
#include "zyr/zyr_subtitle.h"

/** Encodings that a test file can be written in; pure ASCII text in E_ANSI is detected as a code page. */
enum TestEncoding { E_ANSI, E_UTF16LE, E_UTF16BE, E_UTF8 };

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
    bool operator==(const TestFrame &) const = default;
};

inline void PrintTo(const TestFrame &stFrame, std::ostream *pstOut)
{
    *pstOut << stFrame.uiStream << ": " << stFrame.iStart << "-" << stFrame.iEnd << " \"" << stFrame.strText
            << '"';
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

    std::vector<TestFrame> Read_All()
    {
        std::vector<TestFrame> vecFrames;
        TestFrame stFrame;
        while (Read_Frame(&stFrame)) vecFrames.push_back(stFrame);
        return vecFrames;
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
    static void Take_Log(int /*iPriority*/, const char *pszTag, const char *pszText, void *pvTest)
    {
        static_cast<EngineTest *>(pvTest)->m_vecLog.push_back(std::string(pszTag == nullptr ? "" : pszTag) +
                                                              ":" + pszText);
    }

    static int32_t Shorten_Read(int iCall, uint32_t uiAsked, int32_t iReal, void *pvTest)
    {
        constexpr int READ_CALL = 1;
        const uint32_t uiChunk = static_cast<EngineTest *>(pvTest)->m_uiChunk;
        return iCall == READ_CALL && uiAsked > uiChunk ? static_cast<int32_t>(uiChunk) : iReal;
    }

    std::string m_strFile;
    std::string m_strName;
    uint32_t m_uiChunk = 0;
};
