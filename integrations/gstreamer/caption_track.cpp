#include "caption_track.h"

int CaptionTrack::Load(const std::string &strPath, const SourceSettings &stSettings)
{
    m_pstCaptions = Load_File(strPath, stSettings);
    m_uiClass = ZYR_CAPTIONS_ALL;
    Forget_Text();
    return zyrCaptions_getError(m_pstCaptions.get());
}

void CaptionTrack::Clear()
{
    m_pstCaptions.reset();
    Forget_Text();
}

std::vector<std::string> CaptionTrack::List_Classes() const
{
    std::vector<std::string> astrNames;
    ZyrCaptionsFile stFile;
    if (zyrCaptions_getFile(m_pstCaptions.get(), &stFile) != ZYR_CAPTIONS_OK) return astrNames;
    for (uint32_t ui = 0; ui < stFile.uiClasses; ++ui)
        astrNames.push_back(Get_ClassTitle(m_pstCaptions.get(), ui));
    return astrNames;
}

bool CaptionTrack::Choose_Class(const std::string &strName)
{
    m_uiClass = Find_Class(m_pstCaptions.get(), strName);
    Forget_Text();
    return m_uiClass.has_value();
}

void CaptionTrack::Forget_Text()
{
    m_bKnown = false;
}

bool CaptionTrack::Move_To(int32_t iTime)
{
    if (m_bKnown && iTime >= m_iFrom && iTime < m_iUntil) return false;
    std::string strText;
    if (m_uiClass) {
        strText.resize(zyrCaptions_getTextAt(m_pstCaptions.get(), *m_uiClass, iTime, nullptr, 0));
        zyrCaptions_getTextAt(m_pstCaptions.get(), *m_uiClass, iTime, strText.data(), strText.size() + 1);
    }
    const bool bOther = !m_bKnown || strText != m_strText;
    m_strText = std::move(strText);
    m_iFrom = iTime;
    m_iUntil = zyrCaptions_getNextChange(m_pstCaptions.get(), iTime);
    m_bKnown = true;
    return bOther;
}
