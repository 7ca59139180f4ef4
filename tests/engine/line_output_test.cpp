#include "support/engine_fixture.h"

#include "caption/line_output.h"
#include "caption/parser_state.h"

namespace
{

std::string Srt(const std::string &strBody)
{
    return "1\r\n0:0:1,0 0:0:2,0\r\n" + strBody + "\r\n\r\n";
}

std::string Text(size_t uiUnits, char cUnit = 'x')
{
    return std::string(uiUnits, cUnit);
}

class LineOutput : public EngineTest
{
};

TEST_F(LineOutput, Wraps)
{
    static const struct {
        const char *pszWhy;
        std::string strBody, strExpected;
    } astCases[] = {
        {"a long word is cut", Text(70), Text(64) + "\n" + Text(6)},
        {"a word moves as a whole", "aaa " + Text(62, 'b'), "aaa\n" + Text(62, 'b')},
        {"a full line is left as it is", Text(64), Text(64)},
        {"a blank behind a full line goes", Text(64) + " b", Text(64) + "\nb"},
        {"only the last word moves", Text(30) + " " + Text(30) + " " + Text(10),
         Text(30) + " " + Text(30) + "\n" + Text(10)},
        {"a word of exactly a line behind another", "a " + Text(64), "a\n" + Text(64)},
        {"a cut word is a word: the break behind it closes the line", Text(65) + "<br>b",
         Text(64) + "\nx\nb"},
        {"a tab at the cut begins the next line as a blank", Text(64) + "&#9;b", Text(64) + "\n b"},
        {"a seventh line is dropped", Text(6 * 64) + "y",
         Text(64) + "\n" + Text(64) + "\n" + Text(64) + "\n" + Text(64) + "\n" + Text(64) + "\n" + Text(64)},
        {"lines of blanks do not count", "a<br>&#9;<br>&nbsp;<br>b", "a\nb"},
        {"trailing blanks go at a break", "a &#9;<br>b", "a\nb"},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszWhy);
        EXPECT_EQ(Read_FirstText(".srt", Srt(stCase.strBody)), stCase.strExpected);
        EXPECT_EQ(Read_FirstText(".srt", Encode(Srt(stCase.strBody), E_UTF16BE)), stCase.strExpected);
    }
    Read_FirstText(".srt", Srt(Text(6 * 64 + 1)));
    EXPECT_EQ(Count_Log("Line Count is MAXIMUM COUNT!"), 1u);
}

TEST_F(LineOutput, CodePageBytesPassThrough)
{
    // Double-byte characters count as one unit; a trail byte may look like a bracket.
    std::string strHangul;
    for (int iUnit = 0; iUnit < 66; ++iUnit) strHangul += "\xB0<";
    const std::string strText = Read_FirstText(".srt", Srt(strHangul + "A"));
    EXPECT_EQ(zyrSubtitle_getOutputTextCharacterSet(), 1u);
    EXPECT_EQ(strText, strHangul.substr(0, 128) + "\n" + strHangul.substr(128) + "A");

    ASSERT_EQ(Open(".srt", Srt("\xE9t\xE9"), 1), 0u);
    TestFrame stFrame;
    ASSERT_TRUE(Read_Frame(&stFrame));
    EXPECT_EQ(stFrame.strText, std::string("\0\xE9t\0\xE9", 5))
        << "a high single byte is a unit with bit 7 set";
}

TEST_F(LineOutput, OutputTextIsBounded)
{
    // 6 lines of 64 three-byte characters fit; the bytes between the text and the end are zero.
    std::string strWide;
    for (int iUnit = 0; iUnit < 384; ++iUnit) strWide += "\xED\x95\x9C";
    ASSERT_EQ(Open(".srt", Encode(Srt(strWide) + Srt("a"), E_UTF8)), 0u);
    TestFrame stFrame;
    ASSERT_TRUE(Read_Frame(&stFrame));
    EXPECT_EQ(stFrame.strText.size(), 384u * 3 + 5);
    ASSERT_TRUE(Read_Frame(&stFrame));
    const uint8_t *const pucText = pstQuibCaptionParserInfo->aucOutText;
    EXPECT_EQ(std::count(pucText, pucText + ZYR_OUT_TEXT_BYTES, 0), ZYR_OUT_TEXT_BYTES - 1)
        << "the text before is cleared away";
}

