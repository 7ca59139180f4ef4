// A subtitle file's text on its way to another: lines that know which line of the file they come from.
#ifndef ZYRSUB_FIX_TEXT_H
#define ZYRSUB_FIX_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// One replacement, and what it is for.
struct FixEdit {
    size_t uiAt = 0; // bytes into the text
    size_t uiBytes = 0;
    std::string strNew;
    std::string strCode; // of lint
    std::string strWhat; // what is done, as a sentence without a capital
};

struct FixChange {
    uint32_t uiLine; // of the file, 1 on
    std::string strCode;
    std::string strWhat;
};

// Lines, the first and the one behind the last.
struct FixBlock {
    size_t uiFirst;
    size_t uiEnd;
};

class FixText
{
public:
    // UTF-8 with a newline for each line end.
    explicit FixText(std::string strText);

    const std::string &Get() const { return m_strText; }
    size_t Count_Lines() const { return m_auiStarts.size(); }
    size_t Find_Line(size_t uiAt) const;
    size_t Get_Start(size_t uiLine) const; // of a line, and of the text's end
    std::string_view Get_Line(size_t uiLine) const;
    uint32_t Get_Origin(size_t uiLine) const { return m_auiOrigins[uiLine]; }

    // Those that do not overlap one before them; tells what was done. False when there was nothing to do.
    bool Apply(std::vector<FixEdit> astEdits, std::vector<FixChange> &astChanges);

    // The blocks, which are all lines from the first one on, in a new order.
    void Reorder(const std::vector<FixBlock> &astBlocks);

private:
    void Find_Starts();

    std::string m_strText;
    std::vector<size_t> m_auiStarts;
    std::vector<uint32_t> m_auiOrigins;
};

#endif
