// Frames, seeks and class selections of SAMI files, through the public calls.

#include <algorithm>
#include <numeric>
#include <random>

#include "parser/sami_kit.h"

namespace
{

constexpr TestEncoding ENCODINGS[] = {E_ANSI, E_UTF16LE, E_UTF16BE, E_UTF8};

TEST_F(SamiTest, Texts)
{
    struct {
        std::string strText;
        std::string strShown;
    } const astCase[] = {
        {"Hello&nbsp;World", "Hello World"},
        {"a&nbsp b", "a  b"},
        {"&lt;B&gt; AT&T &Eacute;", "<B> AT&T &Eacute;"},
        {"a   b\t\tc", "a b c"},
        {"one\r\ntwo\nthree", "onetwothree"},
        {"a \r\n b", "a  b"}, // a line end is nothing, but the blank behind it counts again
        {"a<br>b<BR/>c<br/>d", "a\nbcd"},
        {"<i>a</i></P></SYNC>\r\n", "a"},
        {"a<b <i>c", "a<b c"},
        {"a<syn>b<SYNC>never", "ab"}, // the name alone ends a frame
        {"a<SYNCHRO>never", "a"},
        {std::string("a\0b", 3), "ab"},
        {Repeat("x", 64 * 6 + 9), Repeat(Repeat("x", 64) + "\n", 5) + Repeat("x", 64)},
        {Repeat(" \n", 305) + "x" + Repeat(" \n", 305) + "y", "x\ny"}, // blanks are handed over in time, too
        {Repeat("a&amp;", 400), Repeat(Repeat("a&", 32) + "\n", 5) + Repeat("a&", 32)},
        {"<" + Repeat("q", 600) + ">a", "a"},
        {Repeat("<a", 3) + ">b", "<a<ab"},
    };
    TestFrame stFrame;
    for (const auto &stCase : astCase)
        for (const TestEncoding eEncoding : ENCODINGS) {
            ASSERT_EQ(Open(".smi", Encode(Sync(7, "X", stCase.strText), eEncoding)), 0u);
            ASSERT_TRUE(Read_Frame(&stFrame));
            EXPECT_EQ(stFrame, (TestFrame{0, 7, OPEN_END_PTS, stCase.strShown})) << stCase.strText;
        }
    ASSERT_EQ(Open(".smi", Sync(7, "X", "a<zz>b")), 0u);
    QUIBCAPTPARS_Set_ParsingOption(1);
    EXPECT_EQ(Read_Texts(), "7 a<zz>b");
}

TEST_F(SamiTest, WhatLeadsToTheText)
{
    const std::string Y = Sync(9, "Y", "y");
    // clang-format off
    struct {
        std::string strFile;
        std::string strX; // frames of class X: "start-end text"
        size_t uiLogs = 0;
    } const astCase[] = {
        {Sync(1, "X", "a") + Y, "1-2147483647 a"},
        {"<SYNC START=1 END=5><P CLASS=X>a" + Y, "1-5 a"},
        {"<SYNC START=1 END=5><P CLASS=X>a" + Y + Sync(2, "X", "b"), "1-2 a|2-2147483647 b"},
        {"<SYNC START=1><I><P CLASS=X>a<P CLASS=X>b" + Y, "1-2147483647 ab"}, // any tag begins the text
        {"<SYNC START=1><FONT COLOR=red>b<P CLASS=X>c" + Y, "1-2147483647 bc"},
        {"<SYNC START=1><P>a<P CLASS=X>b" + Y, "1-2147483647 ab"},
        {"<SYNC START=1>a<b<P CLASS=X>c" + Y, "1-2147483647 c"},
        {"<SYNC START=1><p\nclass=\"x\"><P CLASS=X>a" + Y, "1-2147483647 a"},
        // Of two SYNC tags the later one gives the times.
        {Sync(1, "X", "a") + "<SYNC START=2 END=4><SYNC START=\"3\"><P CLASS=X>b" + Y, "1-2 a|3-2147483647 b"},
        // One that the header took and that cannot be read leads to the next one.
        {"<SYNC START=1 END=x><P CLASS=X>a" + Sync(2, "X", "b") + Y, "2-2 b|2-2147483647 b", 1},
        {"<SYNC START=1 END=x><P CLASS=X>a</BODY>b", "0-2147483647 b", 1}, // no time was read at all
        {"<SYNC START=1 <SYNC START=2><P CLASS=X>a" + Y, "2-2 a|2-2147483647 a"}, // without its ">" a tag is none
        // Another class's text is passed over.
        {"<SYNC START=1><P CLASS=Y>a<P CLASS=X>b</BODY>c", "1-2147483647 c"},
        {"<SYNC START=1><P CLASS=Y>a<P CLASS=X>b", ""},
        {"<SYNC START=1><P CLASS=Y>a<P CLASS=X>b<SYNC START=\"2\"><P CLASS=X>c", "2-2147483647 c"},
        {"<SYNC START=1><P CLASS=X ID=1>a" + Y, "", 1}, // the header found X, the frame finds nobody
    };
    // clang-format on
    for (const auto &stCase : astCase)
        for (const TestEncoding eEncoding : ENCODINGS) {
            ASSERT_EQ(Open(".smi", Encode(stCase.strFile, eEncoding)), 0u);
            const uint32_t uiX = pstQuibCaptionParserInfo->astClassInfo[0].ausName[0] == 'X' ? 0 : 1;
            ASSERT_EQ(zyrSubtitle_selectClass(1, &uiX), 0u);
            m_vecLog.clear();
            std::string strX;
            for (const TestFrame &stFrame : Read_All())
                strX += (strX.empty() ? "" : "|") + std::to_string(stFrame.iStart) + "-" +
                        std::to_string(stFrame.iEnd) + " " + stFrame.strText;
            EXPECT_EQ(strX, stCase.strX) << stCase.strFile;
            EXPECT_EQ(Count_Log("Unregistered") + Count_Log("Failed to parse"), stCase.uiLogs)
                << stCase.strFile;
        }
}

/** Two languages and an unnamed class, out of order, with some of everything. */
std::string Make_Mixed(uint32_t uiSeed)
{
    std::mt19937 stRandom(uiSeed);
    const auto fnOneOf = [&](std::initializer_list<const char *> vecTexts) {
        return std::string(vecTexts.begin()[stRandom() % vecTexts.size()]);
    };
    std::string strFile = "<SAMI><BODY>\r\n";
    for (int iBlock = 0; iBlock < 60; ++iBlock) {
        strFile += fnOneOf(
            {"<SYNC Start=", "<SYNC Start=", "<sync\tstart=", "<SYNC Start=\"", "<SYNC END=7 Start="});
        strFile += std::to_string(stRandom() % 500) +
                   fnOneOf({">", ">", ">", " >", " end=9>", " end=z>", "\">", " "});
        const uint32_t uiTags = stRandom() % 4;
        for (uint32_t uiTag = 0; uiTag <= uiTags; ++uiTag)
            strFile += fnOneOf({"<P Class=K>", "<P Class=K>", "<P Class=E>", "<P Class=E>", "<P>",
                                "<P Class=E x>", "<i>"}) +
                       fnOneOf({"안녕 ", "a&amp;b", "<br>x", "<SYNC ", "</i>", "&nbsp;", ""});
    }
    return strFile + fnOneOf({"</BODY>end", "", "<SYNC START=3>"});
}

TEST_F(SamiTest, FramesDoNotDependOnReads)
{
    for (uint32_t uiSeed = 0; uiSeed < 6; ++uiSeed)
        for (const TestEncoding eEncoding : ENCODINGS) {
            const std::string strFile = Encode(Make_Mixed(uiSeed), eEncoding);
            ASSERT_EQ(Open(".smi", strFile), 0u);
            const std::string strClasses = Get_Classes();
            const std::vector<TestFrame> vecFrames = Call_Often(70);
            for (const uint32_t uiChunk : {1u, 2u, 3u, 5u, 7u, 511u}) {
                // The mark is looked for in the first read alone.
                Read_InChunks(std::max(uiChunk, 3u));
                ASSERT_EQ(Open(".smi", strFile), 0u);
                Read_InChunks(uiChunk);
                EXPECT_EQ(Get_Classes(), strClasses) << uiChunk;
                EXPECT_EQ(Call_Often(70), vecFrames) << "seed " << uiSeed << ", chunks of " << uiChunk;
                Read_InChunks(0);
            }
        }
}

// ---- Passing over other classes' SYNC tags ----

TEST_F(SamiTest, PassedTagsChangeNothing)
{
    // With the option for single bytes set behind the open, nothing that was learnt about the file is used;
    // for ASCII text nothing else changes.
    for (uint32_t uiSeed = 100; uiSeed < 400; ++uiSeed) {
        std::string strFile = Make_Mixed(uiSeed);
        std::erase_if(strFile, [](char cByte) { return (cByte & 0x80) != 0; });
        std::vector<TestFrame> avecFrames[2];
        std::vector<std::string> avecLog[2];
        for (const bool bLearn : {false, true}) {
            ASSERT_EQ(Open(".smi", strFile), 0u);
            if (!bLearn) QUIBCAPTPARS_Set_ParsingOption(2);
            // The log names the source line of each message; the same one speaks in both cases.
            m_vecLog.clear();
            for (uint32_t uiTarget : {400u, 200u, 0u, 300u}) {
                const std::vector<TestFrame> vecFrames = Call_Often(20);
                avecFrames[bLearn].insert(avecFrames[bLearn].end(), vecFrames.begin(), vecFrames.end());
                zyrSubtitle_seek(uiTarget);
            }
            avecLog[bLearn] = m_vecLog;
        }
        ASSERT_EQ(avecFrames[0], avecFrames[1]) << uiSeed;
        ASSERT_EQ(avecLog[0], avecLog[1]) << uiSeed;
    }
}

TEST_F(SamiTest, WhatWasLearntIsForgottenWithItsReason)
{
    const std::string strFar = Repeat("<SYNC Start=5><P Class=K>k<P Class=E>e\r\n", 50);
    // The classes change: what was another class's text is now this one's.
    ASSERT_EQ(Open(".smi", Syncs("K", 31) + Syncs("A", 31) + "<SYNC Start=4><P Class=K>first<P Class=E>\r\n" +
                               strFar + "<SYNC Start=9><P Class=E>end"),
              0u);
    Call_Often(60);
    ASSERT_EQ(CAPTIONPARS_SAMI_MergeMultiLanguages(0, 2), 1); // K into E, which is the second class now
    const uint32_t uiSecond = 1;
    ASSERT_EQ(zyrSubtitle_selectClass(1, &uiSecond), 0u);
    EXPECT_EQ(Read_Texts().substr(0, 13), "0 K0|4 first|");
    // The host has other bytes taken for characters: a tag comes out from behind a lead byte.
    ASSERT_EQ(Open(".smi", strFar + "\xB0<SYNC Start=7><P Class=E>near" + Sync(9, "E", "end")), 0u);
    const uint32_t uiE = Get_Counts().front() == 'E' ? 0 : 1;
    ASSERT_EQ(zyrSubtitle_selectClass(1, &uiE), 0u);
    for (const TestFrame &stFrame : Call_Often(20)) EXPECT_EQ(stFrame.strText, "end");
    QUIBCAPTPARS_Set_ParsingOption(2);
    for (const TestFrame &stFrame : Call_Often(20)) EXPECT_EQ(stFrame.strText, "near");
    // Text without a SYNC tag of its own has the times of the last good one that was passed.
    ASSERT_EQ(Open(".smi", strFar + "<SYNC Start=77><P Class=K>k<P Class=E><SYNC Start=8 End=x></BODY>end"),
              0u);
    ASSERT_EQ(zyrSubtitle_selectClass(1, &uiSecond), 0u);
    for (const TestFrame &stFrame : Call_Often(40)) EXPECT_EQ(stFrame.iStart, 77);
    EXPECT_EQ(Count_Log("Failed to parse the caption tag!"), 40u) << "the bad tag is told of every time";
    // A scan that does not begin at the file's start counts other places than the file does.
    const std::string strShifted =
        Repeat(" ", 100) + strFar + Syncs("K", 1) + "<SYNC Start=9><P Class=E>end" + Repeat("\r\n", 100);
    ASSERT_EQ(Open(".smi", strShifted), 0u);
    pstQuibCaptionParserInfo->uiCurrStream = 0;
    ASSERT_EQ(QuibCaptionParser_Init_CaptionStreamVariables(TRACK_GetFileHandleOfSubtitleData()), 1);
    pstQuibCaptionParserInfo->astStreamInfo[0].iStreamBufIndex = 100;
    ASSERT_EQ(HeaderParser_SAMI(TRACK_GetFileHandleOfSubtitleData()), 1);
    ASSERT_EQ(zyrSubtitle_selectClass(1, &uiSecond), 0u);
    for (const TestFrame &stFrame : Call_Often(51)) EXPECT_EQ(stFrame.strText, "end");
}

TEST_F(SamiTest, FramesThatLeadFarAreReadInLinearTime)
{
    struct {
        const char *pszBlock; // its entry is class E's, but its text is not
        std::string strEnd;
        size_t uiFrames;
    } const astCase[] = {
        {"<SYNC Start=5><P Class=K>k<P Class=E>e\r\n", "<SYNC Start=9><P Class=E>end", 3001},
        {"<SYNC Start=5 End=8><P Class=K>k<P Class=E>e\r\n", "</BODY>end", 3000},
        {"<SYNC Start=5><P Class=K>k<P Class=E>e\r\n", "", 0},
        {"<SYNC Start=5><P Class=K>k<P Class=E>e\r\n", "<SYNC Start=6>" + Repeat(" ", 200000), 0},
        {"<SYNC Start=5><SYNC \n><P Class=K>k<P Class=E>\r\n", "", 0},
        {"<SYNC Start=5><SYNC <P Class=E>padding\r\n", "<SYNC Start=9><P Class=E>end", 3001},
    };
    for (const auto &stCase : astCase) {
        ASSERT_EQ(Open(".smi", Repeat(stCase.pszBlock, 3000) + Syncs("K", 40) + stCase.strEnd), 0u);
        const uint32_t uiE = pstQuibCaptionParserInfo->astClassInfo[0].ausName[0] == 'E' ? 0 : 1;
        ASSERT_EQ(zyrSubtitle_selectClass(1, &uiE), 0u);
        Count_Reads();
        size_t uiFrames = 0;
        TestFrame stFrame;
        for (int iCall = 0; iCall < 3001; ++iCall)
            if (Read_Frame(&stFrame)) {
                ++uiFrames;
                EXPECT_EQ(stFrame.strText, "end");
            }
        EXPECT_EQ(uiFrames, stCase.uiFrames) << stCase.pszBlock;
        EXPECT_LT(m_llBytesRead, int64_t{3001} * 70000) << "the rest of the file for every frame is 180 MB";
    }
}

// ---- Several classes ----

TEST_F(SamiTest, ClassesComeInTimeOrder)
{
    const std::string strFile = Sync(1000, "K", "k1") + Sync(1000, "E", "e1") + Sync(2000, "E", "e2") +
                                Sync(2500, "K", "k2") + Sync(3000, "E", "e3") + Sync(3000, "K", "k3");
    ASSERT_EQ(Open(".smi", strFile), 0u);
    const std::vector<TestFrame> vecFrames = Read_All();
    EXPECT_EQ(vecFrames, (std::vector<TestFrame>{{0, 1000, 2500, "k1"},
                                                 {1, 1000, 2000, "e1"},
                                                 {1, 2000, 3000, "e2"},
                                                 {0, 2500, 3000, "k2"},
                                                 {0, 3000, OPEN_END_PTS, "k3"},
                                                 {1, 3000, OPEN_END_PTS, "e3"}}));
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(0), -3);
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(6), -3);
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(7), -2);
    struct {
        uint32_t uiTarget;
        const char *pszFrames;
    } const astSeek[] = {
        {0, "1000 k1|1000 e1|2000 e2|2500 k2|3000 k3|3000 e3"},
        {1000, "1000 k1|1000 e1|2000 e2|2500 k2|3000 k3|3000 e3"},
        {1001, "2000 e2|2500 k2|3000 k3|3000 e3"},
        {2500, "2500 k2|3000 k3|3000 e3"},
        {3000, "3000 k3|3000 e3"},
        {3001, ""},
        {0x90000000, "3000 k3|3000 e3"}, // late unsigned, and signed before all: nothing is dropped
    };
    for (const auto &stSeek : astSeek) {
        ASSERT_EQ(zyrSubtitle_seek(stSeek.uiTarget), 0u);
        EXPECT_EQ(Read_Texts(), stSeek.pszFrames) << stSeek.uiTarget;
    }
}

