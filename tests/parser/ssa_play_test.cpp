// Playing SSA files: the order of frames, seeks, the look-up of styles, every encoding, and what fails.

#include <random>

#include "caption/style_list.h"
#include "parser/ssa_kit.h"

namespace
{

TEST_F(SsaTest, LinesComeInTimeOrderFromTheFirstOneOfTheFileOn)
{
    ASSERT_TRUE(Play(INFO + EVENTS + Second(5, "five") + Second(1, "one") + Second(3, "three") +
                     Second(1, "two") + Second(0, "no time") + Line("10:00:00.00", "eight digits")));
    EXPECT_EQ(s_stCaptionFrameList.uiNodeNum, 4u);
    EXPECT_EQ(Count_Log("SSA PTS FORMAT is BAD! Number Argument = [8]"), 1u);
    EXPECT_EQ(Read_Texts(false), "five|");
    EXPECT_EQ(Read_Texts(), "one|two|three|five|");
    m_vecLog.clear();
    TestFrame stFrame;
    EXPECT_FALSE(Read_Frame(&stFrame));
    EXPECT_EQ(Count_Log("Failed in setting a seek position"), 1u);
    EXPECT_EQ(Count_Log("Failed in caption file parsing"), 0u);
}

TEST_F(SsaTest, StyleLookUpGivesWhatAWalkGives)
{
    std::minstd_rand stRandom(4);
    const auto fnName = [&](uint16_t *pusName) {
        const uint32_t uiLen = static_cast<uint32_t>(stRandom() % 6);
        for (uint32_t uiPos = 0; uiPos < uiLen; ++uiPos)
            pusName[uiPos] =
                static_cast<uint16_t>("\x01\xFF\x00"[stRandom() % 3] << (stRandom() % 2 * 8) & 0xFFFF);
        return uiLen;
    };
    for (const uint32_t uiStyles : {1u, 8u, 9u, 17u, 300u}) {
        ASSERT_EQ(QUIB_CAPTION_Open(), 1);
        std::vector<SSAStyleInfo> vecStyles(uiStyles);
        for (SSAStyleInfo &stStyle : vecStyles) {
            fnName(stStyle.ausStyleName);
            stStyle.uiFontSize = static_cast<uint32_t>(&stStyle - vecStyles.data());
            ASSERT_EQ(Add_SSAStyleInfo(&stStyle), 1);
        }
        for (const bool bMemory : {true, false}) {
            zyr_host_failAllocation(bMemory ? 0 : 1, 1);
            Index_Styles();
            zyr_host_failAllocation(0, 0);
            for (uint32_t uiQuery = 0; uiQuery < 500; ++uiQuery) {
                uint16_t ausName[6] = {};
                const uint32_t uiLen = fnName(ausName);
                const auto itFirst =
                    std::find_if(vecStyles.begin(), vecStyles.end(), [&](const SSAStyleInfo &stStyle) {
                        return std::equal(ausName, ausName + uiLen, stStyle.ausStyleName);
                    });
                const SSAStyleInfo *const pstFound = Find_Style(ausName, uiLen);
                ASSERT_EQ(pstFound != nullptr, itFirst != vecStyles.end());
                ASSERT_TRUE(pstFound == nullptr || pstFound->uiFontSize == itFirst->uiFontSize) << uiStyles;
            }
        }
        QUIB_CAPTION_Close();
    }
}

/** Where a seek that walks from node to node ends. */
struct Place {
    uint32_t uiNode;
    int64_t llPos;
    uint32_t uiTime;
    bool operator==(const Place &) const = default;
};

Place Walk(uint32_t uiNode, uint32_t uiTarget, uint32_t uiBackward, Place stPlace)
{
    const CaptionFrameNode *const pastNode = s_stCaptionFrameList.pastNode;
    const uint32_t uiTail = s_stCaptionFrameList.uiNodeNum + 1;
    if (uiBackward == 3) uiNode = 1;
    stPlace.uiNode = uiNode;
    while (stPlace.uiNode != uiTail) {
        stPlace.llPos = pastNode[stPlace.uiNode].llFilePos;
        stPlace.uiTime = pastNode[stPlace.uiNode].uiPTS;
        if (uiBackward == 1 ? uiTarget > stPlace.uiTime || stPlace.uiNode == 0 : uiTarget < stPlace.uiTime)
            break;
        stPlace.uiNode += uiBackward == 1 ? UINT32_MAX : 1;
    }
    return stPlace;
}

TEST_F(SsaTest, SeekEndsWhereAWalkWouldFromEveryNode)
{
    std::minstd_rand stRandom(5);
    for (const uint32_t uiLines : {1u, 3u, 40u}) {
        std::string strFile = EVENTS;
        for (uint32_t uiLine = 0; uiLine < uiLines; ++uiLine)
            strFile += Second(static_cast<uint32_t>(1 + stRandom() % 9), "x");
        ASSERT_TRUE(Play(strFile));
        QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        for (uint32_t uiNode = 0; uiNode <= uiLines + 1; ++uiNode)
            for (const uint32_t uiBackward : {0u, 1u, 2u, 3u})
                for (uint32_t uiTarget = 500; uiTarget < 10000; uiTarget += 500) {
                    s_stCaptionFrameList.uiCurrNode = uiNode;
                    stInfo.llCurrFilePos = 7;
                    stInfo.iCurrPTS = 70;
                    const Place stWanted = Walk(uiNode, uiTarget, uiBackward, {0, 7, 70});
                    ASSERT_EQ(Seek_SSA(uiTarget, uiBackward, 0, &stInfo), 1);
                    const Place stPlace = {s_stCaptionFrameList.uiCurrNode, stInfo.llCurrFilePos,
                                           static_cast<uint32_t>(stInfo.iCurrPTS)};
                    ASSERT_EQ(stPlace, stWanted)
                        << uiLines << " " << uiNode << " " << uiBackward << " " << uiTarget;
                }
    }
}

TEST_F(SsaTest, FramesAfterASeek)
{
    const std::string strLines = Second(1, "1") + Second(3, "3") + Second(5, "5");
    TestFrame stFrame;
    ASSERT_TRUE(Play(INFO + EVENTS + strLines));
    ASSERT_TRUE(Read_Frame(&stFrame)); // the cursor goes to 3 s
    EXPECT_EQ(zyrSubtitle_seek(2000), 0u);
    EXPECT_EQ(Read_Texts(false), "3|5|");
    EXPECT_EQ(zyrSubtitle_seek(500), 0u) << "a cursor behind the last line stays there";
    EXPECT_EQ(Read_Texts(false), "");
    EXPECT_EQ(Read_Texts(), "1|3|5|");
    zyrSubtitle_seek(0);
    ASSERT_TRUE(Read_Frame(&stFrame));
    EXPECT_EQ(zyrSubtitle_seek(700), 0u); // back to the head: the file's first line is no Dialogue
    ASSERT_TRUE(Read_Frame(&stFrame));
    EXPECT_EQ(stFrame, (TestFrame{0, 0, 0, ""}));
    EXPECT_EQ(Read_Texts(false), "1|3|5|");

    ASSERT_TRUE(Play(INFO + strLines)); // without [Events] there is no first position
    EXPECT_EQ(pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos, -1);
    EXPECT_EQ(zyrSubtitle_seek(0), 1u);
    EXPECT_EQ(Count_Log("Seek_SSA() - Parse_GetCurrFrameFilePos() Failed! (ERROR = -1)"), 1u);
    EXPECT_EQ(Read_Texts(false), "1|3|5|");

    ASSERT_TRUE(Play(INFO + EVENTS));
    EXPECT_EQ(zyrSubtitle_seek(0), 0u);
    EXPECT_EQ(zyrSubtitle_seek(9), 0u);
    EXPECT_EQ(Read_Texts(false), "");
}

const std::string SAMPLE = INFO + DEFAULT_STYLE + EVENTS + "Comment: \xEC\x95\x88,,\r\n\r\n" +
                           Line("0:00:05.00", "\xEC\x95\x88\\N{\\i1}a  b", "Default", "Scroll up;1;2;3") +
                           Line("0:00:02.00", "later\\h{x}" + Repeat('y', 80), "\xEB\x85\x95") +
                           Line("0:00:01.00", Repeat('z', 700)) + "\r\n[Fonts]\r\nx: y\r\n";

TEST_F(SsaTest, EveryEncodingAndEveryWayOfReadingGivesTheSame)
{
    std::vector<TestFrame> vecWanted;
    for (const TestEncoding eEncoding : {E_UTF8, E_UTF16LE, E_UTF16BE, E_ANSI})
        for (const uint32_t uiChunk : {0u, 1u, 2u, 3u, 5u, 7u, 511u}) {
            Read_InChunks(uiChunk);
            ASSERT_TRUE(Play(Encode(SAMPLE, eEncoding)));
            std::vector<TestFrame> vecFrames = Read_All();
            ASSERT_EQ(zyrSubtitle_seek(0), 0u);
            for (const TestFrame &stFrame : Read_All()) vecFrames.push_back(stFrame);
            if (vecWanted.empty()) vecWanted = vecFrames;
            ASSERT_EQ(vecFrames.size(), 4u);
            EXPECT_EQ(vecFrames, vecWanted) << eEncoding << " " << uiChunk;
            EXPECT_EQ(vecFrames[0].strText, "\xEC\x95\x88\na b");
        }
    Read_InChunks(0);
    // Two-byte characters of a code page, whose second byte may look like a backslash or a brace.
    EXPECT_EQ(Play_Line(Line("0:00:01.00", "\xB0\x5C\xB0\x7B{\\i1}\xB0\xA1")).strText,
              "\xB0\x5C\xB0\x7B\xB0\xA1");
    ASSERT_EQ(Open(".ssa", EVENTS + Line("0:00:01.00", "\xB0\\Nb"), 1), 0u); // every byte is a character
    EXPECT_EQ(Read_All().at(0).strText, std::string("\0\xB0\nb", 4));
}

TEST_F(SsaTest, FailingCallsLeaveNothingBehind)
{
    std::string strFile = SAMPLE;
    for (uint32_t uiLine = 0; uiLine < 40; ++uiLine)
        strFile.insert(INFO.size(),
                       Style("S" + std::to_string(uiLine), "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16"));
    for (uint32_t uiLine = 0; uiLine < 200; ++uiLine) strFile += "[Events]\r\n" + Second(1 + uiLine % 9, "x");
    constexpr int ALLOCATION = 4;
    for (int iCall = ZYR_HOST_OPEN; iCall <= ALLOCATION; ++iCall)
        for (const int iFromThenOn : {0, 1}) {
            uint32_t uiOpened = 0;
            for (uint32_t uiNth = 1; uiNth < 60; ++uiNth) {
                zyrSubtitle_close();
                if (iCall == ALLOCATION)
                    zyr_host_failAllocation(uiNth, iFromThenOn);
                else
                    zyr_host_failFile(iCall, uiNth, -5, iFromThenOn);
                const bool bOpen = Play(strFile);
                uiOpened += bOpen ? 1 : 0;
                Read_All();
                zyrSubtitle_seek(2500);
                Read_All();
                zyr_host_failAllocation(0, 0);
                zyr_host_failFile(iCall, 0, 0, 0);
                if (bOpen) continue;
                ASSERT_EQ(zyr_host_liveBytes(), 0u) << iCall << " " << uiNth;
                ASSERT_EQ(zyr_host_openFiles(), 0u) << iCall << " " << uiNth;
            }
            EXPECT_GT(uiOpened, 0u) << iCall;
            EXPECT_LT(uiOpened, 59u) << iCall;
        }
}

TEST_F(SsaTest, FailuresAreReported)
{
    // Longer than a read buffer, so that its first line has to be read again.
    const std::string strFile = Encode(EVENTS + Second(1, "x") + Repeat('-', 70000), E_UTF8);
    struct {
        int iCall;
        int32_t iResult;
        uint32_t uiNth;
        const char *pszLog;
    } const astOpen[] = {
        {ZYR_HOST_READ, -5, 3, "HeaderParser_SSA() - Get_CharCode() Failed! (ERROR = -5)"},
        {ZYR_HOST_TELL, -7, 4, "HeaderParser_SSA() - File Tell Failed! (ERROR = -7)"},
    };
    for (const auto &stCase : astOpen) {
        zyr_host_failFile(stCase.iCall, stCase.uiNth, stCase.iResult, 0);
        EXPECT_FALSE(Play(strFile));
        EXPECT_EQ(Count_Log(stCase.pszLog), 1u) << stCase.pszLog;
    }
    ASSERT_TRUE(Play(strFile));
    TestFrame stFrame;
    zyr_host_failFile(ZYR_HOST_READ, 1, -5, 0);
    EXPECT_FALSE(Read_Frame(&stFrame));
    EXPECT_EQ(Count_Log("FrameParser_SSA() - Get_CharCode() Failed! (ERROR = -5)"), 1u);
    ASSERT_TRUE(Play(strFile));
    zyr_host_failFile(ZYR_HOST_SEEK, 1, -1, 0);
    EXPECT_EQ(zyrSubtitle_seek(0), 1u);
    EXPECT_EQ(Count_Log("Seek_SSA() - QUIBCAPTCB_FileSeek() Failed! (ERROR = -2)"), 1u);
    EXPECT_EQ(Read_Texts(), "x|");
    // A file that can be moved anywhere gives a frame behind the last line too, and says that it is one.
    zyr_host_setFileHook(
        [](int iCall, uint32_t, int32_t iReal, void *) { return iCall == ZYR_HOST_SEEK ? 0 : iReal; },
        nullptr);
    EXPECT_EQ(FrameParser_SSA(), -6);
    EXPECT_EQ(s_stCaptionFrameList.uiCurrNode, Get_TailNode());
    zyr_host_setFileHook(nullptr, nullptr);

    std::string strMany = EVENTS;
    for (uint32_t uiLine = 0; uiLine < 100; ++uiLine) strMany += Second(9 - uiLine % 9, "x");
    const uint32_t uiBefore = zyr_host_allocations();
    ASSERT_TRUE(Play(strMany));
    const uint32_t uiAllocations = zyr_host_allocations() - uiBefore;
    Read_Texts();
    EXPECT_EQ(zyr_host_allocations() - uiBefore, uiAllocations) << "frames need no memory of their own";
    size_t uiReported = 0;
    for (uint32_t uiNth = 1; uiNth <= uiAllocations; ++uiNth) {
        zyr_host_failAllocation(uiNth, 0);
        if (!Play(strMany)) uiReported += Count_Log("HeaderParser_SSA() - Add Frame Failed!");
    }
    EXPECT_EQ(uiReported, 2u) << "room for more lines, and room to sort them";
}

TEST_F(SsaTest, HostileFilesEnd)
{
    std::string strNested;
    for (uint32_t uiPair = 0; uiPair < 300000; ++uiPair) strNested += "{}\\";
    struct {
        std::string strFile;
        size_t uiFrames;
    } const astCase[] = {
        {Repeat('\n', 10000000), 0},
        {EVENTS + Repeat('\n', 10000000), 0},
        {Repeat('[', 3000000), 0},
        {EVENTS + Repeat('\r', 1000000) + "\n" + Second(1, "x"), 1},
        {EVENTS + Line("0:00:01.00", strNested), 1},
        {EVENTS + Line("0:00:01.00", Repeat('\x80', 3000000)), 1},
        {EVENTS + "Dialogue: " + Repeat('9', 3000000) + ",0:00:01.00,0:00:02.00,S,,0,0,0,,x\r\n", 1}};
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play(stCase.strFile));
        EXPECT_EQ(Read_All().size(), stCase.uiFrames);
    }
    EXPECT_FALSE(Play(""));
}

} // namespace
