#include "plain_text.h"

#include <algorithm>

#include "finder.h"
#include "text_decode.h"

namespace
{

constexpr size_t NOWHERE = std::string_view::npos;

// Between blanks: every name of a tag that the box knows.
constexpr std::string_view KNOWN_TAGS =
    " b basefont bdo big blockquote br caption center col colgroup dd div dl dt font h1 h2 h3 h4 h5 h6 hr i "
    "img li ol "
    "p pre q s small span strike sub sup table tbody td tfoot th thead tr tt u ul article aside audio canvas "
    "command "
    "datagrid datalist details embed figcaption figure footer header hgroup keygen mark meter nav output "
    "progress rp "
    "rt ruby section source summary time video !-- head title style body sami sync ";

// Overrides by their first letters, as the box compares them; those of one letter end in a digit or at the end.
bool Is_KnownOverride(std::string_view strOverride)
{
    const auto pfNumber = [&](size_t uiLetters) {
        return strOverride.size() == uiLetters || Is_Digit(strOverride[uiLetters]);
    };
    if (strOverride.starts_with("fn") || strOverride.starts_with("fe")) return true;
    if (strOverride.starts_with("fs")) return pfNumber(2);
    if (strOverride == "r") return true;
    if (strOverride.starts_with("c&") || strOverride == "c") return true;
    for (const char *const pszOne : {"b", "i", "a", "k"})
        if (strOverride.starts_with(pszOne)) return pfNumber(1);
    return false;
}

bool Is_Blank(uint32_t uiCharacter)
{
    return uiCharacter <= ' ' || uiCharacter == 0xA0 || uiCharacter == 0x3000;
}

// What a list shows for bytes that it cannot read, and the mark of a file's beginning.
bool Is_Nothing(uint32_t uiCharacter)
{
    return uiCharacter == 0 || uiCharacter == 0xFFFD || uiCharacter == 0xFEFF;
}

// The ">" of a tag; nowhere when it is no tag to a person.
size_t Find_TagEnd(std::string_view strText, size_t uiAt)
{
    const char cNext = uiAt + 1 < strText.size() ? strText[uiAt + 1] : ' ';
    if (cNext != '/' && cNext != '!' && !Is_Letter(cNext)) return NOWHERE;
    const size_t uiClose = strText.find_first_of("<>", uiAt + 1);
    return uiClose != NOWHERE && strText[uiClose] == '>' ? uiClose : NOWHERE;
}

} // namespace

std::string Lower(std::string_view strText)
{
    std::string strLower(strText);
    for (char &cChar : strLower)
        if (cChar >= 'A' && cChar <= 'Z') cChar = static_cast<char>(cChar | 0x20);
    return strLower;
}

bool Is_Digit(char cChar)
{
    return cChar >= '0' && cChar <= '9';
}

bool Is_Letter(char cChar)
{
    return (cChar >= 'a' && cChar <= 'z') || (cChar >= 'A' && cChar <= 'Z');
}

void PlainText::Break(PlainBreak eBreak)
{
    m_eBreak = std::max(m_eBreak, eBreak);
}

// Takes one character of the file; gives the place behind it.
size_t PlainText::Read_Character(size_t uiAt)
{
    std::string_view strRest = m_strFile.substr(uiAt);
    const uint32_t uiCharacter = Take_Character(strRest);
    const size_t uiNext = m_strFile.size() - strRest.size();
    if (Is_Nothing(uiCharacter)) return uiNext;
    if (Is_Blank(uiCharacter)) {
        Break(E_BREAK_BLANK);
        return uiNext;
    }
    if (m_eBreak == E_BREAK_LINE && !m_astCharacters.empty()) ++m_uiLine;
    m_astCharacters.push_back({uiCharacter, uiAt, 0, m_eBreak, m_uiLine});
    m_eBreak = E_BREAK_NONE;
    return uiNext;
}

// Once a closing sign was not found there is none further on either: looking again would cost a whole file each time.
size_t PlainText::Find_Close(std::string_view strClose, size_t uiAt, size_t uiEnd, size_t &uiNone) const
{
    if (uiAt >= uiNone) return NOWHERE;
    const size_t uiClose = m_strFile.substr(0, uiEnd).find(strClose, uiAt);
    if (uiClose == NOWHERE) uiNone = uiAt;
    return uiClose;
}

size_t PlainText::Read_Tag(size_t uiAt, size_t uiEnd)
{
    const bool bComment = m_strFile.substr(uiAt).starts_with("<!--");
    const size_t uiComment = bComment ? Find_Close("-->", uiAt, uiEnd, m_uiNoComment) : NOWHERE;
    const size_t uiClose = uiComment != NOWHERE ? uiComment + 2
                           : bComment           ? NOWHERE
                                                : Find_TagEnd(m_strFile.substr(0, uiEnd), uiAt);
    if (uiClose == NOWHERE) return Read_Character(uiAt);
    const std::string strTag = Lower(m_strFile.substr(uiAt + 1, uiClose - uiAt - 1));
    std::string strName = strTag.substr(0, strTag.find_first_of(" \t\n"));
    if (strName.starts_with("/")) strName.erase(0, 1);
    const bool bKnown = strName.starts_with("!--") || KNOWN_TAGS.find(" " + strName + " ") != NOWHERE;
    if (!bKnown)
        m_astNotes.push_back(
            {E_RULE_TEXT_TAG, uiAt, uiClose + 1 - uiAt,
             "the box knows no tag " + Quote(m_strFile.substr(uiAt, uiClose + 1 - uiAt)) + " and drops it"});
    if (strName == "br" || strName == "br/") Break(E_BREAK_LINE);
    return uiClose + 1;
}