TEST_F(SamiTest, SeekPicksTheFrameOnScreen)
{
    // c is of another class; negative times are late ones when they are compared.
    const std::string strFile = Sync(4294967196, "X", "m100") + Sync(4294967246, "X", "m50") +
                                Sync(5, "Y", "c") + Sync(10, "X", "a") + Sync(20, "X", "b") +
                                Sync(20, "X", "b2");
    struct {
        uint32_t uiTarget;
        int32_t iCurrPTS;
    } const astCase[] = {
        {0, -101},          {10, -101},         {11, -101},         {20, -101},       {100, -101},
        {0xFFFFFF9C, -101}, {0xFFFFFF9D, -101}, {0xFFFFFFCE, -101}, {0xFFFFFFCF, 19}, {0xFFFFFFFF, 19},
    };
    for (const auto &stCase : astCase) {
        ASSERT_EQ(Open(".smi", strFile), 0u);
        pstQuibCaptionParserInfo->uiCurrStream = 0;
        ASSERT_EQ(Seek_SAMI(stCase.uiTarget, 0, 0, pstQuibCaptionParserInfo), 1);
        EXPECT_EQ(pstQuibCaptionParserInfo->iCurrPTS, stCase.iCurrPTS) << stCase.uiTarget;
    }
    // A class whose first frame comes late: the pick is the head of all.
    ASSERT_EQ(Open(".smi", strFile + Sync(500, "Z", "z")), 0u);
    pstQuibCaptionParserInfo->uiCurrStream = 0;
    pstQuibCaptionParserInfo->uiCurrClass = 2;
    ASSERT_EQ(Seek_SAMI(400, 0, 0, pstQuibCaptionParserInfo), 1);
    EXPECT_EQ(pstQuibCaptionParserInfo->iCurrPTS, -101);
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(2), 500);
    // A target like the walk over the class's frames would find it, for every time.
    std::string strMany;
    for (int64_t llTime = 0; llTime < 300; llTime += 3)
        strMany += Sync(llTime, llTime % 9 == 0 ? "A" : "B", "t") + Sync(llTime, "B", "t");
    ASSERT_EQ(Open(".smi", strMany), 0u);
    for (uint32_t uiTarget = 0; uiTarget < 310; ++uiTarget) {
        uint32_t uiPick = 0;
        for (uint32_t uiFrame = 0; uiFrame < s_uiFrameInfoNums; ++uiFrame) {
            if (s_pstFrameInfoArray[uiFrame].uiClassIndex != 1) continue;
            if (uiTarget <= static_cast<uint32_t>(s_pstFrameInfoArray[uiFrame].iPTS)) break;
            uiPick = uiFrame;
        }
        pstQuibCaptionParserInfo->uiCurrStream = 1;
        pstQuibCaptionParserInfo->uiCurrClass = 1;
        ASSERT_EQ(Seek_SAMI(uiTarget, 0, 0, pstQuibCaptionParserInfo), 1);
        EXPECT_EQ(pstQuibCaptionParserInfo->llCurrFilePos, s_pstFrameInfoArray[uiPick].llFilePos) << uiTarget;
    }
}

