/* Where each field of the record stands: programs are compiled against these places. The first number is for 64-bit
 * machines, the second for 32-bit ones, of which all agree. */

#include <cstddef>

#include "zyr/quib_caption.h"

namespace
{

constexpr size_t Choose(size_t uiOn64, size_t uiOn32)
{
    return sizeof(void *) == 8 ? uiOn64 : uiOn32;
}

} // namespace

#define ZYR_AT(RECORD, FIELD, ON_64, ON_32) static_assert(offsetof(RECORD, FIELD) == Choose(ON_64, ON_32))
#define ZYR_SIZE(RECORD, ON_64, ON_32)      static_assert(sizeof(RECORD) == Choose(ON_64, ON_32))

ZYR_AT(CaptionClassInfo, ausName, 0, 0);
ZYR_AT(CaptionClassInfo, uiNameLength, 24, 24);
ZYR_AT(CaptionClassInfo, ausAltName, 28, 28);
ZYR_AT(CaptionClassInfo, auiAltNameLength, 196, 196);
ZYR_AT(CaptionClassInfo, uiAltNameNums, 224, 224);
ZYR_AT(CaptionClassInfo, llFirstFramePos, 232, 232);
ZYR_AT(CaptionClassInfo, iMinPTS, 240, 240);
ZYR_AT(CaptionClassInfo, llLastFramePos, 248, 248);
ZYR_AT(CaptionClassInfo, iMaxPTS, 256, 256);
ZYR_AT(CaptionClassInfo, uiFrameNums, 260, 260);
ZYR_SIZE(CaptionClassInfo, 264, 264);

ZYR_AT(CaptionStreamState, llStartFilePos, 0, 0);
ZYR_AT(CaptionStreamState, llCurrFilePos, 8, 8);
ZYR_AT(CaptionStreamState, iCurrPTS, 16, 16);
ZYR_AT(CaptionStreamState, iStartPTS, 20, 20);
ZYR_AT(CaptionStreamState, iEndPTS, 24, 24);
ZYR_AT(CaptionStreamState, uiClassIndex, 28, 28);
ZYR_SIZE(CaptionStreamState, 32, 32);

ZYR_AT(CaptionStreamInfo, pucStreamBuf, 0, 0);
ZYR_AT(CaptionStreamInfo, iStreamDataSize, 8, 4);
ZYR_AT(CaptionStreamInfo, iStreamBufIndex, 12, 8);
ZYR_SIZE(CaptionStreamInfo, 16, 12);

ZYR_AT(SubViewerHeaderInfo, uiDelay, 0, 0);
ZYR_AT(SubViewerHeaderInfo, uiColf, 4, 4);
ZYR_AT(SubViewerHeaderInfo, uiSize, 8, 8);
ZYR_AT(SubViewerHeaderInfo, ausFontName, 12, 12);
ZYR_AT(SubViewerHeaderInfo, uiFontNameLength, 72, 72);
ZYR_SIZE(SubViewerHeaderInfo, 76, 76);

ZYR_AT(SSAStyleInfo, ausStyleName, 0, 0);
ZYR_AT(SSAStyleInfo, ausFontName, 102, 102);
ZYR_AT(SSAStyleInfo, uiFontSize, 204, 204);
ZYR_AT(SSAStyleInfo, uiPrimaryColour, 208, 208);
ZYR_AT(SSAStyleInfo, uiSecondaryColour, 212, 212);
ZYR_AT(SSAStyleInfo, uiTertiaryColour, 216, 216);
ZYR_AT(SSAStyleInfo, uiBackColour, 220, 220);
ZYR_AT(SSAStyleInfo, uiBold, 224, 224);
ZYR_AT(SSAStyleInfo, uiItalic, 228, 228);
ZYR_AT(SSAStyleInfo, uiBorderStyle, 232, 232);
ZYR_AT(SSAStyleInfo, uiOutline, 236, 236);
ZYR_AT(SSAStyleInfo, uiShadow, 240, 240);
ZYR_AT(SSAStyleInfo, uiAlignment, 244, 244);
ZYR_AT(SSAStyleInfo, uiMarginL, 248, 248);
ZYR_AT(SSAStyleInfo, uiMarginR, 252, 252);
ZYR_AT(SSAStyleInfo, uiMarginV, 256, 256);
ZYR_AT(SSAStyleInfo, uiAlphaLevel, 260, 260);
ZYR_AT(SSAStyleInfo, uiEncoding, 264, 264);
ZYR_SIZE(SSAStyleInfo, 268, 268);

ZYR_AT(SSAStyleNode, stStyle, 0, 0);
ZYR_AT(SSAStyleNode, pstNext, 272, 268);
ZYR_SIZE(SSAStyleNode, 280, 272);

