#include "tree_run.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <deque>
#include <memory>
#include <poll.h>
#include <thread>
#include <unistd.h>

#include "progress.h"
#include "text_tools.h"
#include "tree_results.h"

using Clock = std::chrono::steady_clock;

static constexpr size_t AHEAD = 64; // files for each process that may wait for the first of them to be told

std::optional<int64_t> Parse_Since(const std::string &strText)
{
    static constexpr struct {
        char cUnit;
        int64_t llSeconds;
    } UNITS[] = {{'m', 60}, {'h', 3600}, {'d', 86400}, {'w', 604800}};
    int64_t llCount = 0;
    const char *const pcEnd = strText.data() + strText.size();
    const auto [pcUnit, eError] = std::from_chars(strText.data(), pcEnd, llCount);
    for (const auto &stUnit : UNITS)
        if (eError == std::errc() && pcUnit + 1 == pcEnd && *pcUnit == stUnit.cUnit && llCount >= 0 &&
            llCount < 100000)
            return std::time(nullptr) - llCount * stUnit.llSeconds;
    for (const char *const pszForm : {"%Y-%m-%d", "%Y-%m-%dT%H:%M"}) {
        std::tm stTime = {};
        const char *const pszRest = strptime(strText.c_str(), pszForm, &stTime);
        stTime.tm_isdst = -1;
        if (pszRest != nullptr && *pszRest == '\0') return std::mktime(&stTime);
    }
    return std::nullopt;
}

// How far a run is, and what it has come to.
class TreeTally
{
public:
    TreeTally(size_t uiAll, bool bShown) : m_uiAll(uiAll), m_bShown(bShown && isatty(STDERR_FILENO) != 0) {}

    void Add(const TreeReport &stReport)
    {
        ++m_uiFiles;
        ++m_mapCodes[stReport.eCode];
        for (const auto &[strCode, uiFindings] : stReport.mapTally) m_mapFindings[strCode] += uiFindings;
    }

    void Begin()
    {
        m_uiBefore = m_uiFiles;
        m_stStart = Clock::now();
    }

    void Show()
    {
        using std::chrono::milliseconds;
        const Clock::time_point stNow = Clock::now();
        if (!m_bShown || (m_uiFiles < m_uiAll && stNow - m_stShown < milliseconds(100))) return;
        m_stShown = stNow;
        Draw(stNow);
    }

    // So that a line of standard error does not stand behind the bar.
    void Clear() const
    {
        if (m_bShown) std::fputs("\r\033[K", stderr);
    }

    ExitCode Report() const;

private:
    void Draw(Clock::time_point stNow) const;

    size_t m_uiAll;
    bool m_bShown;
    size_t m_uiFiles = 0;
    size_t m_uiBefore = 0; // of a run that was stopped
    std::map<ExitCode, size_t> m_mapCodes;
    std::map<std::string, uint64_t> m_mapFindings;
    Clock::time_point m_stStart = Clock::now();
    Clock::time_point m_stShown;
};

static std::string Tell_Duration(uint64_t ullSeconds)
{
    static constexpr uint64_t MINUTE = 60;
    static constexpr uint64_t HOUR = 3600;
    if (ullSeconds < MINUTE) return std::to_string(ullSeconds) + " s";
    if (ullSeconds < HOUR)
        return std::to_string(ullSeconds / MINUTE) + " min " + std::to_string(ullSeconds % MINUTE) + " s";
    return std::to_string(ullSeconds / HOUR) + " h " + std::to_string(ullSeconds % HOUR / MINUTE) + " min";
}

void TreeTally::Draw(Clock::time_point stNow) const
{
    const size_t uiAll = std::max(m_uiAll, m_uiFiles); // files may have come meanwhile
    std::string strLeft;
    if (const size_t uiNew = m_uiFiles - m_uiBefore; uiNew > 0 && m_uiFiles < uiAll) {
        const double dSpent = std::chrono::duration<double>(stNow - m_stStart).count();
        const double dLeft = dSpent / static_cast<double>(uiNew) * static_cast<double>(uiAll - m_uiFiles);
        strLeft = ", " + Tell_Duration(static_cast<uint64_t>(dLeft)) + " left";
    }
    Show_Progress(m_uiFiles, uiAll, strLeft);
}

