// What both elements ask of a subtitle file: the list with the settings of a user, a class by its name, and what a
// class shows from when until when.
#ifndef ZYR_GST_CAPTION_SOURCE_H
#define ZYR_GST_CAPTION_SOURCE_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zyr/zyr_captions.h"

using CaptionsPtr = std::unique_ptr<ZyrCaptions, void (*)(ZyrCaptions *)>;

struct SourceSettings {
    std::string strCodePage;   // empty: found out
    bool bBoxLineEnds = false; // only CR LF ends a line
};

// A list, good or not, as zyrCaptions_getError() tells; null without memory.
CaptionsPtr Load_File(const std::string &strPath, const SourceSettings &stSettings);
CaptionsPtr Load_Bytes(const void *pvData, size_t uiBytes, const SourceSettings &stSettings);

// By name in any letter case, by a folded name, by "(unnamed)", or by number. An empty name is ZYR_CAPTIONS_ALL.
std::optional<uint32_t> Find_Class(const ZyrCaptions *pstCaptions, const std::string &strName);

// As players show a class: its name, or "(unnamed)".
std::string Get_ClassTitle(const ZyrCaptions *pstCaptions, uint32_t uiClass);

// From when until when a class shows something. Spans of a class follow each other without overlap; without
// markup nothing is shown.
struct CaptionSpan {
    int32_t iStart; // ms
    int32_t iEnd;   // ms; ZYR_CAPTIONS_OPEN_END: as long as the film lasts
    std::string strMarkup;
};

// From 0 to the last end, without a gap. Captions on screen together stand below each other.
std::vector<CaptionSpan> List_Spans(const ZyrCaptions *pstCaptions, uint32_t uiClass);

#endif
