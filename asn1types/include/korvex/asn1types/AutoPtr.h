// korvex/asn1types/AutoPtr.h: deep copy of optional members.
//
// Value classes hold each OPTIONAL member as an owned heap object behind a
// std::unique_ptr (null = absent); put_<field>(T const*) and the copy
// constructors store through copy_to_auto_ptr, which keeps its historical
// name from the std::auto_ptr days.
#ifndef KORVEX_ASN1TYPES_AUTOPTR_H
#define KORVEX_ASN1TYPES_AUTOPTR_H

#include <memory>

namespace Korvex {
namespace ASN1 {

// copy_to_auto_ptr makes dst hold a deep copy of *src (new T(*src); for a list
// type every element is copy-constructed, in order), or nothing when src is
// null; the object dst held before is deleted. src may point to the object dst
// holds (nothing changes) or into it (the copy is made before the delete). If
// the copy throws, the partial copy is destroyed and dst is unchanged.
template <class T>
void copy_to_auto_ptr(std::unique_ptr<T>& dst, T const* src) {
  if (src == dst.get()) return;
  std::unique_ptr<T> copy(src ? new T(*src) : nullptr);
  dst.swap(copy);
}

// copy_to_auto_ptr(dst, src) for two owners: the copy-constructor and
// assignment form.
template <class T>
void copy_to_auto_ptr(std::unique_ptr<T>& dst, std::unique_ptr<T> const& src) {
  copy_to_auto_ptr(dst, static_cast<T const*>(src.get()));
}

}  // namespace ASN1
}  // namespace Korvex

#endif
