// What stands in an SSA file and what a frame shows of it, through the public calls.

#include <cstring>

#include "parser/ssa_kit.h"

namespace
{

// ---- Header pass ----

TEST_F(SsaTest, SectionsAreKnownByTheBeginningOfTheirNames)
{
    const std::string LONG = Repeat('x', 23);
    // clang-format off
    struct {
        std::string strHead;
        uint32_t uiNodes;
        size_t uiLogs = 0;
    } const astCase[] = {
        {"[Events]", 1}, {"[events]", 1}, {"[Events2]", 1}, {"[v4 Styles]", 1},
        {"[SCRIPT INFO and more]", 1}, {"[V4+ Styles]", 0}, {"[Event]", 0}, {"[]", 0}, {"[Ev[Events]", 1},
        {"[Events\r\n]", 0}, {"x [Events]", 1}, {"[Fonts]\r\n[Events]", 1}, {"[Events" + LONG + "]", 1},
        {"[Events" + LONG + "x]", 0}, {"[Events" + Repeat('x', 600) + "]", 0},
        {"[Ev\xEC\x95\x88nts]", 0, 1}, {"[Script Info]\r\n;[Fonts]", 1},
    };
    // clang-format on // a comment hides a section
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play("\xEF\xBB\xBF" + stCase.strHead + "\r\n" + Second(1, "x"))) << stCase.strHead;
        EXPECT_EQ(s_stCaptionFrameList.uiNodeNum, stCase.uiNodes) << stCase.strHead;
        EXPECT_EQ(Count_Log("Bad SSA LineType Name Character! [0xC548]"), stCase.uiLogs) << stCase.strHead;
    }
    // Double-byte characters are not decoded once the first line has been found.
    ASSERT_TRUE(Play("[A\xB0\xA1]" + EVENTS + Second(1, "x") + "[B\xB0\xA1]\r\n[Events]\r\n\xB0\xA1:\r\n"));
    EXPECT_EQ(Count_Log("Bad SSA LineType Name Character! [0xB0A1]"), 1u);
    EXPECT_EQ(Count_Log("Bad SSA LineType Name Character! [0xFFFF]"), 2u);
}

TEST_F(SsaTest, AKeyOf512UnitsHidesASectionBehindIt)
{
    for (const uint32_t uiUnits : {510u, 512u, 513u}) {
        ASSERT_TRUE(Play(INFO + Repeat('k', uiUnits) + "[Events]\r\n" + Second(1, "x")));
        EXPECT_EQ(pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos >= 0, uiUnits < 512) << uiUnits;
        EXPECT_EQ(s_stCaptionFrameList.uiNodeNum, 1u) << "every known section may hold lines";
    }
}

TEST_F(SsaTest, PositionsAreBytePositions)
{
    const std::string strHead = "\xEF\xBB\xBF[Events]\r\n";
    ASSERT_TRUE(Play(strHead + Second(1, "\xEC\x95\x88") + "\x80\x80" + Second(2, "x")));
    EXPECT_EQ(pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos, 13);
    ASSERT_EQ(s_stCaptionFrameList.uiNodeNum, 2u);
    EXPECT_EQ(s_stCaptionFrameList.pastNode[1].llFilePos, 13);
    // Bytes that are no character belong to the character behind them.
    EXPECT_EQ(s_stCaptionFrameList.pastNode[2].llFilePos,
              static_cast<int64_t>(strHead.size() + Second(1, "123").size()));
    ASSERT_TRUE(Play(Encode("[Events]\r\n" + Second(1, "x") + Second(2, "y"), E_UTF16LE)));
    EXPECT_EQ(s_stCaptionFrameList.pastNode[2].llFilePos,
              static_cast<int64_t>(2 + 2 * (10 + Second(1, "x").size())));
}

