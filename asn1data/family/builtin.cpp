#include <type_traits>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/asn1data/generated.h>
#include <brevantis/asn1/asn1data/value_visit.h>

// The types that the notation brings along, described like every other one.

namespace asn1data::builtin {

namespace {

/// What a value can begin with (X.690, 8.1.2 and the clauses of the types).
constexpr IdentifierSet identifiersOf(Shape shape, unsigned char tag) {
    return shape == Shape::OpenType ? beginsWithAny()
           : isString(shape)        ? beginsWith({tag, static_cast<unsigned char>(tag | 0x20u)})
                                    : beginsWith({tag});
}

constexpr TypeDescription describe(const char* name, Shape shape, unsigned char tag,
                                   unsigned valueSize) {
    TypeDescription type{};
    type.name = name;
    type.shape = shape;
    type.copyable = true;
    type.holdsMemory = traitsOf(shape).holdsMemory;
    type.tag = tag;
    type.valueSize = valueSize;
    type.presenceOffset = NoOffset;
    type.extensionOffset = NoOffset;
    type.identifiers = identifiersOf(shape, tag);
    type.parameter = "*pvalue";
    type.road = Road::Primitive;
    type.identifier = tag;
    return type;
}

/// Octets of a value; none for NULL.
template <class Storage>
constexpr unsigned sizeOf() {
    if constexpr (std::is_void_v<Storage>) {
        return 0;
    } else {
        return sizeof(Storage);
    }
}

/// Whether the list and the visit of values agree on what a value is.
template <Shape shape, class Storage>
constexpr bool isStoredAs() {
    using Visited = typename Stored<shape>::Type;
    return std::is_same_v<Visited, Storage> || std::is_base_of_v<Visited, Storage>;
}

} // namespace

#define BREVANTIS_BUILTIN_TYPE(constant, notation, variant, shape, tag, storage)                   \
    static_assert(isStoredAs<Shape::shape, storage>());                                            \
    constexpr TypeDescription constant = describe(notation, Shape::shape, tag, sizeOf<storage>());
#include <brevantis/asn1/asn1data/builtin_types.inc>

} // namespace asn1data::builtin
