#include "tree_results.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sys/file.h>
#include <unistd.h>

using nlohmann::ordered_json;

static std::string Dump(const ordered_json &jsValue)
{
    return jsValue.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

std::string Show_Path(const std::string &strPath)
{
    return ordered_json::parse(Dump(strPath)).get<std::string>();
}

std::string Write_FailureLine(const std::string &strPath, const Outcome &stOutcome)
{
    return Dump({{"movie", strPath},
                 {"error", {{"code", static_cast<int>(stOutcome.eCode)}, {"message", stOutcome.strText}}}}) +
           "\n";
}

// What a line says of how its file ended.
static TreeReport Read_Line(const ordered_json &jsLine)
{
    TreeReport stReport;
    for (const ordered_json &jsFinding : jsLine.value("findings", ordered_json::array()))
        ++stReport.mapTally[jsFinding.at("code").get<std::string>()];
    if (!stReport.mapTally.empty()) stReport.eCode = E_EXIT_SOME_FAILED;
    const auto pfTake = [&](const ordered_json &jsPart) {
        if (jsPart.contains("error"))
            stReport.eCode = static_cast<ExitCode>(jsPart["error"].at("code").get<int>());
    };
    for (const ordered_json &jsOutput : jsLine.value("outputs", ordered_json::array())) {
        if (jsOutput.value("text_lost", false)) stReport.eCode = E_EXIT_TEXT_LOST;
        pfTake(jsOutput);
    }
    pfTake(jsLine);
    return stReport;
}

TreeResults::~TreeResults()
{
    if (m_iFile < 0) return;
    fsync(m_iFile);
    close(m_iFile);
}

Outcome TreeResults::Open(const std::string &strFile, const std::function<void(const TreeReport &)> &pfOld)
{
    m_iFile = open(strFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_iFile < 0) return {E_EXIT_SOME_FAILED, strFile + ": it cannot be written: " + std::strerror(errno)};
    if (flock(m_iFile, LOCK_EX | LOCK_NB) != 0)
        return {E_EXIT_SOME_FAILED, strFile + ": another run writes to it"};
    std::ifstream stFile(strFile, std::ios::binary);
    off_t iEnd = 0;
    for (std::string strLine; std::getline(stFile, strLine) && !stFile.eof();) {
        const ordered_json jsLine = ordered_json::parse(strLine, nullptr, false);
        if (!jsLine.is_object() || !jsLine.contains("movie"))
            return {E_EXIT_SOME_FAILED, strFile + ": it holds something else than results"};
        iEnd += static_cast<off_t>(strLine.size()) + 1;
        m_astrDone.insert(jsLine["movie"].get<std::string>());
        pfOld(Read_Line(jsLine));
    }
    if (ftruncate(m_iFile, iEnd) != 0 || lseek(m_iFile, iEnd, SEEK_SET) < 0)
        return {E_EXIT_SOME_FAILED, strFile + ": it cannot be written: " + std::strerror(errno)};
    return {};
}

bool TreeResults::Write(const std::string &strLines) const
{
    for (size_t uiDone = 0; uiDone < strLines.size();) {
        const ssize_t iWritten = write(m_iFile, strLines.data() + uiDone, strLines.size() - uiDone);
        if (iWritten < 0 && errno == EINTR) continue;
        if (iWritten <= 0) return false;
        uiDone += static_cast<size_t>(iWritten);
    }
    return true;
}
