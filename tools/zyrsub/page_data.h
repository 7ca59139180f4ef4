// What zyrsub report puts into its page: one JSON document of the file, its captions, their pictures and findings.
#ifndef ZYRSUB_PAGE_DATA_H
#define ZYRSUB_PAGE_DATA_H

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "options.h"

// All but the pictures, and each text that there is to draw, once. Without an output no finding tells how captions fit.
nlohmann::ordered_json Describe_File(const Options &stOptions, const CaptionFile &stFile,
                                     std::vector<std::string> &astrTexts);

// Draws every caption for every output that is asked for. Fails where the renderer does not start.
Outcome Describe_Page(const Options &stOptions, const CaptionFile &stFile, nlohmann::ordered_json &jsPage);

#endif
