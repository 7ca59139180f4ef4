// SAMI's SYNC tags and paragraphs as a person sees them, held against the captions that come of them.
#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "finder.h"

namespace
{

constexpr size_t NOWHERE = std::string_view::npos;
constexpr size_t NAME_MOST = 12;
constexpr uint32_t CLASSES_MOST = 7;
constexpr uint32_t READ_MOST = 5;

// A tag's stretch of the file's text; of its attributes as they are written.
struct Tag {
    size_t uiFirst = 0;
    size_t uiEnd = 0; // behind its ">"
};

struct Attribute {
    size_t uiName = NOWHERE;
    size_t uiValue = NOWHERE; // behind "=", with its quotation mark
    size_t uiEnd = NOWHERE;
    size_t uiPlace = 0; // among the tag's attributes, 0 on
};

struct Paragraph {
    Tag stTag;
    size_t uiEnd = 0; // of its text
    bool bNamed = false;
    Attribute stClass;
    std::string strBoxName; // as the box reads it; empty: none
};

struct Sync {
    Tag stTag;
    size_t uiEnd = 0; // of all its text
    bool bComment = false;
    bool bBehind = false; // the end of the body
    std::vector<Paragraph> astParagraphs = {};
    bool bShown = false; // some caption is its
};

// What the scan has of the whole file.
struct SamiFile {
    Finder &stFinder;
    std::string_view strText;
    std::string_view strLower;
    std::vector<Sync> astSyncs = {};
    std::multimap<size_t, uint32_t> auiCaptions = {}; // by place
    std::set<std::string> astrTold = {};              // names that a finding for all was made of
};

std::string Upper(std::string_view strText)
{
    std::string strUpper(strText);
    for (char &cChar : strUpper)
        if (cChar >= 'a' && cChar <= 'z') cChar = static_cast<char>(cChar & ~0x20);
    return strUpper;
}

std::string_view Get_Value(const SamiFile &stFile, const Attribute &stAttribute)
{
    if (stAttribute.uiValue == NOWHERE) return "";
    return stFile.strText.substr(stAttribute.uiValue, stAttribute.uiEnd - stAttribute.uiValue);
}

bool Is_Quote(char cChar)
{
    return cChar == '"' || cChar == '\'';
}

// One attribute from uiAt on: a name, "=", and a value with or without quotation marks.
Attribute Read_Attribute(std::string_view strText, size_t uiAt, size_t uiEnd)
{
    Attribute stOne;
    while (uiAt < uiEnd && !Is_Letter(strText[uiAt])) ++uiAt;
    if (uiAt >= uiEnd) return stOne;
    stOne.uiName = uiAt;
    while (uiAt < uiEnd && Is_Letter(strText[uiAt])) ++uiAt;
    const size_t uiEquals = strText.find_first_not_of(" \t\n", uiAt);
    stOne.uiEnd = uiAt;
    if (uiEquals >= uiEnd || strText[uiEquals] != '=') return stOne;
    uiAt = std::min(strText.find_first_not_of(" \t\n", uiEquals + 1), uiEnd);
    stOne.uiValue = uiAt;
    const size_t uiQuote =
        uiAt < uiEnd && Is_Quote(strText[uiAt]) ? strText.find(strText[uiAt], uiAt + 1) : NOWHERE;
    stOne.uiEnd = uiQuote < uiEnd ? uiQuote + 1 : std::min(strText.find_first_of(" \t\n>", uiAt), uiEnd);
    return stOne;
}

Attribute Find_Attribute(const SamiFile &stFile, const Tag &stTag, size_t uiAt, std::string_view strName)
{
    for (size_t uiPlace = 0;; ++uiPlace) {
        Attribute stOne = Read_Attribute(stFile.strText, uiAt, stTag.uiEnd - 1);
        if (stOne.uiName == NOWHERE) return stOne;
        stOne.uiPlace = uiPlace;
        if (stFile.strLower.substr(stOne.uiName).starts_with(strName)) return stOne;
        uiAt = stOne.uiEnd;
    }
}

// ------------------------------------------------------------------------------------------------- the scan

bool Is_Tag(const SamiFile &stFile, size_t uiAt, std::string_view strName)
{
    if (!stFile.strLower.substr(uiAt + 1).starts_with(strName)) return false;
    const size_t uiNext = uiAt + 1 + strName.size();
    return uiNext >= stFile.strLower.size() ||
           !(Is_Letter(stFile.strLower[uiNext]) || Is_Digit(stFile.strLower[uiNext]));
}

Tag Read_Tag(const SamiFile &stFile, size_t uiAt)
{
    const size_t uiClose = stFile.strText.find('>', uiAt);
    return {uiAt, uiClose == NOWHERE ? stFile.strText.size() : uiClose + 1};
}

// To the box a class is the first attribute alone, its value up to a blank, quotation marks and all.
std::string Read_BoxName(const SamiFile &stFile, const Paragraph &stParagraph)
{
    if (stParagraph.stClass.uiPlace > 0) return "";
    const size_t uiFirst = stParagraph.stClass.uiValue;
    const size_t uiEnd = std::min(stFile.strText.find_first_of(" \t\n>", uiFirst), stParagraph.stTag.uiEnd);
    return Upper(stFile.strText.substr(uiFirst, uiEnd - uiFirst)).substr(0, NAME_MOST);
}

void Add_Paragraph(const SamiFile &stFile, Sync &stSync, size_t uiAt)
{
    Paragraph stParagraph;
    stParagraph.stTag = Read_Tag(stFile, uiAt);
    stParagraph.stClass = Find_Attribute(stFile, stParagraph.stTag, uiAt + 2, "class");
    stParagraph.bNamed = stParagraph.stClass.uiValue != NOWHERE;
    if (stParagraph.bNamed) stParagraph.strBoxName = Read_BoxName(stFile, stParagraph);
    if (!stSync.astParagraphs.empty()) stSync.astParagraphs.back().uiEnd = uiAt;
    stSync.astParagraphs.push_back(stParagraph);
}

void End_Sync(SamiFile &stFile, size_t uiAt)
{
    if (stFile.astSyncs.empty() || stFile.astSyncs.back().uiEnd != 0) return;
    Sync &stSync = stFile.astSyncs.back();
    stSync.uiEnd = uiAt;
    if (!stSync.astParagraphs.empty()) stSync.astParagraphs.back().uiEnd = uiAt;
}

// Comments hide tags from a person and not from the box.
void Scan_Tags(SamiFile &stFile)
{
    size_t uiComment = 0; // its end
    bool bEnds = true;    // one may come
    bool bBehind = false;
    for (size_t uiAt = stFile.strText.find('<'); uiAt != NOWHERE; uiAt = stFile.strText.find('<', uiAt + 1)) {
        if (uiAt >= uiComment && bEnds && stFile.strText.substr(uiAt).starts_with("<!--")) {
            const size_t uiClose = stFile.strText.find("-->", uiAt);
            bEnds = uiClose != NOWHERE;
            uiComment = bEnds ? uiClose : uiComment;
        } else if (Is_Tag(stFile, uiAt, "/body") || Is_Tag(stFile, uiAt, "/sami")) {
            End_Sync(stFile, uiAt);
            bBehind = true;
        } else if (Is_Tag(stFile, uiAt, "sync")) {
            End_Sync(stFile, uiAt);
            stFile.astSyncs.push_back({Read_Tag(stFile, uiAt), 0, uiAt < uiComment, bBehind});
        } else if (Is_Tag(stFile, uiAt, "p") && !stFile.astSyncs.empty() &&
                   stFile.astSyncs.back().uiEnd == 0) {
            Add_Paragraph(stFile, stFile.astSyncs.back(), uiAt);
        }
    }
    End_Sync(stFile, stFile.strText.size());
}

// ------------------------------------------------------------------------------------------------- SYNC tags

bool Has_Text(const SamiFile &stFile, size_t uiFirst, size_t uiEnd)
{
    PlainText stText(stFile.strText);
    stText.Read_Sami(uiFirst, uiEnd);
    return !stText.Get().empty();
}

void Add_ForSync(const SamiFile &stFile, const Sync &stSync, FindingRule eRule,
                 const std::string &strSentence)
{
    stFile.stFinder.Add(eRule, stSync.stTag.uiFirst, stSync.stTag.uiEnd - stSync.stTag.uiFirst,
                        ZYR_CAPTIONS_NONE, strSentence);
}

std::set<std::string> List_Names(const SamiFile &stFile, uint32_t uiClass)
{
    std::set<std::string> astrNames;
    ZyrCaptionClass stClass;
    zyrCaptions_getClass(stFile.stFinder.pstMeant, uiClass, &stClass);
    if (stClass.pszName != nullptr) astrNames.insert(Upper(stClass.pszName));
    for (uint32_t uiName = 0; uiName < stClass.uiFolded; ++uiName)
        astrNames.insert(Upper(zyrCaptions_getFoldedName(stFile.stFinder.pstMeant, uiClass, uiName)));
    return astrNames;
}

void Add_ForParagraph(const SamiFile &stFile, const Paragraph &stParagraph, FindingRule eRule,
                      const std::string &strSentence)
{
    stFile.stFinder.Add(eRule, stParagraph.stTag.uiFirst, stParagraph.stTag.uiEnd - stParagraph.stTag.uiFirst,
                        ZYR_CAPTIONS_NONE, strSentence);
}

void Find_NotShown(const SamiFile &stFile, const Paragraph &stParagraph)
{
    const ZyrCaptionsFile &stAbout = stFile.stFinder.stAbout;
    bool bClass = stParagraph.strBoxName.empty();
    for (uint32_t uiClass = 0; uiClass < stAbout.uiClasses; ++uiClass)
        bClass = bClass || List_Names(stFile, uiClass).count(stParagraph.strBoxName) > 0;
    if (!bClass && stAbout.uiClasses >= CLASSES_MOST)
        return Add_ForParagraph(stFile, stParagraph, E_RULE_SMI_EIGHTH_CLASS,
                                "the box has seven classes already: " + stParagraph.strBoxName +
                                    " is never shown");
    const std::string_view strValue = Get_Value(stFile, stParagraph.stClass);
    if (!strValue.empty() && Is_Quote(strValue[0]))
        return Add_ForParagraph(
            stFile, stParagraph, E_RULE_SMI_CLASS_QUOTED,
            "to the box the quotation marks belong to the name, and then do not: the paragraph "
            "is in no class");
    Add_ForParagraph(stFile, stParagraph, E_RULE_SMI_NOT_SHOWN, "the box shows this paragraph in no caption");
}

// Why the box has no caption of a SYNC that has text.
void Tell_NoCaption(const SamiFile &stFile, const Sync &stSync)
{
    const Attribute stStart = Find_Attribute(stFile, stSync.stTag, stSync.stTag.uiFirst + 5, "start");
    const std::string_view strValue = Get_Value(stFile, stStart);
    if (stSync.bBehind)
        return Add_ForSync(stFile, stSync, E_RULE_SMI_BEHIND_BODY,
                           "the box stops reading at the end of the body, before this");
    if (stStart.uiValue != NOWHERE && stStart.uiPlace > 0)
        return Add_ForSync(
            stFile, stSync, E_RULE_SMI_START_NOT_FIRST,
            "START is not the first attribute: the box passes the SYNC over, and its text with it");
    if (!strValue.empty() && Is_Quote(strValue[0]))
        return Add_ForSync(stFile, stSync, E_RULE_SMI_START_QUOTED,
                           "START is in quotation marks: the box passes the SYNC over, and its text with it");
    if (strValue.empty() || strValue.find_first_not_of("0123456789") != NOWHERE ||
        stFile.strText[stStart.uiValue - 1] != '=')
        return Add_ForSync(
            stFile, stSync, E_RULE_SMI_START_UNREADABLE,
            "the box finds no START of digits alone and passes the SYNC over, and its text with it");
    for (const Paragraph &stParagraph : stSync.astParagraphs) Find_NotShown(stFile, stParagraph);
    if (stSync.astParagraphs.empty())
        Add_ForSync(stFile, stSync, E_RULE_SMI_NOT_SHOWN, "the box makes no caption of this SYNC");
}

bool Has_BadEnd(const SamiFile &stFile, const Sync &stSync)
{
    const Attribute stEnd = Find_Attribute(stFile, stSync.stTag, stSync.stTag.uiFirst + 5, "end");
    std::string_view strValue = Get_Value(stFile, stEnd);
    if (strValue.size() > 1 && Is_Quote(strValue[0]) && strValue.back() == strValue[0])
        strValue = strValue.substr(1, strValue.size() - 2);
    return stEnd.uiValue != NOWHERE && strValue.find_first_not_of("0123456789") != NOWHERE;
}

// ------------------------------------------------------------------------------------------------- captions

// The text in front of the first named paragraph is everybody's; a nameless one goes on with what is before it.
void Read_Meant(const Sync &stSync, const std::set<std::string> &astrNames, PlainText &stMeant,
                std::vector<const Paragraph *> &apstOwn)
{
    const bool bNone = stSync.astParagraphs.empty();
    stMeant.Read_Sami(stSync.stTag.uiEnd, bNone ? stSync.uiEnd : stSync.astParagraphs[0].stTag.uiFirst);
    bool bOwn = true;
    for (const Paragraph &stParagraph : stSync.astParagraphs) {
        if (!stParagraph.strBoxName.empty()) bOwn = astrNames.count(stParagraph.strBoxName) > 0;
        if (!bOwn) continue;
        stMeant.Read_Sami(stParagraph.stTag.uiEnd, stParagraph.uiEnd);
        apstOwn.push_back(&stParagraph);
    }
}

std::string Show_Class(const SamiFile &stFile, uint32_t uiClass)
{
    ZyrCaptionClass stClass;
    zyrCaptions_getClass(stFile.stFinder.pstMeant, uiClass, &stClass);
    return stClass.pszName == nullptr || *stClass.pszName == '\0' ? "(unnamed)" : stClass.pszName;
}

void Find_Folded(const SamiFile &stFile, const Sync &stSync, uint32_t uiCaption,
                 const std::vector<const Paragraph *> &apstOwn)
{
    const ZyrCaption &stCaption = stFile.stFinder.astCaptions[uiCaption];
    const std::string strClass = Show_Class(stFile, stCaption.uiClass);
    const Paragraph *const pstFirst = apstOwn.empty() ? nullptr : apstOwn.front();
    const std::string strName = pstFirst == nullptr ? "" : pstFirst->strBoxName;
    if (stCaption.uiTextBytes == 0 || strName == Upper(strClass) ||
        (strName.empty() && strClass == "(unnamed)"))
        return;
    const Tag &stTag = pstFirst == nullptr ? stSync.stTag : pstFirst->stTag;
    stFile.stFinder.Add(E_RULE_SMI_CLASS_FOLDED, stTag.uiFirst, stTag.uiEnd - stTag.uiFirst, uiCaption,
                        "the box shows this as a caption of " + strClass + ", into which it has put " +
                            (strName.empty() ? "the captions without a class" : strName));
}

void Find_InCaption(const SamiFile &stFile, Sync &stSync, uint32_t uiCaption,
                    std::set<const Paragraph *> &apstShown)
{
    const ZyrCaption &stCaption = stFile.stFinder.astCaptions[uiCaption];
    PlainText stMeant(stFile.strText);
    std::vector<const Paragraph *> apstOwn;
    Read_Meant(stSync, List_Names(stFile, stCaption.uiClass), stMeant, apstOwn);
    apstShown.insert(apstOwn.begin(), apstOwn.end());
    if (stSync.bComment) {
        if (stCaption.uiTextBytes > 0)
            Add_ForSync(stFile, stSync, E_RULE_SMI_COMMENT,
                        "the box shows this SYNC although it is in a comment");
        return;
    }
    if (Has_BadEnd(stFile, stSync))
        return Add_ForSync(stFile, stSync, E_RULE_SMI_END_UNREADABLE,
                           "the box cannot read END, and shows the text of the next good SYNC instead");
    Find_Folded(stFile, stSync, uiCaption, apstOwn);
    const size_t uiFirst =
        stSync.astParagraphs.empty() ? stSync.uiEnd : stSync.astParagraphs[0].stTag.uiFirst;
    Find_InText(stFile.stFinder, uiCaption, stMeant,
                [&](size_t uiText) { return uiText < uiFirst ? E_RULE_SMI_NOT_SHOWN : E_RULE_TEXT_MISSING; });
}

// ------------------------------------------------------------------------------------------------- paragraphs

void Find_InName(SamiFile &stFile, const Paragraph &stParagraph)
{
    const std::string_view strValue = Get_Value(stFile, stParagraph.stClass);
    if (stParagraph.stClass.uiPlace > 0)
        return Add_ForParagraph(stFile, stParagraph, E_RULE_SMI_CLASS_NOT_FIRST,
                                "CLASS is not the first attribute: to the box this paragraph has no class");
    if (strValue.empty() || !stFile.astrTold.insert(Upper(strValue)).second) return;
    if (strValue.size() > NAME_MOST)
        Add_ForParagraph(stFile, stParagraph, E_RULE_SMI_CLASS_LONG,
                         "the box cuts the name of the class to " + Quote(stParagraph.strBoxName));
}

void Find_InClassPlace(SamiFile &stFile, const Paragraph &stParagraph)
{
    ZyrCaptionClass stClass;
    for (uint32_t ui = 0; zyrCaptions_getClass(stFile.stFinder.pstMeant, ui, &stClass) == ZYR_CAPTIONS_OK;
         ++ui)
        if (ui >= READ_MOST && stParagraph.strBoxName == Upper(stClass.pszName) &&
            stFile.astrTold.insert("sixth " + stParagraph.strBoxName).second)
            Add_ForParagraph(stFile, stParagraph, E_RULE_SMI_SIXTH_CLASS,
                             "the box reads five classes at a time; " + stParagraph.strBoxName +
                                 " is only shown when it is chosen");
}

bool Is_Wanted(const SamiFile &stFile)
{
    const ZyrCaptionsOptions *const pstOptions = stFile.stFinder.stOptions.pstCaptions;
    return pstOptions == nullptr || pstOptions->uiClasses == 0;
}

void Find_InSync(SamiFile &stFile, Sync &stSync)
{
    std::set<const Paragraph *> apstShown;
    const auto [itFirst, itEnd] = stFile.auiCaptions.equal_range(stSync.stTag.uiFirst);
    for (auto itCaption = itFirst; itCaption != itEnd; ++itCaption)
        Find_InCaption(stFile, stSync, itCaption->second, apstShown);
    if (stSync.bComment) return;
    if (itFirst == itEnd) {
        if (Is_Wanted(stFile) && Has_Text(stFile, stSync.stTag.uiEnd, stSync.uiEnd))
            Tell_NoCaption(stFile, stSync);
        return;
    }
    for (const Paragraph &stParagraph : stSync.astParagraphs) {
        if (stParagraph.bNamed) Find_InName(stFile, stParagraph);
        Find_InClassPlace(stFile, stParagraph);
        if (apstShown.count(&stParagraph) == 0 && Is_Wanted(stFile) &&
            Has_Text(stFile, stParagraph.stTag.uiEnd, stParagraph.uiEnd))
            Find_NotShown(stFile, stParagraph);
    }
}

} // namespace

void Find_InSami(Finder &stFinder)
{
    SamiFile stFile{stFinder, stFinder.stFile.Get_Text(), stFinder.stFile.Get_Lower()};
    Scan_Tags(stFile);
    for (uint32_t uiCaption = 0; uiCaption < stFinder.astCaptions.size(); ++uiCaption)
        stFile.auiCaptions.emplace(stFinder.auiPlaces[uiCaption], uiCaption);
    for (Sync &stSync : stFile.astSyncs) Find_InSync(stFile, stSync);
}
