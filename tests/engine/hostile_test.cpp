// Files and calls that a plain reading of the formats' rules would let write past a buffer, loop or crash.
// Each case names the guard that it stands for.

#include "support/engine_fixture.h"

#include "caption/line_output.h"
#include "caption/parser_state.h"
#include "caption/parser_table.h"
#include "parser/tag_command.h"

namespace
{

std::string Srt(const std::string &strBody)
{
    return "1\r\n0:0:1,0 0:0:2,0\r\n" + strBody + "\r\n\r\n";
}

std::string Repeat(const std::string &strPiece, int iTimes)
{
    std::string strAll;
    for (int iTime = 0; iTime < iTimes; ++iTime) strAll += strPiece;
    return strAll;
}

class Hostile : public EngineTest
{
};

TEST_F(Hostile, EmptiedLinesGiveTheirRoomBack)
{
    EXPECT_EQ(Read_FirstText(".srt", Srt(Repeat("&#9;<br>", 15361) + "end")), "end");
}

TEST_F(Hostile, LastLineOfAFullFrameIsNotWritten)
{
    // The words behind the six lengths belong to nobody here; the sanitizer build watches them.
    EXPECT_EQ(Read_FirstText(".srt", Srt("1<br>2<br>3<br>4<br>5<br>6<br> &nbsp;")), "1\n2\n3\n4\n5\n6");
    EXPECT_EQ(pstQuibCaptionParserInfo->uiLineIndex, 6u);
}

TEST_F(Hostile, BareLineFeedsDoNotFillTheConvertBuffer)
{
    EXPECT_EQ(Open(".srt", Repeat("1\n00:00:01,000 --> 00:00:02,000\nHello\n\n", 5000)), 0u);
    EXPECT_TRUE(Read_All().empty()) << "without CR LF the time line never ends";
}

TEST_F(Hostile, BlanksAreHandedOverLikeOtherUnits)
{
    // Each zero unit makes the next blank count again; nothing is printed, but all of it goes through the
    // buffer.
    const std::string strBlankZero(std::string(" \0", 2));
    EXPECT_EQ(Read_FirstText(".srt", Srt("a" + Repeat(strBlankZero, 305) + "b")), "a\nb");
    EXPECT_EQ(Read_FirstText(".srt", Srt(Repeat(strBlankZero, 305))), "");
    for (int iBefore = 295; iBefore < 302; ++iBefore)
        EXPECT_EQ(Read_FirstText(".srt", Srt(Repeat("x<s>", 6) + Repeat("x ", iBefore / 2) + "&nbsp;" +
                                             Repeat(strBlankZero, 305)))
                      .substr(0, 7),
                  "xxxxxxx");
}

TEST_F(Hostile, TagsAndEntitiesWithoutEnd)
{
    const std::string strLong(600, 'a');
    EXPECT_EQ(Read_FirstText(".srt", Srt("<" + strLong + ">x")), "x");
    EXPECT_EQ(Read_FirstText(".srt", Srt("<" + strLong + "<b>x")).size(), 384u + 5)
        << "500 units are given back, six lines hold 384";
    EXPECT_EQ(Read_FirstText(".srt", Srt("&" + strLong)).substr(0, 13), "&aaaaaaaaaaaa");
    EXPECT_EQ(Read_FirstText(".srt", Srt(Repeat("<a", 20000))).size(), 384u + 5);
    EXPECT_EQ(Read_FirstText(".srt", Srt(Repeat("&a", 20000))).size(), 384u + 5);
}

TEST_F(Hostile, NumbersWrap)
{
    TestFrame stFrame;
    ASSERT_EQ(Open(".srt", "1\r\n" + Repeat("9", 290) + ":1:1,1 1:1:1,1\r\nx\r\n\r\n"), 0u);
    EXPECT_TRUE(Read_Frame(&stFrame));
    ASSERT_EQ(Open(".srt", "1\r\n" + Repeat("7 ", 140) + "\r\nx\r\n\r\n"), 0u);
    EXPECT_TRUE(Read_Frame(&stFrame));
    EXPECT_EQ(Count_Log("Number Argument = [140]"), 1u);
}

/** A read that tells of other bytes than it was asked for. */
int32_t Lie_About_Read(int iCall, uint32_t uiAsked, int32_t iReal, void *pvLie)
{
    constexpr int READ_CALL = 1;
    int32_t &iLie = *static_cast<int32_t *>(pvLie);
    if (iCall != READ_CALL) return iReal;
    if (iLie > 0 && iLie < 1000) return static_cast<int32_t>(uiAsked) / iLie++; // less each time
    return iLie;
}

TEST_F(Hostile, ReadsThatLie)
{
    for (int32_t iLie : {static_cast<int32_t>(STREAM_BUF_BYTES) + 1, 0x7FFFFFFF, -1, -1111, 0, 2}) {
        SCOPED_TRACE(iLie);
        ASSERT_EQ(Open(".srt", Repeat(Srt("Hello"), 9000)), 0u);
        TestFrame stFrame;
        ASSERT_TRUE(Read_Frame(&stFrame));
        zyr_host_setFileHook(Lie_About_Read, &iLie);
        for (int iFrame = 0; iFrame < 20000; ++iFrame) Read_Frame(&stFrame);
        zyrSubtitle_seek(500);
        zyrSubtitle_seek(0xFFFFFFFF);
        Read_Frame(&stFrame);
        zyr_host_setFileHook(nullptr, nullptr);
    }
}

TEST_F(Hostile, LowerCallsWithoutARecord)
{
    const auto fnCall_All = [] {
        for (const CaptionParser &stFormat : CaptionParserTable) {
            if (stFormat.pfFrameParser == nullptr) continue;
            stFormat.pfHeaderParser(nullptr);
            stFormat.pfFrameParser();
            for (const uint32_t uiTarget : {0u, 5u}) stFormat.pfSeek(uiTarget, 1, 0, nullptr);
        }
        Convert_CaptionStringToBitmap();
        Display_LineBitmapDataToDisplayBuffer();
        Display_LineBitmapDataToDisplayBufferEx();
        QuibCaptionParser_Init_CaptionStreamVariables(nullptr);
        QuibCaptionParser_Destroy_SSA_MemoryBuffers();
        QUIB_CAPTION_ParsingProcess();
        QUIB_CAPTION_ParsingProcessEx();
        QUIB_CAPTION_PreParsingProcessEx(5);
        QUIB_CAPTION_SeekCaptionFrame(5);
        QUIBCAPT_Set_ClassType(0, 1);
        CAPTIONPARS_SAMI_GetNextFramePTS(7);
        CAPTIONPARS_SAMI_MergeUndefinedLanguage(0);
        CAPTIONPARS_SAMI_MergeMultiLanguages(0, 1);
        zyrSubtitleHandler_searchExternalSubtitle("zyrhost:film.avi", 0);
    };
    fnCall_All();
    EXPECT_EQ(FrameParser_SubRip(), -1);
    EXPECT_EQ(HeaderParser_SubRip(nullptr), -1);
    EXPECT_EQ(Seek_SubRip(5, 0, 0, nullptr), -1);
    EXPECT_EQ(QUIB_CAPTION_Open(), 1);
    fnCall_All();
    ASSERT_EQ(Open(".srt", Srt("x")), 0u);
    pstQuibCaptionParserInfo->uiCurrStream = ZYR_STREAM_MAX;
    EXPECT_EQ(FrameParser_SubRip(), -1) << "no stream is chosen";
    Convert_CaptionStringToBitmap();
    pstQuibCaptionParserInfo->uiCurrStream = 0;
    QuibCaptionParser_Destroy_MemoryBuffers();
    fnCall_All();
    EXPECT_EQ(QuibCaptionParser_Create_MemoryBuffers(0, 6, 65536), -1);
    EXPECT_EQ(QuibCaptionParser_Create_MemoryBuffers(1000000, 1000000, 1000000), 1);
    fnCall_All();
    for (uint32_t uiNth = 1; uiNth < 8; ++uiNth) {
        zyr_host_failAllocation(uiNth, 1);
        QUIB_CAPTION_Open();
        zyr_host_failAllocation(0, 0);
        fnCall_All();
    }
}

} // namespace
