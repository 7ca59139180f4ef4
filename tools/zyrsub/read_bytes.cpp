#include "read_bytes.h"

#include <cstdio>

static std::string Read_Rest(std::FILE *pstFile)
{
    std::string strBytes;
    char acPart[65536];
    for (size_t uiGot = 0; (uiGot = std::fread(acPart, 1, sizeof acPart, pstFile)) > 0;)
        strBytes.append(acPart, uiGot);
    return strBytes;
}

std::string Read_FileBytes(const std::string &strPath)
{
    std::FILE *const pstFile = std::fopen(strPath.c_str(), "rb");
    if (pstFile == nullptr) return "";
    std::string strBytes = Read_Rest(pstFile);
    std::fclose(pstFile);
    return strBytes;
}

std::string Read_Input()
{
    return Read_Rest(stdin);
}
