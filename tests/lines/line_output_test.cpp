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
        {"of blanks for more than a line, the last begins no line", Entry("a<br>" + Repeat("&#9;", 65) + "<br>b"), "1000-2000 a|" + Repeat(" ", 64) + "|b"},
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

/** Lines of one moment, six to each of up to five classes. */
std::string Moment(const std::vector<std::string> &vecLines)
{
    std::string strFile;
    for (size_t uiLine = 0; uiLine < vecLines.size(); ++uiLine)
        strFile +=
            (uiLine % 6 != 0 ? "<br>" : "<SYNC Start=1000><P Class=C" + std::to_string(uiLine / 6) + ">") +
            vecLines[uiLine];
    return strFile;
}

TEST_F(LineOutput, MergedTextEndsWithItsRoom)
{
    const auto fnWide = [](size_t uiNums) { return Repeat("한", uiNums); };
    const auto fnDouble = [](size_t uiNums) { return Repeat("\xB0\xA1", uiNums); };
    // 15 full lines take 1934 bytes, in UTF-16 1948; ten in UTF-8 take 1929. 2046 is all the room there is.
    // clang-format off
    const struct {
        const char *pszWhy;
        TestEncoding eEncoding;
        size_t uiFullLines;               // of 64 characters of several bytes
        std::vector<std::string> vecMore; // lines behind them
        uint32_t uiBytes, uiLines;        // of the text
        std::string strEnd;               // of it
        size_t uiTold = 0;                // streams that are told to have no room
    } CASES[] = {
        {"a pair in the last two bytes", E_ANSI, 15, {"a" + fnDouble(55) + "b", "y", "", "z"}, 2046, 16, "\xA1\xB0\xA1", 2},
        {"a pair that does not fit", E_ANSI, 15, {fnDouble(56), "y"}, 2045, 16, "\xA1\xB0\xA1", 1},
        {"a newline, and no pair behind it", E_ANSI, 15, {"aaa" + fnDouble(53), "y", "z"}, 2045, 17, "\xA1\n", 1},
        {"single bytes, many at a step", E_ANSI, 15, {Repeat("x", 64), Repeat("x", 64)}, 2045, 17, Repeat("x", 45)},
        {"a line that just fits", E_UTF16LE, 15, {fnWide(48), "y", "z"}, 2046, 16, "\x5C\xD5"},
        {"a line that does not fit", E_UTF16LE, 15, {fnWide(49), "y"}, 1950, 15, {"\n\0", 2}},
        {"a newline and one unit", E_UTF16LE, 15, {fnWide(46), "y"}, 2046, 17, {"\n\0y\0", 4}},
        {"a newline alone does not go in", E_UTF16LE, 15, {fnWide(47), "y", "z"}, 2044, 16, "\x5C\xD5"},
        {"a newline in the last byte", E_UTF8, 10, {fnWide(38) + "a", "y", "z"}, 2046, 11, "한a\n"},
        {"a byte too long: cleared, but a line", E_UTF8, 10, {fnWide(38) + "aa", "y"}, 1932, 12, "한\n\ny"},
        {"units that would fit if all were ASCII", E_UTF8, 10, {Repeat("a", 58), "y"}, 1990, 12, "a\ny"},
        {"one more than that", E_UTF8, 10, {Repeat("a", 59), "y"}, 1930, 10, "한\n"},
    };
    // clang-format on
    for (const auto &stCase : CASES) {
        SCOPED_TRACE(stCase.pszWhy);
        std::vector<std::string> vecLines(stCase.uiFullLines,
                                          stCase.eEncoding == E_ANSI ? fnDouble(64) : fnWide(64));
        vecLines.insert(vecLines.end(), stCase.vecMore.begin(), stCase.vecMore.end());
        ASSERT_EQ(Open(".smi", Encode(Moment(vecLines), stCase.eEncoding)), 0u);
        ASSERT_EQ(QUIB_CAPTION_ParsingProcessEx(), 2);
        const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        const std::string strText(stInfo.aucOutText, stInfo.aucOutText + ZYR_OUT_TEXT_BYTES);
        EXPECT_EQ(stInfo.uiOutTextLength, stCase.uiBytes + 2) << "the closing zeros are counted";
        EXPECT_EQ(stInfo.uiOutLineNums, stCase.uiLines);
        EXPECT_TRUE(strText.substr(0, stCase.uiBytes).ends_with(stCase.strEnd));
        EXPECT_EQ(strText.find_first_not_of('\0', stCase.uiBytes), std::string::npos);
        EXPECT_EQ(stInfo.aucClassName[0], 0) << "what stands behind the text is not overwritten";
        EXPECT_EQ(Count_Log("TextLength:" + std::to_string(stCase.uiBytes)), stCase.uiTold);
    }
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
        {"surrogate pairs", {0xD800, 0xDC00, 0xDBFF, 0xDFFF}, 16, 8, "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        {"the ends of each length",
         {0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFF},
         24,
         17,
         "\x7F\u0080\u07FF\u0800\xED\x9F\xBF\uE000\uFFFF"},
        {"half a pair", {0xD800, 0x41, 0xDC00, 0xDFFF, 0xDBFF}, 16, 13, "\uFFFDA\uFFFD\uFFFD\uFFFD"},
        {"the zero byte needs room", {0x41, 0x42}, 2, 0, "A"},
        {"a character is never cut", {0x41, 0x800}, 4, 0, "A"},
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
