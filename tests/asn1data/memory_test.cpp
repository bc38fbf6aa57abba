#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/element.h"
#include "support/locked_list.h"

// How much memory a message can ask for. It is the lists that make a message grow, so each list
// that can be reached from a type is filled with the elements that take the most memory for an
// octet.

namespace {

using namespace asn1data;
using tests::append;
using tests::Octets;
using tests::withHeader;

/// Makes small messages of any type, from its description. What no message was found for is left
/// out; what comes out need not be valid.
class SmallMessages {
public:
    /// The smallest one.
    const std::optional<Octets>& smallest(const TypeDescription& type) {
        const auto [place, isNew] = smallest_.try_emplace(&type);
        if (isNew) { // until it is known there is none, which ends recursion
            const std::vector<Octets> all = variants(type);
            const auto least =
                std::min_element(all.begin(), all.end(), [](const Octets& a, const Octets& b) {
                    return a.size() < b.size();
                });
            if (least != all.end()) {
                smallest_[&type] = *least;
            }
        }
        return smallest_[&type];
    }

    /// Small ones that differ in the alternative, in the optional element or in the open value.
    std::vector<Octets> variants(const TypeDescription& type) { return tagged(type, 0); }

private:
    /// @param tag in place of the outermost one; 0 for none
    std::vector<Octets> tagged(const TypeDescription& type, ASN1TAG tag) {
        std::vector<Octets> all;
        for (Octets contents : contentsOf(type)) {
            if (type.outerTag != 0) {
                contents = withHeader(type.tag, contents);
            }
            const ASN1TAG outer = tag != 0 ? tag : type.outerTag != 0 ? type.outerTag : type.tag;
            all.push_back(outer != 0 ? withHeader(outer, contents) : contents);
        }
        return all;
    }

    std::optional<Octets> element(const ElementDescription& element) {
        const std::optional<Octets> value = smallest(*element.type);
        if (!value || element.tagging == Tagging::Untagged) {
            return value;
        }
        if (element.tagging == Tagging::Explicit) {
            return withHeader(element.tag, *value);
        }
        const std::vector<Octets> all = tagged(*element.type, element.tag);
        return all.empty() ? std::nullopt : std::optional<Octets>(all.front());
    }

    static Octets number(long long value) {
        Octets octets{static_cast<unsigned char>(value)};
        for (long long rest = value >> 7; rest != 0 && rest != -1; rest >>= 8) {
            octets.insert(octets.begin(), static_cast<unsigned char>(rest >> 1));
        }
        return octets;
    }

    std::vector<Octets> contentsOf(const TypeDescription& type) {
        const long long lower = type.constraint.count != 0 ? type.constraint.ranges[0].lower : 0;
        const auto size = static_cast<std::size_t>(std::clamp(lower, 0LL, 100000LL));
        switch (kindOf(type.shape)) {
        case ShapeKind::Boolean:
            return {{0xFF}};
        case ShapeKind::Number:
            return {number(lower)};
        case ShapeKind::BigNumber:
            return {{1}};
        case ShapeKind::Null:
            return {{}};
        case ShapeKind::ObjectIdentifier:
            return {{0x2A}};
        case ShapeKind::OctetString:
            return {Octets(size)};
        case ShapeKind::BitString: {
            Octets bits(1 + (size + 7) / 8);
            bits[0] = static_cast<unsigned char>((8 - size % 8) % 8);
            return {bits};
        }
        case ShapeKind::Text: {
            const std::size_t width = type.shape == Shape::Text32   ? 4
                                      : type.shape == Shape::Text16 ? 2
                                                                    : 1;
            return {Octets(size * width, 'a')};
        }
        case ShapeKind::OpenType:
            return {{5, 0}};
        case ShapeKind::Record:
            return records(type);
        case ShapeKind::Choice:
            return alternatives(type);
        case ShapeKind::Repeated:
            return repeated(type, size);
        }
        return {};
    }

    std::vector<Octets> alternatives(const TypeDescription& type) {
        std::vector<Octets> all;
        for (unsigned i = 0; i < type.elementCount; ++i) {
            if (const std::optional<Octets> octets = element(type.elements[i])) {
                all.push_back(*octets);
            }
        }
        return all;
    }

    std::vector<Octets> repeated(const TypeDescription& type, std::size_t size) {
        const std::optional<Octets> member =
            size != 0 ? smallest(*type.element) : std::optional<Octets>(Octets());
        Octets all;
        for (std::size_t i = 0; member && i < size; ++i) {
            append(all, *member);
        }
        return member ? std::vector<Octets>{all} : std::vector<Octets>{};
    }

    /// @param optional element that is there beside the mandatory ones, if it is one
    /// @param object of the open value; null for whatever it is
    void addRecord(std::vector<Octets>& all, const TypeDescription& type, unsigned optional,
                   const ObjectDescription* object) {
        Octets record;
        for (unsigned i = 0; i < type.elementCount; ++i) {
            const ElementDescription& part = type.elements[i];
            if (part.presence != Presence::Mandatory && i != optional) {
                continue;
            }
            std::optional<Octets> octets = element(part);
            if (object != nullptr && part.offset == type.table->identifierOffset) {
                octets = identifier(*object);
            } else if (object != nullptr && part.offset == type.table->valueOffset) {
                octets = openValue(type, part, *object);
            }
            if (!octets) {
                return;
            }
            append(record, *octets);
        }
        all.push_back(record);
    }

