#include "format/ssa/style_list.h"

#include <algorithm>
#include <cstring>

#include "format/ssa/ssa_usual.h"
#include "record/parser_state.h"

namespace
{

constexpr uint32_t FIRST_STYLES = 16; // more than most files have
constexpr uint32_t STYLES_MAX = 4096; // a megabyte: no film needs more
constexpr uint32_t WALKED_STYLES = 8; // so few are walked faster than looked up
constexpr size_t UNIT_BYTES = sizeof(uint16_t);

/** A node of the record's list and its place there. */
struct StyleEntry {
    SSAStyleNode stNode; // first, so that a node is its entry
    uint32_t uiPlace;    // 0 = first of the file
};

/** A block: this, then uiStyles entries. */
struct alignas(StyleEntry) StyleBlock {
    StyleBlock *pstOlder;
    uint32_t uiStyles; // room
    uint32_t uiUsed;
};

/**
 * The index is a tree in one array of 2 x uiIndexed entries. The upper half holds all entries in the order of
 * their names; entry k below it is the one of 2 k and 2 k + 1 that comes first in the file. So a range of
 * names has its first style in log n steps.
 */
struct StyleStore {
    StyleBlock *pstBlock; // the newest one
    StyleEntry *pstLast;  // end of the record's list
    uint32_t uiStyles;
    StyleEntry **papstIndex; // NULL = none
    uint32_t uiIndexed;      // styles in it
};

StyleStore s_stStyles = {};

StyleEntry *Get_Entries(StyleBlock *pstBlock)
{
    return reinterpret_cast<StyleEntry *>(pstBlock + 1);
}

bool Add_Block()
{
    const uint32_t uiLeft = STYLES_MAX - s_stStyles.uiStyles;
    uint32_t uiStyles = FIRST_STYLES;
    if (s_stStyles.pstBlock != nullptr) uiStyles = s_stStyles.pstBlock->uiStyles * 2;
    if (uiStyles > uiLeft) uiStyles = uiLeft;
    const uint32_t uiBytes = static_cast<uint32_t>(sizeof(StyleBlock) + uiStyles * sizeof(StyleEntry));
    StyleBlock *const pstBlock = static_cast<StyleBlock *>(QUIBCAPTCB_Allocate_Memory(uiBytes));
    if (pstBlock == nullptr) return false;
    *pstBlock = {s_stStyles.pstBlock, uiStyles, 0};
    s_stStyles.pstBlock = pstBlock;
    return true;
}

/** What has been looked up is no longer sure. */
void Drop_Index()
{
    Forget_UsualFields();
    if (s_stStyles.papstIndex != nullptr) QUIBCAPTCB_Deallocate_Memory(s_stStyles.papstIndex);
    s_stStyles.papstIndex = nullptr;
    s_stStyles.uiIndexed = 0;
}

const uint16_t *Get_Name(const StyleEntry *pstEntry)
{
    return pstEntry->stNode.stStyle.ausStyleName;
}

/** Order by bytes: any order will do that keeps names with the same beginning together. */
int Compare_Names(const StyleEntry *pstA, const uint16_t *pusB, uint32_t uiUnits)
{
    return std::memcmp(Get_Name(pstA), pusB, uiUnits * UNIT_BYTES);
}

bool Is_Before(const StyleEntry *pstA, const StyleEntry *pstB)
{
    return Compare_Names(pstA, Get_Name(pstB), ZYR_SSA_NAME_UNITS) < 0;
}

StyleEntry *Get_Earlier(StyleEntry *pstA, StyleEntry *pstB)
{
    if (pstA == nullptr) return pstB;
    return pstA->uiPlace < pstB->uiPlace ? pstA : pstB;
}

const SSAStyleInfo *Find_InIndex(const uint16_t *pusText, uint32_t uiUnits)
{
    StyleEntry **const papstIndex = s_stStyles.papstIndex;
    StyleEntry **const papstSorted = papstIndex + s_stStyles.uiIndexed;
    StyleEntry **const papstEnd = papstSorted + s_stStyles.uiIndexed;
    const auto fnIsBefore = [=](const StyleEntry *pst) { return Compare_Names(pst, pusText, uiUnits) < 0; };
    const auto fnIsNotBehind = [=](const StyleEntry *pst) {
        return Compare_Names(pst, pusText, uiUnits) <= 0;
    };
    StyleEntry **const papstFrom = std::partition_point(papstSorted, papstEnd, fnIsBefore);
    StyleEntry **const papstTo = std::partition_point(papstFrom, papstEnd, fnIsNotBehind);
    size_t uiFrom = static_cast<size_t>(papstFrom - papstIndex);
    size_t uiTo = static_cast<size_t>(papstTo - papstIndex);
    StyleEntry *pstFirst = nullptr;
    for (; uiFrom < uiTo; uiFrom /= 2, uiTo /= 2) {
        if (uiFrom % 2 != 0) pstFirst = Get_Earlier(pstFirst, papstIndex[uiFrom++]);
        if (uiTo % 2 != 0) pstFirst = Get_Earlier(pstFirst, papstIndex[--uiTo]);
    }
    return pstFirst == nullptr ? nullptr : &pstFirst->stNode.stStyle;
}

} // namespace

