/* Each exported engine call, followed by a check of the invariants: include it last. Check_Invariants() is the
 * includer's, which knows how a broken one is told. */
#pragma once

#include "zyr/quib_caption.h"
#include "zyr/zyr_subtitle.h"

template <typename Result, typename... Parameters>
auto Make_Checked(Result (*pfCall)(Parameters...))
{
    return [pfCall](Parameters... parameters) -> Result {
        const struct Check {
            ~Check() { Check_Invariants(); }
        } stCheck;
        return pfCall(parameters...);
    };
}

// clang-format off
#define CAPTIONPARS_SAMI_GetNextFramePTS(...) Make_Checked(CAPTIONPARS_SAMI_GetNextFramePTS)(__VA_ARGS__)
#define CAPTIONPARS_SAMI_MergeMultiLanguages(...) Make_Checked(CAPTIONPARS_SAMI_MergeMultiLanguages)(__VA_ARGS__)
#define CAPTIONPARS_SAMI_MergeUndefinedLanguage(...) Make_Checked(CAPTIONPARS_SAMI_MergeUndefinedLanguage)(__VA_ARGS__)
#define Convert_CaptionStringToBitmap(...) Make_Checked(Convert_CaptionStringToBitmap)(__VA_ARGS__)
#define Display_LineBitmapDataToDisplayBuffer(...) Make_Checked(Display_LineBitmapDataToDisplayBuffer)(__VA_ARGS__)
#define Display_LineBitmapDataToDisplayBufferEx(...) Make_Checked(Display_LineBitmapDataToDisplayBufferEx)(__VA_ARGS__)
#define FrameParser_SAMI(...) Make_Checked(FrameParser_SAMI)(__VA_ARGS__)
#define FrameParser_SSA(...) Make_Checked(FrameParser_SSA)(__VA_ARGS__)
#define FrameParser_SubRip(...) Make_Checked(FrameParser_SubRip)(__VA_ARGS__)
#define FrameParser_SubViewer(...) Make_Checked(FrameParser_SubViewer)(__VA_ARGS__)
#define HeaderParser_SAMI(...) Make_Checked(HeaderParser_SAMI)(__VA_ARGS__)
#define HeaderParser_SSA(...) Make_Checked(HeaderParser_SSA)(__VA_ARGS__)
#define HeaderParser_SubRip(...) Make_Checked(HeaderParser_SubRip)(__VA_ARGS__)
#define HeaderParser_SubViewer(...) Make_Checked(HeaderParser_SubViewer)(__VA_ARGS__)
#define QUIBCAPTPARS_Set_ParsingOption(...) Make_Checked(QUIBCAPTPARS_Set_ParsingOption)(__VA_ARGS__)
#define QUIBCAPT_Set_ClassType(...) Make_Checked(QUIBCAPT_Set_ClassType)(__VA_ARGS__)
#define QUIB_CAPTION_Close(...) Make_Checked(QUIB_CAPTION_Close)(__VA_ARGS__)
#define QUIB_CAPTION_Open(...) Make_Checked(QUIB_CAPTION_Open)(__VA_ARGS__)
#define QUIB_CAPTION_ParsingProcess(...) Make_Checked(QUIB_CAPTION_ParsingProcess)(__VA_ARGS__)
#define QUIB_CAPTION_ParsingProcessEx(...) Make_Checked(QUIB_CAPTION_ParsingProcessEx)(__VA_ARGS__)
#define QUIB_CAPTION_PreParsingProcessEx(...) Make_Checked(QUIB_CAPTION_PreParsingProcessEx)(__VA_ARGS__)
#define QUIB_CAPTION_SeekCaptionFrame(...) Make_Checked(QUIB_CAPTION_SeekCaptionFrame)(__VA_ARGS__)
#define QuibCaptionParser_Create_MemoryBuffers(...) Make_Checked(QuibCaptionParser_Create_MemoryBuffers)(__VA_ARGS__)
#define QuibCaptionParser_Destroy_MemoryBuffers(...) Make_Checked(QuibCaptionParser_Destroy_MemoryBuffers)(__VA_ARGS__)
#define QuibCaptionParser_Destroy_SSA_MemoryBuffers(...) Make_Checked(QuibCaptionParser_Destroy_SSA_MemoryBuffers)(__VA_ARGS__)
#define QuibCaptionParser_Init_CaptionStreamVariables(...) Make_Checked(QuibCaptionParser_Init_CaptionStreamVariables)(__VA_ARGS__)
#define Seek_SAMI(...) Make_Checked(Seek_SAMI)(__VA_ARGS__)
#define Seek_SSA(...) Make_Checked(Seek_SSA)(__VA_ARGS__)
#define Seek_SubRip(...) Make_Checked(Seek_SubRip)(__VA_ARGS__)
#define Seek_SubViewer(...) Make_Checked(Seek_SubViewer)(__VA_ARGS__)
#define zyrSubtitleHandler_getClassName(...) Make_Checked(zyrSubtitleHandler_getClassName)(__VA_ARGS__)
#define zyrSubtitleHandler_getClassNums(...) Make_Checked(zyrSubtitleHandler_getClassNums)(__VA_ARGS__)
#define zyrSubtitleHandler_getFrameInfo(...) Make_Checked(zyrSubtitleHandler_getFrameInfo)(__VA_ARGS__)
#define zyrSubtitleHandler_getOutputTextCharacterSet(...) Make_Checked(zyrSubtitleHandler_getOutputTextCharacterSet)(__VA_ARGS__)
#define zyrSubtitleHandler_searchExternalSubtitle(...) Make_Checked(zyrSubtitleHandler_searchExternalSubtitle)(__VA_ARGS__)
#define zyrSubtitleHandler_selectClass(...) Make_Checked(zyrSubtitleHandler_selectClass)(__VA_ARGS__)
#define zyrSubtitle_close(...) Make_Checked(zyrSubtitle_close)(__VA_ARGS__)
#define zyrSubtitle_getClassName(...) Make_Checked(zyrSubtitle_getClassName)(__VA_ARGS__)
#define zyrSubtitle_getClassNums(...) Make_Checked(zyrSubtitle_getClassNums)(__VA_ARGS__)
#define zyrSubtitle_getFrame(...) Make_Checked(zyrSubtitle_getFrame)(__VA_ARGS__)
#define zyrSubtitle_getOutputTextCharacterSet(...) Make_Checked(zyrSubtitle_getOutputTextCharacterSet)(__VA_ARGS__)
#define zyrSubtitle_open(...) Make_Checked(zyrSubtitle_open)(__VA_ARGS__)
#define zyrSubtitle_seek(...) Make_Checked(zyrSubtitle_seek)(__VA_ARGS__)
#define zyrSubtitle_selectClass(...) Make_Checked(zyrSubtitle_selectClass)(__VA_ARGS__)
// clang-format on
