// Doors: in every cell two doors of A, hinged on the cell's left and right
// edges, swing away from the viewer and uncover B from the cell's middle.
#include "host/transition.h"
#include "transitions/threed/door_panels.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/3D/Doors", .signature = "Doors (ZE plug-in SDK effect)",
                             .displayName = "Doors", .description = "Va opens like swinging doors and shows Vb."};

DoorPanelFields fields;

constexpr auto kFields = DoorsFieldTable(fields);

int32_t DoorsRender(t_KrRenderInfo* ri) { return RenderDoorPanels(ri, fields, DoorAxis::Columns, DoorCount::Two); }

}  // namespace
}  // namespace krl

KR_TRANSITION(Doors, kTexts, kFields)
KR_TEST_PROFILE("Doors", .heavier = {"Divide_X=3", "Divide_Y=2", "BorderWidth=6", "Color=#FF2000", "IsAntiAlias=1"})
