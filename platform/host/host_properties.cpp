#include "host_parts.h"
#include "zyr/zyr_host.h"
#include "zyr_properties.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <string>
#include <string_view>

namespace
{

using PropertyMap = std::map<std::string, std::string, std::less<>>;

// Never destroyed: other objects may still ask for a property while the program ends.
PropertyMap &Get_Properties()
{
    alignas(PropertyMap) static std::byte s_abyRoom[sizeof(PropertyMap)];
    static PropertyMap *const s_pstProperties = new (s_abyRoom) PropertyMap;
    return *s_pstProperties;
}

bool Is_Fitting(std::string_view strKey, std::string_view strValue)
{
    return !strKey.empty() && strKey.size() < ZYR_PROPERTY_KEY_MAX &&
           strValue.size() < ZYR_PROPERTY_VALUE_MAX && strKey.find('\0') == std::string_view::npos &&
           strValue.find('\0') == std::string_view::npos;
}

int Store_Property(std::string_view strKey, std::string_view strValue)
{
    if (!Is_Fitting(strKey, strValue)) return -1;
    try {
        // The value is made first: without memory for it the property stays as it was.
        std::string strStored(strValue);
        Get_Properties()[std::string(strKey)].swap(strStored);
    } catch (const std::bad_alloc &) {
        return -1;
    }
    return 0;
}

std::string_view Trim_Blanks(std::string_view strText)
{
    constexpr std::string_view BLANKS = " \t\r\n";
    const size_t uiFirst = strText.find_first_not_of(BLANKS);
    if (uiFirst == std::string_view::npos) return {};
    return strText.substr(uiFirst, strText.find_last_not_of(BLANKS) - uiFirst + 1);
}

int Take_Line(std::string_view strLine)
{
    strLine = Trim_Blanks(strLine);
    if (strLine.empty() || strLine[0] == '#') return 0;
    const size_t uiEqual = strLine.find('=');
    if (uiEqual == std::string_view::npos) return -1;
    return Store_Property(Trim_Blanks(strLine.substr(0, uiEqual)), Trim_Blanks(strLine.substr(uiEqual + 1)));
}

void Load_StartFile()
{
    const char *pszPath = getenv("ZYR_PROPERTIES");
    if (pszPath != nullptr && pszPath[0] != '\0') zyr_host_loadProperties(pszPath);
}

[[gnu::constructor]] void Load_AtStart()
{
    Load_StartFile();
}

} // namespace

int property_get(const char *pszKey, char *pszValue, const char *pszDefault)
{
    if (pszValue == nullptr) return 0;
    std::string_view strValue = pszDefault != nullptr ? pszDefault : "";
    if (pszKey != nullptr) {
        const auto itProperty = Get_Properties().find(std::string_view(pszKey));
        if (itProperty != Get_Properties().end()) strValue = itProperty->second;
    }
    const size_t uiLength = std::min(strValue.size(), size_t{ZYR_PROPERTY_VALUE_MAX - 1});
    memcpy(pszValue, strValue.data(), uiLength);
    pszValue[uiLength] = '\0';
    return static_cast<int>(uiLength);
}

int zyr_host_setProperty(const char *pszKey, const char *pszValue)
{
    if (pszKey == nullptr) return -1;
    if (pszValue != nullptr) return Store_Property(pszKey, pszValue);
    if (!Is_Fitting(pszKey, "")) return -1;
    const auto itProperty = Get_Properties().find(std::string_view(pszKey));
    if (itProperty != Get_Properties().end()) Get_Properties().erase(itProperty);
    return 0;
}

const char *zyr_host_getProperty(const char *pszKey)
{
    if (pszKey == nullptr) return nullptr;
    const auto itProperty = Get_Properties().find(std::string_view(pszKey));
    return itProperty != Get_Properties().end() ? itProperty->second.c_str() : nullptr;
}

int zyr_host_loadProperties(const char *pszPath)
{
    FILE *pstFile = pszPath != nullptr ? fopen(pszPath, "re") : nullptr;
    if (pstFile == nullptr) return -1;
    int iResult = 0;
    char *pszLine = nullptr;
    size_t uiRoom = 0;
    for (ssize_t iLength = 0; (iLength = getline(&pszLine, &uiRoom, pstFile)) >= 0;) {
        if (Take_Line({pszLine, static_cast<size_t>(iLength)}) != 0) iResult = -1;
    }
    if (feof(pstFile) == 0) iResult = -1;
    free(pszLine);
    fclose(pstFile);
    return iResult;
}

void Reset_HostProperties()
{
    Get_Properties().clear();
    Load_StartFile();
}
