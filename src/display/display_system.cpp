#include "display/display_system.h"

#include <cstdlib>
#include <cstring>

#include "font/renderer_log.h"
#include "zyr_properties.h"

enum OutputMode : int32_t { E_OUTPUT_LCD, E_OUTPUT_HDMI, E_OUTPUT_COMPOSITE, E_OUTPUT_COMPONENT };

enum ChipFamily : uint32_t { E_ARCH_UNKNOWN, E_ARCH_71, E_ARCH_72, E_ARCH_73, E_ARCH_741 };

constexpr int32_t HDMI_RESOLUTION_DETECTED = 125; // take what the display told

struct DisplayInfo {
    uint32_t uiLcdc; // display controller of the caption layer
    int32_t iOutputStb;
    int32_t iOutputMode;
    int32_t iHdmiResolution;
    int32_t iCompositeMode; // 0: 480 lines, 1: 576
    int32_t iComponentMode; // 0: 720 lines, 1: 1080
    uint32_t uiArch;
    int32_t iDispX;
    int32_t iDispY;
    uint32_t uiDispWidth; // area that captions are placed in, pixels
    uint32_t uiDispHeight;
    uint32_t uiDispMode;
    uint32_t uiSubWidth; // caption buffer, pixels
    uint32_t uiSubHeight;
    double dRatioX; // display over caption buffer
    double dRatioY;
    uint32_t uiDefaultFontSize; // pixels
};

static DisplayInfo g_stDisplayInfo;

static int32_t Read_IntProperty(const char *pszKey)
{
    char acValue[ZYR_PROPERTY_VALUE_MAX + 1] = {};
    property_get(pszKey, acValue, "");
    return atoi(acValue);
}

static uint32_t Read_ChipFamily()
{
    static constexpr struct {
        const char *pszPlatform;
        uint32_t uiArch;
    } FamilyTable[] = {
        {"zyr71xx", E_ARCH_71}, {"zyr72xx", E_ARCH_72}, {"zyr73xx", E_ARCH_73}, {"zyr741x", E_ARCH_741}};

    char acValue[ZYR_PROPERTY_VALUE_MAX + 1] = {};
    property_get("ro.board.platform", acValue, "unknown");
    for (const auto &stRow : FamilyTable)
        if (strcmp(acValue, stRow.pszPlatform) == 0) return stRow.uiArch;
    return E_ARCH_UNKNOWN;
}

static void Read_Settings()
{
    DisplayInfo &stInfo = g_stDisplayInfo;
    stInfo.uiArch = Read_ChipFamily();
    stInfo.iOutputStb = Read_IntProperty("zyr.display.output.stb");
    stInfo.iOutputMode = Read_IntProperty("persist.sys.output_mode");
    stInfo.iHdmiResolution = Read_IntProperty("persist.sys.hdmi_resolution");
    if (stInfo.iHdmiResolution == HDMI_RESOLUTION_DETECTED)
        stInfo.iHdmiResolution = Read_IntProperty("persist.sys.hdmi_detected_res");
    stInfo.iCompositeMode = Read_IntProperty("persist.sys.composite_mode");
    stInfo.iComponentMode = Read_IntProperty("persist.sys.component_mode");
    LOG_RENDERER_STEP("[%s] arch:%d, mode(%d/%d/%d/%d/%d)\n", "zyr_display_system_init",
                      static_cast<int32_t>(stInfo.uiArch), stInfo.iOutputStb, stInfo.iOutputMode,
                      stInfo.iHdmiResolution, stInfo.iCompositeMode, stInfo.iComponentMode);
}

