// The one statement writer: turns an EffectSpec into the host's declaration
// script, in the fixed order the host expects.
#include "host/declare.h"

#include <cinttypes>

#include "host/exports.h"
#include "host/host_calls.h"

namespace krl {
namespace {

// Addresses are written in upper-case hex without leading zeros: 32 bits wide
// on i386 (where PRIXPTR is plain "X"), the full pointer on x86-64.
#define KR_ADDR "0x%" PRIXPTR

template <typename T>
uintptr_t Address(T* pointer) {
  return reinterpret_cast<uintptr_t>(pointer);
}

const char* FlagsText(FieldFlags flags) {
  switch (flags) {
    case FieldFlags::Limits: return "KrdfMinLimit|KrdfMaxLimit";
    case FieldFlags::HideCurve: return "KrdfHideCurve";
    case FieldFlags::None: break;
  }
  return "KrdfNone";
}

const char* KindText(FieldKind kind) {
  switch (kind) {
    case FieldKind::Input: return "Input";
    case FieldKind::Selector: return "Selector";
    case FieldKind::Long: return "Long";
    case FieldKind::FloatA: return "FloatA";
    case FieldKind::Bool: return "Bool";
    case FieldKind::RGBcolor: return "RGBcolor";
    case FieldKind::Alpha: return "Alpha";
  }
  return "Input";
}

class Declarer {
 public:
  Declarer(t_KrHostInfo* hi, const char* context) : hi_(hi), context_(context) {}

  uintptr_t Translated(const char* text, const char* context = nullptr) const {
    return Address(hi_->Host->Translate(hi_, context ? context : context_, text));
  }

  void Field(const FieldSpec& f) const {
    const uintptr_t var = Address(f.index);
    const char* flags = FlagsText(f.flags);
    switch (f.kind) {
      case FieldKind::Input:
        KrScriptExecuteHi(hi_, "*((int *)" KR_ADDR ") = KrDataFieldAdd( &obj.df, \"Input\", \"%s\", \"%s\", %s );",
                          var, f.key, f.label, flags);
        return;  // inputs carry no help and no items
      case FieldKind::Long:
      case FieldKind::FloatA:
        KrScriptExecuteHi(hi_,
                          "*((int *)" KR_ADDR ") = KrDataFieldAdd( &obj.df, \"%s\", \"%s\", (word *)" KR_ADDR
                          ", %f,%f, %s );",
                          var, KindText(f.kind), f.key, Translated(f.label), f.minimum, f.maximum, flags);
        break;
      default:
        KrScriptExecuteHi(hi_, "*((int *)" KR_ADDR ") = KrDataFieldAdd( &obj.df, \"%s\", \"%s\", (word *)" KR_ADDR ", %s );",
                          var, KindText(f.kind), f.key, Translated(f.label), flags);
        break;
    }
    // The index is read back after the field statement: the host's script stored it.
    if (f.help != nullptr) {
      KrScriptExecuteHi(hi_, "KrDataFieldHelpbyId( &obj.df, %d, (word *)" KR_ADDR " );", *f.index,
                        Translated(f.help));
    }
    for (int i = 0; i < f.itemCount; ++i) {
      KrScriptExecuteHi(hi_, "DataFieldSelItemAddById( &obj.df, %d, (word *)" KR_ADDR ", 0x%X );", *f.index,
                        Translated(f.items[i].label), static_cast<uint32_t>(f.items[i].value));
    }
  }

 private:
  t_KrHostInfo* hi_;
  const char* context_;
};

}  // namespace

int32_t DeclareEffect(t_KrHostInfo* hi, const EffectSpec& e) {
  const Declarer declare(hi, e.displayName);
  KrScriptExecuteHi(hi, "KrEffect obj; obj.Name = \"%s\"; obj.Sign = \"%s\"; obj.Version = 0x%X;", e.menuPath,
                    e.signature, 1u);
  KrScriptExecuteHi(hi, "obj.Type = \"Transition\";");
  KrScriptExecuteHi(hi, "obj.DescriptionW = (word *)" KR_ADDR ";", declare.Translated(e.description, e.descriptionContext));
  KrScriptExecuteHi(hi, "obj.InitFunction = " KR_ADDR ";", Address(e.init));
  KrScriptExecuteHi(hi, "obj.RenderVideoFunctionRT = " KR_ADDR ";", Address(e.render));
  if (e.deleteUserData != nullptr) {
    KrScriptExecuteHi(hi, "obj.DeleteUserData = " KR_ADDR ";", Address(e.deleteUserData));
  }
  for (const FieldSpec& field : e.fields) declare.Field(field);
  KrScriptExecuteHi(hi, "EffectAdd( obj );");
  return 1;
}

int32_t InitDefaults(t_KrRenderInfo* ri, std::span<const FieldSpec> fields) {
  const HostCalls host(ri);
  for (const FieldSpec& f : fields) {
    switch (f.defaultKind) {
      case DefaultKind::Value: host.SetDefault(*f.index, f.defaultValue); break;
      case DefaultKind::Color: host.SetColorDefault(*f.index, f.defaultColor); break;
      case DefaultKind::Curve:
        for (int i = 0; i < f.curvePointCount; ++i) {
          host.AddCurvePoint(*f.index, f.defaultCurve[i].position, f.defaultCurve[i].value);
        }
        break;
      case DefaultKind::None: break;
    }
  }
  return 1;
}

}  // namespace krl
