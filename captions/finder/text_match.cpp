#include "text_match.h"

#include <algorithm>

namespace
{

constexpr uint32_t SURE = 4;          // equal characters after which two texts are together again
constexpr uint32_t MEANT_MOST = 2000; // characters that are looked through for that
constexpr uint32_t SHOWN_MOST = 64;
constexpr uint32_t BRACE_MOST = 200;

struct Matcher {
    std::string_view strFile;
    const std::vector<PlainCharacter> &astMeant;
    const std::vector<PlainCharacter> &astShown;
    TextMatch stMatch = {};
    uint32_t uiMeant = 0;
    uint32_t uiShown = 0;

    bool Is_End() const { return uiMeant >= astMeant.size() || uiShown >= astShown.size(); }
    bool Is_Equal(uint32_t uiA, uint32_t uiB) const;
    bool Is_Together(uint32_t uiA, uint32_t uiB) const;
    uint32_t Measure_Literal() const;
    void Step_Entity();
    bool Step_Brace();
    void Step_Apart();
    void Add_Part(uint32_t uiMeantEnd, uint32_t uiShownEnd);
};

// Anything may stand for an entity; letter by letter is for Measure_Literal().
bool Matcher::Is_Equal(uint32_t uiA, uint32_t uiB) const
{
    return astMeant[uiA].uiCharacter == astShown[uiB].uiCharacter || astMeant[uiA].usEntity > 0;
}

bool Matcher::Is_Together(uint32_t uiA, uint32_t uiB) const
{
    for (uint32_t ui = 0; ui < SURE; ++ui) {
        const bool bMeantEnds = uiA + ui >= astMeant.size();
        const bool bShownEnds = uiB + ui >= astShown.size();
        if (bMeantEnds || bShownEnds) return bMeantEnds && bShownEnds;
        if (ui > 0 && astMeant[uiA + ui].usEntity > 0) return true; // what stands for it may be of any length
        if (!Is_Equal(uiA + ui, uiB + ui)) return false;
    }
    return true;
}

void Matcher::Add_Part(uint32_t uiMeantEnd, uint32_t uiShownEnd)
{
    stMatch.astParts.push_back({uiMeant, uiMeantEnd, uiShown, uiShownEnd});
    uiMeant = uiMeantEnd;
    uiShown = uiShownEnd;
}

// How many shown characters are the entity as it is written.
uint32_t Matcher::Measure_Literal() const
{
    const PlainCharacter &stEntity = astMeant[uiMeant];
    for (uint32_t ui = 0; ui < stEntity.usEntity; ++ui)
        if (uiShown + ui >= astShown.size() ||
            astShown[uiShown + ui].uiCharacter != static_cast<uint8_t>(strFile[stEntity.uiText + ui]))
            return 0;
    return stEntity.usEntity;
}

void Matcher::Step_Entity()
{
    const uint32_t uiLiteral = Measure_Literal();
    stMatch.astPairs.push_back({uiMeant, uiShown});
    if (uiLiteral > 0) stMatch.auiEntities.push_back(uiMeant);
    // A blank may stand for it, which is no character here; in a code page it may be two.
    if (uiLiteral == 0 && Is_Together(uiMeant + 1, uiShown)) {
        ++uiMeant;
        return;
    }
    uiShown += uiLiteral > 0 ? uiLiteral : 1;
    ++uiMeant;
}

// An override that is shown ends at its brace, whatever like it stands near.
bool Matcher::Step_Brace()
{
    if (astShown[uiShown].uiCharacter != '{') return false;
    for (uint32_t ui = uiShown; ui < std::min<size_t>(astShown.size(), uiShown + BRACE_MOST); ++ui)
        if (astShown[ui].uiCharacter == '}') {
            const bool bSame =
                uiMeant < astMeant.size() && ui + 1 < astShown.size() && Is_Equal(uiMeant, ui + 1);
            if (!bSame && !Is_Together(uiMeant, ui + 1)) return false;
            Add_Part(uiMeant, ui + 1);
            return true;
        }
    return false;
}

void Matcher::Step_Apart()
{
    if (Step_Brace()) return;
    const auto uiMeantEnd = static_cast<uint32_t>(astMeant.size());
    const auto uiShownEnd = static_cast<uint32_t>(astShown.size());
    for (uint32_t uiTotal = 1; uiTotal <= MEANT_MOST + SHOWN_MOST; ++uiTotal)
        for (uint32_t uiOver = 0; uiOver <= std::min(uiTotal, SHOWN_MOST); ++uiOver) {
            const uint32_t uiA = uiMeant + uiTotal - uiOver;
            const uint32_t uiB = uiShown + uiOver;
            if (uiA > uiMeantEnd || uiB > uiShownEnd || !Is_Together(uiA, uiB)) continue;
            return Add_Part(uiA, uiB);
        }
    Add_Part(uiMeantEnd, uiShownEnd);
}

} // namespace

TextMatch Match_Texts(std::string_view strFile, const std::vector<PlainCharacter> &astMeant,
                      const std::vector<PlainCharacter> &astShown)
{
    Matcher stMatcher{strFile, astMeant, astShown};
    while (!stMatcher.Is_End()) {
        if (astMeant[stMatcher.uiMeant].usEntity > 0) {
            stMatcher.Step_Entity();
        } else if (stMatcher.Is_Equal(stMatcher.uiMeant, stMatcher.uiShown)) {
            stMatcher.stMatch.astPairs.push_back({stMatcher.uiMeant++, stMatcher.uiShown++});
        } else {
            stMatcher.Step_Apart();
        }
    }
    if (stMatcher.uiMeant < astMeant.size() || stMatcher.uiShown < astShown.size())
        stMatcher.Add_Part(static_cast<uint32_t>(astMeant.size()), static_cast<uint32_t>(astShown.size()));
    return stMatcher.stMatch;
}
