#include "caption_screen.h"

#include <algorithm>
#include <cstdio>

Outcome CaptionScreen::Open(const ScreenOptions &stOptions)
{
    m_pstScreen.reset();
    const ZyrCaptionOutput stOutput = Get_Output(stOptions.uiOutput);
    m_stBackground = Make_Picture(stOutput.uiWidth, stOutput.uiHeight);
    m_stClear = {};
    if (!stOptions.strBackground.empty()) {
        Picture stFile;
        Outcome stRead = Read_Png(stOptions.strBackground, stFile);
        if (!stRead.IsGood()) return stRead;
        m_stBackground = Scale_Picture(stFile, stOutput.uiWidth, stOutput.uiHeight);
    }
    ZyrCaptionScreen *pstScreen = nullptr;
    const int iPosition = stOptions.uiPosition ? static_cast<int>(*stOptions.uiPosition) : -1;
    if (zyrCaptions_openScreen(stOutput.pszName, stOptions.uiFontSize, iPosition, &pstScreen) !=
        ZYR_CAPTIONS_OK)
        return {E_EXIT_SOME_FAILED,
                "the caption renderer does not start (is the caption font installed? -vv tells more)"};
    m_pstScreen.reset(pstScreen);
    return {};
}

Picture CaptionScreen::Draw(const std::string &strText)
{
    Picture stPicture = m_stBackground;
    zyrCaptions_draw(m_pstScreen.get(), strText.c_str(), stPicture.aucRgba.data(), nullptr);
    return stPicture;
}

void CaptionScreen::Draw_Over(Picture &stPicture, const std::string &strText)
{
    zyrCaptions_draw(m_pstScreen.get(), strText.c_str(), stPicture.aucRgba.data(), nullptr);
}

Picture CaptionScreen::Draw_Marks(const std::string &strText)
{
    Picture stPicture{Get_Width(), Get_Height(), std::vector<uint8_t>(m_stBackground.aucRgba.size(), 0)};
    zyrCaptions_draw(m_pstScreen.get(), strText.c_str(), stPicture.aucRgba.data(), nullptr);
    return stPicture;
}

Picture CaptionScreen::Draw_Label(const std::string &strText)
{
    Picture stPicture = Make_Picture(Get_Width(), Get_Height());
    ZyrCaptionBox stBox = {};
    zyrCaptions_draw(m_pstScreen.get(), strText.c_str(), stPicture.aucRgba.data(), &stBox);
    return Cut_Picture(stPicture, stBox.uiX, stBox.uiY, stBox.uiWidth, stBox.uiHeight);
}

Picture CaptionScreen::Draw_Alone(const std::string &strText, ZyrCaptionBox &stBox)
{
    if (m_stClear.aucRgba.empty())
        m_stClear = {Get_Width(), Get_Height(),
                     std::vector<uint8_t>(size_t{Get_Width()} * Get_Height() * 4, 0)};
    stBox = {};
    zyrCaptions_draw(m_pstScreen.get(), strText.c_str(), m_stClear.aucRgba.data(), &stBox);
    Picture stCut = Cut_Picture(m_stClear, stBox.uiX, stBox.uiY, stBox.uiWidth, stBox.uiHeight);
    for (uint32_t uiRow = stBox.uiY; uiRow < stBox.uiY + stBox.uiHeight; ++uiRow)
        std::fill_n(&m_stClear.aucRgba[(size_t{uiRow} * Get_Width() + stBox.uiX) * 4],
                    size_t{stBox.uiWidth} * 4, uint8_t{0});
    return stCut;
}

static std::string Show_Character(uint32_t uiCharacter)
{
    char szText[32];
    std::snprintf(szText, sizeof szText, "U+%04X", uiCharacter);
    return szText;
}

std::vector<std::string> CaptionScreen::List_Missing(const std::string &strText) const
{
    std::vector<uint32_t> auiMissing(zyrCaptions_getMissing(m_pstScreen.get(), strText.c_str(), nullptr, 0));
    zyrCaptions_getMissing(m_pstScreen.get(), strText.c_str(), auiMissing.data(),
                           static_cast<uint32_t>(auiMissing.size()));
    std::vector<std::string> astrMissing;
    astrMissing.reserve(auiMissing.size());
    for (const uint32_t uiCharacter : auiMissing) astrMissing.push_back(Show_Character(uiCharacter));
    return astrMissing;
}
