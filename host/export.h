// Marks the few names the shared object exports; everything else is hidden.
#pragma once

#define KR_EXPORT extern "C" __attribute__((visibility("default")))
