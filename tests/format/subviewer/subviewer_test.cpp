// SubViewer files, played through the public calls.

#include "support/engine_fixture.h"

#include "record/parser_state.h"

namespace
{

const std::string HEADER = "[INFORMATION]\r\n[SUBTITLE]\r\n";
const std::string TIMES = "00:00:01.00,00:00:02.50\r\n";
const std::string END = "\r\n\r\n";

std::string Frame(const std::string &strText, const std::string &strTimes = TIMES)
{
    return strTimes + strText + END;
}

const std::string GOOD = Frame("b");

class SubViewer : public EngineTest
{
protected:
    /** @return "delay colour size font" */
    static std::string Get_Header()
    {
        const SubViewerHeaderInfo &stInfo = pstQuibCaptionParserInfo->stSubViewerInfo;
        char szNumbers[64];
        snprintf(szNumbers, sizeof(szNumbers), "%u %X %u ", stInfo.uiDelay, stInfo.uiColf, stInfo.uiSize);
        std::string strAll = szNumbers;
        for (uint32_t uiUnit = 0; uiUnit < stInfo.uiFontNameLength; ++uiUnit)
            strAll += static_cast<char>(stInfo.ausFontName[uiUnit]);
        return strAll;
    }

    static int64_t Get_FirstPlace() { return pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos; }
};

TEST_F(SubViewer, Frames)
{
    // clang-format off
    static const PlayCase CASES[] = {
        {"a frame", HEADER + Frame("a"), "1000-2500 a"},
        {"every place of a time", HEADER + Frame("a", "12:34:56.78,98:76:54.32\r\n"), "45296780-357414320 a"},
        {"no separators", HEADER + Frame("a", "00000100,00000250\r\n"), "1000-2500 a"},
        {"empty lines between frames", HEADER + Frame("a") + END + GOOD, "1000-2500 a; !!!!1000-2500 b"},
        {"a digit missing", HEADER + Frame("a", "0:00:01.00,00:00:02.00\r\n") + GOOD, "!1000-2500 b"},
        {"a third time", HEADER + Frame("a", "00:00:01.00,00:00:02.50,x\r\n") + GOOD, "!1000-2500 b"},
        {"a ninth digit", HEADER + Frame("a", "00:00:01.000,00:00:02.50\r\n") + GOOD, "!1000-2500 b"},
        {"a colon out of place", HEADER + "00:0:001.00,00:00:02.50" + END + GOOD, "!1000-2500 b"},
        {"a dot out of place", HEADER + "00.00:01.00,00:00:02.50" + END + GOOD, "!1000-2500 b"},
        {"a start time only", HEADER + Frame("a", "00:00:01.00\r\n") + GOOD, "!1000-2500 b"},
        {"a bad time line, and at once the frame's end", HEADER + "00:00:01.00," + END + GOOD, "!1000-2500 b"},
        {"the end of the file in a bad frame", HEADER + "00:00:01.00,00:00:02x\r\na", "!1000-2 "},
        {"the end of the file in a time line", HEADER + "00:00:01.00,00:00:02.50", ""},
        {"the end of the file in a text", HEADER + TIMES + "a b", "1000-2500 a b"},
        {"the end of the file in a bracket", HEADER + TIMES + "a[B", "1000-2500 a"},
        {"no text", HEADER + TIMES + "\r\n", "1000-2500 "},
        {"a break of either case", HEADER + Frame("a[br]b[Br]c[BR]d"), "1000-2500 a|b|c|d"},
        {"other brackets", HEADER + Frame("a [Music] [b] [] [BR [B\r\nc"), "1000-2500 a [Music] [b] [] [BR [B|c"},
        {"a bracket in a bracket", HEADER + Frame("a[B[br]b"), "1000-2500 a|[Bb"},
        {"a bracket that begins a line", HEADER + Frame("[br]a"), "1000-2500 [br]a"},
        {"blanks are folded", HEADER + Frame("a \t  b\r\n c \t"), "1000-2500 a b|c"},
        {"blanks given back are not", HEADER + Frame("a[B  b"), "1000-2500 a[B  b"},
        {"a lone CR", HEADER + Frame("a\rb"), "!1000-2500 a|b"},
        {"bare LF", HEADER + "00:00:01.00,00:00:02.50\na\nb\n\nc", "!!!1000-2500 a|b||c"},
        {"more lines than there are", HEADER + Frame("1[br]2[br]3[br]4[br]5[br]6[br] 7\r\n8"), "!1000-2500 1|2|3|4|5|6"},
    };
    // clang-format on
    Expect_Played(".SUB", CASES);
}

TEST_F(SubViewer, HeaderValues)
{
    // clang-format off
    static const struct {
        const char *pszWhy;
        std::string strHeader; // SUBTITLE stands before it, a frame behind it
        std::string strValues;
        uint32_t uiUnknown = 0, uiFailed = 0; // field names that the header parser complains of
    } CASES[] = {
        {"several on a line", "[COLF]&HFFFFFF,[STYLE]no,[SIZE]18,[FONT]Arial\r\n", "0 FFFFFF 18 Arial"},
        {"numbers", "[DELAY]12\n[SIZE]4294967297\r\n", "12 0 1 "},
        {"an empty number", "[DELAY]7\r\n[DELAY]\r\n", "0 0 0 "},
        {"no number", "[DELAY]1 5\r\n[SIZE]x\r\n", "0 0 0 "},
        {"lower case colour", "[COLF]&hff8000\r\n", "0 FF8000 0 "},
        {"no colours", "[COLF]&HFF8000 \r\n[COLF]FF8000\r\n[COLF]&HFF80G0\r\n", "0 0 0 "},
        {"unknown names", "[delay]x\r\n[SIZ]x\r\n[SIZES]x\r\n", "0 0 0 ", 3, 0},
        {"empty and foreign names", "[]x\r\n[\xC3\xA9]x\r\n", "0 0 0 ", 0, 2},
        {"a name begun again", "[DEL[SIZE]3\r\n", "0 0 3 "},
        {"a name cut by the line", "[SIZE\r\n]3\r\n[DELAY]4\r\n", "4 0 0 "},
        {"a digit inside a line", "x1 [SIZE]5\r\n", "0 0 5 "},
        {"a long font name", "[FONT]" + Repeat("f", 600) + "\r\n", "0 0 0 " + Repeat("f", 30)},
        {"a name of 499 units", "[" + Repeat("n", 499) + "]x\r\n[SIZE]6\r\n", "0 0 6 ", 1, 0},
        {"a name of 600 units", "[" + Repeat("n", 600) + "]x\r\n[SIZE]6\r\n", "0 0 6 ", 1, 0},
        {"blanks", "[CD TRACK] 1\r\n[END INFORMATION]\r\n[FONT] a b\r\n", "0 0 0  a b"},
    };
    // clang-format on
    for (const auto &stCase : CASES) {
        SCOPED_TRACE(stCase.pszWhy);
        const std::string strHeader = HEADER + stCase.strHeader;
        ASSERT_EQ(Open(".SUB", strHeader + GOOD), 0u);
        EXPECT_EQ(Get_Header(), stCase.strValues);
        EXPECT_EQ(Count_Log("Unknown caption field!"), stCase.uiUnknown);
        EXPECT_EQ(Count_Log("Failed to parse the caption field!"), stCase.uiFailed);
        EXPECT_EQ(Get_FirstPlace(), static_cast<int64_t>(strHeader.size()));
        EXPECT_EQ(Play(), "1000-2500 b");
    }
}

TEST_F(SubViewer, WhereTheFramesBegin)
{
    for (const std::string &strNoHeader : {GOOD + "[SUBTITLE]\r\n", "[subtitle]\r\n" + GOOD}) {
        EXPECT_EQ(Play(".SUB", strNoHeader), "(not opened)");
        EXPECT_EQ(Count_Log("NO SUBTITLE field dectected!"), 1u);
    }
    static const struct {
        const char *pszWhy, *pszFile;
        int64_t llFirstPlace; // -1 without frames
        const char *pszFrames;
    } CASES[] = {
        {"no frames", "[SUBTITLE]\r\n[SIZE]18", -1, ""},
        {"a digit behind an unknown name", "[SUBTITLE]\r\n[XYZ]12\r\n", 17, "!12-0 "},
        {"a digit behind a value", "[SUBTITLE]a,12\r\n", 12, "!12-0 "},
        {"a digit behind dropped bytes", "\xEF\xBB\xBF[SUBTITLE]\r\n\x80\x80\x31\x32\r\n", 15, "!12-0 "},
    };
    for (const auto &stCase : CASES) {
        SCOPED_TRACE(stCase.pszWhy);
        ASSERT_EQ(Open(".SUB", stCase.pszFile), 0u);
        EXPECT_EQ(Get_FirstPlace(), stCase.llFirstPlace);
        EXPECT_EQ(Play(), stCase.pszFrames);
    }
}

TEST_F(SubViewer, Seek)
{
    // Frames at 1, 3, 5 s, a bad one, 9 s, and 11 s without an empty line behind it.
    const std::string strFile = HEADER + Frame("[br]1", "00:00:01.00,00:00:02.00\r\n") +
                                Frame("3[br]x\rx", "00:00:03.00,00:00:04.00\r\n") +
                                Frame("5", "00:00:05.00,00:00:06.00\r\n") +
                                Frame("7", "00:00:07,00:00:08.00\r\n") +
                                Frame("9", "00:00:09.00,00:00:10.00\r\n") + "00:00:11.00,00:00:12.00\r\n11";
    static const struct {
        const char *pszWhy;
        uint32_t uiRead; // frames read before the seek
        uint32_t uiTarget;
        const char *pszNext;
        int32_t iCurrPTS; // start of the frame scanned before the one found
        uint32_t uiOops;  // messages of the seek
    } CASES[] = {
        {"to the start", 3, 0, "1000-2000 [br]1", 0, 0},
        {"before the first frame", 2, 999, "1000-2000 [br]1", 0, 0},
        {"backward into a frame", 4, 3500, "!3000-4000 3|x|x", 1000, 0},
        {"a bad frame follows: reading resumes at that one", 4, 5500, "!9000-10000 9", 3000, 1},
        {"backward to a frame's start", 5, 3000, "!3000-4000 3|x|x", 1000, 0},
        {"forward into a frame", 1, 3500, "!3000-4000 3|x|x", 1000, 0},
        {"forward over a bad frame", 2, 9500, "9000-10000 9", 5000, 1},
        {"forward, the next frame is later", 1, 2000, "1000-2000 [br]1", 1000, 0},
        {"the last frame has no end: the one before it", 0, 20000, "9000-10000 9", 9000, 1},
        {"forward from the exhausted end", 9, 20000, "11000-12000 11", 11000, 0},
    };
    for (const TestEncoding eEncoding : ENCODINGS)
        for (const auto &stCase : CASES) {
            SCOPED_TRACE(testing::Message() << stCase.pszWhy << " " << eEncoding);
            ASSERT_EQ(Open(".SUB", Encode(strFile, eEncoding)), 0u);
            Play_Calls(stCase.uiRead);
            m_vecLog.clear();
            EXPECT_EQ(zyrSubtitle_seek(stCase.uiTarget), 0u);
            EXPECT_EQ(Count_Log("Seek_SubViewer() - OOPS!! ERROR!!"), stCase.uiOops);
            EXPECT_EQ(pstQuibCaptionParserInfo->iCurrPTS, stCase.iCurrPTS);
            EXPECT_EQ(Next(), stCase.pszNext);
        }
}

TEST_F(SubViewer, HostileFilesEnd)
{
    const std::string strFeeds = Repeat("\n", 1 << 18);
    const struct {
        const char *pszWhy;
        std::string strBody, strFrames;
        size_t uiOops, uiBadLineEnds;
    } CASES[] = {
        {"a header that ends in a long line", Repeat("x", 1000), "", 0, 0},
        {"line feeds before a frame", strFeeds + GOOD, "1000-2500 b", 0, 0},
        {"line feeds where a time line is due", GOOD + strFeeds, "1000-2500 b", 1 << 18, 0},
        {"line feeds in a text", TIMES + strFeeds, "1000-2500 " + Repeat("|", 11), 0, (1 << 17) - 1},
        {"digits in a time", Repeat("9", 5000) + END + GOOD, "1000-2500 b", 1, 0},
        {"blank lines leave the text buffer free", Frame(Repeat("\t\r\n", 15361) + "b"), "1000-2500 b", 0, 0},
    };
    for (const auto &stCase : CASES) {
        SCOPED_TRACE(stCase.pszWhy);
        std::string strFrames = Play(".SUB", HEADER + stCase.strBody);
        std::erase(strFrames, '!');
        EXPECT_EQ(strFrames, stCase.strFrames);
        EXPECT_EQ(Count_Log("OOPS!! ERROR!!"), stCase.uiOops);
        EXPECT_EQ(Count_Log("CR + LF is Bad!"), stCase.uiBadLineEnds);
    }
}

TEST_F(SubViewer, BracketsAtTheConvertBuffersEnd)
{
    for (uint32_t uiPlain = 290; uiPlain < 310; ++uiPlain) {
        const std::string strText = "[" + Repeat("a", uiPlain) + "[[[B[bR[BRx[";
        std::string strFrames = Play(".SUB", HEADER + Frame(strText));
        std::erase(strFrames, '|');
        EXPECT_EQ(strFrames, "1000-2500 " + strText);
    }
}

} // namespace
