// The frei0r interface, whose header declares its functions without C linkage.
#pragma once

extern "C" {
#include <frei0r.h>
}
