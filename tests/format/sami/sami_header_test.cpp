// What the scan of a SAMI file finds: frames with their places and times, and the language classes.

#include <algorithm>
#include <map>
#include <random>
#include <sstream>

#include "format/sami/sami_kit.h"

namespace
{

TEST_F(SamiTest, TagsThatCount)
{
    const std::string X = "<P CLASS=X>";
    const std::string AT5 = "<SYNC START=5>";
    // clang-format off
    const struct {
        std::string strClasses; // empty: the open fails
        std::vector<std::string> vecFiles;
    } CASES[] = {
        {"X:1 5-5 @0-0", {"<sYnC sTaRt=5>" + X, "<SYNC  START=5 END=9>" + X, "<SYNC START junk>\r\n=5>" + X}},
        {"X:1 5-5 @2-0", {"ab" + AT5 + X, "<<<SYNC\tSTART=5><p\rclass=x>"}},
        {"X:2 5-6 @5-5", {"<!-- <SYNC START=5> --><SYNC START=6>" + X}},
        {"X:1 4-4 @0-0", {"<SYNC START=4>a<SYNC START=\"5\">" + X}}, // one that records nothing leaves P to the other
        {"X:0 268435455-0 @0-0", {
            "<SYNC>" + X, "<SYNC START=5\t>" + X, "<SYNC START=5\r\n>" + X, "<SYNC START= 5>" + X,
            "<SYNC START=>" + X, "<SYNC START=5a>" + X, "<SYNC START=-5>" + X, "<SYNC \tSTART=5>" + X,
            "<SYNC END=9 START=5>" + X, "<SYNCS START=5>" + X}},
        {"", {"", "no tags", "<SYNC START=5\r", "<SYNC START=5<b>"}},
        {"X:1 -350287150-0 @0-0", {"<SYNC START=12345678901234567890>" + X}},
        {"X:1 -5-0 @0-0", {"<SYNC START=4294967291>" + X}},
        // CLASS values.
        {"-:1 5-5 @0-0", {
            AT5 + "<P ID=1 CLASS=X>", AT5 + "<P>", AT5 + "<P CLASS=>", AT5 + "<P CLASS= X>", AT5 + "<P CLASS=X<b>",
            AT5 + "<PCLASS=X>", AT5 + "</P CLASS=X>"}},
        {"X:1 5-5 @0-0", {AT5 + "<P CLASS=X\tID=1>"}},
        {"\"X\":1 5-5 @0-0", {AT5 + "<P CLASS=\"x\">"}},
        {"ABCDEFGHIJKL:1 5-5 @0-0", {AT5 + "<P CLASS=abcdefghijkl>", AT5 + "<P CLASS=abcdefghijklm>"}},
        {"KKKKKKKKKKKK:2 5-5 @0-0", {AT5 + "<P CLASS=" + Repeat("k", 600) + "><P CLASS=KKKKKKKKKKKKx>"}},
        // Where the scan ends.
        {"X:1 5-5 @0-0", {AT5 + X + "</body>" + Sync(6, "Y"), AT5 + X + "</SAMI>" + Sync(6, "Y")}},
        {"X:2 5-6 @0-54", {AT5 + X + "<BODY></BODY ></BODYX></SYNC><SYNC START=6><P CLASS=x>"}},
    };
    // clang-format on
    for (const auto &stCase : CASES)
        for (const std::string &strFile : stCase.vecFiles)
            for (const TestEncoding eEncoding : ENCODINGS)
                // With enough text behind it a tag is read at once, at the end of the file unit by unit.
                for (const size_t uiPadding : {0u, 40u}) {
                    SCOPED_TRACE(testing::Message() << strFile << " " << uiPadding << " " << eEncoding);
                    const std::string strPadded = strFile + Repeat(" ", uiPadding);
                    ASSERT_EQ(Open(".smi", Encode(strPadded, eEncoding)),
                              stCase.strClasses.empty() ? 1u : 0u);
                    if (stCase.strClasses.empty()) continue;
                    // Places are compared where there is no mark, and a unit is a byte.
                    const size_t uiCompared =
                        eEncoding == E_ANSI ? std::string::npos : stCase.strClasses.find('@');
                    EXPECT_EQ(Get_Classes().substr(0, uiCompared), stCase.strClasses.substr(0, uiCompared));
                }
}

TEST_F(SamiTest, PlacesAreThoseOfTheBytes)
{
    const std::string strSync = "<SYNC Start=1><P Class=X>";
    const struct {
        std::string strBefore;
        int64_t llPlace;
        bool bAnsi;
    } CASES[] = {
        {"\xEC\x95\x88", 6, false}, // a character
        {"a\x80\x80", 4, false},    // bytes of no character belong to the one behind them
        {"\xEC\x95", 3, false},     // so does a character cut short
        {"<\xC0", 4, false},        // also inside a tag that "<" starts afresh
        {Repeat("a", 65530) + "\xEC\x95\x88", 65536, false},
        {Repeat("a", 65532) + "\xEC\x95", 65535, false},
        {"\x81<P CLASS=Z>\xB0\xA1", 14, true}, // "<" as the second byte of a character
    };
    for (const auto &stCase : CASES) {
        Open_File((stCase.bAnsi ? "" : "\xEF\xBB\xBF") + stCase.strBefore + strSync);
        EXPECT_EQ(Get_Classes(), "X:1 1-1 @" + std::to_string(stCase.llPlace) + "-0");
        EXPECT_EQ(Play(), "1-open ") << stCase.llPlace;
    }
    // A byte that is dropped may also stand inside a tag's name.
    Open_File("\xEF\xBB\xBF<\xC0SYNC Start=1><\x80P Class=X>" + Repeat(" ", 40));
    EXPECT_EQ(Get_Classes(), "X:1 1-1 @3-0");
    EXPECT_EQ(Play(), "1-open ");
}

TEST_F(SamiTest, SeveralParagraphsInOneSync)
{
    static const struct {
        const char *pszFile, *pszClasses, *pszEntries;
    } CASES[] = {
        {"<P CLASS=X><SYNC START=5><P CLASS=Y>", "X:0 Y:1 268435455-0 5-5 @0-0 @11-0", "Y5@11 "},
        {"<SYNC START=5><P CLASS=X><P CLASS=Y>", "X:1 Y:1 5-5 5-5 @0-0 @0-0", "X5@0 Y5@0 "},
        {"<SYNC START=5><P CLASS=X><P CLASS=X>", "X:2 5-5 @0-0", "X5@0 "},
        {"<SYNC START=5><P CLASS=X></P><P><P CLASS=Y><P CLASS=X><P CLASS=Z><P CLASS=y>",
         "X:2 Y:2 Z:1 5-5 5-5 5-5 @0-0 @0-0 @0-0", "X5@0 Y5@0 Z5@0 "},
        {"<SYNC START=5><P CLASS=X><P CLASS=Y><SYNC START=1><P CLASS=Y><P CLASS=X>",
         "X:2 Y:2 1-5 1-5 @0-36 @0-36", "Y1@36 X1@36 X5@0 Y5@0 "},
        {"<SYNC START=5><SYNC \n><P CLASS=X><P CLASS=Y>", "X:1 Y:1 5-5 5-5 @0-0 @0-0", "X5@0 Y5@0 "},
        // Each P tag takes a frame out of those without a class: two have gone, the third stays alone.
        {"<SYNC START=1><SYNC START=2><SYNC START=3><P CLASS=X><P CLASS=X>", "X:2 -:1 3-3 1-2 @28-28 @0-14",
         "-1@0 -2@14 X3@28 "},
        {"<SYNC START=1><SYNC START=2><P CLASS=X><P CLASS=X>", "X:2 2-2 @14-14", "71@0 X2@14 "},
    };
    for (const auto &stCase : CASES) {
        Open_File(stCase.pszFile);
        Scan_Again();
        EXPECT_EQ(Get_Classes(), stCase.pszClasses) << stCase.pszFile;
        EXPECT_EQ(Get_Entries(), stCase.pszEntries) << stCase.pszFile;
    }
}

TEST_F(SamiTest, SevenClassesAtMost)
{
    std::string strFile;
    for (const char *pszClass : {"A", "B", "C", "D", "E", "F", "G"}) strFile += Syncs(pszClass, 31);
    Open_File(strFile + Syncs("H", 2) + "<SYNC START=9>x");
    EXPECT_EQ(Get_Counts(), "A:31 B:31 C:31 D:31 E:31 F:31 G:31");
    EXPECT_EQ(Count_Log("Too Many Language Class! [7]"), 3u) << "twice for H, once for all without a class";
    EXPECT_EQ(pstQuibCaptionParserInfo->uiStreamNums, 5u);
    EXPECT_EQ(s_uiFrameInfoNums, 7u * 31 + 3);
    Open_File(strFile.substr(0, strFile.find("<SYNC Start=0><P Class=G")) + Syncs("H", 2));
    EXPECT_EQ(Get_Counts(), "A+H:33 B:31 C:31 D:31 E:31 F:31");
    // Side by side each of the seven has an entry; the eighth has none, and takes none away.
    std::string strSync = "<SYNC START=5>";
    for (const char *pszClass : {"A", "B", "C", "D", "E", "F", "G", "H", "A"})
        strSync += "<P CLASS=" + std::string(pszClass) + ">" + pszClass;
    Open_File(strSync + "<SYNC START=6><P CLASS=H>h<P CLASS=G>g");
    EXPECT_EQ(Get_Entries(), "A5@0 B5@0 C5@0 D5@0 E5@0 F5@0 G5@0 G6@122 ");
    EXPECT_EQ(Count_Log("Too Many Language Class! [7]"), 2u);
    Select({6, 0});
    EXPECT_EQ(Play(), "!5-6 G; !1:5-open AA; !6-open g");
}

TEST_F(SamiTest, IndexIsInTimeOrderForEveryOrderOfTags)
{
    std::mt19937 stRandom(3);
    const auto fnRandom = [&](int iMost) {
        return static_cast<int>(stRandom() % static_cast<uint32_t>(iMost));
    };
    for (int iRound = 0; iRound < 30; ++iRound) {
        std::multimap<int, int> mapPlaces; // of equal times in the order of the file
        std::string strFile;
        const int iNums = iRound < 20 ? fnRandom(40) + 2 : 3000; // the index grows in blocks
        for (int iBlock = 0; iBlock < iNums; ++iBlock) {
            const int aiTime[] = {iBlock ^ 1, fnRandom(iNums), iNums - iBlock};
            strFile += Sync(aiTime[iRound % 3], "X", std::to_string(iBlock)) + Repeat(" ", 20);
            mapPlaces.emplace(aiTime[iRound % 3], iBlock);
        }
        std::ostringstream stWanted;
        for (auto itPlace = mapPlaces.begin(); itPlace != mapPlaces.end();) {
            const auto &[iTime, iBlock] = *itPlace++;
            stWanted << (iBlock == mapPlaces.begin()->second ? "" : "; ") << iTime << '-';
            if (itPlace == mapPlaces.end())
                stWanted << "open " << iBlock;
            else
                stWanted << itPlace->first << ' ' << iBlock;
        }
        ASSERT_EQ(Play(".smi", strFile), stWanted.str());
    }
    // Signed: negative times come first.
    EXPECT_EQ(Play(".smi", Sync(5, "X", "a") + Sync(4294967295, "X", "b") + Sync(2147483648, "X", "c")),
              "!-2147483648--1 c; !-1-5 b; 5-open a");
}

TEST_F(SamiTest, IndexHoldsWhatTheFileSizeAllowsFor)
{
    const std::string strFile = Repeat("<SYNC START=1>", 300);
    const uint32_t uiMost = static_cast<uint32_t>(strFile.size()) / 40 + 100;
    Open_File(strFile);
    EXPECT_EQ(s_uiFrameInfoMax, uiMost);
    EXPECT_EQ(Count_Log(" Too Many Frame Information! [" + std::to_string(uiMost) + "]"), 300u - uiMost);
    EXPECT_EQ(pstQuibCaptionParserInfo->astClassInfo[0].uiFrameNums, 300u) << "they are counted all the same";
    EXPECT_EQ(s_uiFrameInfoNums, uiMost);
    // A P tag behind such a frame must not give its class to the last one that has an entry.
    Open_File(Repeat("<SYNC START=1><P CLASS=A>", 400) + Repeat("<SYNC START=2><P CLASS=B>", 40));
    EXPECT_EQ(Get_Counts(), "A:400 B:40");
    EXPECT_EQ(s_pstFrameInfoArray[s_uiFrameInfoNums - 1].uiClassIndex, 0u);
    // Side by side the class for which there is no room goes without, and says so each time.
    const std::string strPairs = Repeat("<SYNC START=1><P CLASS=A><P CLASS=B>", 1150);
    const uint32_t uiRoom = static_cast<uint32_t>(strPairs.size()) / 40 + 100;
    ASSERT_EQ(uiRoom, 1135u) << "odd, so that the last entry is half a pair";
    Open_File(strPairs);
    EXPECT_EQ(Get_Counts(), "A:1150 B:1150");
    EXPECT_EQ(s_uiFrameInfoNums, uiRoom);
    EXPECT_EQ(s_pstFrameInfoArray[uiRoom - 1].uiClassIndex, 0u);
    EXPECT_EQ(Count_Log(" Too Many Frame Information! [1135]"), 1u + (1150 - 568));
}

TEST_F(SamiTest, EveryBlockOfTheIndexThatCannotBeHadIsTold)
{
    const std::string BLANKS = Repeat(" ", 60);
    const std::string strFiles[] = {
        Repeat("<SYNC START=1><P CLASS=A><P CLASS=B>" + BLANKS, 600),
        // A P tag is the first that finds the index full, a usual one or another.
        "<SYNC START=1>" + Repeat("<SYNC START=1><P CLASS=A><P CLASS=B>" + BLANKS, 600),
        "<SYNC START=1>" + Repeat("<SYNC START=1><P CLASS=A><P  CLASS=B>" + BLANKS, 600),
    };
    for (const std::string &strFile : strFiles) {
        size_t uiTold = 0;
        uint32_t uiResult = 1;
        for (uint32_t uiNth = 1; uiResult != 0 && uiNth < 50; ++uiNth) {
            zyr_host_failAllocation(uiNth, 0);
            uiResult = Open(".smi", strFile + "<SYNC START=0>");
            const size_t uiLines = Count_Log(" Frame Information Array Memory Allocation Failed!");
            EXPECT_TRUE(uiLines == 0 || (uiLines == 1 && uiResult == 1)) << uiNth;
            uiTold += uiLines;
        }
        zyr_host_failAllocation(0, 0);
        EXPECT_EQ(uiTold, 5u)
            << "1,200 entries take two blocks and are sorted into a third; 600 tags take two";
    }
}

TEST_F(SamiTest, AHugeFileDoesNotAskForAHugeIndex)
{
    // The file says that it has 2 GB: a full index would take 1.3 GB.
    struct Told {
        bool bSize;
        uint64_t ullMostBytes;
    } stTold = {};
    zyr_host_setFileHook(
        [](int iCall, uint32_t, int32_t iReal, void *pvTold) {
            Told &stNow = *static_cast<Told *>(pvTold);
            stNow.ullMostBytes = std::max(stNow.ullMostBytes, zyr_host_liveBytes());
            if (iCall != ZYR_HOST_TELL || stNow.bSize) return iReal;
            stNow.bSize = true;
            return INT32_MAX;
        },
        &stTold);
    Open_File(Syncs("X", 2000));
    EXPECT_EQ(s_uiFrameInfoMax, INT32_MAX / 40u + 100);
    EXPECT_LT(stTold.ullMostBytes, 400000u);
    EXPECT_EQ(Count_Frames(), 2000u);
}

TEST_F(SamiTest, SmallClassesAreFolded)
{
    const struct {
        std::vector<std::pair<const char *, uint32_t>> vecClasses; // in file order; "" = no class
        const char *pszCounts;
    } CASES[] = {
        {{{"A", 29}, {"B", 29}}, "A:29 B:29"}, // nobody can take another in
        {{{"A", 30}, {"B", 29}}, "A:30 B:29"},
        {{{"A", 31}, {"B", 30}}, "A:31 B:30"},
        {{{"A", 31}, {"B", 29}}, "A+B:60"},
        {{{"A", 29}, {"B", 31}}, "B+A:60"}, // the well-filled one comes first
        {{{"A", 30}, {"B", 31}}, "A:30 B:31"},
        {{{"A", 29}, {"B", 30}, {"C", 31}}, "C+A:60 B:30"},
        {{{"X1", 10}, {"X2", 200}, {"X3", 5}}, "X2+X1+X3:215"},
        {{{"A", 40}, {"B", 5}, {"C", 40}, {"D", 5}, {"E", 5}}, "A+B+D+E:55 C:40"},
        {{{"A", 30}, {"B", 5}, {"C", 40}, {"D", 5}}, "A:30 C+B+D:50"},
        {{{"KRCC", 500}, {"ENCC", 400}, {"", 5}}, "KRCC:505 ENCC:400"},
        {{{"ENCC", 40}, {"KOCC", 40}, {"", 29}}, "ENCC:40 KOCC:69"}, // the Korean one, wherever it stands
        {{{"ENCC", 40}, {"KRCC", 40}, {"", 29}}, "ENCC:40 KRCC:69"},
        {{{"ENCC", 40}, {"KACC", 40}, {"AOCC", 40}, {"ARCC", 40}, {"", 29}},
         "ENCC:69 KACC:40 AOCC:40 ARCC:40"},
        {{{"ENCC", 40}, {"KOCC", 40}, {"", 30}}, "ENCC:40 KOCC:40 -:30"},
        {{{"A", 5}, {"", 29}}, "A:34"},
        {{{"A", 5}, {"", 31}}, "A:36"},
        {{{"A", 5}, {"B", 5}, {"C", 5}, {"D", 5}, {"E", 5}, {"F", 5}, {"G", 31}}, "G+A+B+C+D+E+F:61"},
    };
    for (const auto &stCase : CASES) {
        std::string strFile;
        size_t uiFrames = 0;
        for (const auto &[pszClass, uiNums] : stCase.vecClasses) {
            strFile += *pszClass == '\0' ? Repeat("<SYNC START=1><i>u\r\n", uiNums) : Syncs(pszClass, uiNums);
            uiFrames += uiNums;
        }
        Open_File(strFile);
        EXPECT_EQ(Get_Counts(), stCase.pszCounts);
        EXPECT_EQ(Count_Log("Fail to merge"), 0u);
        const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        EXPECT_EQ(stInfo.uiStreamNums, std::min<uint32_t>(stInfo.uiClassNums, ZYR_STREAM_MAX));
        // What was folded is read with the class that took it in; frames of the unnamed class have no P tag.
        EXPECT_EQ(Count_Frames(), uiFrames) << stCase.pszCounts;
        EXPECT_EQ(Count_Log("Unregistered Clase Name!"), 0u) << stCase.pszCounts;
    }
}

TEST_F(SamiTest, MergeCallsCheckTheirClasses)
{
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeUndefinedLanguage(0), -4);
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeMultiLanguages(0, 1), -4);
    Open_File(Syncs("A", 31));
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeUndefinedLanguage(0), -4);
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeMultiLanguages(0, 1), -4);
    Open_File(Syncs("A", 31) + Syncs("B", 31) + Syncs("C", 31));
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeUndefinedLanguage(0), -5);
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeMultiLanguages(1, 1), -2);
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeMultiLanguages(3, 1), -2);
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeMultiLanguages(1, 3), -2);
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeMultiLanguages(0, 2), 1);
    EXPECT_EQ(Get_Counts(), "B:31 C+A:62") << "the further names move down with their class";
    EXPECT_EQ(s_pstFrameInfoArray[0].uiClassIndex, 1u);
    EXPECT_EQ(s_pstFrameInfoArray[1].uiClassIndex, 0u);
    EXPECT_EQ(QUIBCAPT_Set_ClassType(2, 7), 0) << "there is no third class any more";
    Open_File(Syncs("A", 31) + Repeat("<SYNC START=1>", 31));
    for (const uint32_t uiTarget : {1u, 2u, 7u, UINT32_MAX})
        EXPECT_EQ(CAPTIONPARS_SAMI_MergeUndefinedLanguage(uiTarget), -2);
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeUndefinedLanguage(0), 1);
    EXPECT_EQ(Get_Counts(), "A:62");
}

TEST_F(SamiTest, FurtherNamesAreSevenAtMost)
{
    Open_File(Syncs("A", 31) + Syncs("B", 31));
    CaptionClassInfo &stClass = pstQuibCaptionParserInfo->astClassInfo[0];
    stClass.uiAltNameNums = ZYR_CLASS_MAX;
    EXPECT_EQ(CAPTIONPARS_SAMI_MergeMultiLanguages(1, 0), 1);
    EXPECT_EQ(stClass.uiAltNameNums, static_cast<uint32_t>(ZYR_CLASS_MAX));
    EXPECT_EQ(stClass.llFirstFramePos, 0) << "what stands behind the names is not overwritten";
}

} // namespace
