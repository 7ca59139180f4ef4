// What every format owes its host alike: failures leave nothing behind and are reported, frames need no
// memory of their own, and the log tells the same things in the same order each time.

#include "support/engine_fixture.h"

namespace
{

const std::string SUB_HEADER = "[SUBTITLE]\r\n";

std::string Sub(const std::string &strSeconds, const std::string &strText = "x")
{
    return "00:00:" + strSeconds + ",00:00:09.00\r\n" + strText + "\r\n\r\n";
}

std::string Ssa(const std::string &strTime, const std::string &strText)
{
    return "Dialogue: 0," + strTime + ",0:00:09.50,S,,0,0,0,," + strText + "\r\n";
}

std::string Smi(const std::string &strTime, const std::string &strText)
{
    return "<SYNC Start=" + strTime + "><P Class=" + strText + "\r\n";
}

const std::string STYLE = "Style: S,Arial,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16\r\n";
/** Longer than a read buffer: what stands before it has to be read again. */
const std::string PADDING(70000, ' ');

struct Format {
    std::string strEnding;
    std::string strNoFrames; // the least file that opens
    std::string strFile;
    uint32_t uiSpareable; // allocations that an open can do without: for styles, and to find them faster
};

const Format FORMATS[] = {
    {".srt", "x", Repeat(Entry("Hello"), 40) + PADDING, 0},
    {".SUB", SUB_HEADER, SUB_HEADER + Repeat(Sub("7") + Sub("01.00"), 30) + Sub("01.00", PADDING), 0},
    // More styles than are compared one by one, more lines than the list begins with.
    {".ssa", "x",
     "[v4 Styles]\r\n" + Repeat(STYLE, 40) + "[Events]\r\n" +
         Repeat(Ssa("0:00:05.00", "x") + Ssa("0:00:01.00", "y"), 200) + PADDING,
     4},
    // Frames that lead far, and more of them than the index begins with.
    {".smi", "<SYNC Start=1>",
     Repeat(Smi("5", "K>k<SYNC <P Class=E>e"), 40) + Smi("9", "E>e") + Repeat(Smi("7", "K>k"), 1100) +
         PADDING,
     0},
};

constexpr int ALLOCATION = -1; // beside the kinds of file calls

uint32_t Count_Calls(int iCall)
{
    return iCall == ALLOCATION ? zyr_host_allocations() : zyr_host_fileCalls(iCall);
}

void Let_Fail(int iCall, uint32_t uiNth, int32_t iResult, int iFromThenOn)
{
    if (iCall == ALLOCATION)
        zyr_host_failAllocation(uiNth, iFromThenOn);
    else
        zyr_host_failFile(iCall, uiNth, iResult, iFromThenOn);
}

class Formats : public EngineTest, public testing::WithParamInterface<Format>
{
protected:
    static void Expect_NothingHeld()
    {
        EXPECT_EQ(zyr_host_liveBytes(), 0u);
        EXPECT_EQ(zyr_host_openFiles(), 0u);
    }

