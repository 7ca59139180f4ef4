#include "report_text.h"

#include <cinttypes>
#include <cstdio>

#include "style_text.h"
#include "text_tools.h"
#include "time_text.h"

static void Print_Row(const char *pszLabel, const std::string &strValue)
{
    std::printf("  %-10s %s\n", pszLabel, Make_Printable(strValue).c_str());
}

static bool Is_Ansi(const ZyrCaptionsFile &stFile)
{
    return stFile.pszCodePage != nullptr;
}

std::string Describe_Encoding(const ZyrCaptionsFile &stFile)
{
    if (!Is_Ansi(stFile)) return stFile.pszEncoding;
    return std::string("ANSI, read as ") + stFile.pszCodePage +
           (stFile.bSingleByte != 0 ? ", a byte for each character" : "");
}

static std::string Describe_Rule(const ZyrCaptionsFile &stFile)
{
    const std::string strRule = Get_RuleName(stFile.uiRule);
    if (stFile.uiRule == ZYR_CAPTIONS_BY_MARK) return strRule + ": it begins with a byte order mark";
    if (stFile.uiUtf8Characters + stFile.uiNotUtf8 == 0)
        return strRule + ": no mark, and no byte from 0x80 on";
    return strRule + ": no mark; UTF-8 characters " + std::to_string(stFile.uiUtf8Characters) +
           ", invalid bytes " + std::to_string(stFile.uiNotUtf8) + ", after " +
           std::to_string(stFile.uiScanned) + " bytes";
}

static void Print_BadByte(const std::string &strEncoding, size_t uiOffset, uint8_t ucByte)
{
    char szWhere[64];
    if (uiOffset == ZYR_CAPTIONS_NOWHERE) return;
    std::snprintf(szWhere, sizeof szWhere, ", first the 0x%02X at byte %zu", ucByte, uiOffset);
    Print_Row("invalid", "as " + strEncoding + szWhere);
}

static void Print_Encoding(const CaptionFile &stCaptions)
{
    const ZyrCaptionsFile stFile = stCaptions.Get_File();
    const std::string strEncoding = stFile.pszEncoding;
    Print_Row("encoding", Describe_Encoding(stFile));
    Print_Row("decided by", Describe_Rule(stFile));
    if (strEncoding != "UTF-8") Print_BadByte("UTF-8", stFile.uiFirstNotUtf8, stFile.ucFirstNotUtf8);
    Print_BadByte(Is_Ansi(stFile) ? stFile.pszCodePage : strEncoding, stFile.uiFirstUnreadable,
                  stFile.ucFirstUnreadable);
    ZyrCaptionCodePage stPage;
    for (uint32_t ui = 0; zyrCaptions_getCodePage(stCaptions.Get_List(), ui, &stPage) == ZYR_CAPTIONS_OK;
         ++ui)
        Print_Row("perhaps", std::string(stPage.pszName) + (stPage.bInUse != 0 ? " (in use): " : ": ") +
                                 stPage.pszPreview);
}

static const char *Describe_Output(const ZyrCaptionsFile &stFile)
{
    if (Is_Ansi(stFile)) return "the file's code page (1)";
    return std::string_view(stFile.pszEncoding) == "UTF-8" ? "UTF-8 (3)" : "UTF-16 (2)";
}

// Only SAMI has classes that are worth a name and a number.
static void Print_Classes(const CaptionFile &stCaptions)
{
    const bool bSami = stCaptions.Get_File().uiFormat == ZYR_CAPTIONS_SAMI;
    for (const uint32_t uiClass : stCaptions.List_Classes()) {
        const ZyrCaptionClass stClass = stCaptions.Get_Class(uiClass);
        const std::string strFrames = std::to_string(stClass.uiCaptions);
        std::string strText = strFrames;
        if (bSami)
            strText = std::to_string(uiClass) + "  " + Show_ClassName(stClass.pszName) + "  " + strFrames +
                      " frames";
        if (!bSami && stCaptions.Get_File().uiWithText < stClass.uiCaptions)
            strText += ", " + std::to_string(stCaptions.Get_File().uiWithText) + " with text";
        if (stClass.uiCaptions > 0)
            strText += ", " + Format_Time(stClass.iFirstStart) + " to " + Format_Time(stClass.iLastStart);
        for (uint32_t uiName = 0; uiName < stClass.uiFolded; ++uiName)
            strText.append(uiName == 0 ? ", with " : " ")
                .append(zyrCaptions_getFoldedName(stCaptions.Get_List(), uiClass, uiName));
        Print_Row(bSami ? "class" : "frames", strText);
    }
}

