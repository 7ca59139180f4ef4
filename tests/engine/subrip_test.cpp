#include "support/engine_fixture.h"

namespace
{

std::string Entry(const std::string &strBody, const char *pszTimes = "00:00:01,000 --> 00:00:02,500")
{
    return std::string("1\r\n") + pszTimes + "\r\n" + strBody + "\r\n\r\n";
}

/** Every rule of the text must hold wherever a refill falls, and in every encoding. */
class SubRipText : public EngineTest, public testing::WithParamInterface<std::tuple<uint32_t, TestEncoding>>
{
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        Read_InChunks(std::get<0>(GetParam()));
    }
};

INSTANTIATE_TEST_SUITE_P(ReadsAndEncodings, SubRipText,
                         testing::Combine(testing::Values(0u, 1u, 2u, 3u, 5u, 7u, 511u),
                                          testing::Values(E_ANSI, E_UTF16LE, E_UTF16BE, E_UTF8)));

TEST_P(SubRipText, BlanksTagsAndEntities)
{
    static constexpr struct {
        const char *pszWhy, *pszBody, *pszExpected;
    } astCases[] = {
        {"two lines", "Hello\r\nWorld", "Hello\nWorld"},
        {"a run of blanks and tabs is one blank", "a  \t b", "a b"},
        {"blanks at the start and end of a line go", "  a  \r\n\t b", "a\nb"},
        {"blanks on both sides of a tag are two runs", "a <b> b", "a  b"},
        {"a known tag changes style, not text", "<b>x</b><FONT color=red>y</font>", "xy"},
        {"an unknown tag is dropped", "<zz>x", "x"},
        {"a tag may span lines", "a<font\r\ncolor=red>b", "ab"},
        {"a tag that begins inside another gives the first one back", "1 <a <b>x", "1 <a x"},
        {"two brackets give one back", "<<b>x", "<x"},
        {"a tag without an end swallows the rest", "a < b", "a"},
        {"br ends the line", "a<br>b<BR/>c</br>d", "a\nbc\nd"},
        {"an empty line is not closed", "<br><br>a<br><br>b<br>", "a\nb"},
        {"entities", "&amp;&lt;b&gt;&quot;&nbsp;&#65;", "&<b>\" A"},
        {"an entity may end at a blank or a line end", "a&amp b&lt\r\nc", "a& b<\nc"},
        {"a decoded blank is not folded", "a &nbsp; b", "a   b"},
        {"an upper-case letter ends the entity", "&AMP;&Eacute;", "&AMP;&Eacute;"},
        {"an ampersand starts afresh", "&am&amp;&&lt;", "&am&&<"},
        {"twelve units are no entity", "&abcdefghijkl;&abcdefghijk", "&abcdefghijkl;&abcdefghijk"},
        {"a number sign belongs behind the ampersand", "&a#;&#;&#x41;", "&a#;&#;&#x41;"},
        {"a tag ends an entity", "&am<b>p;", "&amp;"},
        {"a CR alone is dropped with a complaint", "a\rb", "ab"},
        {"a line feed alone is a character", "a\nb", "a\nb"},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszWhy);
        const std::string strFile = Encode(Entry(stCase.pszBody), std::get<1>(GetParam()));
        EXPECT_EQ(Read_FirstText(".srt", strFile), stCase.pszExpected);
    }
}

TEST_P(SubRipText, CharactersOfEveryLength)
{
    if (std::get<1>(GetParam()) == E_ANSI) return;
    const std::string strText = "\xC3\xA9\xED\x95\x9C \xE2\x82\xAC\xEA\xB8\x80 z\xC2\xA9";
    EXPECT_EQ(Read_FirstText(".srt", Encode(Entry(strText + "\r\n" + strText), std::get<1>(GetParam()))),
              strText + "\n" + strText);
}

