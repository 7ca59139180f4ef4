/* What an SSA file costs, read from a real file in several shapes of the same size, in processor time:
 *
 *   open      the header pass: encoding, index, styles
 *   frames    every frame from a seek to 0 on
 *   x_read    both together, times reading the file in 64 KiB blocks
 *   x_naive   both together, times a byte-at-a-time pass that looks for line ends and sums digits
 *   x_plain   both together, times the file with its lines in time order and five styles
 *   bytes     bytes read from the file, for each of its bytes
 *   allocs    allocations while the frames are read
 *
 * and a seek to a random time with the frame behind it, times seeking the file and reading 64 KiB of it.
 * Usage: ssa_bench [megabytes]
 */
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "zyr/zyr_host.h"
#include "zyr/zyr_subtitle.h"

namespace
{

constexpr uint32_t ROUNDS = 5;
constexpr uint32_t BLOCK_BYTES = 65536;
constexpr uint32_t LINE_BYTES = 104; // of one Dialogue line, about
const char *const MOVIE = "zyrhost:bench.avi";
const char *const SUBTITLE = "zyrhost:bench.ssa";

/** The shape of a file: the start times of its lines, and its styles. */
struct Shape {
    const char *pszName;
    uint32_t uiStyles;
    std::function<void(std::vector<uint32_t> &)> fnOrder; // of the lines
};

std::string Get_Time(uint32_t uiMs)
{
    char szTime[32];
    snprintf(szTime, sizeof(szTime), "%u:%02u:%02u.%02u", uiMs / 3600000 % 10, uiMs / 60000 % 60,
             uiMs / 1000 % 60, uiMs / 10 % 100);
    return szTime;
}

std::string Make_Text(const Shape &stShape, uint32_t uiBytes)
{
    std::string strText = "[Script Info]\r\nTitle: Bench\r\nScriptType: v4.00\r\n\r\n[v4 Styles]\r\n";
    for (uint32_t uiStyle = 0; uiStyle < stShape.uiStyles; ++uiStyle)
        strText += "Style: S" + std::to_string(1000000 + uiStyle) +
                   ",Arial,20,16777215,65535,255,0,-1,0,1,2,0,2,10,10,10,0,0\r\n";
    strText += "\r\n[Events]\r\nFormat: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, "
               "Text\r\n";
    std::vector<uint32_t> vuiLines((uiBytes - std::min<size_t>(uiBytes, strText.size())) / LINE_BYTES + 1);
    std::iota(vuiLines.begin(), vuiLines.end(), 1);
    stShape.fnOrder(vuiLines);
    const uint32_t uiStep =
        std::min<uint32_t>(400, 9 * 3600000 / static_cast<uint32_t>(vuiLines.size()) / 10 * 10);
    std::minstd_rand stGenerator(1);
    const auto fnRandom = [&] { return static_cast<uint32_t>(stGenerator()); };
    for (const uint32_t uiLine : vuiLines) {
        const uint32_t uiStyle = stShape.uiStyles - 1 - fnRandom() % std::min(stShape.uiStyles, 5000u);
        strText += "Dialogue: Marked=0," + Get_Time(uiLine * uiStep) + "," + Get_Time(uiLine * uiStep + 900) +
                   ",S" + std::to_string(1000000 + uiStyle) + ",NTP,0000,0000,0000,,";
        strText += uiLine % 3 == 0 ? "{\\i1}A line of text to be read\\Nand one more\r\n"
                                   : "A line of text \xEC\x95\x88\xEB\x85\x95 to be read at once\r\n";
    }
    return strText;
}

double Get_Now()
{
    timespec stTime = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &stTime);
    return static_cast<double>(stTime.tv_sec) * 1e6 + static_cast<double>(stTime.tv_nsec) / 1e3;
}

/** Processor time of a piece of work, in microseconds. */
template <typename Work>
double Time_Work(Work fnWork)
{
    const double dStart = Get_Now();
    fnWork();
    return Get_Now() - dStart;
}

double Get_Median(std::vector<double> vdValues)
{
    std::sort(vdValues.begin(), vdValues.end());
    return vdValues[vdValues.size() / 2];
}

volatile uint32_t g_uiSink = 0;

