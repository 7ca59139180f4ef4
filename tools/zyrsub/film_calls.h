// What zyrsub asks of a module that plays films. The module is loaded when it is there, so that the tool itself needs
// no media framework.
#ifndef ZYRSUB_FILM_CALLS_H
#define ZYRSUB_FILM_CALLS_H

#include <cstddef>
#include <cstdint>

struct FilmHandle;

// Times are milliseconds. All calls come from one thread.
struct FilmCalls {
    // Paused, at a time; null: it does not play, and why.
    FilmHandle *(*pfOpen)(const char *pszPath, int64_t llFrom, double dSpeed, char *pszError, size_t uiRoom);
    void (*pfClose)(FilmHandle *pstFilm);
    void (*pfSetSize)(FilmHandle *pstFilm, uint32_t uiWidth, uint32_t uiHeight); // of frames from now on
    // True when there is another frame than at the last call: red, green, blue, alpha of the size asked for.
    bool (*pfTakeFrame)(FilmHandle *pstFilm, uint8_t *pucRgba);
    void (*pfPause)(FilmHandle *pstFilm, bool bPause);
    void (*pfSeek)(FilmHandle *pstFilm, int64_t llTime);
    int64_t (*pfGetTime)(FilmHandle *pstFilm);
    int64_t (*pfGetDuration)(FilmHandle *pstFilm); // 0: not known
};

// The one symbol of the module.
constexpr const char *FILM_CALLS_SYMBOL =
    "zyrsub_film_calls_1"; // a const FilmCalls; the number is the form's

#endif
