// Emscripten's iconv reads the double-byte code pages and does not write them. Here it does: by a table made from its own
// reading, when it is first wanted. Everything else goes to it as it is. Names that only it lacks are put in its words.
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <iconv.h>
#include <strings.h>
#include <vector>

// The linker's names for what is wrapped.
extern "C" {
iconv_t __real_iconv_open(const char *pszTo, const char *pszFrom);
size_t __real_iconv(iconv_t hIconv, char **ppcIn, size_t *puiIn, char **ppcOut, size_t *puiOut);
int __real_iconv_close(iconv_t hIconv);
iconv_t __wrap_iconv_open(const char *pszTo, const char *pszFrom);
size_t __wrap_iconv(iconv_t hIconv, char **ppcIn, size_t *puiIn, char **ppcOut, size_t *puiOut);
int __wrap_iconv_close(iconv_t hIconv);
}

namespace
{

constexpr uint32_t CHARACTERS = 0x10000; // the code pages hold none beyond

struct NameRow {
    const char *pszName;
    const char *pszKnown;
};
constexpr NameRow NAMES[] = {
    {"CP932", "SHIFT_JIS"}, {"CP950", "BIG5"}, {"CP936", "GBK"}, {"UHC", "CP949"}, {"TIS-620", "ISO-8859-11"},
};

const char *Get_KnownName(const char *pszName)
{
    for (const NameRow &stRow : NAMES)
        if (strcasecmp(pszName, stRow.pszName) == 0) return stRow.pszKnown;
    return pszName;
}

// For each character its two bytes, or 0. ASCII stands for itself.
std::vector<uint16_t> Make_Table(iconv_t hReader)
{
    std::vector<uint16_t> ausTable(CHARACTERS, 0);
    for (uint32_t uiLead = 0x81; uiLead <= 0xFE; ++uiLead)
        for (uint32_t uiTrail = 0x31; uiTrail <= 0xFE; ++uiTrail) {
            char acIn[] = {static_cast<char>(uiLead), static_cast<char>(uiTrail)};
            uint32_t uiCharacter = 0;
            char *pcIn = acIn;
            auto *pcOut = reinterpret_cast<char *>(&uiCharacter);
            size_t uiIn = sizeof acIn;
            size_t uiOut = sizeof uiCharacter;
            const bool bRead = __real_iconv(hReader, &pcIn, &uiIn, &pcOut, &uiOut) != SIZE_MAX && uiIn == 0;
            if (bRead && uiCharacter < CHARACTERS && ausTable[uiCharacter] == 0)
                ausTable[uiCharacter] = static_cast<uint16_t>(uiLead << 8 | uiTrail);
        }
    return ausTable;
}

struct Conversion {
    iconv_t hReal = nullptr;        // to the target, or to characters of four bytes where a table goes on
    std::vector<uint16_t> ausTable; // empty: hReal does it all
};

size_t Fail(int iError)
{
    errno = iError;
    return SIZE_MAX;
}

// One character of the text through the table.
size_t Write_One(const Conversion &stConversion, char **ppcIn, size_t *puiIn, char **ppcOut, size_t *puiOut)
{
    uint32_t uiCharacter = 0;
    char *pcIn = *ppcIn;
    size_t uiIn = *puiIn;
    auto *pcOne = reinterpret_cast<char *>(&uiCharacter);
    size_t uiOne = sizeof uiCharacter;
    const size_t uiResult = __real_iconv(stConversion.hReal, &pcIn, &uiIn, &pcOne, &uiOne);
    if (uiOne != 0) return uiResult; // nothing came of it
    const uint16_t usBytes = uiCharacter < CHARACTERS ? stConversion.ausTable[uiCharacter] : uint16_t{0};
    if (uiCharacter >= 0x80 && usBytes == 0) return Fail(EILSEQ);
    const size_t uiBytes = uiCharacter < 0x80 ? 1 : 2;
    if (*puiOut < uiBytes) return Fail(E2BIG);
    if (uiBytes == 2) *(*ppcOut)++ = static_cast<char>(usBytes >> 8);
    *(*ppcOut)++ = static_cast<char>(uiBytes == 2 ? usBytes & 0xFF : uiCharacter);
    *puiOut -= uiBytes;
    *ppcIn = pcIn;
    *puiIn = uiIn;
    return 0;
}

} // namespace

iconv_t __wrap_iconv_open(const char *pszTo, const char *pszFrom)
{
    const char *const pszKnown = Get_KnownName(pszTo);
    const iconv_t hReal = __real_iconv_open(pszKnown, Get_KnownName(pszFrom));
    if (hReal != reinterpret_cast<iconv_t>(-1)) return new Conversion{hReal, {}};
    const iconv_t hReader = __real_iconv_open("UTF-32LE", pszKnown);
    if (hReader == reinterpret_cast<iconv_t>(-1)) return hReader;
    const iconv_t hSplitter = __real_iconv_open("UTF-32LE", Get_KnownName(pszFrom));
    auto *const pstConversion =
        hSplitter == reinterpret_cast<iconv_t>(-1) ? nullptr : new Conversion{hSplitter, Make_Table(hReader)};
    __real_iconv_close(hReader);
    return pstConversion == nullptr ? hSplitter : pstConversion;
}

size_t __wrap_iconv(iconv_t hIconv, char **ppcIn, size_t *puiIn, char **ppcOut, size_t *puiOut)
{
    const auto &stConversion = *static_cast<Conversion *>(hIconv);
    if (stConversion.ausTable.empty() || ppcIn == nullptr || *ppcIn == nullptr)
        return __real_iconv(stConversion.hReal, ppcIn, puiIn, ppcOut, puiOut);
    while (*puiIn > 0)
        if (Write_One(stConversion, ppcIn, puiIn, ppcOut, puiOut) == SIZE_MAX) return SIZE_MAX;
    return 0;
}

int __wrap_iconv_close(iconv_t hIconv)
{
    auto *const pstConversion = static_cast<Conversion *>(hIconv);
    const int iResult = __real_iconv_close(pstConversion->hReal);
    delete pstConversion;
    return iResult;
}
