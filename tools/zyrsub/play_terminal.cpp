// Play as text. On a terminal the caption stands in place and the keys work; into a pipe or a file goes one
// line for each change of the caption.
#include "playback.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <poll.h>
#include <string_view>
#include <termios.h>
#include <unistd.h>

#include "text_tools.h"
#include "time_text.h"

static constexpr int POLL_MS = 10;

static volatile std::sig_atomic_t s_iStopped = 0;

static void Stop_Playing(int /*iSignal*/)
{
    s_iStopped = 1;
}

// Keys without Enter, and the screen given back as it was.
class TerminalSession
{
public:
    TerminalSession() : m_bActive(isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0)
    {
        std::signal(SIGINT, Stop_Playing);
        std::signal(SIGTERM, Stop_Playing);
        std::signal(SIGHUP, Stop_Playing);
        if (!m_bActive || tcgetattr(STDIN_FILENO, &m_stBefore) != 0) return;
        termios stRaw = m_stBefore;
        stRaw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        tcsetattr(STDIN_FILENO, TCSANOW, &stRaw);
        std::fputs("\x1b[?1049h\x1b[?25l", stdout);
    }
    ~TerminalSession()
    {
        if (!m_bActive) return;
        std::fputs("\x1b[?25h\x1b[?1049l", stdout);
        std::fflush(stdout);
        tcsetattr(STDIN_FILENO, TCSANOW, &m_stBefore);
    }
    TerminalSession(const TerminalSession &) = delete;
    TerminalSession &operator=(const TerminalSession &) = delete;

    bool IsActive() const { return m_bActive; }

private:
    bool m_bActive;
    termios m_stBefore = {};
};

struct KeyRow {
    std::string_view strBytes;
    PlayCommand eCommand;
};
static constexpr KeyRow KEYS[] = {
    {" ", E_PLAY_PAUSE},       {"\x1b[D", E_PLAY_BACK}, {"\x1b[C", E_PLAY_ON}, {"\x1b[B", E_PLAY_FAR_BACK},
    {"\x1b[A", E_PLAY_FAR_ON}, {"l", E_PLAY_LANGUAGE},  {"q", E_PLAY_QUIT},    {"\x1b", E_PLAY_QUIT},
};

// Waits a moment for a key. An escape that nothing follows is the key itself, not the start of an arrow.
static PlayCommand Wait_Key(bool bTerminal)
{
    pollfd stPoll = {STDIN_FILENO, POLLIN, 0};
    if (poll(&stPoll, bTerminal ? 1 : 0, POLL_MS) <= 0) return E_PLAY_NOTHING;
    char acKey[8];
    const ssize_t iBytes = read(STDIN_FILENO, acKey, sizeof acKey);
    if (iBytes <= 0) return E_PLAY_QUIT;
    const std::string_view strKey(acKey, static_cast<size_t>(iBytes));
    for (const KeyRow &stRow : KEYS)
        if (strKey == stRow.strBytes) return stRow.eCommand;
    return E_PLAY_NOTHING;
}

static std::string Format_Change(const Playback &stPlayback, const std::string &strCaption)
{
    return Format_Time(static_cast<int32_t>(stPlayback.Get_Position())) + "  " +
           Join_Lines(Split_Lines(Make_Printable(strCaption)), " / ") + "\n";
}

static std::string Format_Screen(const Playback &stPlayback, const std::string &strCaption)
{
    std::string strText = "\x1b[H" + stPlayback.Describe() + "\x1b[K\n\x1b[K\n";
    for (const std::string &strLine : Split_Lines(Make_Printable(strCaption)))
        strText.append("    ").append(strLine).append("\x1b[K\n");
    return strText + "\x1b[J\n\nspace pause   left/right 5 s   up/down 1 min   l language   q quit";
}

// What was shown last, to print only what is new.
struct Shown {
    std::string strCaption;
    std::string strScreen;
};

static void Show_Change(const TerminalSession &stSession, const Playback &stPlayback, Shown &stShown)
{
    const std::string strCaption = stPlayback.Get_Caption();
    if (stSession.IsActive()) {
        const std::string strScreen = Format_Screen(stPlayback, strCaption);
        if (strScreen != stShown.strScreen) std::fputs(strScreen.c_str(), stdout);
        stShown.strScreen = strScreen;
    } else if (strCaption != stShown.strCaption) {
        std::fputs(Format_Change(stPlayback, strCaption).c_str(), stdout);
    }
    stShown.strCaption = strCaption;
    std::fflush(stdout);
}

Outcome Play_Terminal(Playback &stPlayback)
{
    using Clock = std::chrono::steady_clock;
    const TerminalSession stSession;
    Shown stShown;
    Show_Change(stSession, stPlayback, stShown);
    auto stLast = Clock::now();
    while (s_iStopped == 0 && !stPlayback.Is_AtEnd()) {
        const PlayCommand eCommand = Wait_Key(stSession.IsActive());
        if (eCommand == E_PLAY_QUIT) break;
        stPlayback.Apply(eCommand);
        const auto stNow = Clock::now();
        bool bMore = stPlayback.Advance(std::chrono::duration<double, std::milli>(stNow - stLast).count());
        stLast = stNow;
        Show_Change(stSession, stPlayback, stShown);
        for (; bMore && s_iStopped == 0; bMore = stPlayback.Advance(0))
            Show_Change(stSession, stPlayback, stShown);
    }
    Show_Change(stSession, stPlayback, stShown);
    return {};
}
