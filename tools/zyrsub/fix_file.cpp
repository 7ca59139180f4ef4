#include "fix_file.h"

#include <algorithm>

#include "fix_rules.h"
#include "lint_file.h"
#include "read_bytes.h"
#include "text_encode.h"
#include "text_tools.h"

static constexpr std::string_view MARK = "\xEF\xBB\xBF";
static constexpr const char *REPLACEMENT = "\xEF\xBF\xBD";
static constexpr int ROUNDS_MOST = 12;

using FindingsOwner = std::unique_ptr<ZyrFindings, void (*)(ZyrFindings *)>;

static bool Has_High(std::string_view strText)
{
    return std::any_of(strText.begin(), strText.end(), Is_High);
}

// LF, CR, CR LF and CR CR LF.
static std::string Join_LineEnds(const std::string &strText)
{
    std::string strOut;
    for (size_t ui = 0; ui < strText.size(); ++ui) {
        if (strText[ui] != '\r') {
            strOut += strText[ui];
            continue;
        }
        const size_t uiFeed = strText.compare(ui, 3, "\r\r\n") == 0 ? ui + 2 : ui + 1;
        if (uiFeed < strText.size() && strText[uiFeed] == '\n') ui = uiFeed;
        strOut += '\n';
    }
    return strOut;
}

static std::string Make_Bytes(const std::string &strText, bool bMark)
{
    std::string strBytes(bMark ? MARK : "");
    for (const char cChar : strText)
        if (cChar == '\n')
            strBytes += "\r\n";
        else
            strBytes += cChar;
    return strBytes;
}

static const char *Get_Ending(uint32_t uiFormat)
{
    static constexpr const char *ENDINGS[] = {".smi", ".srt", ".sub", ".ssa", ""};
    return ENDINGS[std::min<uint32_t>(uiFormat, ZYR_CAPTIONS_UNKNOWN)];
}

static std::string Decode(const std::string &strBytes, const ZyrCaptionsFile &stFile)
{
    const Converter stConverter("UTF-8",
                                stFile.pszCodePage == nullptr ? stFile.pszEncoding : stFile.pszCodePage);
    std::string strText = stConverter.Convert(strBytes, 1, REPLACEMENT);
    if (strText.starts_with(MARK)) strText.erase(0, MARK.size());
    return Join_LineEnds(strText);
}

// ------------------------------------------------------------------------------------------------- rounds

// What is mended, and what for.
struct Repair {
    FixResult &stResult;
    uint32_t uiFormat;
    FixText stText;
    FindingsOwner pstFindings{nullptr, zyrFindings_free};
};

// As the new file would be; the mark is for the places, which then need no second thought.
static void Look(Repair &stRepair)
{
    const std::string strBytes = Make_Bytes(stRepair.stText.Get(), true);
    const std::string strName = std::string("fixed") + Get_Ending(stRepair.uiFormat);
    stRepair.pstFindings.reset(
        zyrFindings_loadMemory(strBytes.data(), strBytes.size(), strName.c_str(), nullptr));
}

static bool Mend_Findings(Repair &stRepair)
{
    Look(stRepair);
    FixPlan stPlan{stRepair.stText, stRepair.uiFormat, stRepair.pstFindings.get()};
    ZyrFinding stFinding;
    for (uint32_t ui = 0; zyrFindings_get(stRepair.pstFindings.get(), ui, &stFinding) == ZYR_CAPTIONS_OK;
         ++ui) {
        // The mark is in front, and each line before has one byte more than in the text.
        const size_t uiAt =
            stFinding.uiLine == 0 ? 0 : stFinding.uiOffset - MARK.size() - (stFinding.uiLine - 1);
        Plan_Finding(stPlan, stFinding, std::min(uiAt, stRepair.stText.Get().size()));
    }
    const bool bSort = stPlan.bSort;
    if (stRepair.stText.Apply(std::move(stPlan.astEdits), stRepair.stResult.astChanges)) return true;
    if (!bSort || !Sort_Captions(stRepair.stText, stRepair.uiFormat)) return false;
    stRepair.stResult.astChanges.push_back({1, "ZYR-TIME-002", "captions put in the order of their times"});
    return true;
}

// Entries of these formats end in an empty line, the last one too.
static void End_Text(Repair &stRepair)
{
    const std::string &strText = stRepair.stText.Get();
    const bool bLines =
        stRepair.uiFormat == ZYR_CAPTIONS_SUBRIP || stRepair.uiFormat == ZYR_CAPTIONS_SUBVIEWER;
    if (strText.empty() || strText.ends_with("\n\n") || (!bLines && strText.ends_with('\n'))) return;
    const std::string strEnd = strText.ends_with('\n') || !bLines ? "\n" : "\n\n";
    std::vector<FixChange> astSilent;
    stRepair.stText.Apply({{strText.size(), 0, strEnd, "", ""}}, astSilent);
}

