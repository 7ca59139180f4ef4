// zyrsub play: as text into a pipe and on a terminal, and in a window of a virtual X server.
#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
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
    const RunResult stRun =
        Run_Zyrsub({"play", "--terminal", "--speed", "10", "--from", "2s", Sample("subrip-crlf.srt")});
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
        for (const auto stEnd = Clock::now() + PATIENCE; Clock::now() < stEnd;
             std::this_thread::sleep_for(POLL)) {
            int iStatus = 0;
            if (waitpid(m_iChild, &iStatus, WNOHANG) != m_iChild) continue;
            m_iChild = -1;
            return WIFEXITED(iStatus) ? WEXITSTATUS(iStatus) : 128 + WTERMSIG(iStatus);
        }
        return -1;
    }

private:
    pid_t m_iChild;
};

static bool Wait_For(const std::function<bool()> &pfTrue)
{
    for (const auto stEnd = Clock::now() + PATIENCE; Clock::now() < stEnd; std::this_thread::sleep_for(POLL))
        if (pfTrue()) return true;
    return false;
}

// A pseudo terminal with zyrsub on it.
class Terminal
{
public:
    explicit Terminal(const std::string &strMovie) : m_stChild(Start(strMovie, m_iMaster)) {}
    ~Terminal() { close(m_iMaster); }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

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
            execl(ZYRSUB_PROGRAM, ZYRSUB_PROGRAM, "play", "--terminal", strMovie.c_str(), nullptr);
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
    Terminal stTerminal(Sample("sami-interleaved.smi"));
    ASSERT_TRUE(stTerminal.Shows("KRCC + ENCC"));
    stTerminal.Press(" ");
    ASSERT_TRUE(stTerminal.Shows("paused"));
    stTerminal.Press("\x1b[C");
    ASSERT_TRUE(stTerminal.Shows("every ship counts along."));
    stTerminal.Press("\x1b[C");
    ASSERT_TRUE(stTerminal.Shows("The kettle is on."));
    stTerminal.Press("\x1b[D");
    ASSERT_TRUE(stTerminal.Shows("every ship counts along."));
    stTerminal.Press("l");
    ASSERT_TRUE(stTerminal.Shows("  KRCC  paused"));
    stTerminal.Press("q");
    EXPECT_TRUE(stTerminal.Shows("\x1b[?1049l"));
    EXPECT_EQ(stTerminal.Wait(), 0);
}

static pid_t Start_Program(const std::vector<std::string> &astrArguments, int iKeptOpen)
{
    const pid_t iChild = fork();
    if (iChild != 0) return iChild;
    std::vector<char *> apszArguments;
    apszArguments.reserve(astrArguments.size() + 1);
    for (const std::string &strArgument : astrArguments)
        apszArguments.push_back(const_cast<char *>(strArgument.c_str()));
    apszArguments.push_back(nullptr);
    if (iKeptOpen >= 0) fcntl(iKeptOpen, F_SETFD, 0);
    const int iNull = open("/dev/null", O_RDWR);
    dup2(iNull, 2);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // the window system's libraries keep memory until the exit
    execvp(apszArguments[0], apszArguments.data());
    _exit(127);
}

// An X server that keeps its screen in a file, so that a screenshot is a read of that file.
class Screen
{
public:
    Screen() : m_stServer(Start())
    {
        char szNumber[16] = {};
        size_t uiBytes = 0;
        while (uiBytes + 1 < sizeof szNumber && read(m_aiPipe[0], szNumber + uiBytes, 1) == 1 &&
               szNumber[uiBytes] != '\n')
            ++uiBytes;
        close(m_aiPipe[0]);
        szNumber[uiBytes] = '\0';
        setenv("DISPLAY", (std::string(":") + szNumber).c_str(), 1);
        setenv("SDL_VIDEODRIVER", "x11", 1);
    }

