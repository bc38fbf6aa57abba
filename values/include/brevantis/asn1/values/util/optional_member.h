#ifndef BREVANTIS_ASN1_VALUES_UTIL_OPTIONAL_MEMBER_H
#define BREVANTIS_ASN1_VALUES_UTIL_OPTIONAL_MEMBER_H

#include <memory>

/// @file
/// Optional members of value classes: owned pointers, null when the member is absent.

namespace Brevantis::ASN1 {

// Kept: programs hold these pointers as std::auto_ptr. It is deprecated since C++11;
// its copies move, which is why value classes never copy one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

template <class T>
using OptionalMember = std::auto_ptr<T>;

/// Sets an optional member from an optional argument: a copy of @p source, or nothing for null. The
/// old content stays until the copy has succeeded. A @p source that is the member itself changes
/// nothing.
template <class T>
void copy_to_auto_ptr(std::auto_ptr<T>& target, const T* source) {
    if (source == target.get()) {
        return;
    }
    target.reset(source != nullptr ? new T(*source) : nullptr);
}

#pragma GCC diagnostic pop

} // namespace Brevantis::ASN1

#endif