ExitCode TreeTally::Report() const
{
    const auto pfCount = [&](ExitCode eCode) {
        const auto stAt = m_mapCodes.find(eCode);
        return stAt == m_mapCodes.end() ? size_t{0} : stAt->second;
    };
    std::fflush(stdout);
    std::fprintf(stderr, "zyrsub: %zu files: %zu good", m_uiFiles, pfCount(E_EXIT_GOOD));
    for (const auto &[eCode, pszHow] :
         {std::pair(E_EXIT_TEXT_LOST, "not whole, or not readable"),
          std::pair(E_EXIT_NOT_SUBTITLE, "no subtitle"), std::pair(E_EXIT_USAGE, "refused"),
          std::pair(E_EXIT_SOME_FAILED, m_mapFindings.empty() ? "failed" : "with findings, or failed")})
        if (pfCount(eCode) > 0) std::fprintf(stderr, ", %zu %s", pfCount(eCode), pszHow);
    std::fputs("\n", stderr);
    std::vector<std::pair<std::string, uint64_t>> astFindings(m_mapFindings.begin(), m_mapFindings.end());
    std::stable_sort(astFindings.begin(), astFindings.end(),
                     [](const auto &stA, const auto &stB) { return stA.second > stB.second; });
    for (const auto &[strCode, ullFindings] : astFindings)
        std::fprintf(stderr, "%12llu  %s\n", static_cast<unsigned long long>(ullFindings), strCode.c_str());
    return m_mapCodes.empty() ? E_EXIT_NOT_FOUND : m_mapCodes.rbegin()->first;
}

static bool Wants_Lines(const Options &stOptions)
{
    return stOptions.stReport.bJson || stOptions.stLint.strFormat == "jsonl" ||
           !stOptions.stTree.strResults.empty();
}

namespace
{

// A file that is under way, or done and waits for those before it.
struct TreeJob {
    TreeFile stFile;
    std::optional<TreeReport> stReport;
    size_t uiWorker = 0;
};

class TreeRun
{
public:
    TreeRun(const Options &stOptions, const TreeStep &pfStep)
        : m_stOptions(stOptions), m_pfStep(pfStep), m_stWalk(stOptions.astrMovies, stOptions.stTree.llSince)
    {
        const uint32_t uiCores = std::max(std::thread::hardware_concurrency(), 1U);
        m_apstWorkers.resize(stOptions.stTree.uiJobs == 0 ? uiCores : stOptions.stTree.uiJobs);
    }

    ExitCode Run();

private:
    size_t Count_Files() const;
    bool Start_Next(size_t uiWorker);
    void Take_Reports();
    void Take_Report(TreeJob &stJob);
    bool Tell_Finished();
    bool Tell(const TreeReport &stReport);
    TreeJob *Find_Job(size_t uiWorker);

