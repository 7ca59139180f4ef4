// Lists for tests.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "zyr/zyr_captions.h"

using ListPtr = std::unique_ptr<ZyrCaptions, void (*)(ZyrCaptions *)>;

inline ListPtr Load(const std::string &strPath, const ZyrCaptionsOptions &stOptions = {})
{
    return {zyrCaptions_load(strPath.c_str(), &stOptions), zyrCaptions_free};
}

inline ListPtr Load_Text(const std::string &strText, const char *pszName,
                         const ZyrCaptionsOptions &stOptions = {})
{
    return {zyrCaptions_loadMemory(strText.data(), strText.size(), pszName, &stOptions), zyrCaptions_free};
}

inline ZyrCaption Get(const ListPtr &pstList, uint32_t uiIndex)
{
    ZyrCaption stCaption;
    EXPECT_EQ(zyrCaptions_get(pstList.get(), uiIndex, &stCaption), ZYR_CAPTIONS_OK) << uiIndex;
    return stCaption;
}

inline ZyrCaptionsFile Get_File(const ListPtr &pstList)
{
    ZyrCaptionsFile stFile;
    zyrCaptions_getFile(pstList.get(), &stFile);
    return stFile;
}

inline std::string Sample(const std::string &strName)
{
    return ZYR_SAMPLES "/" + strName;
}

inline std::string Read_File(const std::string &strPath)
{
    std::ostringstream stBytes;
    stBytes << std::ifstream(strPath, std::ios::binary).rdbuf();
    return stBytes.str();
}

inline std::vector<std::string> List_Samples()
{
    std::vector<std::string> astrFiles;
    for (const auto &stEntry : std::filesystem::directory_iterator(ZYR_SAMPLES))
        if (stEntry.path().extension() != ".md") astrFiles.push_back(stEntry.path().string());
    EXPECT_GT(astrFiles.size(), 30U);
    return astrFiles;
}

inline std::string SubRip_Entry(int32_t iStart, int32_t iEnd, const std::string &strText)
{
    char szTimes[80];
    std::snprintf(szTimes, sizeof szTimes, "1\r\n%02d:%02d:%02d,%03d --> %02d:%02d:%02d,%03d\r\n",
                  iStart / 3600000, iStart / 60000 % 60, iStart / 1000 % 60, iStart % 1000, iEnd / 3600000,
                  iEnd / 60000 % 60, iEnd / 1000 % 60, iEnd % 1000);
    return szTimes + strText + "\r\n\r\n";
}
