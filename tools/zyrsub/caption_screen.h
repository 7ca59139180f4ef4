// A display with a caption over a background, as an output of the box shows it.
#ifndef ZYRSUB_CAPTION_SCREEN_H
#define ZYRSUB_CAPTION_SCREEN_H

#include <memory>
#include <string>

#include "options.h"
#include "picture.h"
#include "zyr/zyr_captions.h"

// The renderer is one per process, and so is this.
class CaptionScreen
{
public:
    Outcome Open(const ScreenOptions &stOptions);

    // The display with a text (UTF-8, lines by newlines); an empty one is no caption.
    Picture Draw(const std::string &strText);

    // The text over a picture of the display's size.
    void Draw_Over(Picture &stPicture, const std::string &strText);

    // The text alone, over nothing: alpha 0 beside its marks.
    Picture Draw_Marks(const std::string &strText);

    // The text alone, cut to its box, over black.
    Picture Draw_Label(const std::string &strText);

    // The same over nothing at all, and where the box stands; empty when nothing is shown.
    Picture Draw_Alone(const std::string &strText, ZyrCaptionBox &stBox);

    // The characters of a text that the font does not have.
    std::vector<std::string> List_Missing(const std::string &strText) const;

    uint32_t Get_Width() const { return m_stBackground.uiWidth; }
    uint32_t Get_Height() const { return m_stBackground.uiHeight; }

private:
    Picture m_stBackground;
    Picture m_stClear; // the display without anything, all bytes 0
    std::unique_ptr<ZyrCaptionScreen, void (*)(ZyrCaptionScreen *)> m_pstScreen{nullptr,
                                                                                zyrCaptions_closeScreen};
};

#endif
