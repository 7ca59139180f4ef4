// SubViewer files, played through the public calls.

#include "support/engine_fixture.h"

namespace
{

using namespace std::string_literals;

int32_t Fail_Reads(int iCall, uint32_t /*uiAsked*/, int32_t iReal, void * /*pContext*/)
{
    return iCall == 1 ? -5 : iReal;
}

constexpr const char *OOPS = "() - OOPS!! ERROR!!";
constexpr const char *BAD_LINE_END = ">>>>> CR + LF is Bad! <<<<<";

class SubViewer : public EngineTest
{
protected:
    uint32_t Open(std::string strFile) { return EngineTest::Open(".SUB", std::move(strFile)); }

    /** @return the next frame as "start-end line|line", "none" without one. */
    std::string Next_Frame()
    {
        TestFrame stFrame;
        if (!Read_Frame(&stFrame)) return "none";
        std::replace(stFrame.strText.begin(), stFrame.strText.end(), '\n', '|');
        return std::to_string(stFrame.iStart) + "-" + std::to_string(stFrame.iEnd) + " " + stFrame.strText;
    }

    std::string All_Frames()
    {
        std::string strFrames;
        for (std::string strFrame = Next_Frame(); strFrame != "none"; strFrame = Next_Frame())
            strFrames.append(strFrame).append(";");
        return strFrames;
    }
};

constexpr int64_t REFUSED = -2;
const std::string HEADER = "[INFORMATION]\r\n[SUBTITLE]\r\n";
const std::string TIMES = "00:00:01.00,00:00:02.50\r\n";
const std::string GOOD = TIMES + "b\r\n\r\n";
#define END "\r\n\r\n"

struct FrameCase {
    const char *pszWhy;
    std::string strBody;
    std::string strFrames;
    uint32_t uiOops, uiBadLineEnds; // messages while the frames are read
};

// clang-format off
const FrameCase FRAME_CASES[] = {
    {"a frame", TIMES + "a" END, "1000-2500 a;", 0, 0},
    {"every place of a time", "12:34:56.78,98:76:54.32\r\na" END, "45296780-357414320 a;", 0, 0},
    {"no separators", "00000100,00000250\r\na" END, "1000-2500 a;", 0, 0},
    {"empty lines between frames", TIMES + "a" END "\r\n\r\n" + GOOD, "1000-2500 a;1000-2500 b;", 4, 0},
    {"a digit missing", "0:00:01.00,00:00:02.00\r\na" END + GOOD, "1000-2500 b;", 1, 0},
    {"a third time", "00:00:01.00,00:00:02.50,x\r\na" END + GOOD, "1000-2500 b;", 1, 0},
    {"a ninth digit", "00:00:01.000,00:00:02.50\r\na" END + GOOD, "1000-2500 b;", 1, 0},
    {"a colon out of place", "00:0:001.00,00:00:02.50" END + GOOD, "1000-2500 b;", 1, 0},
    {"a dot out of place", "00.00:01.00,00:00:02.50" END + GOOD, "1000-2500 b;", 1, 0},
    {"a start time only", "00:00:01.00\r\na" END + GOOD, "1000-2500 b;", 1, 0},
    {"a bad time line, and at once the frame's end", "00:00:01.00," END + GOOD, "1000-2500 b;", 1, 0},
    {"the end of the file in a bad frame", "00:00:01.00,00:00:02x\r\na", "1000-2 ;", 1, 0},
    {"the end of the file in a time line", "00:00:01.00,00:00:02.50", "", 0, 0},
    {"the end of the file in a text", TIMES + "a b", "1000-2500 a b;", 0, 0},
    {"the end of the file in a bracket", TIMES + "a[B", "1000-2500 a;", 0, 0},
    {"no text", TIMES + "\r\n", "1000-2500 ;", 0, 0},
    {"a break of either case", TIMES + "a[br]b[Br]c[BR]d" END, "1000-2500 a|b|c|d;", 0, 0},
    {"other brackets", TIMES + "a [Music] [b] [] [BR [B\r\nc" END, "1000-2500 a [Music] [b] [] [BR [B|c;", 0, 0},
    {"a bracket in a bracket", TIMES + "a[B[br]b" END, "1000-2500 a|[Bb;", 0, 0},
    {"a bracket that begins a line", TIMES + "[br]a" END, "1000-2500 [br]a;", 0, 0},
    {"blanks are folded", TIMES + "a \t  b\r\n c \t" END, "1000-2500 a b|c;", 0, 0},
    {"blanks given back are not", TIMES + "a[B  b" END, "1000-2500 a[B  b;", 0, 0},
    {"a lone CR", TIMES + "a\rb" END, "1000-2500 a|b;", 0, 1},
    {"bare LF", "00:00:01.00,00:00:02.50\na\nb\n\nc", "1000-2500 a|b||c;", 0, 3},
    {"more lines than there are", TIMES + "1[br]2[br]3[br]4[br]5[br]6[br] 7\r\n8" END, "1000-2500 1|2|3|4|5|6;", 0, 0},
};
// clang-format on

TEST_F(SubViewer, FramesInEveryEncodingAndReadSize)
{
    for (const uint32_t uiChunk : {0u, 1u, 2u, 3u, 5u, 7u, 511u}) {
        Read_InChunks(uiChunk);
        for (const FrameCase &stCase : FRAME_CASES) {
            for (const TestEncoding eEncoding : {E_ANSI, E_UTF16LE, E_UTF16BE, E_UTF8}) {
                SCOPED_TRACE(stCase.pszWhy + " "s + std::to_string(eEncoding) + " " +
                             std::to_string(uiChunk));
                ASSERT_EQ(Open(Encode(HEADER + stCase.strBody, eEncoding)), 0u);
                EXPECT_EQ(All_Frames(), stCase.strFrames);
                EXPECT_EQ(Count_Log(OOPS), stCase.uiOops);
                EXPECT_EQ(Count_Log(BAD_LINE_END), stCase.uiBadLineEnds);
                EXPECT_EQ(Next_Frame(), "none");
                EXPECT_EQ(Count_Log("Get_CharCode() - End of Caption File!"), 1u);
            }
        }
    }
}

TEST_F(SubViewer, HeaderValues)
{
    struct HeaderCase {
        const char *pszWhy;
        std::string strHeader; // SUBTITLE stands before it, a frame behind it
        uint32_t uiDelay, uiColf, uiSize;
        std::string strFont;
        uint32_t uiUnknown, uiFailed; // field names that the header parser complains of
    };
    // clang-format off
    static const HeaderCase astCases[] = {
        {"several on a line", "[COLF]&HFFFFFF,[STYLE]no,[SIZE]18,[FONT]Arial\r\n", 0, 0xFFFFFF, 18, "Arial", 0, 0},
        {"numbers", "[DELAY]12\n[SIZE]4294967297\r\n", 12, 0, 1, "", 0, 0},
        {"an empty number", "[DELAY]7\r\n[DELAY]\r\n", 0, 0, 0, "", 0, 0},
        {"no number", "[DELAY]1 5\r\n[SIZE]x\r\n", 0, 0, 0, "", 0, 0},
        {"lower case colour", "[COLF]&hff8000\r\n", 0, 0xFF8000, 0, "", 0, 0},
        {"no colours", "[COLF]&HFF8000 \r\n[COLF]FF8000\r\n[COLF]&HFF80G0\r\n", 0, 0, 0, "", 0, 0},
        {"unknown names", "[delay]x\r\n[SIZ]x\r\n[SIZES]x\r\n", 0, 0, 0, "", 3, 0},
        {"empty and foreign names", "[]x\r\n[\xC3\xA9]x\r\n", 0, 0, 0, "", 0, 2},
        {"a name begun again", "[DEL[SIZE]3\r\n", 0, 0, 3, "", 0, 0},
        {"a name cut by the line", "[SIZE\r\n]3\r\n[DELAY]4\r\n", 4, 0, 0, "", 0, 0},
        {"a digit inside a line", "x1 [SIZE]5\r\n", 0, 0, 5, "", 0, 0},
        {"a long font name", "[FONT]"s.append(600, 'f').append("\r\n"), 0, 0, 0, std::string(30, 'f'), 0, 0},
        {"a name of 499 units", "["s.append(499, 'n').append("]x\r\n[SIZE]6\r\n"), 0, 0, 6, "", 1, 0},
        {"a name of 600 units", "["s.append(600, 'n').append("]x\r\n[SIZE]6\r\n"), 0, 0, 6, "", 1, 0},
        {"blanks", "[CD TRACK] 1\r\n[END INFORMATION]\r\n[FONT] a b\r\n", 0, 0, 0, " a b", 0, 0},
    };
    // clang-format on
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszWhy);
        const std::string strHeader = HEADER + stCase.strHeader;
        ASSERT_EQ(Open(strHeader + TIMES + "a\r\n\r\n"), 0u);
        const SubViewerHeaderInfo &stInfo = pstQuibCaptionParserInfo->stSubViewerInfo;
        EXPECT_EQ(stInfo.uiDelay, stCase.uiDelay);
        EXPECT_EQ(stInfo.uiColf, stCase.uiColf);
        EXPECT_EQ(stInfo.uiSize, stCase.uiSize);
        EXPECT_EQ(std::string(stInfo.ausFontName, stInfo.ausFontName + stInfo.uiFontNameLength),
                  stCase.strFont);
        EXPECT_EQ(Count_Log("Unknown caption field!"), stCase.uiUnknown);
        EXPECT_EQ(Count_Log("Failed to parse the caption field!"), stCase.uiFailed);
        EXPECT_EQ(pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos,
                  static_cast<int64_t>(strHeader.size()));
        EXPECT_EQ(All_Frames(), "1000-2500 a;");
    }
}

