#include "convert_track.h"

#include <cmath>

#include "time_text.h"
#include "zyr/zyr_subtitle.h"

std::vector<std::string> Losses::List() const
{
    std::vector<std::string> astrLines;
    for (const auto &[strWhat, uiTimes] : m_auiTimes)
        astrLines.push_back(std::to_string(uiTimes) + (uiTimes == 1 ? " caption: " : " captions: ") +
                            strWhat);
    return astrLines;
}

// No selection was asked for: then more classes can be read than the engine plays side by side.
static std::vector<uint32_t> List_WantedClasses(const SourceOptions &stOptions)
{
    std::vector<uint32_t> auiClasses;
    const bool bAll = stOptions.astrClasses.empty();
    const uint32_t uiCount = bAll ? SubtitleSource::Count_Classes() : SubtitleSource::Count_Streams();
    for (uint32_t uiIndex = 0; uiIndex < uiCount; ++uiIndex)
        auiClasses.push_back(bAll ? uiIndex : SubtitleSource::Get_StreamClass(uiIndex));
    return auiClasses;
}

Outcome Read_Tracks(const SourceOptions &stOptions, const std::string &strMovie,
                    std::vector<Track> &astTracks)
{
    SubtitleSource stSource(stOptions);
    Outcome stOpened = stSource.Open(strMovie);
    if (!stOpened.IsGood()) return stOpened;
    for (const uint32_t uiClass : List_WantedClasses(stOptions)) {
        if (SubtitleSource::Count_Classes() > 1 && zyrSubtitle_selectClass(1, &uiClass) != 0)
            return {E_EXIT_SOME_FAILED, "a language class could not be selected"};
        astTracks.push_back({stSource.Get_ClassName(uiClass), strMovie, stSource.Read_All()});
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
