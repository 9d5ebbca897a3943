#include "cli/gallery_page.h"

#include <cstdio>
#include <map>

namespace krl::cli {
namespace {

std::string Html(const std::string& text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
  return out;
}

// The list of the gallery's files that ends its page.
constexpr const char* kFilesOpening = "<!-- krl gallery files\n";

std::string MenuOf(const GalleryEntry& e) {
  const size_t slash = e.menuPath.rfind('/');
  return slash == std::string::npos ? "" : e.menuPath.substr(0, slash);
}

// Errors are collected from the first moment, so the self-test sees all.
const char* const kHead = R"(<script>
window.krlErrors = [];
addEventListener('error', (e) => krlErrors.push(e.message || 'cannot load ' + (e.target && (e.target.src || e.target.href))), true);
addEventListener('unhandledrejection', (e) => krlErrors.push(String(e.reason)));
const krlConsoleError = console.error;
console.error = (...a) => { krlErrors.push(a.join(' ')); krlConsoleError.apply(console, a); };
</script>
<style>
body { font: 15px/1.45 system-ui, sans-serif; margin: 0; background: #f4f3f0; color: #1d1d1f; }
header { padding: 18px 28px 8px; background: #22262e; color: #eef; }
header h1 { margin: 0 0 4px; font-size: 24px; }
header p { margin: 0 0 8px; color: #bcc3d0; }
nav a { color: #9fc3ff; margin-right: 14px; white-space: nowrap; }
main { padding: 8px 28px 40px; }
h2 { margin: 26px 0 8px; font-size: 19px; border-bottom: 2px solid #c9c5bb; }
.effect { background: #fff; border-radius: 8px; box-shadow: 0 1px 3px #0002; padding: 14px 18px; margin: 14px 0; }
.effect h3 { margin: 0; font-size: 17px; }
.menu { margin: 0 0 6px; color: #6b6b70; font-size: 13px; }
.row { display: flex; gap: 22px; flex-wrap: wrap; align-items: flex-start; }
.player .view { overflow: hidden; background: #000; }
.player img.frames { display: block; object-fit: none; object-position: 0 0; transform-origin: 0 0; }
.effect h3 a.anchor { color: #b0b0b8; text-decoration: none; margin-left: 6px; font-weight: normal; }
.effect h3 a.anchor:hover { color: #3060c0; }
#selftest { position: fixed; right: 12px; bottom: 12px; margin: 0; padding: 10px 14px; max-width: 420px;
  white-space: pre-wrap; font: 12px/1.4 monospace; background: #fff; border: 3px solid #888; border-radius: 6px;
  box-shadow: 0 2px 8px #0004; z-index: 10; }
#selftest.passed { border-color: #2a8a3a; }
#selftest.failed { border-color: #c02020; }
.controls { display: flex; align-items: center; gap: 8px; margin-top: 6px; }
.controls input { flex: 1; }
.controls output { font: 12px monospace; min-width: 9em; }
.controls input { min-width: 100px; }
.controls button { font-size: 12px; min-width: 4.5em; }
.about { flex: 1; min-width: 300px; }
table { border-collapse: collapse; font-size: 13px; }
th, td { text-align: left; padding: 2px 8px 2px 0; vertical-align: top; }
th { color: #6b6b70; font-weight: 600; }
td.key { font-family: monospace; }
.help { color: #55555a; }
.filmstrip { margin-top: 12px; }
.filmstrip img { display: block; max-width: 100%; height: auto; }
.filmstrip .labels { display: grid; font: 12px monospace; color: #6b6b70; text-align: center; }
.failure { color: #a01010; }
</style>
)";

// Playing, pausing and scrubbing the stacked frames; and, on #selftest, a
// check of the page that writes its findings into #selftest.
const char* const kScript = R"(<script>
(() => {
  const fps = Number(document.body.dataset.fps);
  const cards = [...document.querySelectorAll('.effect[data-frames]')];
  const show = (card, k) => {
    const n = Number(card.dataset.frames), h = Number(card.dataset.height);
    card.frame = k;
    card.querySelector('img.frames').style.objectPosition = '0 ' + (-k * h) + 'px';
    card.querySelector('.scrub').value = k;
    card.querySelector('.progress').textContent = 'Progress ' + (k / (n - 1)).toFixed(3);
  };
  const setPlaying = (card, playing) => {
    card.playing = playing;
    card.querySelector('.play').textContent = playing ? 'Pause' : 'Play';
  };
  // The player at 1x, or enlarged to 2x (the frames are scaled, not re-rendered).
  const setScale = (card, s) => {
    const w = Number(card.dataset.width), h = Number(card.dataset.height);
    card.scale = s;
    const view = card.querySelector('.view');
    view.style.width = (w * s) + 'px';
    view.style.height = (h * s) + 'px';
    card.querySelector('.player').style.width = 'max(' + (w * s) + 'px, 340px)';
    card.querySelector('img.frames').style.transform = s === 1 ? '' : 'scale(' + s + ')';
    card.querySelector('.enlarge').textContent = s === 1 ? 'Enlarge' : 'Shrink';
  };
  for (const card of cards) {
    show(card, 0);
    setPlaying(card, true);
    setScale(card, 1);
    const scrub = card.querySelector('.scrub');
    scrub.addEventListener('input', () => { setPlaying(card, false); show(card, Number(scrub.value)); });
    card.querySelector('.play').addEventListener('click', () => setPlaying(card, !card.playing));
    card.querySelector('.enlarge').addEventListener('click', () => setScale(card, card.scale === 1 ? 2 : 1));
  }
  setInterval(() => {
    for (const card of cards) {
      if (card.playing) show(card, (card.frame + 1) % Number(card.dataset.frames));
    }
  }, 1000 / fps);

  if (location.hash !== '#selftest') return;
  addEventListener('load', () => {
    for (const card of cards) setPlaying(card, false);
    const images = [...document.images];
    const broken = images.filter((i) => !(i.complete && i.naturalWidth > 0)).map((i) => i.getAttribute('src'));
    const lines = ['images ' + (images.length - broken.length) + '/' + images.length, 'broken ' + broken.join(' '),
                   'cards ' + cards.length];
    const first = cards[0];
    let moved = false, enlarged = false;
    if (first) {
      const scrub = first.querySelector('.scrub'), img = first.querySelector('img.frames');
      const move = (k) => { scrub.value = k; scrub.dispatchEvent(new Event('input')); return img.style.objectPosition; };
      const k = Math.floor(Number(first.dataset.frames) / 2);
      const at0 = move(0), atK = move(k);
      lines.push('slider ' + (first.frame === k && at0 !== atK && !first.playing ? 'moves' : 'stuck'));
      lines.push('frame ' + first.id + ' ' + k);
      const r = img.getBoundingClientRect();
      const enlarge = first.querySelector('.enlarge');
      enlarge.click();
      const big = img.getBoundingClientRect();
      enlarge.click();
      const back = img.getBoundingClientRect();
      enlarged = Math.round(big.width) === 2 * Math.round(r.width) && Math.round(back.width) === Math.round(r.width);
      lines.push('enlarge ' + (enlarged ? 'works' : 'stuck'));
      lines.push('view ' + [r.left, r.top, r.width, r.height].map(Math.round).join(' '));
      moved = first.frame === k && at0 !== atK && !first.playing;
    }
    lines.push('errors ' + krlErrors.length + ' ' + krlErrors.join(' | '));
    const passed = broken.length === 0 && krlErrors.length === 0 && cards.length > 0 && moved && enlarged;
    lines.unshift('result ' + (passed ? 'passed' : 'failed'));
    const out = document.getElementById('selftest');
    out.textContent = 'Self-test of this page\n' + lines.join('\n') + '\n';
    out.className = passed ? 'passed' : 'failed';
    out.hidden = false;
  });
})();
</script>
)";

std::string FieldsTable(const GalleryEntry& e) {
  if (e.fields.empty()) return "<p>No fields.</p>\n";
  std::string t = "<table class=\"fields\"><tr><th>Field</th><th>Label</th><th>Kind</th><th>Range</th><th>Default</th></tr>\n";
  for (const GalleryField& f : e.fields) {
    t += "<tr><td class=\"key\">" + Html(f.key) + "</td><td>" + Html(f.label) + "</td><td>" + Html(f.kind) +
         "</td><td>" + Html(f.range) + "</td><td>" + Html(f.defaultValue) + "</td></tr>\n";
    std::string more;
    if (!f.items.empty()) more += "Items: " + Html(f.items) + ". ";
    more += Html(f.help);
    if (!more.empty()) t += "<tr><td></td><td class=\"help\" colspan=\"4\">" + more + "</td></tr>\n";
  }
  return t + "</table>\n";
}

std::string Card(const GalleryEntry& e, const GalleryLayout& layout) {
  const std::string w = std::to_string(layout.size.width), h = std::to_string(layout.size.height);
  std::string c = "<article class=\"effect\" id=\"" + Html(e.folder) + "\"";
  if (e.failure.empty()) {
    c += " data-frames=\"" + std::to_string(layout.frames) + "\" data-width=\"" + w + "\" data-height=\"" + h + "\"";
  }
  c += ">\n<h3>" + Html(e.name) + " <a class=\"anchor\" href=\"#" + Html(e.folder) + "\" title=\"Link to " +
       Html(e.name) + "\">#</a></h3>\n<p class=\"menu\">" + Html(e.menuPath) + "</p>\n<div class=\"row\">\n";
  if (e.failure.empty()) {
    c += "<div class=\"player\" style=\"width:max(" + w + "px,340px)\"><div class=\"view\" style=\"width:" + w +
         "px;height:" + h + "px\"><img class=\"frames\" src=\"" + Html(e.folder) + "/" + kFramesFile + "\" width=\"" + w +
         "\" height=\"" + h + "\" alt=\"" + Html(e.name) + ", animated\"></div>\n" +
         "<div class=\"controls\"><button class=\"play\" type=\"button\">Pause</button>"
         "<button class=\"enlarge\" type=\"button\">Enlarge</button>"
         "<input class=\"scrub\" type=\"range\" min=\"0\" max=\"" + std::to_string(layout.frames - 1) +
         "\" value=\"0\" aria-label=\"Progress\"><output class=\"progress\">Progress 0.000</output></div></div>\n";
  }
  c += "<div class=\"about\"><p>" + Html(e.description) + "</p>\n" + FieldsTable(e);
  if (!e.failure.empty()) c += "<p class=\"failure\">Could not be rendered: " + Html(e.failure) + "</p>\n";
  if (!e.animation.empty()) {
    c += "<p><a href=\"" + Html(e.folder + "/" + e.animation) + "\">Animated preview</a> (" + Html(e.animation) + ")</p>\n";
  }
  c += "</div>\n</div>\n";
  if (e.failure.empty()) {
    c += "<div class=\"filmstrip\"><img src=\"" + Html(e.folder) + "/" + kFilmstripFile + "\" alt=\"" + Html(e.name) +
         " at Progress 0, 1/6, 1/3, 1/2, 2/3, 5/6 and 1\">\n<div class=\"labels\" style=\"grid-template-columns:repeat(" +
         std::to_string(kFilmstripPictures) + ",1fr)\">";
    for (const char* label : {"0", "1/6", "1/3", "1/2", "2/3", "5/6", "1"}) c += std::string("<span>") + label + "</span>";
    c += "</div></div>\n";
  }
  return c + "</article>\n";
}

}  // namespace

std::string Slug(const std::string& text) {
  std::string out;
  for (const unsigned char c : text) {
    if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) out += static_cast<char>(c);
    else if (c >= 'A' && c <= 'Z') out += static_cast<char>(c - 'A' + 'a');
    else if (!out.empty() && out.back() != '-') out += '-';
  }
  while (!out.empty() && out.back() == '-') out.pop_back();
  return out;
}

std::string GalleryPage(const std::vector<GalleryEntry>& entries, const GalleryLayout& layout) {
  // Groups by menu path, in the order the library declares them.
  std::vector<std::string> menus;
  std::map<std::string, std::vector<const GalleryEntry*>> byMenu;
  for (const GalleryEntry& e : entries) {
    if (byMenu[MenuOf(e)].empty()) menus.push_back(MenuOf(e));
    byMenu[MenuOf(e)].push_back(&e);
  }
  char fps[32];
  std::snprintf(fps, sizeof fps, "%g", layout.fps);
  std::string page = std::string("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n") +
                     kGalleryMarker + "\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n" +
                     "<title>Transitions gallery</title>\n" + kHead + "</head>\n<body data-fps=\"" + fps + "\">\n";
  page += "<header><h1>Transitions gallery</h1>\n<p>" + std::to_string(entries.size()) + (entries.size() == 1 ? " transition of " : " transitions of ") +
          Html(layout.library) + ", with their default fields, from " + Html(layout.inputs) + " at " +
          std::to_string(layout.size.width) + "x" + std::to_string(layout.size.height) + "; Progress runs from 0 to 1 over " +
          std::to_string(layout.frames) + " frames. Drag a slider to scrub; the # beside a name links to it.</p>\n<nav>";
  for (const std::string& menu : menus) {
    page += "<a href=\"#menu-" + Slug(menu) + "\">" + Html(menu) + " (" + std::to_string(byMenu[menu].size()) + ")</a> ";
  }
  page += "</nav></header>\n<main>\n";
  for (const std::string& menu : menus) {
    page += "<section id=\"menu-" + Slug(menu) + "\">\n<h2>" + Html(menu) + "</h2>\n";
    for (const GalleryEntry* e : byMenu[menu]) page += Card(*e, layout);
    page += "</section>\n";
  }
  page += std::string("</main>\n<pre id=\"selftest\" hidden></pre>\n") + kScript + "</body>\n</html>\n";
  page += kFilesOpening;
  for (const std::string& file : GalleryFiles(entries)) page += file + "\n";
  return page + "-->\n";
}

std::vector<std::string> GalleryFiles(const std::vector<GalleryEntry>& entries) {
  std::vector<std::string> files{"index.html"};
  for (const GalleryEntry& e : entries) {
    if (!e.failure.empty()) continue;
    files.push_back(e.folder + "/" + kFramesFile);
    files.push_back(e.folder + "/" + kFilmstripFile);
    if (!e.animation.empty()) files.push_back(e.folder + "/" + e.animation);
  }
  return files;
}

bool ListedFiles(const std::string& page, std::vector<std::string>* files) {
  const size_t at = page.rfind(kFilesOpening);
  if (at == std::string::npos) return false;
  size_t start = at + std::string(kFilesOpening).size();
  for (size_t end; (end = page.find('\n', start)) != std::string::npos; start = end + 1) {
    const std::string line = page.substr(start, end - start);
    if (line == "-->") break;
    files->push_back(line);
  }
  return true;
}

}  // namespace krl::cli
