#ifndef BREVANTIS_ASN1_ASN1DATA_OBJECT_H
#define BREVANTIS_ASN1_ASN1DATA_OBJECT_H

#include <cstddef>
#include <new>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/control.h>

/// @file
/// What information objects do with the slot of an open value, and the control objects that they
/// make.

namespace asn1data {

/// Ties a value that is known by its description alone to a context and a message buffer.
class BREVANTIS_ASN1_API DescribedControl : public ASN1CType {
public:
    /// @param value the record that @p type describes; the caller's, it outlives the object; null
    ///        for a NULL type
    DescribedControl(ASN1MessageBufferIF& buffer, void* value, const TypeDescription& type);

    int EncodeTo(ASN1MessageBufferIF& buffer) override;
    int DecodeFrom(ASN1MessageBufferIF& buffer) override;

    const TypeDescription& type; ///< what `msgData` points to
    void* msgData;               ///< the value served
};

namespace family {

/// Encodes the typed value of a slot with its own tag.
/// @return octets added, or a negative status, which is recorded; ASN1S_INVALID_PARAMETER when the
///         slot has no typed value
BREVANTIS_ASN1_API int encodeSlot(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot);

/// Decodes a value at the context's position into a new record, which the slot holds from then on,
/// whatever comes of it.
/// @return 0 or a negative status, which is recorded; ASN1S_NO_MEMORY when there is no memory for
///         the record, and then the slot holds none
BREVANTIS_ASN1_API int decodeSlot(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot);

/// Copies the typed value of a slot into a new record on the context's heap. The target holds none
/// when the source has none or memory is out; the latter is recorded.
BREVANTIS_ASN1_API void copySlot(ASN1CTXT* ctxt, const TypeDescription& type,
                                 const Asn1TObject& source, Asn1TObject& target);

/// Gives what the typed value holds back to the context's heap and leaves the slot without one. The
/// record itself stays on the heap: it may be the caller's.
BREVANTIS_ASN1_API void releaseSlot(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot);

/// Room for a control object on the heap of the buffer's context. It holds on to that heap, as the
/// object may be turned to a buffer with another one.
/// @return null when memory is out
BREVANTIS_ASN1_API void* controlRoom(ASN1MessageBufferIF& buffer, std::size_t size) noexcept;

/// Destroys a control object that stands in controlRoom and frees the room; null is ignored.
BREVANTIS_ASN1_API void endControl(ASN1CType* control);

/// A control object on the heap of the buffer's context, ended by endControl.
/// @return null when @p value is null or memory is out
template <class Control, class Record>
ASN1CType* newControl(ASN1MessageBufferIF& buffer, void* value) {
    void* const room = value != nullptr ? controlRoom(buffer, sizeof(Control)) : nullptr;
    return room != nullptr ? new (room) Control(buffer, *static_cast<Record*>(value)) : nullptr;
}

/// The same for a type without a value.
template <class Control>
ASN1CType* newControl(ASN1MessageBufferIF& buffer) {
    void* const room = controlRoom(buffer, sizeof(Control));
    return room != nullptr ? new (room) Control(buffer) : nullptr;
}

/// The same for a type without a control class of its own.
BREVANTIS_ASN1_API ASN1CType* newControl(ASN1MessageBufferIF& buffer, void* value,
                                         const TypeDescription& type);

} // namespace family

} // namespace asn1data

#endif