TEST_P(SubRipText, LongTextsWrapAlike)
{
    std::string strText;
    for (int iWord = 0; iWord < 60; ++iWord)
        strText += std::string(static_cast<size_t>(iWord % 9 + 1), 'a') + ' ';
    const std::string strFile = Encode(Entry(strText), std::get<1>(GetParam()));
    std::string strLong = Read_FirstText(".srt", strFile);
    EXPECT_EQ(std::count(strLong.begin(), strLong.end(), '\n'), 5);
    for (size_t uiBegin = 0, uiEnd = 0; uiEnd != std::string::npos; uiBegin = uiEnd + 1) {
        uiEnd = strLong.find('\n', uiBegin);
        EXPECT_LE((uiEnd == std::string::npos ? strLong.size() : uiEnd) - uiBegin, 64u);
    }
    std::replace(strLong.begin(), strLong.end(), '\n', ' ');
    EXPECT_EQ(strLong, strText.substr(0, strLong.size())) << "wrapping loses or adds something";
}

class SubRip : public EngineTest
{
};

TEST_F(SubRip, TimesAreNumbersInOrder)
{
    static constexpr struct {
        const char *pszTimes;
        int32_t iStart, iEnd;
        size_t uiComplaints;
    } astCases[] = {
        {"01:02:03,004 --> 01:02:04,005", 3723004, 3724005, 0},
        {"00:00:01.5 --> 00:00:02.25", 1005, 2025, 0},
        {"0 0 1 0/0 0 2 0", 1000, 2000, 0},
        {"00:00:01,000 --> 00:00:02,000 X1:1 X2:2 Y1:3 Y2:4", 1000, 2000, 1},
        {"00:01,000 --> 00:02,000", 60000, 7200000, 1},
        {"00:00:00,4294967297 --> 99999:0:0,0", 1, static_cast<int32_t>(99999u * 3600000u), 0},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszTimes);
        TestFrame stFrame;
        ASSERT_EQ(Open(".srt", Entry("x", stCase.pszTimes)), 0u);
        ASSERT_TRUE(Read_Frame(&stFrame));
        EXPECT_EQ(stFrame.iStart, stCase.iStart);
        EXPECT_EQ(stFrame.iEnd, stCase.iEnd);
        EXPECT_EQ(Count_Log("SUBRIP PTS FORMAT is BAD!"), stCase.uiComplaints);
    }
}

TEST_F(SubRip, TimeLineBeyondThreeHundredUnitsIsNotLookedAt)
{
    const std::string strPadding(280, ' ');
    ASSERT_EQ(Open(".srt", Entry("x", ("0:0:1,0 0:0:2,0" + strPadding + "5      7").c_str())), 0u);
    TestFrame stFrame;
    ASSERT_TRUE(Read_Frame(&stFrame));
    EXPECT_EQ(stFrame, (TestFrame{0, 1000, 2000, "x"}));
    EXPECT_EQ(Count_Log("Number Argument = [9]"), 1u)
        << "the ninth number stands before unit 300, the tenth behind";
}

TEST_F(SubRip, WhereEntriesBeginAndEnd)
{
    static const std::string strTimes = "00:00:01,000 --> 00:00:02,000\r\n";
    static const struct {
        const char *pszWhy;
        std::string strFile;
        std::vector<TestFrame> vecFrames;
    } astCases[] = {
        {"the last entry needs no empty line",
         "1\r\n" + strTimes + "a\r\n\r\n2\r\n" + strTimes + "b",
         {{0, 1000, 2000, "a"}, {0, 1000, 2000, "b"}}},
        {"junk before the number is skipped",
         "\r\n\r\nab-c7\r\n" + strTimes + "a\r\n\r\n",
         {{0, 1000, 2000, "a"}}},
        {"no text",
         "1\r\n" + strTimes + "\r\n2\r\n" + strTimes + "b\r\n\r\n",
         {{0, 1000, 2000, ""}, {0, 1000, 2000, "b"}}},
        {"a time line cut by the end gives nothing", "1\r\n00:00:01,000", {}},
        {"a number and its line end alone give an empty frame", "1\r\n", {{0, 0, 0, ""}}},
        {"a number line and an empty line give an empty frame",
         "1\r\n\r\n2\r\n" + strTimes + "b",
         {{0, 0, 0, ""}, {0, 1000, 2000, "b"}}},
        {"nothing but text", "no digits here\r\n", {}},
        {"out of order stays so",
         Entry("b", "0:0:9,0 0:0:10,0") + Entry("a", "0:0:1,0 0:0:2,0"),
         {{0, 9000, 10000, "b"}, {0, 1000, 2000, "a"}}},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszWhy);
        ASSERT_EQ(Open(".srt", stCase.strFile), 0u);
        EXPECT_EQ(Read_All(), stCase.vecFrames);
        const size_t uiBefore = m_vecLog.size();
        EXPECT_TRUE(Read_All().empty()) << "the end stays the end";
        EXPECT_EQ(m_vecLog.size() - uiBefore, 2u) << "the reader and the parser say so, the pump does not";
    }
}

