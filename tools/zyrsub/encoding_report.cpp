#include "encoding_report.h"

#include <algorithm>

#include "code_page.h"
#include "file_bytes.h"
#include "zyr/quib_caption.h"

static BadByte Get_BadByte(const std::string &strFile, size_t uiOffset)
{
    return {uiOffset, static_cast<uint8_t>(strFile[uiOffset])};
}

// The engine's own count, a byte at a step to see where it changes. How line ends are presented has no part
// in it: they are below 0x80, and only the first byte of one can break a sequence.
static void Scan_Bytes(const std::string &strFile, EncodingReport &stReport)
{
    const auto *pucBytes = reinterpret_cast<const uint8_t *>(strFile.data());
    bool bEnough = false;
    while (!bEnough && stReport.uiScanned < strFile.size()) {
        bEnough = Count_Utf8(&stReport.stCount, pucBytes + stReport.uiScanned, 1);
        if (stReport.stCount.uiInvalid > 0 && !stReport.stNotUtf8)
            stReport.stNotUtf8 = Get_BadByte(strFile, stReport.uiScanned);
        ++stReport.uiScanned;
    }
    const bool bAllUtf8 = stReport.stCount.uiSequences > 0 && stReport.stCount.uiInvalid == 0;
    stReport.eRule = bEnough || bAllUtf8 ? E_RULE_SCAN : E_RULE_FALLBACK;
}

static std::string Read_Preview(const SubtitleSource &stSource, const std::vector<uint8_t> &aucText,
                                const std::string &strCodePage)
{
    const TextDecoder stDecoder(E_OUTPUT_CHARSET_ANSI, strCodePage, stSource.Is_SingleByteRead());
    for (const std::string &strLine : Split_Lines(stDecoder.Decode(aucText)))
        if (std::any_of(strLine.begin(), strLine.end(), Is_High)) return strLine;
    return "";
}

static void Add_Guesses(const SubtitleSource &stSource, const std::string &strFile, EncodingReport &stReport)
{
    if (std::none_of(strFile.begin(), strFile.end(), Is_High)) return;
    std::vector<std::string> astrNames = Guess_CodePages(strFile);
    const std::vector<uint8_t> aucText = stSource.Read_HighText();
    const std::string &strInUse = stSource.Get_CodePage();
    if (std::find(astrNames.begin(), astrNames.end(), strInUse) == astrNames.end())
        astrNames.push_back(strInUse);
    for (const std::string &strName : astrNames)
        stReport.astGuesses.push_back(
            {strName, Read_Preview(stSource, aucText, strName), strName == strInUse});
}

EncodingReport Explain_Encoding(const SubtitleSource &stSource)
{
    EncodingReport stReport;
    const std::string strFile = Read_Bytes(stSource.Get_FileName()).value_or("");
    const std::string strEncoding = stSource.Get_Encoding();
    const bool bAnsi = strEncoding == "ANSI";
    if (stSource.Has_Mark())
        stReport.eRule = E_RULE_MARK;
    else
        Scan_Bytes(strFile, stReport);
    const Converter stConverter("UTF-8", bAnsi ? stSource.Get_CodePage() : strEncoding);
    const std::optional<size_t> uiBad = stConverter.Find_Unreadable(strFile);
    if (uiBad) stReport.stUndecodable = Get_BadByte(strFile, *uiBad);
    if (bAnsi) Add_Guesses(stSource, strFile, stReport);
    return stReport;
}

const char *Get_RuleName(EncodingRule eRule)
{
    switch (eRule) {
    case E_RULE_MARK: return "mark";
    case E_RULE_SCAN: return "scan";
    default: return "fallback";
    }
}
