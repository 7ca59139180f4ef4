// Captions by their times, found in steps that grow with the logarithm of their number.
#pragma once

#include <vector>

#include "caption_list.h"

// Sorts the captions, and gives open ends the next start of their class.
void Build_Index(ZyrCaptions &stList);

// Every place, or one; none for a class that was not read.
struct OrderSpan {
    uint32_t uiFirst;
    uint32_t uiEnd;
};
OrderSpan Find_Orders(const ZyrCaptions &stList, uint32_t uiClass);

void List_CaptionsAt(const ZyrCaptions &stList, OrderSpan stOrders, int32_t iTime,
                     std::vector<uint32_t> &auiCaptions);
uint32_t Find_NextCaption(const ZyrCaptions &stList, OrderSpan stOrders, int32_t iTime);
uint32_t Find_PreviousCaption(const ZyrCaptions &stList, OrderSpan stOrders, int32_t iTime);
int32_t Find_NextChange(const ZyrCaptions &stList, int32_t iTime);