TEST_F(SsaTest, TitlesShareTheirRoom)
{
    struct {
        uint32_t uiUnits;
        bool bStored;
        bool bNextStored;
    } const astCase[] = {{0, true, true},     {100, true, true},   {509, true, true},  {510, true, false},
                         {511, false, false}, {512, false, false}, {600, false, false}};
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play("[Script Info]\r\nTitle:" + std::string(stCase.uiUnits, 't') +
                         "\r\nOriginal Script:\r\nScriptType: v4;0\r\n"));
        const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        EXPECT_EQ(stInfo.pusSSATitle != nullptr, stCase.bStored) << stCase.uiUnits;
        EXPECT_EQ(stInfo.uiSSATitleLength, stCase.bStored ? stCase.uiUnits : 0u);
        EXPECT_EQ(stInfo.pusSSAOriginalScript != nullptr, stCase.bNextStored) << stCase.uiUnits;
        if (stCase.uiUnits > 100) continue;
        EXPECT_EQ(stInfo.uiSSAScriptTypeLength, 3u);
        EXPECT_EQ(stInfo.pusSSAScriptType, stInfo.pusSSATitle + stCase.uiUnits + 2);
        EXPECT_EQ(QUIBCAPTPARS_StrCmp(stInfo.pusSSAScriptType, reinterpret_cast<const uint16_t *>(u" v4"), 3),
                  1);
    }
}

TEST_F(SsaTest, EveryStyleFieldIsKept)
{
    ASSERT_TRUE(
        Play("[v4 Styles]\r\nStyle: My Name,Times New Roman,1,&H00FF00FF,3,4,5,-1,7,8,9,10,11,12,13,14,15, "
             "16\r\nStyle: short,f,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\r\n"
             "Style: long,f,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17\r\n"
             "Style: closed,f,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16; 17,18\r\n" +
             Style(Repeat('n', 60), "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,123456789")));
    std::string strNames;
    const SSAStyleNode *pstNode = pstQuibCaptionParserInfo->pstSSAStyleList;
    const SSAStyleInfo &stFirst = pstNode->stStyle;
    const SSAStyleInfo *pstLast = nullptr;
    for (; pstNode != nullptr; pstNode = pstNode->pstNext) {
        pstLast = &pstNode->stStyle;
        for (const uint16_t usUnit : pstLast->ausStyleName)
            if (usUnit != 0) strNames += static_cast<char>(usUnit);
        strNames += "|";
    }
    EXPECT_EQ(strNames, "MyName|long|closed|" + Repeat('n', 51) + "|");
    EXPECT_EQ(std::memcmp(stFirst.ausFontName, u"TimesNewRoman\0", 28), 0);
    const uint32_t auiWanted[] = {1, 0xFF00FF, 3, 4, 5, 0, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    EXPECT_EQ(std::memcmp(&stFirst.uiFontSize, auiWanted, sizeof(auiWanted)), 0);
    EXPECT_EQ(pstLast->uiEncoding, 0u) << "nine digits are no number";
}

// ---- Styles ----

TEST_F(SsaTest, StyleGivesTheFrameItsLook)
{
    // clang-format off
    struct {
        const char *pszNumbers; // size, 4 colours, bold, italic, border, outline, shadow, alignment, 5 more
        std::string strLook;
    } const astCase[] = {
        {"20,255,0,0,65280,0,0,0,0,0,2,0,0,0,0,0", "20 20 001F 0 0"},
        {"0,&H00FF0000,0,0,65280,0,0,1,0,0,2,0,0,0,0,0", "20 16 F800 7E0 0"},
        {"20,0,9,9,65280,1,0,0,9,9,1,9,9,9,9,9", "34 20 0000 0 0"},
        {"20,0,0,0,0,0,1,0,0,0,3,0,0,0,0,0", "68 20 0000 0 0"},
        {"20,0,0,0,0,-1,-1,0,0,0,6,0,0,0,0,0", "2020 20 0000 0 0"},
        {"20,0,0,0,0,0,0,0,0,0,13,0,0,0,0,0", "2030 20 0000 0 0"},
        {"20,0,0,0,0,0,0,0,0,0,11,0,0,0,0,0", "4060 20 0000 0 0"},
        {"20,0,0,0,0,0,0,0,0,0,8,0,0,0,0,0", "4020 20 0000 0 0"},
    };
    // clang-format on
    TestFrame stFrame;
    const std::string strLine = Line("0:00:01.00", "x", "S");
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play("[v4 Styles]\r\n" + Style("S", stCase.pszNumbers).append(EVENTS).append(strLine)));
        ASSERT_TRUE(Read_Frame(&stFrame));
        EXPECT_EQ(Get_Look(), stCase.strLook) << stCase.pszNumbers;
    }
    QUIBCAPT_SetFontColor(0x1234);
    EXPECT_EQ(Play_Line(Line("0:00:01.00", "x")).strText, "x");
    EXPECT_EQ(Get_Look(), "0 16 1234 0 0");
    EXPECT_EQ(Get_Fields().pstStyle, nullptr);
}

