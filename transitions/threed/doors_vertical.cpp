// Vertical Doors: Doors with rows and columns exchanged, the hinges on the
// cells' first and last rows.
#include "host/transition.h"
#include "transitions/threed/door_panels.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/3D/Vertical Doors", .signature = "Vertical Doors (ZE plug-in SDK effect)",
                             .displayName = "Vertical Doors", .description = "Like Doors, but doors are swinging vertical."};

DoorPanelFields fields;

constexpr auto kFields = DoorsFieldTable(fields);

int32_t DoorsVerticalRender(t_KrRenderInfo* ri) { return RenderDoorPanels(ri, fields, DoorAxis::Rows, DoorCount::Two); }

}  // namespace
}  // namespace krl

KR_TRANSITION(DoorsVertical, kTexts, kFields)
KR_TEST_PROFILE("Vertical Doors", .heavier = {"Divide_X=2", "Divide_Y=3", "BorderWidth=6", "Color=#FF2000", "IsAntiAlias=1"})
