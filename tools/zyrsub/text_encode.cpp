#include "text_encode.h"

#include <algorithm>
#include <cerrno>

Converter::Converter(const std::string &strTo, const std::string &strFrom)
    : m_hIconv(iconv_open(strTo.c_str(), strFrom.c_str()))
{
}

Converter::~Converter()
{
    if (IsKnown()) iconv_close(m_hIconv);
}

std::string Converter::Convert(std::string_view strText, size_t uiStep, std::string_view strReplacement) const
{
    std::string strIn(strText);
    std::string strOut;
    char *pcIn = strIn.data();
    size_t uiLeft = strIn.size();
    iconv(m_hIconv, nullptr, nullptr, nullptr, nullptr);
    while (uiLeft > 0) {
        char acOut[1024];
        char *pcOut = acOut;
        size_t uiRoom = sizeof acOut;
        const size_t uiResult = iconv(m_hIconv, &pcIn, &uiLeft, &pcOut, &uiRoom);
        const bool bUnreadable = uiResult == static_cast<size_t>(-1) && errno != E2BIG;
        strOut.append(acOut, sizeof acOut - uiRoom);
        if (!bUnreadable) continue;
        strOut += strReplacement;
        const size_t uiSkip = std::min(uiLeft, uiStep);
        pcIn += uiSkip;
        uiLeft -= uiSkip;
        iconv(m_hIconv, nullptr, nullptr, nullptr, nullptr);
    }
    return strOut;
}
