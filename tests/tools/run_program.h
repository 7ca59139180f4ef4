// Runs programs for the tests, among the samples: what they print and how they end.
#ifndef ZYR_TESTS_RUN_PROGRAM_H
#define ZYR_TESTS_RUN_PROGRAM_H

#include <filesystem>
#include <nlohmann/json.hpp>
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
std::string Sample(const std::string &strName);
std::vector<std::string> List_Samples();

// A command of the shell, and one that is zyrsub's; the samples need no path.
RunResult Run_Program(const std::string &strCommand);
RunResult Run_Zyrsub(const std::string &strArguments);

// The one JSON document that zyrsub prints, however it ends.
nlohmann::json Run_Json(const std::string &strArguments, int iCode = 0);

// Each value stands at its place in the document, such as "/files/0/format".
void Expect_Values(const nlohmann::json &jsDocument, const nlohmann::json &jsValues);

#endif
