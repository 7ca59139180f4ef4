#include "renderer_kit.h"

#include <cmath>
#include <fstream>
#include <sstream>

#include "zyr/zyr_font.h"
#include "zyr/zyr_host.h"

constexpr size_t MARGIN = 4096;

LogCapture::LogCapture()
{
    zyr_host_setLogSink(
        [](int iPriority, const char *pszTag, const char *pszText, void *pContext) {
            const std::string strTag = pszTag != nullptr ? std::string(pszTag) + "!" : "";
            static_cast<LogCapture *>(pContext)->Add(std::to_string(iPriority) + ":" + strTag + pszText);
        },
        this);
}

LogCapture::~LogCapture()
{
    zyr_host_setLogSink(nullptr, nullptr);
}

std::string LogCapture::Take(uint32_t uiSkip)
{
    std::string strTaken = std::exchange(strLog, {});
    for (; uiSkip > 0; --uiSkip) strTaken.erase(0, strTaken.find('|') + 1);
    return strTaken;
}

Picture::Picture(uint32_t uiColumns, uint32_t uiRows, uint32_t uiRowPitch)
    : uiWidth(uiColumns), uiHeight(uiRows), uiPitch(uiRowPitch),
      vusPixels(2 * MARGIN + size_t{uiRowPitch} * uiRows)
{
    for (size_t uiPixel = 0; uiPixel < vusPixels.size(); ++uiPixel)
        vusPixels[uiPixel] = static_cast<uint16_t>(uiPixel * 2654435761U >> 16);
}

void Picture::Make_Destination()
{
    ASSERT_EQ(zyr_fontDraw_setDestBuf(vusPixels.data() + MARGIN), 0);
    ASSERT_EQ(zyr_fontDraw_setDestRegion(uiWidth, uiHeight, uiPitch), 0);
}

void Picture::Set(int64_t llX, int64_t llY, uint16_t usColor)
{
    if (llX < 0 || llY < 0 || llX >= uiWidth || llX >= uiPitch || llY >= uiHeight) return;
    vusPixels[MARGIN + static_cast<size_t>(llY * uiPitch + llX)] = usColor;
}

void Picture::Fill(int64_t llX, int64_t llY, int64_t llWidth, int64_t llHeight, uint16_t usColor)
{
    for (int64_t llRow = std::max<int64_t>(llY, 0); llRow < std::min<int64_t>(llY + llHeight, uiHeight);
         ++llRow)
        for (int64_t llColumn = std::max<int64_t>(llX, 0);
             llColumn < std::min<int64_t>(llX + llWidth, uiWidth); ++llColumn)
            Set(llColumn, llRow, usColor);
}

bool Picture::Has_Pixels(const uint16_t *pusOther) const
{
    return std::equal(vusPixels.begin() + MARGIN, vusPixels.end() - MARGIN, pusOther);
}

JudgeFont::JudgeFont(const char *pszFile)
{
    if (FT_Init_FreeType(&ftLibrary) != 0 || FT_New_Face(ftLibrary, pszFile, 0, &ftFace) != 0)
        ADD_FAILURE() << "no font " << pszFile << ": install WenQuanYi Micro Hei (fonts-wqy-microhei)";
}

JudgeFont::~JudgeFont()
{
    FT_Done_Face(ftFace);
    FT_Done_FreeType(ftLibrary);
}

int32_t JudgeFont::Set_Size(uint32_t uiWidth, uint32_t uiHeight)
{
    if (uiWidth == 0 || uiHeight == 0) return -2;
    const auto ft26Dot6 = [](uint32_t uiPixels) { return FT_F26Dot6{static_cast<int32_t>(uiPixels << 6)}; };
    if (FT_Set_Char_Size(ftFace, ft26Dot6(uiWidth), ft26Dot6(uiHeight), uiWidth, uiHeight) != 0 ||
        FT_Set_Pixel_Sizes(ftFace, uiWidth, uiHeight) != 0)
        return -1;
    const double dAbove = static_cast<double>(ftFace->bbox.yMax);
    iBaseline = static_cast<int32_t>(
        std::floor(dAbove * uiHeight / (dAbove - static_cast<double>(ftFace->bbox.yMin)) + 0.5));
    return 0;
}

int32_t JudgeFont::Get_Advance(uint32_t uiCode)
{
    if (FT_Load_Glyph(ftFace, FT_Get_Char_Index(ftFace, uiCode), FT_LOAD_NO_BITMAP) != 0) return -1;
    return static_cast<int32_t>(ftFace->glyph->advance.x >> 6);
}

int32_t JudgeFont::Draw(Picture &stPicture, uint32_t uiCode, int64_t llX, int64_t llY, uint16_t usColor)
{
    const int32_t iAdvance = Get_Advance(uiCode);
    if (iAdvance < 0 || FT_Render_Glyph(ftFace->glyph, FT_RENDER_MODE_MONO) != 0) return -4;
    const FT_Bitmap &stBitmap = ftFace->glyph->bitmap;
    llX += ftFace->glyph->bitmap_left;
    llY += std::max(iBaseline - ftFace->glyph->bitmap_top, 0);
    if (llX + stBitmap.width > stPicture.uiWidth) return -5;
    for (uint32_t uiRow = 0; uiRow < stBitmap.rows; ++uiRow)
        for (uint32_t uiColumn = 0; uiColumn < stBitmap.width; ++uiColumn)
            if ((stBitmap.buffer[uiRow * static_cast<uint32_t>(stBitmap.pitch) + uiColumn / 8]
                     << uiColumn % 8 &
                 0x80) != 0)
                stPicture.Set(llX + uiColumn, llY + uiRow, usColor);
    return iAdvance;
}

std::vector<uint16_t> To_Units(const char16_t *pszText)
{
    const std::u16string_view strText(pszText);
    std::vector<uint16_t> vusUnits(strText.begin(), strText.end());
    vusUnits.push_back(0);
    return vusUnits;
}

std::string Read_Bytes(const char *pszFile)
{
    std::ifstream stFile(pszFile, std::ios::binary);
    std::stringstream stBytes;
    stBytes << stFile.rdbuf();
    return stBytes.str();
}

std::string Write_Temporary(const std::string &strBytes)
{
    std::string strName = testing::TempDir() + "renderer_kit_" + std::to_string(getpid());
    std::ofstream(strName, std::ios::binary) << strBytes;
    return strName;
}
