/* Tags, their attributes, colours and entities: a series of them, each in a block that ends where it does, applied to
 * one frame. */

#include <algorithm>
#include <memory>
#include <vector>

#include "engine_input.h"
#include "markup/colour.h"
#include "markup/entity.h"
#include "markup/html_tag.h"
#include "markup/tag_arguments.h"
#include "record/parser_state.h"

const size_t g_uiSteeringBytes = 2;

namespace
{

constexpr uint8_t SEPARATOR = '\n';

using Units = std::vector<uint16_t>;

/** "&#" and one to five digits and ";" are that code. */
uint16_t Get_NumericCode(const Units &ausUnits)
{
    if (ausUnits.size() < 4 || ausUnits.size() > 8 || ausUnits.back() != ';') return 0;
    uint32_t uiCode = 0;
    for (size_t uiUnit = 2; uiUnit + 1 < ausUnits.size(); ++uiUnit) {
        if (ausUnits[uiUnit] < '0' || ausUnits[uiUnit] > '9') return 0;
        uiCode = uiCode * 10 + ausUnits[uiUnit] - '0';
    }
    return static_cast<uint16_t>(uiCode);
}

void Try_Entity(const Units &ausUnits)
{
    const uint16_t usCode = Get_EntityCharCode(ausUnits.data(), static_cast<int32_t>(ausUnits.size()));
    if (ausUnits.size() >= 2 && ausUnits[0] == '&' && ausUnits[1] == '#')
        Demand(usCode == Get_NumericCode(ausUnits), "a numeric entity is its number");
    Demand(usCode == 0 || ausUnits[0] == '&', "an entity begins with an ampersand");
    if (usCode == 0 || ausUnits.back() == ';') return;
    Units ausClosed = ausUnits;
    ausClosed.push_back(';');
    Demand(Get_EntityCharCode(ausClosed.data(), static_cast<int32_t>(ausClosed.size())) == usCode,
           "a closed entity is the open one");
}

void Try_Colour(const Units &ausUnits)
{
    uint16_t usColour = 0, usOther = 0;
    if (!Resolve_Colour(ausUnits.data(), static_cast<uint32_t>(ausUnits.size()), &usColour)) return;
    Demand(!ausUnits.empty() && ausUnits.size() <= COLOUR_UNITS, "a colour is a short text");
    Units ausSwapped = ausUnits;
    for (uint16_t &usUnit : ausSwapped)
        if ((usUnit | 0x20) >= 'a' && (usUnit | 0x20) <= 'z') usUnit ^= 0x20;
    Demand(Resolve_Colour(ausSwapped.data(), static_cast<uint32_t>(ausUnits.size()), &usOther) &&
               usColour == usOther,
           "a colour is the same in upper and lower case");
}

/** Every attribute lies in the text that it was split from. */
void Try_Arguments(const Units &ausUnits)
{
    TagArguments stArguments;
    const uint16_t *const pusEnd = ausUnits.data() + ausUnits.size();
    Split_TagArguments(&stArguments, ausUnits.data(), static_cast<uint32_t>(ausUnits.size()));
    Demand(stArguments.uiNums <= TAG_ARGUMENTS_MAX, "a tag has 20 attributes at most");
    for (uint32_t uiIndex = 0; uiIndex < stArguments.uiNums; ++uiIndex) {
        const TagArgument &stArgument = stArguments.astArgument[uiIndex];
        Demand(stArgument.pusName >= ausUnits.data() &&
                   stArgument.pusName + stArgument.uiNameLength <= pusEnd,
               "an attribute's name is in its tag");
        Demand(stArgument.pusValue >= ausUnits.data() &&
                   stArgument.pusValue + stArgument.uiValueLength <= pusEnd,
               "an attribute's value is in its tag");
    }
}

void Try_Tag(const Units &ausUnits)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    const int32_t iBefore = stTag.iTagQueueCount;
    const int32_t iResult = Parse_HtmlTag(ausUnits.data(), static_cast<int32_t>(ausUnits.size()));
    Demand(iResult == -1 || Get_TagId(iResult) < E_HTML_TAG_NUMS + 2u, "a tag is one of the table");
    Demand(std::abs(stTag.iTagQueueCount - iBefore) <= 1, "a tag opens or closes one");
    stTag.pusClassName = nullptr; // the block goes
    Check_Invariants();
}

void Try_Piece(std::span<const uint8_t> aucPiece, bool bWide)
{
    Units ausUnits(aucPiece.begin(), aucPiece.end());
    for (size_t uiUnit = 0; bWide && uiUnit < ausUnits.size(); uiUnit += 3) ausUnits[uiUnit] |= 0x100;
    ausUnits.shrink_to_fit();
    if (ausUnits.empty()) return;
    Try_Entity(ausUnits);
    Try_Colour(ausUnits);
    Try_Arguments(ausUnits);
    Try_Tag(ausUnits);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucData, size_t uiSize)
{
    if (uiSize > 8192) return 0;
    FuzzInput stInput(pucData, uiSize);
    FuzzInput stSteps = stInput.Take_Tail(g_uiSteeringBytes);
    const bool bWide = stSteps.Take_Byte() % 8 == 1;
    Demand(QUIB_CAPTION_Open() == 1, "a record is made");
    pstQuibCaptionParserInfo->uiClassNums = stSteps.Take_Byte() % 8u;
    std::span<const uint8_t> aucRest = stInput.Get_Rest();
    while (!aucRest.empty()) {
        const auto itEnd = std::find(aucRest.begin(), aucRest.end(), SEPARATOR);
        const auto uiPiece = static_cast<size_t>(itEnd - aucRest.begin());
        Try_Piece(aucRest.first(uiPiece), bWide);
        aucRest = aucRest.subspan(std::min(uiPiece + 1, aucRest.size()));
    }
    Clear_TagQueue();
    QUIB_CAPTION_Close();
    Expect_AllGivenBack();
    return 0;
}
