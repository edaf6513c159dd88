// AlgorithmIdentifierTraits.cpp: CAlgorithmIdentifier <-> ASN1T_AlgorithmIdentifier.
#include <korvex/asn1types/AlgorithmIdentifierTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/Util.h>

namespace Korvex {
namespace ASN1 {

namespace {

// The table decoder keeps bytes that do not hold the object's type raw, so that
// a received identifier re-encodes as it came; a value being written is held
// to its type. When the algorithm has an object with a parameters type
// (ALGORITHM.&Type, the class's first type field) and the table decoder left
// the bytes undecoded, they are decoded here: a refusal is a codec failure
// (0x80093101), no memory a heap failure (0x80093106). An object without a
// parameters type (-18) accepts any bytes.
void RequireParametersOfType(ASN1CTXT* ctxt, asn1data::ASN1T_AlgorithmIdentifier& rec) {
  Asn1Engine::InfoObject const* object =
      asn1data::SupportedAlgorithms::instance(ctxt).lookupObject(rec.algorithm);
  if (!object) return;
  void* decoded = nullptr;
  int status = object->decode(ctxt, rec.parameters.data, rec.parameters.numocts, &decoded);
  if (status == ASN_E_BADVALUE) return;  // no parameters type in the object
  checkCopyStatus(status);
  rec.parameters.decoded = decoded;
}

}  // namespace

void ASN1T_AlgorithmIdentifier_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                           CAlgorithmIdentifier const& value) {
  if (!ctxt) throwInvalidArgument();
  rec.m.parametersPresent = 0;
  rec.parameters.numocts = 0;
  rec.parameters.data = nullptr;
  rec.parameters.decoded = nullptr;
  // An OID that cannot be written makes the identifier unencodable: a codec
  // failure here, not the invalid-argument code of the bare OID traits.
  if (str2oid(value.get_algorithm(), &rec.algorithm) != 0) throwCodecError();
  if (value.get_parameters().cbData() == 0) return;
  Asn1TObject_traits::set(ctxt, rec.parameters, value.get_parameters());
  rec.m.parametersPresent = 1;
  // The parameters' type comes from the algorithm's information object
  // (RFC 5280 4.1.1.2, SupportedAlgorithms); bytes that do not decode as that
  // type are refused now rather than written.
  checkCopyStatus(asn1data::asn1DTC_AlgorithmIdentifier(ctxt, &rec));
  if (!rec.parameters.decoded) RequireParametersOfType(ctxt, rec);
}

void ASN1T_AlgorithmIdentifier_traits::get(ASN1_T const& rec, CAlgorithmIdentifier& value) {
  CStringProxy oid(nullptr);
  ASN1TObjId_traits::get(rec.algorithm, oid);
  CBlob parameters;
  if (rec.m.parametersPresent) Asn1TObject_traits::get(rec.parameters, parameters);
  value.put_algorithm(oid.c_str());
  value.put_parameters(parameters);
}

}  // namespace ASN1
}  // namespace Korvex