static void Mend(Repair &stRepair)
{
    std::vector<FixEdit> astNul;
    const std::string &strText = stRepair.stText.Get();
    for (size_t uiAt = strText.find('\0'); uiAt != std::string::npos; uiAt = strText.find('\0', uiAt + 1))
        astNul.push_back({uiAt, 1, "", "ZYR-FILE-008", "a character 0 taken out"});
    stRepair.stText.Apply(std::move(astNul), stRepair.stResult.astChanges);
    if (stRepair.uiFormat == ZYR_CAPTIONS_SAMI)
        stRepair.stText.Apply(Plan_SamiTags(stRepair.stText), stRepair.stResult.astChanges);
    if (stRepair.uiFormat == ZYR_CAPTIONS_SSA)
        stRepair.stText.Apply(Plan_SsaLines(stRepair.stText), stRepair.stResult.astChanges);
    End_Text(stRepair);
    for (int iRound = 0; iRound < ROUNDS_MOST && Mend_Findings(stRepair); ++iRound) End_Text(stRepair);
    Look(stRepair);
}

// ------------------------------------------------------------------------------------------------- the file

static bool Has_OtherEnds(const std::string &strBytes, const ZyrCaptionsFile &stFile)
{
    std::string strPlain = strBytes;
    if (std::string_view(stFile.pszEncoding).starts_with("UTF-16")) std::erase(strPlain, '\0');
    size_t uiAt = 0;
    while ((uiAt = strPlain.find("\r\n", uiAt)) != std::string::npos) strPlain.erase(uiAt, 2);
    return strPlain.find_first_of("\r\n") != std::string::npos;
}

// What is done to the file as a whole.
static void Tell_Whole(FixResult &stResult, const std::string &strBytes, const ZyrCaptionsFile &stFile)
{
    const auto pfTell = [&](const char *pszCode, const std::string &strWhat) {
        stResult.astChanges.insert(stResult.astChanges.begin(), {1, pszCode, strWhat});
    };
    if (Has_OtherEnds(strBytes, stFile)) pfTell("ZYR-FILE-003", "all lines ended in CR LF");
    if (stFile.pszCodePage != nullptr && Has_High(strBytes))
        pfTell("ZYR-FILE-007", std::string("read as ") + stFile.pszCodePage + " and written as UTF-8");
}

static FindingsOwner Load(const std::string &strMovie, const Options &stOptions, std::string &strBytes)
{
    const SourceOptions &stSource = stOptions.stSource;
    ZyrCaptionsOptions stLoad = {};
    const std::string strCodePage = stSource.strCodePage.empty() ? "CP949" : stSource.strCodePage;
    stLoad.pszCodePage = Lower_Case(strCodePage) == AUTO_CODE_PAGE ? nullptr : strCodePage.c_str();
    if (stSource.bSingleByte) stLoad.uiFlags = ZYR_CAPTIONS_SINGLE_BYTE;
    const ZyrFindingsOptions stSearch = {&stLoad, 0, 0, nullptr, 0};
    if (strMovie == "-") {
        strBytes = Read_Input();
        return {zyrFindings_loadMemory(strBytes.data(), strBytes.size(), nullptr, &stSearch),
                zyrFindings_free};
    }
    FindingsOwner pstFindings(zyrFindings_load(strMovie.c_str(), &stSearch), zyrFindings_free);
    ZyrCaptionsFile stFile;
    zyrCaptions_getFile(zyrFindings_getCaptions(pstFindings.get()), &stFile);
    if (zyrFindings_getError(pstFindings.get()) == ZYR_CAPTIONS_OK) strBytes = Read_FileBytes(stFile.pszFile);
    return pstFindings;
}

Outcome Fix_File(const std::string &strMovie, const Options &stOptions, FixResult &stResult)
{
    std::string strBytes;
    FindingsOwner pstFindings = Load(strMovie, stOptions, strBytes);
    if (zyrFindings_getError(pstFindings.get()) != ZYR_CAPTIONS_OK)
        return {Get_FindingsCode(pstFindings.get()), Get_FindingsText(pstFindings.get(), strMovie)};
    ZyrCaptionsFile stFile;
    zyrCaptions_getFile(zyrFindings_getCaptions(pstFindings.get()), &stFile);
    stResult.strName = strMovie == "-" ? strMovie : stFile.pszFile;
    stResult.strEnding = Get_Ending(stFile.uiFormat);
    if (stFile.uiFormat == ZYR_CAPTIONS_UNKNOWN || strBytes.empty())
        return {E_EXIT_NOT_SUBTITLE, "neither its name nor its text says what it is meant to be"};
    stResult.strOld = Decode(strBytes, stFile);
    Repair stRepair{stResult, stFile.uiFormat, FixText(stResult.strOld)};
    Mend(stRepair);
    Tell_Whole(stResult, strBytes, stFile);
    stResult.strNew = stRepair.stText.Get();
    stResult.pstLeft = std::move(stRepair.pstFindings);
    // A file that is right stays as it is, in whatever Unicode it is.
    const bool bMark = Has_High(stResult.strNew);
    stResult.strBytes = stResult.astChanges.empty() ? strBytes : Make_Bytes(stResult.strNew, bMark);
    return {};
}
