// SSA files: what stands in them, what a frame shows of it, and the order of frames and seeks.

#include <cstring>
#include <random>

#include "format/ssa/frame_list.h"
#include "format/ssa/ssa_line.h"
#include "format/ssa/style_list.h"
#include "support/engine_fixture.h"

namespace
{

const std::string INFO = "[Script Info]\r\nTitle: My Film\r\n[v4 Styles]\r\n";
const std::string EVENTS = "[Events]\r\nFormat: Marked, Start, End\r\n";

/** A Style line; strRest are the 16 numbers behind the font's name. */
std::string Style(const std::string &strName, const std::string &strRest)
{
    return "Style: " + strName + ",Arial," + strRest + "\r\n";
}

const std::string DEFAULT_STYLE = Style("Default", "20,255,0,0,65280,0,0,0,0,0,2,0,0,0,0,0");

std::string Line(const std::string &strStart, const std::string &strText,
                 const std::string &strStyle = "None", const std::string &strEffect = "")
{
    return "Dialogue: Marked=0," + strStart + ",0:00:09.50," + strStyle + ",,0000,0000,0000," + strEffect +
           "," + strText + "\r\n";
}

std::string Second(uint32_t uiSecond, const std::string &strText)
{
    return Line("0:00:0" + std::to_string(uiSecond) + ".00", strText);
}

/** A file that has the default style. */
std::string File(const std::string &strLines)
{
    return INFO + DEFAULT_STYLE + EVENTS + strLines;
}

class SsaTest : public EngineTest
{
protected:
    bool Open_File(const std::string &strFile) { return Open(".ssa", strFile) == 0; }

    /** @return the first frame of a file. */
    std::string First(const std::string &strFile) { return Open_File(strFile) ? Next() : "(not opened)"; }

    /** @return texts of the frames from here on, or after a seek. */
    std::string Texts()
    {
        std::string strTexts;
        for (TestFrame stFrame; Read_Frame(&stFrame);) strTexts += stFrame.strText + "|";
        return strTexts;
    }

    std::string Texts_From(uint32_t uiTarget)
    {
        EXPECT_EQ(zyrSubtitle_seek(uiTarget), 0u);
        return Texts();
    }

    /** @return a file's first frame, and how its text looks in the end: "1000-9500 x: " and then mode, size,
     * colour, outline colour, highlight. */
    std::string First_Look(const std::string &strFile)
    {
        const std::string strFrame = First(strFile);
        const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        char szLook[64];
        snprintf(szLook, sizeof(szLook), ": %X %u %04X %X %u", stInfo.uiDisplayMode, stInfo.uiFontSize,
                 stInfo.usFontColor, stInfo.usOutlineColor, stInfo.uiHighlight);
        return strFrame + szLook;
    }

