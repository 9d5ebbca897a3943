// Vertical Swinging Door: Swinging Door with rows and columns exchanged; on,
// the hinge field puts the hinge on each cell's first row (row y0, the
// cell's top in the doors' own reckoning), off on its last.
#include "host/transition.h"
#include "transitions/threed/door_panels.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/3D/Vertical Swinging Door", .signature = "Vertical Swinging Door (ZE plug-in SDK effect)",
                             .displayName = "Vertical Swinging Door", .description = "Like Swinging Door, but the door is swinging vertical."};

DoorPanelFields fields;

constexpr auto kFields = SwingingDoorFieldTable(
    fields, Bool(&fields.hinge, "IsTopDoor", "Top Door Hinge")
                .Help("Specifies whether the hinge is at the top or bottom.")
                .Default(1));

int32_t SwingingDoorVerticalRender(t_KrRenderInfo* ri) { return RenderDoorPanels(ri, fields, DoorAxis::Rows, DoorCount::One); }

}  // namespace
}  // namespace krl

KR_TRANSITION(SwingingDoorVertical, kTexts, kFields)
KR_TEST_PROFILE("Vertical Swinging Door", .heavier = {"Divide_X=2", "Divide_Y=3", "BorderWidth=6", "Color=#FF2000", "IsTopDoor=0", "IsAntiAlias=1"})
