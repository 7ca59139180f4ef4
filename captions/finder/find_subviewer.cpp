// SubViewer frames as a person sees them, by their time lines, held against the captions that come of them.
#include <algorithm>
#include <string>

#include "finder.h"

namespace
{

constexpr size_t NOWHERE = std::string_view::npos;
constexpr size_t TIME_DIGITS = 8;

constexpr std::string_view KNOWN_FIELDS =
    " INFORMATION TITLE AUTHOR SOURCE PRG FILEPATH DELAY COMMENT SUBTITLE COLF STYLE SIZE FONT BR ";

struct ViewerFrame {
    size_t uiTimeLine; // places in the file's text
    size_t uiText;
    size_t uiEnd;
    bool bGood; // to the box
};

// Nothing but what times are made of, and enough of it: two numbers with a colon on each side of a comma, or digits.
bool Is_TimeLine(std::string_view strLine)
{
    static constexpr std::ptrdiff_t MOST_DIGITS = 12;
    if (strLine.empty() || strLine.find_first_not_of("0123456789:.,;- \t") != NOWHERE) return false;
    const size_t uiComma = strLine.find(',');
    const bool bColons = strLine.find(':') < uiComma && strLine.find(':', uiComma) != NOWHERE;
    return bColons || std::count_if(strLine.begin(), strLine.end(), Is_Digit) >= MOST_DIGITS;
}

// "01:02:03.04", where each separator may be left out.
bool Is_GoodTime(std::string_view strTime)
{
    static constexpr std::string_view SEPARATORS = "  : : .";
    size_t uiDigits = 0;
    for (const char cChar : strTime)
        if (Is_Digit(cChar))
            ++uiDigits;
        else if (uiDigits >= SEPARATORS.size() || SEPARATORS[uiDigits] != cChar || cChar == ' ')
            return false;
    return uiDigits == TIME_DIGITS;
}

bool Is_GoodLine(std::string_view strLine)
{
    const size_t uiComma = strLine.find(',');
    return Is_GoodTime(strLine.substr(0, uiComma)) && Is_GoodTime(strLine.substr(uiComma + 1));
}

std::vector<ViewerFrame> Read_Frames(const PlainFile &stFile)
{
    std::vector<ViewerFrame> astFrames;
    const std::vector<PlainLine> &astLines = stFile.Get_Lines();
    for (size_t uiLine = 0; uiLine < astLines.size(); ++uiLine) {
        const std::string_view strLine = stFile.Get_Line(uiLine);
        if (!Is_TimeLine(strLine)) continue;
        if (!astFrames.empty()) astFrames.back().uiEnd = astLines[uiLine].uiText;
        const size_t uiText =
            uiLine + 1 < astLines.size() ? astLines[uiLine + 1].uiText : stFile.Get_Text().size();
        astFrames.push_back(
            {astLines[uiLine].uiText, uiText, stFile.Get_Text().size(), Is_GoodLine(strLine)});
    }
    return astFrames;
}

std::string_view Get_LineAt(const Finder &stFinder, size_t uiText)
{
    return stFinder.stFile.Get_Line(stFinder.stFile.Find_Line(uiText));
}

void Add_Bad(Finder &stFinder, const ViewerFrame &stFrame)
{
    stFinder.Add(E_RULE_SUB_TIME_LINE, stFrame.uiTimeLine, Get_LineAt(stFinder, stFrame.uiTimeLine).size(),
                 ZYR_CAPTIONS_NONE, "the box cannot read this time line, and passes the whole frame over");
}

void Add_Swallowed(Finder &stFinder, const ViewerFrame &stFrame, uint32_t uiCaption)
{
    stFinder.Add(E_RULE_SUB_SWALLOWED, stFrame.uiTimeLine, Get_LineAt(stFinder, stFrame.uiTimeLine).size(),
                 uiCaption, "the box does not see that a frame begins here: no empty line stands before it");
}

void Find_InFrame(Finder &stFinder, const ViewerFrame &stFrame, uint32_t uiCaption)
{
    const std::string &strText = stFinder.stFile.Get_Text();
    PlainText stMeant(strText);
    stMeant.Read_SubViewer(stFrame.uiText, stFrame.uiEnd);
    const bool bNone = stFrame.uiText < strText.size() && strText[stFrame.uiText] == '\n';
    const size_t uiEmpty =
        bNone ? stFrame.uiText : std::min(strText.find("\n\n", stFrame.uiText), stFrame.uiEnd);
    Find_InText(stFinder, uiCaption, stMeant, [&](size_t uiText) {
        return uiText >= uiEmpty ? E_RULE_SUB_BEHIND_EMPTY : E_RULE_TEXT_MISSING;
    });
    const size_t uiMore = strText.find_first_not_of(" \t\n", uiEmpty);
    const bool bMore = uiEmpty + 2 < stFrame.uiEnd && uiMore >= stFrame.uiEnd && uiMore != NOWHERE;
    if (bMore && strText[uiEmpty + 2] == '\n')
        stFinder.Add(E_RULE_SUB_EMPTY_LINES, uiEmpty + 2, 1, uiCaption,
                     "the box logs an error for each empty line behind the first");
}

// A frame of the box reaches from the one before to its own end, with what was passed over in front of it.
void Find_InFrames(Finder &stFinder, const std::vector<ViewerFrame> &astFrames)
{
    size_t uiFrame = 0;
    for (uint32_t uiCaption = 0; uiCaption < stFinder.astCaptions.size(); ++uiCaption) {
        const size_t uiEnd =
            uiCaption + 1 < stFinder.auiPlaces.size() ? stFinder.auiPlaces[uiCaption + 1] : NOWHERE;
        bool bOwn = false;
        for (; uiFrame < astFrames.size() && astFrames[uiFrame].uiTimeLine < uiEnd; ++uiFrame) {
            const ViewerFrame &stFrame = astFrames[uiFrame];
            if (bOwn) {
                Add_Swallowed(stFinder, stFrame, uiCaption);
            } else if (!stFrame.bGood) {
                Add_Bad(stFinder, stFrame);
            } else {
                bOwn = true;
                stFinder.auiPlaces[uiCaption] = stFrame.uiTimeLine;
                Find_InFrame(stFinder, stFrame, uiCaption);
            }
        }
    }
    for (; uiFrame < astFrames.size(); ++uiFrame) Add_Bad(stFinder, astFrames[uiFrame]);
}

bool Is_Readable(std::string_view strName, std::string_view strValue)
{
    if (strName == "DELAY" || strName == "SIZE") return strValue.find_first_not_of("0123456789") == NOWHERE;
    if (strName != "COLF") return true;
    return strValue.size() == 8 && (strValue.starts_with("&H") || strValue.starts_with("&h")) &&
           strValue.find_first_not_of("0123456789abcdefABCDEF", 2) == NOWHERE;
}

void Find_InField(Finder &stFinder, size_t uiFirst, size_t uiClose, size_t uiEnd)
{
    const std::string_view strText = stFinder.stFile.Get_Text();
    const std::string strName(strText.substr(uiFirst + 1, uiClose - uiFirst - 1));
    const std::string_view strValue = strText.substr(uiClose + 1, uiEnd - uiClose - 1);
    const bool bKnown = strName == "CD TRACK" || strName == "END INFORMATION" ||
                        (strName.find(' ') == NOWHERE && KNOWN_FIELDS.find(" " + strName + " ") != NOWHERE);
    if (!bKnown)
        stFinder.Add(E_RULE_SUB_FIELD, uiFirst, uiClose + 1 - uiFirst, ZYR_CAPTIONS_NONE,
                     "the box knows no field " + Quote(strName) + " and passes it over");
    else if (!Is_Readable(strName, strValue))
        stFinder.Add(E_RULE_SUB_VALUE, uiClose + 1, strValue.size(), ZYR_CAPTIONS_NONE,
                     "the box cannot read " + Quote(strValue) + " and leaves " + strName + " as it was");
}

// Behind [SUBTITLE] a line without a bracket is the text of a frame whose time line is not there.
void Find_HeaderText(Finder &stFinder, size_t uiEnd)
{
    const size_t uiFirst = stFinder.stFile.Get_Text().find("[SUBTITLE]");
    const std::vector<PlainLine> &astLines = stFinder.stFile.Get_Lines();
    for (size_t uiLine = 0; uiLine < astLines.size() && astLines[uiLine].uiText < uiEnd; ++uiLine) {
        const std::string_view strLine = stFinder.stFile.Get_Line(uiLine);
        const size_t uiText = strLine.find_first_not_of(" \t");
        if (uiFirst > astLines[uiLine].uiText || uiText == NOWHERE || strLine[uiText] == '[' ||
            Is_TimeLine(strLine))
            continue;
        stFinder.Add(E_RULE_TEXT_MISSING, astLines[uiLine].uiText, strLine.size(), ZYR_CAPTIONS_NONE,
                     Quote(strLine) + " stands in the header and is not shown");
    }
}

// A line that begins with a digit.
size_t Find_HeaderEnd(const PlainFile &stFile)
{
    for (size_t uiLine = 0; uiLine < stFile.Get_Lines().size(); ++uiLine)
        if (!stFile.Get_Line(uiLine).empty() && Is_Digit(stFile.Get_Line(uiLine)[0]))
            return stFile.Get_Lines()[uiLine].uiText;
    return stFile.Get_Text().size();
}

// Fields stand at the beginning of a line or behind a comma.
void Find_InHeader(Finder &stFinder, size_t uiEnd)
{
    const std::string_view strText = stFinder.stFile.Get_Text();
    for (size_t uiAt = strText.find('['); uiAt < uiEnd; uiAt = strText.find('[', uiAt)) {
        const size_t uiClose = strText.find_first_of("]\n", uiAt);
        if (uiClose == NOWHERE) return;
        const size_t uiValueEnd = std::min(strText.find_first_of(",\n", uiClose), strText.size());
        if (strText[uiClose] == ']') Find_InField(stFinder, uiAt, uiClose, uiValueEnd);
        uiAt = std::max(uiValueEnd, uiAt + 1);
    }
}

} // namespace

void Find_InSubViewer(Finder &stFinder)
{
    const std::vector<ViewerFrame> astFrames = Read_Frames(stFinder.stFile);
    Find_InHeader(stFinder, Find_HeaderEnd(stFinder.stFile));
    Find_HeaderText(stFinder, Find_HeaderEnd(stFinder.stFile));
    Find_InFrames(stFinder, astFrames);
}
