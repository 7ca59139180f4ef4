// SSA files, played through the public calls; the record and the lists behind them are looked at where the
// format keeps more than a frame shows.

#include <cstring>
#include <random>

#include "caption/frame_list.h"
#include "caption/style_list.h"
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

/** What the frame's text looks like in the end. */
struct Look {
    uint32_t uiMode;
    uint32_t uiSize;
    uint32_t uiColour;
    uint32_t uiOutline = 0;
    uint32_t uiHighlight = 0;
    bool operator==(const Look &) const = default;
};

void PrintTo(const Look &stLook, std::ostream *pstOut)
{
    *pstOut << std::hex << "mode " << stLook.uiMode << " colour " << stLook.uiColour << " outline "
            << stLook.uiOutline << std::dec << " size " << stLook.uiSize << " highlight "
            << stLook.uiHighlight;
}

class SsaTest : public EngineTest
{
protected:
    bool Play(const std::string &strFile) { return Open(".ssa", strFile) == 0; }

    /** Texts of all frames from the first line on, or of those from where the reader stands. */
    std::string Read_Texts(bool bFromStart = true)
    {
        if (bFromStart) zyrSubtitle_seek(0);
        std::string strTexts;
        for (const TestFrame &stFrame : Read_All()) strTexts += stFrame.strText + "|";
        return strTexts;
    }

    /** The one line of a file that has the default style. */
    TestFrame Play_Line(const std::string &strLine)
    {
        TestFrame stFrame = {0, -1, -1, "(none)"};
        if (Play(INFO + DEFAULT_STYLE + EVENTS + strLine)) Read_Frame(&stFrame);
        return stFrame;
    }

    static Look Get_Look()
    {
        const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        return {stInfo.uiDisplayMode, stInfo.uiFontSize, stInfo.usFontColor, stInfo.usOutlineColor,
                stInfo.uiHighlight};
    }

    static const SSAFrameInfo &Get_Fields() { return pstQuibCaptionParserInfo->stSSAFrameInfo; }
};

// ---- Header pass ----

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

TEST_F(SsaTest, SectionsAreKnownByTheBeginningOfTheirNames)
{
    const std::string strBad = "[Ev\xEC\x95\x88nts]";
    struct {
        std::string strHead;
        bool bKnown;
        size_t uiLogs;
    } const astCase[] = {
        {"[Events]", true, 0},
        {"[events]", true, 0},
        {"[Events2]", true, 0},
        {"[v4 Styles]", true, 0},
        {"[SCRIPT INFO and more]", true, 0},
        {"[V4+ Styles]", false, 0},
        {"[Event]", false, 0},
        {"[]", false, 0},
        {strBad, false, 1},
        {"[Ev[Events]", true, 0},
        {"[Events\r\n]", false, 0},
        {"x [Events]", true, 0},
        {"[Events" + std::string(23, 'x') + "]", true, 0},  // 30 units
        {"[Events" + std::string(24, 'x') + "]", false, 0}, // 31
        {"[Events" + std::string(600, 'x') + "]", false, 0},
        {"[Script Info]\r\n;" + std::string(600, 'k') + "[Events]", true,
         0}, // lines of a known section go on
        {"[Fonts]\r\n[Events]", true, 0},
    };
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play("\xEF\xBB\xBF" + stCase.strHead + "\r\n" + Second(1, "x"))) << stCase.strHead;
        EXPECT_EQ(s_stCaptionFrameList.uiNodeNum, stCase.bKnown ? 1u : 0u) << stCase.strHead;
        EXPECT_EQ(Count_Log("Bad SSA LineType Name Character! [0xC548]"), stCase.uiLogs) << stCase.strHead;
    }
}

TEST_F(SsaTest, AKeyOf512UnitsHidesASectionBehindIt)
{
    for (const uint32_t uiUnits : {510u, 512u, 513u}) {
        ASSERT_TRUE(Play(INFO + std::string(uiUnits, 'k') + "[Events]\r\n" + Second(1, "x")));
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
             Style(std::string(60, 'n'), "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,123456789")));
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
    EXPECT_EQ(strNames, "MyName|long|closed|" + std::string(51, 'n') + "|");
    EXPECT_EQ(std::memcmp(stFirst.ausFontName, u"TimesNewRoman\0", 28), 0);
    const uint32_t auiWanted[] = {1, 0xFF00FF, 3, 4, 5, 0, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    EXPECT_EQ(std::memcmp(&stFirst.uiFontSize, auiWanted, sizeof(auiWanted)), 0);
    EXPECT_EQ(pstLast->uiEncoding, 0u) << "nine digits are no number";
}

// ---- Styles ----

