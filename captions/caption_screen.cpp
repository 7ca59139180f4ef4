// Captions drawn as an output of the box shows them: the renderer draws on the host layer's caption plane, which is
// then put over the caller's picture.
#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "box_output.h"
#include "engine_reading.h"
#include "text_decode.h"
#include "zyr/zyr_display.h"
#include "zyr/zyr_host.h"

// The renderer draws 16-bit units, so that a character beyond those is none of the font's.
struct ZyrCaptionScreen {
    const BoxOutput *pstOutput = nullptr;
    std::optional<uint32_t> uiPosition; // pixels above the display's bottom
    FT_Library pstLibrary = nullptr;
    FT_Face pstFace = nullptr;
    bool bOpen = false;

    ZyrCaptionScreen() = default;
    ~ZyrCaptionScreen();
    ZyrCaptionScreen(const ZyrCaptionScreen &) = delete;
    ZyrCaptionScreen &operator=(const ZyrCaptionScreen &) = delete;
};

namespace
{

constexpr uint32_t LAST_UNIT = 0xFFFF;
constexpr uint32_t USUAL_POSITION = 16; // pixels

bool s_bScreenOpen; // the process's one display; under the engine's lock

// Properties of the host layer for the time of an open, which alone reads them.
class PropertyLoan
{
public:
    void Set(const char *pszKey, const char *pszValue)
    {
        const char *const pszBefore = zyr_host_getProperty(pszKey);
        m_astBefore.push_back(
            {pszKey, pszBefore == nullptr ? std::nullopt : std::optional<std::string>(pszBefore)});
        zyr_host_setProperty(pszKey, pszValue);
    }
    PropertyLoan() = default;
    ~PropertyLoan()
    {
        for (const auto &[pszKey, strBefore] : m_astBefore)
            zyr_host_setProperty(pszKey, strBefore ? strBefore->c_str() : nullptr);
    }
    PropertyLoan(const PropertyLoan &) = delete;
    PropertyLoan &operator=(const PropertyLoan &) = delete;

private:
    std::vector<std::pair<const char *, std::optional<std::string>>> m_astBefore;
};

int Open_Display(const BoxOutput &stOutput)
{
    PropertyLoan stLoan;
    stLoan.Set("ro.board.platform", stOutput.pszPlatform);
    stLoan.Set("persist.sys.output_mode", stOutput.pszMode);
    if (stOutput.pszSubModeKey != nullptr) stLoan.Set(stOutput.pszSubModeKey, stOutput.pszSubMode);
    return zyr_display_open() == 0 ? ZYR_CAPTIONS_OK : ZYR_CAPTIONS_NO_SCREEN;
}

// To tell what the font lacks; the renderer itself does not say.
bool Open_Face(ZyrCaptionScreen &stScreen)
{
    return FT_Init_FreeType(&stScreen.pstLibrary) == 0 &&
           FT_New_Face(stScreen.pstLibrary, zyr_host_getFontFile(), 0, &stScreen.pstFace) == 0;
}

int Open_Screen(ZyrCaptionScreen &stScreen, uint32_t uiFontSize)
{
    if (s_bScreenOpen) return ZYR_CAPTIONS_BUSY;
    if (!Open_Face(stScreen)) return ZYR_CAPTIONS_NO_SCREEN;
    const int iResult = Open_Display(*stScreen.pstOutput);
    if (iResult != ZYR_CAPTIONS_OK) return iResult;
    stScreen.bOpen = s_bScreenOpen = true;
    zyr_display_setFontSize(uiFontSize);
    return ZYR_CAPTIONS_OK;
}

std::vector<uint16_t> Make_Units(std::string_view strUtf8)
{
    std::string strValid;
    Append_Utf8(strUtf8, strValid);
    std::vector<uint16_t> ausUnits;
    for (std::string_view strLeft = strValid; !strLeft.empty();) {
        const uint32_t uiCharacter = Take_Character(strLeft);
        if (uiCharacter > LAST_UNIT) {
            ausUnits.push_back(static_cast<uint16_t>(0xD7C0U + (uiCharacter >> 10)));
            ausUnits.push_back(static_cast<uint16_t>(0xDC00U | (uiCharacter & 0x3FFU)));
        } else {
            ausUnits.push_back(static_cast<uint16_t>(uiCharacter));
        }
    }
    ausUnits.push_back(0);
    return ausUnits;
}

// The position is set after the text, which it moves: before the first text there is no box to place.
bool Show_Text(const ZyrCaptionScreen &stScreen, std::string_view strText)
{
    if (strText.empty()) return zyr_display_clearString() == 0;
    const std::vector<uint16_t> ausUnits = Make_Units(strText);
    if (zyr_display_displayString(ausUnits.data(), static_cast<int32_t>(ausUnits.size() - 1)) != 0)
        return false;
    return zyr_display_setPosition(stScreen.uiPosition.value_or(USUAL_POSITION)) == 0;
}

// A side of the box, cut to the display.
void Clip_Side(int64_t llPos, uint32_t uiSize, uint32_t uiLimit, uint32_t &uiClipped, uint32_t &uiClippedSize)
{
    const int64_t llFirst = std::clamp<int64_t>(llPos, 0, uiLimit);
    const int64_t llEnd = std::clamp<int64_t>(llPos + uiSize, llFirst, uiLimit);
    uiClipped = static_cast<uint32_t>(llFirst);
    uiClippedSize = static_cast<uint32_t>(llEnd - llFirst);
}

ZyrCaptionBox Find_Box(const ZyrCaptionOutput &stOutput)
{
    ZyrCaptionBox stBox = {};
    int32_t iX = 0;
    int32_t iY = 0;
    uint32_t uiWidth = 0;
    uint32_t uiHeight = 0;
    if (zyr_host_getCaptionBox(&iX, &iY, &uiWidth, &uiHeight) != 0) return stBox;
    Clip_Side(iX, uiWidth, stOutput.uiWidth, stBox.uiX, stBox.uiWidth);
    Clip_Side(iY, uiHeight, stOutput.uiHeight, stBox.uiY, stBox.uiHeight);
    if (stBox.uiWidth == 0 || stBox.uiHeight == 0) stBox = {};
    return stBox;
}

int Draw_Text(ZyrCaptionScreen *pstScreen, std::string_view strText, uint8_t *pucRgba, ZyrCaptionBox *pstBox)
{
    if (pstBox != nullptr) *pstBox = {};
    if (pstScreen == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    const std::lock_guard<std::mutex> stGuard(Get_EngineLock());
    if (!Show_Text(*pstScreen, strText)) return ZYR_CAPTIONS_NO_SCREEN;
    const ZyrCaptionOutput &stOutput = pstScreen->pstOutput->stOutput;
    if (strText.empty()) return ZYR_CAPTIONS_OK;
    if (pstBox != nullptr) *pstBox = Find_Box(stOutput);
    if (pucRgba != nullptr) zyr_host_composeCaption(pucRgba, stOutput.uiWidth, stOutput.uiHeight);
    return ZYR_CAPTIONS_OK;
}

bool Is_Missing(const ZyrCaptionScreen &stScreen, uint32_t uiCharacter)
{
    if (uiCharacter < ' ') return false; // no shape is wanted of it
    return uiCharacter > LAST_UNIT || FT_Get_Char_Index(stScreen.pstFace, uiCharacter) == 0;
}

std::vector<uint32_t> List_Missing(const ZyrCaptionScreen &stScreen, const char *pszText)
{
    std::string strValid;
    Append_Utf8(pszText, strValid);
    std::vector<uint32_t> auiMissing;
    for (std::string_view strLeft = strValid; !strLeft.empty();) {
        const uint32_t uiCharacter = Take_Character(strLeft);
        if (Is_Missing(stScreen, uiCharacter) &&
            std::find(auiMissing.begin(), auiMissing.end(), uiCharacter) == auiMissing.end())
            auiMissing.push_back(uiCharacter);
    }
    return auiMissing;
}

} // namespace

ZyrCaptionScreen::~ZyrCaptionScreen()
{
    if (bOpen) {
        zyr_display_close();
        s_bScreenOpen = false;
    }
    if (pstFace != nullptr) FT_Done_Face(pstFace);
    if (pstLibrary != nullptr) FT_Done_FreeType(pstLibrary);
}

int zyrCaptions_openScreen(const char *pszOutput, uint32_t uiFontSize, int32_t iPosition,
                           ZyrCaptionScreen **ppstScreen)
{
    if (ppstScreen == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    *ppstScreen = nullptr;
    const BoxOutput *const pstOutput = Find_BoxOutput(pszOutput == nullptr ? "lcd" : pszOutput);
    if (pstOutput == nullptr) return ZYR_CAPTIONS_NO_SCREEN;
    const std::lock_guard<std::mutex> stGuard(Get_EngineLock());
    try {
        auto pstScreen = std::make_unique<ZyrCaptionScreen>();
        pstScreen->pstOutput = pstOutput;
        if (iPosition >= 0) pstScreen->uiPosition = static_cast<uint32_t>(iPosition);
        const int iResult = Open_Screen(*pstScreen, uiFontSize);
        if (iResult == ZYR_CAPTIONS_OK) *ppstScreen = pstScreen.release();
        return iResult;
    } catch (const std::bad_alloc &) {
        return ZYR_CAPTIONS_NO_MEMORY;
    }
}

void zyrCaptions_closeScreen(ZyrCaptionScreen *pstScreen)
{
    const std::lock_guard<std::mutex> stGuard(Get_EngineLock());
    delete pstScreen;
}

int zyrCaptions_draw(ZyrCaptionScreen *pstScreen, const char *pszText, uint8_t *pucRgba,
                     ZyrCaptionBox *pstBox)
{
    try {
        return Draw_Text(pstScreen, pszText == nullptr ? "" : pszText, pucRgba, pstBox);
    } catch (const std::bad_alloc &) {
        return ZYR_CAPTIONS_NO_MEMORY;
    }
}

int zyrCaptions_drawAt(ZyrCaptionScreen *pstScreen, const ZyrCaptions *pstCaptions, uint32_t uiClass,
                       int32_t iTime, uint8_t *pucRgba, ZyrCaptionBox *pstBox)
{
    try {
        std::string strText(zyrCaptions_getTextAt(pstCaptions, uiClass, iTime, nullptr, 0), '\0');
        zyrCaptions_getTextAt(pstCaptions, uiClass, iTime, strText.data(), strText.size() + 1);
        return Draw_Text(pstScreen, strText, pucRgba, pstBox);
    } catch (const std::bad_alloc &) {
        return ZYR_CAPTIONS_NO_MEMORY;
    }
}

uint32_t zyrCaptions_getMissing(const ZyrCaptionScreen *pstScreen, const char *pszText,
                                uint32_t *puiCharacters, uint32_t uiRoom)
{
    if (pstScreen == nullptr || pszText == nullptr) return 0;
    try {
        const std::vector<uint32_t> auiMissing = List_Missing(*pstScreen, pszText);
        if (puiCharacters != nullptr)
            std::copy_n(auiMissing.begin(), std::min<size_t>(uiRoom, auiMissing.size()), puiCharacters);
        return static_cast<uint32_t>(auiMissing.size());
    } catch (const std::bad_alloc &) {
        return 0;
    }
}
