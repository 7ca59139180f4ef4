// Frames, seeks and class selections of SAMI files, through the public calls.

#include <algorithm>
#include <random>

#include "format/sami/sami_kit.h"

namespace
{

TEST_F(SamiTest, Texts)
{
    const std::string FULL = Repeat("x", 64);
    const std::string PAIRS = Repeat("a&", 32);
    // clang-format off
    const PlayCase CASES[] = {
        {"a decoded blank", Sync(7, "X", "Hello&nbsp;World"), "7-open Hello World"},
        {"an entity without an end", Sync(7, "X", "a&nbsp b"), "7-open a  b"},
        {"entities and none", Sync(7, "X", "&lt;B&gt; AT&T &Eacute;"), "7-open <B> AT&T &Eacute;"},
        {"blanks are folded", Sync(7, "X", "a   b\t\tc"), "7-open a b c"},
        {"a line end is nothing", Sync(7, "X", "one\r\ntwo\nthree"), "7-open onetwothree"},
        {"but the blank behind it counts again", Sync(7, "X", "a \r\n b"), "7-open a  b"},
        {"br breaks the line", Sync(7, "X", "a<br>b<BR/>c<br/>d"), "7-open a|bcd"},
        {"closing tags", Sync(7, "X", "<i>a</i></P></SYNC>\r\n"), "!7-open a"},
        {"a tag in a tag", Sync(7, "X", "a<b <i>c"), "7-open a<b c"},
        {"a SYNC tag's name alone ends a frame", Sync(7, "X", "a<syn>b<SYNC>never"), "7-open ab"},
        {"so does a name that begins like it", Sync(7, "X", "a<SYNCHRO>never"), "7-open a"},
        {"a zero", Sync(7, "X", {"a\0b", 3}), "7-open ab"},
        {"a long word", Sync(7, "X", Repeat("x", 64 * 6 + 9)), "!7-open " + Repeat(FULL + "|", 5) + FULL},
        {"blanks are handed over in time", Sync(7, "X", Repeat(" \n", 305) + "x" + Repeat(" \n", 305) + "y"), "7-open x|y"},
        {"many entities", Sync(7, "X", Repeat("a&amp;", 400)), "!7-open " + Repeat(PAIRS + "|", 5) + PAIRS},
        {"a tag too long to be kept", Sync(7, "X", "<" + Repeat("q", 600) + ">a"), "7-open a"},
        {"brackets given back", Sync(7, "X", Repeat("<a", 3) + ">b"), "7-open <a<ab"},
    };
    // clang-format on
    Expect_Played(".smi", CASES);
    Open_File(Sync(7, "X", "a<zz>b"));
    QUIBCAPTPARS_Set_ParsingOption(1);
    EXPECT_EQ(Play(), "7-open a<zz>b");
}

TEST_F(SamiTest, WhatLeadsToTheText)
{
    const std::string Y = Sync(9, "Y", "y");
    // clang-format off
    const struct {
        std::string strFile;
        std::string strX; // frames of class X
    } CASES[] = {
        {Sync(1, "X", "a") + Y, "1-open a"},
        {"<SYNC START=1 END=5><P CLASS=X>a" + Y, "1-5 a"},
        {"<SYNC START=1 END=5><P CLASS=X>a" + Y + Sync(2, "X", "b"), "1-2 a; 2-open b"},
        {"<SYNC START=1><I><P CLASS=X>a<P CLASS=X>b" + Y, "1-open ab"}, // any tag begins the text
        {"<SYNC START=1><FONT COLOR=red>b<P CLASS=X>c" + Y, "1-open bc"},
        {"<SYNC START=1><P>a<P CLASS=X>b" + Y, "1-open ab"},
        {"<SYNC START=1>a<b<P CLASS=X>c" + Y, "1-open c"},
        {"<SYNC START=1><p\nclass=\"x\"><P CLASS=X>a" + Y, "1-open a"},
        // Of two SYNC tags the later one gives the times.
        {Sync(1, "X", "a") + "<SYNC START=2 END=4><SYNC START=\"3\"><P CLASS=X>b" + Y, "1-2 a; 3-open b"},
        // One that the header took and that cannot be read leads to the next one.
        {"<SYNC START=1 END=x><P CLASS=X>a" + Sync(2, "X", "b") + Y, "!2-2 b; 2-open b"},
        {"<SYNC START=1 END=x><P CLASS=X>a</BODY>b", "!0-open b"}, // no time was read at all
        {"<SYNC START=1 <SYNC START=2><P CLASS=X>a" + Y, "2-2 a; 2-open a"}, // without its ">" a tag is none
        // Another class's text is passed over.
        {"<SYNC START=1><P CLASS=Y>a<P CLASS=X>b" + Y, "1-open b"},
        {"<SYNC START=1 END=5><P CLASS=Y>a&amp;<i>a</i><BR><<P CLASS=X>b", "1-5 b"},
        {"<SYNC START=1><P CLASS=Y>a<P>a<P >a</P>a<P CLASS=X>b" + Y, "!1-open b"}, // only X's own P tag counts
        {"<SYNC START=1><P CLASS=Y>a<P CLASS=X <P CLASS=X>b" + Y, "1-open b"},
        {"<SYNC START=1><P CLASS=Y>a<SYNC <P CLASS=X>b" + Y, ""}, // it has ended
        {"<SYNC START=1><P CLASS=Y>a<SYNC START=\"2\"><P CLASS=X>b", "2-open b"},
        {"<SYNC START=1><P CLASS=Y>a<SYNC <P CLASS=X>b</BODY>c", "1-open c"},
        {"<SYNC START=1><P CLASS=X ID=1>a" + Y, ""}, // the header found X, the frame finds nobody
        {"<SYNC START=1><P CLASS=X ID=1>a<P CLASS=X>b" + Y, "!1-open b"},
        // So it is behind the text's beginning, up to a P tag that names X.
        {Sync(1, "X", "a<P CLASS=Y>c<BR>&amp;c<i>c</i><<P CLASS=x>b") + Y, "1-open ab"},
        {Sync(1, "X", "a <P CLASS=Y> c <P CLASS=Z>c<P CLASS=X> b") + Y, "1-open a  b"},
        {Sync(1, "X", "a<P CLASS=Y>c<P>c<P >c</P>c<P ID=1>c</SYNC></BODY>c") + Y, "!!1-open a"},
        {Sync(1, "X", "a<P CLASS=Y>c<P CLASS=X") + Sync(2, "X", "b") + Y, "1-2 a; 2-open b"},
        {Sync(1, "X", "a<P CLASS=Y>c<<sYnChro<P CLASS=X>c") + Y, "1-open a"},
        {Sync(1, "X", "a<P>b<P >c</P>d<P CLASS=X>e<P ID=1>f") + Y, "!!!!1-open abcdef"}, // without a CLASS: no one's
        {"<SYNC START=1><I>a<P CLASS=Y>b<P CLASS=X>c" + Y, "1-open ac"}, // what no one has is everybody's
        {Sync(1, "X", "a<P CLASS=" + Repeat("y", 600) + ">c<P CLASS=X>b") + Y, "1-open ab"},
    };
    // clang-format on
    for (const auto &stCase : CASES)
        for (const TestEncoding eEncoding : ENCODINGS) {
            Open_File(Encode(stCase.strFile, eEncoding));
            Select({Find_Class("X")});
            EXPECT_EQ(Play(), stCase.strX) << stCase.strFile;
        }
    Play(".smi", "<SYNC START=1><P CLASS=X ID=1>a" + Y);
    EXPECT_EQ(Count_Log("Unregistered Clase Name!"), 1u);
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
            std::string strWanted;
            for (const uint32_t uiReadSize : READ_SIZES) {
                // The mark is looked for in the first read alone.
                Read_InChunks(uiReadSize == 0 ? 0 : std::max(uiReadSize, 3u));
                Open_File(Encode(Make_Mixed(uiSeed), eEncoding));
                Read_InChunks(uiReadSize);
                const std::string strSeen = Get_Classes() + Play_Calls(70);
                if (uiReadSize == 0) strWanted = strSeen;
                EXPECT_EQ(strSeen, strWanted) << "seed " << uiSeed << ", reads of " << uiReadSize;
            }
        }
}