TEST_F(SsaTest, StyleGivesTheFrameItsLook)
{
    struct {
        const char *pszNumbers; // size, 4 colours, bold, italic, border, outline, shadow, alignment, 5 more
        Look stLook;
    } const astCase[] = {
        {"20,255,0,0,65280,0,0,0,0,0,2,0,0,0,0,0", {0x20, 20, 0x001F}},
        {"0,&H00FF0000,0,0,65280,0,0,1,0,0,2,0,0,0,0,0", {0x20, 16, 0xF800, 0x07E0}},
        {"20,0,9,9,65280,1,0,0,9,9,1,9,9,9,9,9", {0x34, 20, 0}},
        {"20,0,0,0,0,0,1,0,0,0,3,0,0,0,0,0", {0x68, 20, 0}},
        {"20,0,0,0,0,-1,-1,0,0,0,6,0,0,0,0,0", {0x2020, 20, 0}},
        {"20,0,0,0,0,0,0,0,0,0,13,0,0,0,0,0", {0x2030, 20, 0}},
        {"20,0,0,0,0,0,0,0,0,0,11,0,0,0,0,0", {0x4060, 20, 0}},
        {"20,0,0,0,0,0,0,0,0,0,8,0,0,0,0,0", {0x4020, 20, 0}},
    };
    TestFrame stFrame;
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play(INFO + Style("S", stCase.pszNumbers) + EVENTS + Line("0:00:01.00", "x", "S")));
        ASSERT_TRUE(Read_Frame(&stFrame));
        EXPECT_EQ(Get_Look(), stCase.stLook) << stCase.pszNumbers;
    }
    QUIBCAPT_SetFontColor(0x1234);
    EXPECT_EQ(Play_Line(Line("0:00:01.00", "x")).strText, "x");
    EXPECT_EQ(Get_Look(), (Look{0, 16, 0x1234}));
    EXPECT_EQ(Get_Fields().pstStyle, nullptr);
}

TEST_F(SsaTest, StyleIsTheFirstThatBeginsWithTheField)
{
    const std::string strLong(51, 'n');
    struct {
        std::string strField;
        uint32_t uiSize; // of the style that is found; 16 = none
    } const astCase[] = {
        {"Default", 21},
        {"Def", 21},
        {"", 21},
        {"D e f a u l t", 21},
        {"default", 16},
        {"Default2", 22},
        {"Default3", 16},
        {strLong, 23},
        {strLong + "n", 23}, // what lies beyond the longest name is not looked at
        {strLong + std::string(460, 'x'), 23},
        {strLong.substr(1) + "x", 16},
    };
    const std::string strRest = ",0,0,0,0,0,0,0,0,0,2,0,0,0,0,0";
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play(INFO + Style("Default", "21" + strRest) + Style("Default2", "22" + strRest) +
                         Style(strLong + "cut off", "23" + strRest) + EVENTS +
                         Line("0:00:01.00", "x", stCase.strField)));
        TestFrame stFrame;
        ASSERT_TRUE(Read_Frame(&stFrame)) << stCase.strField;
        EXPECT_EQ(Get_Look().uiSize, stCase.uiSize) << stCase.strField;
    }
    ASSERT_TRUE(Play(INFO + EVENTS + Line("0:00:01.00", "x", "")));
    EXPECT_EQ(Read_Texts(false), "x|");
    EXPECT_EQ(Get_Fields().pstStyle, nullptr);
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
    struct {
        std::string strEffect;
        uint32_t auiWanted[4]; // effect, y1, y2, delay
    } const astCase[] = {
        {"", {0, 0, 0, 0}},
        {"Karaoke", {1, 0, 0, 0}},
        {"kara oke9", {1, 0, 0, 0}},
        {"Karaok", {0, 0, 0, 0}},
        {"Scroll up;10;100;5;", {2, 10, 100, 5}},
        {"Scroll up;10;100;5", {2, 10, 100, 5}},
        {"Scroll up;10;100;", {2, 10, 100, 0}},
        {"Scroll up;10;100", {2, 10, 0, 0}},
        {"Scroll up!;1;2;3", {2, 1, 2, 3}},
        {"Banner;20", {3, 0, 0, 20}},
        {"Banner;", {3, 0, 0, 0}},
        {"Banner", {3, 0, 0, 0}},
        {"Banner;20;" + std::string(19, 'x'), {3, 0, 0, 0}}, // 29 units; a delay of over eight is no number
        {"Karaoke" + std::string(22, 'x'), {1, 0, 0, 0}},    // 29
        {"Karaoke" + std::string(23, 'x'), {0, 0, 0, 0}},    // 30
        {"Banner;2\xC3\xA9", {0, 0, 0, 0}},
    };
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play("\xEF\xBB\xBF" + EVENTS + Line("0:00:01.00", "x", "None", stCase.strEffect)));
        EXPECT_EQ(Read_Texts(false), "x|");
        EXPECT_EQ(std::memcmp(&Get_Fields().uiEffect, stCase.auiWanted, sizeof(stCase.auiWanted)), 0)
            << stCase.strEffect;
        EXPECT_EQ(Count_Log("Bad SSA Effect Name Character! [0x00E9]"),
                  stCase.strEffect.back() == '\xA9' ? 1u : 0u);
    }
}

