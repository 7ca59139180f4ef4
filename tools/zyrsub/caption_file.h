// One subtitle file as every command sees it: libzyrcaptions' list, in the words of this tool.
#ifndef ZYRSUB_CAPTION_FILE_H
#define ZYRSUB_CAPTION_FILE_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "exit_code.h"
#include "zyr/zyr_captions.h"

constexpr uint16_t WHITE = 0xFFFF; // RGB565, the colour of captions without one

constexpr const char *AUTO_CODE_PAGE = "auto"; // as an option: the likeliest code page of each file

// How to read a file; the same for every command.
struct SourceOptions {
    std::string strCodePage; // or AUTO_CODE_PAGE; empty: nobody said, and it is Korean
    bool bSingleByte = false;
    bool bRawLineEnds = false;
    std::vector<std::string> astrClasses; // names or indexes, in order; empty: all
    uint32_t uiFromMs = 0;
    bool bTogether = false;
    bool bVerbose = false; // the engine's messages go to standard error: its errors
    bool bAllOfLog = false;
};

// The same as the library takes it; the source options outlive it.
class LoadOptions
{
public:
    explicit LoadOptions(const SourceOptions &stSource);
    LoadOptions(const LoadOptions &) = delete;
    LoadOptions &operator=(const LoadOptions &) = delete;
    const ZyrCaptionsOptions *Get() const { return &m_stOptions; }

private:
    std::string m_strCodePage;
    std::vector<const char *> m_apszClasses;
    ZyrCaptionsOptions m_stOptions = {};
};

struct Frame {
    uint32_t uiClass = 0; // ZYR_CAPTIONS_ALL: the classes' texts joined
    int32_t iStart = 0;   // ms
    int32_t iEnd = 0;     // ms; ZYR_CAPTIONS_OPEN_END
    std::vector<std::string> astrLines;
    ZyrCaptionStyle stStyle = {};
    bool bPartStyled = false; // the author gave parts of it a style, which the list does not tell
};

class CaptionFile
{
public:
    // A movie, whose subtitle stands beside it, or a subtitle file itself; "-" is standard input.
    Outcome Open(const std::string &strMovie, const SourceOptions &stOptions);

    const ZyrCaptions *Get_List() const { return m_pstList.get(); }
    bool Is_Input() const { return !m_strInput.empty(); } // from standard input
    uint32_t Count() const { return zyrCaptions_count(Get_List()); }
    ZyrCaptionsFile Get_File() const;
    ZyrCaptionClass Get_Class(uint32_t uiClass) const;
    ZyrCaption Get_Caption(uint32_t uiIndex) const;
    Frame Read_Frame(uint32_t uiIndex) const;
    std::string Get_ClassName(uint32_t uiClass) const; // empty for none, and for those joined
    std::vector<uint32_t> List_Classes() const;        // those that were read, in their order

    // The file as it is; empty when it is gone by now.
    std::string Read_Bytes() const;

    // Why there is no caption in it, in a few words; empty when there is one.
    std::string Explain_Empty() const;

    // When the last caption goes; one that never does counts a few seconds.
    int64_t Get_End() const;

private:
    std::string m_strInput; // what standard input gave
    std::unique_ptr<ZyrCaptions, void (*)(ZyrCaptions *)> m_pstList{nullptr, zyrCaptions_free};
};

// A message of the engine, on standard error.
void Print_LogLine(int iPriority, const char *pszTag, std::string strText, bool bAllOfLog);

// The text on screen at a time; ZYR_CAPTIONS_ALL for every class.
std::string Get_TextAt(const ZyrCaptions *pstList, int64_t llMs, uint32_t uiClass = ZYR_CAPTIONS_ALL);

#endif
