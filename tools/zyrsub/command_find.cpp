// zyrsub find: the names that are tried for a movie, and the one that wins.
#include "commands.h"

#include <cstdio>

#include "movie_search.h"
#include "report_json.h"

static void Print_Search(const std::string &strMovie, const MovieSearch &stSearch,
                         const std::string &strVerdict)
{
    std::printf("%s\n", strMovie.c_str());
    for (size_t uiName = 0; uiName < stSearch.astTried.size(); ++uiName) {
        const TriedName &stName = stSearch.astTried[uiName];
        const bool bLater = stName.bOpens && stSearch.uiWinner != uiName;
        std::printf("  %2zu  %s  %s%s\n", uiName + 1, stName.strFile.c_str(), stName.strState.c_str(),
                    bLater ? ", too late" : "");
    }
    std::printf("  %s\n", strVerdict.c_str());
    for (const Sibling &stSibling : stSearch.astSiblings)
        std::printf("  never asked for: %s  %s\n", stSibling.strFile.c_str(), stSibling.strWhy.c_str());
}

// The first name that opens is the engine's choice, whether or not it can then be read.
static Outcome Judge_Winner(const MovieSearch &stSearch, const SourceOptions &stOptions,
                            std::string &strVerdict)
{
    if (!stSearch.uiWinner) {
        strVerdict = "no subtitle: none of these names opens";
        return {E_EXIT_NOT_FOUND, strVerdict};
    }
    const std::string &strFile = stSearch.astTried[*stSearch.uiWinner].strFile;
    strVerdict = "wins: " + strFile + ", the first of these names that opens";
    CaptionFile stCaptions;
    Outcome stOpened = stCaptions.Open(strFile, stOptions);
    if (stOpened.IsGood())
        strVerdict += std::string("; it reads as ") + stCaptions.Get_File().pszFormat;
    else
        strVerdict += "; but: " + stOpened.strText;
    return stOpened;
}

ExitCode Run_Find(const Options &stOptions)
{
    JsonReport stJson;
    std::vector<ExitCode> aeCodes;
    for (const std::string &strMovie : stOptions.astrMovies) {
        const MovieSearch stSearch = Search_Movie(strMovie);
        std::string strVerdict;
        const Outcome stOutcome = Judge_Winner(stSearch, stOptions.stSource, strVerdict);
        stJson.Begin_File(strMovie);
        stJson.Add_Search(stSearch, strVerdict);
        if (!stOptions.stReport.bJson) Print_Search(strMovie, stSearch, strVerdict);
        if (!stOutcome.IsGood()) {
            Report_Problem(strMovie, stOutcome.strText);
            stJson.Add_Failure(stOutcome);
        }
        aeCodes.push_back(stOutcome.eCode);
    }
    if (stOptions.stReport.bJson) stJson.Print();
    return Combine_Codes(aeCodes);
}
