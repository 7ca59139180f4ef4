#include "source_text.h"

#include <algorithm>
#include <cctype>
#include <set>

#include "text_encode.h"
#include "text_tools.h"

static constexpr size_t SSA_COMMAS = 9; // before the text of a Dialogue line

// Every line end as one newline.
static std::string Join_LineEnds(const std::string &strText)
{
    std::string strOut;
    for (size_t uiByte = 0; uiByte < strText.size(); ++uiByte) {
        size_t uiEnd = uiByte;
        while (uiEnd < strText.size() && strText[uiEnd] == '\r' && uiEnd - uiByte < 2) ++uiEnd;
        const bool bLineFeed = uiEnd < strText.size() && strText[uiEnd] == '\n';
        if (strText[uiByte] == '\r' && bLineFeed) uiByte = uiEnd;
        strOut += strText[uiByte] == '\r' ? '\n' : strText[uiByte];
    }
    return strOut;
}

static bool Is_Blank(const std::string &strLine)
{
    return strLine.find_first_not_of(" \t\f\v") == std::string::npos;
}

static bool Is_Digit(char cChar)
{
    return cChar >= '0' && cChar <= '9';
}

// "1:02" in a line that begins with a digit, whatever blanks are in it, or an arrow.
static bool Is_TimeLine(std::string strLine)
{
    if (strLine.find("-->") != std::string::npos) return true;
    std::erase_if(strLine, [](char cChar) { return cChar == ' ' || cChar == '\t'; });
    if (strLine.empty() || !Is_Digit(strLine[0])) return false;
    for (size_t uiAt = 0; uiAt + 2 < strLine.size(); ++uiAt)
        if (Is_Digit(strLine[uiAt]) && strLine[uiAt + 1] == ':' && Is_Digit(strLine[uiAt + 2])) return true;
    return false;
}

static bool Is_NumberLine(const std::string &strLine)
{
    return strLine.find_first_not_of("0123456789 \t\xEF\xBB\xBF") == std::string::npos;
}

// The ends of what begins at a "<". Where the last one stands is known beforehand: a text of signs without an end
// must not be looked through once for each of them.
class TagEnds
{
public:
    explicit TagEnds(std::string_view strText)
        : m_strText(strText), m_uiTags(strText.rfind('>') + 1), m_uiComments(strText.rfind("-->") + 1)
    {
    }

    // npos where it is no tag: a letter, "/" or "!" follows, and a ">" comes.
    size_t Find(size_t uiAt) const
    {
        static constexpr size_t NONE = std::string_view::npos;
        if (m_strText.substr(uiAt).starts_with("<!--"))
            return uiAt < m_uiComments ? m_strText.find("-->", uiAt) + 2 : NONE;
        const char cNext = uiAt + 1 < m_strText.size() ? m_strText[uiAt + 1] : ' ';
        const bool bTag =
            cNext == '/' || cNext == '!' || std::isalpha(static_cast<unsigned char>(cNext)) != 0;
        return bTag && uiAt < m_uiTags ? m_strText.find('>', uiAt) : NONE;
    }

private:
    std::string_view m_strText;
    size_t m_uiTags;     // behind the last one's end; 0 without any
    size_t m_uiComments; // likewise
};

static size_t Find_EntityEnd(std::string_view strText, size_t uiAt)
{
    size_t uiEnd = uiAt + 1;
    while (uiEnd < strText.size() && uiEnd - uiAt < 10 &&
           (strText[uiEnd] == '#' || std::isalnum(static_cast<unsigned char>(strText[uiEnd])) != 0))
        ++uiEnd;
    return uiEnd > uiAt + 1 ? uiEnd : uiAt;
}

static bool Is_StyleTag(std::string_view strTag)
{
    const std::string strLower = Lower_Case(std::string(strTag.substr(0, 6)));
    for (const char *pszName : {"<b>", "<i>", "<u>", "<font", "<h", "<s>", "<cente"})
        if (strLower.starts_with(pszName)) return true;
    return false;
}

static void Note_Style(AuthorText &stText)
{
    stText.bStyled = true;
    if (!Is_Blank(stText.strText)) stText.bMixed = true;
}