TEST_F(SamiTest, ClassesSideBySide)
{
    const std::string K = "<P CLASS=K>";
    const std::string E = "<P CLASS=E>";
    const std::string J = "<P CLASS=J>";
    // clang-format off
    const PlayCase CASES[] = {
        {"both play in step", "<SYNC START=1>" + K + "k1" + E + "e1<SYNC START=2 END=9>" + K + "k2" + E + "e2",
         "1-2 k1; 1:1-2 e1; 2-9 k2; 1:2-9 e2"},
        {"whatever comes first", "<SYNC START=1>" + K + "k1" + E + "e1<SYNC START=2>" + E + "e2" + K + "k2",
         "1-2 k1; 1:1-2 e1; 2-open k2; 1:2-open e2"},
        {"a SYNC need not name both", "<SYNC START=1>" + K + "k1" + E + "e1<SYNC START=2>" + K + "k2<SYNC START=3>" + E + "e3",
         "1-2 k1; 1:1-3 e1; 2-open k2; 1:3-open e3"},
        {"several of one class are one frame", "<SYNC START=1>" + K + "k1" + E + "e1" + K + "+" + E + "+<SYNC START=2>" + E + "e2" + E + "+",
         "1-open k1+; 1:1-2 e1+; 1:2-open e2+"},
        {"lines and styles are a class's own", "<SYNC START=1>" + K + "a<BR>b" + E + "c<BR>" + K + "d" + E + "e",
         "1-open a|bd; 1:1-open c|e"},
        {"three, a closing P in between", "<SYNC START=1>" + K + "k</P>" + E + "e</P>" + J + "j</P>",
         "!1-open k; !1:1-open e; !2:1-open j"},
        {"equal times in file order", "<SYNC START=1>" + K + "k1" + E + "e1<SYNC START=1>" + K + "k2" + E + "e2",
         "1-1 k1; 1-open k2; 1:1-1 e1; 1:1-open e2"},
    };
    // clang-format on
    Expect_Played(".smi", CASES);
}

