#ifndef TESTS_SUPPORT_VALUE_WALK_H
#define TESTS_SUPPORT_VALUE_WALK_H

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/object_identifier.h>

namespace tests {

/// Is told what a walk comes across.
class ValueVisitor {
public:
    virtual ~ValueVisitor() = default;
    /// A value, before the values in it.
    virtual void value(const asn1data::TypeDescription& type, const void* value) = 0;
    /// An open value that a table constraint stands over.
    /// @param object what its identifier selects, null when that is unknown
    /// @param slot the raw element, with its typed form if there is one
    virtual void openValue(const ASN1TObjId& identifier, const asn1data::ObjectDescription* object,
                           const Asn1TObject& slot) = 0;
};

/// Goes through a value and all the values in it, typed open values included.
void walkValue(const asn1data::TypeDescription& type, const void* value, ValueVisitor& visitor);

} // namespace tests

#endif