TEST_F(SamiTest, AClassWithoutFramesIsHarmless)
{
    ASSERT_EQ(Open(".smi", "<P CLASS=X>"), 0u);
    TestFrame stFrame;
    EXPECT_FALSE(Read_Frame(&stFrame));
    EXPECT_EQ(zyrSubtitle_seek(0), 1u) << "there is nothing to seek in";
    EXPECT_FALSE(Read_Frame(&stFrame));
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(0), -3);
    zyrSubtitle_close();
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(0), -3);
    EXPECT_EQ(Seek_SAMI(0, 0, 0, nullptr), -1);
    EXPECT_EQ(FrameParser_SAMI(), -1);
    EXPECT_EQ(HeaderParser_SAMI(nullptr), -1);
}

TEST_F(SamiTest, MomentsTogether)
{
    const std::string strLong = Repeat("가나다라마바사아 ", 42); // six lines of three bytes a character
    std::string strFile;
    for (const char *pszClass : {"A", "B", "C", "D", "E"}) strFile += Sync(1000, pszClass, strLong);
    strFile += Sync(2000, "B", "b") + Sync(2000, "D", "d") + Sync(2500, "A", "a");
    ASSERT_EQ(Open(".smi", Encode(strFile, E_UTF8)), 0u);
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    ASSERT_EQ(QUIB_CAPTION_ParsingProcessEx(), 2);
    EXPECT_GT(stInfo.uiOutTextLength, 1900u);
    EXPECT_LE(stInfo.uiOutTextLength, 2048u) << "five full streams reach past the text";
    EXPECT_EQ(stInfo.aucOutText[2046] | stInfo.aucOutText[2047], 0);
    EXPECT_EQ(stInfo.aucClassName[0], 0) << "what stands behind the text is not overwritten";
    ASSERT_EQ(Open(".smi", Sync(1000, "A", "a") + Sync(1000, "B", "b") + Sync(2000, "B", "b2")), 0u);
    for (const char *pszText : {"a\nb", "a\nb2"}) { // what is still shown stays in the text
        ASSERT_EQ(QUIB_CAPTION_ParsingProcessEx(), 2);
        EXPECT_STREQ(reinterpret_cast<const char *>(pstQuibCaptionParserInfo->aucOutText), pszText);
    }
    EXPECT_EQ(pstQuibCaptionParserInfo->iOutStartPTS, 2000);
}

