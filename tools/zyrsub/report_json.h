// The same results as one JSON document: {"schema": 1, "files": [...], "errors": [...]}, with one
// element of files for each input in order; convert adds "outputs".
#ifndef ZYRSUB_REPORT_JSON_H
#define ZYRSUB_REPORT_JSON_H

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "caption_file.h"
#include "convert_track.h"
#include "exit_code.h"
#include "line_ends.h"
#include "movie_search.h"

struct ConvertedFile {
    std::string strFile;
    const char *pszFormat = "";
    size_t uiFrames = 0;
    Losses stLosses;
    Outcome stOutcome;
};

class JsonReport
{
public:
    JsonReport();
    ~JsonReport();
    JsonReport(const JsonReport &) = delete;
    JsonReport &operator=(const JsonReport &) = delete;

    void Begin_File(const std::string &strMovie);
    void Add_Failure(const Outcome &stOutcome);
    void Add_Error(const Outcome &stOutcome); // of no one input
    void Add_Info(const CaptionFile &stCaptions, const LineEnds &stEnds);
    void Add_Frame(const CaptionFile &stCaptions, const Frame &stFrame);
    void Add_Output(const ConvertedFile &stOutput);
    void Add_Search(const MovieSearch &stSearch, const std::string &strVerdict);
    void Print() const;
    void Print_Line() const; // the one input, and its outputs, as one line

    // What every successfully opened file begins with.
    void Add_Source(const CaptionFile &stCaptions, bool bFrames);

private:
    std::unique_ptr<nlohmann::ordered_json> m_pstDocument;
};

// The document of a run that failed before it had inputs.
void Print_JsonFailure(ExitCode eCode, const std::string &strText);

#endif