    // How many pixels have the colour that captions are drawn in.
    size_t Count_CaptionPixels() const
    {
        const std::string strImage = Read_File(m_stFolder.Path("Xvfb_screen0"));
        const auto pfWord = [&](size_t uiWord) {
            uint32_t uiValue = 0;
            if (strImage.size() >= uiWord * 4 + 4) std::memcpy(&uiValue, &strImage[uiWord * 4], 4);
            return ntohl(uiValue);
        };
        size_t uiFound = 0; // header: word 0 its size, word 19 the colours that follow it, 12 bytes each
        for (size_t uiAt = pfWord(0) + size_t{pfWord(19)} * 12; uiAt + 4 <= strImage.size(); uiAt += 4)
            uiFound += strImage.compare(uiAt, 3, "\x84\x82\x84") == 0 ? 1 : 0;
        return uiFound;
    }

private:
    pid_t Start()
    {
        if (pipe(m_aiPipe) != 0) return -1;
        const pid_t iServer =
            Start_Program({"Xvfb", "-displayfd", std::to_string(m_aiPipe[1]), "-screen", "0", "1024x768x24",
                           "-nolisten", "tcp", "-fbdir", m_stFolder.Path("")},
                          m_aiPipe[1]);
        close(m_aiPipe[1]);
        return iServer;
    }

    TestFolder m_stFolder;
    int m_aiPipe[2] = {-1, -1};
    Child m_stServer;
};

static std::string Ask_Xdotool(const std::vector<std::string> &astrArguments)
{
    std::vector<std::string> astrAll = {"xdotool"};
    astrAll.insert(astrAll.end(), astrArguments.begin(), astrArguments.end());
    return Run_Program(astrAll).strOut;
}

static void Press_Key(const std::string &strWindow, const char *pszKey)
{
    Ask_Xdotool({"windowfocus", "--sync", strWindow, "key", pszKey});
}

TEST(ZyrsubPlay, WindowAndKeys)
{
    const Screen stScreen;
    Child stPlayer(Start_Program({ZYRSUB_PROGRAM, "play", Sample("sami-interleaved.smi")}, -1));
    std::string strWindow;
    ASSERT_TRUE(Wait_For([&] {
        strWindow = Ask_Xdotool({"search", "--onlyvisible", "--name", "sami-interleaved.smi"});
        return !strWindow.empty();
    }));
    strWindow.erase(strWindow.find('\n'));
    const auto pfTitle = [&] { return Ask_Xdotool({"getwindowname", strWindow}); };

    EXPECT_TRUE(Wait_For([&] { return stScreen.Count_CaptionPixels() > 300; }))
        << "captions come by themselves";
    Press_Key(strWindow, "space");
    EXPECT_TRUE(Wait_For([&] { return pfTitle().find("paused") != std::string::npos; })) << pfTitle();
    Press_Key(strWindow, "Down");
    EXPECT_TRUE(Wait_For([&] { return stScreen.Count_CaptionPixels() == 0; }))
        << "nothing is shown at the start";
    Press_Key(strWindow, "Right");
    size_t uiBoth = 0;
    EXPECT_TRUE(Wait_For([&] { return (uiBoth = stScreen.Count_CaptionPixels()) > 300; })) << pfTitle();
    EXPECT_EQ(pfTitle().find("0:00:05.0"), 0U) << pfTitle();
    Press_Key(strWindow, "l");
    EXPECT_TRUE(Wait_For([&] {
        const size_t uiOne = stScreen.Count_CaptionPixels();
        return uiOne > 100 && uiOne < uiBoth * 3 / 4;
    }));
    Press_Key(strWindow, "o");
    EXPECT_TRUE(Wait_For([&] { return pfTitle().find("hdmi-1080p") != std::string::npos; })) << pfTitle();
    EXPECT_NE(Ask_Xdotool({"getwindowgeometry", strWindow}).find("1024x576"), std::string::npos)
        << "as large as the screen allows";
    Press_Key(strWindow, "q");
    EXPECT_EQ(stPlayer.Wait(), 0);
}

TEST(ZyrsubPlay, NoWindowSystem)
{
    const std::string strCommand = std::string("env -u DISPLAY -u WAYLAND_DISPLAY SDL_VIDEODRIVER=x11 ") +
                                   ZYRSUB_PROGRAM + " play " + Sample("subrip-crlf.srt");
    const RunResult stRun = Run_Program({"sh", "-c", strCommand});
    EXPECT_EQ(stRun.iCode, 1);
    EXPECT_NE(stRun.strErr.find("--terminal"), std::string::npos) << stRun.strErr;
}
