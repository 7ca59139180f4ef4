// Runs programs for the tests: what they print and how they end.
#ifndef ZYR_TESTS_RUN_PROGRAM_H
#define ZYR_TESTS_RUN_PROGRAM_H

#include <filesystem>
#include <string>
#include <vector>

struct RunResult {
    int iCode = -1; // exit code, or 128 + signal
    std::string strOut;
    std::string strErr;
};

// A folder of this test alone, removed when it goes.
class TestFolder
{
public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder &) = delete;
    TestFolder &operator=(const TestFolder &) = delete;

    std::string Path(const std::string &strName) const { return (m_stPath / strName).string(); }
    void Write(const std::string &strName, const std::string &strBytes) const;

private:
    std::filesystem::path m_stPath;
};

std::string Read_File(const std::string &strPath);

RunResult Run_Program(std::vector<std::string> astrArguments);
RunResult Run_Zyrsub(std::vector<std::string> astrArguments);

std::string Sample(const std::string &strName);

#endif
