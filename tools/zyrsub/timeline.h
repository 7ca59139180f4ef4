// Which frames are on screen at a time, when all of a file's frames are known.
#ifndef ZYRSUB_TIMELINE_H
#define ZYRSUB_TIMELINE_H

#include <cstdint>
#include <string>
#include <vector>

#include "subtitle_source.h"

class Timeline
{
public:
    // Frames of all streams, in any order. A frame without an end is shown until the next one of its stream.
    explicit Timeline(std::vector<Frame> astFrames);

    // In order of their starts.
    const std::vector<Frame> &Get_Frames() const { return m_astFrames; }

    // What is on screen at a time, one line below the other: the streams in order, in each the frames in
    // order. With a stream number, only that stream's. Empty when nothing is shown.
    std::string Get_Caption(int64_t llMs, uint32_t uiStream = ALL_STREAMS) const;

    // The next time after this one at which a frame comes or goes; INT64_MAX when there is none.
    int64_t Find_NextChange(int64_t llMs) const;

    // When the last frame goes; a frame that never does counts a few seconds.
    int64_t Get_End() const;

private:
    std::vector<Frame> m_astFrames;
    uint32_t m_uiStreams = 0;
};

#endif