TEST_F(SamiTest, OnlyAClassLeadsBackToTheUnnamedOne)
{
    // To the header "CLASS= X" names nobody.
    Open_File("<SYNC START=1><P >a<P CLASS= X>b<P >c<P ID=1>c" + Sync(2, "X", "x"));
    Scan_Again();
    Select({1});
    EXPECT_EQ(Play(), "1-open a");
}

TEST_F(SamiTest, SeeksAndMomentsOfClassesSideBySide)
{
    std::string strFile;
    for (const char *pszTime : {"10", "20", "30"})
        strFile +=
            "<SYNC Start=" + std::string(pszTime) + "><P Class=K>k" + pszTime + "<P Class=E>e" + pszTime;
    Open_File(strFile);
    const std::pair<uint32_t, const char *> CASES[] = {
        {0, "10-20 k10; 1:10-20 e10; "},      {10, "10-20 k10; 1:10-20 e10; "},
        {11, "20-30 k20; 1:20-30 e20; "},     {20, "20-30 k20; 1:20-30 e20; "},
        {30, "30-open k30; 1:30-open e30; "}, {31, "none; none; "},
    };
    for (const auto &[uiTarget, pszFrames] : CASES) {
        ASSERT_EQ(zyrSubtitle_seek(uiTarget), 0u);
        EXPECT_EQ(Play_Calls(2), pszFrames) << uiTarget;
    }
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    const std::pair<std::vector<uint32_t>, std::vector<const char *>> ORDERS[] = {
        {{0, 1}, {"k10\ne10", "k20\ne20", "k30\ne30"}},
        {{1, 0}, {"e10\nk10", "e20\nk20", "e30\nk30"}},
    };
    for (const auto &[vecClasses, vecTexts] : ORDERS) {
        Select(vecClasses);
        for (const char *pszText : vecTexts) {
            ASSERT_EQ(QUIB_CAPTION_ParsingProcessEx(), 2);
            EXPECT_STREQ(reinterpret_cast<const char *>(stInfo.aucOutText), pszText);
            EXPECT_EQ(stInfo.iOutStartPTS, std::atoi(pszText + 1));
        }
    }
    Select({1});
    EXPECT_EQ(Play(), "10-20 e10; 20-30 e20; 30-open e30");
}

