#include "playback.h"

#include <algorithm>

#include "commands.h"
#include "text_tools.h"
#include "time_text.h"

static constexpr double SHORT_STEP_MS = 5000;
static constexpr double LONG_STEP_MS = 60000;

Playback::Playback(const CaptionFile &stFile, const PlayOptions &stOptions)
    : m_stFile(stFile), m_auiClasses(stFile.List_Classes()), m_llEnd(stFile.Get_End()),
      m_dSpeed(stOptions.dSpeed), m_dPosition(stOptions.uiFrom)
{
}

uint32_t Playback::Get_Class() const
{
    return m_uiLanguage == 0 ? ZYR_CAPTIONS_ALL : m_auiClasses[m_uiLanguage - 1];
}

bool Playback::Advance(double dElapsedMs)
{
    if (m_bPaused) return false;
    m_dBehind += dElapsedMs * m_dSpeed;
    const auto dChange = static_cast<double>(
        zyrCaptions_getNextChange(m_stFile.Get_List(), static_cast<int32_t>(Get_Position())));
    const auto dEnd = static_cast<double>(m_llEnd);
    const double dTarget = std::max(m_dPosition, std::min(m_dPosition + m_dBehind, dEnd));
    const bool bChange = dChange <= dTarget;
    const double dReached = bChange ? dChange : dTarget;
    m_dBehind = bChange ? m_dBehind - (dReached - m_dPosition) : 0;
    m_dPosition = dReached;
    return bChange;
}

void Playback::Seek_By(double dMs)
{
    const auto dEnd = static_cast<double>(m_llEnd);
    m_dPosition = std::clamp(m_dPosition + dMs, 0.0, dEnd);
    m_dBehind = 0;
}

void Playback::Apply(PlayCommand eCommand)
{
    switch (eCommand) {
    case E_PLAY_PAUSE: m_bPaused = !m_bPaused; break;
    case E_PLAY_BACK: Seek_By(-SHORT_STEP_MS); break;
    case E_PLAY_ON: Seek_By(SHORT_STEP_MS); break;
    case E_PLAY_FAR_BACK: Seek_By(-LONG_STEP_MS); break;
    case E_PLAY_FAR_ON: Seek_By(LONG_STEP_MS); break;
    case E_PLAY_LANGUAGE: // all together, then each alone, then all again
        if (m_auiClasses.size() > 1) m_uiLanguage = (m_uiLanguage + 1) % (m_auiClasses.size() + 1);
        break;
    default: break;
    }
}

std::string Playback::Describe() const
{
    std::string strText = Format_Time(static_cast<int32_t>(Get_Position()));
    strText.resize(strText.size() - 2);
    std::vector<std::string> astrNames;
    for (const uint32_t uiClass : m_auiClasses)
        if (m_uiLanguage == 0 || uiClass == Get_Class())
            astrNames.push_back(Show_ClassName(m_stFile.Get_ClassName(uiClass)));
    if (m_auiClasses.size() > 1) strText += "  " + Join_Lines(astrNames, " + ");
    if (m_bPaused) strText += "  paused";
    return strText;
}

ExitCode Run_Play(const Options &stOptions)
{
    const std::string &strMovie = stOptions.astrMovies.front();
    CaptionFile stFile;
    Outcome stOutcome = stFile.Open(strMovie, stOptions.stSource);
    if (stOutcome.IsGood()) {
        Playback stPlayback(stFile, stOptions.stPlay);
        stOutcome =
            stOptions.stPlay.bTerminal ? Play_Terminal(stPlayback) : Play_Window(stOptions, stPlayback);
    }
    if (!stOutcome.IsGood()) Report_Problem(strMovie, stOutcome.strText);
    return stOutcome.eCode;
}
