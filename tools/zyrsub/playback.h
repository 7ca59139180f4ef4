// The player behind both kinds of play: where the film stands, and what the keys do to it.
#ifndef ZYRSUB_PLAYBACK_H
#define ZYRSUB_PLAYBACK_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "exit_code.h"
#include "options.h"

enum PlayCommand {
    E_PLAY_NOTHING,
    E_PLAY_PAUSE,
    E_PLAY_BACK,     // 5 seconds
    E_PLAY_ON,       // 5 seconds
    E_PLAY_FAR_BACK, // a minute
    E_PLAY_FAR_ON,   // a minute
    E_PLAY_NEXT,     // caption
    E_PLAY_PREVIOUS, // caption
    E_PLAY_LANGUAGE,
    E_PLAY_OUTPUT,
    E_PLAY_QUIT,
};

class Playback
{
public:
    // The file outlives the playback.
    Playback(const CaptionFile &stFile, const PlayOptions &stOptions);

    // From now on: asked whenever time passes, and true when it has put another writing of the file in the place of
    // the one that plays. The film goes on where it is, in the same language.
    void Follow(std::function<bool()> pfRenew) { m_pfRenew = std::move(pfRenew); }

    // Let so much real time pass. The film stops at every change of the caption on the way, so that none is
    // missed at any speed: true when it stopped before the time was used up, and should be asked again.
    bool Advance(double dElapsedMs);

    void Apply(PlayCommand eCommand);

    // A film has the clock: where it stands, and how long it is.
    void Follow(int64_t llPosition);
    void Set_Duration(int64_t llDuration) { m_llEnd = llDuration; }

    std::string Get_Caption() const { return Get_TextAt(m_stFile.Get_List(), Get_Position(), Get_Class()); }
    int64_t Get_Position() const { return static_cast<int64_t>(m_dPosition); }
    bool Is_Paused() const { return m_bPaused; }
    bool Is_AtEnd() const { return Get_Position() >= m_llEnd; }

    // "0:00:05.0 of 0:12:00.0  KRCC  paused": whole tenths of a second, so that it can be read while it runs
    std::string Describe() const;

private:
    void Seek_By(double dMs);
    void Seek_Caption(bool bNext);

    uint32_t Get_Class() const;
    void Renew();

    const CaptionFile &m_stFile;
    std::function<bool()> m_pfRenew;
    std::vector<uint32_t> m_auiClasses;
    int64_t m_llEnd; // ms
    double m_dSpeed;
    double m_dPosition;   // ms
    double m_dBehind = 0; // ms of the film that are due but not passed yet
    bool m_bPaused = false;
    size_t m_uiLanguage = 0; // 0: all, else the class before
};

Outcome Play_Window(const Options &stOptions, Playback &stPlayback);
Outcome Play_Terminal(Playback &stPlayback);

#endif