TEST_F(SamiTest, EverySelectionOfSevenClasses)
{
    std::string strFile;
    for (const char *pszClass : {"A", "B", "C", "D", "E", "F", "G"})
        strFile += Syncs(pszClass, 31, pszClass[0]);
    ASSERT_EQ(Open(".smi", strFile), 0u);
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    ASSERT_EQ(stInfo.uiClassNums, 7u);
    constexpr uint64_t STREAM_BYTES = 30720 + 65536;
    const uint64_t ullBase = zyr_host_liveBytes() - 5 * STREAM_BYTES;
    std::vector<uint32_t> vecClasses(7);
    std::iota(vecClasses.begin(), vecClasses.end(), 0u);
    uint32_t uiSelections = 0;
    do
        for (int32_t iCount = 1; iCount <= 7; ++iCount) {
            // Each prefix once, when the rest is in its first order.
            if (!std::is_sorted(vecClasses.begin() + iCount, vecClasses.end())) continue;
            ASSERT_EQ(zyrSubtitle_selectClass(iCount, vecClasses.data()), 0u);
            ++uiSelections;
            const uint32_t uiStreams = std::min<uint32_t>(static_cast<uint32_t>(iCount), ZYR_STREAM_MAX);
            ASSERT_EQ(stInfo.uiStreamNums, uiStreams);
            ASSERT_EQ(zyr_host_liveBytes(), ullBase + uiStreams * STREAM_BYTES);
            for (uint32_t uiStream = 0; uiStream < ZYR_STREAM_MAX; ++uiStream) {
                const bool bUsed = uiStream < uiStreams;
                ASSERT_EQ(stInfo.astStreamInfo[uiStream].pucStreamBuf != nullptr, bUsed);
                ASSERT_EQ(s_astLineTable[uiStream].pusTextBuf != nullptr, bUsed);
                if (bUsed) {
                    ASSERT_EQ(stInfo.astStreamState[uiStream].uiClassIndex, vecClasses[uiStream]);
                }
            }
            // The class that comes first in the alphabet has the earliest frame.
            const auto itFirst = std::min_element(vecClasses.begin(), vecClasses.begin() + uiStreams);
            TestFrame stFrame;
            ASSERT_TRUE(Read_Frame(&stFrame));
            ASSERT_EQ(stFrame.uiStream, static_cast<uint32_t>(itFirst - vecClasses.begin()));
            ASSERT_EQ(stFrame.strText, std::string(1, static_cast<char>('A' + *itFirst)) + "0");
        }
    while (std::next_permutation(vecClasses.begin(), vecClasses.end()));
    EXPECT_EQ(uiSelections, 7u + 42 + 210 + 840 + 2520 + 5040 + 5040);
}

