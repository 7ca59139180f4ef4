// Files and calls that a plain reading of the formats' rules would let write past a buffer, loop or crash.
// Each case names the guard that it stands for.

#include "support/engine_fixture.h"

#include "lines/line_output.h"
#include "markup/tag_command.h"
#include "pump/parser_table.h"
#include "record/parser_state.h"

namespace
{

class Hostile : public EngineTest
{
};

TEST_F(Hostile, EmptiedLinesGiveTheirRoomBack)
{
    EXPECT_EQ(Read_FirstText(".srt", Entry(Repeat("&#9;<br>", 15361) + "end")), "end");
}

TEST_F(Hostile, LastLineOfAFullFrameIsNotWritten)
{
    // The words behind the six lengths belong to nobody here; the sanitizer build watches them.
    EXPECT_EQ(Read_FirstText(".srt", Entry("1<br>2<br>3<br>4<br>5<br>6<br> &nbsp;")), "1\n2\n3\n4\n5\n6");
    EXPECT_EQ(pstQuibCaptionParserInfo->uiLineIndex, 6u);
}

TEST_F(Hostile, BareLineFeedsDoNotFillTheConvertBuffer)
{
    EXPECT_EQ(Play(".srt", Repeat("1\n00:00:01,000 --> 00:00:02,000\nHello\n\n", 5000)), "")
        << "without CR LF the time line never ends";
}

TEST_F(Hostile, BlanksAreHandedOverLikeOtherUnits)
{
    // Each zero unit makes the next blank count again; nothing is printed, but all of it goes through the
    // buffer.
    const std::string strBlankZero(std::string(" \0", 2));
    EXPECT_EQ(Read_FirstText(".srt", Entry("a" + Repeat(strBlankZero, 305) + "b")), "a\nb");
    EXPECT_EQ(Read_FirstText(".srt", Entry(Repeat(strBlankZero, 305))), "");
    for (int iBefore = 295; iBefore < 302; ++iBefore)
        EXPECT_EQ(Read_FirstText(".srt", Entry(Repeat("x<s>", 6) + Repeat("x ", iBefore / 2) + "&nbsp;" +
                                               Repeat(strBlankZero, 305)))
                      .substr(0, 7),
                  "xxxxxxx");
}

TEST_F(Hostile, TagsAndEntitiesWithoutEnd)
{
    const std::string strLong(600, 'a');
    EXPECT_EQ(Read_FirstText(".srt", Entry("<" + strLong + ">x")), "x");
    EXPECT_EQ(Read_FirstText(".srt", Entry("<" + strLong + "<b>x")).size(), 384u + 5)
        << "500 units are given back, six lines hold 384";
    EXPECT_EQ(Read_FirstText(".srt", Entry("&" + strLong)).substr(0, 13), "&aaaaaaaaaaaa");
    EXPECT_EQ(Read_FirstText(".srt", Entry(Repeat("<a", 20000))).size(), 384u + 5);
    EXPECT_EQ(Read_FirstText(".srt", Entry(Repeat("&a", 20000))).size(), 384u + 5);
}

TEST_F(Hostile, NumbersWrap)
{
    EXPECT_EQ(Play(".srt", Entry("x", Repeat("9", 290) + ":1:1,1 1:1:1,1")), "!-3538999-3660000 x");
    EXPECT_EQ(Play(".srt", Entry("x", Repeat("7 ", 140))), "!25627007-25627007 x");
    EXPECT_EQ(Count_Log("Number Argument = [140]"), 1u);
}

/** A read that tells of other bytes than it was asked for. */
int32_t Lie_About_Read(int iCall, uint32_t uiAsked, int32_t iReal, void *pvLie)
{
    int32_t &iLie = *static_cast<int32_t *>(pvLie);
    if (iCall != ZYR_HOST_READ) return iReal;
    if (iLie > 0 && iLie < 1000) return static_cast<int32_t>(uiAsked) / iLie++; // less each time
    return iLie;
}

TEST_F(Hostile, ReadsThatLie)
{
    for (int32_t iLie :
         {static_cast<int32_t>(STREAM_BUF_BYTES) + 1, 0x7FFFFFFF, INT32_MIN, -1, -1111, 0, 2}) {
        SCOPED_TRACE(iLie);
        ASSERT_EQ(Open(".srt", Repeat(Entry("Hello"), 9000)), 0u);
        EXPECT_EQ(Next(), "1000-2000 Hello");
        zyr_host_setFileHook(Lie_About_Read, &iLie);
        Play_Calls(20000);
        zyrSubtitle_seek(500);
        zyrSubtitle_seek(0xFFFFFFFF);
        Next();
        zyr_host_setFileHook(nullptr, nullptr);
    }
}

/** The lower calls, in any order that a host may find. @return the formats' results, -1 each in the end. */
std::string Call_AllLower()
{
    std::string strResults;
    for (const CaptionParser &stFormat : CaptionParserTable) {
        if (stFormat.pfFrameParser == nullptr) continue;
        for (const int32_t iResult : {stFormat.pfHeaderParser(nullptr), stFormat.pfFrameParser(),
                                      stFormat.pfSeek(0, 1, 0, nullptr), stFormat.pfSeek(5, 1, 0, nullptr)})
            strResults += std::to_string(iResult);
        strResults += ' ';
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
    return strResults;
}

TEST_F(Hostile, LowerCallsWithoutARecord)
{
    const std::string REFUSED = Repeat("-1-1-1-1 ", 4);
    EXPECT_EQ(Call_AllLower(), REFUSED);
    EXPECT_EQ(QUIB_CAPTION_Open(), 1);
    Call_AllLower();
    // Behind the last stream's buffers stand the header's values: as good as a buffer, if taken for one.
    ASSERT_EQ(Open(".SUB", "[DELAY]4000,[COLF]&HFFFFFF,[SIZE]18\r\n[SUBTITLE]\r\n0"), 0u);
    pstQuibCaptionParserInfo->uiCurrStream = ZYR_STREAM_MAX;
    EXPECT_EQ(Call_AllLower(), REFUSED) << "no stream is chosen";
    pstQuibCaptionParserInfo->uiCurrStream = 0;
    QuibCaptionParser_Destroy_MemoryBuffers();
    EXPECT_EQ(Call_AllLower(), REFUSED);
    EXPECT_EQ(QuibCaptionParser_Create_MemoryBuffers(0, 6, 65536), -1);
    EXPECT_EQ(QuibCaptionParser_Create_MemoryBuffers(1000000, 1000000, 1000000), 1);
    Call_AllLower();
    for (uint32_t uiNth = 1; uiNth < 8; ++uiNth) {
        zyr_host_failAllocation(uiNth, 1);
        QUIB_CAPTION_Open();
        zyr_host_failAllocation(0, 0);
        Call_AllLower();
    }
}

} // namespace
