// Findings and codes as people read them.
#include <algorithm>

#include "lint_write.h"
#include "text_tools.h"

static constexpr size_t WIDTH = 100; // characters of a line of an explanation

static const char *Get_Colour(uint32_t uiSeverity)
{
    switch (uiSeverity) {
    case ZYR_FINDING_LOST: return "\x1B[1;31m";
    case ZYR_FINDING_CHANGED: return "\x1B[1;33m";
    default: return "\x1B[1;36m";
    }
}

static std::vector<std::string> Split_Characters(const std::string &strUtf8)
{
    std::vector<std::string> astrCharacters;
    for (const char cByte : strUtf8)
        if ((cByte & 0xC0) == 0x80 && !astrCharacters.empty())
            astrCharacters.back() += cByte;
        else
            astrCharacters.emplace_back(1, cByte);
    return astrCharacters;
}

// Of Hangul, kana, Han and full forms a terminal makes two columns.
static bool Is_Wide(const std::string &strCharacter)
{
    if (strCharacter.size() == 4) return true;
    if (strCharacter.size() < 3) return false;
    const auto ucLead = static_cast<uint8_t>(strCharacter[0]);
    const auto ucNext = static_cast<uint8_t>(strCharacter[1]);
    const bool bJamo = ucLead == 0xE1 && ucNext >= 0x84 && ucNext <= 0x85;
    const bool bFull = ucLead == 0xEF && (ucNext == 0xBC || ucNext == 0xBD);
    return bJamo || bFull || (ucLead == 0xE2 && ucNext >= 0xBA) || (ucLead >= 0xE3 && ucLead <= 0xED);
}

// The line and the caret under it.
static std::string Show_Line(const ZyrFinding &stFinding, bool bColour)
{
    const LintLine stLine = Cut_Line(stFinding);
    const std::vector<std::string> astrAll = Split_Characters(stLine.strText);
    std::string strLine = stLine.bCutBefore ? "..." : "";
    std::string strCaret(strLine.size(), ' ');
    for (size_t ui = 0; ui < std::min(astrAll.size(), stLine.uiColumn + stFinding.uiColumns); ++ui)
        strCaret += std::string(Is_Wide(astrAll[ui]) ? 2 : 1, ui < stLine.uiColumn ? ' ' : '~');
    const size_t uiCaret = strCaret.find('~');
    if (uiCaret == std::string::npos)
        strCaret += '^';
    else
        strCaret[uiCaret] = '^';
    strLine += stLine.strText + (stLine.bCutBehind ? "..." : "");
    const std::string strMarks = bColour ? Get_Colour(stFinding.uiSeverity) + strCaret + "\x1B[0m" : strCaret;
    return "    " + strLine + "\n    " + strMarks + "\n";
}

std::string Write_LintText(const LintResult &stResult, bool bColour)
{
    std::string strText;
    const LintFile &stFile = stResult.stFile;
    for (const ZyrFinding &stFinding : stFile.Get_Findings()) {
        const ZyrFindingRule stRule = Get_Rule(stFinding.uiRule);
        const std::string strSeverity =
            bColour ? Get_Colour(stFinding.uiSeverity) + std::string(stRule.pszSeverity) + "\x1B[0m"
                    : stRule.pszSeverity;
        strText += Make_Printable(stFile.Get_Movie()) + ":";
        if (stFinding.uiLine > 0)
            strText += std::to_string(stFinding.uiLine) + ":" + std::to_string(stFinding.uiColumn) + ":";
        strText +=
            " " + strSeverity + " " + stFinding.pszCode + ": " + Make_Printable(stFinding.pszSentence) + "\n";
        if (stFinding.uiLine > 0 && *stFinding.pszLine != '\0') strText += Show_Line(stFinding, bColour);
    }
    return strText;
}

// Words in lines of the usual width.
static std::string Fill_Lines(const std::string &strText, const std::string &strLead, size_t uiWidth)
{
    std::string strOut;
    std::string strLine = strLead;
    for (size_t uiFirst = 0; uiFirst < strText.size();) {
        const size_t uiEnd = std::min(strText.find(' ', uiFirst), strText.size());
        if (strLine.size() > strLead.size() && strLine.size() + uiEnd - uiFirst >= uiWidth) {
            strOut += strLine + "\n";
            strLine = strLead;
        }
        if (strLine.size() > strLead.size()) strLine += ' ';
        strLine.append(strText, uiFirst, uiEnd - uiFirst);
        uiFirst = uiEnd + 1;
    }
    return strOut + strLine + "\n";
}

