// The captions that zyrcaptionoverlay shows: the file, the language, and the text of a moment.
#ifndef ZYR_GST_CAPTION_TRACK_H
#define ZYR_GST_CAPTION_TRACK_H

#include "caption_source.h"

class CaptionTrack
{
public:
    // ZYR_CAPTIONS_OK, or why there are no captions, which Get_ErrorText() says in words.
    int Load(const std::string &strPath, const SourceSettings &stSettings);
    void Clear();

    const char *Get_ErrorText() const { return zyrCaptions_getErrorText(m_pstCaptions.get()); }
    std::vector<std::string> List_Classes() const;

    // False: there is no such class, and nothing is shown.
    bool Choose_Class(const std::string &strName);

    // True when another text than before is on screen at a time (ms).
    bool Move_To(int32_t iTime);
    const std::string &Get_Text() const { return m_strText; }

    // The text of the next moment counts as another one.
    void Forget_Text();

private:
    CaptionsPtr m_pstCaptions{nullptr, zyrCaptions_free};
    std::optional<uint32_t> m_uiClass = ZYR_CAPTIONS_ALL;
    std::string m_strText;
    int32_t m_iFrom = 0; // the text stands from here on, ms
    int32_t m_iUntil = 0;
    bool m_bKnown = false; // the three above
};

#endif
