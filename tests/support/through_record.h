#ifndef TESTS_SUPPORT_THROUGH_RECORD_H
#define TESTS_SUPPORT_THROUGH_RECORD_H

#include <brevantis/asn1/values/util/context_handle.h>

namespace tests {

/// What is left of a value on its way into a record and out again.
template <class Traits, class Value>
Value throughRecord(const Value& value) {
    Brevantis::ASN1::ScopedContext context;
    typename Traits::ASN1_T record;
    Value read;
    Traits::set(context.get(), record, value);
    Traits::get(record, read);
    return read;
}

} // namespace tests

#endif
