// zyrsub convert: captions into files of other formats.
#include "commands.h"

#include <algorithm>
#include <cstdio>

#include "convert_write.h"
#include "report_json.h"
#include "safe_file.h"

static constexpr size_t SAMI_CLASSES = 7; // more are not read

static bool Is_Letter(char cChar)
{
    return (cChar >= 'A' && cChar <= 'Z') || (cChar >= 'a' && cChar <= 'z');
}

// movie.en.srt becomes ENCC, movie.ko.srt KRCC, the usual names of such classes; anything else is SUBCC.
static std::string Make_ClassName(const std::string &strMovie)
{
    const std::string strName = strMovie.substr(strMovie.rfind('/') + 1);
    const std::string strBase = strName.substr(0, strName.rfind('.'));
    const size_t uiDot = strBase.rfind('.');
    if (uiDot == std::string::npos || strBase.size() != uiDot + 3) return "SUBCC";
    std::string strTag = strBase.substr(uiDot + 1);
    if (!Is_Letter(strTag[0]) || !Is_Letter(strTag[1])) return "SUBCC";
    for (char &cChar : strTag) cChar = static_cast<char>(cChar & ~0x20);
    return (strTag == "KO" ? "KR" : strTag) + "CC";
}

// Every class of a SAMI file has a name of its own.
static void Name_Classes(std::vector<Track> &astTracks, const std::vector<std::string> &astrNames)
{
    for (size_t uiTrack = 0; uiTrack < astTracks.size(); ++uiTrack) {
        Track &stTrack = astTracks[uiTrack];
        if (uiTrack < astrNames.size()) stTrack.strClass = astrNames[uiTrack];
        if (stTrack.strClass.empty()) stTrack.strClass = Make_ClassName(stTrack.strMovie);
        const auto pstEnd = astTracks.begin() + static_cast<ptrdiff_t>(uiTrack);
        const auto pfTaken = [&](const std::string &strName) {
            return std::any_of(astTracks.begin(), pstEnd,
                               [&](const Track &stOther) { return stOther.strClass == strName; });
        };
        const std::string strWanted = stTrack.strClass;
        for (int iNumber = 2; pfTaken(stTrack.strClass); ++iNumber)
            stTrack.strClass = strWanted.substr(0, 10) + std::to_string(iNumber);
    }
}

// movie.srt of class KRCC is movie.KRCC.srt.
static std::string Make_OutputName(const std::string &strFile, const Track &stTrack)
{
    const size_t uiDot = strFile.rfind('.');
    const size_t uiSlash = strFile.rfind('/');
    const bool bEnding = uiDot != std::string::npos && (uiSlash == std::string::npos || uiDot > uiSlash);
    std::string strClass = stTrack.strClass.empty() ? "unnamed" : stTrack.strClass;
    std::replace(strClass.begin(), strClass.end(), '/', '_');
    const size_t uiEnd = bEnding ? uiDot : strFile.size();
    return strFile.substr(0, uiEnd) + "." + strClass + strFile.substr(uiEnd);
}

static ConvertedFile Write_Output(const ConvertOptions &stConvert, const std::string &strFile,
                                  std::span<const Track> astTracks)
{
    const OutputFormat &stFormat = *stConvert.pstFormat;
    ConvertedFile stOutput;
    stOutput.strFile = strFile;
    stOutput.pszFormat = stFormat.pszTitle;
    for (const Track &stTrack : astTracks) {
        stOutput.uiFrames += stTrack.astFrames.size();
        stOutput.stLosses.Add_All(stTrack.stLosses);
    }
    const std::string strUtf8 = stFormat.pfWrite(astTracks, stOutput.stLosses);
    const std::string strText =
        Encode_Text(strUtf8, stConvert.strEncoding, stFormat.bMark, stOutput.stLosses, astTracks);
    if (strFile == "-")
        std::fwrite(strText.data(), 1, strText.size(), stdout);
    else
        stOutput.stOutcome = Write_Safely(strFile, strText, stConvert.bForce);
    return stOutput;
}