size_t PlainText::Read_Entity(size_t uiAt, size_t uiEnd)
{
    size_t uiLast = uiAt + 1;
    const size_t uiMost = std::min(uiEnd, uiAt + 12);
    while (uiLast < uiMost &&
           (m_strFile[uiLast] == '#' || Is_Digit(m_strFile[uiLast]) || Is_Letter(m_strFile[uiLast])))
        ++uiLast;
    const bool bClosed = uiLast < uiMost && m_strFile[uiLast] == ';';
    const std::string strName = Lower(m_strFile.substr(uiAt + 1, uiLast - uiAt - 1));
    const bool bBlank = strName == "nbsp" || strName == "#160" || strName == "#32";
    if (uiLast == uiAt + 1 || (!bClosed && !bBlank)) return Read_Character(uiAt);
    const size_t uiNext = bClosed ? uiLast + 1 : uiLast;
    if (bBlank && m_strFile[uiAt + 1] != 'N') {
        Break(E_BREAK_BLANK);
        return uiNext;
    }
    Read_Character(uiAt);
    m_astCharacters.back().usEntity = static_cast<uint16_t>(uiNext - uiAt);
    return uiNext;
}

void PlainText::Read_Markup(size_t uiFirst, size_t uiEnd, PlainBreak eLineEnd)
{
    m_uiNoBrace = m_uiNoComment = NOWHERE;
    for (size_t uiAt = uiFirst; uiAt < uiEnd;) {
        const char cChar = m_strFile[uiAt];
        const size_t uiBrace = cChar == '{' && m_strFile.substr(uiAt).starts_with("{\\")
                                   ? Find_Close("}", uiAt, uiEnd, m_uiNoBrace)
                                   : NOWHERE;
        if (cChar == '<') {
            uiAt = Read_Tag(uiAt, uiEnd);
        } else if (cChar == '&') {
            uiAt = Read_Entity(uiAt, uiEnd);
        } else if (uiBrace != NOWHERE) {
            uiAt = uiBrace + 1;
        } else if (cChar == '\n') {
            Break(eLineEnd);
            ++uiAt;
        } else {
            uiAt = Read_Character(uiAt);
        }
    }
}

void PlainText::Read_SubRip(size_t uiFirst, size_t uiEnd)
{
    Read_Markup(uiFirst, uiEnd, E_BREAK_LINE);
}

void PlainText::Read_Sami(size_t uiFirst, size_t uiEnd)
{
    Read_Markup(uiFirst, uiEnd, E_BREAK_BLANK);
}

void PlainText::Read_SubViewer(size_t uiFirst, size_t uiEnd)
{
    for (size_t uiAt = uiFirst; uiAt < uiEnd;) {
        const bool bBreak = m_strFile[uiAt] == '[' && Lower(m_strFile.substr(uiAt, 4)) == "[br]";
        if (bBreak || m_strFile[uiAt] == '\n') {
            Break(E_BREAK_LINE);
            uiAt += bBreak ? 4 : 1;
        } else {
            uiAt = Read_Character(uiAt);
        }
    }
}

// Text in a brace that holds no backslash is a comment to other players; to a person it is no text either.
void PlainText::Note_Override(size_t uiAt, size_t uiClose)
{
    const std::string_view strBrace = m_strFile.substr(uiAt + 1, uiClose - uiAt - 1);
    const std::string strQuoted = Quote(m_strFile.substr(uiAt, uiClose + 1 - uiAt));
    const size_t uiSecond = strBrace.size() > 1 ? strBrace.find('\\', 1) : NOWHERE;
    const std::string_view strFirst = strBrace.substr(0, uiSecond);
    if (!strFirst.starts_with("\\") || !Is_KnownOverride(strFirst.substr(1)))
        m_astNotes.push_back({E_RULE_SSA_OVERRIDE, uiAt, uiClose + 1 - uiAt,
                              "the box does not know the override " + strQuoted + " and drops it"});
    else if (uiSecond != NOWHERE)
        m_astNotes.push_back({E_RULE_SSA_OVERRIDES, uiAt, uiClose + 1 - uiAt,
                              "of " + strQuoted + " the box follows " + Quote(strFirst) + " alone"});
}

size_t PlainText::Read_Override(size_t uiAt, size_t uiEnd)
{
    const size_t uiClose = Find_Close("}", uiAt, uiEnd, m_uiNoBrace);
    if (uiClose == NOWHERE) return Read_Character(uiAt);
    Note_Override(uiAt, uiClose);
    return uiClose + 1;
}

void PlainText::Read_Ssa(size_t uiFirst, size_t uiEnd)
{
    m_uiNoBrace = NOWHERE;
    for (size_t uiAt = uiFirst; uiAt < uiEnd;) {
        const char cNext = m_strFile[uiAt] == '\\' && uiAt + 1 < uiEnd ? m_strFile[uiAt + 1] : ' ';
        if (m_strFile[uiAt] == '{') {
            uiAt = Read_Override(uiAt, uiEnd);
        } else if (cNext == 'N' || cNext == 'n') {
            Break(E_BREAK_LINE);
            uiAt += 2;
        } else if (cNext == 'h') {
            Break(E_BREAK_BLANK);
            uiAt += 2;
        } else {
            uiAt = Read_Character(uiAt);
        }
    }
}

void PlainText::Read_Shown(size_t uiFirst, size_t uiEnd)
{
    for (size_t uiAt = uiFirst; uiAt < uiEnd;)
        if (m_strFile[uiAt] == '\n') {
            Break(E_BREAK_LINE);
            ++uiAt;
        } else {
            uiAt = Read_Character(uiAt);
        }
}
