#include "format/sami/sami_classes.h"

#include <algorithm>

#include "format/sami/sami_index.h"
#include "format/sami/sami_skip.h"
#include "record/engine_log.h"
#include "record/host_callbacks.h"
#include "record/parser_state.h"

namespace
{

constexpr uint32_t SPARSE_FRAMES = 29; // at most so many frames: a class that is folded into another
constexpr uint32_t FILLED_FRAMES = 30; // more than so many: a class that can take others in
constexpr int32_t NO_NEXT_FRAME = -3;
constexpr int32_t BAD_CLASS = -2;
constexpr int32_t TOO_FEW_CLASSES = -4;
constexpr int32_t CLASS_HAS_NAME = -5;

bool Has_Classes()
{
    return pstQuibCaptionParserInfo != nullptr && pstQuibCaptionParserInfo->uiClassNums >= 2;
}

bool Can_Merge()
{
    return s_eCaptionFormat == E_CAPTION_FORMAT_SAMI && Has_Classes();
}

CaptionClassInfo &Get_Class(uint32_t uiClass)
{
    return pstQuibCaptionParserInfo->astClassInfo[uiClass];
}

/** Let stTo cover the frames of stFrom as well. */
void Combine_Frames(CaptionClassInfo &stTo, const CaptionClassInfo &stFrom)
{
    stTo.llFirstFramePos = std::min<int64_t>(stTo.llFirstFramePos, stFrom.llFirstFramePos);
    stTo.iMinPTS = std::min(stTo.iMinPTS, stFrom.iMinPTS);
    stTo.llLastFramePos = std::max<int64_t>(stTo.llLastFramePos, stFrom.llLastFramePos);
    stTo.iMaxPTS = std::max(stTo.iMaxPTS, stFrom.iMaxPTS);
    stTo.uiFrameNums += stFrom.uiFrameNums;
}

void Note_ChangedClasses()
{
    Forget_ClassOrder();
    Forget_PassedPlaces();
}

/** Let a class be known by another one's names, too. @return whether there was room for it */
bool Add_AltName(CaptionClassInfo &stTo, const CaptionClassInfo &stFrom)
{
    if (stFrom.uiNameLength == 0) return true;
    if (stTo.uiAltNameNums >= ZYR_CLASS_MAX) return false;
    std::copy_n(stFrom.ausName, ZYR_CLASS_NAME_UNITS, stTo.ausAltName[stTo.uiAltNameNums]);
    stTo.auiAltNameLength[stTo.uiAltNameNums] = stFrom.uiNameLength;
    ++stTo.uiAltNameNums;
    return true;
}

/** Two classes have become one: a text that begins or ends at a tag of another class may go on there. */
void Forget_SharedTexts(bool bAll)
{
    for (uint32_t uiFrame = 0; uiFrame < s_uiFrameInfoNums; ++uiFrame) {
        SamiFrameInfo *const pstFrame = s_pstFrameInfoArray + uiFrame;
        const bool bBefore = uiFrame > 0 && pstFrame[-1].llFilePos == pstFrame->llFilePos;
        const bool bBehind = uiFrame + 1 < s_uiFrameInfoNums && pstFrame[1].llFilePos == pstFrame->llFilePos;
        if (bAll || bBefore || bBehind) pstFrame->usTextEnd = 0;
    }
}

/** @return first class from uiFirst on that can take others in, or the number of classes. */
uint32_t Find_FilledClass(uint32_t uiFirst)
{
    uint32_t uiClass = uiFirst;
    while (uiClass < pstQuibCaptionParserInfo->uiClassNums && Get_Class(uiClass).uiFrameNums <= FILLED_FRAMES)
        ++uiClass;
    return uiClass;
}

/** Names are in upper case, and a shorter one has zeros behind it. */
bool Is_KoreanName(const CaptionClassInfo &stClass)
{
    const uint16_t *const pusName = stClass.ausName;
    return pusName[0] == 'K' && (pusName[1] == 'O' || pusName[1] == 'R');
}

/** The class that takes stray unnamed frames in: with several to choose from, the Korean one. */
uint32_t Get_UndefinedTarget()
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (stInfo.uiClassNums == 2) return 0;
    for (uint32_t uiClass = 0; uiClass + 1 < stInfo.uiClassNums; ++uiClass)
        if (Is_KoreanName(stInfo.astClassInfo[uiClass])) return uiClass;
    return 0;
}

/** Fold a small class of frames without a name into a named one. */
void Merge_UndefinedLanguage()
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (!Can_Merge()) return;
    const CaptionClassInfo &stLast = stInfo.astClassInfo[stInfo.uiClassNums - 1];
    if (stLast.uiNameLength != 0 || stLast.uiFrameNums > SPARSE_FRAMES) return;
    if (CAPTIONPARS_SAMI_MergeUndefinedLanguage(Get_UndefinedTarget()) != 1)
        LOG_HANDLER("Fail to merge the undefined language !!");
}

/** A sparse first class gives its place to the first well-filled one, so that this is the one read by
 * default. */
void Fold_FirstClass()
{
    if (!Can_Merge() || Get_Class(0).uiFrameNums > SPARSE_FRAMES) return;
    const uint32_t uiFilled = Find_FilledClass(1);
    if (uiFilled == pstQuibCaptionParserInfo->uiClassNums) return;
    if (Get_Class(uiFilled).uiNameLength != 0) std::swap(Get_Class(0), Get_Class(uiFilled));
    if (CAPTIONPARS_SAMI_MergeMultiLanguages(uiFilled, 0) != 1) LOG_HANDLER("Fail to merge the language !!!");
}