/* @return false when the chip family or its output mode is unknown */
static bool Choose_Controller()
{
    DisplayInfo &stInfo = g_stDisplayInfo;
    if (stInfo.uiArch == E_ARCH_71) {
        stInfo.uiLcdc = 1;
        return true;
    }
    if (stInfo.uiArch == E_ARCH_UNKNOWN) {
        LOG_RENDERER("[%s] unknown arch(%d)\n", "zyr_display_system_init",
                     static_cast<int32_t>(stInfo.uiArch));
        return false;
    }
    switch (stInfo.iOutputMode) {
    case E_OUTPUT_LCD:
    case E_OUTPUT_COMPOSITE:
    case E_OUTPUT_COMPONENT: stInfo.uiLcdc = 1; return true;
    case E_OUTPUT_HDMI:
        stInfo.uiLcdc = stInfo.uiArch == E_ARCH_741 && stInfo.iOutputStb != 0 ? 1 : 0;
        return true;
    default: return false;
    }
}

/* Sizes in pixels, font size in pixels; logged under the step's name. */
static void Set_Region(const char *pszStep, uint32_t uiWidth, uint32_t uiHeight, uint32_t uiSubHeight,
                       uint32_t uiFontSize)
{
    DisplayInfo &stInfo = g_stDisplayInfo;
    stInfo.uiDispWidth = stInfo.uiSubWidth = uiWidth;
    stInfo.uiDispHeight = uiHeight;
    stInfo.uiSubHeight = uiSubHeight;
    stInfo.dRatioX = 1.0;
    stInfo.dRatioY = static_cast<double>(uiHeight) / uiSubHeight;
    stInfo.uiDefaultFontSize = uiFontSize;
    LOG_RENDERER_STEP("[%s] disp(%d,%d,%d,%d), sub(%d,%d), ratio(%f,%f), m(0x%X)\n", pszStep, stInfo.iDispX,
                      stInfo.iDispY, static_cast<int32_t>(uiWidth), static_cast<int32_t>(uiHeight),
                      static_cast<int32_t>(stInfo.uiSubWidth), static_cast<int32_t>(uiSubHeight),
                      stInfo.dRatioX, stInfo.dRatioY, stInfo.uiDispMode);
}

struct HdmiMode {
    uint16_t usWidth;
    uint16_t usHeight;
    char cScan;
};

/* By resolution number. */
constexpr HdmiMode HdmiModeTable[] = {
    {1920, 1080, 'p'}, {1920, 1080, 'i'}, {1280, 720, 'p'},  {720, 480, 'p'},   //  0 ..  3
    {640, 480, 'p'},   {1920, 1080, 'p'}, {1920, 1080, 'i'}, {1920, 1080, 'p'}, //  4 ..  7
    {1920, 1080, 'i'}, {1920, 1080, 'p'}, {1920, 1080, 'p'}, {1920, 1080, 'p'}, //  8 .. 11
    {1920, 1080, 'p'}, {1280, 720, 'p'},  {1280, 720, 'p'},  {720, 576, 'p'},   // 12 .. 15
    {720, 576, 'i'},   {640, 480, 'p'},   {640, 480, 'i'},   {640, 480, 'p'},   // 16 .. 19
    {1920, 1080, 'p'},                                                          // 20
};
constexpr int32_t HDMI_MODE_NUMS = sizeof(HdmiModeTable) / sizeof(HdmiModeTable[0]);

static uint32_t Get_HdmiFontSize(uint32_t uiWidth)
{
    if (uiWidth >= 1920) return 32;
    return uiWidth >= 1280 ? 28 : 24;
}

static void Get_HdmiRegion()
{
    static constexpr char szStep[] = "zyr_display_system_getHDMIInfo";
    const int32_t iMode = g_stDisplayInfo.iHdmiResolution;
    if (iMode < 0 || iMode >= HDMI_MODE_NUMS) {
        LOG_RENDERER("[%s] Invalid hdmi_mode found (%d)\n", szStep, iMode);
        return;
    }
    const bool bPanel = g_stDisplayInfo.uiArch == E_ARCH_71; // scales everything from its panel's size
    const uint32_t uiWidth = bPanel ? 800 : HdmiModeTable[iMode].usWidth;
    const uint32_t uiHeight = bPanel ? 480 : HdmiModeTable[iMode].usHeight;
    LOG_RENDERER_STEP("[%s] mode:%d, res:%dx%d%c\n", szStep, iMode, static_cast<int32_t>(uiWidth),
                      static_cast<int32_t>(uiHeight), HdmiModeTable[iMode].cScan);
    const uint32_t uiRows = CAPTION_BUFFER_PIXELS / uiWidth;
    Set_Region(szStep, uiWidth, uiHeight, uiRows < uiHeight ? uiRows : uiHeight, Get_HdmiFontSize(uiWidth));
}

