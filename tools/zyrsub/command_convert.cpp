// zyrsub convert: captions into files of other formats.
#include "commands.h"

#include <algorithm>
#include <cstdio>

#include "convert_write.h"
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

static Outcome Write_Output(const ConvertOptions &stConvert, const std::string &strFile,
                            std::span<const Track> astTracks)
{
    const OutputFormat &stFormat = *stConvert.pstFormat;
    Losses stLosses;
    std::string strText = stFormat.pfWrite(astTracks, stLosses);
    strText = Encode_Text(strText, stConvert.strEncoding, stFormat.bMark, stLosses, astTracks);
    if (strFile == "-") {
        std::fwrite(strText.data(), 1, strText.size(), stdout);
    } else {
        Outcome stWritten = Write_Safely(strFile, strText, stConvert.bForce);
        if (!stWritten.IsGood()) return stWritten;
        size_t uiFrames = 0;
        for (const Track &stTrack : astTracks) uiFrames += stTrack.astFrames.size();
        std::printf("%s  %s  %zu captions\n", strFile.c_str(), stFormat.pszTitle, uiFrames);
    }
    for (const std::string &strLoss : stLosses.List()) Report_Problem(strFile, strLoss);
    return {};
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
    return {};
}

static std::vector<ExitCode> Write_Outputs(const Options &stOptions, std::vector<Track> &astTracks)
{
    const ConvertOptions &stConvert = stOptions.stConvert;
    std::vector<ExitCode> aeCodes;
    const auto pfWrite = [&](const std::string &strFile, std::span<const Track> astSome) {
        const Outcome stOutcome = Write_Output(stConvert, strFile, astSome);
        if (!stOutcome.IsGood()) Report_Problem(stOptions.astrMovies.front(), stOutcome.strText);
        aeCodes.push_back(stOutcome.eCode);
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

ExitCode Run_Convert(const Options &stOptions)
{
    std::vector<Track> astTracks;
    std::vector<ExitCode> aeCodes;
    for (const std::string &strMovie : stOptions.astrMovies) {
        const Outcome stRead = Read_Tracks(stOptions.stSource, strMovie, astTracks);
        if (!stRead.IsGood()) Report_Problem(strMovie, stRead.strText);
        aeCodes.push_back(stRead.eCode);
    }
    if (astTracks.empty()) return Combine_Codes(aeCodes);
    const Outcome stFits = Check_Tracks(stOptions, astTracks);
    if (!stFits.IsGood()) {
        Report_Problem(stOptions.stConvert.strFile, stFits.strText);
        return stFits.eCode;
    }
    Losses stLosses;
    for (Track &stTrack : astTracks)
        Retime_Track(stTrack, stOptions.stConvert.dScale, stOptions.stConvert.llShift, stLosses);
    for (const std::string &strLoss : stLosses.List()) Report_Problem(stOptions.stConvert.strFile, strLoss);
    const std::vector<ExitCode> aeWritten = Write_Outputs(stOptions, astTracks);
    aeCodes.insert(aeCodes.end(), aeWritten.begin(), aeWritten.end());
    return Combine_Codes(aeCodes);
}
