// Which subtitle a player finds for a movie, and what keeps it from finding others.
#ifndef ZYRSUB_MOVIE_SEARCH_H
#define ZYRSUB_MOVIE_SEARCH_H

#include <optional>
#include <string>
#include <vector>

struct TriedName {
    std::string strFile;
    std::string strState; // "found", "not there", "a folder", or why it does not open
    bool bOpens = false;
};

// A file that looks like the movie's subtitle, but is never asked for.
struct Sibling {
    std::string strFile;
    std::string strWhy;
};

struct MovieSearch {
    std::vector<TriedName> astTried; // in the engine's order
    std::optional<size_t> uiWinner;  // the first that opens
    std::vector<Sibling> astSiblings;
};

MovieSearch Search_Movie(const std::string &strMovie);

// By its ending, in any letter case.
bool Is_SubtitleName(const std::string &strFile);

#endif
