// objid.cpp: ASN1TObjId and ASN1TObjId64.
#include <korvex/asn1rt/ASN1TObjId.h>

#include <type_traits>

// The wrappers must stay usable wherever their records are.
static_assert(sizeof(ASN1TObjId) == sizeof(ASN1OBJID), "ASN1TObjId adds no data");
static_assert(sizeof(ASN1TObjId64) == sizeof(ASN1OBJID64), "ASN1TObjId64 adds no data");
static_assert(std::is_standard_layout<ASN1TObjId>::value, "ASN1TObjId keeps the record layout");

namespace {

constexpr int kDoesNotFit = -1;

// Assign copies `count` arcs of any width into `dest`, or empties it when
// they do not fit. Arcs are checked before anything is written, so a source
// that aliases the destination is read whole.
template <typename Dest, typename Arc>
int Assign(Dest* dest, ASN1UINT count, const Arc* arcs) {
  using DestArc = typename std::remove_reference<decltype(dest->subid[0])>::type;
  bool fits = count <= ASN_K_MAXSUBIDS && (count == 0 || arcs != nullptr);
  for (ASN1UINT i = 0; fits && i < count; ++i) {
    fits = static_cast<ASN1UINT64>(arcs[i]) <= static_cast<ASN1UINT64>(static_cast<DestArc>(-1));
  }
  if (!fits) {
    dest->numids = 0;
    return kDoesNotFit;
  }
  if (static_cast<const void*>(arcs) != static_cast<const void*>(dest->subid)) {
    for (ASN1UINT i = 0; i < count; ++i) dest->subid[i] = static_cast<DestArc>(arcs[i]);
  }
  dest->numids = count;
  return 0;
}

template <typename Left, typename Right>
bool SameArcs(Left const& a, Right const& b) {
  if (a.numids != b.numids || a.numids > ASN_K_MAXSUBIDS) return false;
  for (ASN1UINT i = 0; i < a.numids; ++i) {
    if (a.subid[i] != b.subid[i]) return false;
  }
  return true;
}

}  // namespace

ASN1TObjId::ASN1TObjId() : ASN1OBJID() {}
ASN1TObjId::ASN1TObjId(ASN1UINT count, const ASN1UINT* subids) : ASN1OBJID() { set(count, subids); }
ASN1TObjId::ASN1TObjId(const ASN1OBJID& oid) : ASN1OBJID() { set(oid); }
ASN1TObjId::ASN1TObjId(const ASN1TObjId& oid) : ASN1OBJID() { set(oid); }
ASN1TObjId::ASN1TObjId(const ASN1OBJID64& oid) : ASN1OBJID() { set(oid); }

ASN1TObjId& ASN1TObjId::operator=(const ASN1OBJID& rhs) {
  set(rhs);
  return *this;
}
ASN1TObjId& ASN1TObjId::operator=(const ASN1TObjId& rhs) {
  set(rhs);
  return *this;
}
ASN1TObjId& ASN1TObjId::operator=(const ASN1OBJID64& rhs) {
  set(rhs);
  return *this;
}

int ASN1TObjId::set(ASN1UINT count, const ASN1UINT* subids) { return Assign(this, count, subids); }
int ASN1TObjId::set(const ASN1OBJID& oid) { return Assign(this, oid.numids, oid.subid); }
int ASN1TObjId::set(const ASN1OBJID64& oid) { return Assign(this, oid.numids, oid.subid); }

bool ASN1TObjId::operator==(const ASN1OBJID& rhs) const { return SameArcs(*this, rhs); }

ASN1TObjId64::ASN1TObjId64() : ASN1OBJID64() {}
ASN1TObjId64::ASN1TObjId64(ASN1UINT count, const ASN1UINT64* subids) : ASN1OBJID64() {
  set(count, subids);
}
ASN1TObjId64::ASN1TObjId64(const ASN1OBJID64& oid) : ASN1OBJID64() { set(oid); }
ASN1TObjId64::ASN1TObjId64(const ASN1TObjId64& oid) : ASN1OBJID64() { set(oid); }
ASN1TObjId64::ASN1TObjId64(const ASN1OBJID& oid) : ASN1OBJID64() { set(oid); }

ASN1TObjId64& ASN1TObjId64::operator=(const ASN1OBJID64& rhs) {
  set(rhs);
  return *this;
}
ASN1TObjId64& ASN1TObjId64::operator=(const ASN1TObjId64& rhs) {
  set(rhs);
  return *this;
}
ASN1TObjId64& ASN1TObjId64::operator=(const ASN1OBJID& rhs) {
  set(rhs);
  return *this;
}

int ASN1TObjId64::set(ASN1UINT count, const ASN1UINT64* subids) {
  return Assign(this, count, subids);
}
int ASN1TObjId64::set(const ASN1OBJID64& oid) { return Assign(this, oid.numids, oid.subid); }
int ASN1TObjId64::set(const ASN1OBJID& oid) { return Assign(this, oid.numids, oid.subid); }

bool ASN1TObjId64::operator==(const ASN1OBJID64& rhs) const { return SameArcs(*this, rhs); }