static void Print_SsaHeader(const CaptionFile &stCaptions)
{
    const ZyrCaptionsFile stFile = stCaptions.Get_File();
    if (*stFile.pszTitle != '\0') Print_Row("title", stFile.pszTitle);
    if (*stFile.pszOriginalScript != '\0') Print_Row("script", stFile.pszOriginalScript);
    if (*stFile.pszScriptType != '\0') Print_Row("type", stFile.pszScriptType);
    ZyrCaptionSsaStyle stStyle;
    for (uint32_t ui = 0; zyrCaptions_getSsaStyle(stCaptions.Get_List(), ui, &stStyle) == ZYR_CAPTIONS_OK;
         ++ui) {
        std::string strText = std::string(stStyle.pszName) + ": " + stStyle.pszFont + " " +
                              std::to_string(stStyle.uiFontSize) + " " +
                              Format_Color24(stStyle.uiPrimaryColour);
        if (stStyle.uiBold != 0) strText += " bold";
        if (stStyle.uiItalic != 0) strText += " italic";
        Print_Row("style", strText + " alignment " + std::to_string(stStyle.uiAlignment));
    }
}

static void Print_SubViewerHeader(const ZyrCaptionsFile &stFile)
{
    Print_Row("delay", std::to_string(stFile.uiDelay));
    Print_Row("colour", Format_Color24(stFile.uiColor));
    Print_Row("size", std::to_string(stFile.uiFontSize));
    Print_Row("font", stFile.pszFont);
}

void Print_Info(const std::string &strMovie, const CaptionFile &stCaptions, const LineEnds &stEnds)
{
    const ZyrCaptionsFile stFile = stCaptions.Get_File();
    std::printf("%s\n", strMovie.c_str());
    if (strMovie != stFile.pszFile) Print_Row("subtitle", stFile.pszFile);
    Print_Row("format", stFile.pszFormat);
    Print_Encoding(stCaptions);
    Print_Row("line ends", Describe_LineEnds(stEnds, stCaptions.Count()));
    Print_Row("delivers", Describe_Output(stFile));
    if (stFile.uiFormat == ZYR_CAPTIONS_SSA) Print_SsaHeader(stCaptions);
    if (stFile.uiFormat == ZYR_CAPTIONS_SUBVIEWER) Print_SubViewerHeader(stFile);
    Print_Classes(stCaptions);
    if (stCaptions.Count() == 0) Print_Row("no caption", stCaptions.Explain_Empty());
}

// The class is only worth a column where there is a choice.
static std::string Describe_Class(const CaptionFile &stCaptions, const Frame &stFrame)
{
    if (stCaptions.Get_File().uiClasses < 2 || stFrame.uiClass == ZYR_CAPTIONS_ALL) return "";
    return Show_ClassName(stCaptions.Get_ClassName(stFrame.uiClass)) + "  ";
}

void Print_Frame(const CaptionFile &stCaptions, const Frame &stFrame)
{
    char szTimes[80];
    std::snprintf(szTimes, sizeof szTimes, "%s  %-11s  ", Format_Time(stFrame.iStart).c_str(),
                  Format_EndTime(stFrame.iEnd).c_str());
    std::string strLead = szTimes + Make_Printable(Describe_Class(stCaptions, stFrame));
    if (stFrame.astrLines.empty()) std::printf("%s(no text)\n", strLead.c_str());
    for (const std::string &strLine : stFrame.astrLines) {
        std::printf("%s%s\n", strLead.c_str(), Make_Printable(strLine).c_str());
        strLead.assign(strLead.size(), ' ');
    }
}

const char *Get_RuleName(uint32_t uiRule)
{
    switch (uiRule) {
    case ZYR_CAPTIONS_BY_MARK: return "mark";
    case ZYR_CAPTIONS_BY_SCAN: return "scan";
    default: return "fallback";
    }
}
