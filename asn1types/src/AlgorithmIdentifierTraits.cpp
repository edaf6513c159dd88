// AlgorithmIdentifierTraits.cpp: CAlgorithmIdentifier <-> ASN1T_AlgorithmIdentifier.
#include <korvex/asn1types/AlgorithmIdentifierTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/Util.h>

namespace Korvex {
namespace ASN1 {

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
  if (asn1data::asn1DTC_AlgorithmIdentifier(ctxt, &rec) != 0) throwCodecError();
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
