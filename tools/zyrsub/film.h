// The film behind the captions, where it exists and something is there that plays it.
#ifndef ZYRSUB_FILM_H
#define ZYRSUB_FILM_H

#include <memory>
#include <string>

#include "film_calls.h"
#include "picture.h"

class Film
{
public:
    // Not open and no word: there is no film, or nothing to play it with. A word: it does not play, and why.
    std::string Open(const std::string &strMovie, int64_t llFrom, double dSpeed);

    bool Is_Open() const { return m_pstFilm != nullptr; }
    void Set_Size(uint32_t uiWidth, uint32_t uiHeight);
    // True when there is another frame than before.
    bool Take_Frame();
    const Picture &Get_Frame() const { return m_stFrame; }
    void Pause(bool bPause) { m_pstCalls->pfPause(m_pstFilm.get(), bPause); }
    void Seek(int64_t llTime) { m_pstCalls->pfSeek(m_pstFilm.get(), llTime); }
    int64_t Get_Time() const { return m_pstCalls->pfGetTime(m_pstFilm.get()); }
    int64_t Get_Duration() const { return m_pstCalls->pfGetDuration(m_pstFilm.get()); }

private:
    const FilmCalls *m_pstCalls = nullptr;
    std::unique_ptr<FilmHandle, void (*)(FilmHandle *)> m_pstFilm{nullptr, nullptr};
    Picture m_stFrame;
};

#endif
