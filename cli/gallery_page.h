// The gallery's index.html: a page with no outside references (inline CSS
// and JavaScript, pictures by relative path) that groups the transitions by
// menu path and plays each one's pre-rendered frames.
#pragma once

#include <string>
#include <vector>

#include "cli/options.h"

namespace krl::cli {

struct GalleryField {
  std::string key, label, kind, range, defaultValue, items, help;
};

struct GalleryEntry {
  std::string name, menuPath, description, folder;  // folder: relative to the page
  std::vector<GalleryField> fields;
  std::string failure;    // why it could not be rendered; empty when it was
  std::string animation;  // the animated preview's file in `folder`, if ffmpeg wrote one
};

struct GalleryLayout {
  Size size;
  int frames;         // animation frames, Progress 0 to 1
  double fps;
  std::string inputs; // "the built-in sample clips", or the files
  std::string library;
};

// The file names inside an entry's folder.
inline constexpr const char* kFramesFile = "frames.jpg";       // every frame, stacked top to bottom
inline constexpr const char* kFilmstripFile = "filmstrip.png";  // Progress 0, 1/6, ..., 1 side by side
inline constexpr int kFilmstripPictures = 7;
inline constexpr int kFilmstripGap = 4;  // pixels between its pictures

// Lower-case letters and digits, other runs as one '-': "Iris Round" -> "iris-round".
std::string Slug(const std::string& text);

std::string GalleryPage(const std::vector<GalleryEntry>& entries, const GalleryLayout& layout);

// What marks a folder as a gallery krl wrote (and may replace).
inline constexpr const char* kGalleryMarker = "<meta name=\"generator\" content=\"krl gallery\">";

// Every file the gallery of `entries` consists of, relative to its folder,
// index.html included. The page lists them at its end, so that a later run
// knows what it may replace.
std::vector<std::string> GalleryFiles(const std::vector<GalleryEntry>& entries);
// The files a page lists; false when it lists none (a page of an older krl).
bool ListedFiles(const std::string& page, std::vector<std::string>* files);

}  // namespace krl::cli
