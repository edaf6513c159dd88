// digest.h: the hash algorithms adestool computes, through the platform's
// CryptoAPI (CryptCreateHash / CryptHashData / CryptGetHashParam).
#ifndef ADESTOOL_DIGEST_H
#define ADESTOOL_DIGEST_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace adestool {

struct HashAlgorithm {
  std::string_view name;  // the command-line name: "sha256"
  std::string_view oid;   // dotted text: "2.16.840.1.101.3.4.2.1"
  unsigned algId;         // the CryptoAPI ALG_ID
};

// HashAlgorithms: sha1, sha256, sha384, sha512, gost94, gost2012-256,
// gost2012-512, in that order.
const std::vector<HashAlgorithm>& HashAlgorithms();

// HashNames: "sha1, sha256, ..." for help and messages.
std::string HashNames();

// FindHashByName / FindHashByOid: the algorithm, or null when unknown.
const HashAlgorithm* FindHashByName(std::string_view name);
const HashAlgorithm* FindHashByOid(std::string_view oid);

// SelectHash: the algorithm named by the --hash option (null: SHA-256).
// Throws a usage error (status 2) naming command for an unknown name.
const HashAlgorithm& SelectHash(const std::string* name, std::string_view command);

// Digest: the hash of data. Throws ToolError (status 2) when the platform
// does not provide the algorithm ("hash gost94 is not available here").
std::vector<uint8_t> Digest(const HashAlgorithm& algorithm, const std::vector<uint8_t>& data);

// HashBytes: the hash of data under the algorithm of OID hashOid, any the
// platform's hash group knows (CryptFindOIDInfo), not only those above.
// Returns false, digest unspecified, when the platform has no such hash.
bool HashBytes(const std::string& hashOid, const uint8_t* data, size_t size,
               std::vector<uint8_t>* digest);

// The outcome of comparing a time-stamp token's imprint with data.
enum class ImprintMatch { kMatches, kDiffers, kNoHash };

// MatchImprint: whether imprint (imprintSize octets) is the hash of data
// under hashOid (RFC 3161 2.4.2 messageImprint); kNoHash when the platform
// has no such hash. `extend` picks tokens with it, `inspect` reports it.
ImprintMatch MatchImprint(const std::string& hashOid, const uint8_t* imprint, size_t imprintSize,
                          const uint8_t* data, size_t size);

// HexLower: bytes as lower-case hex without separators.
std::string HexLower(const std::vector<uint8_t>& bytes);

}  // namespace adestool

#endif
