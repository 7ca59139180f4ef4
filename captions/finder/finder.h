// What all parts of the finder share: the file, the two lists of captions, and the findings so far.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "finding_rules.h"
#include "plain_file.h"
#include "plain_text.h"
#include "zyr/zyr_findings.h"

struct FreeCaptions {
    void operator()(ZyrCaptions *pstList) const { zyrCaptions_free(pstList); }
};
using CaptionsOwner = std::unique_ptr<ZyrCaptions, FreeCaptions>;

// A finding as it is made.
struct FindingRecord {
    FindingRule eRule;
    size_t uiText;      // in the file's text
    size_t uiTextBytes; // that it is about
    uint32_t uiCaption; // of the captions meant, or ZYR_CAPTIONS_NONE
    std::string strSentence;
    bool bWholeFile = false;
};

struct Finder {
    const PlainFile &stFile;
    const ZyrCaptionsFile &stAbout;
    const ZyrCaptions *pstMeant; // as if all lines ended in CR LF
    const ZyrCaptions *pstBox;
    const ZyrFindingsOptions &stOptions;
    std::vector<FindingRecord> astFindings;
    std::vector<ZyrCaption> astCaptions; // of pstMeant
    std::vector<size_t> auiPlaces;       // in the text, where they begin

    void Add(FindingRule eRule, size_t uiText, size_t uiTextBytes, uint32_t uiCaption,
             std::string strSentence);
    void Add_ForFile(FindingRule eRule, std::string strSentence);
    bool Has_Near(size_t uiFirst, size_t uiEnd, uint32_t uiSeverity) const; // a finding at least so severe
};

// Bytes, line ends, encoding.
void Find_InBytes(Finder &stFinder);

// What line ends do to captions.
void Find_LineEnds(Finder &stFinder);

// Entries, their times and texts, format by format.
void Find_InSubRip(Finder &stFinder);
void Find_InSami(Finder &stFinder);
void Find_InSubViewer(Finder &stFinder);
void Find_InSsa(Finder &stFinder);

// A caption's text as it was meant, held against the one that is shown. pfMissing(place) says which rule explains
// text that is missing from there on, where the text itself does not tell.
using MissingRule = std::function<FindingRule(size_t)>;
void Find_InText(Finder &stFinder, uint32_t uiCaption, const PlainText &stMeant,
                 const MissingRule &pfMissing);

// Order, length and speed of captions.
void Find_InTimes(Finder &stFinder);

// How an output shows them.
int Find_OnOutput(Finder &stFinder);

// What is logged and not yet told.
void Find_InLog(Finder &stFinder);

// 1:02:03.004
std::string Show_Time(int64_t llMs);

// "1 caption", "2 captions"
std::string Show_Count(size_t uiNumber, const char *pszOne);

// A short piece of text in quotation marks, cut where it is long.
std::string Quote(std::string_view strUtf8);
