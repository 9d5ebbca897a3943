// A library whose declaration the host cannot parse: krl must refuse it with
// one clear line.
#include "host/export.h"
#include "host/host_interface.h"

KR_EXPORT int32_t KrDeclare(t_KrHostInfo* hi) {
  return hi->Host->ScriptExecuteHi(hi, hi, "KrEffect obj = = (;");
}
