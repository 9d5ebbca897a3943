// The 51 effects of the library in the order KrDeclare declares them, with
// the texts the host shows, byte for byte (odd blanks and spellings included).
#pragma once

namespace krl::test {

struct EffectRow {
  const char* menuPath;
  const char* signature;
  const char* displayName;
  const char* description;
};

inline constexpr EffectRow kEffectTable[] = {
    {"Transitions/Push/Band Push", "Band Push (ZE plug-in SDK effect)", "Band Push", "Vb pushes Va bandwise to the side."},
    {"Transitions/Slide/Band Slide", "Band Slide (ZE plug-in SDK effect)", "Band Slide", "Vb slides bandwise into Va."},
    {"Transitions/Wipe/Band Wipe", "Band Wipe (ZE plug-in SDK effect)", "Band Wipe", "Vb wipes out Va bandwise."},
    {"Transitions/Dissolve/Brightness Plasma", "Brightness Plasma (ZE plug-in SDK effect)", "Brightness Plasma", "Va is cut by a brightness threshold to reveal Vb."},
    {"Transitions/Special/Builder", "Builder (ZE plug-in SDK effect)", "Builder", "Vb builds up like a wall."},
    {"Transitions/Zoom/Center Zoom", "Center Zoom (ZE plug-in SDK effect)", "Center Zoom", "Zooms Vb out of the center of Va."},
    {"Transitions/Dissolve/Chaotic Dissolve", "Chaotic Dissolve (ZE plug-in SDK effect)", "Chaotic Dissolve", "Va blows up to chaotic pixels showing Vb."},
    {"Transitions/Wipe/Chess Wipe", "Chess Wipe (ZE plug-in SDK effect)", "Chess Wipe", "Va is wiped out by a chessboard."},
    {"Transitions/Special/Clock", "Clock (ZE plug-in SDK effect)", "Clock", "Vb becomes visible clockwise."},
    {"Transitions/Zoom/Corner Zoom", "Corner Zoom(ZE plug-in SDK effect)", "Corner Zoom", "Vb zooms out of a corner of Va."},
    {"Transitions/Slide/Cross Split", "Cross Split (ZE plug-in SDK effect)", "Cross Split", "Va splits into four rectangles sliding out."},
    {"Transitions/Stretch/Cross Stretch", "Cross Stretch (ZE plug-in SDK effect)", "Cross Stretch", "Va is squeezed by stretching Vb."},
    {"Transitions/Stretch/Cube Stretch", "Cube Stretch (ZE plug-in SDK effect)", "Cube Stretch", "Like Cross Stretch but looks 3-dimensional."},
    {"Transitions/Dissolve/Dither Dissolve", "Dither Dissolve (ZE plug-in SDK effect)", "Dither Dissolve", "Va dithers to Vb."},
    {"Transitions/3D/Doors", "Doors (ZE plug-in SDK effect)", "Doors", "Va opens like swinging doors and shows Vb."},
    {"Transitions/3D/Vertical Doors", "Vertical Doors (ZE plug-in SDK effect)", "Vertical Doors", "Like Doors, but doors are swinging vertical."},
    {"Transitions/Dissolve/Traditional Fade", "Traditional Fade (ZE plug-in SDK effect)", "Traditional Fade", "Va fades over to Vb."},
    {"Transitions/Special/Flash Over", "Flash Over (ZE plug-in SDK effect)", "Flash Over", "Vb flashes in front of Va."},
    {"Transitions/Slide/Flying Carpet", "Flying Carpet (ZE plug-in SDK effect)", "Flying Carpet", "Vb flies into over Va like magic carpet."},
    {"Transitions/Dissolve/Fractal", "Fractal (Kr plug-in SDK effect)", "Fractal", "Fractal landscape."},
    {"Transitions/Dissolve/Hilbert Mosaic", "Hilbert Mosaic (ZE plug-in SDK effect)", "Hilbert Mosaic", "Vb becomes visible like a  hilbert mosaic."},
    {"Transitions/Slide/Inset", "Inset (ZE plug-in SDK effect)", "Inset", "Vb slides over Va from one corner."},
    {"Transitions/Iris/Iris Cross", "Iris Cross (ZE plug-in SDK effect)", "Iris Cross", "Va opens like a cross iris showing Vb."},
    {"Transitions/Iris/Iris Diamond", "Iris Diamond (ZE plug-in SDK effect)", "Iris Diamond", "Va opens like a diamond iris showing Vb."},
    {"Transitions/Iris/Iris Round", "Iris Round (ZE plug-in SDK effect)", "Iris Round", "Va opens like a round iris showing Vb."},
    {"Transitions/Iris/Iris Squared", "Iris Squared (ZE plug-in SDK effect)", "Iris Squared", "Va opens like a squared iris showing Vb."},
    {"Transitions/Iris/Iris Star", "Iris Star (ZE plug-in SDK effect)", "Iris Star", "Va opens like a star-shaped iris showing Vb."},
    {"Transitions/Dissolve/Mosaic", "Mosaic (ZE plug-in SDK effect)", "Mosaic", "Vb becomes visible like a mosaic."},
    {"Transitions/3D/Origami Unfold", "Origami Unfold (ZE plug-in SDK effect)", "Origami Unfold", "Vb unfolds origami style."},
    {"Transitions/3D/Peel", "Peel (Kr plug-in SDK transition)", "Peel", "Peels Va like a sheet and shows Vb."},
    {"Transitions/Special/Pin Wheel", "Pin Wheel (ZE plug-in SDK effect)", "Pin Wheel", "Vb becomes visible through a pinwheel."},
    {"Transitions/Push/Push", "Push (ZE plug-in SDK effect)", "Push", "Va is pushed aside by Vb."},
    {"Transitions/Dissolve/Random Dissolve", "Random Dissolve (ZE plug-in SDK effect)", "Random Dissolve", "Va dithers randomly to Vb."},
    {"Transitions/3D/Roll", "Roll (Kr plug-in SDK effect)", "Roll", "Rolls Va like a sheet of paper and shows Vb."},
    {"Transitions/Slide/Rotation", "Rotation (ZE plug-in SDK effect)", "Rotation", "Va rotates to the side showing Vb."},
    {"Transitions/Special/Shredder", "Shredder (ZE plug-in SDK effect)", "Shredder", "Va is shredded making Vb visible."},
    {"Transitions/Slide/Slide", "Slide (ZE plug-in SDK effect)", "Slide", "Vb slides into Va from one side."},
    {"Transitions/Slide/Sliding Boxes", "Sliding Boxes (ZE plug-in SDK effect)", "Sliding Boxes", "Vb slides as stripes into Va from one side."},
    {"Transitions/Slide/Sliding Doors", "Sliding Doors (ZE plug-in SDK effect)", "Sliding Doors", "Va opens like sliding doors."},
    {"Transitions/Slide/Sliding Quarters", "Sliding Quarters (ZE plug-in SDK effect)", "Sliding Quarters", "Four quarters of Va slide out."},
    {"Transitions/Special/SmoulderingPaper", "It looks like smouldering paper", "Smouldering Paper", "It looks like smouldering paper."},
    {"Transitions/3D/Sphere", "Sphere (Kr plug-in SDK effect)", "Sphere", "Va turns into a spinning sphere showing Vb."},
    {"Transitions/3D/Spin Away", "Spin Away (ZE plug-in SDK effect)", "Spin Away", "Va spins around and turns to Vb."},
    {"Transitions/Special/Spiral", "Spiral (ZE plug-in SDK effect)", "Spiral", "Va turns spirally to Vb."},
    {"Transitions/Slide/Swap", "Swap (ZE plug-in SDK effect)", "Swap", "Vb swaps with Va from one side."},
    {"Transitions/3D/Swinging Door", "Swinging Door (ZE plug-in SDK effect)", "Swinging Door", "Va opens like a single swinging door and shows Vb."},
    {"Transitions/3D/Vertical Swinging Door", "Vertical Swinging Door (ZE plug-in SDK effect)", "Vertical Swinging Door", "Like Swinging Door, but the door is swinging vertical."},
    {"Transitions/3D/Venetian Blinds", "Venetian Blinds (ZE plug-in SDK effect)", "Venetian Blinds", "Va closes like venetian blinds."},
    {"Transitions/Special/Windscreen Wiper", "Windscreen Wiper (ZE plug-in SDK effect)", "Windscreen Wiper", "A windscreen wiper cleans Va making Vb visible."},
    {"Transitions/Wipe/Wipe", "Wipe (ZE plug-in SDK effect)", "Wipe", "Va is wiped out while Vb becomes visible."},
    {"Transitions/Zoom/Zoom Out", "Zoom Out (ZE plug-in SDK effect)", "Zoom Out", "Va zooms out while Vb zooms in."},
};

}  // namespace krl::test
