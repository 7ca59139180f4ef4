#include "page_text.h"

#include "text_encode.h"

std::string Decode_Text(std::string_view strBytes, const std::string &strEncoding)
{
    const size_t uiUnit = strEncoding.starts_with("UTF-16") ? 2 : 1;
    const std::string strText = Converter("UTF-8", strEncoding).Convert(strBytes, uiUnit, "\xEF\xBF\xBD");
    std::string strLines;
    for (size_t ui = 0; ui < strText.size(); ++ui) {
        const bool bPair = strText[ui] == '\r' && ui + 1 < strText.size() && strText[ui + 1] == '\n';
        if (!bPair) strLines += strText[ui] == '\r' ? '\n' : strText[ui];
    }
    return strLines;
}

std::optional<std::string> Encode_Exactly(std::string_view strText, const std::string &strEncoding)
{
    std::string strLines;
    for (const char cByte : strText)
        if (cByte == '\n')
            strLines += "\r\n";
        else
            strLines += cByte;
    std::string strBytes = Converter(strEncoding, "UTF-8").Convert(strLines, 1, "");
    if (Converter("UTF-8", strEncoding).Convert(strBytes, 1, "") != strLines) return std::nullopt;
    return strBytes;
}
