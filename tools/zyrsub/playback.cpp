#include "playback.h"

#include <algorithm>

#include "commands.h"
#include "file_watch.h"
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

// The language stays by its name; without it, all of them are shown.
void Playback::Renew()
{
    if (!m_pfRenew) return;
    const std::string strLanguage = m_uiLanguage == 0 ? "" : m_stFile.Get_ClassName(Get_Class());
    if (!m_pfRenew()) return;
    m_auiClasses = m_stFile.List_Classes();
    m_llEnd = m_stFile.Get_End();
    size_t uiLanguage = m_uiLanguage == 0 ? 0 : m_auiClasses.size();
    while (uiLanguage > 0 && m_stFile.Get_ClassName(m_auiClasses[uiLanguage - 1]) != strLanguage)
        --uiLanguage;
    m_uiLanguage = uiLanguage;
}

bool Playback::Advance(double dElapsedMs)
{
    Renew();
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

void Playback::Follow(int64_t llPosition)
{
    m_dPosition = static_cast<double>(llPosition);
    m_dBehind = 0;
}

void Playback::Seek_By(double dMs)
{
    const auto dEnd = static_cast<double>(m_llEnd);
    m_dPosition = std::clamp(m_dPosition + dMs, 0.0, dEnd);
    m_dBehind = 0;
}

// To where a caption with text starts; those that only clear are no place to go to.
void Playback::Seek_Caption(bool bNext)
{
    auto iTime = static_cast<int32_t>(Get_Position());
    const auto pfFind = bNext ? zyrCaptions_getNext : zyrCaptions_getPrevious;
    for (uint32_t ui; (ui = pfFind(m_stFile.Get_List(), Get_Class(), iTime)) != ZYR_CAPTIONS_NONE;) {
        const ZyrCaption stCaption = m_stFile.Get_Caption(ui);
        if (Has_VisibleText(stCaption.pszText)) return Seek_By(stCaption.iStart - m_dPosition);
        iTime = stCaption.iStart;
    }
}

// In tenths of a second.
static std::string Format_Short(int64_t llMs)
{
    const std::string strText = Format_Time(static_cast<int32_t>(llMs));
    return strText.substr(0, strText.size() - 2);
}

void Playback::Apply(PlayCommand eCommand)
{
    switch (eCommand) {
    case E_PLAY_PAUSE: m_bPaused = !m_bPaused; break;
    case E_PLAY_BACK: Seek_By(-SHORT_STEP_MS); break;
    case E_PLAY_ON: Seek_By(SHORT_STEP_MS); break;
    case E_PLAY_FAR_BACK: Seek_By(-LONG_STEP_MS); break;
    case E_PLAY_FAR_ON: Seek_By(LONG_STEP_MS); break;
    case E_PLAY_NEXT: Seek_Caption(true); break;
    case E_PLAY_PREVIOUS: Seek_Caption(false); break;
    case E_PLAY_LANGUAGE: // all together, then each alone, then all again
        if (m_auiClasses.size() > 1) m_uiLanguage = (m_uiLanguage + 1) % (m_auiClasses.size() + 1);
        break;
    default: break;
    }
}

std::string Playback::Describe() const
{
    std::string strText = Format_Short(Get_Position()) + " of " + Format_Short(m_llEnd);
    std::vector<std::string> astrNames;
    for (const uint32_t uiClass : m_auiClasses)
        if (m_uiLanguage == 0 || uiClass == Get_Class())
            astrNames.push_back(Show_ClassName(m_stFile.Get_ClassName(uiClass)));
    if (m_auiClasses.size() > 1) strText += "  " + Join_Lines(astrNames, " + ");
    if (m_bPaused) strText += "  paused";
    if (Is_AtEnd()) strText += "  end";
    return strText;
}

// A writing that cannot be read leaves what plays in its place: the next one may be whole again.
static bool Renew_File(const Options &stOptions, FileWatch &stWatch, CaptionFile &stFile)
{
    if (!stWatch.Is_New()) return false;
    CaptionFile stNew;
    if (!stNew.Open(stOptions.astrMovies.front(), stOptions.stSource).IsGood()) return false;
    stFile = std::move(stNew);
    return true;
}

ExitCode Run_Play(const Options &stOptions)
{
    const std::string &strMovie = stOptions.astrMovies.front();
    CaptionFile stFile;
    Outcome stOutcome;
    if (stOptions.bWatch && strMovie == "-")
        stOutcome = {E_EXIT_USAGE, "--watch is for files, not for standard input"};
    if (stOutcome.IsGood()) stOutcome = stFile.Open(strMovie, stOptions.stSource);
    if (stOutcome.IsGood()) {
        Playback stPlayback(stFile, stOptions.stPlay);
        FileWatch stWatch(stFile.Get_File().pszFile);
        if (stOptions.bWatch) stPlayback.Follow([&] { return Renew_File(stOptions, stWatch, stFile); });
        stOutcome =
            stOptions.stPlay.bTerminal ? Play_Terminal(stPlayback) : Play_Window(stOptions, stPlayback);
    }
    if (!stOutcome.IsGood()) Report_Problem(strMovie, stOutcome.strText);
    return stOutcome.eCode;
}
