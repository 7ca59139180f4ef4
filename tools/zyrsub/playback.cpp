#include "playback.h"

#include <algorithm>

#include "commands.h"
#include "time_text.h"

static constexpr double SHORT_STEP_MS = 5000;
static constexpr double LONG_STEP_MS = 60000;

Playback::Playback(Timeline stTimeline, std::vector<std::string> astrLanguages, const PlayOptions &stOptions)
    : m_stTimeline(std::move(stTimeline)), m_astrLanguages(std::move(astrLanguages)),
      m_dSpeed(stOptions.dSpeed), m_dPosition(stOptions.uiFrom)
{
}

bool Playback::Advance(double dElapsedMs)
{
    if (m_bPaused) return false;
    m_dBehind += dElapsedMs * m_dSpeed;
    const auto dChange = static_cast<double>(m_stTimeline.Find_NextChange(Get_Position()));
    const auto dEnd = static_cast<double>(m_stTimeline.Get_End());
    const double dTarget = std::max(m_dPosition, std::min(m_dPosition + m_dBehind, dEnd));
    const bool bChange = dChange <= dTarget;
    const double dReached = bChange ? dChange : dTarget;
    m_dBehind = bChange ? m_dBehind - (dReached - m_dPosition) : 0;
    m_dPosition = dReached;
    return bChange;
}

void Playback::Seek_By(double dMs)
{
    const auto dEnd = static_cast<double>(m_stTimeline.Get_End());
    m_dPosition = std::clamp(m_dPosition + dMs, 0.0, dEnd);
    m_dBehind = 0;
}

// All languages together, then each alone, then all again.
static uint32_t Get_NextStream(uint32_t uiStream, size_t uiStreams)
{
    if (uiStreams < 2) return ALL_STREAMS;
    const uint32_t uiNext = uiStream == ALL_STREAMS ? 0 : uiStream + 1;
    return uiNext < uiStreams ? uiNext : ALL_STREAMS;
}

void Playback::Apply(PlayCommand eCommand)
{
    switch (eCommand) {
    case E_PLAY_PAUSE: m_bPaused = !m_bPaused; break;
    case E_PLAY_BACK: Seek_By(-SHORT_STEP_MS); break;
    case E_PLAY_ON: Seek_By(SHORT_STEP_MS); break;
    case E_PLAY_FAR_BACK: Seek_By(-LONG_STEP_MS); break;
    case E_PLAY_FAR_ON: Seek_By(LONG_STEP_MS); break;
    case E_PLAY_LANGUAGE: m_uiStream = Get_NextStream(m_uiStream, m_astrLanguages.size()); break;
    default: break;
    }
}

std::string Playback::Describe() const
{
    std::string strText = Format_Time(static_cast<int32_t>(Get_Position()));
    strText.resize(strText.size() - 2);
    if (m_astrLanguages.size() > 1)
        strText += "  " + (m_uiStream == ALL_STREAMS ? Join_Lines(m_astrLanguages, " + ")
                                                     : m_astrLanguages[m_uiStream]);
    if (m_bPaused) strText += "  paused";
    return strText;
}

ExitCode Run_Play(const Options &stOptions)
{
    const std::string &strMovie = stOptions.astrMovies.front();
    SubtitleSource stSource(stOptions.stSource);
    Outcome stOutcome = stSource.Open(strMovie);
    if (stOutcome.IsGood()) {
        std::vector<std::string> astrLanguages;
        for (uint32_t uiStream = 0; uiStream < SubtitleSource::Count_Streams(); ++uiStream)
            astrLanguages.push_back(
                Show_ClassName(stSource.Get_ClassName(SubtitleSource::Get_StreamClass(uiStream))));
        Playback stPlayback(Timeline(stSource.Read_All()), std::move(astrLanguages), stOptions.stPlay);
        stOutcome =
            stOptions.stPlay.bTerminal ? Play_Terminal(stPlayback) : Play_Window(stOptions, stPlayback);
    }
    if (!stOutcome.IsGood()) Report_Problem(strMovie, stOutcome.strText);
    return stOutcome.eCode;
}
