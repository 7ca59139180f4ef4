#include "fix_text.h"

#include <algorithm>
#include <numeric>

FixText::FixText(std::string strText) : m_strText(std::move(strText))
{
    Find_Starts();
    m_auiOrigins.resize(m_auiStarts.size());
    std::iota(m_auiOrigins.begin(), m_auiOrigins.end(), 1U);
}

void FixText::Find_Starts()
{
    m_auiStarts.assign(1, 0);
    for (size_t uiAt = m_strText.find('\n'); uiAt != std::string::npos; uiAt = m_strText.find('\n', uiAt + 1))
        m_auiStarts.push_back(uiAt + 1);
}

size_t FixText::Find_Line(size_t uiAt) const
{
    return static_cast<size_t>(std::upper_bound(m_auiStarts.begin(), m_auiStarts.end(), uiAt) -
                               m_auiStarts.begin()) -
           1;
}

size_t FixText::Get_Start(size_t uiLine) const
{
    return uiLine < m_auiStarts.size() ? m_auiStarts[uiLine] : m_strText.size() + 1;
}

std::string_view FixText::Get_Line(size_t uiLine) const
{
    return std::string_view(m_strText).substr(Get_Start(uiLine),
                                              Get_Start(uiLine + 1) - 1 - Get_Start(uiLine));
}

// New lines come from the line that the edit is in.
bool FixText::Apply(std::vector<FixEdit> astEdits, std::vector<FixChange> &astChanges)
{
    std::stable_sort(astEdits.begin(), astEdits.end(),
                     [](const FixEdit &stA, const FixEdit &stB) { return stA.uiAt < stB.uiAt; });
    std::string strNew;
    std::vector<uint32_t> auiOrigins = {m_auiOrigins[0]};
    size_t uiDone = 0;
    const auto pfCopy = [&](size_t uiEnd) {
        for (; uiDone < uiEnd; ++uiDone) {
            strNew += m_strText[uiDone];
            if (m_strText[uiDone] == '\n') auiOrigins.push_back(m_auiOrigins[Find_Line(uiDone + 1)]);
        }
    };
    bool bAny = false;
    for (const FixEdit &stEdit : astEdits) {
        if (stEdit.uiAt < uiDone || stEdit.uiAt + stEdit.uiBytes > m_strText.size()) continue;
        if (bAny && stEdit.uiAt == uiDone && stEdit.uiBytes == 0 && uiDone > 0) continue; // the next round's
        pfCopy(stEdit.uiAt);
        const uint32_t uiOrigin = m_auiOrigins[Find_Line(stEdit.uiAt)];
        strNew += stEdit.strNew;
        for (const char cChar : stEdit.strNew)
            if (cChar == '\n') auiOrigins.push_back(uiOrigin);
        uiDone = stEdit.uiAt + stEdit.uiBytes;
        if (!stEdit.strWhat.empty()) astChanges.push_back({uiOrigin, stEdit.strCode, stEdit.strWhat});
        bAny = true;
    }
    pfCopy(m_strText.size());
    m_strText = std::move(strNew);
    m_auiOrigins = std::move(auiOrigins);
    Find_Starts();
    return bAny;
}

void FixText::Reorder(const std::vector<FixBlock> &astBlocks)
{
    std::string strNew;
    std::vector<uint32_t> auiOrigins;
    for (const FixBlock &stBlock : astBlocks)
        for (size_t uiLine = stBlock.uiFirst; uiLine < stBlock.uiEnd; ++uiLine) {
            if (!auiOrigins.empty()) strNew += '\n';
            strNew += Get_Line(uiLine);
            auiOrigins.push_back(m_auiOrigins[uiLine]);
        }
    m_strText = std::move(strNew);
    m_auiOrigins = std::move(auiOrigins);
    Find_Starts();
}
