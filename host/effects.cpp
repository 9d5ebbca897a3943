// KrDeclare: the ordered list of the effects that exist.
#include "host/entry.h"
#include "host/exports.h"

KR_EXPORT KR_ENTRY_POINT int32_t KrDeclare(t_KrHostInfo* hi) {
  const krl::HostStateGuard guard;
  int32_t declared = 0;
#define KR_CALL_DECLARE(name) declared += KrDeclare##name(hi);
  KR_EFFECTS(KR_CALL_DECLARE)
#undef KR_CALL_DECLARE
  return declared;
}