TEST_F(SubViewer, WhereTheFramesBegin)
{
    static const struct {
        const char *pszWhy, *pszFile;
        int64_t llFirstFramePos; // REFUSED, or -1 without frames
        const char *pszFrames;
    } astCases[] = {
        {"no header", "00:00:01.00,00:00:02.50\r\na\r\n\r\n[SUBTITLE]\r\n", REFUSED, ""},
        {"SUBTITLE in lower case", "[subtitle]\r\n00:00:01.00,00:00:02.50\r\n", REFUSED, ""},
        {"no frames", "[SUBTITLE]\r\n[SIZE]18", -1, ""},
        {"a digit behind an unknown name", "[SUBTITLE]\r\n[XYZ]12\r\n", 17, "12-0 ;"},
        {"a digit behind a value", "[SUBTITLE]a,12\r\n", 12, "12-0 ;"},
        {"a digit behind dropped bytes",
         "\xEF\xBB\xBF[SUBTITLE]\r\n\x80\x80"
         "12\r\n",
         15, "12-0 ;"},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszWhy);
        const bool bRefused = stCase.llFirstFramePos == REFUSED;
        ASSERT_EQ(Open(stCase.pszFile), bRefused ? 1u : 0u);
        EXPECT_EQ(Count_Log("NO SUBTITLE field dectected!"), bRefused ? 1u : 0u);
        EXPECT_EQ(All_Frames(), stCase.pszFrames);
        if (bRefused) continue;
        EXPECT_EQ(pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos, stCase.llFirstFramePos);
    }
}

