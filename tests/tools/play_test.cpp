// zyrsub play: as text into a pipe and on a terminal, and in a window of a virtual X server.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "run_program.h"

using Clock = std::chrono::steady_clock;
static constexpr auto PATIENCE = std::chrono::seconds(60);
static constexpr auto POLL = std::chrono::milliseconds(50);

TEST(ZyrsubPlay, TerminalIntoAPipe)
{
    const auto stBegin = Clock::now();
    const RunResult stRun = Run_Zyrsub("play --terminal --speed 10 --from 2s subrip-crlf.srt");
    EXPECT_EQ(stRun.iCode, 0) << stRun.strErr;
    EXPECT_EQ(stRun.strOut,
              "0:00:02.000  The lamp is lit at dusk.\n"
              "0:00:03.500  \n"
              "0:00:04.000  It turns once in ten seconds, / and every ship counts along.\n"
              "0:00:06.500  \n"
              "0:00:07.000  Nobody counts aloud.\n"
              "0:00:09.000  \n"
              "0:00:09.500  By dawn the oil is low, / the log is full, / and the kettle is on.\n"
              "0:00:12.000  \n");
    EXPECT_GE(Clock::now() - stBegin, std::chrono::milliseconds(1000)) << "ten seconds, ten times as fast";
}

static bool Wait_For(const std::function<bool()> &pfTrue)
{
    for (const auto stEnd = Clock::now() + PATIENCE; Clock::now() < stEnd; std::this_thread::sleep_for(POLL))
        if (pfTrue()) return true;
    return false;
}

// A program in the background, ended when this goes.
class Child
{
public:
    explicit Child(pid_t iChild) : m_iChild(iChild) {}
    ~Child()
    {
        if (m_iChild <= 0) return;
        kill(m_iChild, SIGKILL);
        waitpid(m_iChild, nullptr, 0);
    }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    // The exit code, or -1 when it does not end in time.
    int Wait()
    {
        int iStatus = 0;
        if (!Wait_For([&] { return waitpid(m_iChild, &iStatus, WNOHANG) == m_iChild; })) return -1;
        m_iChild = -1;
        return WIFEXITED(iStatus) ? WEXITSTATUS(iStatus) : 128 + WTERMSIG(iStatus);
    }

private:
    pid_t m_iChild;
};

// A pseudo terminal with zyrsub on it.
class Terminal
{
public:
    explicit Terminal(const std::string &strMovie) : m_stChild(Start(strMovie, m_iMaster)) {}
    ~Terminal()
    {
        if (Is_There()) close(m_iMaster);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    bool Is_There() const { return m_iMaster >= 0; }
    void Press(std::string_view strKey) const
    {
        EXPECT_EQ(write(m_iMaster, strKey.data(), strKey.size()), static_cast<ssize_t>(strKey.size()));
    }
    // Until the text has appeared since the last time.
    bool Shows(const std::string &strText)
    {
        return Wait_For([&] {
            Collect();
            const size_t uiFound = m_strSeen.find(strText);
            if (uiFound == std::string::npos) return false;
            m_strSeen.erase(0, uiFound + strText.size());
            return true;
        });
    }
    int Wait() { return m_stChild.Wait(); }

private:
    static pid_t Start(const std::string &strMovie, int &iMaster)
    {
        const pid_t iChild = forkpty(&iMaster, nullptr, nullptr, nullptr);
        if (iChild == 0) {
            execl(ZYRSUB_PROGRAM, ZYRSUB_PROGRAM, "play", "--terminal", "--watch", strMovie.c_str(), nullptr);
            _exit(127);
        }
        return iChild;
    }
    void Collect()
    {
        char acText[4096];
        pollfd stPoll = {m_iMaster, POLLIN, 0};
        while (poll(&stPoll, 1, 0) > 0) {
            const ssize_t iBytes = read(m_iMaster, acText, sizeof acText);
            if (iBytes <= 0) return;
            m_strSeen.append(acText, static_cast<size_t>(iBytes));
        }
    }

    int m_iMaster = -1;
    std::string m_strSeen;
    Child m_stChild;
};

TEST(ZyrsubPlay, TerminalKeys)
{
    // A key, and what is shown behind it.
    static constexpr const char *apszKeys[][2] = {
        {"", "KRCC + ENCC"},
        {" ", "paused"},
        {"\x1b[C", "every ship counts along."},
        {"\x1b[C", "The kettle is on."},
        {"\x1b[D", "every ship counts along."},
        {"l", "  KRCC  paused"},
        {"q", "\x1b[?1049l"},
    };
    Terminal stTerminal(Sample("sami-interleaved.smi"));
    if (!stTerminal.Is_There()) GTEST_SKIP() << "no pseudo terminal here: " << std::strerror(errno);
    for (const auto &[pszKey, pszShown] : apszKeys) {
        stTerminal.Press(pszKey);
        ASSERT_TRUE(stTerminal.Shows(pszShown)) << pszKey << ": " << pszShown;
    }
    EXPECT_EQ(stTerminal.Wait(), 0);
}

// At the same time, in the same language; what cannot be read meanwhile leaves the screen as it is.
TEST(ZyrsubPlay, SavingShowsAtOnce)
{
    const TestFolder stFolder;
    const std::string strBefore = Read_File(Sample("sami-interleaved.smi"));
    stFolder.Write("x.smi", strBefore);
    Terminal stTerminal(stFolder.Path("x.smi"));
    if (!stTerminal.Is_There()) GTEST_SKIP() << "no pseudo terminal here: " << std::strerror(errno);
    for (const auto &[pszKey, pszShown] : {std::pair(" ", "paused"),
                                           {"\x1b[C", "every ship counts along."},
                                           {"l", "  KRCC  paused"},
                                           {"l", "  ENCC  paused"}}) {
        stTerminal.Press(pszKey);
        ASSERT_TRUE(stTerminal.Shows(pszShown));
    }
    stFolder.Write("x.smi", "");
    stFolder.Write("new.smi", std::string(strBefore).replace(strBefore.find("and every ship"), 3, "yet"));
    std::filesystem::rename(stFolder.Path("new.smi"), stFolder.Path("x.smi"));
    EXPECT_TRUE(stTerminal.Shows("0:00:05.")) << "the same time";
    EXPECT_TRUE(stTerminal.Shows("  ENCC  paused"));
    EXPECT_TRUE(stTerminal.Shows("yet every ship counts along."));
    stTerminal.Press("q");
    EXPECT_EQ(stTerminal.Wait(), 0);
}

static pid_t Start_Program(const std::string &strCommand)
{
    const pid_t iChild = fork();
    if (iChild != 0) return iChild;
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // the window system's libraries keep memory until the exit
    execl("/bin/sh", "sh", "-c", ("exec " + strCommand + " 2>/dev/null").c_str(), nullptr);
    _exit(127);
}

// An X server that keeps its screen in a file, so that a screenshot is a read of that file.
class Screen
{
public:
    Screen()
    {
        std::string strNumber;
        EXPECT_TRUE(Wait_For([&] {
            strNumber = Read_File(m_stFolder.Path("number"));
            return strNumber.ends_with('\n');
        }));
        setenv("DISPLAY", (":" + strNumber.substr(0, strNumber.find('\n'))).c_str(), 1);
        setenv("SDL_VIDEODRIVER", "x11", 1);
    }

