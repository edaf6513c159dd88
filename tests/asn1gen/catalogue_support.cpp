// catalogue_support.cpp: files, the real-data index and the round-trip check of
// the catalogue tests.
#include "catalogue_support.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace Korvex {
namespace Test {

namespace fs = std::filesystem;
using Asn1Engine::MemberDesc;
using Asn1Engine::TypeDesc;

Context::Context() { rtInitContext(&c_, nullptr); }
Context::~Context() { rtFreeContext(&c_); }
size_t Context::blocks() { return rtMemHeapBlockCount(&c_.pTypeMemHeap); }

std::string DottedOid(const ASN1OBJID& oid) {
  std::string out;
  for (ASN1UINT i = 0; i < oid.numids && i < ASN_K_MAXSUBIDS; ++i) {
    if (i) out += '.';
    out += std::to_string(oid.subid[i]);
  }
  return out;
}

Bytes ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

Bytes Base64(const std::string& text) {
  static const std::string kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  Bytes out;
  unsigned acc = 0;
  int bits = 0;
  for (char ch : text) {
    if (ch == '=' || ch == ' ' || ch == '\n' || ch == '\r' || ch == '\t') continue;
    size_t v = kAlphabet.find(ch);
    if (v == std::string::npos) return {};
    acc = (acc << 6) | static_cast<unsigned>(v);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      out.push_back(static_cast<unsigned char>(acc >> bits));
      acc &= (1u << bits) - 1;
    }
  }
  return out;
}

std::vector<Bytes> PemBlocks(const std::string& text) {
  std::vector<Bytes> blocks;
  size_t pos = 0;
  for (;;) {
    size_t begin = text.find("-----BEGIN ", pos);
    if (begin == std::string::npos) break;
    size_t body = text.find('\n', begin);
    size_t end = text.find("-----END ", begin);
    if (body == std::string::npos || end == std::string::npos || end < body) break;
    blocks.push_back(Base64(text.substr(body + 1, end - body - 1)));
    pos = end + 9;
  }
  return blocks;
}

std::vector<std::string> ListFiles(const std::string& dir) {
  std::vector<std::string> out;
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(dir, ec);
       !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
    if (it->is_regular_file()) out.push_back(fs::relative(it->path(), dir).generic_string());
  }
  std::sort(out.begin(), out.end());
  return out;
}

bool DirectoryExists(const std::string& dir) {
  std::error_code ec;
  return fs::is_directory(dir, ec);
}

namespace {

std::string Trim(const std::string& s) {
  size_t b = s.find_first_not_of(" \t");
  size_t e = s.find_last_not_of(" \t");
  return b == std::string::npos ? std::string() : s.substr(b, e - b + 1);
}

std::string Unquote(const std::string& s) {
  std::string t = Trim(s);
  if (t.size() >= 2 && t.front() == '`' && t.back() == '`') return t.substr(1, t.size() - 2);
  return t;
}

}  // namespace

std::vector<IndexEntry> ReadIndex(const std::string& indexPath) {
  std::ifstream in(indexPath);
  std::vector<IndexEntry> out;
  std::string line, section;
  while (std::getline(in, line)) {
    if (line.rfind("## ", 0) == 0) {
      section = Trim(line.substr(3));
      continue;
    }
    if (line.rfind("| `", 0) != 0 || section.empty()) continue;
    // | `file` | what (FORMAT, N bytes) | notes |
    std::vector<std::string> cells;
    std::stringstream ss(line.substr(1));
    std::string cell;
    while (std::getline(ss, cell, '|')) cells.push_back(cell);
    if (cells.size() < 3) continue;
    IndexEntry e;
    e.path = section + "/" + Unquote(cells[0]);
    std::string what = Trim(cells[1]);
    // The format is the last parenthesised group: "(DER, 14317 bytes)".
    size_t open = what.rfind(" (");
    size_t comma = what.rfind(", ");
    if (open != std::string::npos && comma != std::string::npos && comma > open) {
      e.format = what.substr(open + 2, comma - open - 2);
      e.what = what.substr(0, open);
    } else {
      e.what = what;
    }
    e.notes = Trim(cells[2]);
    out.push_back(e);
  }
  return out;
}

