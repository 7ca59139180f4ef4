#include "markup/tag_command.h"

#include "lines/line_output.h"
#include "record/engine_log.h"
#include "record/parser_state.h"

namespace
{

void Log_NoParameter(uint32_t eTagCmd)
{
    constexpr const char *NAMES[] = {"",
                                     "E_TAGCMD_SET_FONT_COLOR",
                                     "E_TAGCMD_SET_FONT_OUTLINECOLOR",
                                     "E_TAGCMD_SET_FONT_SIZE",
                                     "E_TAGCMD_SET_FONT_HIGHLIGHT",
                                     "E_TAGCMD_SET_DISPLAY_MODE"};
    LOG_PARSER("%s - No Parameter!\n", NAMES[eTagCmd]);
}

} // namespace

int32_t Execute_TagCommand(uint32_t eTagCmd, const uint32_t *puiParam)
{
    if (eTagCmd > E_TAGCMD_SET_DISPLAY_MODE) {
        LOG_PARSER("Unknown Tag Command! (%d)\n", static_cast<int32_t>(eTagCmd));
        return -1;
    }
    if (eTagCmd == E_TAGCMD_LINE_BREAK) {
        Break_OutputLine();
        return 1;
    }
    if (puiParam == nullptr) {
        Log_NoParameter(eTagCmd);
        return -1;
    }
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    switch (eTagCmd) {
    case E_TAGCMD_SET_FONT_COLOR: stInfo.usFontColor = static_cast<uint16_t>(*puiParam); break;
    case E_TAGCMD_SET_FONT_OUTLINECOLOR: stInfo.usOutlineColor = static_cast<uint16_t>(*puiParam); break;
    case E_TAGCMD_SET_FONT_SIZE: stInfo.uiFontSize = *puiParam; break;
    case E_TAGCMD_SET_FONT_HIGHLIGHT: stInfo.uiHighlight = *puiParam; break;
    default: stInfo.uiDisplayMode |= *puiParam; break;
    }
    return 1;
}
