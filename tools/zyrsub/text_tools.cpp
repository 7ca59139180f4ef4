#include "text_tools.h"

#include <cstdint>

// The UTF-8 forms of U+0080 to U+009F are C2 80 to C2 9F.
std::string Make_Printable(std::string_view strUtf8)
{
    static constexpr const char *REPLACEMENT = "\xEF\xBF\xBD";
    std::string strOut;
    for (size_t uiByte = 0; uiByte < strUtf8.size(); ++uiByte) {
        const auto ucByte = static_cast<uint8_t>(strUtf8[uiByte]);
        const auto ucNext = static_cast<uint8_t>(uiByte + 1 < strUtf8.size() ? strUtf8[uiByte + 1] : 0);
        const bool bHighControl = ucByte == 0xC2 && ucNext >= 0x80 && ucNext < 0xA0;
        if (bHighControl || (ucByte < 0x20 && ucByte != '\n') || ucByte == 0x7F) {
            strOut += REPLACEMENT;
            uiByte += bHighControl ? 1 : 0;
        } else {
            strOut += strUtf8[uiByte];
        }
    }
    return strOut;
}

std::string Lower_Case(std::string strText)
{
    for (char &cChar : strText)
        if (cChar >= 'A' && cChar <= 'Z') cChar = static_cast<char>(cChar | 0x20);
    return strText;
}

bool Has_VisibleText(std::string_view strUtf8)
{
    static constexpr std::string_view NO_BREAK_SPACE = "\xC2\xA0";
    while (!strUtf8.empty()) {
        const bool bNoBreak = strUtf8.starts_with(NO_BREAK_SPACE);
        if (static_cast<uint8_t>(strUtf8[0]) > ' ' && !bNoBreak) return true;
        strUtf8.remove_prefix(bNoBreak ? NO_BREAK_SPACE.size() : 1);
    }
    return false;
}

std::string Take_Character(std::string_view &strUtf8)
{
    size_t uiEnd = 1;
    while (uiEnd < strUtf8.size() && (strUtf8[uiEnd] & 0xC0) == 0x80) ++uiEnd;
    std::string strOne(strUtf8.substr(0, uiEnd));
    strUtf8.remove_prefix(strOne.size());
    return strOne;
}

std::vector<std::string> Split_Lines(std::string_view strText)
{
    std::vector<std::string> astrLines;
    while (!strText.empty()) {
        const size_t uiEnd = strText.find('\n');
        astrLines.emplace_back(strText.substr(0, uiEnd));
        if (uiEnd == std::string_view::npos) break;
        strText.remove_prefix(uiEnd + 1);
    }
    return astrLines;
}

std::string Join_Lines(std::span<const std::string> astrLines, std::string_view strBetween)
{
    std::string strOut;
    for (const std::string &strLine : astrLines) {
        if (!strOut.empty()) strOut += strBetween;
        strOut += strLine;
    }
    return strOut;
}

std::string Show_ClassName(const std::string &strName)
{
    return strName.empty() ? "(unnamed)" : strName;
}
