// Compiled once per plug-in, with the display name of its transition.
#include "frei0r/plugin.h"

const char* krl::frei0r::TransitionName() { return KRL_FREI0R_TRANSITION; }
