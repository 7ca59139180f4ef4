/* What the order and the classes of a SAMI file cost. Each file of about 10 MB is opened, read to its end and
 * closed, in turn with the plain one; the figures are the medians of
 *
 *   ms     processor time
 *   x      times the plain file: one class, SYNC times in file order
 *   limit  most that x may be; a higher one makes the program fail
 *
 * usage: sami_bench [MEGABYTES] [ROUNDS]
 */
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "zyr/zyr_subtitle.h"

namespace
{

constexpr uint32_t ENTRY_BYTES = 110; // about

/** One SYNC tag. */
struct Entry {
    uint32_t uiTime; // ms
    const char *pszClass;
    const char *pszSecondClass; // a second P tag in the same SYNC; NULL: none
};

using Entries = std::vector<Entry>;

struct File {
    const char *pszName;
    Entries (*pfMake)(uint32_t uiNums);
    double dLimit; // most times the plain file; 0 = the plain file itself
    std::string strPath;
    std::vector<double> vdSeconds;
};

Entries Make_InOrder(uint32_t uiNums)
{
    Entries vstEntries(uiNums);
    for (uint32_t uiEntry = 0; uiEntry < uiNums; ++uiEntry)
        vstEntries[uiEntry] = {uiEntry * 50, "KRCC", nullptr};
    return vstEntries;
}

Entries Make_Shuffled(uint32_t uiNums)
{
    std::vector<uint32_t> vuiTimes(uiNums);
    std::iota(vuiTimes.begin(), vuiTimes.end(), 0u);
    std::shuffle(vuiTimes.begin(), vuiTimes.end(), std::mt19937(7));
    Entries vstEntries = Make_InOrder(uiNums);
    for (uint32_t uiEntry = 0; uiEntry < uiNums; ++uiEntry)
        vstEntries[uiEntry].uiTime = vuiTimes[uiEntry] * 50;
    return vstEntries;
}

Entries Make_PairsSwapped(uint32_t uiNums)
{
    Entries vstEntries = Make_InOrder(uiNums);
    for (uint32_t uiEntry = 0; uiEntry + 1 < uiNums; uiEntry += 2)
        std::swap(vstEntries[uiEntry].uiTime, vstEntries[uiEntry + 1].uiTime);
    return vstEntries;
}

Entries Make_Descending(uint32_t uiNums)
{
    Entries vstEntries = Make_InOrder(uiNums);
    std::reverse(vstEntries.begin(), vstEntries.end());
    return vstEntries;
}

/** Four classes of 40 frames each, whose frames stand together at one place, beside a dense one. */
Entries Make_Sparse(uint32_t uiNums, uint32_t uiFirst)
{
    constexpr const char *SPARSE_NAMES[] = {"ENCC", "FRCC", "JPCC", "DECC"};
    constexpr uint32_t SPARSE_FRAMES = 40;
    Entries vstEntries = Make_InOrder(uiNums);
    for (uint32_t uiEntry = 0; uiEntry < 4 * SPARSE_FRAMES; ++uiEntry)
        vstEntries[uiFirst + uiEntry].pszClass = SPARSE_NAMES[uiEntry % 4];
    return vstEntries;
}

Entries Make_SparseFront(uint32_t uiNums)
{
    return Make_Sparse(uiNums, 40);
}

Entries Make_SparseBack(uint32_t uiNums)
{
    return Make_Sparse(uiNums, uiNums - 200);
}

/** Every SYNC tag belongs to the second of its two P tags, which nothing reaches but the last one. */
Entries Make_TwoParagraphs(uint32_t uiNums)
{
    Entries vstEntries = Make_InOrder(uiNums);
    for (Entry &stEntry : vstEntries) stEntry.pszSecondClass = "ENCC";
    vstEntries.back() = {uiNums * 50, "ENCC", nullptr};
    return vstEntries;
}

std::string Make_Text(const Entries &vstEntries)
{
    std::string strText = "<SAMI>\r\n<BODY>\r\n";
    for (const Entry &stEntry : vstEntries) {
        strText += "<SYNC Start=" + std::to_string(stEntry.uiTime) + "><P Class=" + stEntry.pszClass +
                   ">\r\n나는 오늘 학교에서 집으로 갔습니다<br>그런데 <i>아무도</i> 없었어요";
        if (stEntry.pszSecondClass != nullptr)
            strText += std::string("<P Class=") + stEntry.pszSecondClass + ">";
        strText += "\r\n";
    }
    return strText + "</BODY>\r\n</SAMI>\r\n";
}

void Write_File(const std::string &strPath, const std::string &strText)
{
    FILE *const pstFile = fopen((strPath + ".smi").c_str(), "wb");
    if (pstFile == nullptr || fwrite(strText.data(), 1, strText.size(), pstFile) != strText.size() ||
        fclose(pstFile) != 0) {
        fprintf(stderr, "cannot write %s.smi\n", strPath.c_str());
        exit(1);
    }
}

/** @return frames of the file. */
uint32_t Play_File(const std::string &strPath)
{
    if (zyrSubtitle_open((strPath + ".avi").c_str(), 0) != 0) {
        fprintf(stderr, "cannot open %s.smi\n", strPath.c_str());
        exit(1);
    }
    uint32_t uiFrames = 0;
    uint32_t uiStream = 0;
    int32_t iStart = 0;
    int32_t iEnd = 0;
    uint32_t uiLines = 0;
    uint32_t uiBytes = 0;
    uint8_t *pucText = nullptr;
    while (zyrSubtitle_getFrame(&uiStream, &iStart, &iEnd, &uiLines, &uiBytes, &pucText) == 0) ++uiFrames;
    zyrSubtitle_close();
    return uiFrames;
}

double Get_Seconds()
{
    timespec stTime = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &stTime);
    return static_cast<double>(stTime.tv_sec) + static_cast<double>(stTime.tv_nsec) * 1e-9;
}