TEST_F(SamiTest, AMergeLeavesOneFrameOfASync)
{
    const std::string strBoth =
        "<SYNC Start=10><P Class=K>k<P Class=E>e<P Class=J>j<SYNC Start=10><P Class=E>+";
    // As the open folds a small class, and as a call does.
    Open_File(Syncs("K", 40, 20) + strBoth);
    EXPECT_EQ(Get_Counts(), "K+E+J:44");
    EXPECT_EQ(s_uiFrameInfoNums, 42u);
    EXPECT_EQ(Play_Calls(3), "10-10 kej; 10-20 +; 20-30 K0; ");
    // In the middle of a film: what has been shown stays shown.
    const struct {
        uint32_t uiFrom, uiTo, uiEntries;
        int32_t iNextOfSecond;
    } CASES[] = {{1, 0, 4, -3}, {0, 1, 4, -3}, {2, 1, 5, 20}, {1, 2, 5, 20}, {2, 0, 5, 20}};
    for (const auto &stCase : CASES) {
        Open_File(strBoth + "<SYNC Start=20><P Class=K>K0<P Class=E>E0");
        EXPECT_EQ(Play_Calls(4), "10-20 k; 1:10-10 e; 1:10-20 +; 2:10-open j; ");
        ASSERT_EQ(CAPTIONPARS_SAMI_MergeMultiLanguages(stCase.uiFrom, stCase.uiTo), 1);
        EXPECT_EQ(s_uiFrameInfoNums, stCase.uiEntries) << stCase.uiFrom;
        EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(0), 20) << stCase.uiFrom;
        EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(1), stCase.iNextOfSecond) << stCase.uiFrom;
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
        std::string astrFrames[2];
        std::vector<std::string> avecLog[2]; // with the source line of each message: the same one speaks
        for (const bool bLearn : {false, true}) {
            Open_File(strFile);
            if (!bLearn) QUIBCAPTPARS_Set_ParsingOption(2);
            m_vecLog.clear();
            for (const uint32_t uiTarget : {400u, 200u, 0u, 300u}) {
                astrFrames[bLearn] += Play_Calls(20);
                zyrSubtitle_seek(uiTarget);
            }
            avecLog[bLearn] = m_vecLog;
        }
        ASSERT_EQ(astrFrames[0], astrFrames[1]) << uiSeed;
        ASSERT_EQ(avecLog[0], avecLog[1]) << uiSeed;
    }
}

/** Frames of class K, whose entries E has too, though not their texts: the half SYNC tag ends them. */
const std::string FAR = Repeat("<SYNC Start=5><P Class=K>k<SYNC <P Class=E>e\r\n", 50);

TEST_F(SamiTest, ClassesLearntAreForgottenWhenTheyChange)
{
    Open_File(Syncs("K", 31) + Syncs("A", 31) + FAR + "<SYNC Start=9><P Class=E>end");
    Play_Calls(200);
    ASSERT_EQ(CAPTIONPARS_SAMI_MergeMultiLanguages(0, 2), 1); // K into E, which is the second class now
    Select({1});
    EXPECT_EQ(Play_Calls(3), "0-5 K0; 5-5 k; 5-5 k; ") << "what was another class's text is now this one's";
}

TEST_F(SamiTest, TextLearntIsForgottenWhenBytesBecomeOtherCharacters)
{
    Open_File(FAR + "\xB0<SYNC Start=7><P Class=E>near" + Sync(9, "E", "end"));
    Select({Find_Class("E")});
    EXPECT_EQ(Play_Calls(20), Repeat("9-5 end; ", 20));
    QUIBCAPTPARS_Set_ParsingOption(2); // a tag comes out from behind a lead byte
    EXPECT_EQ(Play_Calls(20), Repeat("7-5 near; ", 20));
}

TEST_F(SamiTest, TextWithoutATagOfItsOwnHasTheTimesOfTheLastGoodOne)
{
    Open_File(FAR + "<SYNC Start=77><P Class=K>k<SYNC <P Class=E><SYNC Start=8 End=x></BODY>end");
    Select({1});
    EXPECT_EQ(Play_Calls(40), Repeat("!77-5 end; ", 40)) << "the bad tag is told of every time";
}

TEST_F(SamiTest, NothingIsLearntInAScanThatBeginsInsideTheFile)
{
    Open_File(Repeat(" ", 100) + FAR + Syncs("K", 1) + "<SYNC Start=9><P Class=E>end" + Repeat("\r\n", 100));
    Scan_Again(100); // it counts other places than the file does
    Select({1});
    for (int iCall = 0; iCall < 51; ++iCall) EXPECT_TRUE(Next().ends_with(" end"));
}