/* Fields of half the lines, except where the chip takes whole frames. */
static void Get_CompositeRegion()
{
    static constexpr char szStep[] = "zyr_display_system_getCompositeInfo";
    const int32_t iMode = g_stDisplayInfo.iCompositeMode;
    if (iMode != 0 && iMode != 1) {
        LOG_RENDERER("[%s] Invalid composite_mode found (%d)\n", szStep, iMode);
        return;
    }
    const uint32_t uiLines = iMode == 0 ? 480 : 576;
    Set_Region(szStep, 720, g_stDisplayInfo.uiArch == E_ARCH_741 ? uiLines : uiLines / 2, uiLines, 24);
}

static void Get_ComponentRegion()
{
    static constexpr char szStep[] = "zyr_display_system_getComponentInfo";
    switch (g_stDisplayInfo.iComponentMode) {
    case 0: Set_Region(szStep, 1280, 720, 720, 28); break;
    case 1: Set_Region(szStep, 1920, 1080, CAPTION_BUFFER_PIXELS / 1920, 32); break;
    default:
        LOG_RENDERER("[%s] Invalid component_mode found (%d)\n", szStep, g_stDisplayInfo.iComponentMode);
        break;
    }
}

/* @return false when the output mode is unknown */
static bool Get_Region()
{
    switch (g_stDisplayInfo.iOutputMode) {
    case E_OUTPUT_LCD: Set_Region("zyr_display_system_getLCDInfo", 800, 480, 480, 24); return true;
    case E_OUTPUT_HDMI: Get_HdmiRegion(); return true;
    case E_OUTPUT_COMPOSITE: Get_CompositeRegion(); return true;
    case E_OUTPUT_COMPONENT: Get_ComponentRegion(); return true;
    default:
        LOG_RENDERER("[%s] unknown output_mode(%d)\n", "zyr_display_system_init",
                     g_stDisplayInfo.iOutputMode);
        return false;
    }
}

int32_t zyr_display_system_init(void)
{
    g_stDisplayInfo = {};
    g_stDisplayInfo.iOutputMode = -1;
    Read_Settings();
    const bool bController = Choose_Controller();
    const bool bRegion = Get_Region();
    if (!bController || !bRegion) return -1;

    const DisplayInfo &stInfo = g_stDisplayInfo;
    LOG_RENDERER_STEP("[%s] lcdc:%d, disp[%d:%d:%d:%d:%d], sub_buf[%d,%d]\n", "zyr_display_system_init",
                      static_cast<int32_t>(stInfo.uiLcdc), stInfo.iDispX, stInfo.iDispY,
                      static_cast<int32_t>(stInfo.uiDispWidth), static_cast<int32_t>(stInfo.uiDispHeight),
                      static_cast<int32_t>(stInfo.uiDispMode), static_cast<int32_t>(stInfo.uiSubWidth),
                      static_cast<int32_t>(stInfo.uiSubHeight));
    return 0;
}

int32_t zyr_display_system_exit(void)
{
    g_stDisplayInfo = {};
    return 0;
}

template <typename Type>
static void Store_Value(Type *pValue, Type iValue)
{
    if (pValue != nullptr) *pValue = iValue;
}

