#include "lint_file.h"

#include <algorithm>

#include "read_bytes.h"
#include "text_tools.h"

ExitCode Get_FindingsCode(const ZyrFindings *pstFindings)
{
    switch (zyrFindings_getError(pstFindings)) {
    case ZYR_CAPTIONS_OK: return E_EXIT_GOOD;
    case ZYR_CAPTIONS_BAD_ARGUMENT:
    case ZYR_CAPTIONS_NO_CODE_PAGE:
    case ZYR_CAPTIONS_NO_CLASS: return E_EXIT_USAGE;
    case ZYR_CAPTIONS_NOT_FOUND:
    case ZYR_CAPTIONS_UNREADABLE:
    case ZYR_CAPTIONS_FOLDER: return E_EXIT_NOT_FOUND;
    default: return E_EXIT_SOME_FAILED;
    }
}

std::string Get_FindingsText(const ZyrFindings *pstFindings, const std::string &strMovie)
{
    const std::string strLead = strMovie + ": ";
    const std::string strText = zyrFindings_getErrorText(pstFindings);
    return strText.starts_with(strLead) ? strText.substr(strLead.size()) : strText;
}

Outcome LintFile::Open(const std::string &strMovie, const Options &stOptions)
{
    const LintOptions &stLint = stOptions.stLint;
    const LoadOptions stLoad(stOptions.stSource);
    ZyrFindingsOptions stSearch = {stLoad.Get(), stLint.uiSpeed, stLint.uiLongestMs,
                                   stLint.strOutput.empty() ? nullptr : stLint.strOutput.c_str(),
                                   stLint.uiFontSize};
    m_strMovie = strMovie;
    if (strMovie == "-") {
        const std::string strInput = Read_Input();
        m_pstFindings.reset(zyrFindings_loadMemory(strInput.data(), strInput.size(), nullptr, &stSearch));
    } else {
        m_pstFindings.reset(zyrFindings_load(strMovie.c_str(), &stSearch));
    }
    ZyrFinding stFinding;
    for (uint32_t ui = 0; zyrFindings_get(m_pstFindings.get(), ui, &stFinding) == ZYR_CAPTIONS_OK; ++ui)
        if (stFinding.uiSeverity >= stLint.uiLevel) m_astFindings.push_back(stFinding);
    return {Get_FindingsCode(m_pstFindings.get()), Get_FindingsText(m_pstFindings.get(), strMovie)};
}

uint32_t LintFile::Count(uint32_t uiSeverity) const
{
    return static_cast<uint32_t>(
        std::count_if(m_astFindings.begin(), m_astFindings.end(),
                      [&](const ZyrFinding &stFinding) { return stFinding.uiSeverity == uiSeverity; }));
}

ZyrCaptionsFile LintFile::Get_File() const
{
    ZyrCaptionsFile stFile;
    zyrCaptions_getFile(zyrFindings_getCaptions(m_pstFindings.get()), &stFile);
    return stFile;
}

ZyrCaption LintFile::Get_Caption(const ZyrFinding &stFinding) const
{
    ZyrCaption stCaption;
    zyrCaptions_get(zyrFindings_getCaptions(m_pstFindings.get()), stFinding.uiCaption, &stCaption);
    return stCaption;
}

LintLine Cut_Line(const ZyrFinding &stFinding)
{
    static constexpr size_t WIDTH = 100; // characters that are shown
    static constexpr size_t LEAD = 40;   // of them in front of the finding
    const std::string_view strLine = stFinding.pszLine;
    const size_t uiColumn = stFinding.uiColumn == 0 ? 0 : stFinding.uiColumn - 1;
    const size_t uiFirst = uiColumn > LEAD && strLine.size() > WIDTH ? uiColumn - LEAD : 0;
    std::string strPart;
    size_t uiCharacters = 0; // that have begun
    size_t uiAt = 0;
    for (; uiAt < strLine.size(); ++uiAt) {
        uiCharacters += (strLine[uiAt] & 0xC0) != 0x80 ? 1 : 0;
        if (uiCharacters > uiFirst + WIDTH) break;
        if (uiCharacters > uiFirst) strPart += strLine[uiAt] == '\t' ? ' ' : strLine[uiAt];
    }
    return {Make_Printable(strPart), uiColumn - uiFirst, uiFirst > 0, uiAt < strLine.size()};
}

ZyrFindingRule Get_Rule(uint32_t uiRule)
{
    ZyrFindingRule stRule;
    zyrFindings_getRule(uiRule, &stRule);
    return stRule;
}
