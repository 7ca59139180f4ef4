#include "line_ends.h"

LineEnds Find_LineEnds(const CaptionFile &stFile, SourceOptions stOptions)
{
    LineEnds stEnds;
    std::string strBytes = stFile.Read_Bytes();
    if (std::string_view(stFile.Get_File().pszEncoding).starts_with("UTF-16")) std::erase(strBytes, '\0');
    for (size_t uiByte = 0; uiByte < strBytes.size(); ++uiByte) {
        const bool bPair =
            strBytes[uiByte] == '\r' && uiByte + 1 < strBytes.size() && strBytes[uiByte + 1] == '\n';
        stEnds.uiCrLf += bPair ? 1 : 0;
        stEnds.uiCr += strBytes[uiByte] == '\r' && !bPair ? 1 : 0;
        stEnds.uiLf += strBytes[uiByte] == '\n' ? 1 : 0;
        uiByte += bPair ? 1 : 0;
    }
    CaptionFile stBox;
    stOptions.bRawLineEnds = true;
    stOptions.bVerbose = false;
    stEnds.uiBoxCaptions = stFile.Count();
    if (stEnds.uiLf + stEnds.uiCr == 0 || stFile.Is_Input()) return stEnds;
    stEnds.uiBoxCaptions = stBox.Open(stFile.Get_File().pszFile, stOptions).IsGood() ? stBox.Count() : 0;
    return stEnds;
}

std::string Describe_LineEnds(const LineEnds &stEnds, uint32_t uiCaptions)
{
    std::string strText;
    for (const auto &[pszName, uiTimes] :
         {std::pair("CR LF", stEnds.uiCrLf), std::pair("LF", stEnds.uiLf), std::pair("CR", stEnds.uiCr)})
        if (uiTimes > 0)
            strText += (strText.empty() ? "" : ", ") + std::string(pszName) + " " + std::to_string(uiTimes);
    if (strText.empty()) strText = "none";
    if (stEnds.uiBoxCaptions < uiCaptions)
        strText += "; the box, which reads only CR LF, gets " + std::to_string(stEnds.uiBoxCaptions) +
                   " of " + std::to_string(uiCaptions) + " captions";
    return strText;
}
