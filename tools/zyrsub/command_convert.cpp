// zyrsub convert: captions into files of other formats.
#include "commands.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <unistd.h>

#include "convert_write.h"
#include "read_bytes.h"
#include "report_json.h"
#include "safe_file.h"
#include "text_tools.h"
#include "tree_run.h"

static constexpr size_t CLASS_NAME_UNITS = 12; // longer names are cut
static constexpr size_t SAMI_CLASSES = 7;      // more are not read

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

// At most so many bytes, and no part of a character.
static std::string Cut_Utf8(const std::string &strUtf8, size_t uiMost)
{
    size_t uiEnd = std::min(strUtf8.size(), uiMost);
    while (uiEnd > 0 && uiEnd < strUtf8.size() && (strUtf8[uiEnd] & 0xC0) == 0x80) --uiEnd;
    return strUtf8.substr(0, uiEnd);
}

// The first of NAME, NAME2, NAME3 ... that is not taken, in any letter case; cut so that uiMost bytes hold it.
static std::string Make_Unique(const std::string &strWanted, std::vector<std::string> &astrTaken,
                               size_t uiMost)
{
    std::string strName = strWanted;
    const auto pfTaken = [&](const std::string &strOther) {
        return Lower_Case(strOther) == Lower_Case(strName);
    };
    for (int iNumber = 2; std::any_of(astrTaken.begin(), astrTaken.end(), pfTaken); ++iNumber) {
        const std::string strNumber = std::to_string(iNumber);
        strName = Cut_Utf8(strWanted, uiMost - strNumber.size()) + strNumber;
    }
    astrTaken.push_back(strName);
    return strName;
}

// Every class of a SAMI file has a name of its own.
static void Name_Classes(std::vector<Track> &astTracks, const std::vector<std::string> &astrNames)
{
    std::vector<std::string> astrTaken;
    for (size_t uiTrack = 0; uiTrack < astTracks.size(); ++uiTrack) {
        Track &stTrack = astTracks[uiTrack];
        if (uiTrack < astrNames.size()) stTrack.strClass = astrNames[uiTrack];
        if (stTrack.strClass.empty()) stTrack.strClass = Make_ClassName(stTrack.strMovie);
        stTrack.strClass = Make_Unique(stTrack.strClass, astrTaken, CLASS_NAME_UNITS);
    }
}

// movie.srt of class KRCC is movie.KRCC.srt. A class's name comes from a file, which may hold anything.
static std::string Make_OutputName(const std::string &strFile, const Track &stTrack,
                                   std::vector<std::string> &astrTaken)
{
    const size_t uiDot = strFile.rfind('.');
    const size_t uiSlash = strFile.rfind('/');
    const bool bEnding = uiDot != std::string::npos && (uiSlash == std::string::npos || uiDot > uiSlash);
    std::string strClass = stTrack.strClass.empty() ? "unnamed" : stTrack.strClass;
    for (char &cByte : strClass)
        if (cByte == '/' || (cByte >= 0 && cByte < ' ') || cByte == 0x7F) cByte = '_';
    strClass = Make_Unique(strClass, astrTaken, NAME_MAX);
    const size_t uiEnd = bEnding ? uiDot : strFile.size();
    return strFile.substr(0, uiEnd) + "." + strClass + strFile.substr(uiEnd);
}

// Those with text; the others only end one before.
static size_t Count_Captions(const Track &stTrack)
{
    return static_cast<size_t>(
        std::count_if(stTrack.astFrames.begin(), stTrack.astFrames.end(),
                      [](const Frame &stFrame) { return !stFrame.astrLines.empty(); }));
}

// Left by a run that was stopped before it could tell of it.
static bool Holds_Text(const std::string &strFile, const std::string &strText)
{
    return access(strFile.c_str(), R_OK) == 0 && Read_FileBytes(strFile) == strText;
}

