#include "closest_name.h"

#include <algorithm>
#include <numeric>
#include <vector>

// Characters to insert, drop or replace until one is the other.
static size_t Count_Changes(const std::string &strA, const std::string &strB)
{
    std::vector<size_t> auiRow(strB.size() + 1);
    std::iota(auiRow.begin(), auiRow.end(), size_t{0});
    for (size_t uiA = 1; uiA <= strA.size(); ++uiA) {
        size_t uiDiagonal = auiRow[0];
        auiRow[0] = uiA;
        for (size_t uiB = 1; uiB <= strB.size(); ++uiB) {
            const size_t uiReplaced = uiDiagonal + (strA[uiA - 1] == strB[uiB - 1] ? 0 : 1);
            uiDiagonal = auiRow[uiB];
            auiRow[uiB] = std::min({uiReplaced, auiRow[uiB] + 1, auiRow[uiB - 1] + 1});
        }
    }
    return auiRow.back();
}

std::string Find_ClosestName(const std::string &strName, std::span<const std::string> astrNames)
{
    static constexpr size_t LONGEST = 64; // longer ones are no slip of the fingers
    if (strName.size() > LONGEST) return "";
    std::string strBest;
    size_t uiFewest = std::max<size_t>(strName.size() / 3, 1) + 1;
    for (const std::string &strKnown : astrNames) {
        const size_t uiChanges = Count_Changes(strName, strKnown);
        const bool bBegins = strName.size() > 3 && strKnown.starts_with(strName);
        if (uiChanges >= uiFewest && !(bBegins && strBest.empty())) continue;
        uiFewest = std::min(uiFewest, uiChanges);
        strBest = strKnown;
    }
    return strBest;
}
