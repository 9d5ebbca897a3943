// Swinging Door: one door of A across each cell, hinged on the cell's left
// edge (or its right one), swings away and uncovers B.
#include "host/transition.h"
#include "transitions/threed/door_panels.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/3D/Swinging Door", .signature = "Swinging Door (ZE plug-in SDK effect)",
                             .displayName = "Swinging Door", .description = "Va opens like a single swinging door and shows Vb."};

DoorPanelFields fields;

constexpr auto kFields = SwingingDoorFieldTable(
    fields, Bool(&fields.hinge, "IsLeftDoor", "Left Door Hinge")
                .Help("Specifies whether the hinge is on the left or right.")
                .Default(1));

int32_t SwingingDoorRender(t_KrRenderInfo* ri) { return RenderDoorPanels(ri, fields, DoorAxis::Columns, DoorCount::One); }

}  // namespace
}  // namespace krl

KR_TRANSITION(SwingingDoor, kTexts, kFields)
KR_TEST_PROFILE("Swinging Door", .heavier = {"Divide_X=3", "Divide_Y=2", "BorderWidth=6", "Color=#FF2000", "IsLeftDoor=0", "IsAntiAlias=1"})
