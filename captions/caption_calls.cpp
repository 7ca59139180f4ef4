// What a list tells of its captions. Nothing here changes a list, or throws but for memory.
#include <algorithm>
#include <new>

#include "caption_index.h"
#include "caption_list.h"

namespace
{

const ZyrCaptionStyle NO_STYLE = {};

bool Is_Continuation(char cByte)
{
    return (cByte & 0xC0) == 0x80;
}

// As much of a text as there is room for, with a zero behind it.
void Copy_Text(const std::string &strText, char *pszText, size_t uiRoom)
{
    if (pszText == nullptr || uiRoom == 0) return;
    size_t uiBytes = std::min(strText.size(), uiRoom - 1);
    while (uiBytes > 0 && uiBytes < strText.size() && Is_Continuation(strText[uiBytes])) --uiBytes;
    std::copy_n(strText.data(), uiBytes, pszText);
    pszText[uiBytes] = '\0';
}

} // namespace

int zyrCaptions_getError(const ZyrCaptions *pstCaptions)
{
    return pstCaptions == nullptr ? static_cast<int>(ZYR_CAPTIONS_NO_MEMORY) : pstCaptions->iError;
}

const char *zyrCaptions_getErrorText(const ZyrCaptions *pstCaptions)
{
    return pstCaptions == nullptr ? "there is not enough memory for the subtitle"
                                  : pstCaptions->strError.c_str();
}

uint32_t zyrCaptions_count(const ZyrCaptions *pstCaptions)
{
    return pstCaptions == nullptr ? 0 : static_cast<uint32_t>(pstCaptions->astRecords.size());
}

int zyrCaptions_get(const ZyrCaptions *pstCaptions, uint32_t uiIndex, ZyrCaption *pstCaption)
{
    if (pstCaption == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    *pstCaption = {};
    pstCaption->pszText = "";
    pstCaption->pstStyle = &NO_STYLE;
    if (uiIndex >= zyrCaptions_count(pstCaptions)) return ZYR_CAPTIONS_BAD_ARGUMENT;
    const CaptionRecord &stRecord = pstCaptions->astRecords[uiIndex];
    pstCaption->iStart = stRecord.iStart;
    pstCaption->iEnd = stRecord.iEnd;
    pstCaption->iShownUntil = stRecord.iShownUntil;
    pstCaption->uiClass = pstCaptions->bTogether ? ZYR_CAPTIONS_ALL : pstCaptions->auiOrder[stRecord.ucOrder];
    pstCaption->pszText = pstCaptions->strText.data() + stRecord.uiText;
    pstCaption->uiTextBytes = stRecord.usTextBytes;
    pstCaption->uiLines = stRecord.ucLines;
    pstCaption->uiBadCharacters = stRecord.usBad;
    pstCaption->uiSource = stRecord.uiSource;
    pstCaption->pstStyle = &pstCaptions->astStyles[stRecord.uiStyle];
    return ZYR_CAPTIONS_OK;
}

uint32_t zyrCaptions_getAt(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime,
                           uint32_t *puiIndexes, uint32_t uiRoom)
{
    if (pstCaptions == nullptr) return 0;
    try {
        std::vector<uint32_t> auiCaptions;
        List_CaptionsAt(*pstCaptions, Find_Orders(*pstCaptions, uiClass), iTime, auiCaptions);
        if (puiIndexes != nullptr)
            std::copy_n(auiCaptions.begin(), std::min<size_t>(uiRoom, auiCaptions.size()), puiIndexes);
        return static_cast<uint32_t>(auiCaptions.size());
    } catch (const std::bad_alloc &) {
        return 0;
    }
}

size_t zyrCaptions_getTextAt(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime, char *pszText,
                             size_t uiRoom)
{
    Copy_Text("", pszText, uiRoom);
    if (pstCaptions == nullptr) return 0;
    try {
        std::vector<uint32_t> auiCaptions;
        List_CaptionsAt(*pstCaptions, Find_Orders(*pstCaptions, uiClass), iTime, auiCaptions);
        std::string strText;
        for (const uint32_t uiCaption : auiCaptions) {
            const std::string_view strOne = pstCaptions->Get_Text(pstCaptions->astRecords[uiCaption]);
            if (!strText.empty() && !strOne.empty()) strText += '\n';
            strText += strOne;
        }
        Copy_Text(strText, pszText, uiRoom);
        return strText.size();
    } catch (const std::bad_alloc &) {
        return 0;
    }
}

uint32_t zyrCaptions_getNext(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime)
{
    if (pstCaptions == nullptr) return ZYR_CAPTIONS_NONE;
    return Find_NextCaption(*pstCaptions, Find_Orders(*pstCaptions, uiClass), iTime);
}

uint32_t zyrCaptions_getPrevious(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime)
{
    if (pstCaptions == nullptr) return ZYR_CAPTIONS_NONE;
    return Find_PreviousCaption(*pstCaptions, Find_Orders(*pstCaptions, uiClass), iTime);
}

int32_t zyrCaptions_getNextChange(const ZyrCaptions *pstCaptions, int32_t iTime)
{
    return pstCaptions == nullptr ? ZYR_CAPTIONS_OPEN_END : Find_NextChange(*pstCaptions, iTime);
}
