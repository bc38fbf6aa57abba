#ifndef BREVANTIS_ASN1_VALUES_UTIL_WHOLE_ASSIGNMENT_H
#define BREVANTIS_ASN1_VALUES_UTIL_WHOLE_ASSIGNMENT_H

#include <type_traits>

/// @file
/// Assignment of values with several parts, all of them or none.

namespace Brevantis::ASN1 {

/// The copy assignment of values with several parts: all of them are copied before the first one is
/// replaced, so that the target stays as it was when a copy throws. Assigning a value to itself
/// changes nothing; pointers into it stay valid.
template <class Value>
Value& assignWhole(Value& target, const Value& source) {
    static_assert(std::is_nothrow_move_assignable_v<Value>);
    if (&target != &source) {
        target = Value(source);
    }
    return target;
}

} // namespace Brevantis::ASN1

#endif