TEST_F(SsaTest, StyleIsTheFirstThatBeginsWithTheField)
{
    const std::string strLong(51, 'n');
    // clang-format off
    struct {
        std::string strField;
        uint32_t uiSize; // of the style that is found; 16 = none
    } const astCase[] = {
        {"Default", 21}, {"Def", 21}, {"", 21}, {"D e f a u l t", 21}, {"default", 16}, {"Default2", 22},
        {"Default3", 16}, {strLong, 23}, {strLong + "n", 23}, {strLong + Repeat('x', 460), 23},
        {strLong.substr(1) + "x", 16},
    };
    // clang-format on
    const std::string strRest = ",0,0,0,0,0,0,0,0,0,2,0,0,0,0,0";
    const std::string strStyles = INFO + Style("Default", "21" + strRest) +
                                  Style("Default2", "22" + strRest) +
                                  Style(strLong + "cut off", "23" + strRest) + EVENTS;
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play(strStyles + Line("0:00:01.00", "x", stCase.strField)));
        TestFrame stFrame;
        ASSERT_TRUE(Read_Frame(&stFrame)) << stCase.strField;
        EXPECT_EQ(pstQuibCaptionParserInfo->uiFontSize, stCase.uiSize) << stCase.strField;
    }
    ASSERT_TRUE(Play(INFO + EVENTS + Line("0:00:01.00", "x", "")));
    EXPECT_EQ(Read_Texts(false), "x|");
    EXPECT_EQ(Get_Fields().pstStyle, nullptr);
}

// ---- Frames ----

TEST_F(SsaTest, EveryFieldIsRead)
{
    const TestFrame stFrame = Play_Line("dialogue : Marked = 1 2,0:01:02.03,1:0 0:00.50, Default,a "
                                        "name,0010,2 0,x,Banner;30,Hello, world\r\n");
    EXPECT_EQ(stFrame, (TestFrame{0, 62030, 3600500, "Hello, world"}));
    const SSAFrameInfo &stFields = Get_Fields();
    EXPECT_EQ(stFields.uiMarked, 2u);
    EXPECT_EQ(stFields.uiStartPTS, 62030u);
    EXPECT_EQ(stFields.uiEndPTS, 3600500u);
    EXPECT_EQ(std::memcmp(stFields.ausStyleName, u"Default\0", 16), 0);
    EXPECT_EQ(stFields.uiMarginL, 10u);
    EXPECT_EQ(stFields.uiMarginR, 20u);
    EXPECT_EQ(stFields.uiMarginV, 0u);
    EXPECT_EQ(stFields.uiEffectDelay, 30u);
    EXPECT_EQ(stFields.pstStyle, &pstQuibCaptionParserInfo->pstSSAStyleList->stStyle);
}

TEST_F(SsaTest, EffectsAreReadWithTheirParameters)
{
    // clang-format off
    struct {
        std::string strEffect;
        uint32_t auiWanted[4]; // effect, y1, y2, delay
    } const astCase[] = {
        {"", {0, 0, 0, 0}}, {"Karaoke", {1, 0, 0, 0}}, {"kara oke9", {1, 0, 0, 0}},
        {"Karaok", {0, 0, 0, 0}}, {"Scroll up;10;100;5;", {2, 10, 100, 5}},
        {"Scroll up;10;100;5", {2, 10, 100, 5}}, {"Scroll up;10;100;", {2, 10, 100, 0}},
        {"Scroll up;10;100", {2, 10, 0, 0}}, {"Scroll up!;1;2;3", {2, 1, 2, 3}},
        {"Banner;20", {3, 0, 0, 20}}, {"Banner;", {3, 0, 0, 0}}, {"Banner", {3, 0, 0, 0}},
        {"Banner;20;" + Repeat('x', 19), {3, 0, 0, 0}}, {"Karaoke" + Repeat('x', 22), {1, 0, 0, 0}},
        {"Karaoke" + Repeat('x', 23), {0, 0, 0, 0}}, {"Banner;2\xC3\xA9", {0, 0, 0, 0}},
    };
    // clang-format on
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play("\xEF\xBB\xBF" + EVENTS + Line("0:00:01.00", "x", "None", stCase.strEffect)));
        EXPECT_EQ(Read_Texts(false), "x|");
        EXPECT_EQ(std::memcmp(&Get_Fields().uiEffect, stCase.auiWanted, sizeof(stCase.auiWanted)), 0)
            << stCase.strEffect;
        EXPECT_EQ(Count_Log("Bad SSA Effect Name Character! [0x00E9]"),
                  stCase.strEffect.ends_with("\xA9") ? 1u : 0u);
    }
}

