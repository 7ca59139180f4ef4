#include "run_program.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

TestFolder::TestFolder()
{
    std::string strTemplate = (std::filesystem::temp_directory_path() / "zyrsub-test-XXXXXX").string();
    if (mkdtemp(strTemplate.data()) == nullptr) throw std::runtime_error("no folder for the test");
    m_stPath = strTemplate;
}

TestFolder::~TestFolder()
{
    std::error_code stIgnored;
    std::filesystem::remove_all(m_stPath, stIgnored);
}

void TestFolder::Write(const std::string &strName, const std::string &strBytes) const
{
    std::ofstream(Path(strName), std::ios::binary) << strBytes;
}

std::string Read_File(const std::string &strPath)
{
    std::ifstream stFile(strPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(stFile), {}};
}

RunResult Run_Program(std::vector<std::string> astrArguments)
{
    const TestFolder stFolder;
    const std::string strOut = stFolder.Path("out");
    const std::string strErr = stFolder.Path("err");
    posix_spawn_file_actions_t stActions;
    posix_spawn_file_actions_init(&stActions);
    posix_spawn_file_actions_addopen(&stActions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&stActions, 1, strOut.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&stActions, 2, strErr.c_str(), O_WRONLY | O_CREAT, 0600);
    std::vector<char *> apszArguments;
    apszArguments.reserve(astrArguments.size() + 1);
    for (std::string &strArgument : astrArguments) apszArguments.push_back(strArgument.data());
    apszArguments.push_back(nullptr);
    pid_t iChild = 0;
    RunResult stResult;
    if (posix_spawnp(&iChild, apszArguments[0], &stActions, nullptr, apszArguments.data(), environ) == 0) {
        int iStatus = 0;
        waitpid(iChild, &iStatus, 0);
        stResult.iCode = WIFEXITED(iStatus) ? WEXITSTATUS(iStatus) : 128 + WTERMSIG(iStatus);
    }
    posix_spawn_file_actions_destroy(&stActions);
    stResult.strOut = Read_File(strOut);
    stResult.strErr = Read_File(strErr);
    return stResult;
}

RunResult Run_Zyrsub(std::vector<std::string> astrArguments)
{
    astrArguments.insert(astrArguments.begin(), ZYRSUB_PROGRAM);
    return Run_Program(std::move(astrArguments));
}

std::string Sample(const std::string &strName)
{
    return std::string(ZYR_SAMPLES) + "/" + strName;
}