int32_t Add_SSAStyleInfo(const SSAStyleInfo *pstStyle)
{
    if (pstQuibCaptionParserInfo == nullptr || s_stStyles.uiStyles == STYLES_MAX) return -1;
    const StyleBlock *const pstNewest = s_stStyles.pstBlock;
    if ((pstNewest == nullptr || pstNewest->uiUsed == pstNewest->uiStyles) && !Add_Block()) return -1;
    Drop_Index();
    StyleEntry *const pstEntry = Get_Entries(s_stStyles.pstBlock) + s_stStyles.pstBlock->uiUsed++;
    *pstEntry = {{*pstStyle, nullptr}, s_stStyles.uiStyles++};
    if (s_stStyles.pstLast == nullptr)
        pstQuibCaptionParserInfo->pstSSAStyleList = &pstEntry->stNode;
    else
        s_stStyles.pstLast->stNode.pstNext = &pstEntry->stNode;
    s_stStyles.pstLast = pstEntry;
    return 1;
}

void Index_Styles()
{
    Drop_Index();
    const uint32_t uiNums = s_stStyles.uiStyles;
    if (uiNums <= WALKED_STYLES) return;
    StyleEntry **const papstIndex = static_cast<StyleEntry **>(
        QUIBCAPTCB_Allocate_Memory(2 * uiNums * static_cast<uint32_t>(sizeof(void *))));
    if (papstIndex == nullptr) return;
    uint32_t uiEntry = 2 * uiNums;
    for (StyleBlock *pstBlock = s_stStyles.pstBlock; pstBlock != nullptr; pstBlock = pstBlock->pstOlder)
        for (uint32_t uiPos = pstBlock->uiUsed; uiPos-- > 0;)
            papstIndex[--uiEntry] = Get_Entries(pstBlock) + uiPos;
    std::sort(papstIndex + uiNums, papstIndex + size_t{2} * uiNums, Is_Before);
    for (uint32_t uiPos = uiNums; --uiPos > 0;)
        papstIndex[uiPos] = Get_Earlier(papstIndex[size_t{2} * uiPos], papstIndex[size_t{2} * uiPos + 1]);
    s_stStyles.papstIndex = papstIndex;
    s_stStyles.uiIndexed = uiNums;
}

const SSAStyleInfo *Find_Style(const uint16_t *pusText, uint32_t uiLen)
{
    if (pstQuibCaptionParserInfo == nullptr) return nullptr;
    const uint32_t uiUnits = uiLen < ZYR_SSA_NAME_UNITS ? uiLen : static_cast<uint32_t>(ZYR_SSA_NAME_UNITS);
    if (s_stStyles.papstIndex != nullptr) return Find_InIndex(pusText, uiUnits);
    for (const SSAStyleNode *pstNode = pstQuibCaptionParserInfo->pstSSAStyleList; pstNode != nullptr;
         pstNode = pstNode->pstNext)
        if (std::memcmp(pstNode->stStyle.ausStyleName, pusText, uiUnits * UNIT_BYTES) == 0)
            return &pstNode->stStyle;
    return nullptr;
}

void QuibCaptionParser_Destroy_SSA_MemoryBuffers(void)
{
    Drop_Index();
    for (StyleBlock *pstBlock = s_stStyles.pstBlock; pstBlock != nullptr;) {
        StyleBlock *const pstOlder = pstBlock->pstOlder;
        QUIBCAPTCB_Deallocate_Memory(pstBlock);
        pstBlock = pstOlder;
    }
    s_stStyles = {};
    if (pstQuibCaptionParserInfo == nullptr) return;
    pstQuibCaptionParserInfo->pstSSAStyleList = nullptr;
    pstQuibCaptionParserInfo->stSSAFrameInfo.pstStyle = nullptr;
}