TEST_F(SsaTest, TextIsFoldedAndEscaped)
{
    struct {
        std::string strText;
        std::string strWanted;
    } const astCase[] = {
        {"Line one\\NLine two\\nthree", "Line one\nLine two\nthree"},
        {"a\\hb", "a\\b"},
        {"a\\\\Nb", "a\\Nb"},
        {"\\N\\Na \\N b", "a\nb"},
        {"  a \t  b, {\\k1} c,", "a b,  c,"},
        {std::string("a\0b", 3), "ab"},
        {"", ""},
        {"a{\\b1{x}b", "a"},
        {"a{open", "a"},
        {"a\rx\ry\nb", "a"},
        {"a\\\r\nb", "a\\\nb"}, // the CR is the unit behind the backslash: the line goes on
        {std::string(70, 'w'), std::string(64, 'w') + "\n" + "wwwwww"},
        {std::string(299, 'a') + " b", std::string(64, 'a') + "\n" + std::string(64, 'a') + "\n" +
                                           std::string(64, 'a') + "\n" + std::string(64, 'a') + "\n" +
                                           std::string(43, 'a') + " b"},
    };
    for (const auto &stCase : astCase)
        EXPECT_EQ(Play_Line(Line("0:00:01.00", stCase.strText)).strText, stCase.strWanted) << stCase.strText;
}

TEST_F(SsaTest, OverridesDoWhatTheirTableSays)
{
    const Look PLAIN = {0, 16, 0xFFFF};
    struct {
        std::string strBlock;
        Look stLook;
        size_t uiFailures = 0;        // blocks that could not be parsed
        const char *pszLog = "~none"; // what else is logged
    } const astCase[] = {
        {"{\\b1}", {4, 16, 0xFFFF}},
        {"{\\B1x}", {4, 16, 0xFFFF}},
        {"{\\b0}", PLAIN},
        {"{\\b}", PLAIN},
        {"{\\bord1}", PLAIN},
        {"{\\b \t1}", {4, 16, 0xFFFF}},
        {"{\\i1}", {8, 16, 0xFFFF}},
        {"{\\i1\\b1}", {8, 16, 0xFFFF}},
        {"{\\i1}{\\b1}{\\i0}", {12, 16, 0xFFFF}},
        {"{\\i}", PLAIN},
        {"{\\fnArial}", PLAIN},
        {"{\\fe0}", PLAIN},
        {"{\\fs36}", {0, 36, 0xFFFF}},
        {"{\\fs1 2}", {0, 1, 0xFFFF}}, // two units count, the first two are read
        {"{\\fscx90}", {0, 0, 0xFFFF}},
        {"{\\fs}", PLAIN},
        {"{\\c&HFF8000&}", {0, 16, 0xFC00}},
        {"{\\C&hff8000&}", {0, 16, 0xFC00}},
        {"{\\c&H1234FF8000&}", {0, 16, 0xFC00}},
        {"{\\c&H&}", PLAIN},
        {"{\\c&HFF8000}", PLAIN, 1, "NO Parsing TAG Type = "},
        {"{\\c&H}", PLAIN, 1, "NO Parsing TAG Type = "},
        {"{\\c&H12G4&}", PLAIN, 0, "RGB Color Data is bad! (DATA = 12G4,  VALUE = 0x00000012)"},
        {"{\\c&H" + std::string(30, '0') + "&}", {0, 16, 0}},
        {"{\\c&H" + std::string(31, '0') + "&}", PLAIN, 0, "Too Long Color Name! ([31] >> [30])"},
        {"{\\a1}", {0x10, 16, 0xFFFF}},
        {"{\\a2}", {0x20, 16, 0xFFFF}},
        {"{\\a3}", {0x40, 16, 0xFFFF}},
        {"{\\an1}", {0x20, 16, 0xFFFF}},
        {"{\\a}", PLAIN},
        {"{\\k50}", {0, 16, 0xFFFF, 0, 50}},
        {"{\\k}", PLAIN},
        {"{\\b1}{\\fs9}{\\c&H0&}{\\k9}{\\r}", PLAIN},
        {"{}", PLAIN, 1},
        {"{\\}", PLAIN, 1},
        {"{b1}", PLAIN, 1},
        {"{\\pos(10,10)}", PLAIN, 1},
        {"{\\b1\xC3\xA9}", PLAIN, 1, "Bad Tag Name Character! [0x00E9]"},
        {"{\\b1" + std::string(508, 'x') + "}", {4, 16, 0xFFFF}}, // 512 units
    };
    for (const auto &stCase : astCase) {
        TestFrame stFrame = {};
        ASSERT_TRUE(Play("\xEF\xBB\xBF" + EVENTS + Line("0:00:01.00", "a" + stCase.strBlock + "b")));
        ASSERT_TRUE(Read_Frame(&stFrame));
        EXPECT_EQ(stFrame.strText, "ab") << stCase.strBlock;
        EXPECT_EQ(Get_Look(), stCase.stLook) << stCase.strBlock;
        EXPECT_EQ(Count_Log("Failed to parse the caption tag!"), stCase.uiFailures) << stCase.strBlock;
        EXPECT_EQ(Count_Log(stCase.pszLog), stCase.pszLog[0] == '~' ? 0u : 1u) << stCase.strBlock;
    }
    EXPECT_EQ(Play_Line(Line("0:00:01.00", "a{\\b1" + std::string(509, 'x') + "}b")).strText, "a");
    EXPECT_EQ(Get_Look(), PLAIN);
    EXPECT_EQ(Play_Line(Line("0:00:01.00", "{\\b1}{\\c&H0&}{\\k3}{\\r}x", "Default")).strText, "x");
    EXPECT_EQ(Get_Look(), (Look{0, 16, 0x001F})); // the style's colour, the height that frames start with
}

