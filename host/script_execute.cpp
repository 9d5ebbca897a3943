// The exported printf-style helpers that hand one statement of the host's
// declaration script to the host.
#include <cstdarg>
#include <cstdio>

#include "host/entry.h"
#include "host/exports.h"

namespace {
constexpr int kStatementBuffer = 65536;
constexpr int kDebugBuffer = 2048;
}  // namespace

// Formats with a length bound: an overlong text is cut at the buffer's end
// rather than overrunning it (no statement of ours comes near 64 KiB). The
// guard makes %f round as ours, whatever the host's rounding (host/entry.h).
#define KR_FORMAT_INTO(buffer, format)                    \
  const krl::HostStateGuard guard;                        \
  va_list args;                                           \
  va_start(args, format);                                 \
  std::vsnprintf(buffer, sizeof buffer, format, args);    \
  va_end(args)

KR_EXPORT KR_ENTRY_POINT int32_t KrScriptExecuteHi(t_KrHostInfo* hi, const char* format, ...) {
  char statement[kStatementBuffer];
  KR_FORMAT_INTO(statement, format);
  return hi->Host->ScriptExecuteHi(hi, hi, statement);
}

KR_EXPORT KR_ENTRY_POINT int32_t KrScriptExecute(t_KrHostInfo* hi, const char* format, ...) {
  char statement[kStatementBuffer];
  KR_FORMAT_INTO(statement, format);
  return hi->Host->ScriptExecute(hi, statement);
}

// A debugging hook kept for the host: it formats and discards.
KR_EXPORT KR_ENTRY_POINT void KrDebug(int32_t, int32_t, const char* format, ...) {
  char text[kDebugBuffer];
  KR_FORMAT_INTO(text, format);
}
