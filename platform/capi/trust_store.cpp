// Reading trust anchors, intermediate CA certificates and CRLs from the
// configured files and directories. Each file may hold PEM (any number of
// objects) or one DER object; files that hold neither are skipped.
#include "trust_store.h"

#include <dirent.h>
#include <sys/stat.h>

#include <openssl/err.h>
#include <openssl/pem.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include <korvex/platform/support/support.h>

namespace korvex::capi {
namespace {

constexpr size_t kMaxFileSize = 16u << 20;  // a CRL of ~400,000 entries

std::string ConfigText(const char* key) {
  std::vector<char> buffer(4096);
  if (support_registry_get_string(key, buffer.data(), buffer.size()) != SUPPORT_REGISTRY_OK) {
    return std::string();
  }
  return std::string(buffer.data());
}

// Files lists the regular files of a directory, sorted, so that loading is
// deterministic.
std::vector<std::string> Files(const std::string& dir) {
  std::vector<std::string> out;
  if (dir.empty()) return out;
  DIR* handle = opendir(dir.c_str());
  if (handle == nullptr) return out;
  while (struct dirent* entry = readdir(handle)) {
    if (entry->d_name[0] == '.') continue;
    std::string path = dir + "/" + entry->d_name;
    struct stat info {};
    if (stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode)) out.push_back(path);
  }
  closedir(handle);
  std::sort(out.begin(), out.end());
  return out;
}

void AddStamp(std::ostringstream& stamp, const std::string& path) {
  struct stat info {};
  stamp << path << '|';
  if (stat(path.c_str(), &info) == 0) {
    stamp << info.st_size << '|' << info.st_mtim.tv_sec << '.' << info.st_mtim.tv_nsec << '|'
          << info.st_ino;
  }
  stamp << '\n';
}

bool ReadFile(const std::string& path, std::string* out) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  in.seekg(0, std::ios::end);
  std::streamoff size = in.tellg();
  if (size < 0 || static_cast<size_t>(size) > kMaxFileSize) return false;
  in.seekg(0);
  out->assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return true;
}

struct BioFree {
  void operator()(BIO* b) const { BIO_free(b); }
};

void LoadCertificates(const std::string& path, std::vector<X509Ptr>* out) {
  std::string bytes;
  if (!ReadFile(path, &bytes) || bytes.empty()) return;
  std::unique_ptr<BIO, BioFree> bio(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
  size_t before = out->size();
  while (X509* x = PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr)) out->emplace_back(x);
  if (out->size() == before) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(bytes.data());
    if (X509* x = d2i_X509(nullptr, &p, static_cast<long>(bytes.size()))) out->emplace_back(x);
  }
  ERR_clear_error();
}

void LoadCrls(const std::string& path, std::vector<X509CrlPtr>* out) {
  std::string bytes;
  if (!ReadFile(path, &bytes) || bytes.empty()) return;
  std::unique_ptr<BIO, BioFree> bio(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
  size_t before = out->size();
  while (X509_CRL* crl = PEM_read_bio_X509_CRL(bio.get(), nullptr, nullptr, nullptr)) {
    out->emplace_back(crl);
  }
  if (out->size() == before) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(bytes.data());
    if (X509_CRL* crl = d2i_X509_CRL(nullptr, &p, static_cast<long>(bytes.size()))) {
      out->emplace_back(crl);
    }
  }
  ERR_clear_error();
}

}  // namespace

std::shared_ptr<const TrustMaterial> CurrentTrustMaterial() {
  std::string anchorsDir = ConfigText(kTrustAnchorsDirKey);
  std::string anchorsFile = ConfigText(kTrustAnchorsFileKey);
  std::string intermediatesDir = ConfigText(kIntermediatesDirKey);
  std::string crlDir = ConfigText(kCrlDirKey);
  std::vector<std::string> anchorFiles = Files(anchorsDir);
  if (!anchorsFile.empty()) anchorFiles.push_back(anchorsFile);
  std::vector<std::string> intermediateFiles = Files(intermediatesDir);
  std::vector<std::string> crlFiles = Files(crlDir);

  std::ostringstream stamp;
  stamp << "A\n";
  for (const std::string& path : anchorFiles) AddStamp(stamp, path);
  stamp << "I\n";
  for (const std::string& path : intermediateFiles) AddStamp(stamp, path);
  stamp << "C\n";
  for (const std::string& path : crlFiles) AddStamp(stamp, path);

  static std::mutex mutex;
  static std::string cachedStamp;
  static std::shared_ptr<const TrustMaterial>* cached =
      new std::shared_ptr<const TrustMaterial>();
  std::lock_guard<std::mutex> lock(mutex);
  if (*cached && cachedStamp == stamp.str()) return *cached;
  auto material = std::make_shared<TrustMaterial>();
  for (const std::string& path : anchorFiles) LoadCertificates(path, &material->anchors);
  for (const std::string& path : intermediateFiles) LoadCertificates(path, &material->intermediates);
  for (const std::string& path : crlFiles) LoadCrls(path, &material->crls);
  *cached = material;
  cachedStamp = stamp.str();
  return material;
}

}  // namespace korvex::capi
