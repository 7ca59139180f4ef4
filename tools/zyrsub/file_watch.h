// Notices that a file was written anew.
#ifndef ZYRSUB_FILE_WATCH_H
#define ZYRSUB_FILE_WATCH_H

#include <chrono>
#include <cstdint>
#include <string>

// Looks at the file's state now and then: that works on every file system, and for editors that rename a new file into
// place. A file that is gone, or is still being written, is not new yet.
class FileWatch
{
public:
    explicit FileWatch(std::string strFile); // as it is now is not new

    // Once for each writing; cheap, to be asked as often as one likes.
    bool Is_New();

private:
    struct State {
        int64_t llSeconds = 0;
        int64_t llNanoseconds = 0;
        int64_t llBytes = -1; // -1: no file
        uint64_t ullNode = 0;
        bool operator==(const State &) const = default;
    };
    static State Get_State(const std::string &strFile);

    std::string m_strFile;
    State m_stKnown; // the last one told
    State m_stSeen;  // at the last look
    std::chrono::steady_clock::time_point m_stNextLook;
};

#endif
