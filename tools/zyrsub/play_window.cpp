// Play in a window: the display of the chosen output, captions coming and going in real time.
#include "playback.h"

#include <SDL.h>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "caption_screen.h"
#include "commands.h"
#include "film.h"

static constexpr int POLL_MS = 10;

// Without a window system SDL falls back on a driver that shows nothing, unless it was asked for.
static bool Shows_Nothing()
{
    const char *const pszDriver = SDL_GetCurrentVideoDriver();
    const bool bHidden = pszDriver == nullptr || std::string_view(pszDriver) == "offscreen";
    return bHidden && std::getenv("SDL_VIDEODRIVER") == nullptr;
}

struct SdlSession {
    SdlSession() : bGood(SDL_Init(SDL_INIT_VIDEO) == 0 && !Shows_Nothing()) {}
    ~SdlSession() { SDL_Quit(); }
    SdlSession(const SdlSession &) = delete;
    SdlSession &operator=(const SdlSession &) = delete;
    bool bGood;
};
using WindowPtr = std::unique_ptr<SDL_Window, void (*)(SDL_Window *)>;
using SurfacePtr = std::unique_ptr<SDL_Surface, void (*)(SDL_Surface *)>;

struct WindowSize {
    int iWidth;
    int iHeight;
};

// The display's own size, or as much of it as the screen has room for.
static WindowSize Fit_Window(const CaptionScreen &stScreen)
{
    const auto iWidth = static_cast<int>(stScreen.Get_Width());
    const auto iHeight = static_cast<int>(stScreen.Get_Height());
    SDL_Rect stRoom = {};
    if (SDL_GetDisplayUsableBounds(0, &stRoom) != 0 || stRoom.w <= 0 || stRoom.h <= 0)
        return {iWidth, iHeight};
    const double dScale =
        std::min({1.0, static_cast<double>(stRoom.w) / iWidth, static_cast<double>(stRoom.h) / iHeight});
    return {static_cast<int>(iWidth * dScale), static_cast<int>(iHeight * dScale)};
}

static PlayCommand Get_KeyCommand(SDL_Keycode iKey)
{
    switch (iKey) {
    case SDLK_SPACE: return E_PLAY_PAUSE;
    case SDLK_LEFT: return E_PLAY_BACK;
    case SDLK_RIGHT: return E_PLAY_ON;
    case SDLK_DOWN: return E_PLAY_FAR_BACK;
    case SDLK_UP: return E_PLAY_FAR_ON;
    case SDLK_n: return E_PLAY_NEXT;
    case SDLK_p: return E_PLAY_PREVIOUS;
    case SDLK_l: return E_PLAY_LANGUAGE;
    case SDLK_o: return E_PLAY_OUTPUT;
    case SDLK_q:
    case SDLK_ESCAPE: return E_PLAY_QUIT;
    default: return E_PLAY_NOTHING;
    }
}

static void Draw_Window(SDL_Window *pstWindow, Picture &stPicture)
{
    SDL_Surface *pstTarget = SDL_GetWindowSurface(pstWindow);
    const auto iWidth = static_cast<int>(stPicture.uiWidth);
    const auto iHeight = static_cast<int>(stPicture.uiHeight);
    const SurfacePtr pstSource(SDL_CreateRGBSurfaceWithFormatFrom(stPicture.aucRgba.data(), iWidth, iHeight,
                                                                  32, iWidth * 4, SDL_PIXELFORMAT_RGBA32),
                               SDL_FreeSurface);
    if (pstTarget == nullptr || !pstSource) return;
    SDL_SetSurfaceBlendMode(pstSource.get(), SDL_BLENDMODE_NONE);
    const double dScale =
        std::min(static_cast<double>(pstTarget->w) / iWidth, static_cast<double>(pstTarget->h) / iHeight);
    const auto iShownWidth = static_cast<int>(iWidth * dScale);
    const auto iShownHeight = static_cast<int>(iHeight * dScale);
    SDL_Rect stPlace = {(pstTarget->w - iShownWidth) / 2, (pstTarget->h - iShownHeight) / 2, iShownWidth,
                        iShownHeight};
    SDL_FillRect(pstTarget, nullptr, 0);
    SDL_BlitScaled(pstSource.get(), nullptr, pstTarget, &stPlace);
    SDL_UpdateWindowSurface(pstWindow);
}

// What one run of the window holds.
struct WindowPlay {
    const Options &stOptions;
    Playback &stPlayback;
    ScreenOptions stScreenOptions;
    CaptionScreen stScreen;
    WindowPtr pstWindow{nullptr, SDL_DestroyWindow};
    Film stFilm;
    std::string strShown;
    std::string strTitle;
    bool bRedraw = true;
    bool bQuit = false;
};