    static Octets identifier(const ObjectDescription& object) {
        tests::Writer writer;
        ASN1TObjId id{};
        id.numids = object.arcCount;
        std::copy(object.arcs, object.arcs + object.arcCount, id.subid);
        const int count = xe_objid(writer, &id, ASN1TagExplicit);
        return Octets(xe_getp(writer), xe_getp(writer) + count);
    }

    std::optional<Octets> openValue(const TypeDescription& type, const ElementDescription& part,
                                    const ObjectDescription& object) {
        std::optional<Octets> value = smallest(*object.type);
        if (!value) {
            return value;
        }
        if (type.table->value == OpenValue::OctetString) {
            value = withHeader(4, *value);
        } else if (type.table->value == OpenValue::OpenTypes) {
            value = withHeader(part.type->tag, *value);
        }
        return part.tagging == Tagging::Explicit ? withHeader(part.tag, *value) : value;
    }

    std::vector<Octets> records(const TypeDescription& type) {
        std::vector<Octets> all;
        unsigned open = type.elementCount;
        for (unsigned i = 0; i <= type.elementCount; ++i) {
            if (i == type.elementCount || type.elements[i].presence != Presence::Mandatory) {
                addRecord(all, type, i, nullptr);
            }
            if (type.table != nullptr && i < type.elementCount &&
                type.elements[i].offset == type.table->valueOffset) {
                open = i;
            }
        }
        for (unsigned i = 0; type.table != nullptr && i < type.table->objects->count; ++i) {
            if (type.table->objects->objects[i].type != nullptr) {
                addRecord(all, type, open, &type.table->objects->objects[i]);
            }
        }
        return all;
    }

    std::map<const TypeDescription*, std::optional<Octets>> smallest_;
};

/// Octets that a context takes for a message; nothing when it is refused.
std::optional<std::size_t> taken(const TypeDescription& type, const Octets& message) {
    tests::Context context;
    xd_setp(context, message.data(), static_cast<int>(message.size()), nullptr, nullptr);
    void* const value = family::newRecord(context, type);
    if (family::decode(context, type, value, ASN1TagExplicit, 0) != 0) {
        return std::nullopt;
    }
    return rtMemHeapTaken(&context->memHeap);
}

/// Octets taken for each octet that a list grows by, at the worst; 0 for one that has its bounds.
double growthOf(const TypeDescription& list, SmallMessages& messages) {
    double worst = 0;
    for (const Octets& member : messages.variants(*list.element)) {
        const auto filled = [&](int count) {
            Octets contents;
            for (int i = 0; i < count; ++i) {
                append(contents, member);
            }
            const Octets octets = withHeader(list.tag, contents);
            return list.outerTag != 0 ? withHeader(list.outerTag, octets) : octets;
        };
        constexpr int fewer = 600;
        constexpr int more = 1200;
        const auto before = taken(list, filled(fewer));
        const auto after = taken(list, filled(more));
        if (before && after) {
            worst = std::max(worst, static_cast<double>(*after - *before) /
                                        static_cast<double>((more - fewer) * member.size()));
        }
    }
    return worst;
}

/// Everything that values of a type are made of, the types of open values too.
void gather(const TypeDescription& type, std::set<const TypeDescription*>& found) {
    if (!found.insert(&type).second) {
        return;
    }
    for (unsigned i = 0; i < type.elementCount; ++i) {
        gather(*type.elements[i].type, found);
    }
    if (type.element != nullptr) {
        gather(*type.element, found);
    }
    for (unsigned i = 0; type.table != nullptr && i < type.table->objects->count; ++i) {
        if (const TypeDescription* const object = type.table->objects->objects[i].type) {
            gather(*object, found);
        }
    }
}

TEST(Memory, OfEachTypeAsListed) {
    SmallMessages messages;
    std::map<const TypeDescription*, double> growth;
    std::vector<std::string> lines;
    for (const TypeDescription* type : allTypes()) {
        std::set<const TypeDescription*> parts;
        gather(*type, parts);
        double worst = 0;
        std::set<std::string> names;
        for (const TypeDescription* part : parts) {
            if (part->element == nullptr) {
                continue;
            }
            const auto [place, isNew] = growth.try_emplace(part);
            if (isNew) {
                place->second = growthOf(*part, messages);
            }
            if (place->second > worst) {
                names.clear();
            }
            worst = std::max(worst, place->second);
            if (place->second == worst && worst > 0) {
                names.insert(part->element->name);
            }
        }
        const auto own = growth.find(type);
        char line[300];
        std::snprintf(line, sizeof line, "%s %.0f %.0f %s", type->name, worst,
                      own != growth.end() ? own->second : 0.0,
                      names.empty() ? "-" : names.begin()->c_str());
        lines.emplace_back(line);
    }
    tests::expectLocked("memory_by_type.txt", lines);
}

} // namespace
