// error.cpp: the context's error information. Only the first status since the
// last reset is kept; no parameters or texts exist.
#include <cstdio>

#include "rtintern.h"

extern "C" {

int rtErrSetData(ASN1ErrInfo* errInfo, int status) {
  if (errInfo && errInfo->status == 0) errInfo->status = status;
  return status;
}

int rtErrReset(ASN1ErrInfo* errInfo) {
  if (errInfo) errInfo->status = 0;
  return ASN_OK;
}

int rtErrCopyData(const ASN1ErrInfo* srcErrInfo, ASN1ErrInfo* destErrInfo) {
  if (!srcErrInfo) return ASN_OK;
  if (destErrInfo) destErrInfo->status = srcErrInfo->status;
  return srcErrInfo->status;
}

int rtErrAddIntParm(ASN1ErrInfo*, int) { return 1; }

int rtErrAddStrParm(ASN1ErrInfo*, const char*) { return 1; }

const char* rtErrGetText(ASN1CTXT*) { return ""; }

void rtErrPrint(const ASN1ErrInfo* errInfo) {
  std::printf("ASN.1 ERROR: Status %d\n", errInfo ? errInfo->status : 0);
}

}  // extern "C"
