#ifndef BREVANTIS_ASN1_VALUES_UTIL_OPTIONAL_MEMBER_H
#define BREVANTIS_ASN1_VALUES_UTIL_OPTIONAL_MEMBER_H

#include <memory>

/// @file
/// Optional members of value classes: owned pointers, null when the member is absent.

/// Whether the standard library still has std::auto_ptr: libstdc++ does, libc++ has it on request.
#if !defined(_LIBCPP_VERSION) || defined(_LIBCPP_ENABLE_CXX17_REMOVED_AUTO_PTR)
#define BREVANTIS_ASN1_HAS_AUTO_PTR 1
#else
#define BREVANTIS_ASN1_HAS_AUTO_PTR 0
#endif

namespace Brevantis::ASN1 {

/// Sets an optional member from an optional argument: a copy of @p source, or nothing for null. The
/// old content stays until the copy has succeeded. A @p source that is the member itself changes
/// nothing.
/// @tparam Pointer std::unique_ptr or std::auto_ptr
/// @throws what copying the object throws
template <class Pointer>
void copy_to_member(Pointer& target, const typename Pointer::element_type* source) {
    if (source != target.get()) {
        target.reset(source != nullptr ? new typename Pointer::element_type(*source) : nullptr);
    }
}

/// As copy_to_member.
template <class T>
void copy_to_unique_ptr(std::unique_ptr<T>& target, const T* source) {
    copy_to_member(target, source);
}

#if BREVANTIS_ASN1_HAS_AUTO_PTR

// Kept: programs hold these pointers as std::auto_ptr. It is deprecated since C++11;
// its copies move, which is why value classes never copy one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

/// The pointer of an optional member.
template <class T>
using OptionalMember = std::auto_ptr<T>;

/// As copy_to_member.
template <class T>
void copy_to_auto_ptr(std::auto_ptr<T>& target, const T* source) {
    copy_to_member(target, source);
}

#pragma GCC diagnostic pop

#else

/// The pointer of an optional member.
template <class T>
using OptionalMember = std::unique_ptr<T>;

#endif

} // namespace Brevantis::ASN1

#endif
