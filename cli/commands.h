// The commands of krl, one file each.
#pragma once

#include "cli/options.h"

namespace krl::cli {

int Version(const Options& options);  // list_info.cpp
int List(const Options& options);     // list_info.cpp
int Info(const Options& options);     // list_info.cpp
int Render(const Options& options);   // render.cpp
int Clip(const Options& options);     // clip.cpp
int Gallery(const Options& options);  // gallery.cpp

}  // namespace krl::cli