    static const SSAFrameInfo &Get_Fields() { return pstQuibCaptionParserInfo->stSSAFrameInfo; }
};

// ---- Header pass ----

TEST_F(SsaTest, SectionsAreKnownByTheBeginningOfTheirNames)
{
    const std::string LONG = Repeat("x", 23);
    // clang-format off
    static const struct {
        std::string strHead;
        uint32_t uiNodes;
        size_t uiLogs = 0;
    } CASES[] = {
        {"[Events]", 1}, {"[events]", 1}, {"[Events2]", 1}, {"[v4 Styles]", 1},
        {"[SCRIPT INFO and more]", 1}, {"[V4+ Styles]", 0}, {"[Event]", 0}, {"[]", 0}, {"[Ev[Events]", 1},
        {"[Events\r\n]", 0}, {"x [Events]", 1}, {"[Fonts]\r\n[Events]", 1}, {"[Events" + LONG + "]", 1},
        {"[Events" + LONG + "x]", 0}, {"[Events" + Repeat("x", 600) + "]", 0},
        {"[Ev\xEC\x95\x88nts]", 0, 1}, {"[Script Info]\r\n;[Fonts]", 1}, // a comment hides a section
    };
    // clang-format on
    for (const auto &stCase : CASES) {
        ASSERT_TRUE(Open_File("\xEF\xBB\xBF" + stCase.strHead + "\r\n" + Second(1, "x"))) << stCase.strHead;
        EXPECT_EQ(s_stCaptionFrameList.uiNodeNum, stCase.uiNodes) << stCase.strHead;
        EXPECT_EQ(Count_Log("Bad SSA LineType Name Character! [0xC548]"), stCase.uiLogs) << stCase.strHead;
    }
    // Double-byte characters are not decoded once the first line has been found.
    ASSERT_TRUE(Open_File("[A\xB0\xA1]" + EVENTS + Second(1, Repeat("x", 60)) +
                          "[B\xB0\xA1]\r\n[Events]\r\n\xB0\xA1:\r\n;" + Repeat("x", 60)));
    EXPECT_EQ(Count_Log("Bad SSA LineType Name Character! [0xB0A1]"), 1u);
    EXPECT_EQ(Count_Log("Bad SSA LineType Name Character! [0xFFFF]"), 2u);
}

TEST_F(SsaTest, AKeyOf512UnitsHidesASectionBehindIt)
{
    for (const uint32_t uiUnits : {510u, 512u, 513u}) {
        ASSERT_TRUE(Open_File(INFO + Repeat("k", uiUnits) + "[Events]\r\n" + Second(1, "x")));
        EXPECT_EQ(pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos >= 0, uiUnits < 512) << uiUnits;
        EXPECT_EQ(s_stCaptionFrameList.uiNodeNum, 1u) << "every known section may hold lines";
    }
}

TEST_F(SsaTest, PositionsAreBytePositions)
{
    const std::string strHead = "\xEF\xBB\xBF[Events]\r\n";
    ASSERT_TRUE(Open_File(strHead + Second(1, "\xEC\x95\x88") + "\x80\x80" + Second(2, "x")));
    EXPECT_EQ(pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos, 13);
    const CaptionFrameNode *const &pastNode = s_stCaptionFrameList.pastNode;
    ASSERT_EQ(s_stCaptionFrameList.uiNodeNum, 2u);
    EXPECT_EQ(pastNode[1].llFilePos, 13);
    // Bytes that are no character belong to the character behind them.
    EXPECT_EQ(pastNode[2].llFilePos, static_cast<int64_t>((strHead + Second(1, "123")).size()));
    ASSERT_TRUE(Open_File(Encode("[Events]\r\n" + Second(1, "x") + Second(2, "y"), E_UTF16LE)));
    EXPECT_EQ(pastNode[2].llFilePos, static_cast<int64_t>(2 + 2 * (10 + Second(1, "x").size())));
}

TEST_F(SsaTest, TitlesShareTheirRoom)
{
    static const struct {
        uint32_t uiUnits;
        bool bStored, bNextStored;
    } CASES[] = {
        {0, true, true},     {100, true, true},   {509, true, true},   {510, true, false},
        {511, false, false}, {512, false, false}, {600, false, false},
    };
    for (const auto &stCase : CASES) {
        SCOPED_TRACE(stCase.uiUnits);
        ASSERT_TRUE(Open_File("[Script Info]\r\nTitle:" + Repeat("t", stCase.uiUnits) +
                              "\r\nOriginal Script:\r\nScriptType: v4;0\r\n"));
        const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        EXPECT_EQ(stInfo.pusSSATitle != nullptr, stCase.bStored);
        EXPECT_EQ(stInfo.uiSSATitleLength, stCase.bStored ? stCase.uiUnits : 0u);
        EXPECT_EQ(stInfo.pusSSAOriginalScript != nullptr, stCase.bNextStored);
        if (stCase.uiUnits > 100) continue;
        EXPECT_EQ(stInfo.uiSSAScriptTypeLength, 3u);
        EXPECT_EQ(stInfo.pusSSAScriptType, stInfo.pusSSATitle + stCase.uiUnits + 2);
        EXPECT_EQ(std::memcmp(stInfo.pusSSAScriptType, u" v4", 6), 0);
    }
}

TEST_F(SsaTest, EveryStyleFieldIsKept)
{
    ASSERT_TRUE(Open_File(
        "[v4 Styles]\r\nStyle: My Name,Times New Roman,1,&H00FF00FF,3,4,5,-1,7,8,9,10,11,12,13,14,15, "
        "16\r\nStyle: short,f,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\r\n"
        "Style: long,f,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17\r\n"
        "Style: closed,f,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16; 17,18\r\n" +
        Style(Repeat("n", 60), "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,123456789")));
    std::string strNames;
    const SSAStyleNode *const pstFirst = pstQuibCaptionParserInfo->pstSSAStyleList;
    const SSAStyleNode *pstLast = pstFirst;
    for (const SSAStyleNode *pstNode = pstFirst; pstNode != nullptr; pstNode = pstNode->pstNext) {
        pstLast = pstNode;
        for (const uint16_t usUnit : pstNode->stStyle.ausStyleName)
            if (usUnit != 0) strNames += static_cast<char>(usUnit);
        strNames += "|";
    }
    ASSERT_NE(pstFirst, nullptr);
    EXPECT_EQ(strNames, "MyName|long|closed|" + Repeat("n", 51) + "|");
    EXPECT_EQ(std::memcmp(pstFirst->stStyle.ausFontName, u"TimesNewRoman\0", 28), 0);
    const uint32_t auiWanted[] = {1, 0xFF00FF, 3, 4, 5, 0, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    EXPECT_EQ(std::memcmp(&pstFirst->stStyle.uiFontSize, auiWanted, sizeof(auiWanted)), 0);
    EXPECT_EQ(pstLast->stStyle.uiEncoding, 0u) << "nine digits are no number";
}

// ---- Styles ----

TEST_F(SsaTest, StyleGivesTheFrameItsLook)
{
    // Size, 4 colours, bold, italic, border, outline, shadow, alignment, 5 more.
    static const std::pair<const char *, const char *> CASES[] = {
        {"20,255,0,0,65280,0,0,0,0,0,2,0,0,0,0,0", "1000-9500 x: 20 20 001F 0 0"},
        {"0,&H00FF0000,0,0,65280,0,0,1,0,0,2,0,0,0,0,0", "1000-9500 x: 20 16 F800 7E0 0"},
        {"20,0,9,9,65280,1,0,0,9,9,1,9,9,9,9,9", "1000-9500 x: 34 20 0000 0 0"},
        {"20,0,0,0,0,0,1,0,0,0,3,0,0,0,0,0", "1000-9500 x: 68 20 0000 0 0"},
        {"20,0,0,0,0,-1,-1,0,0,0,6,0,0,0,0,0", "1000-9500 x: 2020 20 0000 0 0"},
        {"20,0,0,0,0,0,0,0,0,0,13,0,0,0,0,0", "1000-9500 x: 2030 20 0000 0 0"},
        {"20,0,0,0,0,0,0,0,0,0,11,0,0,0,0,0", "1000-9500 x: 4060 20 0000 0 0"},
        {"20,0,0,0,0,0,0,0,0,0,8,0,0,0,0,0", "1000-9500 x: 4020 20 0000 0 0"},
    };
    for (const auto &[pszNumbers, pszLook] : CASES)
        EXPECT_EQ(
            First_Look(INFO + Style("S", pszNumbers).append(EVENTS).append(Line("0:00:01.00", "x", "S"))),
            pszLook);
    First_Look(INFO + Style("S", "20,0,0,0,65280,0,0,1,0,0,2,0,0,0,0,0") + EVENTS +
               Line("0:00:01.00", "x", "S") + Second(2, "y"));
    EXPECT_EQ(pstQuibCaptionParserInfo->usOutlineColor, 0x7E0);
    EXPECT_EQ(Next(), "2000-9500 y");
    EXPECT_EQ(pstQuibCaptionParserInfo->usOutlineColor, 0) << "the next frame begins without one";
    QUIBCAPT_SetFontColor(0x1234);
    EXPECT_EQ(First_Look(File(Second(1, "x"))), "1000-9500 x: 0 16 1234 0 0");
    EXPECT_EQ(Get_Fields().pstStyle, nullptr);
}

TEST_F(SsaTest, StyleIsTheFirstThatBeginsWithTheField)
{
    const std::string strLong(51, 'n');
    // clang-format off
    static const struct {
        std::string strField;
        uint32_t uiSize; // of the style that is found; 16 = none
    } CASES[] = {
        {"Default", 21}, {"Def", 21}, {"", 21}, {"D e f a u l t", 21}, {"default", 16}, {"Default2", 22},
        {"Default3", 16}, {strLong, 23}, {strLong + "n", 23}, {strLong + Repeat("x", 460), 23},
        {strLong.substr(1) + "x", 16},
    };
    // clang-format on
    const std::string strRest = ",0,0,0,0,0,0,0,0,0,2,0,0,0,0,0";
    const std::string strStyles = INFO + Style("Default", "21" + strRest) +
                                  Style("Default2", "22" + strRest) +
                                  Style(strLong + "cut off", "23" + strRest) + EVENTS;
    for (const auto &stCase : CASES) {
        First(strStyles + Line("0:00:01.00", "x", stCase.strField));
        EXPECT_EQ(pstQuibCaptionParserInfo->uiFontSize, stCase.uiSize) << stCase.strField;
    }
    EXPECT_EQ(First(INFO + EVENTS + Line("0:00:01.00", "x", "")), "1000-9500 x");
    EXPECT_EQ(Get_Fields().pstStyle, nullptr);
}

TEST_F(SsaTest, FreedStylesAreNoLongerFound)
{
    std::string strLines;
    for (uint32_t uiSecond = 1; uiSecond < 9; ++uiSecond)
        strLines += Line("0:00:0" + std::to_string(uiSecond) + ".00", "x", "Default");
    EXPECT_EQ(First(File(strLines)), "1000-9500 x");
    EXPECT_EQ(Next(), "2000-9500 x");
    EXPECT_EQ(pstQuibCaptionParserInfo->uiFontSize, 20u);
    QuibCaptionParser_Destroy_SSA_MemoryBuffers();
    EXPECT_EQ(Next(), "3000-9500 x");
    EXPECT_EQ(Get_Fields().pstStyle, nullptr);
    EXPECT_EQ(pstQuibCaptionParserInfo->uiFontSize, 16u);
}

TEST_F(SsaTest, NoMoreThan4096StylesAreKept)
{
    const std::string strNumbers = ",0,0,0,0,0,0,0,0,0,2,0,0,0,0,0";
    const std::string strFull =
        INFO + Repeat(Style("s", "1" + strNumbers), 4095) + Style("Last", "7" + strNumbers);
    std::vector<uint64_t> vecHeld;
    for (const uint32_t uiMore : {0u, 200000u}) {
        std::string strFile = strFull + Repeat(DEFAULT_STYLE, uiMore);
        strFile += EVENTS + Line("0:00:01.00", "x", "Last") + Line("0:00:02.00", "y", "Default");
        EXPECT_EQ(First_Look(strFile), "1000-9500 x: 20 7 0000 0 0");
        Next();
        EXPECT_EQ(Get_Fields().pstStyle, nullptr) << "style 4,097 is not kept";
        vecHeld.push_back(zyr_host_liveBytes());
    }
    EXPECT_EQ(vecHeld[0], vecHeld[1]);
}

// ---- Frames ----

TEST_F(SsaTest, EveryFieldIsRead)
{
    EXPECT_EQ(First(File("dialogue : Marked = 1 2,0:01:02.03,1:0 0:00.50, Default,a name,0010,2 0,x,"
                         "Banner;30,Hello, world\r\n")),
              "62030-3600500 Hello, world");
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
    static const struct {
        std::string strEffect;
        uint32_t auiWanted[4]; // effect, y1, y2, delay
    } CASES[] = {
        {"", {0, 0, 0, 0}}, {"Karaoke", {1, 0, 0, 0}}, {"kara oke9", {1, 0, 0, 0}},
        {"Karaok", {0, 0, 0, 0}}, {"Scroll up;10;100;5;", {2, 10, 100, 5}},
        {"Scroll up;10;100;5", {2, 10, 100, 5}}, {"Scroll up;10;100;", {2, 10, 100, 0}},
        {"Scroll up;10;100", {2, 10, 0, 0}}, {"Scroll up!;1;2;3", {2, 1, 2, 3}},
        {"Banner;20", {3, 0, 0, 20}}, {"Banner;", {3, 0, 0, 0}}, {"Banner", {3, 0, 0, 0}},
        {"Banner;20;" + Repeat("x", 19), {3, 0, 0, 0}}, {"Karaoke" + Repeat("x", 22), {1, 0, 0, 0}},
        {"Karaoke" + Repeat("x", 23), {0, 0, 0, 0}}, {"Banner;2\xC3\xA9", {0, 0, 0, 0}},
    };
    // clang-format on
    for (const auto &stCase : CASES) {
        EXPECT_EQ(First("\xEF\xBB\xBF" + EVENTS + Line("0:00:01.00", "x", "None", stCase.strEffect)),
                  stCase.strEffect.ends_with("\xA9") ? "!1000-9500 x" : "1000-9500 x");
        EXPECT_EQ(std::memcmp(&Get_Fields().uiEffect, stCase.auiWanted, sizeof(stCase.auiWanted)), 0)
            << stCase.strEffect;
    }
}

TEST_F(SsaTest, Texts)
{
    const std::string FULL = "1000-9500 " + Repeat("a", 64) + "|";
    const std::string STYLED = Line("0:00:05.00", "안\\N{\\i1}a  b", "Default", "Scroll up;1;2;3");
    const PlayCase CASES[] = {
        {"breaks", File(Second(1, "One line\\Ntwo\\nthree")), "1000-9500 One line|two|three"},
        {"a hard blank is none", File(Second(1, "a\\hb")), "1000-9500 a\\b"},
        {"a backslash given back", File(Second(1, "a\\\\Nb")), "1000-9500 a\\Nb"},
        {"empty lines are not closed", File(Second(1, "\\N\\Na \\N b")), "1000-9500 a|b"},
        {"blanks", File(Second(1, "  a \t  b, {\\k1} c,")), "1000-9500 a b,  c,"},
        {"a zero", File(Second(1, {"a\0b", 3})), "1000-9500 ab"},
        {"blanks in the times", File(Line(" 0:00:0 1.00 ", "a") + Line("0 :00:02.00", "b")),
         "1000-9500 a; 2000-9500 b"},
        {"no end time: no text", File("Dialogue: 0,0:00:01.00,0:00:00.00,S,,0,0,0,,x\r\n"), "1000-0 "},
        {"no text", File(Second(1, "")), "1000-9500 "},
        {"a block in a block", File(Second(1, "a{\\b1{x}b")), "1000-9500 a"},
        {"a block without an end", File(Second(1, "a{open")), "1000-9500 a"},
        {"a lone CR hides what follows", File(Second(1, "a\rx\ry\nb")), "1000-9500 a"},
        {"a backslash at the end", File(Second(1, "a\\\r\nb")), "1000-9500 a\\|b"},
        {"a long word", File(Second(1, Repeat("a", 70))), FULL + "aaaaaa"},
        {"a full convert buffer", File(Second(1, Repeat("a", 129) + " b")), FULL + Repeat("a", 64) + "|a b"},
        {"other lines between", File("Comment: 안,,\r\n\r\n" + STYLED) + "\r\n[Fonts]\r\nx: y\r\n",
         "5000-9500 안|a b"},
        {"the first line of the file, then by time", File(Second(5, "5") + Second(1, "1") + Second(7, "녕")),
         "5000-9500 5; 7000-9500 녕"},
    };
    Expect_Played(".ssa", CASES);
    EXPECT_EQ(First(File(Second(1, Repeat("a", 299) + " b"))).substr(270), Repeat("a", 43) + " b")
        << "a blank at the convert buffer's end";
    // Two-byte characters of a code page, whose second byte may look like a backslash or a brace.
    EXPECT_EQ(First(File(Second(1, "\xB0\x5C\xB0\x7B{\\i1}\xB0\xA1"))), "1000-9500 \xB0\x5C\xB0\x7B\xB0\xA1");
    ASSERT_EQ(Open(".ssa", EVENTS + Second(1, "\xB0\\Nb"), 1), 0u); // every byte is a character
    EXPECT_EQ(Texts(), std::string("\0\xB0\nb|", 5));
}

TEST_F(SsaTest, OverridesDoWhatTheirTableSays)
{
    const std::string PLAIN = "0 16 FFFF 0 0";
    const std::string LONG = Repeat("0", 30);
    // clang-format off
    const struct {
        std::string strBlock, strLook;
        const char *pszComplaints = "", *pszMessage = nullptr; // one of them
    } CASES[] = {
        {"{\\b1}", "4 16 FFFF 0 0"}, {"{\\B1x}", "4 16 FFFF 0 0"}, {"{\\b0}", PLAIN}, {"{\\b}", PLAIN},
        {"{\\bord1}", PLAIN}, {"{\\b \t1}", "4 16 FFFF 0 0"}, {"{\\i1}", "8 16 FFFF 0 0"},
        {"{\\i1\\b1}", "8 16 FFFF 0 0"}, {"{\\i1}{\\b1}{\\i0}", "C 16 FFFF 0 0"}, {"{\\i}", PLAIN},
        {"{\\fnArial}", PLAIN}, {"{\\fe0}", PLAIN}, {"{\\fs36}", "0 36 FFFF 0 0"},
        {"{\\fs1 2}", "0 1 FFFF 0 0"}, {"{\\fscx90}", "0 0 FFFF 0 0"}, {"{\\fs}", PLAIN},
        {"{\\c&HFF8000&}", "0 16 FC00 0 0"}, {"{\\C&hff8000&}", "0 16 FC00 0 0"},
        {"{\\c&H1234FF8000&}", "0 16 FC00 0 0"}, {"{\\c&H&}", PLAIN}, {"{\\c&HFF8000}", PLAIN, "!!"},
        {"{\\c&H" + LONG + "&}", "0 16 0000 0 0"},
        {"{\\c&H}", PLAIN, "!!", "NO Parsing TAG Type = "},
        {"{\\c&H12G4&}", PLAIN, "!", "RGB Color Data is bad! (DATA = 12G4,  VALUE = 0x00000012)"},
        {"{\\c&H0" + LONG + "&}", PLAIN, "!", "Too Long Color Name! ([31] >> [30])"},
        {"{\\a1}", "10 16 FFFF 0 0"}, {"{\\a2}", "20 16 FFFF 0 0"},
        {"{\\a3}", "40 16 FFFF 0 0"}, {"{\\an1}", "20 16 FFFF 0 0"}, {"{\\a}", PLAIN}, {"{\\k50}", "0 16 FFFF 0 50"},
        {"{\\k}", PLAIN}, {"{\\b1}{\\fs9}{\\c&H0&}{\\k9}{\\r}", PLAIN}, {"{}", PLAIN, "!"},
        {"{\\}", PLAIN, "!"}, {"{\\pos(10,10)}", PLAIN, "!"},
        {"{b1}", PLAIN, "!", "FrameParser_SSA() - Failed to parse the caption tag!"},
        {"{\\b1é}", PLAIN, "!!", "Bad Tag Name Character! [0x00E9]"}, {"{\\b1" + Repeat("x", 508) + "}", "4 16 FFFF 0 0"},
    };
    // clang-format on
    for (const auto &stCase : CASES) {
        SCOPED_TRACE(stCase.strBlock);
        EXPECT_EQ(First_Look("\xEF\xBB\xBF" + EVENTS + Second(1, "a" + stCase.strBlock + "b")),
                  stCase.pszComplaints + ("1000-9500 ab: " + stCase.strLook));
        if (stCase.pszMessage == nullptr) continue;
        EXPECT_EQ(Count_Log(stCase.pszMessage), 1u);
    }
    // One unit more than a block can hold; then a reset, to the style's colour and the usual height.
    EXPECT_EQ(First_Look(File(Second(1, "a{\\b1" + Repeat("x", 509) + "}b"))), "1000-9500 a: " + PLAIN);
    EXPECT_EQ(First_Look(File(Line("0:00:01.00", "{\\b1}{\\c&H0&}{\\k3}{\\r}x", "Default"))),
              "1000-9500 x: 0 16 001F 0 0");
}

TEST_F(SsaTest, FieldsHoldLessThan512Units)
{
    const auto fnLine = [](const std::string &strEnd, const std::string &strName) {
        return "Dialogue: 0,0:00:01.00," + strEnd + ",S," + strName + ",0,0,0,,x\r\n";
    };
    for (const size_t uiUnits : {511u, 512u, 513u}) {
        const std::string strText = uiUnits < 512 ? "x" : "";
        const std::string strFill = Repeat("x", uiUnits - 10);
        ASSERT_TRUE(Open_File(EVENTS + Line(std::string("0:00:01.00").append(strFill), "x")));
        EXPECT_EQ(s_stCaptionFrameList.uiNodeNum, strText.size()) << uiUnits;
        EXPECT_EQ(First(File(fnLine("0:00:02.00" + strFill, "n"))),
                  uiUnits < 512 ? "1000-2000 x" : "1000-0 ");
        EXPECT_EQ(First(File(fnLine("0:00:02.00", Repeat("n", uiUnits) + " "))), "1000-2000 " + strText);
    }
    EXPECT_EQ(First(File("Dialogue: 0,0:00:01.00,never,S,,0,0,0,,x\r\n")), "!1000-0 ");
    EXPECT_EQ(First(File("Dialogue: 0,0:00:01.00,0:00:02.00,S\r\n")), "1000-2000 ");
    EXPECT_EQ(First(File("Dialogue: 0,0:00:01.00,0:00:02.00,S,,0,0,0,,cut")), "1000-2000 cut");
    EXPECT_EQ(pstQuibCaptionParserInfo->astStreamInfo[0].iStreamDataSize, NO_CAPTION_DATA);
    EXPECT_EQ(First(File(Line(Repeat("1", 5000), "x"))), "none");
}

// ---- The order of frames, and seeks ----

TEST_F(SsaTest, LinesComeInTimeOrderFromTheFirstOneOfTheFileOn)
{
    ASSERT_TRUE(Open_File(INFO + EVENTS + Second(5, "five") + Second(1, "one") + Second(3, "three") +
                          Second(1, "two") + Second(0, "no time") + Line("10:00:00.00", "eight digits")));
    EXPECT_EQ(s_stCaptionFrameList.uiNodeNum, 4u);
    EXPECT_EQ(Count_Log("SSA PTS FORMAT is BAD! Number Argument = [8]"), 1u);
    EXPECT_EQ(Texts(), "five|");
    EXPECT_EQ(Texts_From(0), "one|two|three|five|");
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

/** Where a seek ends: node, file position, time. */
using Place = std::tuple<uint32_t, int64_t, uint32_t>;

/** @return where a seek that walks from node to node ends. */
Place Walk(uint32_t uiNode, uint32_t uiTarget, uint32_t uiBackward, CaptionFrameNode stLast)
{
    if (uiBackward == 3) uiNode = 1;
    while (uiNode != Get_TailNode()) {
        stLast = s_stCaptionFrameList.pastNode[uiNode];
        if (uiBackward == 1 ? uiTarget > stLast.uiPTS || uiNode == 0 : uiTarget < stLast.uiPTS) break;
        uiNode += uiBackward == 1 ? UINT32_MAX : 1;
    }
    return {uiNode, stLast.llFilePos, stLast.uiPTS};
}

TEST_F(SsaTest, SeekEndsWhereAWalkWouldFromEveryNode)
{
    std::minstd_rand stRandom(5);
    for (const uint32_t uiLines : {1u, 3u, 40u}) {
        std::string strFile = EVENTS;
        for (uint32_t uiLine = 0; uiLine < uiLines; ++uiLine)
            strFile += Second(static_cast<uint32_t>(1 + stRandom() % 9), "x");
        ASSERT_TRUE(Open_File(strFile));
        QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        for (uint32_t uiNode = 0; uiNode <= uiLines + 1; ++uiNode)
            for (const uint32_t uiBackward : {0u, 1u, 2u, 3u})
                for (uint32_t uiTarget = 500; uiTarget < 10000; uiTarget += 500) {
                    s_stCaptionFrameList.uiCurrNode = uiNode;
                    stInfo.llCurrFilePos = 7;
                    stInfo.iCurrPTS = 70;
                    ASSERT_EQ(Seek_SSA(uiTarget, uiBackward, 0, &stInfo), 1);
                    ASSERT_EQ(Place(s_stCaptionFrameList.uiCurrNode, stInfo.llCurrFilePos, stInfo.iCurrPTS),
                              Walk(uiNode, uiTarget, uiBackward, {70, 7}))
                        << uiLines << " " << uiNode << " " << uiBackward << " " << uiTarget;
                }
    }
}

TEST_F(SsaTest, FramesAfterASeek)
{
    const std::string strLines = Second(1, "1") + Second(3, "3") + Second(5, "5");
    ASSERT_TRUE(Open_File(INFO + EVENTS + strLines));
    Next(); // the cursor goes to 3 s
    EXPECT_EQ(Texts_From(2000), "3|5|");
    EXPECT_EQ(Texts_From(500), "") << "a cursor behind the last line stays there";
    EXPECT_EQ(Texts_From(0), "1|3|5|");
    zyrSubtitle_seek(0);
    Next();
    EXPECT_EQ(Texts_From(700), "|1|3|5|") << "back to the head: the file's first line is no Dialogue";

    ASSERT_TRUE(Open_File(Second(0, "no start: no text") + EVENTS + Second(4, "4") + Second(5, "5")));
    EXPECT_EQ(Next(), "4000-9500 4");
    EXPECT_EQ(zyrSubtitle_seek(700), 0u);
    EXPECT_EQ(Play(), "0-0 ; 4000-9500 4; 5000-9500 5") << "a first line that is one";

    ASSERT_TRUE(Open_File(INFO + strLines)); // without [Events] there is no first position
    EXPECT_EQ(pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos, -1);
    EXPECT_EQ(zyrSubtitle_seek(0), 1u);
    EXPECT_EQ(Count_Log("Seek_SSA() - Parse_GetCurrFrameFilePos() Failed! (ERROR = -1)"), 1u);
    EXPECT_EQ(Texts(), "1|3|5|");

    ASSERT_TRUE(Open_File(INFO + EVENTS));
    EXPECT_EQ(Texts_From(0), "");
    EXPECT_EQ(Texts_From(9), "");
}

TEST_F(SsaTest, AFrameThatStandsWhereTheReaderIsNeedsNoMove)
{
    // Too far from the first line for one read buffer to hold both.
    ASSERT_TRUE(
        Open_File(EVENTS + Second(1, "1") + "; " + std::string(70000, 'x') + "\r\n" + Second(3, "3")));
    Next();
    ASSERT_EQ(zyrSubtitle_seek(2000), 0u);
    zyr_host_failFile(ZYR_HOST_SEEK, 1, -1, 0);
    EXPECT_EQ(Next(), "3000-9500 3");
    EXPECT_EQ(Next(), "!!none") << "the move behind the last line is the first one";
}

TEST_F(SsaTest, AFileThatCanBeMovedAnywhereEndsToo)
{
    ASSERT_TRUE(Open_File(EVENTS + Second(1, "x")));
    Texts();
    zyr_host_setFileHook(
        [](int iCall, uint32_t, int32_t iReal, void *) { return iCall == ZYR_HOST_SEEK ? 0 : iReal; },
        nullptr);
    EXPECT_EQ(FrameParser_SSA(), -6) << "a frame behind the last line, which says that it is one";
    EXPECT_EQ(s_stCaptionFrameList.uiCurrNode, Get_TailNode());
    zyr_host_setFileHook(nullptr, nullptr);
}

TEST(SsaLine, TimesAndKeys)
{
    EXPECT_EQ(Ask(Parse_SSAPts, "0:01:02.03"), 62030u);
    EXPECT_EQ(Ask(Parse_SSAPts, "0:75:00.00"), 4500000u);
    EXPECT_EQ(Ask(Parse_SSAPts, "10:00:00.00"), 0u);
    EXPECT_EQ(Ask(Parse_SSAPts, Repeat("9", 5000)), 0u);
    // clang-format off
    static const std::pair<std::string, uint32_t> KEYS[] = {
        {"dialogue:", 0}, {"Dial", 5}, {"STYLE", 1}, {"Title:", 2}, {"original script:", 3}, {"ScriptType", 4},
        {"Comment", 5}, {"T", 5}, {"Title" + Repeat("x", 25), 2}, {"Title" + Repeat("x", 26), 5},
    };
    // clang-format on
    for (const auto &[strKey, uiType] : KEYS) EXPECT_EQ(Ask(Get_SSALineType, strKey), uiType) << strKey;
}

TEST_F(SsaTest, HostileFilesEnd)
{
    const struct {
        std::string strFile;
        size_t uiFrames;
    } CASES[] = {
        {Repeat("\n", 10000000), 0},
        {EVENTS + Repeat("\n", 10000000), 0},
        {Repeat("[", 3000000), 0},
        {EVENTS + Repeat("\r", 1000000) + "\n" + Second(1, "x"), 1},
        {EVENTS + Second(1, Repeat("{}\\", 300000)), 1},
        {EVENTS + Second(1, Repeat("\x80", 3000000)), 1},
        {EVENTS + "Dialogue: " + Repeat("9", 3000000) + ",0:00:01.00,0:00:02.00,S,,0,0,0,,x\r\n", 1},
    };
    for (const auto &stCase : CASES) {
        ASSERT_TRUE(Open_File(stCase.strFile));
        EXPECT_EQ(Count_Frames(), stCase.uiFrames);
    }
    EXPECT_FALSE(Open_File(""));
}

} // namespace