Bytes LoadEntry(const std::string& corpusDir, const IndexEntry& entry) {
  Bytes raw = ReadFile(corpusDir + "/" + entry.path);
  if (entry.format.rfind("PEM", 0) == 0) {
    std::vector<Bytes> blocks = PemBlocks(std::string(raw.begin(), raw.end()));
    return blocks.empty() ? Bytes() : blocks.front();
  }
  if (entry.format == "base64") return Base64(std::string(raw.begin(), raw.end()));
  return raw;
}

namespace {

const TypeDesc* Storage(const TypeDesc* d) {
  while (d->kind == Asn1Engine::kAlias || d->kind == Asn1Engine::kTagged) d = d->inner;
  return d;
}

bool Present(const TypeDesc* d, const void* rec, const MemberDesc& m) {
  if (m.presence < 0) return true;
  ASN1UINT word;
  std::memcpy(&word, static_cast<const unsigned char*>(rec) + d->off1 + 4u * (m.presence / 32),
              sizeof word);
  return (word >> (m.presence % 32)) & 1u;
}

template <typename T>
T Load(const void* base, unsigned offset) {
  T v;
  std::memcpy(&v, static_cast<const unsigned char*>(base) + offset, sizeof v);
  return v;
}

// Walks a decoded value and checks that every table-constrained open type whose
// key names an object with a type holds its typed value (X.682 10).
class TypedWalk {
 public:
  explicit TypedWalk(Outcome& o) : o_(o) {}

  void Value(const TypeDesc* d, const void* v, int depth) {
    if (!v || depth > 200 || !o_.broken.empty()) return;
    d = Storage(d);
    switch (d->kind) {
      case Asn1Engine::kSequence:
      case Asn1Engine::kSet:
        for (unsigned i = 0; i < d->memberCount; ++i) {
          const MemberDesc& m = d->members[i];
          if (!Present(d, v, m)) continue;
          const void* field = static_cast<const unsigned char*>(v) + m.offset;
          if (m.table) {
            Table(d, v, m, field, depth);
          } else {
            Value(m.type, field, depth + 1);
          }
        }
        return;
      case Asn1Engine::kChoice: {
        ASN1UINT t = Load<ASN1UINT>(v, d->off1);
        if (t < 1 || t > d->memberCount) return;
        const MemberDesc& m = d->members[t - 1];
        const void* field = static_cast<const unsigned char*>(v) + m.offset;
        if (m.flags & Asn1Engine::kByPointer) field = Load<const void*>(field, 0);
        Value(m.type, field, depth + 1);
        return;
      }
      case Asn1Engine::kSequenceOf:
      case Asn1Engine::kSetOf:
        Elements(d, v, [&](const void* e) { Value(d->inner, e, depth + 1); });
        return;
      default:
        return;
    }
  }

 private:
  template <typename Fn>
  void Elements(const TypeDesc* list, const void* v, Fn fn) {
    if (list->flags & Asn1Engine::kListForm) {
      for (const rtDListNode* n = static_cast<const rtDList*>(v)->head; n; n = n->next) {
        fn(n->data);
      }
      return;
    }
    ASN1UINT count = Load<ASN1UINT>(v, list->off1);
    const unsigned char* elems = Load<const unsigned char*>(v, list->off2);
    for (ASN1UINT i = 0; elems && i < count; ++i)
      fn(elems + static_cast<size_t>(i) * list->inner->size);
  }

