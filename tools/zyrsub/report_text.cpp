#include "report_text.h"

#include <cinttypes>
#include <cstdio>

#include "encoding_report.h"
#include "format_details.h"
#include "time_text.h"

static void Print_Row(const char *pszLabel, const std::string &strValue)
{
    std::printf("  %-10s %s\n", pszLabel, Make_Printable(strValue).c_str());
}

static std::string Describe_Encoding(const SubtitleSource &stSource)
{
    std::string strEncoding = stSource.Get_Encoding();
    if (strEncoding != "ANSI") return strEncoding;
    return "ANSI, read as " + stSource.Get_CodePage() +
           (stSource.Is_SingleByteRead() ? ", a byte for each character" : "");
}

static std::string Describe_Rule(const EncodingReport &stReport)
{
    const std::string strRule = Get_RuleName(stReport.eRule);
    const Utf8Count &stCount = stReport.stCount;
    if (stReport.eRule == E_RULE_MARK) return strRule + ": it begins with a byte order mark";
    if (stCount.uiSequences + stCount.uiInvalid == 0) return strRule + ": no mark, and no byte from 0x80 on";
    return strRule + ": no mark; UTF-8 characters " + std::to_string(stCount.uiSequences) +
           ", invalid bytes " + std::to_string(stCount.uiInvalid) + ", after " +
           std::to_string(stReport.uiScanned) + " bytes";
}

static void Print_BadByte(const std::string &strEncoding, const std::optional<BadByte> &stBad)
{
    char szWhere[64];
    if (!stBad) return;
    std::snprintf(szWhere, sizeof szWhere, ", first the 0x%02X at byte %zu", stBad->ucByte, stBad->uiOffset);
    Print_Row("invalid", "as " + strEncoding + szWhere);
}

static void Print_Encoding(const SubtitleSource &stSource)
{
    const EncodingReport stReport = Explain_Encoding(stSource);
    const std::string strEncoding = stSource.Get_Encoding();
    Print_Row("encoding", Describe_Encoding(stSource));
    Print_Row("decided by", Describe_Rule(stReport));
    if (strEncoding != "UTF-8") Print_BadByte("UTF-8", stReport.stNotUtf8);
    Print_BadByte(strEncoding == "ANSI" ? stSource.Get_CodePage() : strEncoding, stReport.stUndecodable);
    for (const CodePageGuess &stGuess : stReport.astGuesses)
        Print_Row("perhaps", stGuess.strName + (stGuess.bInUse ? " (in use): " : ": ") + stGuess.strPreview);
}

static const char *Describe_Output(const SubtitleSource &stSource)
{
    const std::string strEncoding = stSource.Get_Encoding();
    if (strEncoding == "ANSI") return "the file's code page (1)";
    return strEncoding == "UTF-8" ? "UTF-8 (3)" : "UTF-16 (2)";
}

// Only SAMI has classes that are worth a name and a number.
static void Print_Classes(const SubtitleSource &stSource)
{
    const bool bSami = stSource.Get_Format() == E_CAPTION_FORMAT_SAMI;
    const std::vector<LanguageClass> astClasses = stSource.List_Classes();
    for (size_t uiClass = 0; uiClass < astClasses.size(); ++uiClass) {
        const LanguageClass &stClass = astClasses[uiClass];
        const std::string strFrames = std::to_string(stClass.uiFrames);
        std::string strText = strFrames;
        if (bSami)
            strText = std::to_string(uiClass) + "  " + Show_ClassName(stClass.strName) + "  " + strFrames +
                      " frames";
        if (stClass.uiFrames > 0)
            strText += ", " + Format_Time(stClass.iFirst) + " to " + Format_Time(stClass.iLast);
        if (!stClass.astrFolded.empty()) strText += ", with " + Join_Lines(stClass.astrFolded, " ");
        Print_Row(bSami ? "class" : "frames", strText);
    }
}

static void Print_SsaHeader(const SubtitleSource &stSource)
{
    const SsaHeader stHeader = Read_SsaHeader(stSource.Get_Decoder());
    if (!stHeader.strTitle.empty()) Print_Row("title", stHeader.strTitle);
    if (!stHeader.strScript.empty()) Print_Row("script", stHeader.strScript);
    if (!stHeader.strType.empty()) Print_Row("type", stHeader.strType);
    for (const SsaStyle &stStyle : stHeader.astStyles) {
        const SSAStyleInfo &stNumbers = *stStyle.pstNumbers;
        std::string strText = stStyle.strName + ": " + stStyle.strFont + " " +
                              std::to_string(stNumbers.uiFontSize) + " " +
                              Format_Color24(stNumbers.uiPrimaryColour);
        if (stNumbers.uiBold != 0) strText += " bold";
        if (stNumbers.uiItalic != 0) strText += " italic";
        Print_Row("style", strText + " alignment " + std::to_string(stNumbers.uiAlignment));
    }
}

static void Print_SubViewerHeader(const SubtitleSource &stSource)
{
    const SubViewerHeader stHeader = Read_SubViewerHeader(stSource.Get_Decoder());
    Print_Row("delay", std::to_string(stHeader.uiDelay));
    Print_Row("colour", Format_Color24(stHeader.uiColor));
    Print_Row("size", std::to_string(stHeader.uiSize));
    Print_Row("font", stHeader.strFont);
}

void Print_Info(const std::string &strMovie, const SubtitleSource &stSource)
{
    std::printf("%s\n", strMovie.c_str());
    if (stSource.Get_FileName() != strMovie) Print_Row("subtitle", stSource.Get_FileName());
    Print_Row("format", Get_FormatName(stSource.Get_Format()));
    Print_Encoding(stSource);
    Print_Row("delivers", Describe_Output(stSource));
    if (stSource.Get_Format() == E_CAPTION_FORMAT_SSA) Print_SsaHeader(stSource);
    if (stSource.Get_Format() == E_CAPTION_FORMAT_SUBVIEWER) Print_SubViewerHeader(stSource);
    Print_Classes(stSource);
}

// The class is only worth a column where there is a choice.
static std::string Describe_Stream(const SubtitleSource &stSource, const Frame &stFrame)
{
    if (SubtitleSource::Count_Classes() < 2 || stFrame.uiStream == ALL_STREAMS) return "";
    return Show_ClassName(stSource.Get_ClassName(stFrame.uiClass)) + "  ";
}

void Print_Frame(const SubtitleSource &stSource, const Frame &stFrame)
{
    char szTimes[80];
    std::snprintf(szTimes, sizeof szTimes, "%s  %-11s  ", Format_Time(stFrame.iStart).c_str(),
                  Format_EndTime(stFrame.iEnd).c_str());
    std::string strLead = szTimes + Make_Printable(Describe_Stream(stSource, stFrame));
    if (stFrame.astrLines.empty()) std::printf("%s(no text)\n", strLead.c_str());
    for (const std::string &strLine : stFrame.astrLines) {
        std::printf("%s%s\n", strLead.c_str(), Make_Printable(strLine).c_str());
        strLead.assign(strLead.size(), ' ');
    }
}
