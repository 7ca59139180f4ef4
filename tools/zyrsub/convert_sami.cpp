// SAMI, the one format that holds several languages, each a class. A caption of a class stays on screen until
// the next one of it, so an end before that becomes a caption without text; the last one has an END.
#include <algorithm>

#include "convert_write.h"
#include "time_text.h"

static constexpr size_t SPARSE = 30; // frames; a smaller class is taken for slips of the writer

struct SamiFrame {
    int32_t iStart = 0;
    int32_t iEnd = OPEN_END; // written only with the last of a class
    const Frame *pstFrame = nullptr;
    const Track *pstTrack = nullptr;
};

static std::vector<const Frame *> Sort_Frames(const Track &stTrack, Losses &stLosses)
{
    std::vector<const Frame *> apstFrames;
    for (const Frame &stFrame : stTrack.astFrames) {
        if (!apstFrames.empty() && stFrame.iStart < apstFrames.back()->iStart)
            stLosses.Add("it was out of order, and is put in its place");
        apstFrames.push_back(&stFrame);
    }
    std::stable_sort(apstFrames.begin(), apstFrames.end(),
                     [](const Frame *pstA, const Frame *pstB) { return pstA->iStart < pstB->iStart; });
    return apstFrames;
}

static void Lay_OutTrack(const Track &stTrack, std::vector<SamiFrame> &astOut, Losses &stLosses)
{
    static const Frame EMPTY;
    const std::vector<const Frame *> apstFrames = Sort_Frames(stTrack, stLosses);
    for (size_t uiFrame = 0; uiFrame < apstFrames.size(); ++uiFrame) {
        const Frame &stFrame = *apstFrames[uiFrame];
        const bool bLast = uiFrame + 1 == apstFrames.size();
        astOut.push_back({stFrame.iStart, bLast ? stFrame.iEnd : OPEN_END, &stFrame, &stTrack});
        if (bLast) break;
        const int32_t iNext = apstFrames[uiFrame + 1]->iStart;
        if (stFrame.iEnd > iNext) stLosses.Add("its end is cut at the next start of its class");
        if (stFrame.iEnd < stFrame.iStart) stLosses.Add("it ended before it began; it ends where it begins");
        if (stFrame.iEnd < iNext && !stFrame.astrLines.empty())
            astOut.push_back({std::max(stFrame.iEnd, stFrame.iStart), OPEN_END, &EMPTY, &stTrack});
    }
}

static void Note_Sparse(std::span<const Track> astTracks, const std::vector<SamiFrame> &astFrames,
                        Losses &stLosses)
{
    const auto pfCount = [&](const Track &stTrack) {
        return static_cast<size_t>(
            std::count_if(astFrames.begin(), astFrames.end(),
                          [&](const SamiFrame &st) { return st.pstTrack == &stTrack; }));
    };
    const bool bLarge = std::any_of(astTracks.begin(), astTracks.end(),
                                    [&](const Track &stTrack) { return pfCount(stTrack) > SPARSE; });
    for (const Track &stTrack : astTracks)
        if (bLarge && pfCount(stTrack) < SPARSE)
            stLosses.Add("class " + stTrack.strClass + " is so small that players fold it into a larger one",
                         pfCount(stTrack));
}

static std::string Write_Head(std::span<const Track> astTracks)
{
    std::string strOut = "<SAMI>\r\n<HEAD>\r\n<STYLE TYPE=\"text/css\">\r\n<!--\r\n"
                         "P { text-align: center; }\r\n";
    for (const Track &stTrack : astTracks)
        strOut += "." + stTrack.strClass + " { Name: " + stTrack.strClass + "; SAMIType: CC; }\r\n";
    return strOut + "-->\r\n</STYLE>\r\n</HEAD>\r\n<BODY>\r\n";
}

std::string Write_Sami(std::span<const Track> astTracks, int32_t /*iOpenMs*/, Losses &stLosses)
{
    std::vector<SamiFrame> astFrames;
    for (const Track &stTrack : astTracks) {
        Note_MarkupLosses(stTrack, true, stLosses);
        Lay_OutTrack(stTrack, astFrames, stLosses);
    }
    Note_Sparse(astTracks, astFrames, stLosses);
    std::stable_sort(astFrames.begin(), astFrames.end(),
                     [](const SamiFrame &stA, const SamiFrame &stB) { return stA.iStart < stB.iStart; });
    std::string strOut = Write_Head(astTracks);
    for (const SamiFrame &stFrame : astFrames) {
        strOut += "<SYNC Start=" + std::to_string(stFrame.iStart);
        if (stFrame.iEnd != OPEN_END) strOut += " End=" + std::to_string(stFrame.iEnd);
        strOut +=
            "><P Class=" + stFrame.pstTrack->strClass + ">" + Escape_SamiText(*stFrame.pstFrame) + "\r\n";
    }
    return strOut + "</BODY>\r\n</SAMI>\r\n";
}
