#include "timeline.h"

#include <algorithm>
#include <map>

#include "time_text.h"

static constexpr int64_t LAST_FRAME_MS = 5000;

Timeline::Timeline(std::vector<Frame> astFrames) : m_astFrames(std::move(astFrames))
{
    std::stable_sort(m_astFrames.begin(), m_astFrames.end(),
                     [](const Frame &stA, const Frame &stB) { return stA.iStart < stB.iStart; });
    std::map<uint32_t, Frame *> apstOpen;
    for (Frame &stFrame : m_astFrames) {
        Frame *&pstOpen = apstOpen[stFrame.uiStream];
        if (pstOpen != nullptr) pstOpen->iEnd = stFrame.iStart;
        pstOpen = stFrame.iEnd == OPEN_END ? &stFrame : nullptr;
        m_uiStreams = std::max(m_uiStreams, stFrame.uiStream + 1);
    }
}

std::string Timeline::Get_Caption(int64_t llMs, uint32_t uiStream) const
{
    std::vector<std::string> astrLines;
    for (uint32_t uiShown = 0; uiShown < m_uiStreams; ++uiShown) {
        if (uiStream != ALL_STREAMS && uiStream != uiShown) continue;
        for (const Frame &stFrame : m_astFrames) {
            if (stFrame.iStart > llMs) break;
            if (stFrame.uiStream == uiShown && stFrame.iEnd > llMs)
                astrLines.insert(astrLines.end(), stFrame.astrLines.begin(), stFrame.astrLines.end());
        }
    }
    return Join_Lines(astrLines, "\n");
}

int64_t Timeline::Find_NextChange(int64_t llMs) const
{
    int64_t llNext = INT64_MAX;
    for (const Frame &stFrame : m_astFrames) {
        if (stFrame.iStart > llMs) llNext = std::min<int64_t>(llNext, stFrame.iStart);
        if (stFrame.iEnd > llMs) llNext = std::min<int64_t>(llNext, stFrame.iEnd);
    }
    return llNext;
}

int64_t Timeline::Get_End() const
{
    int64_t llEnd = 0;
    for (const Frame &stFrame : m_astFrames) {
        const bool bOpen = stFrame.iEnd == OPEN_END;
        llEnd = std::max(llEnd, bOpen ? stFrame.iStart + LAST_FRAME_MS : int64_t{stFrame.iEnd});
    }
    return llEnd;
}
