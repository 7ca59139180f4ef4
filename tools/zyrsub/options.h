// What the command line asks for.
#ifndef ZYRSUB_OPTIONS_H
#define ZYRSUB_OPTIONS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "output_mode.h"
#include "subtitle_source.h"

struct ReportOptions {
    bool bJson = false;
    bool bTogether = false;
    std::optional<uint32_t> uiFrom;  // ms
    std::optional<uint32_t> uiTo;    // ms
    std::optional<uint32_t> uiCount; // frames
};

struct ScreenOptions {
    const OutputMode *pstOutput = nullptr;
    uint32_t uiFontSize = 0; // 0: the output's own
    std::optional<uint32_t> uiPosition;
    std::string strBackground;
};

struct RenderOptions {
    std::optional<uint32_t> uiAt; // ms
    std::string strPicture;
    std::string strSheet;
    bool bAll = false; // says what --sheet does anyway
};

struct PlayOptions {
    uint32_t uiFrom = 0; // ms
    double dSpeed = 1;
    bool bTerminal = false;
};

struct OutputFormat;

struct ConvertOptions {
    std::string strFile; // "-": standard output
    std::string strTo;
    std::string strEncoding = "UTF-8";
    std::vector<std::string> astrClassNames;
    const OutputFormat *pstFormat = nullptr;
    int64_t llShift = 0; // ms
    double dScale = 1;
    bool bForce = false;
};

struct Options {
    SourceOptions stSource;
    ReportOptions stReport;
    ScreenOptions stScreen;
    RenderOptions stRender;
    PlayOptions stPlay;
    ConvertOptions stConvert;
    int iVerbose = 0; // 1: the library's errors, 2: all it logs
    std::vector<std::string> astrMovies;
};

#endif
