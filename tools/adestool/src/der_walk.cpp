// der_walk.cpp: DerWalker over Asn1Reader.
#include "der_walk.h"

#include <algorithm>
#include <utility>

#include "asn1_names.h"
#include "tool_error.h"

namespace adestool {

namespace {

// Nesting limit while looking for the end of an indefinite length.
constexpr int kMaxDepth = 64;

}  // namespace

DerWalker::DerWalker(const std::vector<uint8_t>& bytes, std::string name)
    : bytes_(bytes), name_(std::move(name)), reader_(bytes.data(), bytes.size()) {}

void DerWalker::Fail(size_t offset, const std::string& what) const {
  throw FileError(name_, "offset " + std::to_string(offset) + ": " + what);
}

DerElement DerWalker::Read(size_t offset, size_t limit, std::string_view what) {
  const std::string w(what);
  if (offset >= limit) Fail(offset, w + " missing");
  Asn1Header header;
  int stat = reader_.ReadHeader(offset, limit, &header);
  if (stat != 0) {
    Fail(offset, w + ": " + DescribeHeaderFailure(bytes_.data(), offset, limit, stat));
  }
  DerElement e;
  e.offset = offset;
  e.headerLength = header.headerLength;
  e.indefinite = header.indefinite;
  e.tag = header.tag;
  if (e.tag == 0 && !e.indefinite && header.length == 0) Fail(offset, w + " missing");
  if (header.indefinite) {
    if (!header.constructed()) Fail(offset, w + ": indefinite length on a primitive element");
    e.contentEnd = FindEnd(e.contentOffset(), limit, 0, what);
    e.end = e.contentEnd + 2;
  } else {
    const size_t available = limit - e.contentOffset();
    if (header.length > available) {
      Fail(offset, w + " truncated: " + std::to_string(available) + " of " +
                       std::to_string(header.length) + " content bytes present");
    }
    e.contentEnd = e.contentOffset() + header.length;
    e.end = e.contentEnd;
  }
  return e;
}

size_t DerWalker::FindEnd(size_t offset, size_t limit, int depth, std::string_view what) {
  if (depth >= kMaxDepth) Fail(offset, std::string(what) + ": nesting deeper than 64 levels");
  while (true) {
    if (offset + 2 <= limit && bytes_[offset] == 0 && bytes_[offset + 1] == 0) return offset;
    if (offset >= limit) Fail(offset, std::string(what) + ": no end-of-contents octets");
    Asn1Header header;
    int stat = reader_.ReadHeader(offset, limit, &header);
    if (stat != 0) {
      Fail(offset,
           std::string(what) + ": " + DescribeHeaderFailure(bytes_.data(), offset, limit, stat));
    }
    const size_t content = offset + header.headerLength;
    if (header.indefinite) {
      offset = FindEnd(content, limit, depth + 1, what) + 2;
    } else {
      if (header.length > limit - content) {
        Fail(offset, std::string(what) + ": element truncated: " + std::to_string(limit - content) +
                         " of " + std::to_string(header.length) + " content bytes present");
      }
      offset = content + header.length;
    }
  }
}

DerElement DerWalker::ReadTop(std::string_view what) {
  DerElement e = Read(0, bytes_.size(), what);
  if (e.end != bytes_.size()) {
    Fail(e.end, std::to_string(bytes_.size() - e.end) + " bytes after the " + std::string(what));
  }
  return e;
}

std::vector<DerElement> DerWalker::Children(const DerElement& parent, std::string_view what) {
  if (!parent.constructed()) Fail(parent.offset, std::string(what) + ": not constructed");
  std::vector<DerElement> children;
  size_t offset = parent.contentOffset();
  while (offset < parent.contentEnd) {
    children.push_back(Read(offset, parent.contentEnd, what));
    offset = children.back().end;
  }
  return children;
}

void DerWalker::Expect(const DerElement& element, ASN1TAG tag, std::string_view what) const {
  if (element.tag != tag) {
    Fail(element.offset,
         std::string(what) + ": expected " + TagName(tag) + ", found " + TagName(element.tag));
  }
}

std::vector<uint8_t> DerWalker::Slice(const DerElement& element) const {
  return std::vector<uint8_t>(bytes_.begin() + element.offset, bytes_.begin() + element.end);
}

std::vector<uint8_t> DerWalker::Content(const DerElement& element) const {
  return std::vector<uint8_t>(bytes_.begin() + element.contentOffset(),
                              bytes_.begin() + element.contentEnd);
}

bool DerWalker::ContentIs(const DerElement& element, const std::vector<uint8_t>& bytes) const {
  return element.contentLength() == bytes.size() &&
         std::equal(bytes.begin(), bytes.end(), bytes_.begin() + element.contentOffset());
}

std::string DerWalker::OidText(const DerElement& element) {
  Expect(element, kTagOid, "object identifier");
  ASN1OBJID oid;
  if (reader_.ObjectId(element.contentOffset(), element.contentLength(), &oid) != 0) {
    Fail(element.offset, "invalid OBJECT IDENTIFIER");
  }
  std::string text;
  for (ASN1UINT i = 0; i < oid.numids; ++i) {
    if (i) text += '.';
    text += std::to_string(oid.subid[i]);
  }
  return text;
}

}  // namespace adestool
