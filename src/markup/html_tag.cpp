#include "markup/html_tag.h"

#include "markup/colour.h"
#include "markup/tag_arguments.h"
#include "markup/tag_command.h"
#include "record/engine_log.h"
#include "record/parser_state.h"
#include "text/name_index.h"
#include "text/text_helpers.h"

namespace
{

/** A tag; its id is its place in the table, the first one's 1. */
struct HtmlTagRow {
    char szName[11];
    bool bSingle = false;   // the tag has no closing form
    uint32_t uiModeBit = 0; // display mode that it sets; 0 = none
};

// clang-format off
constexpr HtmlTagRow HtmlTagTable[] = {
    {"B", false, DISPLAY_MODE_BOLD}, {"BASEFONT", true}, {"BDO"}, {"BIG"}, {"BLOCKQUOTE"}, {"BR", true},
    {"CAPTION"}, {"CENTER", false, DISPLAY_MODE_CENTER}, {"COL", true}, {"COLGROUP"}, {"DD"}, {"DIV"},
    {"DL"}, {"DT"}, {"FONT"}, {"H1", false, DISPLAY_MODE_H1}, {"H2", false, DISPLAY_MODE_H2},
    {"H3", false, DISPLAY_MODE_H3}, {"H4", false, DISPLAY_MODE_H4}, {"H5", false, DISPLAY_MODE_H5},
    {"H6", false, DISPLAY_MODE_H6}, {"HR", true}, {"I", false, DISPLAY_MODE_ITALIC}, {"IMG", true}, {"LI"},
    {"OL"}, {"P", true}, {"PRE"}, {"Q"}, {"S"}, {"SMALL"}, {"SPAN"}, {"STRIKE"}, {"SUB"}, {"SUP"},
    {"TABLE"}, {"TBODY"}, {"TD"}, {"TFOOT"}, {"TH"}, {"THEAD"}, {"TR"}, {"TT"},
    {"U", false, DISPLAY_MODE_UNDERLINE}, {"UL"}, {"ARTICLE"}, {"ASIDE"}, {"AUDIO"}, {"CANVAS"},
    {"COMMAND"}, {"DATAGRID"}, {"DATALIST"}, {"DETAILS"}, {"EMBED", true}, {"FIGCAPTION"}, {"FIGURE"},
    {"FOOTER"}, {"HEADER"}, {"HGROUP"}, {"KEYGEN", true}, {"MARK"}, {"METER"}, {"NAV"}, {"OUTPUT"},
    {"PROGRESS"}, {"RUBY"}, {"RP"}, {"RT"}, {"SECTION"}, {"SOURCE", true}, {"SUMMARY"}, {"TIME"}, {"VIDEO"},
    {"!--", true}, {"HEAD"}, {"TITLE"}, {"STYLE"}, {"BODY"}, {"SAMI"}, {"SYNC", true},
};
// clang-format on

consteval bool Is_TagId(HtmlTag eTag, std::string_view strName)
{
    return HtmlTagTable[eTag - 1].szName == strName;
}
static_assert(std::size(HtmlTagTable) + 1 == E_HTML_TAG_NUMS && Is_TagId(E_HTML_TAG_BR, "BR") &&
              Is_TagId(E_HTML_TAG_FONT, "FONT") && Is_TagId(E_HTML_TAG_P, "P") &&
              Is_TagId(E_HTML_TAG_SYNC, "SYNC"));

constexpr NameIndex<256, true> s_stTagIndex(HtmlTagTable);

constexpr uint32_t TAG_NAME_UNITS = 30;

/** A tag taken apart. */
struct ParsedTag {
    uint32_t uiTag;
    int32_t iKind;
    uint32_t uiWordLength; // units from "<" to the end of the name
};

/** Read kind and id. @return false when the text is no tag. */
bool Parse_TagName(ParsedTag *pstTag, const uint16_t *pusTag, uint32_t uiLen)
{
    uint32_t uiWord = 0;
    while (uiWord < uiLen && !Is_Space(pusTag[uiWord])) ++uiWord;
    pstTag->uiWordLength = uiWord;
    if (uiWord < 2 || pusTag[0] != '<') return false;
    const bool bClosing = pusTag[1] == '/';
    if (bClosing && uiWord == 2) return false;

    const uint16_t *const pusName = pusTag + (bClosing ? 2 : 1);
    uint32_t uiNameLen = uiWord - (bClosing ? 2 : 1);
    if (pusName[uiNameLen - 1] == '>') --uiNameLen;
    if (uiNameLen > TAG_NAME_UNITS) return false;
    for (uint32_t uiPos = 0; uiPos < uiNameLen; ++uiPos)
        if (pusName[uiPos] > 0x7F) return false;

    const HtmlTagRow *const pstRow = s_stTagIndex.Find(HtmlTagTable, pusName, uiNameLen);
    pstTag->uiTag = pstRow == nullptr ? 0 : static_cast<uint32_t>(pstRow - HtmlTagTable) + 1;
    pstTag->iKind = bClosing ? TAG_KIND_CLOSE : TAG_KIND_OPEN;
    if (pstRow == nullptr || pstRow->bSingle) pstTag->iKind = TAG_KIND_SINGLE;
    return true;
}

/** Read a time of a SYNC tag; only the low byte of each unit counts. @return false when not all are digits.
 */
bool Parse_SyncTime(const TagArgument &stArgument, int32_t *piTime)
{
    uint32_t uiTime = 0;
    uint32_t uiPos = 0;
    while (uiPos < stArgument.uiValueLength && Is_Digit(stArgument.pusValue[uiPos] & 0xFF))
        uiTime = uiTime * 10 + ((stArgument.pusValue[uiPos++] & 0xFFu) - '0');
    if (uiPos > 0) *piTime = static_cast<int32_t>(uiTime);
    return uiPos == stArgument.uiValueLength;
}

int32_t Apply_SyncTag(const TagArguments &stArguments)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    stTag.iSyncStart = 0;
    stTag.iSyncEnd = OPEN_END_PTS;
    stTag.bLogged = stArguments.bLogged;
    for (uint32_t uiIndex = 0; uiIndex < stArguments.uiNums; ++uiIndex) {
        const TagArgument &stArgument = stArguments.astArgument[uiIndex];
        if (stArgument.uiValueLength == 0) continue;
        if (Is_ArgumentNamed(stArgument, "START") && !Parse_SyncTime(stArgument, &stTag.iSyncStart))
            return -1;
        if (Is_ArgumentNamed(stArgument, "END") && !Parse_SyncTime(stArgument, &stTag.iSyncEnd)) return -1;
    }
    return TAG_KIND_SINGLE | static_cast<int32_t>(E_HTML_TAG_SYNC);
}