TEST_F(SamiTest, OddSelections)
{
    ASSERT_EQ(Open(".smi", Syncs("A", 31) + Syncs("B", 31, 5)), 0u);
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    const uint32_t auiTwice[] = {1, 1, 9, 0};
    ASSERT_EQ(zyrSubtitle_selectClass(4, auiTwice), 0u);
    EXPECT_EQ(stInfo.uiStreamNums, 2u);
    EXPECT_EQ(stInfo.astStreamState[0].uiClassIndex, 1u);
    EXPECT_EQ(Read_Texts().substr(0, 9), "0 A0|5 B0");
    // A selection starts its classes again, also one that was read to its end.
    const uint32_t auiA[] = {0};
    ASSERT_EQ(zyrSubtitle_selectClass(1, auiA), 0u);
    EXPECT_EQ(Read_All().size(), 31u);
    const uint32_t auiNone[] = {2, 7, UINT32_MAX};
    TestFrame stFrame;
    ASSERT_EQ(zyrSubtitle_selectClass(3, auiNone), 0u);
    EXPECT_EQ(stInfo.uiStreamNums, 0u);
    m_vecLog.clear();
    EXPECT_FALSE(Read_Frame(&stFrame));
    EXPECT_EQ(zyrSubtitle_seek(10), 0u);
    EXPECT_EQ(m_vecLog.size(), 0u);
    EXPECT_EQ(QUIB_CAPTION_ParsingProcessEx(), -2);
    // A failed selection leaves what it has set up, and the next one starts afresh.
    for (uint32_t uiNth = 1; uiNth <= 4; ++uiNth) {
        zyr_host_failAllocation(uiNth, 0);
        EXPECT_EQ(zyrSubtitleHandler_selectClass(4, auiTwice), 3u);
        zyr_host_failAllocation(0, 0);
        EXPECT_EQ(stInfo.uiStreamNums, (uiNth - 1) / 2);
        Read_Frame(&stFrame);
        ASSERT_EQ(zyrSubtitle_selectClass(4, auiTwice), 0u);
        EXPECT_EQ(Read_All().size(), 62u);
    }
    // Streams that QUIBCAPT_Set_ClassType() leaves out show nothing of their last frame later on.
    EXPECT_EQ(QUIBCAPT_Set_ClassType(0, 7), 1);
    const uint32_t auiBoth[] = {0, 1};
    ASSERT_EQ(zyrSubtitle_selectClass(2, auiBoth), 0u);
    ASSERT_EQ(QUIB_CAPTION_ParsingProcessEx(), 2);
    EXPECT_STREQ(reinterpret_cast<const char *>(stInfo.aucOutText), "A0");
}

