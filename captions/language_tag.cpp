#include "language_tag.h"

namespace
{

struct TagRow {
    std::string_view strName;
    const char *pszTag;
};

// What stands before CC in a class name. Two letters are a language's; those of a country stand for its language where
// no language has them. Four letters are a language's and a country's.
constexpr TagRow SHORT_NAMES[] = {
    {"AR", "ar"},      {"BG", "bg"},      {"BR", "pt-BR"},   {"CA", "ca"},      {"CH", "zh"},
    {"CN", "zh-CN"},   {"CS", "cs"},      {"CZ", "cs"},      {"DA", "da"},      {"DE", "de"},
    {"DK", "da"},      {"EL", "el"},      {"EN", "en"},      {"ES", "es"},      {"FI", "fi"},
    {"FR", "fr"},      {"GB", "en-GB"},   {"GR", "el"},      {"HE", "he"},      {"HI", "hi"},
    {"HK", "zh-HK"},   {"HR", "hr"},      {"HU", "hu"},      {"ID", "id"},      {"IT", "it"},
    {"JA", "ja"},      {"JP", "ja"},      {"KO", "ko"},      {"KR", "ko"},      {"MX", "es-MX"},
    {"NL", "nl"},      {"NO", "no"},      {"PL", "pl"},      {"PT", "pt"},      {"RO", "ro"},
    {"RU", "ru"},      {"SK", "sk"},      {"SL", "sl"},      {"SV", "sv"},      {"TH", "th"},
    {"TR", "tr"},      {"TW", "zh-TW"},   {"UK", "uk"},      {"US", "en-US"},   {"VI", "vi"},
    {"VN", "vi"},      {"ZH", "zh"},      {"DEDE", "de-DE"}, {"ENGB", "en-GB"}, {"ENUS", "en-US"},
    {"ESES", "es-ES"}, {"ESMX", "es-MX"}, {"FRCA", "fr-CA"}, {"FRFR", "fr-FR"}, {"ITIT", "it-IT"},
    {"JAJP", "ja-JP"}, {"KOKR", "ko-KR"}, {"PTBR", "pt-BR"}, {"PTPT", "pt-PT"}, {"RURU", "ru-RU"},
    {"ZHCN", "zh-CN"}, {"ZHHK", "zh-HK"}, {"ZHTW", "zh-TW"},
};

// Whole names; the engine keeps 12 letters of one.
constexpr TagRow LONG_NAMES[] = {
    {"CHINESE", "zh"}, {"ENGLISH", "en"},  {"FRENCH", "fr"}, {"GERMAN", "de"},
    {"ITALIAN", "it"}, {"JAPANESE", "ja"}, {"KOREAN", "ko"}, {"PORTUGUESE", "pt"},
    {"RUSSIAN", "ru"}, {"SPANISH", "es"},  {"THAI", "th"},   {"VIETNAMESE", "vi"},
};

} // namespace

const char *Find_LanguageTag(std::string_view strClass)
{
    for (const TagRow &stRow : LONG_NAMES)
        if (strClass == stRow.strName) return stRow.pszTag;
    if (!strClass.ends_with("CC")) return nullptr;
    for (const TagRow &stRow : SHORT_NAMES)
        if (strClass.substr(0, strClass.size() - 2) == stRow.strName) return stRow.pszTag;
    return nullptr;
}
