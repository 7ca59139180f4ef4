// One subtitle file, opened through the engine, and the frames a player gets from it.
#ifndef ZYRSUB_SUBTITLE_SOURCE_H
#define ZYRSUB_SUBTITLE_SOURCE_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "exit_code.h"
#include "text_convert.h"
#include "zyr/quib_caption.h"

// How to open a file; the same for every command.
struct SourceOptions {
    std::string strCodePage = "CP949"; // or AUTO_CODE_PAGE
    bool bSingleByte = false;
    bool bRawLineEnds = false;
    std::vector<std::string> astrClasses; // names or indexes, in order; empty: the engine's own choice
};

struct LanguageClass {
    std::string strName; // empty: the frames without a class
    std::vector<std::string> astrFolded;
    uint32_t uiFrames = 0;
    int32_t iFirst = 0; // ms; of no meaning without frames
    int32_t iLast = 0;
};

// What the frame's text ended with.
struct FrameStyle {
    uint32_t uiFontSize = 0;
    uint16_t usColor = 0;   // RGB565
    uint16_t usOutline = 0; // RGB565
    uint32_t uiHighlight = 0;
    uint32_t uiDisplayMode = 0;
};

constexpr uint32_t ALL_STREAMS = 0xFFFFFFFF;

struct Frame {
    uint32_t uiStream = 0; // ALL_STREAMS: the streams' texts joined
    uint32_t uiClass = 0;
    int32_t iStart = 0; // ms
    int32_t iEnd = 0;   // ms; OPEN_END
    std::vector<std::string> astrLines;
    FrameStyle stStyle;
};

// The engine holds one subtitle at a time, and so does this: the next Open() replaces the last.
class SubtitleSource
{
public:
    explicit SubtitleSource(SourceOptions stOptions) : m_stOptions(std::move(stOptions)) {}
    ~SubtitleSource() { Close(); }
    SubtitleSource(const SubtitleSource &) = delete;
    SubtitleSource &operator=(const SubtitleSource &) = delete;

    // A movie, whose subtitle stands beside it, or a subtitle file itself.
    Outcome Open(const std::string &strMovie);
    void Close();

    // The player's seek; false when the file could not be read there.
    bool Seek(uint32_t uiMs) const;

    // The next frame, or nothing at the end.
    std::optional<Frame> Read(bool bTogether) const;

    // The output block of the first frame with a byte from 0x80 on, as it came.
    std::vector<uint8_t> Read_HighText() const;

    // Every frame, in the order of a player that starts at 0.
    std::vector<Frame> Read_All() const;

    const std::string &Get_FileName() const { return m_strFile; }
    CaptionFormat Get_Format() const { return m_eFormat; }
    const std::string &Get_CodePage() const { return m_strCodePage; } // of this file, where it is ANSI
    bool Is_SingleByteRead() const { return m_bSingleByte; }
    const TextDecoder &Get_Decoder() const { return *m_stDecoder; }
    bool Has_Mark() const { return m_bMark; }
    std::string Get_Encoding() const;
    std::vector<LanguageClass> List_Classes() const;
    std::string Get_ClassName(uint32_t uiClass) const;
    static uint32_t Count_Classes();
    static uint32_t Count_Streams();
    static uint32_t Get_StreamClass(uint32_t uiStream);

private:
    Outcome Open_File(const std::string &strFile, const std::string &strEnding);
    Outcome Open_Beside(const std::string &strMovie);
    Outcome Open_Engine(const std::string &strName);
    void Choose_CodePage();
    Outcome Select_Classes();
    static std::optional<std::span<const uint8_t>> Read_Block(bool bTogether, Frame &stFrame);
    std::optional<uint32_t> Find_Class(const std::string &strWanted) const;
    Outcome Refuse_Class(const std::string &strWanted) const;
    std::string Decode_Name(const uint16_t *pusName, uint32_t uiUnits) const;
    void Count_Frames(LanguageClass &stClass) const;

    SourceOptions m_stOptions;
    std::string m_strFile;
    std::string m_strCodePage;
    bool m_bSingleByte = false;
    CaptionFormat m_eFormat = E_CAPTION_FORMAT_NONE;
    bool m_bMark = false;
    bool m_bBigEndian = false;
    std::optional<TextDecoder> m_stDecoder;
};

// The names that the engine tries for a movie's subtitle, in its order.
std::vector<std::string> List_NamesBeside(const std::string &strMovie);

// By its ending, in any letter case.
bool Is_SubtitleName(const std::string &strFile);

// Of ASCII letters alone, so that no locale has a say.
std::string Lower_Case(std::string strText);

// "(unnamed)" for the class of frames without one.
std::string Show_ClassName(const std::string &strName);

#endif