void Read_File(const std::string &strPath, bool bNaive)
{
    static std::vector<uint8_t> vucBlock(BLOCK_BYTES);
    const int iFile = open(strPath.c_str(), O_RDONLY);
    uint32_t uiSum = 0;
    uint32_t uiMatched = 0;
    for (ssize_t iRead = 0; (iRead = read(iFile, vucBlock.data(), BLOCK_BYTES)) > 0;)
        for (ssize_t iPos = 0; bNaive && iPos < iRead; ++iPos) {
            const uint8_t ucByte = vucBlock[static_cast<size_t>(iPos)];
            if (ucByte == (uiMatched == 0 ? 0x0D : 0x0A))
                uiMatched ^= 1;
            else
                uiMatched = 0;
            if (ucByte >= '0' && ucByte <= '9') uiSum = uiSum * 10 + ucByte - '0';
            g_uiSink = uiSum;
        }
    close(iFile);
}

void Check(bool bGood, const char *pszWhat)
{
    if (bGood) return;
    fprintf(stderr, "%s failed\n", pszWhat);
    exit(1);
}

bool Get_Frame()
{
    uint32_t uiStream = 0;
    uint32_t uiLines = 0;
    uint32_t uiLength = 0;
    int32_t iStart = 0;
    int32_t iEnd = 0;
    uint8_t *pucText = nullptr;
    return zyrSubtitle_getFrame(&uiStream, &iStart, &iEnd, &uiLines, &uiLength, &pucText) == 0;
}

struct Reading {
    double dOpen;   // microseconds
    double dFrames; // likewise
    uint32_t uiFrames;
    uint32_t uiAllocs; // while the frames were read
    double dBytes;     // read from the file
};

int32_t Count_Read(int iCall, uint32_t uiAsked, int32_t iReal, void *pvContext)
{
    if (iCall == ZYR_HOST_READ) *static_cast<double *>(pvContext) += uiAsked;
    return iReal;
}

Reading Read_Subtitle()
{
    Reading stReading = {};
    zyr_host_setFileHook(Count_Read, &stReading.dBytes);
    stReading.dOpen = Time_Work([] { Check(zyrSubtitle_open(MOVIE, 0) == 0, "open"); });
    const uint32_t uiAllocs = zyr_host_allocations();
    stReading.dFrames = Time_Work([&] {
        Check(zyrSubtitle_seek(0) == 0, "seek");
        while (Get_Frame()) ++stReading.uiFrames;
    });
    stReading.uiAllocs = zyr_host_allocations() - uiAllocs;
    zyr_host_setFileHook(nullptr, nullptr);
    zyrSubtitle_close();
    return stReading;
}

/** A shape's file on disk. */
struct File {
    std::string strPath;
    double dBytes;
    Reading stLast;
    std::vector<double> vdOpen;
    std::vector<double> vdFrames;
    std::vector<double> vdRead;
    std::vector<double> vdNaive;
    std::vector<double> vdPlain;
};

File Write_File(const std::string &strFolder, const Shape &stShape, uint32_t uiBytes)
{
    File stFile = {};
    const std::string strText = Make_Text(stShape, uiBytes);
    stFile.strPath = strFolder + "/" + stShape.pszName + ".ssa";
    stFile.dBytes = static_cast<double>(strText.size());
    FILE *const pstFile = fopen(stFile.strPath.c_str(), "wb");
    Check(pstFile != nullptr && fwrite(strText.data(), 1, strText.size(), pstFile) == strText.size(),
          "write");
    fclose(pstFile);
    return stFile;
}

void Measure_Seeks(const File &stFile)
{
    constexpr uint32_t SEEKS = 20000;
    std::minstd_rand stGenerator(2);
    const auto fnRandom = [&] { return static_cast<uint32_t>(stGenerator()); };
    zyr_host_mapFile(SUBTITLE, stFile.strPath.c_str());
    Check(zyrSubtitle_open(MOVIE, 0) == 0, "open");
    const double dSeeks = Time_Work([&] {
        for (uint32_t uiSeek = 0; uiSeek < SEEKS; ++uiSeek) {
            zyrSubtitle_seek(0); // a cursor at the end would stay there
            zyrSubtitle_seek(1000 + fnRandom() % 30000000);
            Get_Frame();
        }
    });
    zyrSubtitle_close();
    std::vector<uint8_t> vucBlock(BLOCK_BYTES);
    const int iFile = open(stFile.strPath.c_str(), O_RDONLY);
    const double dReads = Time_Work([&] {
        for (uint32_t uiSeek = 0; uiSeek < SEEKS; ++uiSeek) {
            lseek(iFile, static_cast<off_t>(fnRandom() % static_cast<uint32_t>(stFile.dBytes)), SEEK_SET);
            if (read(iFile, vucBlock.data(), BLOCK_BYTES) < 0) return;
        }
    });
    close(iFile);
    printf("seek to 0, seek to a random time, next frame: %.2f us, x_io %.2f\n", dSeeks / SEEKS,
           dSeeks / dReads);
}