double Get_Median(std::vector<double> vdValues)
{
    std::nth_element(vdValues.begin(), vdValues.begin() + vdValues.size() / 2, vdValues.end());
    return vdValues[vdValues.size() / 2];
}

/** @return whether the limit is kept. */
bool Print_File(const File &stFile, const File &stPlain, uint32_t uiFrames)
{
    std::vector<double> vdRatios;
    for (size_t uiRound = 0; uiRound < stFile.vdSeconds.size(); ++uiRound)
        vdRatios.push_back(stFile.vdSeconds[uiRound] / stPlain.vdSeconds[uiRound]);
    const double dRatio = Get_Median(vdRatios);
    const bool bKept = stFile.dLimit == 0 || dRatio <= stFile.dLimit;
    printf("%-16s %8u frames %8.1f ms %6.2f x   limit %.1f%s\n", stFile.pszName, uiFrames,
           Get_Median(stFile.vdSeconds) * 1e3, dRatio, stFile.dLimit, bKept ? "" : "   EXCEEDED");
    return bKept;
}

} // namespace

int main(int iArguments, char **ppszArguments)
{
    const int iMegabytes = iArguments > 1 ? atoi(ppszArguments[1]) : 10;
    const int iRounds = iArguments > 2 ? atoi(ppszArguments[2]) : 7;
    const uint32_t uiEntries = static_cast<uint32_t>(std::max(iMegabytes, 1)) * 1000000u / ENTRY_BYTES;
    File astFiles[] = {
        {"in order", Make_InOrder, 0, {}, {}},
        {"shuffled", Make_Shuffled, 2, {}, {}},
        {"pairs swapped", Make_PairsSwapped, 2, {}, {}},
        {"descending", Make_Descending, 2, {}, {}},
        {"sparse in front", Make_SparseFront, 2, {}, {}},
        {"sparse at end", Make_SparseBack, 2, {}, {}},
        {"two P per SYNC", Make_TwoParagraphs, 2, {}, {}},
    };
    std::string strFolder = (std::filesystem::temp_directory_path() / "sami_bench_XXXXXX").string();
    if (mkdtemp(strFolder.data()) == nullptr) return 1;
    for (File &stFile : astFiles) {
        stFile.strPath = strFolder + "/" + stFile.pszName;
        Write_File(stFile.strPath, Make_Text(stFile.pfMake(uiEntries)));
    }
    bool bKept = true;
    std::vector<uint32_t> vuiFrames;
    for (int iRound = 0; iRound <= std::max(iRounds, 1); ++iRound) {
        for (File &stFile : astFiles) {
            const double dStart = Get_Seconds();
            const uint32_t uiFrames = Play_File(stFile.strPath);
            if (iRound == 0) // to warm up
                vuiFrames.push_back(uiFrames);
            else
                stFile.vdSeconds.push_back(Get_Seconds() - dStart);
        }
    }
    for (size_t uiFile = 0; uiFile < std::size(astFiles); ++uiFile)
        bKept = Print_File(astFiles[uiFile], astFiles[0], vuiFrames[uiFile]) && bKept;
    std::filesystem::remove_all(strFolder);
    return bKept ? 0 : 1;
}