void Fold_OtherClasses()
{
    if (!Can_Merge()) return;
    uint32_t uiFilled = Find_FilledClass(0);
    if (uiFilled == pstQuibCaptionParserInfo->uiClassNums) return;
    for (uint32_t uiClass = 0; uiClass < pstQuibCaptionParserInfo->uiClassNums;) {
        if (uiClass == uiFilled || Get_Class(uiClass).uiFrameNums > SPARSE_FRAMES) {
            ++uiClass;
        } else if (CAPTIONPARS_SAMI_MergeMultiLanguages(uiClass, uiFilled) == 1) {
            if (uiFilled > uiClass) --uiFilled;
        } else {
            LOG_HANDLER("Fail to merge the languages !!");
            ++uiClass;
        }
    }
}

void Merge_SparseLanguages()
{
    Fold_FirstClass();
    Fold_OtherClasses();
}

[[gnu::noinline]] void Log_NoTime(uint32_t uiClass, int32_t iPTS)
{
    if (iPTS == BAD_CLASS)
        LOG_HANDLER("Class index [%d] is inavlid !!\n", uiClass);
    else if (iPTS != NO_NEXT_FRAME)
        LOG_HANDLER("CAPTIONPARS_SAMI_GetNextFramePTS() error !!\n");
}

} // namespace

void Clean_SamiClasses()
{
    Merge_UndefinedLanguage();
    Merge_SparseLanguages();
}

void Rewind_ClassCursor(uint32_t uiClass)
{
    if (uiClass < ZYR_CLASS_MAX) s_auiClassFrameCursor[uiClass] = 0;
}

int32_t CAPTIONPARS_SAMI_GetNextFramePTS(uint32_t uiClass)
{
    if (uiClass >= ZYR_CLASS_MAX) return BAD_CLASS;
    const uint32_t uiFrame = Find_NextFrame(uiClass);
    return uiFrame < s_uiFrameInfoNums ? s_pstFrameInfoArray[uiFrame].iPTS : NO_NEXT_FRAME;
}

int32_t CAPTIONPARS_SAMI_MergeUndefinedLanguage(uint32_t uiTargetClass)
{
    if (!Has_Classes()) return TOO_FEW_CLASSES;
    const uint32_t uiLast = pstQuibCaptionParserInfo->uiClassNums - 1;
    if (Get_Class(uiLast).uiNameLength != 0) return CLASS_HAS_NAME;
    if (uiTargetClass >= uiLast) return BAD_CLASS;
    for (uint32_t uiFrame = 0; uiFrame < s_uiFrameInfoNums; ++uiFrame)
        if (s_pstFrameInfoArray[uiFrame].uiClassIndex == uiLast)
            s_pstFrameInfoArray[uiFrame].uiClassIndex = uiTargetClass;
    Note_ChangedClasses();
    Combine_Frames(Get_Class(uiTargetClass), Get_Class(uiLast));
    --pstQuibCaptionParserInfo->uiClassNums;
    return 1;
}

int32_t CAPTIONPARS_SAMI_MergeMultiLanguages(uint32_t uiFrom, uint32_t uiTo)
{
    if (!Has_Classes()) return TOO_FEW_CLASSES;
    const uint32_t uiNums = pstQuibCaptionParserInfo->uiClassNums;
    if (uiFrom == uiTo || uiFrom >= uiNums || uiTo >= uiNums) return BAD_CLASS;
    const uint32_t uiToAfter = uiTo > uiFrom ? uiTo - 1 : uiTo;
    for (uint32_t uiFrame = 0; uiFrame < s_uiFrameInfoNums; ++uiFrame) {
        uint32_t &uiClass = s_pstFrameInfoArray[uiFrame].uiClassIndex;
        if (uiClass == uiFrom)
            uiClass = uiToAfter;
        else if (uiClass > uiFrom && uiClass < uiNums)
            --uiClass;
    }
    Forget_SharedTexts(!Add_AltName(Get_Class(uiTo), Get_Class(uiFrom)));
    Drop_TwinFrames();
    Note_ChangedClasses();
    Combine_Frames(Get_Class(uiTo), Get_Class(uiFrom));
    for (uint32_t uiClass = uiFrom; uiClass + 1 < uiNums; ++uiClass)
        Get_Class(uiClass) = Get_Class(uiClass + 1);
    --pstQuibCaptionParserInfo->uiClassNums;
    return 1;
}

void Choose_EarliestStream()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    int32_t iNextPTS = NO_NEXT_PTS;
    for (uint32_t uiStream = 0; uiStream < stInfo.uiStreamNums; ++uiStream) {
        const uint32_t uiClass = stInfo.astStreamState[uiStream].uiClassIndex;
        const int32_t iPTS = CAPTIONPARS_SAMI_GetNextFramePTS(uiClass);
        if (iPTS < 0) {
            Log_NoTime(uiClass, iPTS);
        } else if (iPTS < iNextPTS) {
            iNextPTS = iPTS;
            stInfo.uiCurrStream = uiStream;
        }
    }
    stInfo.iNextPTS = iNextPTS;
}

void Destroy_SamiBuffers()
{
    Free_And_Clear(s_pstFrameInfoArray);
    Free_And_Clear(s_puiSyncPlaces);
    s_uiFrameInfoMax = 0;
    s_uiFrameInfoNums = 0;
}
