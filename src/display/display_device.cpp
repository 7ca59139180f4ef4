#include "display/display_device.h"

#include <cstring>

#include "display/display_system.h"
#include "font/font_layout.h"
#include "font/renderer_log.h"
#include "zyr_ccfb.h"
#include "zyr_pmap.h"

constexpr char CAPTION_DEVICE[] = "/dev/ccfb";
constexpr char CAPTION_REGION[] = "overlay1";

/* The mapping: two drawing buffers, and behind them the small one that is shown in place of a caption. */
constexpr uint32_t MAPPING_BYTES = 0x400000;
constexpr uint32_t DRAW_BUFFER_BYTES = sizeof(uint16_t) * CAPTION_BUFFER_PIXELS;
constexpr uint32_t CLEAR_BUFFER_OFFSET = 2 * DRAW_BUFFER_BYTES;
constexpr uint32_t CLEAR_BUFFER_BYTES = 2710;
constexpr uint32_t CLEAR_SIDE = 32; // pixels of it that are shown, across and down
static_assert(CLEAR_BUFFER_OFFSET + CLEAR_BUFFER_BYTES <= MAPPING_BYTES);
static_assert(sizeof(uint16_t) * CLEAR_SIDE * CLEAR_SIDE <= CLEAR_BUFFER_BYTES);

constexpr uint16_t CAPTION_COLOR = 0x8410;
constexpr uint16_t CAPTION_BACKGROUND = 0;

static int32_t g_iCCFBHandle; // 0 = not open

/* All ones when nothing is mapped, as the system's own mapping call reports it. */
static void *const NOT_MAPPED = reinterpret_cast<void *>(UINTPTR_MAX);
static void *g_pCCFBMem = NOT_MAPPED;

static uint32_t g_auiBufPhys[2];
static uint16_t *g_apusBufVirt[2];
static uint32_t g_uiClearBufPhys;
static uint16_t *g_pusClearBufVirt;
static uint32_t g_uiBufIndex; // the drawing buffer that is not on screen
static int32_t g_iPosX;       // of the caption on the display
static int32_t g_iPosY;
static uint32_t g_uiPosition = 16; // pixels from the display's bottom up to the caption
static uint32_t g_uiFontSize = 32; // pixels

/* @return what a call of a step has given; one that failed is logged */
static int32_t Report(const char *pszStep, const char *pszCall, int32_t iResult)
{
    if (iResult != 0) LOG_RENDERER("[%s] Error %s", pszStep, pszCall);
    return iResult;
}

static int32_t Check_Handle(const char *pszStep)
{
    return Report(pszStep, "invalid handle", g_iCCFBHandle > 0 ? 0 : -2);
}

int32_t zyr_display_setCCFB(uint32_t uiLcdc, int32_t iX, int32_t iY, uint32_t uiWidth, uint32_t uiHeight,
                            uint32_t uiSrcWidth)
{
    const int32_t iResult = Check_Handle("zyr_display_setCCFB");
    if (iResult != 0) return iResult;
    const uint32_t uiX = static_cast<uint32_t>(iX);
    const uint32_t uiY = static_cast<uint32_t>(iY);
    const uint32_t auiRecord[13] = {uiLcdc, 0, uiX, uiY, uiWidth, uiHeight, 0, uiSrcWidth, uiHeight, 1};
    zyr_ccfb_request(g_iCCFBHandle, ZYR_CCFB_SET, auiRecord, sizeof(auiRecord));
    return 0;
}

int32_t zyr_display_updateCCFB(uint32_t uiPhysAddr)
{
    const int32_t iResult = Check_Handle("zyr_display_updateCCFB");
    if (iResult != 0) return iResult;
    zyr_ccfb_request(g_iCCFBHandle, ZYR_CCFB_UPDATE, &uiPhysAddr, sizeof(uiPhysAddr));
    return 0;
}

int32_t zyr_display_enableCCFB(int32_t iOn)
{
    const int32_t iResult = Check_Handle("zyr_display_enableCCFB");
    if (iResult != 0) return iResult;
    zyr_ccfb_request(g_iCCFBHandle, iOn != 0 ? ZYR_CCFB_ENABLE : ZYR_CCFB_DISABLE, nullptr, 0);
    return 0;
}