TEST_F(SamiTest, FramesThatLeadFarAreReadInLinearTime)
{
    // Wide enough for two entries each.
    const std::string HALF_TAG = "<SYNC Start=5><P Class=K>k<SYNC <P Class=E>" + Repeat(" ", 40);
    const std::string TWO_ATTRIBUTES = "<SYNC Start=5><P Class=K>k<P Class=E ID=1>" + Repeat(" ", 40);
    const std::string MANY = "<SYNC Start=6>" + Repeat("<P ID=1>", 50000);
    const struct {
        std::string strBlock; // its entry is class E's too, but its text is not
        std::string strEnd;
        ptrdiff_t iFrames;
    } CASES[] = {
        {HALF_TAG, "<SYNC Start=9><P Class=E>end", 3001},
        {HALF_TAG, "</BODY>end", 3000},
        {HALF_TAG, "", 0},
        {HALF_TAG, "<SYNC Start=6>" + Repeat(" ", 200000), 0},
        {"<SYNC Start=5><SYNC \n><P Class=K>k<SYNC <P Class=E>\r\n", "", 0},
        {"<SYNC Start=5><SYNC <P Class=E>padding\r\n", "<SYNC Start=9><P Class=E>end", 3001},
        {TWO_ATTRIBUTES, "<SYNC Start=9><P Class=E>end", 3001},
        {TWO_ATTRIBUTES, MANY + "<SYNC Start=8 End=x></BODY>end",
         3000}, // the times come from before them all
        {TWO_ATTRIBUTES, MANY, 0},
    };
    const std::string NOBODY = Repeat("<SYNC Start=5><P ID=1>u\r\n", 40); // so that no message is due for E
    for (const auto &stCase : CASES) {
        Open_File(Repeat(stCase.strBlock, 3000) + Syncs("K", 40) + NOBODY + stCase.strEnd);
        Select({Find_Class("E")});
        Count_Reads();
        ptrdiff_t iFrames = 0;
        for (int iCall = 0; iCall < 3001; ++iCall) iFrames += Next().ends_with(" end") ? 1 : 0;
        EXPECT_EQ(iFrames, stCase.iFrames) << stCase.strBlock;
        EXPECT_LT(m_llBytesRead, int64_t{3001} * 70000) << stCase.strBlock << stCase.strEnd.size();
    }
}

TEST_F(SamiTest, FramesInFileOrderAreReadOnce)
{
    std::string strOne, strTwo;
    for (int iBlock = 0; iBlock < 20000; ++iBlock) {
        strOne += Sync(iBlock, "X", Repeat("x", 40));
        strTwo += Sync(iBlock, "X", "x<P Class=Y>y" + Repeat(" ", 40));
    }
    // X is folded into Y: the three have two frames.
    const std::string strMany = "<SYNC Start=5><P Class=X>" + Repeat("<P Class=Y>y<P Class=Z>z", 40000);
    const struct {
        std::string strFile;
        uint32_t uiStreams;
        size_t uiFrames;
    } CASES[] = {{strOne, 1, 20000}, {strTwo, 2, 40000}, {strMany, 2, 2}};
    for (const auto &stCase : CASES) {
        Open_File(stCase.strFile);
        ASSERT_EQ(pstQuibCaptionParserInfo->uiStreamNums, stCase.uiStreams);
        Count_Reads();
        EXPECT_EQ(Count_Frames(), stCase.uiFrames);
        EXPECT_LE(m_llBytesRead,
                  static_cast<int64_t>(stCase.uiStreams * (stCase.strFile.size() * 11 / 10 + 65536)));
    }
}

// ---- Several classes ----

TEST_F(SamiTest, ClassesComeInTimeOrder)
{
    const std::string LAST = "3000-open k3; 1:3000-open e3";
    const std::string ALL = "1000-2500 k1; 1:1000-2000 e1; 1:2000-3000 e2; 2500-3000 k2; " + LAST;
    const std::string strFile = Sync(1000, "K", "k1") + Sync(1000, "E", "e1") + Sync(2000, "E", "e2") +
                                Sync(2500, "K", "k2") + Sync(3000, "E", "e3") + Sync(3000, "K", "k3");
    EXPECT_EQ(Play(".smi", strFile), ALL);
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(0), -3);
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(6), -3);
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(7), -2);
    const struct {
        uint32_t uiTarget;
        std::string strFrames;
    } CASES[] = {
        {0, ALL},
        {1000, ALL},
        {1001, "1:2000-3000 e2; 2500-3000 k2; " + LAST},
        {2500, "2500-3000 k2; " + LAST},
        {3000, LAST},
        {3001, ""},
        {0x90000000, LAST}, // late unsigned, and signed before all: nothing is dropped
    };
    for (const auto &stCase : CASES) {
        ASSERT_EQ(zyrSubtitle_seek(stCase.uiTarget), 0u);
        EXPECT_EQ(Play(), stCase.strFrames) << stCase.uiTarget;
    }
}