int32_t zyr_display_system_getRegion(uint32_t *puiLcdc, uint32_t *puiDispWidth, uint32_t *puiDispHeight,
                                     uint32_t *puiSubWidth, uint32_t *puiSubHeight)
{
    Store_Value(puiLcdc, g_stDisplayInfo.uiLcdc);
    Store_Value(puiDispWidth, g_stDisplayInfo.uiDispWidth);
    Store_Value(puiDispHeight, g_stDisplayInfo.uiDispHeight);
    Store_Value(puiSubWidth, g_stDisplayInfo.uiSubWidth);
    Store_Value(puiSubHeight, g_stDisplayInfo.uiSubHeight);
    return 0;
}

uint32_t zyr_display_system_getFontSize(void)
{
    return g_stDisplayInfo.uiDefaultFontSize;
}

struct SquareBox {
    uint32_t uiLines;
    int32_t iWidest; // pixels
};

/* A character that follows a line of more than the display's width wraps. */
static SquareBox Measure_Squares(const uint16_t *pusString, int32_t iFontSize, int32_t iDispWidth)
{
    SquareBox stBox = {1, 0};
    int32_t iCurrent = iFontSize;
    for (; *pusString != 0; ++pusString) {
        if (*pusString == '\n') {
            ++stBox.uiLines;
            iCurrent = 0;
        } else if (iCurrent > iDispWidth) {
            ++stBox.uiLines;
            iCurrent = iFontSize;
        }
        if (pusString[1] != '\n' && pusString[1] != 0) iCurrent += iFontSize;
        if (stBox.iWidest < iCurrent) stBox.iWidest = iCurrent;
    }
    return stBox;
}

struct PlacedBox {
    int32_t iX;
    int32_t iY;
    int32_t iWidth;
    int32_t iHeight;
};

static int32_t Place_Squares(const uint16_t *pusString, uint32_t uiLength, int32_t iFontSize,
                             PlacedBox &stPlaced)
{
    static constexpr char szStep[] = "zyr_display_system_calcRegion";
    const int32_t iDispWidth = static_cast<int32_t>(g_stDisplayInfo.uiDispWidth);
    const int32_t iDispHeight = static_cast<int32_t>(g_stDisplayInfo.uiDispHeight);
    if (pusString == nullptr || uiLength == 0) {
        LOG_RENDERER("[%s] Error Invalid Param(pusString:NULL)", szStep);
        return -1;
    }
    if (iFontSize <= 0 || iDispWidth < iFontSize || iDispHeight < iFontSize) {
        LOG_RENDERER("[%s] Error Invalid Param(iFontSize:%d)", szStep, iFontSize);
        return -1;
    }
    const SquareBox stBox = Measure_Squares(pusString, iFontSize, iDispWidth);
    const uint32_t uiRoom = static_cast<uint32_t>(iDispHeight / iFontSize);
    stPlaced.iWidth = stBox.iWidest;
    stPlaced.iHeight = static_cast<int32_t>(stBox.uiLines < uiRoom ? stBox.uiLines : uiRoom) * iFontSize;
    stPlaced.iX = (iDispWidth - stBox.iWidest) / 2;
    stPlaced.iY = iDispHeight - stPlaced.iHeight;
    LOG_RENDERER_STEP("[%s] X:%d, Y:%d, W:%d, H:%d", szStep, stPlaced.iX, stPlaced.iY, stPlaced.iWidth,
                      stPlaced.iHeight);
    return 0;
}

int32_t zyr_display_system_calcRegion(const uint16_t *pusString, uint32_t uiLength, int32_t iFontSize,
                                      int32_t *piX, int32_t *piY, int32_t *piWidth, int32_t *piHeight)
{
    PlacedBox stPlaced = {};
    const int32_t iResult = Place_Squares(pusString, uiLength, iFontSize, stPlaced);
    Store_Value(piX, stPlaced.iX);
    Store_Value(piY, stPlaced.iY);
    Store_Value(piWidth, stPlaced.iWidth);
    Store_Value(piHeight, stPlaced.iHeight);
    return iResult;
}