  void Table(const TypeDesc* d, const void* rec, const MemberDesc& m, const void* field,
             int depth) {
    const Asn1Engine::TableRef* t = m.table;
    const MemberDesc& key = d->members[t->keyMember];
    const Asn1Engine::InfoObject* obj = nullptr;
    if (Present(d, rec, key)) {
      const void* k = static_cast<const unsigned char*>(rec) + key.offset;
      obj = t->set->keyKind == Asn1Engine::kKeyObjectId
                ? t->set->lookup(*static_cast<const ASN1OBJID*>(k))
                : t->set->lookup(Load<ASN1INT>(k, 0));
    }
    const TypeDesc* type = obj && obj->types ? obj->types[t->field] : nullptr;
    auto one = [&](const void* p) {
      const Asn1Object* o = static_cast<const Asn1Object*>(p);
      if (!type || !o->numocts) {
        ++o_.untyped;
        return;
      }
      if (!o->decoded) {
        // Left raw: then its bytes must not be a value of the object's type.
        Context c;
        void* v = nullptr;
        if (obj->decode(c.get(), o->data, o->numocts, &v, t->field) == 0) {
          obj->free(c.get(), v, t->field);
          o_.broken = "a table-constrained open type with a known key has no typed value";
        }
        ++o_.unfit;
        return;
      }
      ++o_.typed;
      Value(type, o->decoded, depth + 1);
    };
    if (!t->viaList) {
      one(field);
      return;
    }
    Elements(Storage(m.type), field, one);
  }

  Outcome& o_;
};

int Decode(Context& ctx, const TypeDesc* desc, const unsigned char* p, size_t n, void* value) {
  rtErrReset(&ctx.get()->errInfo);
  int stat = xd_setp(ctx.get(), p, static_cast<int>(n), nullptr, nullptr);
  if (stat < 0) return stat;
  return Asn1Engine::decode(ctx.get(), desc, value, ASN1EXPL, 0);
}

int Encode(const TypeDesc* desc, void* value, Bytes* out) {
  Context enc;
  int len = xe_setp(enc.get(), nullptr, 0);
  if (len >= 0) len = Asn1Engine::encode(enc.get(), desc, value, ASN1EXPL);
  if (len < 0) return len;
  const unsigned char* p = xe_getp(enc.get());
  out->assign(p, p + len);
  return 0;
}

}  // namespace

Outcome RoundTrip(const TypeDesc* desc, const Bytes& input) {
  Outcome o;
  Context ctx;
  const size_t before = ctx.blocks();
  std::vector<unsigned char> value(desc->size), again(desc->size), copy(desc->size);
  o.status = Decode(ctx, desc, input.data(), input.size(), value.data());
  if (o.status == 0) {
    o.consumed = ctx.get()->buffer.byteIndex;
    TypedWalk(o).Value(desc, value.data(), 0);
    int stat = Encode(desc, value.data(), &o.der);
    if (stat < 0) {
      o.broken = "the decoded value does not encode: status " + std::to_string(stat);
    } else {
      o.exact = o.consumed <= input.size() &&
                o.der == Bytes(input.begin(), input.begin() + static_cast<long>(o.consumed));
      Bytes der2, der3;
      if (Decode(ctx, desc, o.der.data(), o.der.size(), again.data()) != 0) {
        o.broken = "our encoding does not decode";
      } else if (Encode(desc, again.data(), &der2) != 0 || der2 != o.der) {
        o.broken = "our encoding does not encode to itself";
      } else if (Asn1Engine::copy(ctx.get(), desc, value.data(), copy.data()) != 0) {
        o.broken = "the copy failed";
      } else if (Encode(desc, copy.data(), &der3) != 0 || der3 != o.der) {
        o.broken = "the copy encodes differently";
      }
    }
    Asn1Engine::free(ctx.get(), desc, copy.data());
    Asn1Engine::free(ctx.get(), desc, again.data());
  }
  Asn1Engine::free(ctx.get(), desc, value.data());
  if (ctx.blocks() != before && o.broken.empty()) o.broken = "free left heap blocks";
  return o;
}