/** Let one class seek by itself. @return the index entry that it reads on from. */
const SamiFrameInfo &Seek_Class(uint32_t uiClass, uint32_t uiTarget)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    stInfo.uiCurrStream = std::min(uiClass, stInfo.uiStreamNums - 1);
    stInfo.uiCurrClass = uiClass;
    EXPECT_EQ(Seek_SAMI(uiTarget, 0, 0, &stInfo), 1);
    return *std::find_if(
        s_pstFrameInfoArray, s_pstFrameInfoArray + s_uiFrameInfoNums - 1,
        [&](const SamiFrameInfo &stFrame) { return stFrame.llFilePos == stInfo.llCurrFilePos; });
}

TEST_F(SamiTest, SeekPicksTheFrameOnScreen)
{
    // c is of another class; negative times are late ones when they are compared.
    const std::string strNegative = Sync(4294967196, "X", "m100") + Sync(4294967246, "X", "m50") +
                                    Sync(5, "Y", "c") + Sync(10, "X", "a") + Sync(20, "X", "b") +
                                    Sync(20, "X", "b2");
    const std::pair<uint32_t, int32_t> CASES[] = {
        // target, and start of the frame before it
        {0, -101},          {10, -101},         {11, -101},         {20, -101},       {100, -101},
        {0xFFFFFF9C, -101}, {0xFFFFFF9D, -101}, {0xFFFFFFCE, -101}, {0xFFFFFFCF, 19}, {0xFFFFFFFF, 19},
    };
    Open_File(strNegative + Sync(500, "Z", "z"));
    for (const auto &[uiTarget, iCurrPTS] : CASES) {
        Seek_Class(0, uiTarget);
        EXPECT_EQ(pstQuibCaptionParserInfo->iCurrPTS, iCurrPTS) << uiTarget;
    }
    // A class whose first frame comes late: the pick is the head of all.
    Seek_Class(2, 400);
    EXPECT_EQ(pstQuibCaptionParserInfo->iCurrPTS, -101);
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(2), 500);
    // A walk over the class's frames finds the same, for every time.
    std::string strMany;
    for (int64_t llTime = 0; llTime < 300; llTime += 3)
        strMany += Sync(llTime, llTime % 9 == 0 ? "A" : "B", "t") + Sync(llTime, "B", "t");
    Open_File(strMany);
    for (uint32_t uiTarget = 0; uiTarget < 310; ++uiTarget) {
        const SamiFrameInfo *pstPick = s_pstFrameInfoArray;
        for (uint32_t uiFrame = 0; uiFrame < s_uiFrameInfoNums; ++uiFrame) {
            const SamiFrameInfo &stFrame = s_pstFrameInfoArray[uiFrame];
            if (stFrame.uiClassIndex != 1) continue;
            if (uiTarget <= static_cast<uint32_t>(stFrame.iPTS)) break;
            pstPick = &stFrame;
        }
        EXPECT_EQ(&Seek_Class(1, uiTarget), pstPick) << uiTarget;
    }
}

TEST_F(SamiTest, AClassWithoutFramesIsHarmless)
{
    Open_File("<P CLASS=X>");
    EXPECT_EQ(Next(), "none");
    EXPECT_EQ(zyrSubtitle_seek(0), 1u) << "there is nothing to seek in";
    EXPECT_EQ(Next(), "none");
    EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(0), -3);
}