/** Frames at 1, 3, 5 s, a bad one, 9 s, and 11 s without an empty line behind it. */
const std::string SEEK_FILE = HEADER + "00:00:01.00,00:00:02.00\r\n[br]1\r\n\r\n"
                                       "00:00:03.00,00:00:04.00\r\n3[br]x\rx\r\n\r\n"
                                       "00:00:05.00,00:00:06.00\r\n5\r\n\r\n"
                                       "00:00:07,00:00:08.00\r\n7\r\n\r\n"
                                       "00:00:09.00,00:00:10.00\r\n9\r\n\r\n"
                                       "00:00:11.00,00:00:12.00\r\n11";

TEST_F(SubViewer, Seek)
{
    static const struct {
        const char *pszWhy;
        uint32_t uiRead; // frames read before the seek
        uint32_t uiTarget;
        const char *pszNext;
        int32_t iCurrPTS; // start of the frame scanned before the one found
        uint32_t uiOops;
    } astCases[] = {
        {"to the start", 3, 0, "1000-2000 [br]1", 0, 0},
        {"before the first frame", 2, 999, "1000-2000 [br]1", 0, 0},
        {"backward into a frame", 4, 3500, "3000-4000 3|x|x", 1000, 0},
        {"a bad frame follows: reading resumes at that one", 4, 5500, "9000-10000 9", 3000, 1},
        {"backward to a frame's start", 5, 3000, "3000-4000 3|x|x", 1000, 0},
        {"forward into a frame", 1, 3500, "3000-4000 3|x|x", 1000, 0},
        {"forward over a bad frame", 2, 9500, "9000-10000 9", 5000, 1},
        {"forward, the next frame is later", 1, 2000, "1000-2000 [br]1", 1000, 0},
        {"the last frame has no end: the one before it", 0, 20000, "9000-10000 9", 9000, 1},
        {"forward from the exhausted end", 9, 20000, "11000-12000 11", 11000, 0},
    };
    for (const TestEncoding eEncoding : {E_ANSI, E_UTF16LE, E_UTF16BE, E_UTF8}) {
        for (const auto &stCase : astCases) {
            SCOPED_TRACE(stCase.pszWhy + " "s + std::to_string(eEncoding));
            ASSERT_EQ(Open(Encode(SEEK_FILE, eEncoding)), 0u);
            for (uint32_t uiFrame = 0; uiFrame < stCase.uiRead; ++uiFrame) Next_Frame();
            m_vecLog.clear();
            EXPECT_EQ(zyrSubtitle_seek(stCase.uiTarget), 0u);
            EXPECT_EQ(Count_Log("Seek_SubViewer() - OOPS!! ERROR!!"), stCase.uiOops);
            EXPECT_EQ(pstQuibCaptionParserInfo->iCurrPTS, stCase.iCurrPTS);
            const std::string strNext = Next_Frame();
            EXPECT_EQ(strNext.substr(0, strNext.find('\r')), stCase.pszNext);
        }
    }
}