TEST_F(SsaTest, FieldsHoldLessThan512Units)
{
    for (const size_t uiUnits : {511u, 512u, 513u}) {
        const bool bFits = uiUnits < 512;
        const std::string strStart = "0:00:01.00" + std::string(uiUnits - 10, 'x');
        ASSERT_TRUE(Play(EVENTS + Line(strStart, "x")));
        EXPECT_EQ(s_stCaptionFrameList.uiNodeNum, bFits ? 1u : 0u) << uiUnits;
        const auto fnFrame = [&](const std::string &strEnd, const std::string &strName) {
            return Play_Line("Dialogue: 0,0:00:01.00," + strEnd + ",S," + strName + ",0,0,0,,x\r\n");
        };
        EXPECT_EQ(fnFrame("0:00:02.00" + std::string(uiUnits - 10, 'x'), "n"),
                  (TestFrame{0, 1000, bFits ? 2000 : 0, bFits ? "x" : ""}));
        EXPECT_EQ(fnFrame("0:00:02.00", std::string(uiUnits, 'n') + " "),
                  (TestFrame{0, 1000, 2000, bFits ? "x" : ""}));
    }
    EXPECT_EQ(Play_Line("Dialogue: 0,0:00:01.00,never,S,,0,0,0,,x\r\n"), (TestFrame{0, 1000, 0, ""}));
    EXPECT_EQ(Play_Line("Dialogue: 0,0:00:01.00,0:00:02.00,S\r\n"), (TestFrame{0, 1000, 2000, ""}));
    EXPECT_EQ(Play_Line("Dialogue: 0,0:00:01.00,0:00:02.00,S,,0,0,0,,cut"),
              (TestFrame{0, 1000, 2000, "cut"}));
    EXPECT_EQ(Play_Line(Line(std::string(5000, '1'), "x")).strText, "(none)");
}

// ---- Seek ----

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

// ---- Encodings, short reads, faults, hostile files ----

const std::string SAMPLE = INFO + DEFAULT_STYLE + EVENTS + "Comment: \xEC\x95\x88,,\r\n\r\n" +
                           Line("0:00:05.00", "\xEC\x95\x88\\N{\\i1}a  b", "Default", "Scroll up;1;2;3") +
                           Line("0:00:02.00", "later\\h{x}" + std::string(80, 'y'), "\xEB\x85\x95") +
                           Line("0:00:01.00", std::string(700, 'z')) + "\r\n[Fonts]\r\nx: y\r\n";

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
    const std::string strFile = Encode(EVENTS + Second(1, "x") + std::string(70000, '-'), E_UTF8);
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
        {std::string(10000000, '\n'), 0},
        {EVENTS + std::string(10000000, '\n'), 0},
        {std::string(3000000, '['), 0},
        {EVENTS + std::string(1000000, '\r') + "\n" + Second(1, "x"), 1},
        {EVENTS + Line("0:00:01.00", strNested), 1},
        {EVENTS + Line("0:00:01.00", std::string(3000000, '\x80')), 1},
        {EVENTS + "Dialogue: " + std::string(3000000, '9') + ",0:00:01.00,0:00:02.00,S,,0,0,0,,x\r\n", 1},
    };
    for (const auto &stCase : astCase) {
        ASSERT_TRUE(Play(stCase.strFile));
        EXPECT_EQ(Read_All().size(), stCase.uiFrames);
    }
    EXPECT_FALSE(Play(""));
}

} // namespace