static void Read_Markup(std::string_view strText, AuthorText &stText)
{
    const TagEnds stEnds(strText);
    for (size_t uiAt = 0; uiAt < strText.size(); ++uiAt) {
        const size_t uiTag = strText[uiAt] == '<' ? stEnds.Find(uiAt) : std::string_view::npos;
        const size_t uiEntity = strText[uiAt] == '&' ? Find_EntityEnd(strText, uiAt) : uiAt;
        if (uiTag != std::string_view::npos) {
            if (Is_StyleTag(strText.substr(uiAt))) Note_Style(stText);
            stText.strText += ' ';
            uiAt = uiTag;
        } else if (uiEntity > uiAt) {
            uiAt = uiEntity < strText.size() && strText[uiEntity] == ';' ? uiEntity : uiEntity - 1;
        } else {
            stText.bBareSign = stText.bBareSign || strText[uiAt] == '<';
            stText.strText += strText[uiAt];
        }
    }
}

// A region by lines: what stands before the time line without being a number, the caption's text up to an empty line,
// and the rest.
struct Block {
    std::string strBefore;
    std::string strText;
    std::string strRest;
};

static Block Split_Block(const std::string &strRegion)
{
    Block stBlock;
    std::string *pstrPart = &stBlock.strBefore;
    for (const std::string &strLine : Split_Lines(strRegion)) {
        const bool bTime = pstrPart == &stBlock.strBefore && Is_TimeLine(strLine);
        const bool bNumber = pstrPart == &stBlock.strBefore && !Is_Blank(strLine) && Is_NumberLine(strLine);
        if (pstrPart == &stBlock.strText && Is_Blank(strLine)) pstrPart = &stBlock.strRest;
        if (!bTime && !bNumber) *pstrPart += strLine + "\n";
        if (bTime) pstrPart = &stBlock.strText;
    }
    return stBlock;
}

// Entries of which no caption came, behind the lines of a header.
static size_t Count_LostEntries(std::string_view strText)
{
    const size_t uiHeader = Lower_Case(std::string(strText)).rfind("[subtitle]");
    bool bHeader = uiHeader != std::string::npos;
    if (bHeader) strText.remove_prefix(uiHeader);
    size_t uiLost = 0;
    bool bText = false;
    for (const std::string &strLine : Split_Lines(strText)) {
        bHeader = bHeader && (Is_Blank(strLine) || strLine.starts_with('['));
        bText = bText && !Is_Blank(strLine);
        if (bHeader || Is_NumberLine(strLine) || Is_TimeLine(strLine)) continue;
        uiLost += bText ? 0 : 1;
        bText = true;
    }
    return uiLost;
}

static AuthorText Read_SubViewer(const std::string &strBlock)
{
    AuthorText stText;
    for (size_t uiAt = 0; uiAt < strBlock.size(); ++uiAt)
        if (Lower_Case(strBlock.substr(uiAt, 4)) == "[br]")
            uiAt += 3;
        else
            stText.strText += strBlock[uiAt];
    return stText;
}

static AuthorText Read_Ssa(const std::string &strLine)
{
    AuthorText stText;
    size_t uiAt = 0;
    for (size_t uiCommas = 0; uiAt < strLine.size() && uiCommas < SSA_COMMAS; ++uiAt)
        uiCommas += strLine[uiAt] == ',' ? 1 : 0;
    const size_t uiLast = strLine.rfind('}') + 1; // 0 without any
    for (; uiAt < strLine.size() && strLine[uiAt] != '\n'; ++uiAt) {
        const size_t uiEnd =
            strLine[uiAt] == '{' && uiAt < uiLast ? strLine.find('}', uiAt) : std::string::npos;
        const bool bEscape = strLine[uiAt] == '\\' && uiAt + 1 < strLine.size() &&
                             std::string_view("Nnh").find(strLine[uiAt + 1]) != std::string_view::npos;
        if (uiEnd != std::string::npos) Note_Style(stText);
        stText.strText += uiEnd != std::string::npos || bEscape ? ' ' : strLine[uiAt];
        if (uiEnd != std::string::npos) uiAt = uiEnd;
        if (bEscape) ++uiAt;
    }
    return stText;
}

