#include "renderer_kit.h"

#include <cstdlib>

/* The linker sends the renderer's calls of FreeType and malloc() through here. */
static std::string s_strFailing; // name of the call that fails, "" none
static uint32_t s_uiFaceCalls;   // calls that cost time: sizes, loading, rendering

static bool Count_Call(const char *pszName)
{
    ++s_uiFaceCalls;
    return s_strFailing == pszName;
}

extern "C" {
void *__real_malloc(size_t uiBytes);
void *__wrap_malloc(size_t uiBytes)
{
    return s_strFailing == "malloc" ? nullptr : __real_malloc(uiBytes);
}

#define WRAP(NAME, PARAMETERS, ARGUMENTS)                                                                    \
    FT_Error __real_##NAME PARAMETERS;                                                                       \
    FT_Error __wrap_##NAME PARAMETERS                                                                        \
    {                                                                                                        \
        return Count_Call(#NAME) ? FT_Error{0x40} : __real_##NAME ARGUMENTS;                                 \
    }
WRAP(FT_Init_FreeType, (FT_Library * pftLibrary), (pftLibrary))
WRAP(FT_Set_Char_Size, (FT_Face ftFace, FT_F26Dot6 iWidth, FT_F26Dot6 iHeight, FT_UInt uiX, FT_UInt uiY),
     (ftFace, iWidth, iHeight, uiX, uiY))
WRAP(FT_Set_Pixel_Sizes, (FT_Face ftFace, FT_UInt uiWidth, FT_UInt uiHeight), (ftFace, uiWidth, uiHeight))
WRAP(FT_Load_Glyph, (FT_Face ftFace, FT_UInt uiGlyph, FT_Int32 iFlags), (ftFace, uiGlyph, iFlags))
WRAP(FT_Render_Glyph, (FT_GlyphSlot ftSlot, FT_Render_Mode eMode), (ftSlot, eMode))

FT_Error __real_FT_New_Face(FT_Library ftLibrary, const char *pszPath, FT_Long iFace, FT_Face *pftFace);
FT_Error __wrap_FT_New_Face(FT_Library ftLibrary, const char *pszPath, FT_Long iFace, FT_Face *pftFace)
{
    if (Count_Call("FT_New_Face")) return FT_Error{0x40};
    const FT_Error iResult = __real_FT_New_Face(ftLibrary, pszPath, iFace, pftFace);
    if (s_strFailing == "flat face") (*pftFace)->bbox.yMin = (*pftFace)->bbox.yMax;
    return iResult;
}
}

class FontFT : public FontTest
{
protected:
    ~FontFT() override
    {
        s_strFailing.clear();
        zyr_font_close();
    }

    /* Measured and drawn by both, at every kind of place. */
    void Expect_SameCharacter(uint32_t uiCode)
    {
        static constexpr int32_t aaiPlaces[][2] = {{0, 0},     {-20, 3},   {90, -9},
                                                   {400, 150}, {390, 160}, {20, 300}};
        ASSERT_EQ(zyr_FontFT_getAdvanceX(uiCode), stFont.Has(uiCode) ? stFont.Get_Advance(uiCode) : -1);
        Picture stPicture(410, 180, 411), stJudge(410, 180, 411);
        stPicture.Make_Destination();
        zyr_fontDraw_setFontColor(0x8410, 0, 0, 0);
        ASSERT_EQ(zyr_fontFT_drawChar(0x10, uiCode, 200, 60), stFont.Draw_Grey(uiCode));
        for (const auto &[iX, iY] : aaiPlaces)
            ASSERT_EQ(
                zyr_fontFT_drawChar(0x20F, uiCode, static_cast<uint32_t>(iX), static_cast<uint32_t>(iY)),
                stFont.Draw(stJudge, uiCode, iX, iY, 0x8410))
                << "at " << iX;
        ASSERT_TRUE(stPicture == stJudge);
    }
};

/* A blank, overhanging and wide ones, a mark without width left of the pen, one that the font lacks, a far
 * one. */
static constexpr uint32_t TrickyCodes[] = {' ',  'A',    'J',    'f',    'g',    0x300,
                                           0xC5, 0xD55C, 0x9F98, 0xE123, 0x1F600};

/* Small sizes, ones that FreeType refuses, and again ones seen before: the order matters to what is kept. */
TEST_F(FontFT, EveryCharacterIsAsRenderedAnew)
{
    static constexpr uint32_t aauiSizes[][2] = {
        {32, 32},   {40, 32},   {4, 4},    {32, 32}, {6, 6},      {32, 40}, {44, 22},       {0, 9},  {22, 44},
        {3000, 32}, {256, 256}, {257, 90}, {48, 48}, {9, 700000}, {48, 48}, {1U << 31, 16}, {31, 31}};
    for (const char *pszFailing : {"", "malloc"}) { // with and without memory for what was seen
        s_strFailing = pszFailing;
        ASSERT_EQ(zyr_font_init(), 0);
        for (const auto &[uiWidth, uiHeight] : aauiSizes) {
            ASSERT_EQ(zyr_fontFT_setFontSize(uiWidth, uiHeight), stFont.Set_Size(uiWidth, uiHeight));
            for (uint32_t uiCase = 0; uiCase < 2 * std::size(TrickyCodes); ++uiCase) { // twice each
                SCOPED_TRACE(testing::Message() << pszFailing << " " << uiWidth << " x " << uiHeight << " "
                                                << TrickyCodes[uiCase % std::size(TrickyCodes)]);
                Expect_SameCharacter(TrickyCodes[uiCase % std::size(TrickyCodes)]);
                ASSERT_FALSE(HasFatalFailure());
            }
        }
        s_strFailing.clear();
        ASSERT_EQ(zyr_font_close(), 0);
    }
}

TEST_F(FontFT, AStringSeenBeforeNeedsNoFreeType)
{
    const auto vusText = To_Units(u"자막은 두 번째부터 빠르다");
    Picture stPicture(500, 40, 500);
    ASSERT_EQ(zyr_font_init(), 0);
    stPicture.Make_Destination();
    /* Two size calls, and each of 12 different characters loaded and rendered once; then nothing. */
    for (const uint32_t uiExpected : {2 + 2 * 12U, 0U}) {
        uint32_t auiLineWidth[60] = {}, uiWidth = 0, uiHeight = 0;
        s_uiFaceCalls = 0;
        zyr_font_setFontSize(0, 32, 32, 0, 0);
        zyr_font_calcRegion(vusText.data(), 14, 32, &uiWidth, &uiHeight, auiLineWidth);
        zyr_font_displayString(vusText.data(), 14, auiLineWidth, 32);
        EXPECT_EQ(s_uiFaceCalls, uiExpected);
    }
}

TEST_F(FontFT, SizesAndMistakes)
{
    uint32_t uiWidth = 0, uiHeight = 0;
    for (uint32_t uiRound = 0; uiRound < 2; ++uiRound) { // before the first open, and after a close
        EXPECT_EQ(zyr_FontFT_getRealFontSize('A', &uiWidth, &uiHeight), -1);
        EXPECT_EQ(zyr_fontFT_drawChar(0, 'A', 0, 0), -4);
        Expect(zyr_font_close(), -1, "6:Error zyr_fontFT_close(-1)\n|");
        EXPECT_EQ(zyr_font_init() + zyr_font_init(), 0); // opening twice keeps one font
        EXPECT_EQ(zyr_fontFT_setFontSize(32, 33), 0);
        EXPECT_EQ(zyr_FontFT_getRealFontSize('A', &uiWidth, &uiHeight), 0);
        EXPECT_EQ(std::exchange(uiWidth, 0) * 100 + uiHeight, 3233U);
        EXPECT_EQ(zyr_FontFT_getRealFontSize('A', nullptr, nullptr), 0);
        EXPECT_EQ(zyr_FontFT_getRealFontSize(0xE123, &uiWidth, &uiHeight), -1);
        EXPECT_EQ(zyr_font_close(), 0);
    }
}

/* Each FreeType call failing, or a face without height: what open, size, advance and drawing then give. */
TEST_F(FontFT, FailingCallsGiveTheirCodes)
{
    static constexpr std::tuple<const char *, int32_t, int32_t, int32_t, int32_t> astCases[] = {
        {"FT_Init_FreeType", -1, -1, -1, -4}, {"FT_New_Face", -1, -1, -1, -4},
        {"FT_Set_Char_Size", 0, -1, 0, 0},    {"FT_Set_Pixel_Sizes", 0, -1, 0, 0},
        {"FT_Load_Glyph", 0, 0, -1, -4},      {"FT_Render_Glyph", 0, 0, 0, -4},
        {"flat face", 0, -1, 0, 0},           {"no call at all", 0, 0, 0, 0},
    };
    Picture stPicture(50, 50, 50);
    for (const auto &[pszCall, iInit, iSize, iAdvance, iDraw] : astCases) {
        SCOPED_TRACE(pszCall);
        s_strFailing = pszCall;
        Expect(zyr_font_init(), iInit, iInit == 0 ? "" : "6:Error zyr_fontFT_init(-1)\n|");
        stPicture.Make_Destination();
        for (uint32_t uiRound = 0; uiRound < 2; ++uiRound) { // a failure is not kept, nor is it forgotten
            EXPECT_EQ(zyr_fontFT_setFontSize(32, 32), iSize);
            EXPECT_EQ(std::min(zyr_FontFT_getAdvanceX('A'), 0), iAdvance);
            EXPECT_EQ(std::min(zyr_fontFT_drawChar(0, 'A', 0, 0), 0), iDraw);
        }
        if (s_strFailing == "flat face") continue; // stays so
        s_strFailing.clear();
        EXPECT_EQ(zyr_fontFT_setFontSize(32, 32), iInit);
        EXPECT_EQ(zyr_fontFT_drawChar(0, 'A', 0, 0) > 0, iInit == 0);
    }
}

/* Whatever the file holds, calls give a result. */
TEST_F(FontFT, BrokenFontFiles)
{
    std::ifstream stFile(FONT_FILE, std::ios::binary);
    const std::string strFont((std::istreambuf_iterator<char>(stFile)), {});
    ASSERT_GT(strFont.size(), 1000000U);
    std::vector<std::string> astrBroken = {"", std::string(5000, '\x55')};
    for (size_t uiBytes = 1; uiBytes < strFont.size(); uiBytes = uiBytes * 3 + 1)
        astrBroken.push_back(strFont.substr(0, uiBytes));
    for (const std::string &strBytes : astrBroken) {
        const TempFile stBroken(strBytes);
        Picture stPicture(100, 100, 100);
        zyr_host_setFontFile(stBroken.Path());
        const int32_t iInit = zyr_font_init();
        EXPECT_TRUE(iInit == -1 || strBytes.size() > 5000) << strBytes.size();
        stPicture.Make_Destination();
        const int32_t iSize = zyr_fontFT_setFontSize(32, 32);
        for (const uint32_t uiCode : TrickyCodes) {
            const int32_t iDrawn = zyr_fontFT_drawChar(0, uiCode, 0, 0);
            EXPECT_TRUE(iDrawn >= 0 || iDrawn == -4 || iInit != 0 || iSize != 0) << iDrawn;
        }
        zyr_font_close();
    }
}