static ConvertedFile Write_Output(const ConvertOptions &stConvert, const std::string &strFile,
                                  std::span<const Track> astTracks)
{
    const OutputFormat &stFormat = *stConvert.pstFormat;
    ConvertedFile stOutput;
    stOutput.strFile = strFile;
    stOutput.pszFormat = stFormat.pszTitle;
    for (const Track &stTrack : astTracks) {
        stOutput.uiFrames += Count_Captions(stTrack);
        stOutput.stLosses.Add_All(stTrack.stLosses);
    }
    const std::string strUtf8 =
        stFormat.pfWrite(astTracks, static_cast<int32_t>(stConvert.uiOpenMs), stOutput.stLosses);
    const std::string strText =
        Encode_Text(strUtf8, stConvert.strEncoding, stFormat, stConvert.bMark, stOutput.stLosses, astTracks);
    stOutput.uiFrames -= stOutput.stLosses.Count_LeftOut();
    if (stConvert.bStrict && stOutput.stLosses.Has_Text())
        stOutput.stOutcome = {E_EXIT_TEXT_LOST, "text would be lost, and with --strict nothing is written"};
    else if (strFile == "-")
        std::fwrite(strText.data(), 1, strText.size(), stdout);
    else
        stOutput.stOutcome = Write_Safely(strFile, strText, stConvert.bForce);
    if (stConvert.bSameIsGood && stOutput.stOutcome.eCode == E_EXIT_SOME_FAILED &&
        Holds_Text(strFile, strText))
        stOutput.stOutcome = {};
    return stOutput;
}

static void Report_Output(const ConvertedFile &stOutput, bool bJson)
{
    const bool bGood = stOutput.stOutcome.IsGood();
    if (bGood && !bJson && stOutput.strFile != "-")
        std::printf("%s  %s  %zu captions\n", stOutput.strFile.c_str(), stOutput.pszFormat,
                    stOutput.uiFrames);
    if (!bGood) Report_Problem(stOutput.strFile, stOutput.stOutcome.strText);
    if (stOutput.stOutcome.eCode != E_EXIT_GOOD && stOutput.stOutcome.eCode != E_EXIT_TEXT_LOST) return;
    for (const std::string &strLoss : stOutput.stLosses.List()) Report_Problem(stOutput.strFile, strLoss);
}

// What is wrong whatever the inputs hold.
static Outcome Check_Options(const Options &stOptions)
{
    const ConvertOptions &stConvert = stOptions.stConvert;
    const OutputFormat &stFormat = *stConvert.pstFormat;
    if (!stFormat.bSeveral && stOptions.astrMovies.size() > 1)
        return {E_EXIT_USAGE, "only SAMI and JSON hold several inputs"};
    if (!stFormat.bCodePages && stConvert.strEncoding != "UTF-8")
        return {E_EXIT_USAGE, std::string(stFormat.pszTitle) + " is always UTF-8"};
    if (stFormat.pfWrite != Write_Sami && !stConvert.astrClassNames.empty())
        return {E_EXIT_USAGE, "only SAMI has class names"};
    if (stConvert.strFile == "-" && stOptions.stReport.bJson)
        return {E_EXIT_USAGE, "standard output is for the captions or for the report, not for both"};
    return {};
}

// A SAMI reader looks for classes without decoding double-byte characters, and then never finds their frames.
static bool Has_LostName(const Track &stTrack)
{
    return std::any_of(stTrack.strClass.begin(), stTrack.strClass.end(), Is_High);
}

static Outcome Check_Tracks(const ConvertOptions &stConvert, const std::vector<Track> &astTracks)
{
    const bool bSami = stConvert.pstFormat->pfWrite == Write_Sami;
    if (bSami && astTracks.size() > SAMI_CLASSES) return {E_EXIT_USAGE, "SAMI holds at most 7 languages"};
    if (bSami && !Is_Unicode(stConvert.strEncoding) &&
        std::any_of(astTracks.begin(), astTracks.end(), Has_LostName))
        return {E_EXIT_USAGE,
                "a class name beyond ASCII is only found in UTF-8 or UTF-16 (or use --class-name)"};
    if (astTracks.size() < stConvert.astrClassNames.size())
        return {E_EXIT_USAGE, "there are more class names than languages"};
    if (stConvert.strFile == "-" && !stConvert.pstFormat->bSeveral && astTracks.size() > 1)
        return {E_EXIT_USAGE, "there are several languages; choose one with --class"};
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
        aeCodes.push_back(stOutput.stOutcome.IsGood() && stOutput.stLosses.Has_Text()
                              ? E_EXIT_TEXT_LOST
                              : stOutput.stOutcome.eCode);
    };
    if (stConvert.pstFormat->bSeveral || astTracks.size() == 1) {
        pfWrite(stConvert.strFile, astTracks);
        return aeCodes;
    }
    std::vector<std::string> astrTaken;
    for (const Track &stTrack : astTracks)
        pfWrite(Make_OutputName(stConvert.strFile, stTrack, astrTaken), {&stTrack, 1});
    return aeCodes;
}

