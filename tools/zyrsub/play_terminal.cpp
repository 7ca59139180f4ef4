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
static volatile std::sig_atomic_t s_iSuspended = 0; // Ctrl-Z was pressed

static void Stop_Playing(int /*iSignal*/)
{
    s_iStopped = 1;
}

static void Suspend_Playing(int /*iSignal*/)
{
    s_iSuspended = 1;
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
        std::signal(SIGTSTP, Suspend_Playing);
        Take_Screen();
    }
    ~TerminalSession()
    {
        if (m_bActive) Give_Back();
    }
    TerminalSession(const TerminalSession &) = delete;
    TerminalSession &operator=(const TerminalSession &) = delete;

    bool IsActive() const { return m_bActive; }

    // Stops here, with the screen given back, until the shell lets the program go on.
    void Suspend()
    {
        s_iSuspended = 0;
        Give_Back();
        std::raise(SIGSTOP);
        Take_Screen();
    }

private:
    void Take_Screen()
    {
        termios stRaw = m_stBefore;
        stRaw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        tcsetattr(STDIN_FILENO, TCSANOW, &stRaw);
        std::fputs("\x1b[?1049h\x1b[?25l", stdout);
    }
    void Give_Back()
    {
        std::fputs("\x1b[?25h\x1b[?1049l", stdout);
        std::fflush(stdout);
        tcsetattr(STDIN_FILENO, TCSANOW, &m_stBefore);
    }

    bool m_bActive;
    termios m_stBefore = {};
};

struct KeyRow {
    std::string_view strBytes;
    PlayCommand eCommand;
};
static constexpr KeyRow KEYS[] = {
    {" ", E_PLAY_PAUSE},       {"\x1b[D", E_PLAY_BACK}, {"\x1b[C", E_PLAY_ON},  {"\x1b[B", E_PLAY_FAR_BACK},
    {"\x1b[A", E_PLAY_FAR_ON}, {"n", E_PLAY_NEXT},      {"p", E_PLAY_PREVIOUS}, {"l", E_PLAY_LANGUAGE},
    {"q", E_PLAY_QUIT},        {"\x1b", E_PLAY_QUIT},
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
    return strText +
           "\x1b[J\n\nspace pause   left/right 5 s   up/down 1 min   n/p caption   l language   q quit";
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
    TerminalSession stSession;
    Shown stShown;
    Show_Change(stSession, stPlayback, stShown);
    auto stLast = Clock::now();
    // Where there are keys to go back with, the end is no reason to leave.
    while (s_iStopped == 0 && (stSession.IsActive() || !stPlayback.Is_AtEnd())) {
        if (s_iSuspended != 0) {
            stSession.Suspend();
            stShown = {};
            stLast = Clock::now();
        }
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
