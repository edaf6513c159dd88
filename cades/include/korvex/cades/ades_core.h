// korvex/cades/ades_core.h: helpers between signature code and the CryptoAPI
// provider library, and the library's trace channel.
//
//   - CheckProvider: the provider-type strict mode of signing;
//   - IsCertChainValidForSignatureOnTimeNow: is a certificate's chain valid
//     for signing at the present moment, under the provider's own signature
//     chain policy;
//   - GetUnauthAttr: the unsigned attributes (RFC 5652 5.3 unsignedAttrs) of
//     one signer of an open message;
//   - the trace context `ades_db_ctx`, opened when the library is loaded and
//     closed when it is unloaded (DbTraceInitializer).
//
// Results are HRESULTs; GetUnauthAttr throws ATL::CAtlException. Trace lines
// go to the support library's channel only (docs/configuration.md), never to
// standard output or standard error; docs/cades-helpers.md lists them.
#ifndef KORVEX_CADES_ADES_CORE_H
#define KORVEX_CADES_ADES_CORE_H

#include <korvex/platform/atl/atlcrypt.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/atl/atlstr.h>
#include <korvex/platform/atl/certcontext.h>
#include <korvex/platform/export.h>
#include <korvex/platform/support/support.h>

// ades_db_ctx is the library's trace context (component "ades"): opened at
// load with support_print_init(0, "ades", 0, 127), closed at unload. Null
// when it could not be opened; every trace call treats null as "no tracing".
// Only the load-time initialiser and the unload-time destructor write it.
extern KORVEX_API support_print_ctx* ades_db_ctx;

// DbTraceInitializer opens a trace context into a variable for as long as
// the object lives.
class KORVEX_API DbTraceInitializer {
 public:
  // DbTraceInitializer closes whatever ctxVar holds (support_print_done),
  // sets it null, remembers &ctxVar and stores
  // support_print_init(0, name, levelsOff, levelsOn) in it (null when the
  // support library refuses: empty name, no level allowed, no memory).
  DbTraceInitializer(char const* name, support_print_ctx*& ctxVar, unsigned int levelsOff,
                     unsigned int levelsOn);
  // ~DbTraceInitializer closes the remembered variable's context and sets
  // the variable null.
  ~DbTraceInitializer();

  DbTraceInitializer(DbTraceInitializer const&) = delete;
  DbTraceInitializer& operator=(DbTraceInitializer const&) = delete;

 private:
  support_print_ctx** m_ctxVar;
};

// CheckProvider tells whether prov may be used for signing. With the
// configuration value "\config\CAdES\ProviderTypeStrictMode" absent, not a
// number or 0, every provider is accepted and prov is not touched. Otherwise
// only providers of type 75, 80 or 81 (the GOST R 34.10 provider types) are:
// returns 0 for them and 0x80090013 (NTE_BAD_PROVIDER) for any other type or
// when the type cannot be read. Traces at level 0x08 (function
// "CheckProvider"): "Strict Mode for provider type is set" whenever strict
// mode is on, then "Strict Mode for provider type is set and provider type
// mismatch " (with its trailing blank) when the type is refused.
KORVEX_API HRESULT CheckProvider(ATL::CCryptProv& prov);

// IsCertChainValidForSignatureOnTimeNow checks cert's chain at the present
// moment with the provider's signature chain policy
// (KORVEX_CHAIN_POLICY_SIGNATURE): the chain is built from the configured
// trust store (docs/capi.md) with revocation checked for every element but
// the root. Returns 0 when the policy check ran and stores its verdict in
// *status: 0 for a valid chain, otherwise the policy's error code
// (CERT_E_EXPIRED, CRYPT_E_REVOKED, CERT_E_UNTRUSTEDROOT, CERT_E_CHAINING,
// CRYPT_E_REVOCATION_OFFLINE, CERT_E_WRONG_USAGE ...). Returns 0x80004005
// (E_FAIL) with *status 0 when the check could not run; an empty cert builds
// no chain, and the policy check of a null chain cannot run. A null status
// gives 0x80070057 (E_INVALIDARG) and nothing is checked. cert keeps its
// context; the chain is freed before the call returns.
KORVEX_API HRESULT IsCertChainValidForSignatureOnTimeNow(ATL2::CCertContext& cert,
                                                         unsigned int* status);

// GetUnauthAttr reads the unsigned attributes of signer signerIndex of the
// decoded message `message` (an HCRYPTMSG) into out: the CRYPT_ATTRIBUTES
// block exactly as CryptMsgGetParam(CMSG_SIGNER_UNAUTH_ATTR_PARAM) returns
// it, GetLength() bytes long, whose internal pointers point into out's own
// buffer; read it in place with
//   reinterpret_cast<CRYPT_ATTRIBUTES const*>(out.GetString())
// while out is neither changed nor destroyed. The caller's handle is used
// through a duplicate that is closed before the call returns. Throws
// ATL::CAtlException: 0x80004005 when the handle cannot be duplicated;
// the message call's last error e as 0x80070000 | (e & 0xFFFF) when e is
// positive and as it stands when negative (CryptoAPI HRESULTs, e.g.
// CRYPT_E_ATTRIBUTES_MISSING 0x8009100F for a signer without unsigned
// attributes, CRYPT_E_INVALID_INDEX 0x80091008 for no such signer); a failed
// call whose last error is 0 is not an error; 0x80070057 when the returned
// size does not fit the buffer; E_OUTOFMEMORY when no buffer can be had. A
// failed duplication or message call is traced at level 0x08 as
// "Exception thrown: _hr" (function "GetUnauthAttr") before the throw. On a
// throw out keeps its length and its text (its buffer may have grown).
KORVEX_API void GetUnauthAttr(void* message, unsigned int signerIndex, ATL::CStringT<char>& out);

#endif
