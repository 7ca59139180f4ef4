/* The caption device's requests. Each needs an open device: without one it logs and gives -2. What the device
 * itself answers is not looked at.
 */
#pragma once

#include "zyr/zyr_display.h"

/** Set the controller, place and size (pixels) of the caption on the display, and the pitch of its buffer. */
int32_t zyr_display_setCCFB(uint32_t uiLcdc, int32_t iX, int32_t iY, uint32_t uiWidth, uint32_t uiHeight,
                            uint32_t uiSrcWidth);

/** Show the buffer at this physical address. */
int32_t zyr_display_updateCCFB(uint32_t uiPhysAddr);

/** Switch the caption layer on, or with 0 off. */
int32_t zyr_display_enableCCFB(int32_t iOn);