static void Close_Device()
{
    if (g_iCCFBHandle > 0) zyr_ccfb_close(g_iCCFBHandle);
    g_iCCFBHandle = 0;
}

static void Close_Memory()
{
    if (g_pCCFBMem != NOT_MAPPED) zyr_ccfb_unmap(g_pCCFBMem, MAPPING_BYTES);
    g_pCCFBMem = NOT_MAPPED;
    for (uint32_t uiBuffer = 0; uiBuffer < 2; ++uiBuffer) {
        g_auiBufPhys[uiBuffer] = 0;
        g_apusBufVirt[uiBuffer] = nullptr;
    }
    g_uiClearBufPhys = 0;
    g_pusClearBufVirt = nullptr;
}

static int32_t Open_Device()
{
    g_iCCFBHandle = zyr_ccfb_open(CAPTION_DEVICE);
    if (g_iCCFBHandle > 0) return 0;
    g_iCCFBHandle = 0;
    LOG_RENDERER("[%s] Error can't open %s", "zyr_display_openCCFB", CAPTION_DEVICE);
    return -7;
}

static void Set_Buffers(uint32_t uiPhysBase)
{
    uint8_t *pucBase = static_cast<uint8_t *>(g_pCCFBMem);
    for (uint32_t uiBuffer = 0; uiBuffer < 2; ++uiBuffer) {
        g_auiBufPhys[uiBuffer] = uiPhysBase + uiBuffer * DRAW_BUFFER_BYTES;
        g_apusBufVirt[uiBuffer] =
            reinterpret_cast<uint16_t *>(pucBase + size_t{uiBuffer} * DRAW_BUFFER_BYTES);
        memset(g_apusBufVirt[uiBuffer], 0, DRAW_BUFFER_BYTES);
    }
    g_uiClearBufPhys = uiPhysBase + CLEAR_BUFFER_OFFSET;
    g_pusClearBufVirt = reinterpret_cast<uint16_t *>(pucBase + CLEAR_BUFFER_OFFSET);
    memset(g_pusClearBufVirt, 0, CLEAR_BUFFER_BYTES);
}

static int32_t Open_Memory()
{
    static constexpr char szStep[] = "zyr_display_openMemory";
    ZyrPmapRecord stRegion = {};
    pmap_get_info(CAPTION_REGION, &stRegion);
    if (stRegion.uiBase == 0) {
        LOG_RENDERER("[%s] Error unknown region(%s)", szStep, CAPTION_REGION);
        return -4;
    }
    void *pvMemory = zyr_ccfb_map(g_iCCFBHandle, MAPPING_BYTES, stRegion.uiBase);
    g_pCCFBMem = pvMemory != nullptr ? pvMemory : NOT_MAPPED;
    if (g_pCCFBMem == NOT_MAPPED) {
        LOG_RENDERER("[%s] Error mmap failed.(%p)\n", szStep, g_pCCFBMem);
        return -4;
    }
    Set_Buffers(stRegion.uiBase);
    return 0;
}

/* Undo what a failed open did; parts that it had not reached are closed already. */
static int32_t Fail_Open(const char *pszFormat, int32_t iCode, int32_t iResult)
{
    LOG_RENDERER(pszFormat, "zyr_display_open", iCode);
    zyr_display_system_exit();
    Close_Device();
    Close_Memory();
    return iResult;
}

int32_t zyr_display_open(void)
{
    if (g_iCCFBHandle > 0) zyr_display_close();

    int32_t iResult = zyr_display_system_init();
    if (iResult != 0) {
        LOG_RENDERER("[%s] Error zyr_display_system_init(%d)", "zyr_display_open", iResult);
        return -1;
    }
    iResult = Open_Device();
    if (iResult != 0) return Fail_Open("[%s] Error zyr_display_openCCFB(%d)", iResult, iResult);
    iResult = Open_Memory();
    if (iResult != 0) return Fail_Open("[%s] Error zyr_display_openMemory(%d)", iResult, iResult);
    iResult = zyr_font_init();
    if (iResult != 0) return Fail_Open("[%s] Error zyr_font_init (%d)", iResult, -1);

    g_iPosX = g_iPosY = 0;
    return 0;
}