TEST_F(LineOutput, UnicodeToUtf8)
{
    static const struct {
        const char *pszWhy;
        std::vector<uint16_t> vecUnits;
        int32_t iSize, iResult;
        std::string strExpected;
    } astCases[] = {
        {"one to three bytes", {0x41, 0xE9, 0xD55C}, 16, 6, "A\xC3\xA9\xED\x95\x9C"},
        {"a surrogate pair", {0xD83D, 0xDE00}, 16, 4, "\xF0\x9F\x98\x80"},
        {"half a pair",
         {0xD83D, 0x41, 0xDE00},
         16,
         7,
         "\xEF\xBF\xBD"
         "A\xEF\xBF\xBD"},
        {"the zero byte needs room", {0x41, 0x42}, 2, 0, "A"},
        {"a character is never cut", {0x41, 0xD55C}, 4, 0, "A"},
        {"just enough room", {0x41, 0xD55C}, 5, 4, "A\xED\x95\x9C"},
        {"nothing", {}, 1, 0, ""},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszWhy);
        std::vector<uint8_t> vecTarget(static_cast<size_t>(stCase.iSize), 0xAA);
        EXPECT_EQ(_UnicodeToUTF8(stCase.vecUnits.data(), static_cast<int32_t>(stCase.vecUnits.size()),
                                 vecTarget.data(), stCase.iSize),
                  stCase.iResult);
        EXPECT_STREQ(reinterpret_cast<const char *>(vecTarget.data()), stCase.strExpected.c_str());
    }
    EXPECT_EQ(_UnicodeToUTF8(nullptr, 0, nullptr, 0), 0);
}

TEST_F(LineOutput, SettingsSeedEveryFrame)
{
    EXPECT_EQ(QUIBCAPT_SetFontHeight(20), -3);
    EXPECT_EQ(QUIBCAPT_SetFontHeight(16), 1);
    QUIBCAPT_SetFontColor(0x12345678);
    QUIBCAPT_SetFontEdgeColor(7);
    EXPECT_EQ(QUIBCAPT_GetFontColor(), 0x12345678u);
    EXPECT_EQ(QUIBCAPT_GetFontEdgeColor(), 7u);
    Read_FirstText(".srt", Srt("<font color=red>x"));
    EXPECT_EQ(pstQuibCaptionParserInfo->usFontColor, 0xF800);
    Read_FirstText(".srt", Srt("<font color=red>x</font>"));
    EXPECT_EQ(pstQuibCaptionParserInfo->usFontColor, 0x5678) << "the low half of the setting";
    EXPECT_EQ(pstQuibCaptionParserInfo->uiFontSize, 16u);
}

TEST_F(LineOutput, MergedOutputCountsItsZeros)
{
    ASSERT_EQ(Open(".srt", Srt("ab") + Srt("c")), 0u);
    EXPECT_EQ(QUIB_CAPTION_ParsingProcessEx(), 2);
    EXPECT_EQ(pstQuibCaptionParserInfo->uiOutTextLength, 4u);
    EXPECT_STREQ(reinterpret_cast<const char *>(pstQuibCaptionParserInfo->aucOutText), "ab");
    EXPECT_EQ(pstQuibCaptionParserInfo->iOutEndPTS, 2000);
    EXPECT_EQ(Count_Log("GetFramePTS[0]:1000, 2000"), 1u);
    EXPECT_EQ(QUIB_CAPTION_ParsingProcessEx(), 2);
    EXPECT_EQ(QUIB_CAPTION_ParsingProcessEx(), -2);
}

} // namespace