static Outcome Change_Output(WindowPlay &stPlay)
{
    stPlay.stScreenOptions.uiOutput = (stPlay.stScreenOptions.uiOutput + 1) % Count_Outputs();
    Outcome stOpened = stPlay.stScreen.Open(stPlay.stScreenOptions);
    if (!stOpened.IsGood()) return stOpened;
    const WindowSize stSize = Fit_Window(stPlay.stScreen);
    SDL_SetWindowSize(stPlay.pstWindow.get(), stSize.iWidth, stSize.iHeight);
    SDL_SetWindowPosition(stPlay.pstWindow.get(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
    stPlay.strShown.clear();
    stPlay.bRedraw = true;
    if (stPlay.stFilm.Is_Open())
        stPlay.stFilm.Set_Size(stPlay.stScreen.Get_Width(), stPlay.stScreen.Get_Height());
    return {};
}

// What a key does to the captions it does to the film.
static void Apply_Command(WindowPlay &stPlay, PlayCommand eCommand)
{
    const int64_t llBefore = stPlay.stPlayback.Get_Position();
    stPlay.stPlayback.Apply(eCommand);
    if (!stPlay.stFilm.Is_Open()) return;
    const int64_t llNow = stPlay.stPlayback.Get_Position();
    if (llNow != llBefore) stPlay.stFilm.Seek(llNow);
    stPlay.stFilm.Pause(stPlay.stPlayback.Is_Paused());
}

static Outcome Handle_Event(WindowPlay &stPlay, const SDL_Event &stEvent)
{
    if (stEvent.type == SDL_QUIT) stPlay.bQuit = true;
    if (stEvent.type == SDL_WINDOWEVENT) stPlay.bRedraw = true;
    if (stEvent.type != SDL_KEYDOWN) return {};
    const PlayCommand eCommand = Get_KeyCommand(stEvent.key.keysym.sym);
    if (eCommand == E_PLAY_QUIT) stPlay.bQuit = true;
    if (eCommand == E_PLAY_OUTPUT) return Change_Output(stPlay);
    Apply_Command(stPlay, eCommand);
    return {};
}

static void Update_Title(WindowPlay &stPlay)
{
    const std::string strTitle = stPlay.stPlayback.Describe() + "  " +
                                 Get_Output(stPlay.stScreenOptions.uiOutput).pszName + "  " +
                                 stPlay.stOptions.astrMovies.front();
    if (strTitle == stPlay.strTitle) return;
    stPlay.strTitle = strTitle;
    SDL_SetWindowTitle(stPlay.pstWindow.get(), strTitle.c_str());
}

static void Update_Caption(WindowPlay &stPlay)
{
    const std::string strCaption = stPlay.stPlayback.Get_Caption();
    if (strCaption != stPlay.strShown) {
        stPlay.strShown = strCaption;
        stPlay.bRedraw = true;
    }
    if (!stPlay.bRedraw) return;
    Picture stPicture =
        stPlay.stFilm.Is_Open() ? stPlay.stFilm.Get_Frame() : stPlay.stScreen.Draw(strCaption);
    if (stPlay.stFilm.Is_Open()) stPlay.stScreen.Draw_Over(stPicture, strCaption);
    Draw_Window(stPlay.pstWindow.get(), stPicture);
    stPlay.bRedraw = false;
}

static void Follow_Film(WindowPlay &stPlay)
{
    if (stPlay.stFilm.Take_Frame()) stPlay.bRedraw = true;
    stPlay.stPlayback.Follow(stPlay.stFilm.Get_Time());
    Update_Caption(stPlay);
}

static void Follow_Clock(WindowPlay &stPlay, uint64_t ullElapsedMs)
{
    bool bMore = stPlay.stPlayback.Advance(static_cast<double>(ullElapsedMs));
    Update_Caption(stPlay);
    for (; bMore; bMore = stPlay.stPlayback.Advance(0)) Update_Caption(stPlay);
    Update_Caption(stPlay);
}

// At the end the last picture stays until the viewer quits or seeks back.
static Outcome Run_Loop(WindowPlay &stPlay)
{
    uint64_t ullLast = SDL_GetTicks64();
    while (!stPlay.bQuit) {
        SDL_Event stEvent;
        for (int iWait = POLL_MS; !stPlay.bQuit && SDL_WaitEventTimeout(&stEvent, iWait) != 0; iWait = 0) {
            Outcome stHandled = Handle_Event(stPlay, stEvent);
            if (!stHandled.IsGood()) return stHandled;
        }
        const uint64_t ullNow = SDL_GetTicks64();
        if (stPlay.stFilm.Is_Open())
            Follow_Film(stPlay);
        else
            Follow_Clock(stPlay, ullNow - ullLast);
        ullLast = ullNow;
        Update_Title(stPlay);
    }
    return {};
}

// A film that does not play leaves its captions, as one that is not there.
static void Open_Film(WindowPlay &stPlay)
{
    const std::string &strMovie = stPlay.stOptions.astrMovies.front();
    const PlayOptions &stOptions = stPlay.stOptions.stPlay;
    const std::string strError = stPlay.stFilm.Open(strMovie, stOptions.uiFrom, stOptions.dSpeed);
    if (!strError.empty()) Report_Problem(strMovie, "its captions are played alone: " + strError);
    if (!stPlay.stFilm.Is_Open()) return;
    stPlay.stFilm.Set_Size(stPlay.stScreen.Get_Width(), stPlay.stScreen.Get_Height());
    if (stPlay.stFilm.Get_Duration() > 0) stPlay.stPlayback.Set_Duration(stPlay.stFilm.Get_Duration());
    stPlay.stFilm.Pause(false);
}

Outcome Play_Window(const Options &stOptions, Playback &stPlayback)
{
    const SdlSession stSession;
    if (!stSession.bGood)
        return {E_EXIT_SOME_FAILED,
                std::string("there is no window system (") + SDL_GetError() + "); try --terminal"};
    WindowPlay stPlay{stOptions, stPlayback, stOptions.stScreen, {}, {nullptr, SDL_DestroyWindow}, {}, "", "",
                      true,      false};
    Outcome stOpened = stPlay.stScreen.Open(stPlay.stScreenOptions);
    if (!stOpened.IsGood()) return stOpened;
    const WindowSize stSize = Fit_Window(stPlay.stScreen);
    stPlay.pstWindow.reset(SDL_CreateWindow("zyrsub", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                            stSize.iWidth, stSize.iHeight, SDL_WINDOW_RESIZABLE));
    if (!stPlay.pstWindow)
        return {E_EXIT_SOME_FAILED, std::string("no window can be opened: ") + SDL_GetError()};
    Open_Film(stPlay);
    return Run_Loop(stPlay);
}