bool Is_ClassName(const uint16_t *pusName, uint32_t uiNameLength, const uint16_t *pusWanted,
                  uint32_t uiWantedLength)
{
    if (uiNameLength != uiWantedLength) return false;
    for (uint32_t uiPos = 0; uiPos < uiNameLength; ++uiPos)
        if (pusName[uiPos] != To_Upper(pusWanted[uiPos])) return false;
    return true;
}

bool Has_AltName(const CaptionClassInfo &stClass, const uint16_t *pusWanted, uint32_t uiWantedLength)
{
    for (uint32_t uiAlt = 0; uiAlt < stClass.uiAltNameNums && uiAlt < ZYR_CLASS_MAX; ++uiAlt)
        if (Is_ClassName(stClass.ausAltName[uiAlt], stClass.auiAltNameLength[uiAlt], pusWanted,
                         uiWantedLength))
            return true;
    return false;
}

int32_t Apply_ParagraphTag(const TagArguments &stArguments, bool bClosing)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    stTag.uiSelectedClass = ZYR_CLASS_MAX;
    stTag.bLogged = stArguments.bLogged;
    stTag.pusClassName = nullptr;
    stTag.uiClassNameLength = 0;
    const TagArgument &stArgument = stArguments.astArgument[0];
    if (!bClosing && stArguments.uiNums == 1 && Is_ArgumentNamed(stArgument, "CLASS")) {
        stTag.pusClassName = stArgument.pusValue;
        stTag.uiClassNameLength = stArgument.uiValueLength < ZYR_CLASS_NAME_UNITS
                                      ? stArgument.uiValueLength
                                      : static_cast<uint32_t>(ZYR_CLASS_NAME_UNITS);
        stTag.uiSelectedClass = Find_NamedClass(stTag.pusClassName, stTag.uiClassNameLength);
    } else if (stInfo.uiClassNums > 0 && stInfo.astClassInfo[stInfo.uiClassNums - 1].uiNameLength == 0) {
        stTag.uiSelectedClass = stInfo.uiClassNums - 1;
    }
    if (stTag.uiSelectedClass == ZYR_CLASS_MAX) {
        LOG_PARSER("Unregistered Clase Name!\n");
        stTag.bLogged = true;
    }
    return TAG_KIND_SINGLE | static_cast<int32_t>(E_HTML_TAG_P);
}

uint32_t Get_ModeBit(uint32_t uiTag)
{
    return HtmlTagTable[uiTag - 1].uiModeBit;
}

uint32_t Get_StyleToSave(uint32_t uiTag)
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    return uiTag == E_HTML_TAG_FONT ? stInfo.usFontColor : stInfo.uiDisplayMode & Get_ModeBit(uiTag);
}

void Restore_Style(uint32_t uiTag, uint32_t uiSavedStyle)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    const uint32_t uiBit = Get_ModeBit(uiTag);
    if (uiTag == E_HTML_TAG_FONT)
        stInfo.usFontColor = static_cast<uint16_t>(uiSavedStyle);
    else if (uiBit != 0)
        stInfo.uiDisplayMode = (stInfo.uiDisplayMode & ~uiBit) | uiSavedStyle;
}

void Log_TagQueue(const char *pszWhat)
{
    LOG_PARSER("OOPS! %s!\n", pszWhat);
}

