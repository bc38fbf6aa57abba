#ifndef BREVANTIS_ASN1_VALUES_SRC_UTIL_READ_VALUE_H
#define BREVANTIS_ASN1_VALUES_SRC_UTIL_READ_VALUE_H

namespace Brevantis::ASN1 {

/// The value of a record, which is part of another.
template <class Traits, class Value>
Value readValue(const typename Traits::ASN1_T& record) {
    Value value;
    Traits::get(record, value);
    return value;
}

} // namespace Brevantis::ASN1

#endif
