#include "format/ssa/style_list.h"

#include <algorithm>
#include <cstring>

#include "format/ssa/ssa_usual.h"
#include "record/host_callbacks.h"

namespace
{

constexpr uint32_t FIRST_STYLES = 16; // more than most files have
constexpr uint32_t STYLES_MAX = 4096; // a megabyte: no film needs more
constexpr uint32_t WALKED_STYLES = 8; // so few are walked faster than looked up

SSAStyleNode *s_pastStyle = nullptr; // the record's list, in file order
uint32_t s_uiStyleRoom = 0;
uint32_t s_uiStyles = 0;

/**
 * The index is a tree in one array of twice as many numbers of styles. The upper half holds all in the order of
 * their names; entry k below it is the lower one of 2 k and 2 k + 1. So a range of names has its first style in
 * log n steps.
 */
uint32_t *s_puiIndex = nullptr; // NULL = none; else of all styles

/** What has been looked up is no longer sure. */
void Drop_Index()
{
    Forget_UsualFields();
    Free_And_Clear(s_puiIndex);
}

/** Make room for twice as many styles. */
bool Grow_Styles()
{
    const uint32_t uiRoom = s_uiStyleRoom == 0 ? FIRST_STYLES : 2 * s_uiStyleRoom;
    if (uiRoom > STYLES_MAX || !Grow_Array(s_pastStyle, s_uiStyles, uiRoom)) return false;
    for (uint32_t uiStyle = 1; uiStyle < s_uiStyles; ++uiStyle)
        s_pastStyle[uiStyle - 1].pstNext = s_pastStyle + uiStyle;
    pstQuibCaptionParserInfo->pstSSAStyleList = s_pastStyle;
    s_uiStyleRoom = uiRoom;
    return true;
}

/** Order by bytes: any order will do that keeps names with the same beginning together. */
int Compare_Names(uint32_t uiStyle, const uint16_t *pusText, uint32_t uiUnits)
{
    return std::memcmp(s_pastStyle[uiStyle].stStyle.ausStyleName, pusText, uiUnits * sizeof(uint16_t));
}

/** @return the first style of a range of names, or the number of styles. */
uint32_t Find_InIndex(const uint16_t *pusText, uint32_t uiUnits)
{
    const uint32_t *const puiNames = s_puiIndex + s_uiStyles;
    const auto fnCount = [=](int iLimit) { // of the names before the range, or of those up to its end
        const auto fnBefore = [=](uint32_t uiStyle) {
            return Compare_Names(uiStyle, pusText, uiUnits) < iLimit;
        };
        return static_cast<uint32_t>(std::partition_point(puiNames, puiNames + s_uiStyles, fnBefore) -
                                     puiNames);
    };
    uint32_t uiFirst = s_uiStyles;
    uint32_t uiFrom = s_uiStyles + fnCount(0);
    uint32_t uiTo = s_uiStyles + fnCount(1);
    for (; uiFrom < uiTo; uiFrom /= 2, uiTo /= 2) {
        if (uiFrom % 2 != 0) uiFirst = std::min(uiFirst, s_puiIndex[uiFrom++]);
        if (uiTo % 2 != 0) uiFirst = std::min(uiFirst, s_puiIndex[--uiTo]);
    }
    return uiFirst;
}

} // namespace

int32_t Add_SSAStyleInfo(const SSAStyleInfo *pstStyle)
{
    if (pstQuibCaptionParserInfo == nullptr || (s_uiStyles == s_uiStyleRoom && !Grow_Styles())) return -1;
    Drop_Index();
    if (s_uiStyles > 0) s_pastStyle[s_uiStyles - 1].pstNext = s_pastStyle + s_uiStyles;
    s_pastStyle[s_uiStyles++] = {*pstStyle, nullptr};
    return 1;
}

void Index_Styles()
{
    Drop_Index();
    if (s_uiStyles <= WALKED_STYLES || !Grow_Array(s_puiIndex, 0, 2 * s_uiStyles)) return;
    uint32_t *const puiNames = s_puiIndex + s_uiStyles;
    for (uint32_t uiStyle = 0; uiStyle < s_uiStyles; ++uiStyle) puiNames[uiStyle] = uiStyle;
    std::sort(puiNames, puiNames + s_uiStyles, [](uint32_t uiA, uint32_t uiB) {
        return Compare_Names(uiA, s_pastStyle[uiB].stStyle.ausStyleName, ZYR_SSA_NAME_UNITS) < 0;
    });
    for (uint32_t uiPos = s_uiStyles; --uiPos > 0;)
        s_puiIndex[uiPos] = std::min(s_puiIndex[size_t{2} * uiPos], s_puiIndex[size_t{2} * uiPos + 1]);
}

const SSAStyleInfo *Find_Style(const uint16_t *pusText, uint32_t uiLen)
{
    const uint32_t uiUnits = std::min(uiLen, static_cast<uint32_t>(ZYR_SSA_NAME_UNITS));
    uint32_t uiStyle = 0;
    if (s_puiIndex != nullptr)
        uiStyle = Find_InIndex(pusText, uiUnits);
    else
        while (uiStyle < s_uiStyles && Compare_Names(uiStyle, pusText, uiUnits) != 0) ++uiStyle;
    return uiStyle == s_uiStyles ? nullptr : &s_pastStyle[uiStyle].stStyle;
}

void QuibCaptionParser_Destroy_SSA_MemoryBuffers(void)
{
    Drop_Index();
    Free_And_Clear(s_pastStyle);
    s_uiStyleRoom = 0;
    s_uiStyles = 0;
    if (pstQuibCaptionParserInfo == nullptr) return;
    pstQuibCaptionParserInfo->pstSSAStyleList = nullptr;
    pstQuibCaptionParserInfo->stSSAFrameInfo.pstStyle = nullptr;
}
