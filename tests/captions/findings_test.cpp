// The finder: places, codes and what the box does, on files whose faults are known.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "captions_kit.h"
#include "zyr/zyr_findings.h"

namespace
{

// A file of the table or of a test: a newline stands for CR LF, "\r" for LF, "\1" for the character 0.
std::string Expand(const char *pszText)
{
    std::string strBytes;
    for (; *pszText != '\0'; ++pszText)
        if (*pszText == '\n')
            strBytes += "\r\n";
        else if (*pszText == '\r')
            strBytes += '\n';
        else
            strBytes += *pszText == '\1' ? '\0' : *pszText;
    return strBytes;
}

class Findings
{
public:
    Findings(const std::string &strBytes, const char *pszName, const ZyrFindingsOptions &stOptions = {})
        : m_pstFindings(zyrFindings_loadMemory(strBytes.data(), strBytes.size(), pszName, &stOptions))
    {
    }
    ~Findings() { zyrFindings_free(m_pstFindings); }
    Findings(const Findings &) = delete;
    Findings &operator=(const Findings &) = delete;

    const ZyrFindings *Get() const { return m_pstFindings; }
    std::vector<ZyrFinding> List() const
    {
        std::vector<ZyrFinding> astFindings(zyrFindings_count(m_pstFindings));
        for (uint32_t ui = 0; ui < astFindings.size(); ++ui)
            zyrFindings_get(m_pstFindings, ui, &astFindings[ui]);
        return astFindings;
    }

    // "SRT-005 4:1 SRT-006 7:1", without the codes of times, which short files always have.
    std::string Show(bool bTimes = false) const
    {
        std::string strText;
        for (const ZyrFinding &stFinding : List()) {
            const std::string strCode = stFinding.pszCode + 4;
            if (!bTimes && strCode.starts_with("TIME")) continue;
            strText += (strText.empty() ? "" : " ") + strCode + " " + std::to_string(stFinding.uiLine) + ":" +
                       std::to_string(stFinding.uiColumn);
        }
        return strText;
    }

private:
    ZyrFindings *m_pstFindings;
};

} // namespace

// What the page of codes shows must be so.
TEST(FindingRules, EveryExampleHasItsFinding)
{
    ZyrFindingRule stRule;
    for (uint32_t ui = 0; zyrFindings_getRule(ui, &stRule) == ZYR_CAPTIONS_OK; ++ui) {
        SCOPED_TRACE(stRule.pszCode);
        ZyrFindingsOptions stOptions = {};
        if (std::string_view(stRule.pszCode).starts_with("ZYR-OUT")) {
            stOptions.pszOutput = "hdmi-vga";
            stOptions.uiFontSize = 40;
        }
        const Findings stFindings(Expand(stRule.pszExample), stRule.pszFile, stOptions);
        const std::vector<ZyrFinding> astFindings = stFindings.List();
        EXPECT_TRUE(std::any_of(astFindings.begin(), astFindings.end(),
                                [&](const ZyrFinding &stFinding) { return stFinding.uiRule == ui; }))
            << stFindings.Show(true) << zyrFindings_getErrorText(stFindings.Get());
    }
}
