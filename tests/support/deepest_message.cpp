#include "support/deepest_message.h"

#include <map>
#include <utility>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>

#include "support/coding.h"
#include "support/element.h"
#include "support/value_builder.h"

namespace tests {

using namespace asn1data;

namespace {

enum : unsigned { NestingLimit = 64 };

/// The longest way down from a type: into an element or alternative, into an element of a list, or
/// into the type of an object.
struct Way {
    unsigned length = 0;
    const ElementDescription* element = nullptr;
    const ObjectDescription* object = nullptr;
};

/// @param left open and recursive types that may still be opened
const Way& longestWay(const TypeDescription& type, unsigned left);

unsigned lengthOf(const TypeDescription& type, unsigned left) {
    return longestWay(type, left).length;
}

Way findWay(const TypeDescription& type, unsigned left) {
    Way way;
    const bool recursive = type.closesRecursion;
    if (isPrimitive(type.shape) || (recursive && left == 0)) {
        return way;
    }
    left -= recursive ? 1 : 0;
    if (type.element != nullptr) {
        way.length = lengthOf(*type.element, left);
    }
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const unsigned length = lengthOf(*type.elements[i].type, left);
        if (length >= way.length) {
            way = {length, &type.elements[i], nullptr};
        }
    }
    for (unsigned i = 0; type.table != nullptr && left != 0 && i < type.table->objects->count;
         ++i) {
        const ObjectDescription& object = type.table->objects->objects[i];
        const unsigned length = object.type != nullptr ? lengthOf(*object.type, left - 1) + 2 : 0;
        if (length > way.length) {
            way = {length, nullptr, &object};
        }
    }
    ++way.length;
    return way;
}

const Way& longestWay(const TypeDescription& type, unsigned left) {
    static std::map<std::pair<const TypeDescription*, unsigned>, Way> known;
    const auto key = std::make_pair(&type, left);
    const auto found = known.find(key);
    return found != known.end() ? found->second : known[key] = findWay(type, left);
}

/// An encoded value with the tag of its element.
Octets tagged(const ElementDescription& element, const Octets& value) {
    if (element.tagging == Tagging::Untagged) {
        return value;
    }
    ASN1Header header{};
    if (element.tagging == Tagging::Explicit ||
        rtReadHeader(value.data(), static_cast<unsigned>(value.size()), &header) != 0) {
        return withHeader(element.tag, value);
    }
    return withHeader(element.tag, Octets(value.begin() + header.size, value.end()));
}

Octets written(ASN1CTXT* ctxt, int count) {
    const unsigned char* const octets = xe_getp(ctxt);
    return Octets(octets, octets + (count > 0 ? count : 0));
}

/// The shortest of some values.
const Octets& anyValue(const TypeDescription& type) {
    static std::map<const TypeDescription*, Octets> known;
    Octets& shortest = known[&type];
    for (unsigned seed = 0; seed < 20 && shortest.size() != 2; ++seed) {
        Writer writer;
        ValueBuilder builder(writer, seed);
        const int count = family::encode(writer, type, builder.build(type), ASN1TagExplicit);
        const Octets value = written(writer, count);
        if (count > 0 && (shortest.empty() || value.size() < shortest.size())) {
            shortest = value;
        }
    }
    return shortest;
}

Octets deepest(const TypeDescription& type, unsigned left);

Octets identifierOf(const ObjectDescription& object) {
    Writer writer;
    ASN1TObjId identifier(static_cast<unsigned char>(object.arcCount), object.arcs);
    const int count = xe_objid(writer, &identifier, ASN1TagExplicit);
    return written(writer, count);
}

Octets elementOf(const TypeDescription& type, const Way& way, const ElementDescription& element,
                 unsigned left) {
    if (&element == way.element) {
        return tagged(element, deepest(*element.type, left));
    }
    if (way.object != nullptr && element.offset == type.table->identifierOffset) {
        return tagged(element, identifierOf(*way.object));
    }
    if (way.object != nullptr && element.offset == type.table->valueOffset) {
        const Octets value = deepest(*way.object->type, left - 1);
        return tagged(element, type.table->value == OpenValue::OpenType
                                   ? value
                                   : withHeader(element.type->tag, value));
    }
    return element.presence == Presence::Mandatory ? tagged(element, anyValue(*element.type))
                                                   : Octets();
}

Octets deepest(const TypeDescription& type, unsigned left) {
    const Way way = longestWay(type, left);
    if (way.length == 0) {
        return anyValue(type);
    }
    left -= type.closesRecursion ? 1 : 0;
    Octets contents;
    if (type.shape == Shape::Choice) {
        contents = tagged(*way.element, deepest(*way.element->type, left));
    } else if (type.element != nullptr) {
        contents = deepest(*type.element, left);
        const long long fewest = type.constraint.count != 0 ? type.constraint.ranges[0].lower : 0;
        for (long long i = 1; i < fewest; ++i) {
            append(contents, anyValue(*type.element));
        }
    } else {
        for (unsigned i = 0; i < type.elementCount; ++i) {
            append(contents, elementOf(type, way, type.elements[i], left));
        }
    }
    const Octets value = type.tag != 0 ? withHeader(type.tag, contents) : contents;
    return type.outerTag != 0 ? withHeader(type.outerTag, value) : value;
}

} // namespace

Octets deepestMessage(const TypeDescription& type) {
    return deepest(type, NestingLimit);
}

unsigned deepestNesting(const TypeDescription& type) {
    return lengthOf(type, NestingLimit);
}

} // namespace tests
