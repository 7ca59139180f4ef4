/* Run a target over the files of its corpus: replay FOLDER. A file that breaks a promise ends the run, named. */

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz_input.h"

namespace
{

std::vector<std::filesystem::path> List_Files(const char *pszFolder)
{
    std::vector<std::filesystem::path> vecFiles;
    for (const auto &stEntry : std::filesystem::directory_iterator(pszFolder))
        if (stEntry.is_regular_file()) vecFiles.push_back(stEntry.path());
    std::sort(vecFiles.begin(), vecFiles.end());
    return vecFiles;
}

} // namespace

int main(int iArguments, char **ppszArguments)
{
    if (iArguments != 2 || !std::filesystem::is_directory(ppszArguments[1])) {
        std::fprintf(stderr, "replay: one folder of inputs\n");
        return 2;
    }
    const std::vector<std::filesystem::path> vecFiles = List_Files(ppszArguments[1]);
    for (const std::filesystem::path &stPath : vecFiles) {
        std::ifstream stFile(stPath, std::ios::binary);
        const std::vector<char> vecBytes((std::istreambuf_iterator<char>(stFile)), {});
        std::printf("%s\n", stPath.filename().c_str());
        std::fflush(stdout); // the last name is the one that broke
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(vecBytes.data()), vecBytes.size());
    }
    std::printf("%zu inputs\n", vecFiles.size());
    return vecFiles.empty() ? 1 : 0;
}
