// A caption's text as its author meant it, character by character, and what of its markup is worth a finding.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "finding_rules.h"

// What stands between a character and the one before.
enum PlainBreak : uint8_t { E_BREAK_NONE, E_BREAK_BLANK, E_BREAK_LINE };

// A visible character. Blanks, and what can stand for anything, are left out.
struct PlainCharacter {
    uint32_t uiCharacter; // of an entity: "&"
    size_t uiText;        // where it stands in the file's text
    uint16_t usEntity;    // bytes of the entity that it is, or 0
    PlainBreak eBreak;
    uint32_t uiLine; // of the caption, 0 on
};

// Markup that the box takes otherwise; whether it is in a caption that is shown is for the caller to know.
struct MarkupNote {
    FindingRule eRule;
    size_t uiText;
    size_t uiTextBytes;
    std::string strSentence;
};

class PlainText
{
public:
    explicit PlainText(std::string_view strFile) : m_strFile(strFile) {}

    // Stretches of the file's text, one behind the other.
    void Read_SubRip(size_t uiFirst, size_t uiEnd);
    void Read_Sami(size_t uiFirst, size_t uiEnd);
    void Read_SubViewer(size_t uiFirst, size_t uiEnd);
    void Read_Ssa(size_t uiFirst, size_t uiEnd);

    // Text that the box has shown.
    void Read_Shown(size_t uiFirst, size_t uiEnd);

    void Break(PlainBreak eBreak);

    const std::vector<PlainCharacter> &Get() const { return m_astCharacters; }
    const std::vector<MarkupNote> &Get_Notes() const { return m_astNotes; }

private:
    void Read_Markup(size_t uiFirst, size_t uiEnd, PlainBreak eLineEnd);
    size_t Find_Close(std::string_view strClose, size_t uiAt, size_t uiEnd, size_t &uiNone) const;
    size_t Read_Tag(size_t uiAt, size_t uiEnd);
    size_t Read_Entity(size_t uiAt, size_t uiEnd);
    size_t Read_Override(size_t uiAt, size_t uiEnd);
    void Note_Override(size_t uiAt, size_t uiClose);
    size_t Read_Character(size_t uiAt);

    std::string_view m_strFile;
    std::vector<PlainCharacter> m_astCharacters;
    std::vector<MarkupNote> m_astNotes;
    PlainBreak m_eBreak = E_BREAK_NONE;
    uint32_t m_uiLine = 0;
    size_t m_uiNoBrace = 0; // from where on a stretch has no closing brace, and no end of a comment
    size_t m_uiNoComment = 0;
};

// ASCII letters in lower case.
std::string Lower(std::string_view strText);

bool Is_Digit(char cChar);
bool Is_Letter(char cChar);
