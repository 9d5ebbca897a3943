// Declaration as data: a transition describes its effect and fields once in a
// table, and DeclareEffect turns any description into the host's script
// statements. No transition formats a statement itself.
#pragma once

#include <array>
#include <initializer_list>
#include <span>

#include "host/host_interface.h"

namespace krl {

using FieldIndex = int32_t;  // assigned by the host's script during declaration

enum class FieldKind : uint8_t { Input, Selector, Long, FloatA, Bool, RGBcolor, Alpha };
enum class FieldFlags : uint8_t { None, Limits, HideCurve };
enum class DefaultKind : uint8_t { None, Value, Color, Curve };

struct SelectorItem {
  const char* label;
  int32_t value;
};

struct CurvePoint {
  double position;
  double value;
};

inline constexpr int kMaxSelectorItems = 12;

// Not constexpr: reached while building a constexpr table, it stops the
// compilation (tables are always built at compile time).
inline void TableTooLong() {}
inline constexpr int kMaxCurvePoints = 4;

struct FieldSpec {
  FieldIndex* index = nullptr;
  FieldKind kind = FieldKind::Input;
  const char* key = "";
  const char* label = "";
  FieldFlags flags = FieldFlags::None;
  const char* help = nullptr;  // none when null
  double minimum = 0.0;
  double maximum = 0.0;
  std::array<SelectorItem, kMaxSelectorItems> items{};
  int itemCount = 0;
  // What the init function sets, in declaration order (see InitDefaults).
  DefaultKind defaultKind = DefaultKind::None;
  int32_t defaultValue = 0;
  KrColor defaultColor{};
  std::array<CurvePoint, kMaxCurvePoints> defaultCurve{};
  int curvePointCount = 0;

  constexpr FieldSpec Help(const char* text) const {
    FieldSpec f = *this;
    f.help = text;
    return f;
  }
  constexpr FieldSpec WithFlags(FieldFlags value) const {
    FieldSpec f = *this;
    f.flags = value;
    return f;
  }
  constexpr FieldSpec Limits() const { return WithFlags(FieldFlags::Limits); }
  constexpr FieldSpec HideCurve() const { return WithFlags(FieldFlags::HideCurve); }
  constexpr FieldSpec Default(int32_t value) const {
    FieldSpec f = *this;
    f.defaultKind = DefaultKind::Value;
    f.defaultValue = value;
    return f;
  }
  // The same field with nothing set by the init: the host's own value stands.
  constexpr FieldSpec WithoutDefault() const {
    FieldSpec f = *this;
    f.defaultKind = DefaultKind::None;
    return f;
  }
  constexpr FieldSpec DefaultColor(uint8_t blue, uint8_t green, uint8_t red) const {
    FieldSpec f = *this;
    f.defaultKind = DefaultKind::Color;
    f.defaultColor = KrColor{blue, green, red, 255};
    return f;
  }
  constexpr FieldSpec DefaultCurve(std::initializer_list<CurvePoint> points) const {
    FieldSpec f = *this;
    if (points.size() > kMaxCurvePoints) TableTooLong();
    f.defaultKind = DefaultKind::Curve;
    f.curvePointCount = 0;
    for (const CurvePoint& p : points) f.defaultCurve[f.curvePointCount++] = p;
    return f;
  }
};

constexpr FieldSpec MakeField(FieldIndex* index, FieldKind kind, const char* key, const char* label) {
  FieldSpec f;
  f.index = index;
  f.kind = kind;
  f.key = key;
  f.label = label;
  return f;
}

constexpr FieldSpec Input(FieldIndex* index, const char* key, const char* label) {
  return MakeField(index, FieldKind::Input, key, label);
}
constexpr FieldSpec Selector(FieldIndex* index, const char* key, const char* label,
                             std::initializer_list<SelectorItem> items) {
  FieldSpec f = MakeField(index, FieldKind::Selector, key, label);
  if (items.size() > kMaxSelectorItems) TableTooLong();
  for (const SelectorItem& item : items) f.items[f.itemCount++] = item;
  return f;
}
// The same with an item list that several fields share.
constexpr FieldSpec Selector(FieldIndex* index, const char* key, const char* label, std::span<const SelectorItem> items) {
  FieldSpec f = MakeField(index, FieldKind::Selector, key, label);
  if (items.size() > kMaxSelectorItems) TableTooLong();
  for (const SelectorItem& item : items) f.items[f.itemCount++] = item;
  return f;
}
constexpr FieldSpec Long(FieldIndex* index, const char* key, const char* label, double minimum,
                         double maximum) {
  FieldSpec f = MakeField(index, FieldKind::Long, key, label);
  f.minimum = minimum;
  f.maximum = maximum;
  return f;
}
constexpr FieldSpec FloatA(FieldIndex* index, const char* key, const char* label, double minimum,
                           double maximum) {
  FieldSpec f = Long(index, key, label, minimum, maximum);
  f.kind = FieldKind::FloatA;
  return f;
}
constexpr FieldSpec Bool(FieldIndex* index, const char* key, const char* label) {
  return MakeField(index, FieldKind::Bool, key, label);
}

// The anti-aliasing switch of the geometric transitions: the pen-grid and
// band families name it "Anti-Aliasing", the 3D family "IsAntiAlias".
constexpr FieldSpec AntiAliasingField(FieldIndex* index, const char* key = "Anti-Aliasing") {
  return Bool(index, key, "Anti-Aliasing").Help("This option offers an improvement of quality.").Default(0);
}
constexpr FieldSpec Color(FieldIndex* index, const char* key, const char* label) {
  return MakeField(index, FieldKind::RGBcolor, key, label);
}
constexpr FieldSpec Alpha(FieldIndex* index, const char* key, const char* label) {
  return MakeField(index, FieldKind::Alpha, key, label);
}

// The two clip inputs every transition declares first.
constexpr FieldSpec InputAField(FieldIndex* index) { return Input(index, "InputA", "Input A"); }
constexpr FieldSpec InputBField(FieldIndex* index) { return Input(index, "InputB", "Input B"); }

// "TransType", read by the render prologue; its default 0 is set first.
constexpr FieldSpec TransTypeField(FieldIndex* index) {
  return Selector(index, "TransType", "Transition", {{"Image 1 > Image 2", 0}, {"Image 2 > Image 1", 1}})
      .Help("Specifies the order the clips will change.")
      .Default(0);
}

// The fields every transition declares first: the two inputs and "TransType".
struct ClipFields {
  FieldIndex inputA, inputB, transType;
};

// A transition's field table: the clip fields, then its own in declaration order.
template <typename... Own>
constexpr std::array<FieldSpec, 3 + sizeof...(Own)> FieldTable(ClipFields& clip, const Own&... own) {
  return {InputAField(&clip.inputA), InputBField(&clip.inputB), TransTypeField(&clip.transType), own...};
}

struct EffectSpec {
  const char* menuPath;      // obj.Name
  const char* signature;     // obj.Sign
  const char* displayName;   // translation context of every text
  const char* description;
  KrInitFunction init;
  KrRenderFunction render;
  KrDeleteUserDataFunction deleteUserData = nullptr;  // only effects with user data
  std::span<const FieldSpec> fields;                  // in declaration order
  const char* descriptionContext = nullptr;           // when it differs from displayName
};

// Issues the whole statement sequence of one effect; returns 1.
int32_t DeclareEffect(t_KrHostInfo* hi, const EffectSpec& effect);

// Sets every field default the table names, in declaration order; returns 1.
int32_t InitDefaults(t_KrRenderInfo* ri, std::span<const FieldSpec> fields);

}  // namespace krl
