#include "caption_file.h"

#include <algorithm>
#include <cstdio>

#include "read_bytes.h"
#include "text_tools.h"

static constexpr int64_t LAST_CAPTION_MS = 5000;

static ExitCode Get_ExitCode(int iError)
{
    switch (iError) {
    case ZYR_CAPTIONS_OK: return E_EXIT_GOOD;
    case ZYR_CAPTIONS_BAD_ARGUMENT:
    case ZYR_CAPTIONS_NO_CODE_PAGE:
    case ZYR_CAPTIONS_NO_CLASS: return E_EXIT_USAGE;
    case ZYR_CAPTIONS_NOT_FOUND:
    case ZYR_CAPTIONS_UNREADABLE:
    case ZYR_CAPTIONS_FOLDER: return E_EXIT_NOT_FOUND;
    case ZYR_CAPTIONS_BUSY:
    case ZYR_CAPTIONS_NO_MEMORY: return E_EXIT_SOME_FAILED;
    default: return E_EXIT_NOT_SUBTITLE;
    }
}

// The sentence names the file, as do all messages of this tool.
static std::string Cut_Name(const std::string &strSentence, const std::string &strMovie)
{
    const std::string strLead = strMovie + ": ";
    return strSentence.starts_with(strLead) ? strSentence.substr(strLead.size()) : strSentence;
}

void Print_LogLine(int iPriority, const char *pszTag, std::string strText, bool bAllOfLog)
{
    static constexpr int ERROR = 6;
    if (iPriority < ERROR && !bAllOfLog) return;
    while (strText.ends_with('\n')) strText.pop_back();
    const std::string strTag = pszTag == nullptr ? "" : std::string(pszTag) + ":";
    std::fprintf(stderr, "%s%s\n", strTag.c_str(), strText.c_str());
}

static void Print_Log(const ZyrCaptions *pstList, bool bAllOfLog)
{
    ZyrCaptionLogLine stLine;
    for (uint32_t uiLine = 0; zyrCaptions_getLogLine(pstList, uiLine, &stLine) == ZYR_CAPTIONS_OK; ++uiLine)
        Print_LogLine(stLine.iPriority, stLine.pszTag, stLine.pszText, bAllOfLog);
}

LoadOptions::LoadOptions(const SourceOptions &stSource)
    : m_strCodePage(stSource.strCodePage.empty() ? "CP949" : stSource.strCodePage)
{
    for (const std::string &strClass : stSource.astrClasses) m_apszClasses.push_back(strClass.c_str());
    const bool bAuto = Lower_Case(m_strCodePage) == AUTO_CODE_PAGE;
    m_stOptions.pszCodePage = bAuto ? nullptr : m_strCodePage.c_str();
    m_stOptions.ppszClasses = m_apszClasses.data();
    m_stOptions.uiClasses = static_cast<uint32_t>(m_apszClasses.size());
    if (stSource.bRawLineEnds) m_stOptions.uiFlags |= ZYR_CAPTIONS_BOX_LINE_ENDS;
    if (stSource.bSingleByte) m_stOptions.uiFlags |= ZYR_CAPTIONS_SINGLE_BYTE;
    if (stSource.bTogether) m_stOptions.uiFlags |= ZYR_CAPTIONS_TOGETHER;
    m_stOptions.uiFromMs = stSource.uiFromMs;
}

Outcome CaptionFile::Open(const std::string &strMovie, const SourceOptions &stOptions)
{
    const LoadOptions stLoad(stOptions);
    if (strMovie == "-") {
        m_strInput = Read_Input();
        m_pstList.reset(zyrCaptions_loadMemory(m_strInput.data(), m_strInput.size(), "-", stLoad.Get()));
    } else {
        m_pstList.reset(zyrCaptions_load(strMovie.c_str(), stLoad.Get()));
    }
    if (stOptions.bVerbose) Print_Log(Get_List(), stOptions.bAllOfLog);
    const int iError = zyrCaptions_getError(Get_List());
    if (iError == ZYR_CAPTIONS_MALFORMED)
        return {E_EXIT_NOT_SUBTITLE,
                "not a subtitle that can be read as its name says: " + Explain_Empty() + " (-v tells more)"};
    return {Get_ExitCode(iError), Cut_Name(zyrCaptions_getErrorText(Get_List()), strMovie)};
}