ZYR_AT(SSAFrameInfo, uiMarked, 0, 0);
ZYR_AT(SSAFrameInfo, uiStartPTS, 4, 4);
ZYR_AT(SSAFrameInfo, uiEndPTS, 8, 8);
ZYR_AT(SSAFrameInfo, ausStyleName, 12, 12);
ZYR_AT(SSAFrameInfo, uiMarginL, 116, 116);
ZYR_AT(SSAFrameInfo, uiMarginR, 120, 120);
ZYR_AT(SSAFrameInfo, uiMarginV, 124, 124);
ZYR_AT(SSAFrameInfo, uiEffect, 128, 128);
ZYR_AT(SSAFrameInfo, uiEffectY1, 132, 132);
ZYR_AT(SSAFrameInfo, uiEffectY2, 136, 136);
ZYR_AT(SSAFrameInfo, uiEffectDelay, 140, 140);
ZYR_AT(SSAFrameInfo, pstStyle, 144, 144);
ZYR_SIZE(SSAFrameInfo, 152, 148);

ZYR_AT(QuibCaptionParserInfo, llStartFilePos, 0, 0);
ZYR_AT(QuibCaptionParserInfo, llCurrFilePos, 8, 8);
ZYR_AT(QuibCaptionParserInfo, iCurrPTS, 16, 16);
ZYR_AT(QuibCaptionParserInfo, iStartPTS, 20, 20);
ZYR_AT(QuibCaptionParserInfo, iEndPTS, 24, 24);
ZYR_AT(QuibCaptionParserInfo, uiLineIndex, 28, 28);
ZYR_AT(QuibCaptionParserInfo, uiDisplayMode, 32, 32);
ZYR_AT(QuibCaptionParserInfo, uiFontSize, 36, 36);
ZYR_AT(QuibCaptionParserInfo, usFontColor, 40, 40);
ZYR_AT(QuibCaptionParserInfo, usOutlineColor, 42, 42);
ZYR_AT(QuibCaptionParserInfo, uiHighlight, 44, 44);
ZYR_AT(QuibCaptionParserInfo, ucPrevBlank, 48, 48);
ZYR_AT(QuibCaptionParserInfo, uiConvLength, 52, 52);
ZYR_AT(QuibCaptionParserInfo, pusConvBuf, 56, 56);
ZYR_AT(QuibCaptionParserInfo, uiBreakLength, 64, 60);
ZYR_AT(QuibCaptionParserInfo, uiWordUnits, 68, 64);
ZYR_AT(QuibCaptionParserInfo, uiWordUnitsAtBreak, 72, 68);
ZYR_AT(QuibCaptionParserInfo, puiLineLength, 80, 72);
ZYR_AT(QuibCaptionParserInfo, szSubtitleFileName, 88, 76);
ZYR_AT(QuibCaptionParserInfo, uiClassNums, 604, 592);
ZYR_AT(QuibCaptionParserInfo, astClassInfo, 608, 600);
ZYR_AT(QuibCaptionParserInfo, uiStreamNums, 2456, 2448);
ZYR_AT(QuibCaptionParserInfo, uiCurrStream, 2460, 2452);
ZYR_AT(QuibCaptionParserInfo, astStreamState, 2464, 2456);
ZYR_AT(QuibCaptionParserInfo, uiCurrClass, 2624, 2616);
ZYR_AT(QuibCaptionParserInfo, iNextPTS, 2628, 2620);
ZYR_AT(QuibCaptionParserInfo, astStreamInfo, 2632, 2624);
ZYR_AT(QuibCaptionParserInfo, stSubViewerInfo, 2712, 2684);
ZYR_AT(QuibCaptionParserInfo, ausSSAHeaderText, 2788, 2760);
ZYR_AT(QuibCaptionParserInfo, uiSSATitleLength, 3812, 3784);
ZYR_AT(QuibCaptionParserInfo, pusSSATitle, 3816, 3788);
ZYR_AT(QuibCaptionParserInfo, uiSSAOriginalScriptLength, 3824, 3792);
ZYR_AT(QuibCaptionParserInfo, pusSSAOriginalScript, 3832, 3796);
ZYR_AT(QuibCaptionParserInfo, uiSSAScriptTypeLength, 3840, 3800);
ZYR_AT(QuibCaptionParserInfo, pusSSAScriptType, 3848, 3804);
ZYR_AT(QuibCaptionParserInfo, pstSSAStyleList, 3856, 3808);
ZYR_AT(QuibCaptionParserInfo, stSSAFrameInfo, 3864, 3812);
ZYR_AT(QuibCaptionParserInfo, uiOutStreamIndex, 4016, 3960);
ZYR_AT(QuibCaptionParserInfo, iOutStartPTS, 4020, 3964);
ZYR_AT(QuibCaptionParserInfo, iOutEndPTS, 4024, 3968);
ZYR_AT(QuibCaptionParserInfo, uiOutLineNums, 4028, 3972);
ZYR_AT(QuibCaptionParserInfo, uiOutputTextCharacterSet, 4032, 3976);
ZYR_AT(QuibCaptionParserInfo, uiOutTextLength, 4036, 3980);
ZYR_AT(QuibCaptionParserInfo, aucOutText, 4040, 3984);
ZYR_AT(QuibCaptionParserInfo, aucClassName, 6088, 6032);
ZYR_SIZE(QuibCaptionParserInfo, 6120, 6064);
