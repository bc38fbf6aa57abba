#ifndef BREVANTIS_ASN1_ASN1DATA_FAMILY_H
#define BREVANTIS_ASN1_ASN1DATA_FAMILY_H

#include <type_traits>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/control.h>
#include <brevantis/asn1/runtime/list.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/runtime/object_identifier.h>

/// @file
/// What every type of the catalogue does, over its description. The generated members of a type
/// (`asn1E_X`, `asn1D_X`, ...) are thin calls of these; programs call them directly for types known
/// only by description.

namespace asn1data::family {

/// Encodes a value backwards in front of what the context's buffer holds.
/// @param ctxt bound for encoding (xe_setp)
/// The typed form of an open value goes out in place of its raw octets, which stay as they are; an
/// open value without one goes out as it came.
/// @param value the record that `type` describes, not changed; may be null for the NULL type alone
/// @param tagging ASN1TagExplicit writes the type's own tag, ASN1TagImplicit leaves it to the
/// caller
/// @return octets added, or a negative status, which is recorded
BREVANTIS_ASN1_API int encode(ASN1CTXT* ctxt, const TypeDescription& type, void* value,
                              ASN1TagType tagging);

/// Decodes a value at the context's position.
/// @param ctxt bound to a message (xd_setp)
/// @param value receives the value; what hangs from it lies on the context's heap
/// @param tagging ASN1TagExplicit reads the type's own tag, ASN1TagImplicit takes it as read
/// @param length content length with ASN1TagImplicit, ignored otherwise
/// @return 0, or a negative status, which is recorded
BREVANTIS_ASN1_API int decode(ASN1CTXT* ctxt, const TypeDescription& type, void* value,
                              ASN1TagType tagging, int length);

/// Copies a value; what hangs from the copy lies on the context's heap. A failure (no memory,
/// nesting too deep) is recorded in the context and leaves a target that can be released.
BREVANTIS_ASN1_API void copy(ASN1CTXT* ctxt, const TypeDescription& type, const void* source,
                             void* target);

/// Gives what a value holds on the context's heap back to it, and clears the pointers.
/// @param value a value that was decoded or copied on this heap
BREVANTIS_ASN1_API void release(ASN1CTXT* ctxt, const TypeDescription& type, void* value);

/// Encodes the typed open value of a record, if its identifier is known, and makes the result its
/// raw octets: a block of their own on the context's heap. Encoding a whole value needs no such
/// step; this is for who wants the octets.
/// @param ctxt gives the heap; what its buffer is bound to stays as it is
/// @return 0, or a negative status
BREVANTIS_ASN1_API int encodeOpenValue(ASN1CTXT* ctxt, const TypeDescription& type, void* value);

/// Decodes the raw octets of a record's open value into its typed form, if its identifier is known.
/// @return 0, also for an unknown identifier; or a negative status, and then the context stands on
///         the inner octets
BREVANTIS_ASN1_API int decodeOpenValue(ASN1CTXT* ctxt, const TypeDescription& type, void* value);

/// Finds the object of an identifier.
/// @return the first match in table order, null when the set has none
BREVANTIS_ASN1_API const ObjectDescription* findObject(const ObjectSetDescription& set,
                                                       const ASN1OBJID& id) noexcept;

/// Body of every `EncodeTo`: ties the control object to the buffer, rewinds it, encodes.
BREVANTIS_ASN1_API int encodeTo(ASN1CType& control, ASN1MessageBufferIF& buffer,
                                const TypeDescription& type, void* value);

/// Body of every `DecodeFrom`: ties the control object to the buffer, binds it, decodes.
BREVANTIS_ASN1_API int decodeFrom(ASN1CType& control, ASN1MessageBufferIF& buffer,
                                  const TypeDescription& type, void* value);

/// A zeroed record for @p type on the context's heap, null when memory is out.
BREVANTIS_ASN1_API void* newRecord(ASN1CTXT* ctxt, const TypeDescription& type) noexcept;

/// Exchanges two values of a type by their octets: nothing in a value points to the value itself.
BREVANTIS_ASN1_API void exchange(const TypeDescription& type, void* left, void* right) noexcept;

/// Takes the elements out of a list that do not stand behind their nodes, and frees these nodes:
/// such elements were put there by a program.
BREVANTIS_ASN1_API void leaveForeignElements(ASN1CTXT* ctxt, Asn1RTDList& list) noexcept;

/// Whether a record tells in a member `ownerContext` that it is a copy with memory of its own.
template <class Record, class = void>
struct HasOwnerContext {
    static constexpr bool value = false; ///< true for a record that has the member
};
template <class Record>
struct HasOwnerContext<Record, decltype(static_cast<void>(&Record::ownerContext))> {
    static constexpr bool value = true;
};

// Whoever replaces the value of a record makes the new content in a record of its own first, since
// it may come out of the old. The two are exchanged then, and with the record that held the new one
// the old content goes back to the context that it came from.

/// Body of every `DecodeFrom` of a type with a record. A record that was a copy gives that up: what
/// is decoded lives on the buffer's heap.
template <class Record>
int decodeFrom(ASN1CType& control, ASN1MessageBufferIF& buffer, const TypeDescription& type,
               Record* value) {
    if constexpr (HasOwnerContext<Record>::value) {
        if (value->ownerContext) {
            Record content;
            const int status = decodeFrom(control, buffer, type, static_cast<void*>(&content));
            exchange(type, value, &content);
            return status;
        }
    }
    return decodeFrom(control, buffer, type, static_cast<void*>(value));
}

/// Body of every `operator=`. What the value held goes back to the context that it was copied on
/// to; where it is no copy, to the control's heap. A value that need not have been initialised, as
/// a plain pointer to text, is written over, and so are list elements that a program put there.
template <class Record>
void assign(ASN1CType& control, const TypeDescription& type, const Record* source, Record* target) {
    ASN1CTXT* const ctxt = control.getCtxtPtr();
    Record content{};
    copy(ctxt, type, source, &content);
    exchange(type, target, &content);
    if constexpr (std::is_base_of_v<Asn1RTDList, Record>) {
        leaveForeignElements(ctxt, content);
    }
    if constexpr (HasOwnerContext<Record>::value) {
        // Only a record that was a copy names a context: one on a heap would keep that for ever.
        ASN1ContextRef& named = content.ownerContext ? target->ownerContext : content.ownerContext;
        named = control.getContext();
    } else if constexpr (!std::is_trivially_default_constructible_v<Record>) {
        release(ctxt, type, &content);
    }
}

/// Body of every `getCopy`. A copy into a record of the caller's takes a reference to the control's
/// context, which keeps its memory. A copy without a target lies on that context's heap and takes
/// none: it lives exactly as long as the heap, and a reference would keep the heap for ever.
template <class Record>
Record* getCopy(ASN1CType& control, const TypeDescription& type, Record* own, Record* target) {
    if (target == own) {
        return own;
    }
    ASN1CTXT* const ctxt = control.getCtxtPtr();
    if (target == nullptr) {
        target = static_cast<Record*>(newRecord(ctxt, type));
        if (target != nullptr) {
            copy(ctxt, type, own, target);
        }
        return target;
    }
    Record content{};
    copy(ctxt, type, own, &content);
    exchange(type, target, &content);
    if constexpr (HasOwnerContext<Record>::value) {
        target->ownerContext = control.getContext();
    }
    return target;
}

/// Body of every `newCopy`: the caller deletes the record.
template <class Record>
Record* newCopy(ASN1CType& control, const TypeDescription& type, Record* own) {
    return getCopy(control, type, own, new Record());
}

/// Body of every record's destructor: a value that a control class copied into the record goes back
/// to the context that it came from. All that such a record points to must have come from there.
template <class Record>
void destroy(Record& record, const TypeDescription& type) {
    if (record.ownerContext) {
        release(record.ownerContext.get(), type, &record);
    }
}

} // namespace asn1data::family

#endif
