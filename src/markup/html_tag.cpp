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

struct HtmlTagRow {
    const char *pszName;
    uint8_t ucTag;
    bool bClosing; // the tag has a closing form
};

// clang-format off
constexpr HtmlTagRow HtmlTagTable[] = {
    {"B", E_HTML_TAG_B, true}, {"BASEFONT", E_HTML_TAG_BASEFONT, false}, {"BDO", E_HTML_TAG_BDO, true},
    {"BIG", E_HTML_TAG_BIG, true}, {"BLOCKQUOTE", E_HTML_TAG_BLOCKQUOTE, true},
    {"BR", E_HTML_TAG_BR, false}, {"CAPTION", E_HTML_TAG_CAPTION, true},
    {"CENTER", E_HTML_TAG_CENTER, true}, {"COL", E_HTML_TAG_COL, false},
    {"COLGROUP", E_HTML_TAG_COLGROUP, true}, {"DD", E_HTML_TAG_DD, true}, {"DIV", E_HTML_TAG_DIV, true},
    {"DL", E_HTML_TAG_DL, true}, {"DT", E_HTML_TAG_DT, true}, {"FONT", E_HTML_TAG_FONT, true},
    {"H1", E_HTML_TAG_H1, true}, {"H2", E_HTML_TAG_H2, true}, {"H3", E_HTML_TAG_H3, true},
    {"H4", E_HTML_TAG_H4, true}, {"H5", E_HTML_TAG_H5, true}, {"H6", E_HTML_TAG_H6, true},
    {"HR", E_HTML_TAG_HR, false}, {"I", E_HTML_TAG_I, true}, {"IMG", E_HTML_TAG_IMG, false},
    {"LI", E_HTML_TAG_LI, true}, {"OL", E_HTML_TAG_OL, true}, {"P", E_HTML_TAG_P, false},
    {"PRE", E_HTML_TAG_PRE, true}, {"Q", E_HTML_TAG_Q, true}, {"S", E_HTML_TAG_S, true},
    {"SMALL", E_HTML_TAG_SMALL, true}, {"SPAN", E_HTML_TAG_SPAN, true},
    {"STRIKE", E_HTML_TAG_STRIKE, true}, {"SUB", E_HTML_TAG_SUB, true}, {"SUP", E_HTML_TAG_SUP, true},
    {"TABLE", E_HTML_TAG_TABLE, true}, {"TBODY", E_HTML_TAG_TBODY, true}, {"TD", E_HTML_TAG_TD, true},
    {"TFOOT", E_HTML_TAG_TFOOT, true}, {"TH", E_HTML_TAG_TH, true}, {"THEAD", E_HTML_TAG_THEAD, true},
    {"TR", E_HTML_TAG_TR, true}, {"TT", E_HTML_TAG_TT, true}, {"U", E_HTML_TAG_U, true},
    {"UL", E_HTML_TAG_UL, true}, {"ARTICLE", E_HTML_TAG_ARTICLE, true},
    {"ASIDE", E_HTML_TAG_ASIDE, true}, {"AUDIO", E_HTML_TAG_AUDIO, true},
    {"CANVAS", E_HTML_TAG_CANVAS, true}, {"COMMAND", E_HTML_TAG_COMMAND, true},
    {"DATAGRID", E_HTML_TAG_DATAGRID, true}, {"DATALIST", E_HTML_TAG_DATALIST, true},
    {"DETAILS", E_HTML_TAG_DETAILS, true}, {"EMBED", E_HTML_TAG_EMBED, false},
    {"FIGCAPTION", E_HTML_TAG_FIGCAPTION, true}, {"FIGURE", E_HTML_TAG_FIGURE, true},
    {"FOOTER", E_HTML_TAG_FOOTER, true}, {"HEADER", E_HTML_TAG_HEADER, true},
    {"HGROUP", E_HTML_TAG_HGROUP, true}, {"KEYGEN", E_HTML_TAG_KEYGEN, false},
    {"MARK", E_HTML_TAG_MARK, true}, {"METER", E_HTML_TAG_METER, true}, {"NAV", E_HTML_TAG_NAV, true},
    {"OUTPUT", E_HTML_TAG_OUTPUT, true}, {"PROGRESS", E_HTML_TAG_PROGRESS, true},
    {"RP", E_HTML_TAG_RP, true}, {"RT", E_HTML_TAG_RT, true}, {"RUBY", E_HTML_TAG_RUBY, true},
    {"SECTION", E_HTML_TAG_SECTION, true}, {"SOURCE", E_HTML_TAG_SOURCE, false},
    {"SUMMARY", E_HTML_TAG_SUMMARY, true}, {"TIME", E_HTML_TAG_TIME, true},
    {"VIDEO", E_HTML_TAG_VIDEO, true}, {"!--", E_HTML_TAG_COMMENT, false},
    {"HEAD", E_HTML_TAG_HEAD, true}, {"TITLE", E_HTML_TAG_TITLE, true},
    {"STYLE", E_HTML_TAG_STYLE, true}, {"BODY", E_HTML_TAG_BODY, true}, {"SAMI", E_HTML_TAG_SAMI, true},
    {"SYNC", E_HTML_TAG_SYNC, false},
};
// clang-format on

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
    pstTag->uiTag = pstRow == nullptr ? static_cast<uint32_t>(E_HTML_TAG_UNKNOWN) : pstRow->ucTag;
    pstTag->iKind = bClosing ? TAG_KIND_CLOSE : TAG_KIND_OPEN;
    if (pstRow == nullptr || !pstRow->bClosing) pstTag->iKind = TAG_KIND_SINGLE;
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

/** @return display-mode bit of a tag; 0 for tags that have none. */
uint32_t Get_ModeBit(uint32_t uiTag)
{
    switch (uiTag) {
    case E_HTML_TAG_B: return DISPLAY_MODE_BOLD;
    case E_HTML_TAG_U: return DISPLAY_MODE_UNDERLINE;
    case E_HTML_TAG_I: return DISPLAY_MODE_ITALIC;
    case E_HTML_TAG_CENTER: return DISPLAY_MODE_CENTER;
    case E_HTML_TAG_H1: return DISPLAY_MODE_H1;
    case E_HTML_TAG_H2: return DISPLAY_MODE_H2;
    case E_HTML_TAG_H3: return DISPLAY_MODE_H3;
    case E_HTML_TAG_H4: return DISPLAY_MODE_H4;
    case E_HTML_TAG_H5: return DISPLAY_MODE_H5;
    case E_HTML_TAG_H6: return DISPLAY_MODE_H6;
    default: return 0;
    }
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
