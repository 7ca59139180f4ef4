/* Run a target over files: replay [--tell] FOLDER... A file that breaks a promise ends the run, named. With --tell each
 * name comes with a number that stands for all that was seen of the file, so that machines can be compared. */

#include <algorithm>
#include <cinttypes>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz_input.h"

namespace
{

void Add_Files(std::vector<std::filesystem::path> &vecFiles, const char *pszFolder)
{
    for (const auto &stEntry : std::filesystem::directory_iterator(pszFolder))
        if (stEntry.is_regular_file()) vecFiles.push_back(stEntry.path());
}

void Replay(const std::filesystem::path &stPath)
{
    std::ifstream stFile(stPath, std::ios::binary);
    const std::vector<char> vecBytes((std::istreambuf_iterator<char>(stFile)), {});
    std::printf("%s", stPath.filename().c_str());
    std::fflush(stdout); // the last name is the one that broke
    g_ullSeen = 0xCBF29CE484222325u;
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(vecBytes.data()), vecBytes.size());
    if (g_bTelling) std::printf(" %016" PRIx64, g_ullSeen);
    std::printf("\n");
}

} // namespace

int main(int iArguments, char **ppszArguments)
{
    g_bTelling = iArguments > 1 && std::strcmp(ppszArguments[1], "--tell") == 0;
    std::vector<std::filesystem::path> vecFiles;
    for (int iFolder = g_bTelling ? 2 : 1; iFolder < iArguments; ++iFolder)
        Add_Files(vecFiles, ppszArguments[iFolder]);
    std::sort(vecFiles.begin(), vecFiles.end());
    for (const std::filesystem::path &stPath : vecFiles) Replay(stPath);
    std::printf("%zu inputs\n", vecFiles.size());
    return vecFiles.empty() ? 1 : 0;
}