TEST_F(SubRip, UnknownTagsShowWhenAsked)
{
    ASSERT_EQ(Open(".srt", Entry("<zz>x<b>y") + Entry("<zz>x")), 0u);
    QUIBCAPTPARS_Set_ParsingOption(1);
    EXPECT_EQ(Read_All()[0].strText, "<zz>xy");
}

/** Entries at 10, 20 .. 90 s, told apart by their text. */
std::string Nine_Entries()
{
    std::string strFile;
    for (char cEntry = '1'; cEntry <= '9'; ++cEntry)
        strFile +=
            Entry({cEntry}, (std::string("00:00:") + cEntry + "0,000 --> 00:00:" + cEntry + "5,000").c_str());
    return strFile;
}

TEST_F(SubRip, SeekLeavesTheLastEntryThatHasBegun)
{
    static constexpr struct {
        int iFramesBefore;
        uint32_t uiTarget;
        char cNext;
    } astCases[] = {
        {0, 0, '1'},     {0, 1, '1'},     {0, 9999, '1'},  {0, 10000, '1'}, {0, 19999, '1'},
        {0, 20000, '2'}, {0, 55000, '5'}, {4, 45000, '4'}, {4, 50000, '5'}, {4, 85000, '8'},
        {4, 40000, '4'}, {4, 39999, '3'}, {9, 5000, '1'},  {9, 70000, '7'}, {3, 0xFFFFFFFF, '9'},
        {9, 0, '1'},     {5, 51000, '5'}, {5, 60000, '6'},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(testing::Message() << stCase.iFramesBefore << " frames, then " << stCase.uiTarget);
        ASSERT_EQ(Open(".srt", Nine_Entries()), 0u);
        TestFrame stFrame;
        for (int iFrame = 0; iFrame < stCase.iFramesBefore; ++iFrame) ASSERT_TRUE(Read_Frame(&stFrame));
        ASSERT_EQ(zyrSubtitle_seek(stCase.uiTarget), 0u);
        ASSERT_TRUE(Read_Frame(&stFrame));
        EXPECT_EQ(stFrame.strText, std::string(1, stCase.cNext));
    }
}

TEST_F(SubRip, FramesAfterAnySeekAreATailOfTheFile)
{
    std::string strFile;
    for (int iEntry = 1; iEntry < 3000; ++iEntry)
        strFile += Entry("entry " + std::to_string(iEntry),
                         ("0:0:" + std::to_string(iEntry) + ",0 --> 0:0:0,0").c_str());
    ASSERT_EQ(Open(".srt", strFile), 0u);
    const std::vector<TestFrame> vecAll = Read_All();
    ASSERT_EQ(vecAll.size(), 2999u);
    uint32_t uiRandom = 1;
    for (int iSeek = 0; iSeek < 60; ++iSeek) {
        uiRandom = uiRandom * 1664525 + 1013904223;
        const uint32_t uiTarget = uiRandom % 3200000;
        ASSERT_EQ(zyrSubtitle_seek(uiTarget), 0u);
        TestFrame stFrame;
        ASSERT_TRUE(Read_Frame(&stFrame));
        const size_t uiExpected = std::clamp<size_t>(uiTarget / 1000, 1, 2999);
        EXPECT_EQ(stFrame, vecAll[uiExpected - 1]) << uiTarget;
        for (int iMore = 0; iMore < 3 && Read_Frame(&stFrame); ++iMore)
            EXPECT_EQ(stFrame, vecAll[uiExpected + static_cast<size_t>(iMore)]);
    }
}

} // namespace
