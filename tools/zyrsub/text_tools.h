// Texts in UTF-8: lines, letter case, and what a terminal may be given.
#ifndef ZYRSUB_TEXT_TOOLS_H
#define ZYRSUB_TEXT_TOOLS_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

// Control characters would let a file steer the terminal; they show as U+FFFD. Newlines stay.
std::string Make_Printable(std::string_view strUtf8);

// No ASCII.
inline bool Is_High(char cByte)
{
    return (cByte & 0x80) != 0;
}

// Of ASCII letters alone, so that no locale has a say.
std::string Lower_Case(std::string strText);

// A character beyond blanks is in it.
bool Has_VisibleText(std::string_view strUtf8);

// The first character, which is cut off the text.
std::string Take_Character(std::string_view &strUtf8);

std::vector<std::string> Split_Lines(std::string_view strText);
std::string Join_Lines(std::span<const std::string> astrLines, std::string_view strBetween);

// "(unnamed)" for the class of captions without one.
std::string Show_ClassName(const std::string &strName);

#endif
