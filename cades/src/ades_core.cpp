// Load-time state of the library: the "ades" trace context and the empty
// provider, key and hash holders. All of it is built by this file's static
// initialiser when the library is loaded and destroyed, in reverse order,
// when it is unloaded; nothing else writes it.
#include <korvex/cades/ades_core.h>

#include "ades_holders.h"

DbTraceInitializer::DbTraceInitializer(char const* name, support_print_ctx*& ctxVar,
                                       unsigned int levelsOff, unsigned int levelsOn)
    : m_ctxVar(&ctxVar) {
  support_print_done(ctxVar);
  ctxVar = nullptr;
  ctxVar = support_print_init(nullptr, name, levelsOff, levelsOn);
}

DbTraceInitializer::~DbTraceInitializer() {
  support_print_done(*m_ctxVar);
  *m_ctxVar = nullptr;
}

// Constant-initialised to null before any dynamic initialiser runs, so the
// initialiser below closes nothing on its first run.
support_print_ctx* ades_db_ctx = nullptr;

// The trace context of the whole library: component "ades", every level
// (0x7F) allowed; the configuration decides what is traced.
DbTraceInitializer log_inter("ades", ades_db_ctx, 0, 127);

namespace korvex::cades {
namespace {

ATL::CCryptProv g_emptyProvider;
CryptKeyHolder g_emptyKey;
CryptHashHolder g_emptyHash;

}  // namespace

ATL::CCryptProv& EmptyProvider() noexcept { return g_emptyProvider; }
CryptKeyHolder& EmptyKey() noexcept { return g_emptyKey; }
CryptHashHolder& EmptyHash() noexcept { return g_emptyHash; }

}  // namespace korvex::cades