// A language without captions would make a file, or a class, that no player can read.
static Outcome Read_Input(const SourceOptions &stSource, const std::string &strMovie,
                          std::vector<Track> &astTracks)
{
    std::vector<Track> astRead;
    Outcome stRead = Read_Tracks(stSource, strMovie, astRead);
    for (Track &stTrack : astRead)
        if (Count_Captions(stTrack) > 0)
            astTracks.push_back(std::move(stTrack));
        else if (stRead.IsGood())
            stRead = {E_EXIT_SOME_FAILED,
                      "no captions to convert" +
                          (stTrack.strClass.empty() ? "" : " in class " + stTrack.strClass)};
    return stRead;
}

static std::vector<ExitCode> Read_Inputs(const Options &stOptions, std::vector<Track> &astTracks,
                                         JsonReport &stJson)
{
    std::vector<ExitCode> aeCodes;
    for (const std::string &strMovie : stOptions.astrMovies) {
        const Outcome stRead = Read_Input(stOptions.stSource, strMovie, astTracks);
        stJson.Begin_File(strMovie);
        if (!stRead.IsGood()) {
            Report_Problem(strMovie, stRead.strText);
            stJson.Add_Failure(stRead);
        }
        aeCodes.push_back(stRead.eCode);
    }
    return aeCodes;
}

static ExitCode Refuse(const Outcome &stOutcome, JsonReport &stJson)
{
    std::fprintf(stderr, "zyrsub: %s\n", stOutcome.strText.c_str());
    stJson.Add_Error(stOutcome);
    return stOutcome.eCode;
}

ExitCode Convert_Inputs(const Options &stOptions, JsonReport &stJson)
{
    const ConvertOptions &stConvert = stOptions.stConvert;
    const Outcome stUsable = Check_Options(stOptions);
    if (!stUsable.IsGood()) return Refuse(stUsable, stJson);
    std::vector<Track> astTracks;
    std::vector<ExitCode> aeCodes = Read_Inputs(stOptions, astTracks, stJson);
    if (astTracks.empty()) return Combine_Codes(aeCodes);
    if (stConvert.pstFormat->pfWrite == Write_Sami) Name_Classes(astTracks, stConvert.astrClassNames);
    const Outcome stFits = Check_Tracks(stConvert, astTracks);
    if (!stFits.IsGood()) return Refuse(stFits, stJson);
    for (Track &stTrack : astTracks) Retime_Track(stTrack, stConvert.dScale, stConvert.llShift);
    const ExitCode eRead = Combine_Codes(aeCodes);
    const std::vector<ExitCode> aeWritten = Write_Outputs(stOptions, astTracks, stJson);
    for (const ExitCode eCode : aeWritten) // what was written with losses is no failure beside what was not
        if (eCode != E_EXIT_TEXT_LOST) aeCodes.push_back(eCode);
    const bool bLost = std::find(aeWritten.begin(), aeWritten.end(), E_EXIT_TEXT_LOST) != aeWritten.end();
    const ExitCode eAll = Combine_Codes(aeCodes);
    return eRead == E_EXIT_GOOD && eAll == E_EXIT_GOOD && bLost ? E_EXIT_TEXT_LOST : eAll;
}

// A file of a tree becomes one of its own, below the folder that -o names, under its own path.
static ExitCode Convert_TreeFile(const Options &stOptions, const TreeFile &stFile)
{
    Options stOne = stOptions;
    const std::filesystem::path stTarget =
        std::filesystem::path(stOptions.stConvert.strFile) / stFile.strBelow;
    std::error_code stIgnored; // the write tells what is wrong
    std::filesystem::create_directories(stTarget.parent_path(), stIgnored);
    stOne.astrMovies = {stFile.strPath};
    stOne.stConvert.bSameIsGood = !stOptions.stTree.strResults.empty();
    stOne.stConvert.strFile =
        std::filesystem::path(stTarget).replace_extension(stOptions.stConvert.pstFormat->pszName).string();
    JsonReport stJson;
    const ExitCode eCode = Convert_Inputs(stOne, stJson);
    if (stOptions.stReport.bJson) stJson.Print_Line();
    return eCode;
}

ExitCode Run_Convert(const Options &stOptions)
{
    if (Is_TreeRun(stOptions) && stOptions.stConvert.strFile != "-")
        return Run_Tree(stOptions, [&](const TreeFile &stFile) {
            return TreeReport{Convert_TreeFile(stOptions, stFile), "", "", {}, ""};
        });
    JsonReport stJson;
    const ExitCode eCode = Convert_Inputs(stOptions, stJson);
    if (stOptions.stReport.bJson) stJson.Print();
    return eCode;
}
