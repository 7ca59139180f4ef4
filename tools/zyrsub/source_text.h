// What the author of a file wrote, read plainly: without the limits of the box, to tell what is lost on the way.
#ifndef ZYRSUB_SOURCE_TEXT_H
#define ZYRSUB_SOURCE_TEXT_H

#include <map>
#include <string>
#include <vector>

#include "caption_file.h"

// One caption as the file has it.
struct AuthorText {
    std::string strText;    // UTF-8, without markup; an entity is left out, as anything may stand for it
    bool bStyled = false;   // tags or overrides are in it
    bool bMixed = false;    // some of them behind its first visible character
    bool bBareSign = false; // a "<" that begins no tag
};

class SourceText
{
public:
    // The file must be open; a file that is gone by now has no text.
    explicit SourceText(const CaptionFile &stFile);

    AuthorText Read_Caption(const ZyrCaption &stCaption) const;

    // How many stretches of text there are that belong to no caption of the list.
    size_t Count_Stray() const { return m_uiStray; }

private:
    std::string Decode(std::string_view strBytes) const;
    void Add_Region(const std::string &strBytes, size_t uiFirst, size_t uiEnd, bool bCaption);

    const CaptionFile &m_stFile;
    uint32_t m_uiFormat;
    bool m_bAllClasses;
    std::map<uint32_t, std::string> m_astrRegions; // by the place where a caption begins
    size_t m_uiStray = 0;
};

// Visible characters of one text that another does not have, and how many of them are beyond U+FFFF.
struct MissingCharacters {
    size_t uiAll = 0;
    size_t uiAstral = 0;
};
MissingCharacters Find_Missing(const std::string &strAuthor, const std::string &strShown);

#endif
