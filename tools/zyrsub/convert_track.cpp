#include "convert_track.h"

#include <cmath>

#include "time_text.h"

std::vector<std::string> Losses::List() const
{
    std::vector<std::string> astrLines;
    for (const auto &[strWhat, uiTimes] : m_auiTimes)
        astrLines.push_back(std::to_string(uiTimes) + (uiTimes == 1 ? " caption: " : " captions: ") +
                            strWhat);
    return astrLines;
}

Outcome Read_Tracks(const SourceOptions &stOptions, const std::string &strMovie,
                    std::vector<Track> &astTracks)
{
    CaptionFile stFile;
    Outcome stOpened = stFile.Open(strMovie, stOptions);
    if (!stOpened.IsGood()) return stOpened;
    const size_t uiFirst = astTracks.size();
    for (const uint32_t uiClass : stFile.List_Classes())
        astTracks.push_back({stFile.Get_ClassName(uiClass), strMovie, {}});
    for (uint32_t uiIndex = 0; uiIndex < stFile.Count(); ++uiIndex) {
        Frame stFrame = stFile.Read_Frame(uiIndex);
        astTracks[uiFirst + stFile.Get_Class(stFrame.uiClass).uiOrder].astFrames.push_back(
            std::move(stFrame));
    }
    return {};
}

void Retime_Track(Track &stTrack, double dScale, int64_t llShift)
{
    std::vector<Frame> astKept;
    for (Frame &stFrame : stTrack.astFrames) {
        const bool bOpen = stFrame.iEnd == OPEN_END;
        const double dStart = std::round(stFrame.iStart * dScale) + static_cast<double>(llShift);
        const double dEnd = std::round(stFrame.iEnd * dScale) + static_cast<double>(llShift);
        const bool bBefore = !bOpen && dStart < 0 && dEnd <= 0;
        if (bBefore || dStart >= OPEN_END || (!bOpen && dEnd >= OPEN_END)) {
            stTrack.stLosses.Add_LeftOut("--shift and --scale move it out of the movie");
            continue;
        }
        if (dStart < 0) stTrack.stLosses.Add("--shift and --scale move its start before 0; it starts at 0");
        stFrame.iStart = static_cast<int32_t>(std::max(dStart, 0.0));
        if (!bOpen) stFrame.iEnd = static_cast<int32_t>(std::max(dEnd, 0.0));
        astKept.push_back(std::move(stFrame));
    }
    stTrack.astFrames = std::move(astKept);
}
