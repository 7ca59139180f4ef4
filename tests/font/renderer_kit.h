/* Judges for the renderer's tests: the log as it was written, pictures with a margin that nobody may touch,
 * and a font that is rendered anew for every character and drawn pixel by pixel.
 */
#ifndef ZYR_RENDERER_KIT_H
#define ZYR_RENDERER_KIT_H

#include <gtest/gtest.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>
#include <random>
#include <string>
#include <vector>

constexpr char FONT_FILE[] = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";

/* The same numbers in every run. */
class Random
{
public:
    explicit Random(uint32_t uiSeed) : stEngine(uiSeed) {}
    uint32_t operator()() { return static_cast<uint32_t>(stEngine()); }

private:
    std::mt19937 stEngine;
};

/* Collects the log as one text: each message behind its priority and before a bar, "6:text|"; a message with
 * a tag shows it too. */
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    void Add(const std::string &strMessage) { strLog.append(strMessage).append("|"); }
    std::string Take(uint32_t uiSkip = 0); // what came since the last call, but for the first messages

private:
    std::string strLog;
};

/* A region in the middle of a larger buffer. Two pictures of one size start out equal. */
class Picture
{
public:
    Picture(uint32_t uiColumns, uint32_t uiRows, uint32_t uiRowPitch);
    void Make_Destination(); // of the renderer
    void Set(int64_t llX, int64_t llY, uint16_t usColor);
    void Fill(int64_t llX, int64_t llY, int64_t llWidth, int64_t llHeight, uint16_t usColor);
    bool Has_Pixels(const uint16_t *pusOther) const; // compares the region alone, packed
    bool operator==(const Picture &stOther) const { return vusPixels == stOther.vusPixels; }

    uint32_t uiWidth;
    uint32_t uiHeight;
    uint32_t uiPitch;

private:
    std::vector<uint16_t> vusPixels;
};

class JudgeFont
{
public:
    explicit JudgeFont(const char *pszFile = FONT_FILE);
    ~JudgeFont();
    int32_t Set_Size(uint32_t uiWidth, uint32_t uiHeight);
    bool Has(uint32_t uiCode) const { return FT_Get_Char_Index(ftFace, uiCode) != 0; }
    int32_t Get_Advance(uint32_t uiCode); // of the missing-glyph shape where there is no glyph
    int32_t Draw(Picture &stPicture, uint32_t uiCode, int64_t llX, int64_t llY, uint16_t usColor);

private:
    FT_Library ftLibrary = nullptr;
    FT_Face ftFace = nullptr;
    int32_t iBaseline = 0;
};

std::vector<uint16_t> To_Units(const char16_t *pszText); // with the closing 0
std::string Read_Bytes(const char *pszFile);
std::string Write_Temporary(const std::string &strBytes); // @return the file's name

#endif
