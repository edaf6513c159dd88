// <korvex/ades.h>: every public name of libkorvex-ades and of the platform
// interfaces it is used with. Include this one header, link Korvex::ades
// (CMake) or `pkg-config --libs korvex-ades`.
#ifndef KORVEX_ADES_H
#define KORVEX_ADES_H

// Platform: Win32 types and functions, ATL-style helpers, support library.
#include <korvex/platform/windows.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/atl/atlstr.h>
#include <korvex/platform/support/support.h>
#include <korvex/platform/capi/wincrypt.h>
#include <korvex/platform/atl/atlcrypt.h>
#include <korvex/platform/atl/certcontext.h>

// Basic values and date-time.
#include <korvex/core/StringProxy.h>
#include <korvex/core/Blob.h>
#include <korvex/core/HexFormatting.h>
#include <korvex/core/DateTime.h>
#include <korvex/core/DateAdd.h>

// ASN.1 runtime, generated modules and typed value classes.
#include <korvex/asn1rt/asn1type.h>
#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1rt/rtList.h>
#include <korvex/asn1rt/asn1CppTypes.h>
#include <korvex/asn1rt/ASN1TValueTypes.h>
#include <korvex/asn1rt/ASN1CSeqOfList.h>
#include <korvex/asn1rt/ASN1CBitStr.h>
#include <korvex/asn1rt/ASN1CTime.h>
#include <korvex/asn1rt/ASN1TObjId.h>
#include <korvex/asn1rt/rtBigInt.h>
#include <korvex/asn1rt/rtUTF8.h>
#include <korvex/asn1rt/asn1engine.h>
#include <korvex/asn1gen/modules.h>
#include <korvex/asn1types/AlgorithmIdentifier.h>
#include <korvex/asn1types/AlgorithmIdentifierTraits.h>
#include <korvex/asn1types/ArrayListTraits.h>
#include <korvex/asn1types/Attribute.h>
#include <korvex/asn1types/AttributeTraits.h>
#include <korvex/asn1types/AttributeTypeRegister.h>
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/BigInteger.h>
#include <korvex/asn1types/CMP.h>
#include <korvex/asn1types/CMPTraits.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/CertIdTraits.h>
#include <korvex/asn1types/Choice.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/ExtAccess.h>
#include <korvex/asn1types/ExtDistributionPoint.h>
#include <korvex/asn1types/ExtPolicy.h>
#include <korvex/asn1types/Extension.h>
#include <korvex/asn1types/ExtensionTraits.h>
#include <korvex/asn1types/GeneralizedTimeText.h>
#include <korvex/asn1types/Hash.h>
#include <korvex/asn1types/HashTraits.h>
#include <korvex/asn1types/IssuerSerial.h>
#include <korvex/asn1types/NamedBits.h>
#include <korvex/asn1types/Names.h>
#include <korvex/asn1types/NamesTraits.h>
#include <korvex/asn1types/PrimitiveControls.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/RevAnnContent.h>
#include <korvex/asn1types/SeqOfListTraits.h>
#include <korvex/asn1types/SigningCertificate.h>
#include <korvex/asn1types/TimeChoice.h>
#include <korvex/asn1types/TimeChoiceTraits.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/asn1types/Util.h>

// OCSP values and CAdES core.
#include <korvex/ocsp/ResponderID.h>
#include <korvex/ocsp/ResponderIDTraits.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/cades/CAdESAttributesTraits.h>
#include <korvex/cades/policy.h>
#include <korvex/cades/ades_core.h>
#include <korvex/cades/OidInfoEnum.h>

#endif
