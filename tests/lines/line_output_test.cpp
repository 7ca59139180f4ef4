#include "support/engine_fixture.h"

#include "lines/line_output.h"
#include "record/parser_state.h"

namespace
{

class LineOutput : public EngineTest
{
};

TEST_F(LineOutput, Wraps)
{
    const std::string FULL = Repeat("x", 64);
    // clang-format off
    const PlayCase CASES[] = {
        {"a long word is cut", Entry(FULL + "yyy"), "1000-2000 " + FULL + "|yyy"},
        {"a word moves as a whole", Entry("aaa " + FULL), "1000-2000 aaa|" + FULL},
        {"a full line is left as it is", Entry(FULL), "1000-2000 " + FULL},
        {"a blank behind a full line goes", Entry(FULL + " b"), "1000-2000 " + FULL + "|b"},
        {"only the last word moves", Entry("aa " + FULL.substr(5) + " bbb"), "1000-2000 aa " + FULL.substr(5) + "|bbb"},
        {"a cut word is a word: the break behind it closes the line", Entry(FULL + "x<br>b"), "1000-2000 " + FULL + "|x|b"},
        {"a tab at the cut begins the next line as a blank", Entry(FULL + "&#9;b"), "1000-2000 " + FULL + "| b"},
        {"a seventh line is dropped", Entry(Repeat(FULL, 6) + "y"), "!1000-2000 " + Repeat(FULL + "|", 5) + FULL},
        {"lines of blanks do not count", Entry("a<br>&#9;<br>&nbsp;<br>b"), "1000-2000 a|b"},
        {"trailing blanks go at a break", Entry("a &#9;<br>b"), "1000-2000 a|b"},
        {"six lines refuse another break", Entry("1<br>2<br>3<br>4<br>5<br>6<br>7<br>8"), "!1000-2000 1|2|3|4|5|6"},
    };
    // clang-format on
    Expect_Played(".srt", CASES);
    EXPECT_EQ(Count_Log("Line Count (6) is more than 6!"), 1u);
    Play(".srt", Entry(Repeat(FULL, 7)));
    EXPECT_EQ(Count_Log("Line Count is MAXIMUM COUNT!"), 1u);
}

TEST_F(LineOutput, CodePageBytesPassThrough)
{
    // Double-byte characters count as one unit; a trail byte may look like a bracket.
    EXPECT_EQ(Play(".srt", Entry(Repeat("\xB0<", 66) + "A")),
              "1000-2000 " + Repeat("\xB0<", 64) + "|" + Repeat("\xB0<", 2) + "A");
    EXPECT_EQ(zyrSubtitle_getOutputTextCharacterSet(), 1u);
    ASSERT_EQ(Open(".srt", Entry("\xE9t\xE9"), 1), 0u);
    EXPECT_EQ(Next(), std::string("1000-2000 \0\xE9t\0\xE9", 15))
        << "a high single byte has a zero before it";
}

TEST_F(LineOutput, OutputTextIsBounded)
{
    // 6 lines of 64 three-byte characters fit; the bytes between the text and the end are zero.
    ASSERT_EQ(Open(".srt", Encode(Entry(Repeat("한", 384)) + Entry("a"), E_UTF8)), 0u);
    TestFrame stFrame;
    ASSERT_TRUE(Read_Frame(&stFrame));
    EXPECT_EQ(stFrame.strText.size(), 384u * 3 + 5);
    EXPECT_EQ(Next(), "1000-2000 a");
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
        {"one to three bytes", {0x41, 0xE9, 0xD55C}, 16, 6, "Aé한"},
        {"a surrogate pair", {0xD83D, 0xDE00}, 16, 4, "\xF0\x9F\x98\x80"},
        {"half a pair", {0xD83D, 0x41, 0xDE00}, 16, 7, "\uFFFDA\uFFFD"},
        {"the zero byte needs room", {0x41, 0x42}, 2, 0, "A"},
        {"a character is never cut", {0x41, 0xD55C}, 4, 0, "A"},
        {"just enough room", {0x41, 0xD55C}, 5, 4, "A한"},
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
    Read_FirstText(".srt", Entry("<font color=red>x"));
    EXPECT_EQ(pstQuibCaptionParserInfo->usFontColor, 0xF800);
    Read_FirstText(".srt", Entry("<font color=red>x</font>"));
    EXPECT_EQ(pstQuibCaptionParserInfo->usFontColor, 0x5678) << "the low half of the setting";
    EXPECT_EQ(pstQuibCaptionParserInfo->uiFontSize, 16u);
}

TEST_F(LineOutput, MergedOutputCountsItsZeros)
{
    ASSERT_EQ(Open(".srt", Entry("ab") + Entry("c")), 0u);
    EXPECT_EQ(QUIB_CAPTION_ParsingProcessEx(), 2);
    EXPECT_EQ(pstQuibCaptionParserInfo->uiOutTextLength, 4u);
    EXPECT_STREQ(reinterpret_cast<const char *>(pstQuibCaptionParserInfo->aucOutText), "ab");
    EXPECT_EQ(pstQuibCaptionParserInfo->iOutEndPTS, 2000);
    EXPECT_EQ(Count_Log("GetFramePTS[0]:1000, 2000"), 1u);
    EXPECT_EQ(QUIB_CAPTION_ParsingProcessEx(), 2);
    EXPECT_EQ(QUIB_CAPTION_ParsingProcessEx(), -2);
}

} // namespace