bool StructurallyDer(const unsigned char* p, size_t n) {
  struct Frame {
    const unsigned char* p;
    size_t n;
  };
  std::vector<Frame> stack{{p, n}};
  while (!stack.empty()) {
    Frame f = stack.back();
    stack.pop_back();
    while (f.n) {
      unsigned char id = f.p[0];
      if ((id & 0x1F) == 0x1F) return false;  // none of our types has a high tag number
      if (f.n < 2) return false;
      size_t i = 1, len = f.p[i++];
      if (len == 0x80) return false;
      if (len & 0x80) {
        size_t octets = len & 0x7F;
        if (octets > 4 || i + octets > f.n || f.p[i] == 0) return false;
        len = 0;
        for (size_t k = 0; k < octets; ++k) len = (len << 8) | f.p[i++];
        if (len < 128) return false;
      }
      if (len > f.n - i) return false;
      const unsigned char* c = f.p + i;
      bool constructed = (id & 0x20) != 0;
      // Universal strings (and BIT/OCTET STRING) are primitive in DER (X.690 10.2).
      if (constructed &&
          (id == 0x23 || id == 0x24 || (id >= 0x2C && id <= 0x3E && id != 0x30 && id != 0x31))) {
        return false;
      }
      if ((id == 0x02 || id == 0x0A) &&
          (len == 0 ||
           (len > 1 && ((c[0] == 0 && !(c[1] & 0x80)) || (c[0] == 0xFF && (c[1] & 0x80)))))) {
        return false;
      }
      if (id == 0x01 && (len != 1 || (c[0] != 0 && c[0] != 0xFF))) return false;
      if (constructed) stack.push_back({c, len});
      f.p += i + len;
      f.n -= i + len;
    }
  }
  return true;
}

namespace {

// One element: its identifier and length octets and its contents.
struct Tlv {
  const unsigned char* head;
  size_t headLength;
  const unsigned char* contents;
  size_t length;
  bool constructed;
};

// The elements of a definite-length encoding; false when it is not one.
bool Split(const unsigned char* p, size_t n, std::vector<Tlv>* out) {
  while (n) {
    if (n < 2 || (p[0] & 0x1F) == 0x1F) return false;
    size_t i = 1, len = p[i++];
    if (len == 0x80) return false;
    if (len & 0x80) {
      size_t octets = len & 0x7F;
      if (octets > 4 || i + octets > n) return false;
      len = 0;
      for (size_t k = 0; k < octets; ++k) len = (len << 8) | p[i++];
    }
    if (len > n - i) return false;
    out->push_back({p, i, p + i, len, (p[0] & 0x20) != 0});
    p += i + len;
    n -= i + len;
  }
  return true;
}

bool SameElements(const unsigned char* a, size_t an, const unsigned char* b, size_t bn, int depth) {
  if (an == bn && std::memcmp(a, b, an) == 0) return true;
  if (depth > 64) return false;
  std::vector<Tlv> x, y;
  if (!Split(a, an, &x) || !Split(b, bn, &y) || x.size() != y.size()) return false;
  std::vector<bool> used(y.size(), false);
  for (size_t i = 0; i < x.size(); ++i) {
    const Tlv& e = x[i];
    bool found = false;
    // The same position first: only SET and SET OF members move.
    for (size_t step = 0; step <= y.size() && !found; ++step) {
      size_t k = step == 0 ? i : step - 1;
      const Tlv& f = y[k];
      if (used[k] || e.head[0] != f.head[0] || e.length != f.length ||
          e.headLength != f.headLength) {
        continue;
      }
      bool same = e.constructed
                      ? SameElements(e.contents, e.length, f.contents, f.length, depth + 1)
                      : std::memcmp(e.contents, f.contents, e.length) == 0;
      if (same) found = used[k] = true;
    }
    if (!found) return false;
  }
  return true;
}

}  // namespace

bool SameUpToOrder(const Bytes& a, const Bytes& b) {
  return SameElements(a.data(), a.size(), b.data(), b.size(), 0);
}

}  // namespace Test
}  // namespace Korvex