// ---- Resources ----

TEST_F(SamiTest, EveryAllocationAndFileCallMayFail)
{
    const auto fnFile = [](int iBlocks) {
        return Repeat("<SYNC Start=5><P Class=K>k<P Class=E>e\r\n", 40) + Syncs("K", iBlocks) +
               Sync(90, "E", "end") + Syncs("S", 5);
    };
    std::string strFile = fnFile(1100); // more than the index begins with
    const auto fnPlay = [&] {
        if (Open(".smi", strFile) != 0) return false;
        TestFrame stFrame;
        for (int iFrame = 0; iFrame < 30; ++iFrame) Read_Frame(&stFrame);
        zyrSubtitle_seek(40);
        Read_Frame(&stFrame);
        const uint32_t auiBoth[] = {1, 0};
        zyrSubtitle_selectClass(2, auiBoth);
        for (int iFrame = 0; iFrame < 30; ++iFrame) Read_Frame(&stFrame);
        QUIB_CAPTION_ParsingProcessEx();
        zyrSubtitle_close();
        return true;
    };
    const auto fnCheck = [] {
        zyrSubtitle_close();
        ASSERT_EQ(zyr_host_liveBytes(), 0u);
        ASSERT_EQ(zyr_host_openFiles(), 0u);
    };
    const uint32_t uiBefore = zyr_host_allocations();
    ASSERT_EQ(Open(".smi", strFile), 0u);
    const uint32_t uiOfOpen = zyr_host_allocations() - uiBefore;
    zyrSubtitle_close();
    ASSERT_TRUE(fnPlay());
    const uint32_t uiAllocations = zyr_host_allocations() - uiBefore - uiOfOpen;
    for (const int iFromThenOn : {0, 1})
        for (uint32_t uiNth = 1; uiNth <= uiAllocations; ++uiNth) {
            zyr_host_failAllocation(uiNth, iFromThenOn);
            EXPECT_EQ(fnPlay(), uiNth > uiOfOpen) << uiNth;
            zyr_host_failAllocation(0, 0);
            fnCheck();
        }
    strFile = fnFile(20) + Repeat(" ", 70000);
    for (const int iFromThenOn : {0, 1})
        for (const int iCall : {ZYR_HOST_READ, ZYR_HOST_SEEK, ZYR_HOST_TELL}) {
            const uint32_t uiFirst = zyr_host_fileCalls(iCall);
            fnPlay();
            const uint32_t uiCalls = zyr_host_fileCalls(iCall) - uiFirst;
            for (uint32_t uiNth = 1; uiNth <= uiCalls; ++uiNth)
                for (const int32_t iResult : {0, -5, 1}) {
                    SCOPED_TRACE(testing::Message() << "file call " << iCall << ", number " << uiNth);
                    zyr_host_failFile(iCall, uiNth, iResult, iFromThenOn);
                    fnPlay();
                    zyr_host_failFile(iCall, 0, 0, 0);
                    fnCheck();
                }
        }
}

