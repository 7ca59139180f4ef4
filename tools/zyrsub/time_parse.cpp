#include "time_text.h"

#include <charconv>
#include <cmath>

// Digits with at most one point; std::from_chars alone would also take exponents, signs and names. The
// locale has no say in it.
static std::optional<double> Parse_Number(std::string_view strText)
{
    std::string strPlain;
    bool bDigit = false;
    bool bPoint = false;
    for (const char cChar : strText) {
        const bool bIsPoint = cChar == '.' || cChar == ',';
        if ((!bIsPoint && (cChar < '0' || cChar > '9')) || (bIsPoint && bPoint)) return std::nullopt;
        bPoint = bPoint || bIsPoint;
        bDigit = bDigit || !bIsPoint;
        strPlain += bIsPoint ? '.' : cChar;
    }
    if (!bDigit || strPlain.size() > 40) return std::nullopt;
    double dNumber = 0;
    std::from_chars(strPlain.data(), strPlain.data() + strPlain.size(), dNumber);
    return dNumber;
}

static std::optional<uint32_t> Round_Ms(double dMs)
{
    if (dMs >= OPEN_END) return std::nullopt;
    return static_cast<uint32_t>(std::llround(dMs));
}

static bool Cut_Suffix(std::string_view &strText, std::string_view strSuffix)
{
    if (!strText.ends_with(strSuffix)) return false;
    strText.remove_suffix(strSuffix.size());
    return true;
}

// Hours, minutes and seconds between colons; all but the first stay below 60, all but the last are whole.
static std::optional<double> Parse_Clock(std::string_view strText)
{
    double dSeconds = 0;
    for (int iField = 0; iField < 3; ++iField) {
        const size_t uiColon = strText.find(':');
        const std::string_view strField = strText.substr(0, uiColon);
        const std::optional<double> dField = Parse_Number(strField);
        const bool bLast = uiColon == std::string_view::npos;
        if (!dField || (iField > 0 && *dField >= 60)) return std::nullopt;
        if (!bLast && strField.find_first_of(".,") != std::string_view::npos) return std::nullopt;
        dSeconds = dSeconds * 60 + *dField;
        if (bLast) return dSeconds;
        strText.remove_prefix(uiColon + 1);
    }
    return std::nullopt;
}

// 1h2m3.5s: each unit at most once, the larger first, a fraction only in the last.
static std::optional<double> Parse_Units(std::string_view strText)
{
    static constexpr struct {
        char cUnit;
        int iSeconds;
    } UNITS[] = {{'h', 3600}, {'m', 60}, {'s', 1}};
    double dSeconds = 0;
    for (const auto &stUnit : UNITS) {
        const size_t uiUnit = strText.find(stUnit.cUnit);
        if (uiUnit == std::string_view::npos) continue;
        const std::string_view strNumber = strText.substr(0, uiUnit);
        const std::optional<double> dNumber = Parse_Number(strNumber);
        strText.remove_prefix(uiUnit + 1);
        const bool bFraction = strNumber.find_first_of(".,") != std::string_view::npos;
        if (!dNumber || (bFraction && !strText.empty())) return std::nullopt;
        dSeconds += *dNumber * stUnit.iSeconds;
    }
    return strText.empty() ? std::optional(dSeconds) : std::nullopt;
}

std::optional<uint32_t> Parse_Time(std::string_view strText)
{
    const bool bWhole = !strText.empty() && strText.find_first_not_of("0123456789") == std::string_view::npos;
    if (bWhole || Cut_Suffix(strText, "ms")) {
        const std::optional<double> dMs = Parse_Number(strText);
        return dMs ? Round_Ms(*dMs) : std::nullopt;
    }
    std::optional<double> dSeconds;
    if (strText.find(':') != std::string_view::npos)
        dSeconds = Parse_Clock(strText);
    else if (strText.find_first_of("hms") != std::string_view::npos)
        dSeconds = Parse_Units(strText);
    return dSeconds ? Round_Ms(*dSeconds * 1000) : std::nullopt;
}