ZyrCaptionsFile CaptionFile::Get_File() const
{
    ZyrCaptionsFile stFile;
    zyrCaptions_getFile(Get_List(), &stFile);
    return stFile;
}

ZyrCaptionClass CaptionFile::Get_Class(uint32_t uiClass) const
{
    ZyrCaptionClass stClass;
    zyrCaptions_getClass(Get_List(), uiClass, &stClass);
    return stClass;
}

ZyrCaption CaptionFile::Get_Caption(uint32_t uiIndex) const
{
    ZyrCaption stCaption;
    zyrCaptions_get(Get_List(), uiIndex, &stCaption);
    return stCaption;
}

Frame CaptionFile::Read_Frame(uint32_t uiIndex) const
{
    const ZyrCaption stCaption = Get_Caption(uiIndex);
    return {stCaption.uiClass, stCaption.iStart, stCaption.iEnd,
            Split_Lines({stCaption.pszText, stCaption.uiTextBytes}), *stCaption.pstStyle};
}

std::string CaptionFile::Get_ClassName(uint32_t uiClass) const
{
    const char *const pszName = Get_Class(uiClass).pszName;
    return pszName == nullptr ? "" : pszName;
}

std::vector<uint32_t> CaptionFile::List_Classes() const
{
    std::vector<uint32_t> auiClasses;
    for (uint32_t uiClass = 0; uiClass < Get_File().uiClasses; ++uiClass)
        if (Get_Class(uiClass).uiOrder != ZYR_CAPTIONS_NONE) auiClasses.push_back(uiClass);
    std::sort(auiClasses.begin(), auiClasses.end(),
              [this](uint32_t uiA, uint32_t uiB) { return Get_Class(uiA).uiOrder < Get_Class(uiB).uiOrder; });
    return auiClasses;
}

std::string CaptionFile::Read_Bytes() const
{
    if (!m_strInput.empty()) return m_strInput;
    return Read_FileBytes(Get_File().pszFile);
}

// 16-bit text without its zero bytes: all that is looked for is ASCII.
static std::string Lower_Ascii(std::string strBytes)
{
    std::erase(strBytes, '\0');
    return Lower_Case(std::move(strBytes));
}

std::string CaptionFile::Explain_Empty() const
{
    if (Count() > 0) return "";
    const std::string strText = Lower_Ascii(Read_Bytes());
    const auto pfHas = [&](const char *pszWhat) { return strText.find(pszWhat) != std::string::npos; };
    switch (Get_File().uiFormat) {
    case ZYR_CAPTIONS_SAMI:
        if (!pfHas("<sync")) return "it has no SYNC tag";
        if (pfHas("start=\"") || pfHas("start='"))
            return "its START values stand in quotes, which are not read";
        return "no SYNC tag has a START that is understood, or its paragraphs are of no class";
    case ZYR_CAPTIONS_SSA:
        if (!pfHas("[events]")) return "it has no [Events] section";
        return pfHas("dialogue:") ? "no Dialogue line is understood" : "it has no Dialogue line";
    case ZYR_CAPTIONS_SUBVIEWER:
        if (!pfHas("[subtitle]")) return "it has no SubViewer header, which ends with [SUBTITLE]";
        return "no time line is understood";
    default: return "no time line is understood";
    }
}

int64_t CaptionFile::Get_End() const
{
    int64_t llEnd = 0;
    for (uint32_t uiIndex = 0; uiIndex < Count(); ++uiIndex) {
        const ZyrCaption stCaption = Get_Caption(uiIndex);
        const bool bOpen = stCaption.iShownUntil == ZYR_CAPTIONS_OPEN_END;
        llEnd = std::max(llEnd, bOpen ? stCaption.iStart + LAST_CAPTION_MS : int64_t{stCaption.iShownUntil});
    }
    return llEnd;
}

std::string Get_TextAt(const ZyrCaptions *pstList, int64_t llMs, uint32_t uiClass)
{
    const auto iMs = static_cast<int32_t>(std::min<int64_t>(llMs, INT32_MAX));
    std::string strText(zyrCaptions_getTextAt(pstList, uiClass, iMs, nullptr, 0), '\0');
    zyrCaptions_getTextAt(pstList, uiClass, iMs, strText.data(), strText.size() + 1);
    return strText;
}