int32_t zyr_display_close(void)
{
    zyr_display_enableCCFB(0);
    Close_Device();
    Close_Memory();
    zyr_display_system_exit();
    const int32_t iResult = zyr_font_close();
    if (iResult != 0) LOG_RENDERER("[%s] Error zyr_font_close (%d)'", "zyr_display_close", iResult);
    g_iPosX = g_iPosY = 0;
    return 0;
}

int32_t zyr_display_setOnoff(int32_t iOn)
{
    static constexpr char szStep[] = "zyr_display_setOnoff";
    if (g_iCCFBHandle == 0) return Report(szStep, "invalid handle", -7);
    return Report(szStep, "zyr_display_enableCCFB", zyr_display_enableCCFB(iOn));
}

int32_t zyr_display_setFontSize(uint32_t uiSize)
{
    static constexpr struct {
        uint32_t uiSize;
        uint32_t uiMore; // pixels above the output's default
    } StepTable[] = {{28, 4}, {32, 8}, {36, 12}, {40, 16}};

    g_uiFontSize = zyr_display_system_getFontSize();
    for (const auto &stRow : StepTable)
        if (stRow.uiSize == uiSize) g_uiFontSize += stRow.uiMore;
    return 0;
}

static int32_t Check_Open(const char *pszStep)
{
    if (g_iCCFBHandle == 0) return Report(pszStep, "invalid handle", -7);
    return Report(pszStep, "invalid memory", g_pCCFBMem == NOT_MAPPED ? -4 : 0);
}

struct OutputRegion {
    uint32_t uiLcdc;
    uint32_t uiDispWidth; // pixels, as the rest
    uint32_t uiDispHeight;
    uint32_t uiSubWidth;
    uint32_t uiSubHeight;
};

static int32_t Read_OutputRegion(const char *pszStep, OutputRegion &stOutput)
{
    const int32_t iResult =
        zyr_display_system_getRegion(&stOutput.uiLcdc, &stOutput.uiDispWidth, &stOutput.uiDispHeight,
                                     &stOutput.uiSubWidth, &stOutput.uiSubHeight);
    return Report(pszStep, "zyr_display_getRegion", iResult);
}

/* Tell the device the box at the caption's place, switch the layer on, and show a buffer there. */
static int32_t Send_Box(const char *pszStep, uint32_t uiLcdc, uint32_t uiWidth, uint32_t uiHeight,
                        uint32_t uiPhysAddr)
{
    const int32_t iPlaced = zyr_display_setCCFB(uiLcdc, g_iPosX, g_iPosY, uiWidth, uiHeight, uiWidth);
    if (Report(pszStep, "zyr_display_setCCFB", iPlaced) != 0) return iPlaced;
    const int32_t iEnabled = zyr_display_enableCCFB(1);
    if (Report(pszStep, "zyr_display_enableCCFB", iEnabled) != 0) return iEnabled;
    return Report(pszStep, "zyr_display_updateCCFB", zyr_display_updateCCFB(uiPhysAddr));
}

int32_t zyr_display_clearString(void)
{
    static constexpr char szStep[] = "zyr_display_clearString";
    int32_t iResult = Check_Open(szStep);
    if (iResult != 0) return iResult;
    OutputRegion stOutput = {};
    iResult = Read_OutputRegion(szStep, stOutput);
    if (iResult != 0) return iResult;
    return Send_Box(szStep, stOutput.uiLcdc, CLEAR_SIDE, CLEAR_SIDE, g_uiClearBufPhys);
}

static void Place_Caption(const OutputRegion &stOutput, uint32_t uiWidth, uint32_t uiHeight)
{
    g_iPosX = static_cast<int32_t>(stOutput.uiDispWidth - uiWidth) / 2;
    g_iPosY = static_cast<int32_t>(stOutput.uiDispHeight - uiHeight - g_uiPosition);
}

static uint32_t Cut_Height(uint32_t uiWidth, uint32_t uiHeight)
{
    if (static_cast<uint64_t>(uiWidth) * uiHeight <= CAPTION_BUFFER_PIXELS) return uiHeight;
    return CAPTION_BUFFER_PIXELS / uiWidth;
}

/* A region of no size is refused by the font layer, which then keeps the one it had, and that may be a
 * caller's own. Whatever it is, drawing stays inside the buffer. @return false when nothing of it fits */