void Close_Tag(uint32_t uiTag)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    if (stTag.iTagQueueCount < 1) {
        Log_TagQueue("Tag Queue is already EMPTY");
        return;
    }
    int32_t iEntry = stTag.iTagQueueCount - 1;
    while (iEntry >= 0 && stTag.astTagElement[stTag.auiTagQueue[iEntry]].usTagType != uiTag) --iEntry;
    if (iEntry < 0) {
        Log_TagQueue("Don't find the matching tag type");
        return;
    }
    TagElement &stElement = stTag.astTagElement[stTag.auiTagQueue[iEntry]];
    Restore_Style(uiTag, stElement.uiSavedStyle);
    stElement.usTagType = 0;
    --stTag.iTagQueueCount;
    for (; iEntry < stTag.iTagQueueCount; ++iEntry) stTag.auiTagQueue[iEntry] = stTag.auiTagQueue[iEntry + 1];
}

/** Note a tag as open. @return false when no more can be open; the tag is then not applied. */
bool Open_Tag(uint32_t uiTag)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    if (stTag.iTagQueueCount >= TAG_QUEUE_MAX) {
        Log_TagQueue("Tag Queue is already FULL");
        return false;
    }
    // With fewer tags open than there are elements, one of them is free.
    uint32_t uiElement = stTag.uiNextTagElement;
    while (stTag.astTagElement[uiElement].usTagType != 0) uiElement = (uiElement + 1) % TAG_QUEUE_MAX;
    stTag.auiTagQueue[stTag.iTagQueueCount++] = uiElement;
    stTag.astTagElement[uiElement] = {static_cast<uint16_t>(uiTag), Get_StyleToSave(uiTag)};
    stTag.uiNextTagElement = (uiElement + 1) % TAG_QUEUE_MAX;
    return true;
}

void Apply_FontTag(const TagArguments &stArguments)
{
    for (uint32_t uiIndex = 0; uiIndex < stArguments.uiNums; ++uiIndex) {
        const TagArgument &stArgument = stArguments.astArgument[uiIndex];
        uint16_t usColour = 0;
        if (Is_ArgumentNamed(stArgument, "COLOR") &&
            Resolve_Colour(stArgument.pusValue, stArgument.uiValueLength, &usColour))
            Set_TextStyle(E_TAGCMD_SET_FONT_COLOR, usColour);
    }
}

void Apply_Tag(uint32_t uiTag, const TagArguments &stArguments)
{
    if (uiTag == E_HTML_TAG_BR)
        Execute_TagCommand(E_TAGCMD_LINE_BREAK, nullptr);
    else if (uiTag == E_HTML_TAG_FONT)
        Apply_FontTag(stArguments);
    else if (Get_ModeBit(uiTag) != 0)
        Set_TextStyle(E_TAGCMD_SET_DISPLAY_MODE, Get_ModeBit(uiTag));
}

} // namespace

uint32_t Find_NamedClass(const uint16_t *pusName, uint32_t uiLength)
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    uint32_t uiFolded = ZYR_CLASS_MAX;
    for (uint32_t uiClass = 0; uiClass < stInfo.uiClassNums; ++uiClass) {
        const CaptionClassInfo &stClass = stInfo.astClassInfo[uiClass];
        if (Is_ClassName(stClass.ausName, stClass.uiNameLength, pusName, uiLength)) return uiClass;
        if (uiFolded == ZYR_CLASS_MAX && Has_AltName(stClass, pusName, uiLength)) uiFolded = uiClass;
    }
    return uiFolded;
}

int32_t Parse_HtmlTag(const uint16_t *pusTag, int32_t iLen)
{
    if (pusTag == nullptr || iLen == 0) return -1;
    if (iLen < 0 || Is_Space(pusTag[0])) return 0;
    const uint32_t uiLen = static_cast<uint32_t>(iLen);
    ParsedTag stTag = {};
    if (!Parse_TagName(&stTag, pusTag, uiLen)) return 0;

    TagArguments stArguments;
    stArguments.uiNums = 0;
    stArguments.bLogged = false;
    if (uiLen > stTag.uiWordLength)
        Split_TagArguments(&stArguments, pusTag + stTag.uiWordLength, uiLen - stTag.uiWordLength - 1);

    if (stTag.uiTag == E_HTML_TAG_UNKNOWN) return TAG_KIND_SINGLE;
    if (stTag.uiTag == E_HTML_TAG_SYNC) return Apply_SyncTag(stArguments);
    if (stTag.uiTag == E_HTML_TAG_P) return Apply_ParagraphTag(stArguments, pusTag[1] == '/');
    if (stTag.iKind == TAG_KIND_CLOSE)
        Close_Tag(stTag.uiTag);
    else if (stTag.iKind == TAG_KIND_SINGLE || Open_Tag(stTag.uiTag))
        Apply_Tag(stTag.uiTag, stArguments);
    return stTag.iKind | static_cast<int32_t>(stTag.uiTag);
}

void Clear_TagQueue()
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    for (int32_t iEntry = 0; iEntry < stTag.iTagQueueCount; ++iEntry)
        stTag.astTagElement[stTag.auiTagQueue[iEntry]].usTagType = 0;
    stTag.iTagQueueCount = 0;
    stTag.uiNextTagElement = 0;
}
