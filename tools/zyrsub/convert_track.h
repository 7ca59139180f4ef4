// The captions that are being converted: one track for each language of each input.
#ifndef ZYRSUB_CONVERT_TRACK_H
#define ZYRSUB_CONVERT_TRACK_H

#include <map>
#include <string>
#include <vector>

#include "caption_file.h"

// What an output cannot hold, and how often.
class Losses
{
public:
    void Add(const std::string &strWhat, size_t uiTimes = 1)
    {
        if (uiTimes > 0) m_auiTimes[strWhat] += uiTimes;
    }
    // The caption is not written at all.
    void Add_LeftOut(const std::string &strWhy)
    {
        Add("left out, as " + strWhy);
        ++m_uiLeftOut;
    }
    void Add_All(const Losses &stOther)
    {
        for (const auto &[strWhat, uiTimes] : stOther.m_auiTimes) Add(strWhat, uiTimes);
    }
    size_t Count_LeftOut() const { return m_uiLeftOut; }
    const std::map<std::string, size_t> &Get() const { return m_auiTimes; }
    // "3 captions: an end ..."
    std::vector<std::string> List() const;

private:
    std::map<std::string, size_t> m_auiTimes;
    size_t m_uiLeftOut = 0;
};

struct Track {
    std::string strClass; // empty: unnamed
    std::string strMovie; // the input that it is from
    std::vector<Frame> astFrames;
    Losses stLosses = {}; // by new times
};

// Every language of the input, or those that the source's options name, each read by itself.
Outcome Read_Tracks(const SourceOptions &stOptions, const std::string &strMovie,
                    std::vector<Track> &astTracks);

// Times become time x dScale + llShift (ms); what ends before 0 then, or passes the largest time, is lost.
void Retime_Track(Track &stTrack, double dScale, int64_t llShift);

#endif
