// What the command line asks for.
#ifndef ZYRSUB_OPTIONS_H
#define ZYRSUB_OPTIONS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "caption_file.h"

struct ReportOptions {
    bool bJson = false;
    std::optional<uint32_t> uiTo;    // ms
    std::optional<uint32_t> uiCount; // frames
};

struct ScreenOptions {
    uint32_t uiOutput = 0;   // as zyrCaptions_getOutput() counts them
    uint32_t uiFontSize = 0; // 0: the output's own
    std::optional<uint32_t> uiPosition;
    std::string strBackground;
};

struct RenderOptions {
    std::optional<uint32_t> uiAt; // ms
    uint32_t uiWidth = 0;         // pixels of the picture; 0: the display's
    uint32_t uiHeight = 0;
    std::string strPicture;
    std::string strSheet;
    bool bForce = false;
    bool bAll = false; // says what --sheet does anyway
};

struct PlayOptions {
    uint32_t uiFrom = 0; // ms
    double dSpeed = 1;
    bool bTerminal = false;
};

struct LintOptions {
    std::string strFormat = "text"; // "json", "sarif", "junit"
    std::string strExplain;         // a code, or "all"
    std::string strOutput;          // empty: none is tried
    uint32_t uiLevel = 1;           // the least severity that is told
    uint32_t uiSpeed = 0;           // characters a second; 0: the usual ones
    uint32_t uiLongestMs = 0;       // the same
    uint32_t uiFontSize = 0;        // 0: the output's own
};

struct PageOptions {
    std::string strFile;                    // "-": standard output
    std::vector<uint32_t> auiOutputs = {0}; // as zyrCaptions_getOutput() counts them
    bool bForce = false;
};

struct FixOptions {
    std::string strFile; // a file, a folder for several inputs, "-": standard output
    bool bDryRun = false;
    bool bForce = false;
};

// The output, or one without a name; and how many there are.
ZyrCaptionOutput Get_Output(uint32_t uiOutput);
uint32_t Count_Outputs();

struct OutputFormat;

struct ConvertOptions {
    std::string strFile; // "-": standard output
    std::string strTo;
    std::string strEncoding = "UTF-8";
    std::vector<std::string> astrClassNames;
    const OutputFormat *pstFormat = nullptr;
    int64_t llShift = 0; // ms
    double dScale = 1;
    uint32_t uiOpenMs = 5000; // how long a caption stays whose end nothing tells
    bool bForce = false;
    bool bMark = false;       // a byte order mark before UTF-8
    bool bStrict = false;     // write nothing that loses text
    bool bSameIsGood = false; // a file that is there and holds what would be written is no failure
};

// Of a run through folders.
struct TreeOptions {
    std::string strResults;         // empty: results go to standard output
    std::optional<int64_t> llSince; // seconds since 1970
    uint32_t uiJobs = 0;            // 0: as many processes as there are cores
};

struct Options {
    SourceOptions stSource;
    ReportOptions stReport;
    ScreenOptions stScreen;
    RenderOptions stRender;
    PlayOptions stPlay;
    LintOptions stLint;
    PageOptions stPage;
    FixOptions stFix;
    ConvertOptions stConvert;
    TreeOptions stTree;
    bool bWatch = false; // report, play: go on with the file as it is written anew
    int iVerbose = 0;    // 1: the library's errors, 2: all it logs
    std::vector<std::string> astrMovies;
};

#endif