TEST_F(SsaTest, TextIsFoldedAndEscaped)
{
    const std::string FULL = Repeat('a', 64) + "\n";
    // clang-format off
    struct {
        std::string strText;
        std::string strWanted;
    } const astCase[] = {
        {"Line one\\NLine two\\nthree", "Line one\nLine two\nthree"}, {"a\\hb", "a\\b"},
        {"a\\\\Nb", "a\\Nb"}, {"\\N\\Na \\N b", "a\nb"}, {"  a \t  b, {\\k1} c,", "a b,  c,"},
        {std::string("a\0b", 3), "ab"}, {"", ""}, {"a{\\b1{x}b", "a"}, {"a{open", "a"}, {"a\rx\ry\nb", "a"},
        {"a\\\r\nb", "a\\\nb"}, {Repeat('w', 70), Repeat('w', 64) + "\n" + "wwwwww"},
        {Repeat('a', 299) + " b", FULL + FULL + FULL + FULL + Repeat('a', 43) + " b"},
    };
    // clang-format on
    for (const auto &stCase : astCase)
        EXPECT_EQ(Play_Line(Line("0:00:01.00", stCase.strText)).strText, stCase.strWanted) << stCase.strText;
}

TEST_F(SsaTest, OverridesDoWhatTheirTableSays)
{
    const std::string PLAIN = "0 16 FFFF 0 0";
    // clang-format off
    struct {
        std::string strBlock;
        std::string strLook;
        size_t uiFailures = 0;        // blocks that could not be parsed
        const char *pszLog = "~none"; // what else is logged
    } const astCase[] = {
        {"{\\b1}", "4 16 FFFF 0 0"}, {"{\\B1x}", "4 16 FFFF 0 0"}, {"{\\b0}", PLAIN}, {"{\\b}", PLAIN},
        {"{\\bord1}", PLAIN}, {"{\\b \t1}", "4 16 FFFF 0 0"}, {"{\\i1}", "8 16 FFFF 0 0"},
        {"{\\i1\\b1}", "8 16 FFFF 0 0"}, {"{\\i1}{\\b1}{\\i0}", "C 16 FFFF 0 0"}, {"{\\i}", PLAIN},
        {"{\\fnArial}", PLAIN}, {"{\\fe0}", PLAIN}, {"{\\fs36}", "0 36 FFFF 0 0"},
        {"{\\fs1 2}", "0 1 FFFF 0 0"}, {"{\\fscx90}", "0 0 FFFF 0 0"}, {"{\\fs}", PLAIN},
        {"{\\c&HFF8000&}", "0 16 FC00 0 0"}, {"{\\C&hff8000&}", "0 16 FC00 0 0"},
        {"{\\c&H1234FF8000&}", "0 16 FC00 0 0"}, {"{\\c&H&}", PLAIN},
        {"{\\c&HFF8000}", PLAIN, 1, "NO Parsing TAG Type = "},
        {"{\\c&H}", PLAIN, 1, "NO Parsing TAG Type = "},
        {"{\\c&H12G4&}", PLAIN, 0, "RGB Color Data is bad! (DATA = 12G4,  VALUE = 0x00000012)"},
        {"{\\c&H" + Repeat('0', 30) + "&}", "0 16 0000 0 0"},
        {"{\\c&H" + Repeat('0', 31) + "&}", PLAIN, 0, "Too Long Color Name! ([31] >> [30])"},
        {"{\\a1}", "10 16 FFFF 0 0"}, {"{\\a2}", "20 16 FFFF 0 0"}, {"{\\a3}", "40 16 FFFF 0 0"},
        {"{\\an1}", "20 16 FFFF 0 0"}, {"{\\a}", PLAIN}, {"{\\k50}", "0 16 FFFF 0 50"},
        {"{\\k}", PLAIN}, {"{\\b1}{\\fs9}{\\c&H0&}{\\k9}{\\r}", PLAIN}, {"{}", PLAIN, 1},
        {"{\\}", PLAIN, 1}, {"{b1}", PLAIN, 1}, {"{\\pos(10,10)}", PLAIN, 1},
        {"{\\b1\xC3\xA9}", PLAIN, 1, "Bad Tag Name Character! [0x00E9]"},
        {"{\\b1" + Repeat('x', 508) + "}", "4 16 FFFF 0 0"},
    };
    // clang-format on
    for (const auto &stCase : astCase) {
        TestFrame stFrame = {};
        ASSERT_TRUE(Play("\xEF\xBB\xBF" + EVENTS + Line("0:00:01.00", "a" + stCase.strBlock + "b")));
        ASSERT_TRUE(Read_Frame(&stFrame));
        EXPECT_EQ(stFrame.strText, "ab") << stCase.strBlock;
        EXPECT_EQ(Get_Look(), stCase.strLook) << stCase.strBlock;
        EXPECT_EQ(Count_Log("Failed to parse the caption tag!"), stCase.uiFailures) << stCase.strBlock;
        EXPECT_EQ(Count_Log(stCase.pszLog), stCase.pszLog[0] == '~' ? 0u : 1u) << stCase.strBlock;
    }
    // One unit more than a block can hold; then a reset, to the style's colour and the usual height.
    EXPECT_EQ(Play_Line(Line("0:00:01.00", "a{\\b1" + Repeat('x', 509) + "}b")).strText, "a");
    EXPECT_EQ(Get_Look(), PLAIN);
    EXPECT_EQ(Play_Line(Line("0:00:01.00", "{\\b1}{\\c&H0&}{\\k3}{\\r}x", "Default")).strText, "x");
    EXPECT_EQ(Get_Look(), "0 16 001F 0 0");
}

