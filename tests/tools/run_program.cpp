#include "run_program.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>
#include <sys/wait.h>

using nlohmann::json;

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

std::string Sample(const std::string &strName)
{
    return std::string(ZYR_SAMPLES) + "/" + strName;
}

std::vector<std::string> List_Samples()
{
    std::vector<std::string> astrNames;
    for (const auto &stEntry : std::filesystem::directory_iterator(ZYR_SAMPLES))
        if (stEntry.is_regular_file() && stEntry.path().filename() != "README.md")
            astrNames.push_back(stEntry.path().filename());
    return astrNames;
}

RunResult Run_Program(const std::string &strCommand)
{
    const TestFolder stFolder;
    const std::string strAll = "cd '" ZYR_SAMPLES "' && { " + strCommand + "; } </dev/null >" +
                               stFolder.Path("out") + " 2>" + stFolder.Path("err");
    const int iStatus = std::system(strAll.c_str());
    return {WIFEXITED(iStatus) ? WEXITSTATUS(iStatus) : 128 + WTERMSIG(iStatus),
            Read_File(stFolder.Path("out")), Read_File(stFolder.Path("err"))};
}

RunResult Run_Zyrsub(const std::string &strArguments)
{
    return Run_Program("'" ZYRSUB_PROGRAM "' " + strArguments);
}

json Run_Json(const std::string &strArguments, int iCode)
{
    const RunResult stRun = Run_Zyrsub(strArguments);
    EXPECT_EQ(stRun.iCode, iCode) << strArguments << ": " << stRun.strErr;
    json jsDocument = json::parse(stRun.strOut, nullptr, false);
    EXPECT_FALSE(jsDocument.is_discarded()) << strArguments << ": " << stRun.strOut;
    return jsDocument;
}

void Expect_Values(const json &jsDocument, const json &jsValues)
{
    json jsSeen;
    for (const auto &stValue : jsValues.items()) {
        const json::json_pointer stPlace(stValue.key());
        jsSeen[stValue.key()] = jsDocument.contains(stPlace) ? jsDocument.at(stPlace) : json("(nothing)");
    }
    EXPECT_EQ(jsSeen, jsValues);
}