TEST_F(SamiTest, FailuresAreReported)
{
    // The end of the file is in the read buffer after the open, so the first frames must be fetched.
    const std::string strFile = Syncs("X", 40) + Repeat(" ", 70000);
    const char *const MESSAGES[] = {"HeaderParser_SAMI() - File Tell Failed! (ERROR = -7)",
                                    " Frame Information Array Memory Allocation Failed!"};
    size_t auiSeen[2] = {};
    for (uint32_t uiNth = 1; uiNth < 30; ++uiNth)
        for (const uint32_t uiKind : {0u, 1u}) {
            zyr_host_failFile(ZYR_HOST_TELL, uiKind == 0 ? uiNth : 0, -7, 0);
            zyr_host_failAllocation(uiKind == 1 ? uiNth : 0, 0);
            const uint32_t uiResult = Open(".smi", strFile);
            if (Count_Log(MESSAGES[uiKind]) == 0) continue;
            ++auiSeen[uiKind];
            EXPECT_EQ(uiResult, 1u);
        }
    zyr_host_failFile(ZYR_HOST_TELL, 0, 0, 0);
    zyr_host_failAllocation(0, 0);
    EXPECT_GT(auiSeen[0], 5u) << "each frame takes its place from the file";
    EXPECT_EQ(auiSeen[1], 2u) << "the first block, and the one in time order";

    TestFrame stFrame;
    ASSERT_EQ(Open(".smi", strFile), 0u);
    zyr_host_failFile(ZYR_HOST_READ, 1, -5, 0);
    EXPECT_FALSE(Read_Frame(&stFrame));
    EXPECT_EQ(Count_Log("FrameParser_SAMI() - QUIBCAPTCB_FileRead() Failed! (ERROR = -5)"), 1u);
    zyr_host_failFile(ZYR_HOST_SEEK, 1, -5, 0);
    EXPECT_FALSE(Read_Frame(&stFrame));
    EXPECT_EQ(Count_Log("FrameParser_SAMI() - File Seek Failed! (ERROR = -2)"), 1u);
    zyr_host_failFile(ZYR_HOST_SEEK, 1, -5, 0);
    EXPECT_EQ(zyrSubtitle_seek(50), 1u);
    EXPECT_EQ(Count_Log("Seek_SAMI() - QUIBCAPTCB_FileSeek() Failed! (ERROR = -2)"), 1u);
    ASSERT_TRUE(Read_Frame(&stFrame));
    EXPECT_EQ(stFrame.strText, "X4") << "the cursor has moved all the same";
}

TEST_F(SamiTest, NothingIsAllocatedPerFrame)
{
    ASSERT_EQ(Open(".smi", Repeat("<SYNC Start=5><P Class=K>k<P Class=E>e\r\n", 500) + Syncs("K", 2000)), 0u);
    const uint32_t uiBefore = zyr_host_allocations();
    Call_Often(3000);
    zyrSubtitle_seek(100);
    Call_Often(100);
    EXPECT_EQ(zyr_host_allocations(), uiBefore);
}

TEST_F(SamiTest, FramesInFileOrderAreReadOnce)
{
    std::string strFile;
    for (int iBlock = 0; iBlock < 20000; ++iBlock) strFile += Sync(iBlock, "X", Repeat("x", 40));
    ASSERT_EQ(Open(".smi", strFile), 0u);
    Count_Reads();
    EXPECT_EQ(Read_All().size(), 20000u);
    EXPECT_LE(m_llBytesRead, static_cast<int64_t>(strFile.size() * 11 / 10 + 65536));
}

} // namespace