const std::vector<Shape> SHAPES = {
    {"plain", 5, [](std::vector<uint32_t> &) {}},
    {"descending", 5,
     [](std::vector<uint32_t> &vuiLines) { std::reverse(vuiLines.begin(), vuiLines.end()); }},
    {"shuffled", 5,
     [](std::vector<uint32_t> &vuiLines) {
         std::shuffle(vuiLines.begin(), vuiLines.end(), std::mt19937(3));
     }},
    {"two_runs", 5,
     [](std::vector<uint32_t> &vuiLines) {
         std::stable_partition(vuiLines.begin(), vuiLines.end(),
                               [](uint32_t uiLine) { return uiLine % 2 == 0; });
     }},
    {"pairs_swapped", 5,
     [](std::vector<uint32_t> &vuiLines) {
         for (size_t uiLine = 1; uiLine < vuiLines.size(); uiLine += 2)
             std::swap(vuiLines[uiLine], vuiLines[uiLine - 1]);
     }},
    {"5000_styles", 5000, [](std::vector<uint32_t> &) {}},
    {"half_styles", 0, [](std::vector<uint32_t> &) {}}, // the number follows from the size
};

} // namespace

int main(int iArguments, char **ppszArguments)
{
    const uint32_t uiBytes = static_cast<uint32_t>(iArguments > 1 ? atoi(ppszArguments[1]) : 10) * 1000000;
    char szFolder[] = "/tmp/ssa_benchXXXXXX";
    Check(mkdtemp(szFolder) != nullptr, "mkdtemp");
    std::vector<File> vstFiles;
    for (Shape stShape : SHAPES) {
        if (stShape.uiStyles == 0) stShape.uiStyles = uiBytes / 2 / 75;
        vstFiles.push_back(Write_File(szFolder, stShape, uiBytes));
    }
    for (uint32_t uiRound = 0; uiRound < ROUNDS; ++uiRound) {
        double dPlain = 0;
        for (File &stFile : vstFiles) {
            zyr_host_mapFile(SUBTITLE, stFile.strPath.c_str());
            stFile.stLast = Read_Subtitle();
            const double dAll = stFile.stLast.dOpen + stFile.stLast.dFrames;
            if (&stFile == vstFiles.data()) dPlain = dAll;
            stFile.vdOpen.push_back(stFile.stLast.dOpen);
            stFile.vdFrames.push_back(stFile.stLast.dFrames);
            stFile.vdPlain.push_back(dAll / dPlain);
            stFile.vdRead.push_back(dAll / Time_Work([&] { Read_File(stFile.strPath, false); }));
            stFile.vdNaive.push_back(dAll / Time_Work([&] { Read_File(stFile.strPath, true); }));
        }
    }
    printf("%-14s %8s %9s %9s %7s %7s %7s %7s %6s\n", "file", "frames", "open us", "frames us", "x_read",
           "x_naive", "x_plain", "bytes", "allocs");
    for (size_t uiFile = 0; uiFile < vstFiles.size(); ++uiFile) {
        const File &stFile = vstFiles[uiFile];
        printf("%-14s %8u %9.0f %9.0f %7.2f %7.2f %7.2f %7.2f %6u\n", SHAPES[uiFile].pszName,
               stFile.stLast.uiFrames, Get_Median(stFile.vdOpen), Get_Median(stFile.vdFrames),
               Get_Median(stFile.vdRead), Get_Median(stFile.vdNaive), Get_Median(stFile.vdPlain),
               stFile.stLast.dBytes / stFile.dBytes, stFile.stLast.uiAllocs);
    }
    Measure_Seeks(vstFiles.front());
    for (const File &stFile : vstFiles) unlink(stFile.strPath.c_str());
    rmdir(szFolder);
    return 0;
}
