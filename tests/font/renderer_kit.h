/* Judges for the renderer's tests: pictures with a margin that nobody may touch, and a font that is rendered
 * anew for every character and drawn pixel by pixel.
 */
#ifndef ZYR_RENDERER_KIT_H
#define ZYR_RENDERER_KIT_H

#include "platform/host_test.h"
#include "zyr/zyr_font.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cmath>
#include <vector>

constexpr char FONT_FILE[] = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";

/* A region in the middle of a larger buffer. Two pictures of one size start out equal. */
class Picture
{
public:
    Picture(uint32_t uiColumns, uint32_t uiRows, uint32_t uiRowPitch)
        : uiWidth(uiColumns), uiHeight(uiRows), uiPitch(uiRowPitch),
          vusPixels(2 * MARGIN + size_t{uiRowPitch} * uiRows)
    {
        for (size_t uiPixel = 0; uiPixel < vusPixels.size(); ++uiPixel)
            vusPixels[uiPixel] = static_cast<uint16_t>(uiPixel * 2654435761U >> 16);
    }

    /** Let the renderer draw here. */
    void Make_Destination()
    {
        ASSERT_EQ(zyr_fontDraw_setDestBuf(vusPixels.data() + MARGIN), 0);
        ASSERT_EQ(zyr_fontDraw_setDestRegion(uiWidth, uiHeight, uiPitch), 0);
    }

    void Fill(int64_t llX, int64_t llY, int64_t llWidth, int64_t llHeight, uint16_t usColor)
    {
        const int64_t llRight = std::min<int64_t>({llX + llWidth, uiWidth, uiPitch});
        const int64_t llBottom = std::min<int64_t>(llY + llHeight, uiHeight);
        for (int64_t llRow = std::max<int64_t>(llY, 0); llRow < llBottom; ++llRow)
            for (int64_t llColumn = std::max<int64_t>(llX, 0); llColumn < llRight; ++llColumn)
                vusPixels[MARGIN + static_cast<size_t>(llRow * uiPitch + llColumn)] = usColor;
    }

    /** Set the pixels whose bits are 1; a bitmap that is wider than the rest of its rows is not drawn. */
    int32_t Draw_Bits(int64_t llX, int64_t llY, int64_t llWidth, int64_t llRows, int32_t iPitch,
                      const uint8_t *pucBits, uint16_t usColor)
    {
        if (llX + llWidth > uiWidth) return -5;
        for (int64_t llRow = 0; llRow < llRows; ++llRow)
            for (int64_t llBit = 0; llBit < llWidth; ++llBit)
                if ((pucBits[llRow * iPitch + llBit / 8] << llBit % 8 & 0x80) != 0)
                    Fill(llX + llBit, llY + llRow, 1, 1, usColor);
        return 0;
    }

    /** @return whether the region alone is the same, packed. */
    bool Has_Pixels(const uint16_t *pusOther) const
    {
        return std::equal(vusPixels.begin() + MARGIN, vusPixels.end() - MARGIN, pusOther);
    }
    bool operator==(const Picture &stOther) const { return vusPixels == stOther.vusPixels; }

    const uint32_t uiWidth, uiHeight, uiPitch;

private:
    static constexpr size_t MARGIN = 4096;
    std::vector<uint16_t> vusPixels;
};

class JudgeFont
{
public:
    JudgeFont()
    {
        if (FT_Init_FreeType(&ftLibrary) != 0 || FT_New_Face(ftLibrary, FONT_FILE, 0, &ftFace) != 0)
            ADD_FAILURE() << "no font " << FONT_FILE << ": install WenQuanYi Micro Hei (fonts-wqy-microhei)";
    }
    ~JudgeFont() { FT_Done_FreeType(ftLibrary); }

    int32_t Set_Size(uint32_t uiWidth, uint32_t uiHeight)
    {
        if (uiWidth == 0 || uiHeight == 0) return -2;
        const auto ft26Dot6 = [](uint32_t uiPixels) {
            return FT_F26Dot6{static_cast<int32_t>(uiPixels << 6)};
        };
        if (FT_Set_Char_Size(ftFace, ft26Dot6(uiWidth), ft26Dot6(uiHeight), uiWidth, uiHeight) != 0 ||
            FT_Set_Pixel_Sizes(ftFace, uiWidth, uiHeight) != 0)
            return -1;
        const auto dAbove = static_cast<double>(ftFace->bbox.yMax);
        const double dWhole = dAbove - static_cast<double>(ftFace->bbox.yMin);
        iBaseline = static_cast<int32_t>(std::floor(dAbove * uiHeight / dWhole + 0.5));
        return 0;
    }

    bool Has(uint32_t uiCode) const { return FT_Get_Char_Index(ftFace, uiCode) != 0; }

    /** Load a character, or the missing-glyph shape where there is none. */
    int32_t Get_Advance(uint32_t uiCode)
    {
        if (FT_Load_Glyph(ftFace, FT_Get_Char_Index(ftFace, uiCode), FT_LOAD_NO_BITMAP) != 0) return -1;
        return static_cast<int32_t>(ftFace->glyph->advance.x >> 6);
    }

    /* What drawing in grey gives: it draws nothing, but rendering may fail. */
    int32_t Draw_Grey(uint32_t uiCode)
    {
        const int32_t iAdvance = Get_Advance(uiCode);
        return iAdvance < 0 || FT_Render_Glyph(ftFace->glyph, FT_RENDER_MODE_NORMAL) != 0 ? -4 : iAdvance;
    }

    int32_t Draw(Picture &stPicture, uint32_t uiCode, int64_t llX, int64_t llY, uint16_t usColor)
    {
        const int32_t iAdvance = Get_Advance(uiCode);
        const FT_GlyphSlot ftSlot = ftFace->glyph;
        if (iAdvance < 0 || FT_Render_Glyph(ftSlot, FT_RENDER_MODE_MONO) != 0) return -4;
        const int32_t iResult = stPicture.Draw_Bits(
            llX + ftSlot->bitmap_left, llY + std::max(iBaseline - ftSlot->bitmap_top, 0),
            ftSlot->bitmap.width, ftSlot->bitmap.rows, ftSlot->bitmap.pitch, ftSlot->bitmap.buffer, usColor);
        return iResult != 0 ? iResult : iAdvance;
    }

private:
    FT_Library ftLibrary = nullptr;
    FT_Face ftFace = nullptr;
    int32_t iBaseline = 0;
};

/** @return the units with a closing 0 */
inline std::vector<uint16_t> To_Units(std::u16string_view strText)
{
    std::vector<uint16_t> vusUnits(strText.begin(), strText.end());
    vusUnits.push_back(0);
    return vusUnits;
}

/* A test with the font of the desktop. */
class FontTest : public HostTest
{
protected:
    FontTest() { zyr_host_setFontFile(FONT_FILE); }
    JudgeFont stFont;
};

#endif