// The value of a P tag's CLASS, in capitals; "*" for a P without one.
static std::string Get_TagClass(std::string_view strTag)
{
    std::string strUpper(strTag);
    for (char &cChar : strUpper)
        if (cChar >= 'a' && cChar <= 'z') cChar = static_cast<char>(cChar & ~0x20);
    size_t uiAt = strUpper.find("CLASS");
    if (uiAt == std::string::npos) return "*";
    uiAt = strUpper.find_first_not_of(" =\"'", uiAt + 5);
    if (uiAt == std::string::npos) return "*";
    return strUpper.substr(uiAt, strUpper.find_first_of(" \"'>", uiAt) - uiAt);
}

// One SYNC's text of a class; where the class has no part of its own there, all of it.
static std::string Find_Paragraphs(const std::string &strSync, const std::vector<std::string> &astrNames)
{
    const TagEnds stEnds(strSync);
    std::string strOwn;
    bool bOwn = false;
    bool bAny = false;
    for (size_t uiAt = 0; uiAt < strSync.size(); ++uiAt) {
        const bool bTag = strSync[uiAt] == '<';
        const size_t uiEnd = bTag ? stEnds.Find(uiAt) : std::string::npos;
        const std::string strTag = uiEnd == std::string::npos ? "" : strSync.substr(uiAt, uiEnd - uiAt + 1);
        const bool bParagraph = strTag.size() > 2 && Lower_Case(strTag.substr(1, 1)) == "p" &&
                                std::isalpha(static_cast<unsigned char>(strTag[2])) == 0;
        if (bParagraph) {
            const std::string strClass = Get_TagClass(strTag);
            bOwn =
                strClass == "*" || std::find(astrNames.begin(), astrNames.end(), strClass) != astrNames.end();
            bAny = bAny || bOwn;
        }
        if (strTag.empty() && bOwn) strOwn += strSync[uiAt];
        if (!strTag.empty() && bOwn) strOwn += strTag;
        if (!strTag.empty()) uiAt = uiEnd;
    }
    return bAny ? strOwn : strSync;
}

static size_t Find_NoCase(const std::string &strLower, const char *pszWhat, size_t uiFrom)
{
    return std::min(strLower.find(pszWhat, uiFrom), strLower.size());
}

// Whether anything in it would be seen.
static bool Has_Text(const AuthorText &stText)
{
    return Find_Missing(stText.strText, "").uiAll > 0;
}

// SYNCs with text that no caption came of; what stands behind the end of a body is no text.
static size_t Count_LostSyncs(const std::string &strText, const std::string &strLower, size_t uiFrom)
{
    size_t uiLost = 0;
    size_t uiBody = Find_NoCase(strLower, "</body", uiFrom);
    for (size_t uiAt = Find_NoCase(strLower, "<sync", uiFrom); uiAt < strText.size();) {
        const size_t uiNext = Find_NoCase(strLower, "<sync", uiAt + 1);
        if (uiBody < uiAt) uiBody = Find_NoCase(strLower, "</body", uiAt);
        AuthorText stLost;
        Read_Markup(strText.substr(uiAt, std::min(uiNext, uiBody) - uiAt), stLost);
        uiLost += Has_Text(stLost) ? 1 : 0;
        uiAt = uiNext;
    }
    return uiLost;
}

std::string SourceText::Decode(std::string_view strBytes) const
{
    const ZyrCaptionsFile stFile = m_stFile.Get_File();
    const Converter stConverter("UTF-8",
                                stFile.pszCodePage == nullptr ? stFile.pszEncoding : stFile.pszCodePage);
    return Join_LineEnds(stConverter.Convert(strBytes, 1, "\xEF\xBF\xBD"));
}

// Of SAMI only what stands before the next SYNC and the end of the body is the caption's; the rest is looked through
// for SYNCs that no caption came of. The other formats likewise, by lines.
void SourceText::Add_Region(const std::string &strBytes, size_t uiFirst, size_t uiEnd, bool bCaption)
{
    std::string strText = Decode(std::string_view(strBytes).substr(uiFirst, uiEnd - uiFirst));
    const std::string strLower = Lower_Case(strText);
    size_t uiOwn = 0;
    if (m_uiFormat == ZYR_CAPTIONS_SAMI) {
        uiOwn =
            bCaption ? std::min(Find_NoCase(strLower, "<sync", 1), Find_NoCase(strLower, "</body", 1)) : 0;
        if (m_bAllClasses) m_uiStray += Count_LostSyncs(strText, strLower, uiOwn);
    } else if (m_uiFormat == ZYR_CAPTIONS_SSA) {
        uiOwn = bCaption ? std::min(strText.find('\n'), strText.size()) : 0;
        for (size_t uiAt = Find_NoCase(strLower, "\ndialogue:", uiOwn); uiAt < strText.size();
             uiAt = Find_NoCase(strLower, "\ndialogue:", uiAt + 1))
            m_uiStray += Has_Text(Read_Ssa(strText.substr(uiAt + 1))) ? 1 : 0;
    } else if (bCaption) {
        const Block stBlock = Split_Block(strText);
        m_uiStray += Count_LostEntries(stBlock.strBefore);
        m_uiStray += Has_Text({stBlock.strRest}) ? 1 : 0;
        uiOwn = strText.size();
    } else {
        m_uiStray += Count_LostEntries(strText);
    }
    if (bCaption) m_astrRegions[static_cast<uint32_t>(uiFirst)] = strText.substr(0, uiOwn);
}

