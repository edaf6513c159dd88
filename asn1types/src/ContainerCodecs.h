// ContainerCodecs.h (internal): the traits through which the generic
// containers (attributes, extensions, policies, and the values holding them)
// encode and decode themselves.
//
// The catalogue constrains an attribute's values, an extension's extnValue
// and a policy qualifier by tables of known objects, so its generated decoder
// also decodes every known value as its type, and a value that type refuses
// makes the whole container fail (one odd extension, one BER timestamp token
// among the unsigned attributes). A container keeps its values as the bytes
// that stand on the wire (X.682 10) and the typed classes read the values they
// know, so the containers use the generated descriptors with the table
// constraints taken out (names::untabled, NameCodecs.h): the same records,
// tags and size limits, without decoding every value once for nothing.
// Encoding is the same either way (the values are written as they stand).
#ifndef KORVEX_ASN1TYPES_SRC_CONTAINERCODECS_H
#define KORVEX_ASN1TYPES_SRC_CONTAINERCODECS_H

#include <korvex/asn1gen/PKIXCMP.h>
#include <korvex/asn1types/AttributeTraits.h>
#include <korvex/asn1types/CMPTraits.h>
#include <korvex/asn1types/ExtensionTraits.h>

#include "NameCodecs.h"

namespace Korvex {
namespace ASN1 {
namespace containers {

typedef names::Codec<ASN1T_Attribute_traits, asn1data::ASN1T_Attribute,
                     &asn1data::asn1Desc_Attribute>
    AttributeCodec;
typedef names::Codec<ASN1T_Attributes_traits, asn1data::ASN1T_Attributes,
                     &asn1data::asn1Desc_Attributes>
    AttributesCodec;
typedef names::Codec<ASN1T_Extension_traits, asn1data::ASN1T_Extension,
                     &asn1data::asn1Desc_Extension>
    ExtensionCodec;
typedef names::Codec<ASN1T_Extensions_traits, asn1data::ASN1T_Extensions,
                     &asn1data::asn1Desc_Extensions>
    ExtensionsCodec;
typedef names::Codec<ASN1T_PolicyQualifierInfo_traits, asn1data::ASN1T_PolicyQualifierInfo,
                     &asn1data::asn1Desc_PolicyQualifierInfo>
    PolicyQualifierInfoCodec;
typedef names::Codec<ASN1T_PolicyInformation_traits, asn1data::ASN1T_PolicyInformation,
                     &asn1data::asn1Desc_PolicyInformation>
    PolicyInformationCodec;
typedef names::Codec<ASN1T_CertificatePolicies_traits, asn1data::ASN1T_CertificatePolicies,
                     &asn1data::asn1Desc_CertificatePolicies>
    CertificatePoliciesCodec;
typedef names::Codec<ASN1T_RevAnnContent_traits, asn1data::ASN1T_RevAnnContent,
                     &asn1data::asn1Desc_RevAnnContent>
    RevAnnContentCodec;

}  // namespace containers
}  // namespace ASN1
}  // namespace Korvex

#endif