static bool Keep_RegionInBuffer()
{
    uint32_t uiWidth = 0;
    uint32_t uiHeight = 0;
    uint32_t uiPitch = 0;
    if (zyr_font_getDestRegion(&uiWidth, &uiHeight, &uiPitch) != 0) return false;
    const uint32_t uiRows = Cut_Height(uiPitch, uiHeight);
    if (uiRows == uiHeight) return true;
    return uiRows != 0 && zyr_font_setDestRegion(uiWidth, uiRows, uiPitch) == 0;
}

struct CaptionText {
    const uint16_t *pusString;
    int32_t iLength;
    uint32_t uiWidth; // of the box, pixels
    uint32_t uiHeight;
    uint32_t auiLineWidth[MAX_LINE_NUMS]; // pixels
};

static void Measure_Caption(const OutputRegion &stOutput, CaptionText &stText)
{
    zyr_font_setDestBuf(g_apusBufVirt[g_uiBufIndex]);
    zyr_font_setDestRegion(stOutput.uiSubWidth, stOutput.uiSubHeight, stOutput.uiSubWidth);
    zyr_font_setFontSize(0, g_uiFontSize, g_uiFontSize, 0, 0);
    zyr_font_calcRegion(stText.pusString, stText.iLength, g_uiFontSize, &stText.uiWidth, &stText.uiHeight,
                        stText.auiLineWidth);
    stText.uiHeight = Cut_Height(stText.uiWidth, stText.uiHeight);
}

static void Draw_Caption(const CaptionText &stText)
{
    zyr_font_setDestRegion(stText.uiWidth, stText.uiHeight, stText.uiWidth);
    const bool bFits = Keep_RegionInBuffer();
    if (bFits) zyr_font_clearDestBuf(CAPTION_BACKGROUND);
    zyr_font_setFontSize(0, g_uiFontSize, g_uiFontSize, 0, 0);
    zyr_font_setFontColor(CAPTION_COLOR, CAPTION_COLOR, CAPTION_BACKGROUND, 0);
    if (bFits) zyr_font_displayString(stText.pusString, stText.iLength, stText.auiLineWidth, g_uiFontSize);
}

int32_t zyr_display_displayString(const uint16_t *pusString, int32_t iLength)
{
    static constexpr char szStep[] = "zyr_display_displayString";
    int32_t iResult = Check_Open(szStep);
    if (iResult != 0) return iResult;
    if (pusString == nullptr) return Report(szStep, "Invaild param", -2);
    LOG_RENDERER_STEP("zyr_display_displayString(%d)\n", iLength);
    OutputRegion stOutput = {};
    iResult = Read_OutputRegion(szStep, stOutput);
    if (iResult != 0) return iResult;
    iResult = Report(szStep, "zyr_display_clearString", zyr_display_clearString());
    if (iResult != 0) return iResult;

    CaptionText stText = {};
    stText.pusString = pusString;
    stText.iLength = iLength;
    Measure_Caption(stOutput, stText);
    Draw_Caption(stText);
    Place_Caption(stOutput, stText.uiWidth, stText.uiHeight);
    iResult = Send_Box(szStep, stOutput.uiLcdc, stText.uiWidth, stText.uiHeight, g_auiBufPhys[g_uiBufIndex]);
    g_uiBufIndex ^= 1;
    return iResult;
}

int32_t zyr_display_setPosition(uint32_t uiPosition)
{
    static constexpr char szStep[] = "zyr_display_setPosition";
    int32_t iResult = Check_Open(szStep);
    if (iResult != 0) return iResult;
    OutputRegion stOutput = {};
    iResult = Read_OutputRegion(szStep, stOutput);
    if (iResult != 0) return iResult;
    uint32_t uiWidth = 0;
    uint32_t uiHeight = 0;
    uint32_t uiPitch = 0;
    iResult = zyr_font_getDestRegion(&uiWidth, &uiHeight, &uiPitch);
    if (iResult != 0) {
        LOG_RENDERER("[%s] Error zyr_font_getDestRegion(ret:%d)", szStep, iResult);
        return iResult;
    }
    g_uiPosition = uiPosition;
    Place_Caption(stOutput, uiWidth, uiHeight);
    return Send_Box(szStep, stOutput.uiLcdc, uiWidth, uiHeight, g_auiBufPhys[g_uiBufIndex ^ 1]);
}