SourceText::SourceText(const CaptionFile &stFile)
    : m_stFile(stFile), m_uiFormat(stFile.Get_File().uiFormat),
      m_bAllClasses(stFile.List_Classes().size() == stFile.Get_File().uiClasses)
{
    const std::string strBytes = stFile.Read_Bytes();
    std::set<size_t> auiPlaces;
    for (uint32_t uiIndex = 0; uiIndex < stFile.Count(); ++uiIndex)
        auiPlaces.insert(std::min<size_t>(stFile.Get_Caption(uiIndex).uiSource, strBytes.size()));
    if (!auiPlaces.empty()) Add_Region(strBytes, 0, *auiPlaces.begin(), false);
    for (auto itPlace = auiPlaces.begin(); itPlace != auiPlaces.end(); ++itPlace)
        Add_Region(strBytes, *itPlace,
                   std::next(itPlace) == auiPlaces.end() ? strBytes.size() : *std::next(itPlace), true);
}

AuthorText SourceText::Read_Caption(const ZyrCaption &stCaption) const
{
    AuthorText stText;
    const auto itRegion = m_astrRegions.find(stCaption.uiSource);
    if (itRegion == m_astrRegions.end()) return stText;
    if (m_uiFormat == ZYR_CAPTIONS_SSA) return Read_Ssa(itRegion->second);
    if (m_uiFormat == ZYR_CAPTIONS_SUBVIEWER) return Read_SubViewer(Split_Block(itRegion->second).strText);
    if (m_uiFormat == ZYR_CAPTIONS_SUBRIP) {
        Read_Markup(Split_Block(itRegion->second).strText, stText);
        return stText;
    }
    std::vector<std::string> astrNames = {m_stFile.Get_ClassName(stCaption.uiClass)};
    for (uint32_t uiName = 0; uiName < m_stFile.Get_Class(stCaption.uiClass).uiFolded; ++uiName)
        astrNames.emplace_back(zyrCaptions_getFoldedName(m_stFile.Get_List(), stCaption.uiClass, uiName));
    const bool bOne = m_stFile.Get_File().uiClasses == 1;
    Read_Markup(bOne ? itRegion->second : Find_Paragraphs(itRegion->second, astrNames), stText);
    return stText;
}

// By character, blanks left out; what could not be decoded counts nowhere.
static std::map<std::string, size_t> Count_Characters(std::string_view strText)
{
    std::map<std::string, size_t> auiCounts;
    while (!strText.empty()) {
        const std::string strOne = Take_Character(strText);
        const bool bUnseen = static_cast<uint8_t>(strOne[0]) <= ' ' || strOne == "\xC2\xA0" ||
                             strOne == "\xEF\xBF\xBD" || strOne == "\xEF\xBB\xBF";
        if (!bUnseen) ++auiCounts[strOne];
    }
    return auiCounts;
}

MissingCharacters Find_Missing(const std::string &strAuthor, const std::string &strShown)
{
    MissingCharacters stMissing;
    const std::map<std::string, size_t> auiShown = Count_Characters(strShown);
    for (const auto &[strOne, uiTimes] : Count_Characters(strAuthor)) {
        const auto itShown = auiShown.find(strOne);
        const size_t uiSeen = itShown == auiShown.end() ? 0 : std::min(uiTimes, itShown->second);
        stMissing.uiAll += uiTimes - uiSeen;
        if (strOne.size() == 4) stMissing.uiAstral += uiTimes - uiSeen;
    }
    return stMissing;
}