TEST_F(SamiTest, WithoutAFileNoClassHasANextFrame)
{
    std::string strFile;
    for (const char *pszClass : {"A", "B", "C", "D", "E", "F", "G"}) strFile += Syncs(pszClass, 31, 5);
    for (uint32_t uiFailing = 0; uiFailing < 12; ++uiFailing) { // 0: a close alone; then every allocation
        Open_File(strFile);
        for (uint32_t uiClass = 0; uiClass < ZYR_CLASS_MAX; ++uiClass)
            EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(uiClass), 5);
        zyr_host_failAllocation(uiFailing, 1);
        EXPECT_EQ(uiFailing == 0 ? zyrSubtitle_close() : Open(".smi", strFile) - 1, 0u) << uiFailing;
        zyr_host_failAllocation(0, 0);
        for (uint32_t uiClass = 0; uiClass < ZYR_CLASS_MAX; ++uiClass)
            EXPECT_EQ(CAPTIONPARS_SAMI_GetNextFramePTS(uiClass), -3) << uiFailing;
    }
}

TEST_F(SamiTest, MomentsTogether)
{
    Open_File(Sync(1000, "A", "a") + Sync(1000, "B", "b") + Sync(2000, "B", "b2"));
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
        strFile += Syncs(pszClass, 31, static_cast<uint8_t>(pszClass[0]));
    Open_File(strFile);
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    ASSERT_EQ(stInfo.uiClassNums, 7u);
    constexpr uint64_t STREAM_BYTES = 30720 + 65536 + 64; // zeros stand behind what is read
    const uint64_t ullBase = zyr_host_liveBytes() - 5 * STREAM_BYTES;
    std::vector<uint32_t> vecClasses = {0, 1, 2, 3, 4, 5, 6};
    uint32_t uiSelections = 0;
    do
        for (int32_t iCount = 1; iCount <= 7; ++iCount) {
            // Each prefix once, when the rest is in its first order.
            if (!std::is_sorted(vecClasses.begin() + iCount, vecClasses.end())) continue;
            ASSERT_EQ(zyrSubtitle_selectClass(iCount, vecClasses.data()), 0u);
            ++uiSelections;
            const uint32_t uiStreams = std::min<uint32_t>(static_cast<uint32_t>(iCount), ZYR_STREAM_MAX);
            ASSERT_EQ(stInfo.uiStreamNums, uiStreams);
            ASSERT_EQ(zyr_host_liveBytes(), ullBase + uiStreams * STREAM_BYTES) << "one pair of buffers each";
            for (uint32_t uiStream = 0; uiStream < uiStreams; ++uiStream)
                ASSERT_EQ(stInfo.astStreamState[uiStream].uiClassIndex, vecClasses[uiStream]);
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
    Open_File(Syncs("A", 31) + Syncs("B", 31, 5));
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    Select({1, 1, 9, 0}); // a class once, and none that is not there
    EXPECT_EQ(stInfo.uiStreamNums, 2u);
    EXPECT_EQ(Play_Calls(2), "1:0-10 A0; 5-15 B0; ");
    Play();
    Select({0});
    EXPECT_EQ(Count_Frames(), 31u) << "a selection starts its classes again";
    Select({2, 7, UINT32_MAX});
    EXPECT_EQ(stInfo.uiStreamNums, 0u);
    m_vecLog.clear();
    EXPECT_EQ(Next(), "none");
    EXPECT_EQ(zyrSubtitle_seek(10), 0u);
    EXPECT_EQ(m_vecLog.size(), 0u);
    EXPECT_EQ(QUIB_CAPTION_ParsingProcessEx(), -2);
    // A failed selection leaves what it has set up, and the next one starts afresh.
    const uint32_t auiBoth[] = {0, 1};
    for (uint32_t uiNth = 1; uiNth <= 4; ++uiNth) {
        zyr_host_failAllocation(uiNth, 0);
        EXPECT_EQ(zyrSubtitleHandler_selectClass(2, auiBoth), 3u);
        zyr_host_failAllocation(0, 0);
        EXPECT_EQ(stInfo.uiStreamNums, (uiNth - 1) / 2);
        Next();
        Select({0, 1});
        EXPECT_EQ(Count_Frames(), 62u);
    }
    // Streams that QUIBCAPT_Set_ClassType() leaves out show nothing of their last frame later on.
    EXPECT_EQ(QUIBCAPT_Set_ClassType(0, 7), 1);
    Select({0, 1});
    ASSERT_EQ(QUIB_CAPTION_ParsingProcessEx(), 2);
    EXPECT_STREQ(reinterpret_cast<const char *>(stInfo.aucOutText), "A0");
}

} // namespace