TEST_F(SsaTest, FieldsHoldLessThan512Units)
{
    for (const size_t uiUnits : {511u, 512u, 513u}) {
        const bool bFits = uiUnits < 512;
        const std::string strStart = "0:00:01.00" + Repeat('x', uiUnits - 10);
        ASSERT_TRUE(Play(EVENTS + Line(strStart, "x")));
        EXPECT_EQ(s_stCaptionFrameList.uiNodeNum, bFits ? 1u : 0u) << uiUnits;
        const auto fnFrame = [&](std::string strEnd, const std::string &strName) {
            return Play_Line("Dialogue: 0,0:00:01.00," +
                             strEnd.append(",S,").append(strName).append(",0,0,0,,x\r\n"));
        };
        EXPECT_EQ(fnFrame("0:00:02.00" + Repeat('x', uiUnits - 10), "n"),
                  (TestFrame{0, 1000, bFits ? 2000 : 0, bFits ? "x" : ""}));
        EXPECT_EQ(fnFrame("0:00:02.00", Repeat('n', uiUnits) + " "),
                  (TestFrame{0, 1000, 2000, bFits ? "x" : ""}));
    }
    EXPECT_EQ(Play_Line("Dialogue: 0,0:00:01.00,never,S,,0,0,0,,x\r\n"), (TestFrame{0, 1000, 0, ""}));
    EXPECT_EQ(Play_Line("Dialogue: 0,0:00:01.00,0:00:02.00,S\r\n"), (TestFrame{0, 1000, 2000, ""}));
    EXPECT_EQ(Play_Line("Dialogue: 0,0:00:01.00,0:00:02.00,S,,0,0,0,,cut"),
              (TestFrame{0, 1000, 2000, "cut"}));
    EXPECT_EQ(pstQuibCaptionParserInfo->astStreamInfo[0].iStreamDataSize, NO_CAPTION_DATA);
    EXPECT_EQ(Play_Line(Line(Repeat('1', 5000), "x")).strText, "(none)");
}

} // namespace