TEST_F(SubViewer, HostileFiles)
{
    static const std::string LONG_DIGITS(5000, '9');
    static const struct {
        const char *pszWhy;
        std::string strBody;
        size_t uiFrames, uiTextBytes; // of all frames together
        uint32_t uiOops, uiBadLineEnds;
    } astCases[] = {
        {"a megabyte of line feeds before a frame", std::string(1 << 18, '\n') + TIMES + "a\r\n\r\n", 1, 1, 0,
         0},
        {"line feeds where a time line is due", TIMES + "a\r\n\r\n" + std::string(1 << 18, '\n'), 1, 1,
         1 << 18, 0},
        {"line feeds in a text", TIMES + std::string(1 << 18, '\n'), 1, 6 + 5, 0, (1 << 17) - 1},
        {"thousands of digits in a time", LONG_DIGITS + "\r\n\r\n" + TIMES + "a\r\n\r\n", 1, 1, 1, 0},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszWhy);
        ASSERT_EQ(Open(HEADER + stCase.strBody), 0u);
        const std::string strFrames = All_Frames();
        EXPECT_EQ(std::count(strFrames.begin(), strFrames.end(), ';'),
                  static_cast<ptrdiff_t>(stCase.uiFrames));
        EXPECT_EQ(strFrames.size(), stCase.uiFrames * "1000-2500 ;"s.size() + stCase.uiTextBytes);
        EXPECT_EQ(Count_Log(OOPS), stCase.uiOops);
        EXPECT_EQ(Count_Log(BAD_LINE_END), stCase.uiBadLineEnds);
    }
}

