// What one text has that another does not, by lines, as patches are written.
#ifndef ZYRSUB_LINE_DIFF_H
#define ZYRSUB_LINE_DIFF_H

#include <string>

// Empty when they are the same.
std::string Write_Diff(const std::string &strOldName, const std::string &strOld,
                       const std::string &strNewName, const std::string &strNew);

#endif
