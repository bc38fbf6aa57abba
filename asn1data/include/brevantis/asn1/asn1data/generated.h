#ifndef BREVANTIS_ASN1_ASN1DATA_GENERATED_H
#define BREVANTIS_ASN1_ASN1DATA_GENERATED_H

#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/runtime/status.h>

/// @file
/// What the sources made by asn1gen have in common besides the engine.

namespace asn1data {

/// A type of the library, for modules that import it.
/// @return the description; where the library is too old to have it, the program ends
inline const TypeDescription& libraryType(const char* name) noexcept {
    const TypeDescription* const found = findType(name);
    if (found == nullptr) {
        std::abort();
    }
    return *found;
}

/// An object set of the library, likewise.
inline const ObjectSetDescription& librarySet(const char* name) noexcept {
    for (const ObjectSetDescription* set : allObjectSets()) {
        if (std::strcmp(set->name, name) == 0) {
            return *set;
        }
    }
    std::abort();
}

/// The identifier octets that a value can begin with, listed.
constexpr IdentifierSet beginsWith(std::initializer_list<unsigned char> octets) {
    IdentifierSet set{};
    for (const unsigned char octet : octets) {
        set.bits[octet >> 6] |= 1ULL << (octet & 63);
    }
    return set;
}

/// An open type begins with anything but an end-of-contents (X.690, 8.1.5).
constexpr IdentifierSet beginsWithAny() {
    return IdentifierSet{{~1ULL, ~0ULL, ~0ULL, ~0ULL}};
}

/// No constraint.
constexpr Constraint unconstrained{nullptr, 0};

/// Any of these ranges.
template <unsigned Count>
constexpr Constraint within(const ValueRange (&ranges)[Count]) {
    return {ranges, Count};
}

/// Whether the coder of a primitive shape reads the tag by itself: the universal one of the shape,
/// which a text is told.
constexpr bool isTagOfCoder(Shape shape, ASN1TAG tag) {
    switch (kindOf(shape)) {
    case ShapeKind::Boolean:
        return tag == 1;
    case ShapeKind::Number:
        return tag == (shape == Shape::Enumerated ? 10u : 2u);
    case ShapeKind::BigNumber:
        return tag == 2;
    case ShapeKind::Null:
        return tag == 5;
    case ShapeKind::ObjectIdentifier:
        return tag == 6;
    case ShapeKind::OctetString:
        return tag == 4;
    case ShapeKind::BitString:
        return tag == 3;
    case ShapeKind::Text:
        return tag < 31;
    case ShapeKind::OpenType:
    case ShapeKind::Record:
    case ShapeKind::Choice:
    case ShapeKind::Repeated:
        break; // an open type and a CHOICE have none
    }
    return tag == 0;
}

/// The road to the contents of a type. Tags of more than one octet are read apart.
constexpr Road roadOf(Shape shape, ASN1TAG tag, ASN1TAG outerTag, bool closesRecursion) {
    const bool ownTag = isPrimitive(shape) ? !isTagOfCoder(shape, tag) : (tag & 0x1FFFFFFFu) > 30;
    return outerTag != 0 || closesRecursion || ownTag ? Road::Tagged
           : shape == Shape::Choice                   ? Road::Choice
           : isPrimitive(shape)                       ? Road::Primitive
                                                      : Road::Constructed;
}

/// Chains the objects of a set. Works at compile time and, for sets made later, at run time.
/// @param first receives @p placeCount numbers, which are 0 before
/// @param next receives a number an object
/// @param placeCount a power of two
constexpr ObjectIndex chainObjects(const ObjectDescription* objects, unsigned count,
                                   unsigned* first, unsigned* next, unsigned placeCount) {
    for (unsigned i = count; i-- > 0;) {
        next[i] = 0;
        if (objects[i].arcCount != 0) { // no identifier has none
            const unsigned place =
                ObjectIndex::place(objects[i].arcs, objects[i].arcCount, placeCount);
            next[i] = first[place];
            first[place] = i + 1;
        }
    }
    return {first, next, placeCount};
}

/// The chains of a set of `Count` objects.
template <unsigned Count>
struct ObjectChains {
    /// Chains that a set of this size has: a power of two, at least 4 and twice as many as objects.
    static constexpr unsigned placeCount() {
        unsigned count = 4;
        while (count < 2 * Count) {
            count *= 2;
        }
        return count;
    }
    /// Of the class of its objects in the notation, such as "ATTRIBUTE".
    unsigned first[placeCount()] = {};
    unsigned next[Count] = {}; ///< as in ObjectIndex

    /// @param objects of the set; they are not referred to later
    constexpr explicit ObjectChains(const ObjectDescription (&objects)[Count]) {
        chainObjects(objects, Count, first, next, placeCount());
    }
    /// The chains as a description of the set has them; valid while this object lives.
    constexpr ObjectIndex index() const { return {first, next, placeCount()}; }
};

namespace family {

/// Copies the value of a control object on to its context's heap, for another object to serve.
/// @throws ASN1MessageBuffer::RTLError with ASN1S_NO_MEMORY when memory is out
template <class Control>
auto& copiedValue(Control& other) {
    auto* const copy = other.getCopy(nullptr);
    if (copy == nullptr) {
        throw ASN1MessageBuffer::RTLError(ASN1S_NO_MEMORY);
    }
    return *copy;
}

} // namespace family

} // namespace asn1data

#endif