    /** Open, read, seek, select, read; everything may fail. @return whether the open did not. */
    bool Play_Everything()
    {
        const bool bOpen = Open(GetParam().strEnding.c_str(), GetParam().strFile) == 0;
        if (!bOpen) Expect_NothingHeld();
        Play_Calls(30);
        zyrSubtitle_seek(1500);
        Play_Calls(1);
        const uint32_t auiBoth[] = {1, 0};
        zyrSubtitle_selectClass(2, auiBoth);
        Play_Calls(30);
        QUIB_CAPTION_ParsingProcessEx();
        zyrSubtitle_close();
        Expect_NothingHeld();
        return bOpen;
    }
};

INSTANTIATE_TEST_SUITE_P(Each, Formats, testing::ValuesIn(FORMATS),
                         [](const auto &stInfo) { return stInfo.param.strEnding.substr(1); });

TEST_P(Formats, EveryAllocationAndFileCallMayFail)
{
    constexpr uint32_t CALLS_MAX = 60; // the index of a long file alone takes thousands
    uint32_t uiOfOpen = zyr_host_allocations();
    ASSERT_EQ(Open(GetParam().strEnding.c_str(), GetParam().strFile), 0u);
    uiOfOpen = zyr_host_allocations() - uiOfOpen;
    for (const int iCall :
         {ALLOCATION, int{ZYR_HOST_OPEN}, int{ZYR_HOST_READ}, int{ZYR_HOST_SEEK}, int{ZYR_HOST_TELL}}) {
        const uint32_t uiBefore = Count_Calls(iCall);
        ASSERT_TRUE(Play_Everything());
        const uint32_t uiCalls = std::min(Count_Calls(iCall) - uiBefore, CALLS_MAX);
        ASSERT_GT(uiCalls, 0u) << iCall;
        for (const int iFromThenOn : {0, 1})
            for (const int32_t iResult : {0, -1, -1111, 1}) {
                uint32_t uiOpened = 0;
                for (uint32_t uiNth = 1; uiNth <= uiCalls; ++uiNth) {
                    SCOPED_TRACE(testing::Message()
                                 << "call " << iCall << ", number " << uiNth << " gives " << iResult);
                    Let_Fail(iCall, uiNth, iResult, iFromThenOn);
                    uiOpened += Play_Everything() ? 1 : 0;
                    Let_Fail(iCall, 0, 0, 0);
                }
                if (iCall == ALLOCATION && iFromThenOn == 0) {
                    EXPECT_EQ(uiOpened, uiCalls - uiOfOpen + GetParam().uiSpareable);
                }
            }
    }
}

TEST_P(Formats, NothingIsAllocatedPerFrame)
{
    ASSERT_EQ(Open(GetParam().strEnding.c_str(), GetParam().strFile), 0u);
    const uint32_t uiBefore = zyr_host_allocations();
    EXPECT_GE(Count_Frames(), 30u);
    zyrSubtitle_seek(7000);
    zyrSubtitle_seek(0);
    EXPECT_GE(Count_Frames(), 30u);
    EXPECT_EQ(zyr_host_allocations(), uiBefore);
}

TEST_F(EngineTest, FailuresAreReported)
{
    enum Step { E_OPEN, E_FRAMES, E_SEEK };
    // clang-format off
    static const struct {
        const char *pszEnding;
        Step eStep; // in which a call fails; seeks come after the last frame
        int iCall;
        const char *pszMessage;
        uint32_t uiTarget = 0;
    } CASES[] = {
        {".srt", E_FRAMES, ZYR_HOST_READ, "FrameParser_SubRip() - Get_CharCode() Failed! (ERROR = -5)"},
        {".srt", E_SEEK, ZYR_HOST_READ, "Seek_SubRip() - Get_CharCode() Failed! (ERROR = -5)", 500},
        {".srt", E_SEEK, ZYR_HOST_SEEK, "Seek_SubRip() - QUIBCAPTCB_FileSeek() Failed! (ERROR = -2)", 0},
        {".srt", E_SEEK, ZYR_HOST_SEEK, "Seek_SubRip() - Failed in setting a seek position", 500},
        {".SUB", E_OPEN, ZYR_HOST_TELL, "HeaderParser_SubViewer() - File Tell Failed! (ERROR = -5)"},
        {".SUB", E_FRAMES, ZYR_HOST_READ, "FrameParser_SubViewer() - Get_CharCode() Failed! (ERROR = -5)"},
        {".SUB", E_SEEK, ZYR_HOST_READ, "Seek_SubViewer() - Get_CharCode() Failed! (ERROR = -5)", 500},
        {".SUB", E_SEEK, ZYR_HOST_SEEK, "Seek_SubViewer() - QUIBCAPTCB_FileSeek() Failed! (ERROR = -2)", 0},
        {".SUB", E_SEEK, ZYR_HOST_SEEK, "Seek_SubViewer() - Failed in setting a seek position", 500},
        {".ssa", E_OPEN, ZYR_HOST_READ, "HeaderParser_SSA() - Get_CharCode() Failed! (ERROR = -5)"},
        {".ssa", E_OPEN, ZYR_HOST_TELL, "HeaderParser_SSA() - File Tell Failed! (ERROR = -5)"},
        {".ssa", E_OPEN, ALLOCATION, "HeaderParser_SSA() - Add Frame Failed!"},
        {".ssa", E_FRAMES, ZYR_HOST_READ, "FrameParser_SSA() - Get_CharCode() Failed! (ERROR = -5)"},
        {".ssa", E_SEEK, ZYR_HOST_SEEK, "Seek_SSA() - QUIBCAPTCB_FileSeek() Failed! (ERROR = -2)", 0},
        {".smi", E_OPEN, ALLOCATION, "Frame Information Array Memory Allocation Failed!"},
        {".smi", E_FRAMES, ZYR_HOST_READ, "FrameParser_SAMI() - QUIBCAPTCB_FileRead() Failed! (ERROR = -5)"},
        {".smi", E_FRAMES, ZYR_HOST_SEEK, "FrameParser_SAMI() - File Seek Failed! (ERROR = -2)"},
        {".smi", E_SEEK, ZYR_HOST_SEEK, "Seek_SAMI() - QUIBCAPTCB_FileSeek() Failed! (ERROR = -2)", 7},
    };
    // clang-format on
    for (const auto &stCase : CASES) {
        const Format &stFormat = *std::ranges::find(FORMATS, stCase.pszEnding, &Format::strEnding);
        uint32_t uiNth = 0;
        const auto fnFail = [&](Step eStep) {
            if (eStep == stCase.eStep) Let_Fail(stCase.iCall, uiNth, -5, 0);
        };
        uint32_t uiResult = 0;
        do { // the first calls may be those that every format makes
            ++uiNth;
            fnFail(E_OPEN);
            uiResult = Open(stFormat.strEnding.c_str(), stFormat.strFile);
            fnFail(E_FRAMES);
            Count_Frames();
            fnFail(E_SEEK);
            if (stCase.eStep == E_SEEK) uiResult = zyrSubtitle_seek(stCase.uiTarget);
            Let_Fail(stCase.iCall, 0, 0, 0);
        } while (uiNth < 20 && Count_Log(stCase.pszMessage) == 0);
        EXPECT_EQ(Count_Log(stCase.pszMessage), 1u) << stCase.pszMessage;
        EXPECT_EQ(uiResult, stCase.eStep == E_FRAMES ? 0u : 1u) << stCase.pszMessage;
    }
}

/* A message without its tag and the number of the line that it came from. */
std::string Take_Text(const std::string &strMessage)
{
    std::string strText = strMessage.substr(strMessage.find(':') + 1);
    for (size_t uiAt = strText.find('['); uiAt != strText.npos; uiAt = strText.find('[', uiAt + 1)) {
        const size_t uiEnd = strText.find_first_not_of(" 0123456789", uiAt + 1);
        if (strText[uiEnd] == ']' && strText[uiEnd + 1] != '\n') strText.erase(uiAt, uiEnd + 1 - uiAt);
    }
    return strText.substr(strText.find_first_not_of(' '));
}

TEST_F(EngineTest, MessagesComeInOrder)
{
    const std::string END = "Get_CharCode() - End of Caption File!\n";
    const std::string NO_DATA = "Get_CharCode() - No Caption Data!\n";
    const std::string SUB_END = "FrameParser_SubViewer() - Get_CharCode() Failed! (ERROR = -1111)\n";
    const std::string NO_SEEK = "[QUIBCAPTCB_FileSeek] Error FileSeek! SeekPos = [-1]\n"
                                "FrameParser_SSA() - Failed in setting a seek position of caption file!\n"
                                "QUIB_CAPTION] Failed in caption file parsing!\n";
    const struct {
        const char *pszEnding;
        std::string strFile; // with mistakes
        std::string strLog;  // beside what every open says
    } CASES[] = {
        {".srt", Entry("a\rb</b>", "0:0:1,0") + Entry("<i></u>"),
         "SUBRIP PTS FORMAT is BAD! Number Argument = [4]\n"
         ">>>>> CR + LF is Bad! <<<<<\n"
         "OOPS! Tag Queue is already EMPTY!\n"
         "OOPS! Don't find the matching tag type!\n" +
             END + NO_DATA + "FrameParser_SubRip() - Get_CharCode() Failed! (ERROR = -1111)\n"},
        {".SUB", SUB_HEADER + "[Y]\r\n[]\r\n" + Sub("7") + Sub("01.00") + "x",
         "HeaderParser_SubViewer() - Unknown caption field!\n"
         "HeaderParser_SubViewer() - Failed to parse the caption field!\n"
         "FrameParser_SubViewer() - OOPS!! ERROR!!\n"
         "FrameParser_SubViewer() - OOPS!! ERROR!!\n" +
             END + Repeat(NO_DATA + SUB_END, 2)},
        {".ssa", "[Ev\x80\x81]\r\n[Events]\r\n" + Ssa("0:1", "x") + Ssa("0:00:01.00", "{x}{\\c&Hx&}y"),
         "Bad SSA LineType Name Character! [0x8081]\n"
         "SSA PTS FORMAT is BAD! Number Argument = [2]\n" +
             END +
             "FrameParser_SSA() - Failed to parse the caption tag!\n"
             "RGB Color Data is bad! (DATA = x,  VALUE = 0x00000000)\n" +
             Repeat(NO_SEEK, 2)},
        {".smi", Smi("1", "A>a") + "<SYNC Start=2 End=x><P Class=A>b" + Smi("3", "A x></b>c"),
         END + "FrameParser_SAMI() - Failed to parse the caption tag!\n" +
             Repeat("OOPS! Tag Queue is already EMPTY!\n" + END, 2)},
    };
    for (const auto &stCase : CASES) {
        Play(stCase.pszEnding, stCase.strFile);
        Next(); // the end stays the end
        std::string strLog;
        for (const std::string &strLine : m_vecLog)
            if (strLine.find("Header Parsing Time") == strLine.npos &&
                strLine.find("subtitle filename") == strLine.npos)
                strLog += Take_Text(strLine);
        EXPECT_EQ(strLog, stCase.strLog) << stCase.pszEnding;
    }
}

/** After the last frame every call says again that it has failed, as often as its steps have. */
TEST_P(Formats, EveryCallTellsTheEnd)
{
    const struct {
        const char *pszWhat;
        int32_t (*pfCall)();
        size_t uiMessages;
    } CALLS[] = {
        // Data that is known to be exhausted is no failure; the SSA list's end is not the data's.
        {"one frame", QUIB_CAPTION_ParsingProcess, GetParam().strEnding == ".ssa" ? 1u : 0u},
        {"all streams", QUIB_CAPTION_ParsingProcessEx, 2},
        {"skipping", [] { return QUIB_CAPTION_PreParsingProcessEx(INT32_MAX); }, 1},
    };
    for (const bool bFrames : {true, false}) {
        const std::string strFile = bFrames ? GetParam().strFile : GetParam().strNoFrames;
        ASSERT_EQ(Open(GetParam().strEnding.c_str(), strFile), 0u);
        Count_Frames();
        for (uint32_t uiRound = 0; uiRound < 2; ++uiRound)
            for (const auto &stCall : CALLS) {
                m_vecLog.clear();
                EXPECT_EQ(stCall.pfCall(), -2) << stCall.pszWhat;
                EXPECT_EQ(Count_Log("Failed in caption file parsing!"), stCall.uiMessages) << stCall.pszWhat;
            }
    }
    ASSERT_EQ(Open(GetParam().strEnding.c_str(), GetParam().strFile), 0u);
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    for (CaptionStreamInfo &stStream : stInfo.astStreamInfo) stStream.iStreamDataSize = NO_CAPTION_DATA;
    ASSERT_EQ(zyrSubtitle_seek(0), 0u);
    for (uint32_t uiStream = 0; uiStream < stInfo.uiStreamNums; ++uiStream)
        EXPECT_NE(stInfo.astStreamInfo[uiStream].iStreamDataSize, NO_CAPTION_DATA) << uiStream;
}

TEST_F(EngineTest, ADigitInTheOtherByteOrderIsNone)
{
    const struct {
        const char *pszEnding;
        std::string strBegin, strTimes; // the times stand in the other byte order, between the rest
        const char *pszFrames;
    } CASES[] = {
        {".srt", Entry("a") + "1\r\n", "00:00:01,000 --> 00:00:02,000\r\n", "1000-2000 a"},
        {".SUB", SUB_HEADER + Sub("01.00"), "00:00:02.00,00:00:03.00\r\n", "1000-9000 x; !!0-0 "},
    };
    const std::string strText = "y\r\n\r\n" + std::string(100, 'z');
    for (const auto &stCase : CASES)
        for (const bool bBig : {false, true}) {
            const auto fnEncode = [](const std::string &strPart, bool bBigEndian) {
                return Encode(strPart, bBigEndian ? E_UTF16BE : E_UTF16LE);
            };
            const std::string strFile = fnEncode(stCase.strBegin, bBig) +
                                        fnEncode(stCase.strTimes, !bBig).substr(2) +
                                        fnEncode(strText, bBig).substr(2);
            EXPECT_EQ(Play(stCase.pszEnding, strFile), stCase.pszFrames) << bBig;
        }
}

} // namespace