    const Options &m_stOptions;
    const TreeStep &m_pfStep;
    TreeWalk m_stWalk;
    bool m_bAllGiven = false;
    TreeResults m_stResults;
    std::optional<TreeTally> m_stTally;
    std::deque<TreeJob> m_astJobs; // in the order of the tree
    std::vector<std::unique_ptr<TreeWorker>> m_apstWorkers;
};

// What the bar counts to; the walk itself costs little beside the reading.
size_t TreeRun::Count_Files() const
{
    if (isatty(STDERR_FILENO) == 0) return 0;
    TreeWalk stWalk(m_stOptions.astrMovies, m_stOptions.stTree.llSince);
    size_t uiFiles = 0;
    while (stWalk.Next()) ++uiFiles;
    return uiFiles;
}

TreeJob *TreeRun::Find_Job(size_t uiWorker)
{
    for (TreeJob &stJob : m_astJobs)
        if (!stJob.stReport && stJob.uiWorker == uiWorker) return &stJob;
    return nullptr;
}

// Gives a worker its next file. False when it has one, when too many wait to be told, or when there is none.
bool TreeRun::Start_Next(size_t uiWorker)
{
    if (m_bAllGiven || m_astJobs.size() >= AHEAD * m_apstWorkers.size() || Find_Job(uiWorker) != nullptr)
        return false;
    std::optional<TreeFile> stFile = m_stWalk.Next();
    while (stFile && m_stResults.Is_Open() && m_stResults.Is_Done(Show_Path(stFile->strPath)))
        stFile = m_stWalk.Next();
    m_bAllGiven = !stFile;
    if (!stFile) return false;
    if (!m_apstWorkers[uiWorker]) m_apstWorkers[uiWorker] = std::make_unique<TreeWorker>(m_pfStep);
    m_apstWorkers[uiWorker]->Give(*stFile); // a dead one is seen when its report is taken
    m_astJobs.push_back({std::move(*stFile), std::nullopt, uiWorker});
    return true;
}

// A worker has one file at a time, so that its death is that file's doing.
void TreeRun::Take_Report(TreeJob &stJob)
{
    std::unique_ptr<TreeWorker> &pstWorker = m_apstWorkers[stJob.uiWorker];
    stJob.stReport = pstWorker->Take();
    if (!stJob.stReport) {
        stJob.stReport = TreeReport{E_EXIT_SOME_FAILED, "", "", {}, pstWorker->Explain_Death()};
        pstWorker.reset();
    }
    TreeReport &stReport = *stJob.stReport;
    if (stReport.strFailure.empty()) return;
    const std::string &strPath = stJob.stFile.strPath;
    stReport.strProblems += "zyrsub: " + Make_Printable(strPath) + ": " + stReport.strFailure + "\n";
    stReport.strOut =
        Wants_Lines(m_stOptions) ? Write_FailureLine(strPath, {stReport.eCode, stReport.strFailure}) : "";
}

void TreeRun::Take_Reports()
{
    std::vector<pollfd> astPolls;
    std::vector<TreeJob *> apstJobs;
    for (TreeJob &stJob : m_astJobs) {
        if (stJob.stReport) continue;
        astPolls.push_back({m_apstWorkers[stJob.uiWorker]->Get_Socket(), POLLIN, 0});
        apstJobs.push_back(&stJob);
    }
    if (poll(astPolls.data(), astPolls.size(), -1) <= 0) return;
    for (size_t ui = 0; ui < astPolls.size(); ++ui)
        if (astPolls[ui].revents != 0) Take_Report(*apstJobs[ui]);
}

bool TreeRun::Tell(const TreeReport &stReport)
{
    if (!stReport.strProblems.empty()) {
        m_stTally->Clear();
        std::fflush(stdout);
        std::fwrite(stReport.strProblems.data(), 1, stReport.strProblems.size(), stderr);
    }
    m_stTally->Add(stReport);
    m_stTally->Show();
    if (m_stResults.Is_Open()) return m_stResults.Write(stReport.strOut);
    return std::fwrite(stReport.strOut.data(), 1, stReport.strOut.size(), stdout) == stReport.strOut.size();
}

bool TreeRun::Tell_Finished()
{
    bool bGood = true;
    for (; bGood && !m_astJobs.empty() && m_astJobs.front().stReport; m_astJobs.pop_front())
        bGood = Tell(*m_astJobs.front().stReport);
    if (!m_stResults.Is_Open() && std::fflush(stdout) != 0) bGood = false;
    return bGood;
}

ExitCode TreeRun::Run()
{
    const TreeOptions &stTree = m_stOptions.stTree;
    m_stTally.emplace(Count_Files(), !stTree.strResults.empty() || isatty(STDOUT_FILENO) == 0);
    if (!stTree.strResults.empty()) {
        const Outcome stOpened =
            m_stResults.Open(stTree.strResults, [&](const TreeReport &stOld) { m_stTally->Add(stOld); });
        if (!stOpened.IsGood()) {
            std::fprintf(stderr, "zyrsub: %s\n", stOpened.strText.c_str());
            return stOpened.eCode;
        }
    }
    m_stTally->Begin();
    for (;;) {
        for (size_t uiWorker = 0; uiWorker < m_apstWorkers.size(); ++uiWorker) Start_Next(uiWorker);
        if (m_astJobs.empty()) break;
        Take_Reports();
        if (!Tell_Finished()) {
            std::fputs("zyrsub: the results could not be written\n", stderr);
            return E_EXIT_SOME_FAILED;
        }
    }
    m_apstWorkers.clear();
    return m_stTally->Report();
}

} // namespace

bool Is_TreeRun(const Options &stOptions)
{
    const TreeOptions &stTree = stOptions.stTree;
    return Has_Folder(stOptions.astrMovies) || !stTree.strResults.empty() || stTree.llSince;
}

ExitCode Run_Tree(const Options &stOptions, const TreeStep &pfStep)
{
    return TreeRun(stOptions, pfStep).Run();
}
