#include "tree_worker.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// A message is so many texts, each behind its length.
using Texts = std::vector<std::string>;

static bool Send_All(int iSocket, const char *pcBytes, size_t uiBytes)
{
    while (uiBytes > 0) {
        const ssize_t iSent = send(iSocket, pcBytes, uiBytes, MSG_NOSIGNAL);
        if (iSent < 0 && errno == EINTR) continue;
        if (iSent <= 0) return false;
        pcBytes += iSent;
        uiBytes -= static_cast<size_t>(iSent);
    }
    return true;
}

static bool Receive_All(int iSocket, char *pcBytes, size_t uiBytes)
{
    while (uiBytes > 0) {
        const ssize_t iGot = recv(iSocket, pcBytes, uiBytes, 0);
        if (iGot < 0 && errno == EINTR) continue;
        if (iGot <= 0) return false;
        pcBytes += iGot;
        uiBytes -= static_cast<size_t>(iGot);
    }
    return true;
}

static void Append_Number(std::string &strBytes, uint64_t ullNumber)
{
    strBytes.append(reinterpret_cast<const char *>(&ullNumber),
                    sizeof ullNumber); // the other end is this program
}

static bool Send_Texts(int iSocket, const Texts &astrTexts)
{
    std::string strMessage;
    Append_Number(strMessage, astrTexts.size());
    for (const std::string &strText : astrTexts) {
        Append_Number(strMessage, strText.size());
        strMessage += strText;
    }
    return Send_All(iSocket, strMessage.data(), strMessage.size());
}

static bool Receive_Number(int iSocket, uint64_t &ullNumber)
{
    return Receive_All(iSocket, reinterpret_cast<char *>(&ullNumber), sizeof ullNumber);
}

static bool Receive_Texts(int iSocket, Texts &astrTexts)
{
    uint64_t ullTexts = 0;
    if (!Receive_Number(iSocket, ullTexts)) return false;
    for (uint64_t ull = 0; ull < ullTexts; ++ull) {
        uint64_t ullBytes = 0;
        if (!Receive_Number(iSocket, ullBytes)) return false;
        std::string &strText = astrTexts.emplace_back(ullBytes, '\0');
        if (!Receive_All(iSocket, strText.data(), strText.size())) return false;
    }
    return true;
}

// A standard stream that goes to memory.
class CaughtStream
{
public:
    CaughtStream(FILE *pstStream, int iStream) : m_pstStream(pstStream), m_iMemory(memfd_create("zyrsub", 0))
    {
        if (m_iMemory < 0 || dup2(m_iMemory, iStream) < 0) _exit(E_EXIT_SOME_FAILED);
    }

    // What was written since the last time.
    std::string Take() const
    {
        std::fflush(m_pstStream);
        const off_t iEnd = lseek(m_iMemory, 0, SEEK_CUR);
        std::string strText(static_cast<size_t>(iEnd), '\0');
        if (iEnd == 0) return strText;
        const bool bGood = pread(m_iMemory, strText.data(), strText.size(), 0) == iEnd &&
                           ftruncate(m_iMemory, 0) == 0 && lseek(m_iMemory, 0, SEEK_SET) == 0;
        if (!bGood) _exit(E_EXIT_SOME_FAILED);
        return strText;
    }

private:
    FILE *m_pstStream;
    int m_iMemory;
};

// No exception may leave the child: it would find its way to the parent's code.
static TreeReport Run_Step(const TreeStep &pfStep, const TreeFile &stFile)
{
    try {
        return pfStep(stFile);
    } catch (const std::exception &stError) {
        return {E_EXIT_SOME_FAILED, "", "", {}, stError.what()};
    }
}

// Until the other end closes.
[[noreturn]] static void Work(int iSocket, const TreeStep &pfStep)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const CaughtStream stOut(stdout, STDOUT_FILENO);
    const CaughtStream stProblems(stderr, STDERR_FILENO);
    for (Texts astrFile; Receive_Texts(iSocket, astrFile) && astrFile.size() == 2; astrFile.clear()) {
        const TreeReport stReport = Run_Step(pfStep, {astrFile[0], astrFile[1]});
        Texts astrReport = {std::to_string(stReport.eCode), stOut.Take(), stProblems.Take(),
                            stReport.strFailure};
        for (const auto &[strCode, uiFindings] : stReport.mapTally) {
            astrReport.push_back(strCode);
            astrReport.push_back(std::to_string(uiFindings));
        }
        if (!Send_Texts(iSocket, astrReport)) break;
    }
    _exit(E_EXIT_GOOD);
}

TreeWorker::TreeWorker(const TreeStep &pfStep)
{
    int aiSockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, aiSockets) != 0)
        throw std::runtime_error(std::string("no socket for a process: ") + std::strerror(errno));
    std::fflush(stdout); // or the child would print it again
    m_iProcess = fork();
    if (m_iProcess == 0) {
        close(aiSockets[0]);
        Work(aiSockets[1], pfStep);
    }
    close(aiSockets[1]);
    m_iSocket = aiSockets[0];
    if (m_iProcess < 0) throw std::runtime_error(std::string("no process: ") + std::strerror(errno));
}

// Workers that were started later hold this socket, too: shutdown() reaches the worker whoever holds it.
TreeWorker::~TreeWorker()
{
    shutdown(m_iSocket, SHUT_RDWR);
    close(m_iSocket);
    if (m_iProcess > 0) waitpid(m_iProcess, nullptr, 0);
}

bool TreeWorker::Give(const TreeFile &stFile) const
{
    return Send_Texts(m_iSocket, {stFile.strPath, stFile.strBelow});
}

std::optional<TreeReport> TreeWorker::Take() const
{
    Texts astrReport;
    if (!Receive_Texts(m_iSocket, astrReport) || astrReport.size() < 4) return std::nullopt;
    TreeReport stReport{
        static_cast<ExitCode>(std::stoi(astrReport[0])), astrReport[1], astrReport[2], {}, astrReport[3]};
    for (size_t ui = 4; ui + 1 < astrReport.size(); ui += 2)
        stReport.mapTally[astrReport[ui]] = static_cast<uint32_t>(std::stoul(astrReport[ui + 1]));
    return stReport;
}

std::string TreeWorker::Explain_Death()
{
    int iStatus = 0;
    shutdown(m_iSocket, SHUT_RDWR);
    waitpid(m_iProcess, &iStatus, 0);
    m_iProcess = -1;
    return WIFSIGNALED(iStatus)
               ? std::string("the process that read it died: ") + strsignal(WTERMSIG(iStatus))
               : "the process that read it ended with it";
}
