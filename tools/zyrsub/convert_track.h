// The captions that are being converted: one track for each language of each input.
#ifndef ZYRSUB_CONVERT_TRACK_H
#define ZYRSUB_CONVERT_TRACK_H

#include <map>
#include <string>
#include <vector>

#include "caption_file.h"

// What does not come along, and in how many captions.
class Losses
{
public:
    struct Loss {
        size_t uiTimes = 0;
        bool bText = false; // words of the author, not only how they look or when they are shown
    };
    void Add(const std::string &strWhat, size_t uiTimes = 1) { Add_Loss(strWhat, {uiTimes, false}); }
    void Add_Text(const std::string &strWhat, size_t uiTimes = 1) { Add_Loss(strWhat, {uiTimes, true}); }
    // The caption is not written at all.
    void Add_LeftOut(const std::string &strWhy)
    {
        Add_Text("left out, as " + strWhy);
        ++m_uiLeftOut;
    }
    void Add_All(const Losses &stOther)
    {
        for (const auto &[strWhat, stLoss] : stOther.m_astLosses) Add_Loss(strWhat, stLoss);
    }
    size_t Count_LeftOut() const { return m_uiLeftOut; }
    bool Has_Text() const;
    const std::map<std::string, Loss> &Get() const { return m_astLosses; }
    // "3 captions: an end ..."
    std::vector<std::string> List() const;

private:
    void Add_Loss(const std::string &strWhat, Loss stLoss);

    std::map<std::string, Loss> m_astLosses;
    size_t m_uiLeftOut = 0;
};

struct Track {
    std::string strClass; // empty: unnamed
    std::string strMovie; // the input that it is from
    std::vector<Frame> astFrames;
    Losses stLosses = {}; // by reading, and by new times
};

// Every language of the input, or those that the source's options name, each read by itself.
Outcome Read_Tracks(const SourceOptions &stOptions, const std::string &strMovie,
                    std::vector<Track> &astTracks);

// Times become time x dScale + llShift (ms); what ends before 0 then, or passes the largest time, is lost.
void Retime_Track(Track &stTrack, double dScale, int64_t llShift);

#endif
