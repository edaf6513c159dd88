// asn1_tree.cpp: the element walker behind DumpAsn1Tree.
#include "asn1_tree.h"

#include <cctype>
#include <cstdio>

#include "asn1_names.h"
#include "asn1_reader.h"
#include "asn1_text.h"

namespace adestool {

namespace {

constexpr size_t kHexPreviewBytes = 64;
constexpr size_t kTextPreviewBytes = 256;

// "1 byte", "2 bytes".
std::string Bytes(size_t n) { return std::to_string(n) + (n == 1 ? " byte" : " bytes"); }

// "1 unused bit", "5 unused bits".
std::string UnusedBits(unsigned n) {
  return std::to_string(n) + (n == 1 ? " unused bit" : " unused bits");
}

bool IsPadding(uint8_t c) {
  return c == 0 || c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

// Universal types whose natural form is constructed (X.690 8.9-8.12, 8.18,
// 8.20-8.21 for CHARACTER STRING).
bool NaturallyConstructed(ASN1UINT number) {
  return number == ASN_ID_SEQ || number == ASN_ID_SET || number == ASN_ID_EXTERN ||
         number == ASN_ID_EPDV || number == 29;
}

// Restricted character strings shown as byte text; UTF8String as UTF-8.
bool IsByteString(ASN1UINT number) {
  switch (number) {
    case ASN_ID_OBJDSC:
    case ASN_ID_UTF8String:
    case 14:  // TIME
    case ASN_ID_NumericString:
    case ASN_ID_PrintableString:
    case ASN_ID_TeletexString:
    case ASN_ID_VideotexString:
    case ASN_ID_IA5String:
    case ASN_ID_GraphicString:
    case ASN_ID_VisibleString:
    case ASN_ID_GeneralString:
    case 31:  // DATE
    case 32:  // TIME-OF-DAY
    case 33:  // DATE-TIME
    case 34:  // DURATION
    case 35:  // OID-IRI
    case 36:  // RELATIVE-OID-IRI
      return true;
    default:
      return false;
  }
}

std::string DottedOid(const ASN1OBJID& oid) {
  std::string text;
  for (ASN1UINT i = 0; i < oid.numids; ++i) {
    if (i) text.push_back('.');
    text += std::to_string(oid.subid[i]);
  }
  return text;
}

class TreeWalker {
 public:
  TreeWalker(const uint8_t* data, size_t size) : reader_(data, size), data_(data), size_(size) {
    size_t digits = std::to_string(size).size();
    width_ = static_cast<int>(digits < 4 ? 4 : digits);
  }

  bool DumpAll(std::string* out, DumpFailure* failure) {
    size_t pos = 0;
    size_t nonPadding = 0;  // the bytes of [pos, nonPadding) are padding
    bool first = true;
    while (pos < size_) {
      if (!first) {
        // The first byte at or after pos that is not padding; remembered so
        // that a long run of zeros is scanned once, not once per element.
        if (nonPadding < pos) nonPadding = pos;
        while (nonPadding < size_ && IsPadding(data_[nonPadding])) ++nonPadding;
        if (nonPadding == size_) {
          LineStart(out, pos, 0, 0);
          *out += "<trailing padding: " + Bytes(size_ - pos) + " of zeros or whitespace>\n";
          return true;
        }
      }
      size_t next = pos;
      if (!Element(pos, size_, 0, out, failure, &next)) return false;
      pos = next;
      first = false;
    }
    return true;
  }

 private:
  static void Fail(DumpFailure* failure, size_t offset, const std::string& what) {
    if (!failure->what.empty()) return;  // the first fault is the one reported
    failure->offset = offset;
    failure->what = what;
  }

  void LineStart(std::string* out, size_t offset, size_t headerLength, int depth) const {
    char buf[48];
    int n = std::snprintf(buf, sizeof buf, "%*zu", width_, offset);
    out->append(buf, static_cast<size_t>(n));
    // "+HL" in three columns, blank when the header could not be read.
    if (headerLength) {
      n = std::snprintf(buf, sizeof buf, "+%-2zu", headerLength);
      out->append(buf, static_cast<size_t>(n));
    } else {
      out->append("   ");
    }
    out->append(" ");
    out->append(static_cast<size_t>(depth) * 2, ' ');
  }

  // Elements prints the elements of [begin, end). With untilEoc the run ends
  // at end-of-contents octets 00 00 (consumed); owner is then the offset of
  // the indefinite-length element that must be closed.
  bool Elements(size_t begin, size_t end, bool untilEoc, size_t owner, const std::string& ownerTag,
                int depth, std::string* out, DumpFailure* failure, size_t* next) {
    size_t pos = begin;
    for (;;) {
      if (untilEoc) {
        if (end - pos >= 2 && data_[pos] == 0 && data_[pos + 1] == 0) {
          *next = pos + 2;
          return true;
        }
        if (pos >= end) {
          LineStart(out, pos, 0, depth);
          *out += "<no end-of-contents octets>\n";
          Fail(failure, owner, ownerTag + " of indefinite length has no end-of-contents octets");
          return false;
        }
      } else if (pos >= end) {
        *next = end;
        return true;
      }
      size_t after = pos;
      if (!Element(pos, end, depth, out, failure, &after)) return false;
      pos = after;
    }
  }

  // Element prints the element at offset, reading nothing at or past limit,
  // and sets *next to the offset after it.
  bool Element(size_t offset, size_t limit, int depth, std::string* out, DumpFailure* failure,
               size_t* next) {
    Asn1Header h;
    int stat = reader_.ReadHeader(offset, limit, &h);
    if (stat != ASN_OK) {
      std::string what = DescribeHeaderFailure(data_, offset, limit, stat);
      if (stat == ASN_E_ENDOFBUF && limit < size_) {
        what = "header runs past the end of its enclosing element";
      }
      LineStart(out, offset, 0, depth);
      *out += "<" + what + ">\n";
      Fail(failure, offset, what);
      return false;
    }
    if (depth >= kMaxTreeDepth) {
      LineStart(out, offset, h.headerLength, depth);
      *out += "<nesting deeper than " + std::to_string(kMaxTreeDepth) + " levels>\n";
      Fail(failure, offset, "nesting deeper than " + std::to_string(kMaxTreeDepth) + " levels");
      return false;
    }
    const bool universal = h.tagClass() == TM_UNIV;
    std::string tag = TagName(h.tag);
    if (universal && h.constructed() && !NaturallyConstructed(h.number())) {
      tag += ", constructed";
    } else if (universal && !h.constructed() && NaturallyConstructed(h.number())) {
      tag += ", primitive";
    }
    const size_t contents = offset + h.headerLength;
    LineStart(out, offset, h.headerLength, depth);
    if (h.indefinite) {
      *out += tag + " (indefinite)\n";
      return Elements(contents, limit, true, offset, TagName(h.tag), depth + 1, out, failure, next);
    }
    *out += tag + " (" + std::to_string(h.length) + ")";
    const size_t available = limit - contents;
    if (h.length > available) {
      *out += " <truncated: " + std::to_string(available) + " of " + Bytes(h.length) + ">\n";
      if (limit == size_) {
        Fail(failure, offset,
             TagName(h.tag) + " truncated: " + std::to_string(available) + " of " +
                 std::to_string(h.length) + (h.length == 1 ? " content byte" : " content bytes") +
                 " present");
      } else {
        Fail(failure, offset,
             TagName(h.tag) + " of " + std::to_string(h.length) +
                 (h.length == 1 ? " content byte" : " content bytes") +
                 " runs past the end of its enclosing element (" + Bytes(available) + " left)");
      }
      if (h.constructed()) {
        // Show the children that are there; the cut one reports itself.
        size_t ignored;
        Elements(contents, limit, false, offset, tag, depth + 1, out, failure, &ignored);
      }
      return false;
    }
    const size_t end = contents + h.length;
    *next = end;
    if (h.constructed()) {
      *out += "\n";
      return Elements(contents, end, false, offset, tag, depth + 1, out, failure, next);
    }
    std::string nested;
    std::string value = PrimitiveValue(h, contents, depth, &nested);
    if (!value.empty()) *out += ": " + value;
    *out += "\n";
    *out += nested;
    return true;
  }

  // Encapsulated: the tree of [begin, end) when it is exactly one
  // well-formed element other than end-of-contents octets; empty otherwise.
  std::string Encapsulated(size_t begin, size_t end, int depth) {
    if (end - begin < 2 || (data_[begin] == 0 && data_[begin + 1] == 0)) return std::string();
    std::string tree;
    DumpFailure ignored;
    size_t next = begin;
    if (!Element(begin, end, depth, &tree, &ignored, &next) || next != end) return std::string();
    return tree;
  }

  // PrimitiveValue: the text after "TAG (LENGTH): " of a primitive element
  // (empty for none); an encapsulated tree goes to *nested.
  std::string PrimitiveValue(const Asn1Header& h, size_t contents, int depth, std::string* nested) {
    const uint8_t* p = data_ + contents;
    const size_t n = h.length;
    if (h.tagClass() != TM_UNIV) {
      if (n == 0) return "(empty)";
      bool printable = true;
      for (size_t i = 0; i < n && printable; ++i) printable = p[i] >= 0x20 && p[i] <= 0x7E;
      return printable ? QuoteBytes(p, n, false, kTextPreviewBytes)
                       : HexPreview(p, n, kHexPreviewBytes);
    }
    const ASN1UINT number = h.number();
    switch (number) {
      case ASN_ID_EOC:
        return n == 0 ? std::string() : HexPreview(p, n, kHexPreviewBytes);
      case ASN_ID_BOOL: {
        bool value = false;
        if (reader_.Boolean(contents, n, &value) != ASN_OK) {
          return "<invalid: " + Bytes(n) + " of contents> " + HexPreview(p, n, kHexPreviewBytes);
        }
        if (p[0] == 0x00) return "FALSE";
        return p[0] == 0xFF ? "TRUE" : "TRUE (" + HexPreview(p, 1, 1) + ")";
      }
      case ASN_ID_INT:
      case ASN_ID_ENUM:
        return IntegerValue(contents, n);
      case ASN_ID_BITSTR: {
        if (n == 0) return "<invalid: no unused-bits octet>";
        const unsigned unused = p[0];
        if (unused > 7 || (n == 1 && unused != 0)) {
          return "<invalid: " + UnusedBits(unused) + "> " + HexPreview(p, n, kHexPreviewBytes);
        }
        if (n == 1) return "(empty)";
        if (unused == 0) {
          *nested = Encapsulated(contents + 1, contents + n, depth + 1);
          if (!nested->empty()) return "encapsulates";
        }
        std::string text = HexPreview(p + 1, n - 1, kHexPreviewBytes);
        if (unused) text += ", " + UnusedBits(unused);
        return text;
      }
      case ASN_ID_OCTSTR: {
        if (n == 0) return "(empty)";
        *nested = Encapsulated(contents, contents + n, depth + 1);
        if (!nested->empty()) return "encapsulates";
        return HexPreview(p, n, kHexPreviewBytes);
      }
      case ASN_ID_NULL:
        return n == 0 ? std::string()
                      : "<invalid: " + Bytes(n) + " of contents> " +
                            HexPreview(p, n, kHexPreviewBytes);
      case ASN_ID_OBJID: {
        ASN1OBJID oid;
        if (reader_.ObjectId(contents, n, &oid) != ASN_OK) {
          return "<invalid> " + HexPreview(p, n, kHexPreviewBytes);
        }
        std::string dotted = DottedOid(oid);
        std::string name = OidName(dotted);
        return name.empty() ? dotted : dotted + " (" + name + ")";
      }
      case ASN_ID_UTCTime:
      case ASN_ID_GeneralTime: {
        std::string text = QuoteBytes(p, n, false, kTextPreviewBytes);
        std::string reading = DescribeTime(number == ASN_ID_UTCTime, p, n);
        return reading.empty() ? text : text + " (" + reading + ")";
      }
      case ASN_ID_BMPString:
      case ASN_ID_UniversalString: {
        std::u32string chars;
        int stat = number == ASN_ID_BMPString ? reader_.Bmp(contents, n, &chars)
                                              : reader_.Universal(contents, n, &chars);
        if (stat != ASN_OK) {
          return "<invalid: " + Bytes(n) + " of contents> " + HexPreview(p, n, kHexPreviewBytes);
        }
        return QuoteCodePoints(chars, kTextPreviewBytes);
      }
      default:
        break;
    }
    if (IsByteString(number)) {
      return QuoteBytes(p, n, number == ASN_ID_UTF8String, kTextPreviewBytes);
    }
    // REAL, RELATIVE-OID, the constructed types in primitive form, unknown
    // numbers: the octets.
    return n == 0 ? "(empty)" : HexPreview(p, n, kHexPreviewBytes);
  }

  // INTEGER/ENUMERATED: decimal up to 8 octets, else the runtime's hex text.
  std::string IntegerValue(size_t contents, size_t n) {
    if (n == 0) return "<invalid: no content octets>";
    if (n <= 8) {
      long long v = 0;
      if (reader_.Int64(contents, n, &v) == ASN_OK) return std::to_string(v);
    }
    std::string text;
    if (reader_.BigInteger(contents, n, &text) != ASN_OK) {
      return "<invalid> " + HexPreview(data_ + contents, n, kHexPreviewBytes);
    }
    // "0x1f" / "-0x80": upper-case digits, cut like other hex past 64 bytes.
    size_t digits = text.find('x');
    digits = digits == std::string::npos ? 0 : digits + 1;
    for (size_t i = digits; i < text.size(); ++i) {
      text[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
    }
    if (text.size() - digits > kHexPreviewBytes * 2) {
      text.resize(digits + kHexPreviewBytes * 2);
      text += " ... (" + std::to_string(n) + " bytes)";
    }
    return text;
  }

  Asn1Reader reader_;
  const uint8_t* data_;
  size_t size_;
  int width_;
};

}  // namespace

bool DumpAsn1Tree(const uint8_t* data, size_t size, std::string* out, DumpFailure* failure) {
  if (size == 0) return true;
  if (size > 0x7FFFFFFF) {
    // The runtime's offsets and lengths are 32-bit signed.
    failure->offset = 0;
    failure->what = "input larger than 2 GiB";
    return false;
  }
  TreeWalker walker(data, size);
  return walker.DumpAll(out, failure);
}

}  // namespace adestool
