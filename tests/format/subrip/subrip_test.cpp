// SubRip files, played through the public calls.

#include "support/engine_fixture.h"

namespace
{

class SubRip : public EngineTest
{
};

TEST_F(SubRip, Texts)
{
    const std::string strLine = Repeat("word ", 12) + "word";
    const std::string LAST = "1\r\n0:0:1,0 0:0:2,0\r\n"; // an entry that the file's end cuts
    static const PlayCase CASES[] = {
        {"two lines", Entry("Hello\r\nWorld"), "1000-2000 Hello|World"},
        {"characters of every length", Entry("é한 €글 z©\r\né한"), "1000-2000 é한 €글 z©|é한"},
        {"a run of blanks and tabs is one blank", Entry("a  \t b"), "1000-2000 a b"},
        {"blanks at the start and end of a line go", Entry("  a  \r\n\t b"), "1000-2000 a|b"},
        {"blanks on both sides of a tag are two runs", Entry("a <b> b"), "1000-2000 a  b"},
        {"a known tag changes style, not text", Entry("<b>x</b><FONT color=red>y</font>"), "1000-2000 xy"},
        {"an unknown tag is dropped", Entry("<zz>x"), "1000-2000 x"},
        {"a tag may span lines", Entry("a<font\r\ncolor=red>b"), "1000-2000 ab"},
        {"a tag that begins inside another gives the first one back", Entry("1 <a <b>x"), "1000-2000 1 <a x"},
        {"two brackets give one back", Entry("<<b>x"), "1000-2000 <x"},
        {"a tag without an end swallows the rest", Entry("a < b"), "1000-2000 a"},
        {"br ends the line", Entry("a<br>b<BR/>c</br>d"), "1000-2000 a|bc|d"},
        {"an empty line is not closed", Entry("<br><br>a<br><br>b<br>"), "1000-2000 a|b"},
        {"entities", Entry("&amp;&lt;b&gt;&quot;&nbsp;&#65;"), "1000-2000 &<b>\" A"},
        {"an entity may end at a blank or a line end", Entry("a&amp b&lt\r\nc"), "1000-2000 a& b<|c"},
        {"a decoded blank is not folded", Entry("a &nbsp; b"), "1000-2000 a   b"},
        {"an upper-case letter ends the entity", Entry("&AMP;&Eacute;"), "1000-2000 &AMP;&Eacute;"},
        {"an ampersand starts afresh", Entry("&am&amp;&&lt;"), "1000-2000 &am&&<"},
        {"eleven units may become an entity, which the file's end cuts", LAST + "a&bcdefghijk",
         "1000-2000 a"},
        {"twelve are none", LAST + "a&bcdefghijkl", "1000-2000 a&bcdefghijkl"},
        {"nor are thirteen", Entry("&abcdefghijkl;&abcdefg"), "1000-2000 &abcdefghijkl;&abcdefg"},
        {"a number sign belongs behind the ampersand", Entry("&a#;&#;&#x41;"), "1000-2000 &a#;&#;&#x41;"},
        {"a tag ends an entity", Entry("&am<b>p;"), "1000-2000 &amp;"},
        {"a CR alone is dropped with a complaint", Entry("a\rb"), "!1000-2000 ab"},
        {"a line feed alone is a character", Entry("a\nb"), "1000-2000 a|b"},
        {"lines are wrapped", Entry(Repeat("word ", size_t{6} * 13)),
         "!1000-2000 " + Repeat(strLine + "|", 5) + strLine},
    };
    Expect_Played(".srt", CASES);
}

TEST_F(SubRip, TimesAreNumbersInOrder)
{
    static const PlayCase CASES[] = {
        {"usual", Entry("x", "01:02:03,004 --> 01:02:04,005"), "3723004-3724005 x"},
        {"the last number is milliseconds", Entry("x", "00:00:01.5 --> 00:00:02.25"), "1005-2025 x"},
        {"any separators", Entry("x", "0 0 1 0/0 0 2 0"), "1000-2000 x"},
        {"more numbers", Entry("x", "00:00:01,000 --> 00:00:02,000 X1:1 X2:2"), "!1000-2000 x"},
        {"fewer numbers", Entry("x", "00:01,000 --> 00:02,000"), "!60000-7200000 x"},
        {"numbers wrap", Entry("x", "00:00:00,4294967297 --> 99999:0:0,0"), "1--780852864 x"},
    };
    Expect_Played(".srt", CASES);
}

TEST_F(SubRip, TimeLineBeyondThreeHundredUnitsIsNotLookedAt)
{
    const std::string strTimes = "0:0:1,0 0:0:2,0" + Repeat(" ", 280) + "5      7";
    EXPECT_EQ(Play(".srt", Entry("x", strTimes)), "!1000-2000 x");
    EXPECT_EQ(Count_Log("Number Argument = [9]"), 1u)
        << "the ninth number stands before unit 300, the tenth behind";
}

TEST_F(SubRip, WhereEntriesBeginAndEnd)
{
    static const PlayCase CASES[] = {
        {"the last entry needs no empty line", Entry("a") + "2\r\n0:0:1,0 0:0:2,0\r\nb",
         "1000-2000 a; 1000-2000 b"},
        {"junk before the number is skipped", "\r\n\r\nab-c" + Entry("a"), "1000-2000 a"},
        {"no text", "1\r\n0:0:1,0 0:0:2,0\r\n\r\n" + Entry("b"), "1000-2000 ; 1000-2000 b"},
        {"a time line cut by the end gives nothing", "1\r\n00:00:01,000", ""},
        {"a number and its line end alone give an empty frame", "1\r\n", "0-0 "},
        {"a number line and an empty line give an empty frame", "1\r\n\r\n" + Entry("b"),
         "0-0 ; 1000-2000 b"},
        {"nothing but text", "no digits here\r\n", ""},
        {"out of order stays so", Entry("b", "0:0:9,0 0:0:10,0") + Entry("a"), "9000-10000 b; 1000-2000 a"},
    };
    Expect_Played(".srt", CASES);
}

TEST_F(SubRip, UnknownTagsShowWhenAsked)
{
    ASSERT_EQ(Open(".srt", Entry("<zz>x<sync start=z><b>y")), 0u);
    QUIBCAPTPARS_Set_ParsingOption(1);
    EXPECT_EQ(Next(), "!1000-2000 <zz>xy") << "a malformed one is not unknown";
}

TEST_F(SubRip, SeekLeavesTheLastEntryThatHasBegun)
{
    std::string strFile; // entries at 10, 20 .. 90 s, told apart by their text
    for (char cEntry = '1'; cEntry <= '9'; ++cEntry)
        strFile += Entry({cEntry}, std::string("0:0:") + cEntry + "0,0 --> 0:0:99,0");
    const auto ENTRY_BYTES = static_cast<int64_t>(strFile.size() / 9);
    static constexpr struct {
        uint32_t uiFramesBefore;
        uint32_t uiTarget;
        char cNext;
    } CASES[] = {
        {0, 0, '1'},     {0, 1, '1'},     {0, 9999, '1'},  {0, 10000, '1'}, {0, 19999, '1'},
        {0, 20000, '2'}, {0, 55000, '5'}, {4, 45000, '4'}, {4, 50000, '5'}, {4, 85000, '8'},
        {4, 40000, '4'}, {4, 39999, '3'}, {9, 5000, '1'},  {9, 70000, '7'}, {3, 0xFFFFFFFF, '9'},
        {9, 0, '1'},     {5, 51000, '5'}, {5, 60000, '6'},
    };
    for (const auto &stCase : CASES) {
        SCOPED_TRACE(testing::Message() << stCase.uiFramesBefore << " frames, then " << stCase.uiTarget);
        ASSERT_EQ(Open(".srt", strFile), 0u);
        Play_Calls(stCase.uiFramesBefore);
        ASSERT_EQ(zyrSubtitle_seek(stCase.uiTarget), 0u);
        const int32_t iFound = stCase.cNext - '0';
        EXPECT_EQ(pstQuibCaptionParserInfo->llCurrFilePos, (iFound - 1) * ENTRY_BYTES);
        EXPECT_EQ(pstQuibCaptionParserInfo->iCurrPTS, stCase.uiTarget < 10000 ? 0 : iFound * 10000)
            << "0 where no entry was passed";
        EXPECT_EQ(Next(), std::string(1, stCase.cNext) + "0000-99000 " + stCase.cNext);
    }
    // 1 and 3 scan from where the stream begins, 0 and 2 from where the reader stands.
    for (const uint32_t uiBackward : {0u, 1u, 2u, 3u})
        for (const uint32_t uiFirst : {1u, 2u}) {
            ASSERT_EQ(Open(".srt", strFile), 0u);
            Play_Calls(5);
            pstQuibCaptionParserInfo->llStartFilePos = (uiFirst - 1) * ENTRY_BYTES;
            EXPECT_EQ(Seek_SubRip(5000, uiBackward, 0, pstQuibCaptionParserInfo), 1);
            EXPECT_EQ(pstQuibCaptionParserInfo->iCurrPTS, uiBackward % 2 == 1 ? 0 : 50000);
            EXPECT_EQ(Next()[0], uiBackward % 2 == 1 ? '0' + static_cast<char>(uiFirst) : '5') << uiBackward;
        }
}

TEST_F(SubRip, ReadingGoesOnWhereAReadHasFailed)
{
    const std::string strFirst = Entry("a");
    for (const bool bSeek : {false, true}) {
        Read_InChunks(static_cast<uint32_t>(strFirst.size()));
        ASSERT_EQ(Open(".srt", strFirst + Entry("b", "0:0:3,0 0:0:4,0")), 0u);
        EXPECT_EQ(Next(), "1000-2000 a");
        zyr_host_failFile(ZYR_HOST_READ, 1, -5, 0);
        EXPECT_EQ(Next(), "!none");
        if (bSeek) {
            ASSERT_EQ(zyrSubtitle_seek(3500), 0u) << "from where the read failed on";
        }
        EXPECT_EQ(Next(), "3000-4000 b");
        EXPECT_EQ(pstQuibCaptionParserInfo->astStreamState[0].llCurrFilePos,
                  static_cast<int64_t>(strFirst.size()));
    }
}

} // namespace
