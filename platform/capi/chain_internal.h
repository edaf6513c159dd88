// chain_internal.h: the memory behind a CERT_CHAIN_CONTEXT, shared by the
// chain builder and the chain policies. Not installed.
#ifndef KORVEX_PLATFORM_CAPI_CHAIN_INTERNAL_H
#define KORVEX_PLATFORM_CAPI_CHAIN_INTERNAL_H

#include "capi_internal.h"

namespace korvex::capi {

// One chain context. `context` comes first so that the PCCERT_CHAIN_CONTEXT
// the caller holds is the address of the block.
struct ChainBlock {
  CERT_CHAIN_CONTEXT context{};
  CERT_SIMPLE_CHAIN simple{};
  PCERT_SIMPLE_CHAIN simplePointer = nullptr;
  std::vector<CERT_CHAIN_ELEMENT> elements;
  std::vector<PCERT_CHAIN_ELEMENT> elementPointers;
  std::vector<CERT_REVOCATION_INFO> revocation;
  bool topSelfSigned = false;        // the last element is a self-signed certificate
  uint32_t endKeyUsage = UINT32_MAX; // X509_get_key_usage of the end certificate
  std::mutex mutex;
  long refs = 1;  // guarded by mutex

  ChainBlock() = default;
  ChainBlock(const ChainBlock&) = delete;
  ChainBlock& operator=(const ChainBlock&) = delete;
  ~ChainBlock() {
    for (const CERT_CHAIN_ELEMENT& element : elements) {
      CertFreeCertificateContext(element.pCertContext);
    }
  }
};

std::shared_ptr<ChainBlock> FindChain(PCCERT_CHAIN_CONTEXT chain);

}  // namespace korvex::capi

#endif
