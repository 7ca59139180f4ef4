/* Tag commands: how markup of every format changes the current text style and ends output lines. */
#pragma once

#include <cstdint>

enum TagCommand : uint32_t {
    E_TAGCMD_LINE_BREAK = 0,
    E_TAGCMD_SET_FONT_COLOR = 1,
    E_TAGCMD_SET_FONT_OUTLINECOLOR = 2,
    E_TAGCMD_SET_FONT_SIZE = 3,
    E_TAGCMD_SET_FONT_HIGHLIGHT = 4,
    E_TAGCMD_SET_DISPLAY_MODE = 5,
};

/** Bits of the record's uiDisplayMode. */
enum DisplayMode : uint32_t {
    DISPLAY_MODE_UNDERLINE = 2,
    DISPLAY_MODE_BOLD = 4,
    DISPLAY_MODE_ITALIC = 8,
    DISPLAY_MODE_LEFT = 0x10,
    DISPLAY_MODE_CENTER = 0x20,
    DISPLAY_MODE_RIGHT = 0x40,
    DISPLAY_MODE_H1 = 0x80,
    DISPLAY_MODE_H2 = 0x100,
    DISPLAY_MODE_H3 = 0x200,
    DISPLAY_MODE_H4 = 0x400,
    DISPLAY_MODE_H5 = 0x800,
    DISPLAY_MODE_H6 = 0x1000,
    DISPLAY_MODE_TOP = 0x2000,
    DISPLAY_MODE_MIDDLE = 0x4000,
};

/**
 * Carry a tag command out.
 *
 * @param[in] puiParam  the command's value (colours in the low 16 bits); NULL for E_TAGCMD_LINE_BREAK
 * @return 1 done, also for a line break that a full frame refuses; -1 no value, or an unknown command
 *         (logged)
 */
int32_t Execute_TagCommand(uint32_t eTagCmd, const uint32_t *puiParam);

/** Execute_TagCommand() with the value given directly. */
inline int32_t Set_TextStyle(TagCommand eTagCmd, uint32_t uiValue)
{
    return Execute_TagCommand(eTagCmd, &uiValue);
}
