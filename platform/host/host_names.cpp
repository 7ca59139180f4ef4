#include "host_names.h"

#include "host_parts.h"
#include "zyr/zyr_host.h"

#include <cstddef>
#include <map>
#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace
{

// Names that begin so are never looked for among the files.
constexpr std::string_view PRIVATE_PREFIX = "zyrhost:";

struct Mapping {
    std::string strPath;    // used when pucData is nullptr
    const uint8_t *pucData; // the caller's
    uint32_t uiBytes;
};
using MappingMap = std::map<std::string, Mapping, std::less<>>;

// Never destroyed: other objects may still open files while the program ends.
MappingMap &Get_Mappings()
{
    alignas(MappingMap) static std::byte s_abyRoom[sizeof(MappingMap)];
    static MappingMap *const s_pstMappings = new (s_abyRoom) MappingMap;
    return *s_pstMappings;
}

int Remove_Mapping(std::string_view strName)
{
    const auto itMapping = Get_Mappings().find(strName);
    if (itMapping != Get_Mappings().end()) Get_Mappings().erase(itMapping);
    return 0;
}

int Store_Mapping(const char *pszName, const char *pszPath, const uint8_t *pucData, uint32_t uiBytes)
{
    if (pszName == nullptr || pszName[0] == '\0') return -1;
    if (pszPath == nullptr && pucData == nullptr) return Remove_Mapping(pszName);
    try {
        Mapping stMapping{pszPath != nullptr ? pszPath : "", pucData, uiBytes};
        Get_Mappings()[pszName] = std::move(stMapping);
    } catch (const std::bad_alloc &) {
        return -1;
    }
    return 0;
}

} // namespace

bool Find_HostSource(const char *pszName, HostSource *pstSource)
{
    const std::string_view strName = pszName;
    const auto itMapping = Get_Mappings().find(strName);
    if (itMapping == Get_Mappings().end()) {
        *pstSource = {pszName, nullptr, 0};
        return !strName.starts_with(PRIVATE_PREFIX);
    }
    const Mapping &stMapping = itMapping->second;
    *pstSource = {stMapping.pucData != nullptr ? nullptr : stMapping.strPath.c_str(), stMapping.pucData,
                  stMapping.uiBytes};
    return true;
}

int zyr_host_mapFile(const char *pszName, const char *pszPath)
{
    return Store_Mapping(pszName, pszPath, nullptr, 0);
}

int zyr_host_mapMemory(const char *pszName, const void *pvData, uint32_t uiBytes)
{
    return Store_Mapping(pszName, nullptr, static_cast<const uint8_t *>(pvData), uiBytes);
}

void Reset_HostNames()
{
    Get_Mappings().clear();
}
