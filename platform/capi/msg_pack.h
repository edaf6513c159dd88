// msg_pack.h: writing CryptoAPI structures with internal pointers into one
// caller buffer. Not installed.
#ifndef KORVEX_PLATFORM_CAPI_MSG_PACK_H
#define KORVEX_PLATFORM_CAPI_MSG_PACK_H

#include "capi_internal.h"

namespace korvex::capi {

// Packer lays out a block: Reserve hands out aligned offsets, and the Put
// and Pack* calls write there. With a null base nothing is written, so the
// same code first measures the block and then, over the caller's buffer,
// fills it; the pointers it produces point into that buffer.
class Packer {
 public:
  explicit Packer(BYTE* base) : base_(base) {}

  size_t Reserve(size_t size, size_t align) {
    size_ = (size_ + align - 1) / align * align;
    size_t offset = size_;
    size_ += size;
    return offset;
  }
  size_t size() const { return size_; }
  BYTE* At(size_t offset) const { return base_ == nullptr ? nullptr : base_ + offset; }

  template <typename T>
  void Put(size_t offset, const T& value) {
    if (base_ != nullptr) std::memcpy(base_ + offset, &value, sizeof value);
  }

  CRYPT_DATA_BLOB PackBytes(const std::vector<BYTE>& bytes) {
    CRYPT_DATA_BLOB blob{static_cast<DWORD>(bytes.size()), nullptr};
    if (bytes.empty()) return blob;
    size_t offset = Reserve(bytes.size(), 1);
    if (base_ != nullptr) std::memcpy(base_ + offset, bytes.data(), bytes.size());
    blob.pbData = At(offset);
    return blob;
  }

  LPSTR PackString(const std::string& text) {
    size_t offset = Reserve(text.size() + 1, 1);
    if (base_ != nullptr) std::memcpy(base_ + offset, text.c_str(), text.size() + 1);
    return reinterpret_cast<LPSTR>(At(offset));
  }

 private:
  BYTE* base_;
  size_t size_ = 0;
};

}  // namespace korvex::capi

#endif
