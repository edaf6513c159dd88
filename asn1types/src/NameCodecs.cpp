// NameCodecs.cpp: descriptor graphs of the name types without table
// constraints (see NameCodecs.h).
#include "NameCodecs.h"

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace Korvex {
namespace ASN1 {
namespace names {

namespace {

using Asn1Engine::MemberDesc;
using Asn1Engine::TypeDesc;

// The copies made so far, by original descriptor, under a lock. A copy never
// changes or goes away once made.
class UntabledGraphs {
 public:
  TypeDesc const* get(TypeDesc const* generated) {
    std::lock_guard<std::mutex> lock(m_mutex);
    return copy(generated);
  }

 private:
  TypeDesc const* copy(TypeDesc const* d) {
    if (!d) return nullptr;
    auto found = m_copies.find(d);
    if (found != m_copies.end()) return found->second;
    m_types.emplace_back(new TypeDesc(*d));
    TypeDesc* out = m_types.back().get();
    // Registered before descending, so that a type reaching itself gets the
    // copy under construction.
    m_copies[d] = out;
    out->inner = copy(d->inner);
    if (d->members && d->memberCount) {
      m_members.emplace_back(new MemberDesc[d->memberCount]);
      MemberDesc* members = m_members.back().get();
      for (unsigned i = 0; i < d->memberCount; ++i) {
        members[i] = d->members[i];
        members[i].table = nullptr;  // the open type keeps its bytes
        members[i].type = copy(d->members[i].type);
      }
      out->members = members;
    }
    return out;
  }

  std::mutex m_mutex;
  std::map<TypeDesc const*, TypeDesc*> m_copies;
  std::vector<std::unique_ptr<TypeDesc>> m_types;
  std::vector<std::unique_ptr<MemberDesc[]>> m_members;
};

UntabledGraphs& graphs() {
  // Never destroyed: values encoded or decoded during exit still find their
  // descriptors.
  static UntabledGraphs* const instance = new UntabledGraphs();
  return *instance;
}

}  // namespace

Asn1Engine::TypeDesc const* untabled(Asn1Engine::TypeDesc const* generated) {
  return graphs().get(generated);
}

}  // namespace names
}  // namespace ASN1
}  // namespace Korvex
