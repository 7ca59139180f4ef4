// A display with the caption plane over a background: the library's renderer draws on the host layer's
// virtual plane, and this puts both together.
#ifndef ZYRSUB_CAPTION_SCREEN_H
#define ZYRSUB_CAPTION_SCREEN_H

#include <string>

#include "options.h"
#include "picture.h"

// The renderer is one per process, and so is this.
class CaptionScreen
{
public:
    CaptionScreen() = default;
    ~CaptionScreen() { Close(); }
    CaptionScreen(const CaptionScreen &) = delete;
    CaptionScreen &operator=(const CaptionScreen &) = delete;

    Outcome Open(const ScreenOptions &stOptions);
    void Close();

    // Show a text (UTF-8, lines by newlines); an empty one clears the caption.
    void Show(const std::string &strText);

    // The display as it stands now.
    Picture Compose() const;

    // The caption alone, cut to its marks, over black.
    Picture Compose_Label() const;

    uint32_t Get_Width() const { return m_stBackground.uiWidth; }
    uint32_t Get_Height() const { return m_stBackground.uiHeight; }

private:
    ScreenOptions m_stOptions;
    Picture m_stBackground;
    bool m_bOpen = false;
};

#endif