    // How many pixels have the colour that captions are drawn in. Nothing in the file's header has it.
    size_t Count_CaptionPixels() const
    {
        const std::string strImage = Read_File(m_stFolder.Path("Xvfb_screen0"));
        size_t uiFound = 0;
        for (size_t uiAt = 0; uiAt + 4 <= strImage.size(); uiAt += 4)
            uiFound += strImage.compare(uiAt, 3, "\x84\x82\x84") == 0 ? 1 : 0;
        return uiFound;
    }

private:
    TestFolder m_stFolder;
    Child m_stServer{Start_Program("Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp -fbdir " +
                                   m_stFolder.Path("") + " 3>" + m_stFolder.Path("number"))};
};

static std::string Ask_Xdotool(const std::string &strArguments)
{
    return Run_Program("xdotool " + strArguments).strOut;
}

TEST(ZyrsubPlay, WindowAndKeys)
{
    const Screen stScreen;
    Child stPlayer(Start_Program(ZYRSUB_PROGRAM " play " + Sample("sami-interleaved.smi")));
    std::string strWindow;
    ASSERT_TRUE(Wait_For([&] {
        strWindow = Ask_Xdotool("search --onlyvisible --name sami-interleaved.smi");
        return !strWindow.empty();
    }));
    strWindow.erase(strWindow.find('\n'));
    const auto pfPress = [&](const char *pszKey) {
        Ask_Xdotool("windowfocus --sync " + strWindow + " key " + pszKey);
    };
    const auto pfTitle = [&] { return Ask_Xdotool("getwindowname " + strWindow); };
    const auto pfTitleHas = [&](const char *pszText) {
        return Wait_For([&] { return pfTitle().find(pszText) != std::string::npos; });
    };

    EXPECT_TRUE(Wait_For([&] { return stScreen.Count_CaptionPixels() > 300; }))
        << "captions come by themselves";
    pfPress("space");
    EXPECT_TRUE(pfTitleHas("paused")) << pfTitle();
    pfPress("Down");
    EXPECT_TRUE(Wait_For([&] { return stScreen.Count_CaptionPixels() == 0; }))
        << "nothing is shown at the start";
    pfPress("Right");
    size_t uiBoth = 0;
    EXPECT_TRUE(Wait_For([&] { return (uiBoth = stScreen.Count_CaptionPixels()) > 300; })) << pfTitle();
    EXPECT_EQ(pfTitle().find("0:00:05.0"), 0U) << pfTitle();
    pfPress("l");
    EXPECT_TRUE(Wait_For([&] {
        const size_t uiOne = stScreen.Count_CaptionPixels();
        return uiOne > 100 && uiOne < uiBoth * 3 / 4;
    }));
    pfPress("o");
    EXPECT_TRUE(pfTitleHas("hdmi-1080p")) << pfTitle();
    EXPECT_NE(Ask_Xdotool("getwindowgeometry " + strWindow).find("1024x576"), std::string::npos)
        << "as large as the screen allows";
    pfPress("q");
    EXPECT_EQ(stPlayer.Wait(), 0);
}

TEST(ZyrsubPlay, NoWindowSystem)
{
    const RunResult stRun = Run_Program(
        "env -u DISPLAY -u WAYLAND_DISPLAY SDL_VIDEODRIVER=x11 " ZYRSUB_PROGRAM " play subrip-crlf.srt");
    EXPECT_EQ(stRun.iCode, 1);
    EXPECT_NE(stRun.strErr.find("--terminal"), std::string::npos) << stRun.strErr;
}
