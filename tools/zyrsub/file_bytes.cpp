#include "file_bytes.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <sys/stat.h>

std::optional<std::string> Read_Bytes(const std::string &strPath, size_t uiMost)
{
    struct stat stStat = {}; // opening a pipe would wait for its writer
    if (stat(strPath.c_str(), &stStat) != 0 || !S_ISREG(stStat.st_mode)) return std::nullopt;
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> pstFile(std::fopen(strPath.c_str(), "rb"),
                                                                   std::fclose);
    if (!pstFile) return std::nullopt;
    std::array<char, 65536> acBlock = {};
    std::string strBytes;
    size_t uiRead = 1;
    while (uiRead > 0 && strBytes.size() < uiMost) {
        const size_t uiAsked = std::min(acBlock.size(), uiMost - strBytes.size());
        uiRead = std::fread(acBlock.data(), 1, uiAsked, pstFile.get());
        strBytes.append(acBlock.data(), uiRead);
    }
    if (std::ferror(pstFile.get()) != 0) return std::nullopt;
    return strBytes;
}