static void Report_Output(const ConvertedFile &stOutput, bool bJson)
{
    const bool bGood = stOutput.stOutcome.IsGood();
    if (bGood && !bJson && stOutput.strFile != "-")
        std::printf("%s  %s  %zu captions\n", stOutput.strFile.c_str(), stOutput.pszFormat,
                    stOutput.uiFrames);
    if (!bGood) return Report_Problem(stOutput.strFile, stOutput.stOutcome.strText);
    for (const std::string &strLoss : stOutput.stLosses.List()) Report_Problem(stOutput.strFile, strLoss);
}

static Outcome Check_Tracks(const Options &stOptions, const std::vector<Track> &astTracks)
{
    const ConvertOptions &stConvert = stOptions.stConvert;
    if (!stConvert.pstFormat->bSeveral && stOptions.astrMovies.size() > 1)
        return {E_EXIT_USAGE, "only SAMI and JSON hold several inputs"};
    if (stConvert.pstFormat->pfWrite == Write_Sami && astTracks.size() > SAMI_CLASSES)
        return {E_EXIT_USAGE, "SAMI holds at most 7 languages"};
    if (stConvert.strFile == "-" && !stConvert.pstFormat->bSeveral && astTracks.size() > 1)
        return {E_EXIT_USAGE, "there are several languages; choose one with --class"};
    if (stConvert.strFile == "-" && stOptions.stReport.bJson)
        return {E_EXIT_USAGE, "standard output is for the captions or for the report, not for both"};
    return {};
}

static std::vector<ExitCode> Write_Outputs(const Options &stOptions, std::vector<Track> &astTracks,
                                           JsonReport &stJson)
{
    const ConvertOptions &stConvert = stOptions.stConvert;
    std::vector<ExitCode> aeCodes;
    const auto pfWrite = [&](const std::string &strFile, std::span<const Track> astSome) {
        const ConvertedFile stOutput = Write_Output(stConvert, strFile, astSome);
        Report_Output(stOutput, stOptions.stReport.bJson);
        stJson.Add_Output(stOutput);
        aeCodes.push_back(stOutput.stOutcome.eCode);
    };
    if (stConvert.pstFormat->pfWrite == Write_Sami) Name_Classes(astTracks, stConvert.astrClassNames);
    if (stConvert.pstFormat->bSeveral || astTracks.size() == 1) {
        pfWrite(stConvert.strFile, astTracks);
        return aeCodes;
    }
    for (const Track &stTrack : astTracks)
        pfWrite(Make_OutputName(stConvert.strFile, stTrack), {&stTrack, 1});
    return aeCodes;
}

static std::vector<ExitCode> Read_Inputs(const Options &stOptions, std::vector<Track> &astTracks,
                                         JsonReport &stJson)
{
    std::vector<ExitCode> aeCodes;
    for (const std::string &strMovie : stOptions.astrMovies) {
        const Outcome stRead = Read_Tracks(stOptions.stSource, strMovie, astTracks);
        stJson.Begin_File(strMovie);
        if (!stRead.IsGood()) {
            Report_Problem(strMovie, stRead.strText);
            stJson.Add_Failure(stRead);
        }
        aeCodes.push_back(stRead.eCode);
    }
    return aeCodes;
}

static ExitCode Convert_Inputs(const Options &stOptions, JsonReport &stJson)
{
    std::vector<Track> astTracks;
    std::vector<ExitCode> aeCodes = Read_Inputs(stOptions, astTracks, stJson);
    if (astTracks.empty()) return Combine_Codes(aeCodes);
    const Outcome stFits = Check_Tracks(stOptions, astTracks);
    if (!stFits.IsGood()) {
        Report_Problem(stOptions.stConvert.strFile, stFits.strText);
        stJson.Add_Error(stFits);
        return stFits.eCode;
    }
    for (Track &stTrack : astTracks)
        Retime_Track(stTrack, stOptions.stConvert.dScale, stOptions.stConvert.llShift);
    const std::vector<ExitCode> aeWritten = Write_Outputs(stOptions, astTracks, stJson);
    aeCodes.insert(aeCodes.end(), aeWritten.begin(), aeWritten.end());
    return Combine_Codes(aeCodes);
}

ExitCode Run_Convert(const Options &stOptions)
{
    JsonReport stJson;
    const ExitCode eCode = Convert_Inputs(stOptions, stJson);
    if (stOptions.stReport.bJson) stJson.Print();
    return eCode;
}