// What a screen cannot show is told: bare LF by its place at the line's end, 0 and bytes that are no UTF-8 by number.
static std::string Show_Example(const char *pszExample)
{
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    std::string strOut = "    ";
    const std::string strAll = pszExample;
    for (size_t ui = 0; ui < strAll.size(); ++ui) {
        const auto ucByte = static_cast<uint8_t>(strAll[ui]);
        const bool bMark = strAll.compare(ui, 3, "\xEF\xBB\xBF") == 0;
        const bool bAlone = ucByte >= 0x80 && (ui + 1 == strAll.size() || (strAll[ui + 1] & 0xC0) != 0x80) &&
                            (ucByte & 0xC0) == 0xC0;
        if (bMark) {
            ui += 2;
            strOut += "(byte order mark)";
        } else if (ucByte == '\n' || ucByte == '\r') {
            strOut += ucByte == '\r' ? "(LF)" : "";
            if (ui + 1 < strAll.size()) strOut += "\n    ";
        } else if (ucByte == 1) {
            strOut += "(00)";
        } else if (bAlone) {
            strOut.append({'(', DIGITS[ucByte >> 4], DIGITS[ucByte & 15], ')'});
        } else {
            strOut += strAll[ui];
        }
    }
    // Lines of blanks alone are empty lines.
    for (size_t uiAt = strOut.find("\n    \n"); uiAt != std::string::npos;
         uiAt = strOut.find("\n    \n", uiAt))
        strOut.erase(uiAt + 1, 4);
    while (strOut.ends_with(' ') || strOut.ends_with('\n')) strOut.pop_back();
    return strOut + "\n";
}

std::string Explain_Rule(const ZyrFindingRule &stRule)
{
    return std::string(stRule.pszCode) + ", " + stRule.pszSeverity + ": " + stRule.pszTitle + " (" +
           (std::string_view(stRule.pszFormats) == "all" ? "all formats" : stRule.pszFormats) + ")\n\n" +
           Fill_Lines(stRule.pszExplanation, "  ", WIDTH) + "\nFor example " + stRule.pszFile + ":\n\n" +
           Show_Example(stRule.pszExample);
}

static std::string Escape_Markdown(const std::string &strText)
{
    std::string strOut;
    for (const char cChar : strText) {
        if (cChar == '<' || cChar == '\\') strOut += '\\';
        strOut += cChar;
    }
    return strOut;
}

std::string Write_RulePage()
{
    std::string strPage = "# What lint finds\n\n";
    strPage += Fill_Lines(
        "`zyrsub lint FILE` tells what a box makes of a subtitle file that its author did not mean. "
        "Every finding has one of these codes, which keep their meaning; `zyrsub lint --explain CODE` "
        "prints what stands here. This page is the output of `zyrsub lint --explain all`.",
        "", 120);
    strPage +=
        "\n| severity | what it says |\n|---|---|\n| lost | text or captions are never seen |\n"
        "| changed | shown, but otherwise than it was meant |\n"
        "| doubtful | shown as it is written, which may not be what was meant |\n\n"
        "In the examples (LF) is a line end that is no CR LF, (00) the character 0, and (E9) a byte.\n";
    ZyrFindingRule stRule;
    for (uint32_t ui = 0; zyrFindings_getRule(ui, &stRule) == ZYR_CAPTIONS_OK; ++ui) {
        strPage += std::string("\n## ") + stRule.pszCode + ": " + stRule.pszTitle + "\n\n";
        std::string strText =
            std::string("**") + stRule.pszSeverity + "**, " +
            (std::string_view(stRule.pszFormats) == "all" ? "all formats" : stRule.pszFormats) + ". " +
            stRule.pszExplanation;
        strPage += Fill_Lines(Escape_Markdown(strText), "", 120) + "\n" + Show_Example(stRule.pszExample);
    }
    return strPage;
}
