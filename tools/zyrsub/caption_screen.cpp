#include "caption_screen.h"

#include <algorithm>

#include "zyr/zyr_display.h"
#include "zyr/zyr_host.h"

static void Set_Output(const OutputMode &stMode)
{
    zyr_host_setProperty("ro.board.platform", stMode.pszPlatform);
    zyr_host_setProperty("persist.sys.output_mode", stMode.pszMode);
    if (stMode.pszSubModeKey != nullptr) zyr_host_setProperty(stMode.pszSubModeKey, stMode.pszSubMode);
}

Outcome CaptionScreen::Open(const ScreenOptions &stOptions)
{
    Close();
    m_stOptions = stOptions;
    const OutputMode &stMode = *stOptions.pstOutput;
    m_stBackground = Make_Picture(stMode.uiWidth, stMode.uiHeight);
    if (!stOptions.strBackground.empty()) {
        Picture stFile;
        Outcome stRead = Read_Png(stOptions.strBackground, stFile);
        if (!stRead.IsGood()) return stRead;
        m_stBackground = Scale_Picture(stFile, stMode.uiWidth, stMode.uiHeight);
    }
    Set_Output(stMode);
    const int32_t iResult = zyr_display_open();
    if (iResult != 0)
        return {E_EXIT_SOME_FAILED, "the caption renderer does not start (code " + std::to_string(iResult) +
                                        "; is the caption font installed? -vv tells more)"};
    m_bOpen = true;
    zyr_display_setFontSize(m_stOptions.uiFontSize);
    return {};
}

void CaptionScreen::Close()
{
    if (m_bOpen) zyr_display_close();
    m_bOpen = false;
}

// The position is set after the text, which it moves: before the first text there is no box to place.
void CaptionScreen::Show(const std::string &strText)
{
    if (strText.empty()) {
        zyr_display_clearString();
        return;
    }
    const std::vector<uint16_t> ausUnits = Make_Utf16(strText);
    zyr_display_displayString(ausUnits.data(), static_cast<int32_t>(ausUnits.size() - 1));
    if (m_stOptions.uiPosition) zyr_display_setPosition(*m_stOptions.uiPosition);
}

Picture CaptionScreen::Compose() const
{
    Picture stPicture = m_stBackground;
    zyr_host_composeCaption(stPicture.aucRgba.data(), stPicture.uiWidth, stPicture.uiHeight);
    return stPicture;
}

Picture CaptionScreen::Compose_Label() const
{
    Picture stPicture = Make_Picture(Get_Width(), Get_Height());
    zyr_host_composeCaption(stPicture.aucRgba.data(), stPicture.uiWidth, stPicture.uiHeight);
    uint32_t uiLeft = stPicture.uiWidth;
    uint32_t uiRight = 0;
    uint32_t uiTop = stPicture.uiHeight;
    uint32_t uiBottom = 0;
    for (uint32_t uiPixel = 0; uiPixel < stPicture.uiWidth * stPicture.uiHeight; ++uiPixel) {
        const uint8_t *pucPixel = &stPicture.aucRgba[size_t{uiPixel} * 4];
        if (pucPixel[0] == 0 && pucPixel[1] == 0 && pucPixel[2] == 0) continue;
        const uint32_t uiX = uiPixel % stPicture.uiWidth;
        const uint32_t uiY = uiPixel / stPicture.uiWidth;
        uiLeft = std::min(uiLeft, uiX);
        uiRight = std::max(uiRight, uiX + 1);
        uiTop = std::min(uiTop, uiY);
        uiBottom = std::max(uiBottom, uiY + 1);
    }
    if (uiLeft >= uiRight) return {};
    return Cut_Picture(stPicture, uiLeft, uiTop, uiRight - uiLeft, uiBottom - uiTop);
}
