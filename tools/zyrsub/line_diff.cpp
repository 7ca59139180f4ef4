#include "line_diff.h"

#include <algorithm>
#include <vector>

#include "text_tools.h"

static constexpr size_t AROUND = 3;   // lines that are shown around a difference
static constexpr size_t APART = 1000; // lines that are looked through for the next one in common

// A line of the result: ' ' in both, '-' in the old text, '+' in the new one.
struct DiffLine {
    char cSign;
    const std::string *pstrText;
    size_t uiOld; // how many lines of each are before it
    size_t uiNew;
};

// Two places are the same again where two lines are, or the texts end.
static bool Is_Same(const std::vector<std::string> &astrOld, size_t uiOld,
                    const std::vector<std::string> &astrNew, size_t uiNew)
{
    for (size_t ui = 0; ui < 2; ++ui) {
        const bool bOldEnds = uiOld + ui >= astrOld.size();
        const bool bNewEnds = uiNew + ui >= astrNew.size();
        if (bOldEnds || bNewEnds) return bOldEnds && bNewEnds;
        if (astrOld[uiOld + ui] != astrNew[uiNew + ui]) return false;
    }
    return true;
}

static void Find_Next(const std::vector<std::string> &astrOld, size_t &uiOld,
                      const std::vector<std::string> &astrNew, size_t &uiNew)
{
    for (size_t uiTotal = 1; uiTotal < APART; ++uiTotal)
        for (size_t uiOver = 0; uiOver <= uiTotal; ++uiOver) {
            const size_t uiA = uiOld + uiTotal - uiOver;
            const size_t uiB = uiNew + uiOver;
            if (uiA > astrOld.size() || uiB > astrNew.size() || !Is_Same(astrOld, uiA, astrNew, uiB))
                continue;
            uiOld = uiA;
            uiNew = uiB;
            return;
        }
    uiOld = astrOld.size();
    uiNew = astrNew.size();
}

static std::vector<DiffLine> List_Lines(const std::vector<std::string> &astrOld,
                                        const std::vector<std::string> &astrNew)
{
    std::vector<DiffLine> astLines;
    size_t uiOld = 0;
    size_t uiNew = 0;
    while (uiOld < astrOld.size() || uiNew < astrNew.size()) {
        if (uiOld < astrOld.size() && uiNew < astrNew.size() && astrOld[uiOld] == astrNew[uiNew]) {
            astLines.push_back({' ', &astrOld[uiOld], uiOld, uiNew});
            ++uiOld;
            ++uiNew;
            continue;
        }
        size_t uiOldEnd = uiOld;
        size_t uiNewEnd = uiNew;
        Find_Next(astrOld, uiOldEnd, astrNew, uiNewEnd);
        for (; uiOld < uiOldEnd; ++uiOld) astLines.push_back({'-', &astrOld[uiOld], uiOld, uiNew});
        for (; uiNew < uiNewEnd; ++uiNew) astLines.push_back({'+', &astrNew[uiNew], uiOld, uiNew});
    }
    return astLines;
}

static std::string Write_Hunk(const std::vector<DiffLine> &astLines, size_t uiFirst, size_t uiEnd)
{
    size_t uiOld = 0;
    size_t uiNew = 0;
    std::string strText;
    for (size_t ui = uiFirst; ui < uiEnd; ++ui) {
        uiOld += astLines[ui].cSign != '+' ? 1 : 0;
        uiNew += astLines[ui].cSign != '-' ? 1 : 0;
        strText += astLines[ui].cSign + Make_Printable(*astLines[ui].pstrText) + "\n";
    }
    return "@@ -" + std::to_string(astLines[uiFirst].uiOld + (uiOld > 0 ? 1 : 0)) + "," +
           std::to_string(uiOld) + " +" + std::to_string(astLines[uiFirst].uiNew + (uiNew > 0 ? 1 : 0)) +
           "," + std::to_string(uiNew) + " @@\n" + strText;
}

std::string Write_Diff(const std::string &strOldName, const std::string &strOld,
                       const std::string &strNewName, const std::string &strNew)
{
    const std::vector<std::string> astrOld = Split_Lines(strOld);
    const std::vector<std::string> astrNew = Split_Lines(strNew);
    const std::vector<DiffLine> astLines = List_Lines(astrOld, astrNew);
    std::string strText;
    for (size_t ui = 0; ui < astLines.size(); ++ui) {
        if (astLines[ui].cSign == ' ') continue;
        const size_t uiFirst = ui - std::min(ui, AROUND);
        size_t uiLast = ui; // the last line that differs and is not far from the one before
        for (size_t uiNext = ui; uiNext < std::min(astLines.size(), uiLast + 2 * AROUND + 1); ++uiNext)
            if (astLines[uiNext].cSign != ' ') uiLast = uiNext;
        const size_t uiEnd = std::min(astLines.size(), uiLast + AROUND + 1);
        strText += Write_Hunk(astLines, uiFirst, uiEnd);
        ui = uiEnd - 1;
    }
    return strText.empty() ? "" : "--- " + strOldName + "\n+++ " + strNewName + "\n" + strText;
}
