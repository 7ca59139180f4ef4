// A file as a person reads it: one UTF-8 text with a newline for every line end, and the way back to the bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zyr/zyr_captions.h"

class CodePageReader;

enum LineEnd : uint8_t { E_END_NONE, E_END_CR_LF, E_END_LF, E_END_CR, E_END_CR_CR_LF };

struct PlainLine {
    size_t uiText; // where it begins in the text
    size_t uiFile; // and in the file
    LineEnd eEnd;
};

// A known place within a line, so that long lines are not read again and again.
struct PlainMark {
    size_t uiText;
    size_t uiFile;
    uint32_t uiColumn;
};

// As a person counts them, from 1.
struct PlainPlace {
    uint32_t uiLine;
    uint32_t uiColumn;
    size_t uiOffset;
};

class PlainFile
{
public:
    // strBytes must stay; stFile tells the encoding.
    PlainFile(std::string_view strBytes, const ZyrCaptionsFile &stFile);
    ~PlainFile();
    PlainFile(const PlainFile &) = delete;
    PlainFile &operator=(const PlainFile &) = delete;

    const std::string &Get_Text() const { return m_strText; }
    const std::string &Get_Lower() const { return m_strLower; } // ASCII letters alone
    const std::vector<PlainLine> &Get_Lines() const { return m_astLines; }
    std::string_view Get_Bytes() const { return m_strBytes; }

    size_t Find_Line(size_t uiText) const; // the line's index
    std::string_view Get_Line(size_t uiLine) const;
    PlainPlace Locate(size_t uiText) const;
    size_t Find_Text(size_t uiOffset) const; // the place in the text of a byte of the file

    // Places in the text that stand for bytes which are no characters.
    const std::vector<size_t> &Get_Unreadable() const { return m_auiUnreadable; }

private:
    void Read_Character(size_t &uiAt, uint32_t &uiColumn);
    size_t Step_Character(size_t uiAt, std::string &strText, bool &bBad) const;
    size_t Step_CodePage(size_t uiAt, std::string &strText, bool &bBad) const;
    uint16_t Get_Unit(size_t uiAt) const;
    LineEnd Match_LineEnd(size_t uiAt, size_t &uiBytes) const;
    bool Is_At(size_t uiAt, char cChar) const;

    std::string_view m_strBytes;
    std::string m_strText;
    std::string m_strLower;
    std::vector<PlainLine> m_astLines;
    std::vector<PlainMark> m_astMarks;
    std::vector<size_t> m_auiUnreadable;
    size_t m_uiUnit = 1; // bytes
    bool m_bBigEndian = false;
    std::unique_ptr<CodePageReader> m_pstReader; // of a code page; else UTF-8 or UTF-16
};