TEST_F(SubViewer, BlankLinesLeaveTheTextBufferFree)
{
    std::string strBody = TIMES;
    for (uint32_t uiLine = 0; uiLine < 15361; ++uiLine) strBody += "\t\r\n";
    ASSERT_EQ(Open(HEADER + strBody + "end\r\n\r\n"), 0u);
    EXPECT_EQ(All_Frames(), "1000-2500 end;");
}

TEST_F(SubViewer, BracketsAtTheConvertBuffersEnd)
{
    for (uint32_t uiPlain = 290; uiPlain < 310; ++uiPlain) {
        SCOPED_TRACE(uiPlain);
        std::string strText = "[";
        strText.append(uiPlain, 'a').append("[[[B[bR[BRx[");
        ASSERT_EQ(Open(std::string(HEADER).append(TIMES).append(strText).append(END)), 0u);
        std::string strFrame = All_Frames();
        std::erase(strFrame, '|');
        EXPECT_EQ(strFrame, "1000-2500 " + strText + ";");
    }
}

TEST_F(SubViewer, NothingIsAllocatedPerFrame)
{
    ASSERT_EQ(Open(SEEK_FILE), 0u);
    const uint32_t uiBefore = zyr_host_allocations();
    EXPECT_NE(All_Frames(), "");
    EXPECT_EQ(zyrSubtitle_seek(3500), 0u);
    EXPECT_NE(All_Frames(), "");
    EXPECT_EQ(zyr_host_allocations(), uiBefore);
}

TEST_F(SubViewer, FaultsWhileOpening)
{
    for (int iCall = -1; iCall <= 3; ++iCall) { // allocations, then each kind of file call
        for (const int iFromThenOn : {0, 1}) {
            bool bOpened = false;
            for (uint32_t uiNth = 1; uiNth < 20; ++uiNth) {
                SCOPED_TRACE(std::to_string(iCall) + " " + std::to_string(uiNth));
                zyrSubtitle_close();
                if (iCall < 0)
                    zyr_host_failAllocation(uiNth, iFromThenOn);
                else
                    zyr_host_failFile(iCall, uiNth, iCall == 0 ? 0 : -1, iFromThenOn);
                bOpened = Open(SEEK_FILE) == 0;
                zyr_host_failAllocation(0, 0);
                zyr_host_failFile(std::max(iCall, 0), 0, 0, 0);
                if (bOpened) continue;
                EXPECT_EQ(zyr_host_liveBytes(), 0u);
                EXPECT_EQ(zyr_host_openFiles(), 0u);
            }
            EXPECT_TRUE(bOpened);
        }
    }
}

TEST_F(SubViewer, FaultsWhilePlaying)
{
    std::string strFrames = HEADER;
    while (strFrames.size() < 100000) strFrames.append(TIMES).append("a\r\n\r\n");
    ASSERT_EQ(Open(strFrames), 0u);
    zyr_host_setFileHook(Fail_Reads, nullptr);
    All_Frames();
    EXPECT_EQ(Count_Log("FrameParser_SubViewer() - Get_CharCode() Failed! (ERROR = -5)"), 1u);
    EXPECT_EQ(zyrSubtitle_seek(500000), 1u);
    EXPECT_EQ(Count_Log("Seek_SubViewer() - Get_CharCode() Failed! (ERROR = -5)"), 1u);
    zyr_host_setFileHook(nullptr, nullptr);

    zyr_host_failFile(2, 1, -1, 1);
    EXPECT_EQ(zyrSubtitle_seek(0), 1u);
    EXPECT_EQ(Count_Log("Seek_SubViewer() - QUIBCAPTCB_FileSeek() Failed! (ERROR = -2)"), 1u);
    EXPECT_EQ(zyrSubtitle_seek(1), 1u);
    EXPECT_EQ(Count_Log("Seek_SubViewer() - Failed in setting a seek position of caption file!"), 1u);
    zyr_host_failFile(2, 0, 0, 0);
    EXPECT_EQ(zyrSubtitle_seek(0), 0u);
    EXPECT_EQ(Next_Frame(), "1000-2500 a");
}

} // namespace
