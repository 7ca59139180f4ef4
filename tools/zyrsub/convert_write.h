// Captions written as files of other formats.
#ifndef ZYRSUB_CONVERT_WRITE_H
#define ZYRSUB_CONVERT_WRITE_H

#include <span>
#include <string>

#include "convert_track.h"

struct OutputFormat {
    const char *pszName;    // for --to
    const char *pszTitle;   // for people
    const char *pszEndings; // in lower case, each between blanks
    bool bSeveral;          // holds several languages
    bool bForPlayers;       // the box reads it
    bool bCodePages;        // may be something else than UTF-8
    std::string (*pfWrite)(std::span<const Track>, int32_t iOpenMs, Losses &);
};

std::span<const OutputFormat> List_OutputFormats();

// By its name for --to, or by a file's ending (".srt"), in any letter case; NULL for any other text.
const OutputFormat *Find_OutputFormat(const std::string &strNameOrEnding);

// The encoding to write in for a name of it: UTF-8, UTF-16LE, UTF-16BE, or a code page that has ASCII in its own
// places, as iconv calls it; empty for what no player reads.
std::string Choose_Encoding(const std::string &strName);

bool Is_Unicode(const std::string &strEncoding);

// The text, which is UTF-8, in a chosen encoding; what it cannot hold becomes "?"; the tracks tell in how many
// captions.
std::string Encode_Text(const std::string &strUtf8, const std::string &strEncoding,
                        const OutputFormat &stFormat, bool bMark, Losses &stLosses,
                        std::span<const Track> astTracks);

// The writers. All but SAMI and JSON take one track. A caption whose end is open stays until the next one, or for
// iOpenMs (ms).
std::string Write_SubRip(std::span<const Track> astTracks, int32_t iOpenMs, Losses &stLosses);
std::string Write_WebVtt(std::span<const Track> astTracks, int32_t iOpenMs, Losses &stLosses);
std::string Write_Sami(std::span<const Track> astTracks, int32_t iOpenMs, Losses &stLosses);
std::string Write_Ssa(std::span<const Track> astTracks, int32_t iOpenMs, Losses &stLosses);
std::string Write_Json(std::span<const Track> astTracks, int32_t iOpenMs, Losses &stLosses);
std::string Write_Text(std::span<const Track> astTracks, int32_t iOpenMs, Losses &stLosses);

// What a format with tags and folded blanks loses of every track; bColor: its tags know colours.
void Note_MarkupLosses(const Track &stTrack, bool bColor, Losses &stLosses);

// The text of a SAMI paragraph.
std::string Escape_SamiText(const Frame &stFrame);

#endif
