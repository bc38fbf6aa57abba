#include "record_layout.h"

#include <algorithm>
#include <map>

#include "builtin_types.h"

namespace notation {
namespace {

/// Adds members to a record, one behind another.
class Members {
public:
    explicit Members(unsigned largest) : largest_(largest) {}

    /// @return the place of the member
    unsigned add(const Extent& member, unsigned count = 1) {
        const unsigned place = rounded(end_, member.alignment);
        alignment_ = std::max(alignment_, member.alignment);
        const unsigned long long end = place + 1ull * member.size * count;
        tooLarge_ = tooLarge_ || end > largest_;
        end_ = tooLarge_ ? 0 : static_cast<unsigned>(end);
        return place;
    }

    /// An empty record has a place of its own all the same.
    Extent whole() const { return {rounded(std::max(end_, 1u), alignment_), alignment_}; }
    bool tooLarge() const { return tooLarge_; }

private:
    static unsigned rounded(unsigned place, unsigned alignment) {
        return (place + alignment - 1) / alignment * alignment;
    }

    unsigned largest_;
    unsigned end_ = 0;
    unsigned alignment_ = 1;
    bool tooLarge_ = false;
};

class Layout {
public:
    Layout(const Platform& platform, unsigned largest, Diagnostics& diagnostics)
        : platform_(platform), largest_(largest), diagnostics_(diagnostics) {
        const auto& rows = builtinTypes();
        for (std::size_t i = 0; i < rows.size(); ++i) {
            byConstant_.emplace(rows[i].constant, platform.builtins[i]);
            byShape_.emplace(rows[i].shape, platform.builtins[i]);
        }
    }

    /// Lays a type out behind those that it holds by value.
    void settle(Type& type) {
        std::vector<Visit> open = {{&type, 0}};
        while (!open.empty()) {
            Visit& visit = open.back();
            Type* const held = nextHeld(visit);
            if (held == nullptr) {
                layOut(*visit.type);
                open.pop_back();
            } else if (held->extent.alignment == 0) {
                open.push_back({held, 0});
            }
        }
    }

private:
    struct Visit {
        Type* type;
        std::size_t next; ///< of what it holds by value
    };

    static Type* nextHeld(Visit& visit) {
        Type& type = *visit.type;
        if (type.aliasOf != nullptr) {
            return visit.next++ == 0 ? type.aliasOf : nullptr;
        }
        if (type.shape == Shape::FixedArray) {
            return visit.next++ == 0 ? type.element : nullptr;
        }
        // What a union points to need not be there.
        while (visit.next < type.elements.size()) {
            Type* const element = type.elements[visit.next++].type;
            if (type.shape != Shape::Choice || !element->isIndirect()) {
                return element;
            }
        }
        return nullptr;
    }

    void layOut(Type& type) {
        if (type.aliasOf != nullptr) {
            const Type& target = *type.aliasOf;
            type.extent = target.extent;
            type.countOffset = target.countOffset;
            type.dataOffset = target.dataOffset;
            type.presenceOffset = target.presenceOffset;
            type.extensionOffset = target.extensionOffset;
            return;
        }
        if (!type.hasRecord()) {
            type.extent = type.builtin ? byConstant_.at(type.name) : byShape_.at(type.shape);
            if (traitsOf(type.shape).dataName[0] != '\0') {
                Members members(largest_);
                type.countOffset = members.add(platform_.word);
                type.dataOffset = members.add(platform_.pointer);
            }
            return;
        }
        Members members(largest_);
        if (type.shape == Shape::List) {
            members.add(platform_.list); // a base class
        }
        if (type.ownsContext()) {
            members.add(platform_.context);
        }
        switch (type.shape) {
        case Shape::Sequence:
        case Shape::Set:
            addElements(type, members);
            break;
        case Shape::Choice:
            type.countOffset = members.add(platform_.word);
            addUnion(type, members);
            break;
        case Shape::Array:
            type.countOffset = members.add(platform_.word);
            type.dataOffset = members.add(platform_.pointer);
            break;
        case Shape::FixedArray:
            type.countOffset = members.add(platform_.word);
            type.dataOffset = members.add(type.element->extent, type.capacity);
            break;
        case Shape::FixedOctetString:
            type.countOffset = members.add(platform_.word);
            type.dataOffset = members.add({1, 1}, type.capacity);
            break;
        case Shape::FixedBitString:
            type.countOffset = members.add(platform_.word);
            type.dataOffset = members.add({1, 1}, type.capacity / 8 + (type.capacity % 8 != 0));
            break;
        default:
            break;
        }
        type.extent = members.whole();
        if (members.tooLarge()) {
            diagnostics_.error(type.at, "a value of '" + type.name + "' takes more than " +
                                            std::to_string(largest_) + " octets");
        }
    }

    void addElements(Type& type, Members& members) {
        if (type.hasPresence()) {
            const auto bits = std::count_if(
                type.elements.begin(), type.elements.end(),
                [](const Element& element) { return element.presence == Presence::Optional; });
            type.presenceOffset =
                members.add(platform_.word, static_cast<unsigned>((bits + 31) / 32));
        }
        for (Element& element : type.elements) {
            if (element.type->shape == Shape::Null) {
                continue; // nothing to hold
            }
            element.offset = members.add(element.type->extent);
            if (element.hasSlot) {
                element.slotOffset = members.add(platform_.slot);
            }
        }
        if (!type.extensionMember.empty()) {
            type.extensionOffset = members.add(platform_.list);
        }
    }

    void addUnion(Type& type, Members& members) {
        Extent all{1, 1};
        for (const Element& element : type.elements) {
            if (element.type->shape == Shape::Null) {
                continue;
            }
            const Extent member =
                element.type->isIndirect() ? platform_.pointer : element.type->extent;
            all = {std::max(all.size, member.size), std::max(all.alignment, member.alignment)};
        }
        type.dataOffset = members.add(all);
        for (Element& element : type.elements) {
            element.offset = type.dataOffset;
        }
    }

    const Platform& platform_;
    unsigned largest_;
    Diagnostics& diagnostics_;
    std::map<std::string, Extent> byConstant_;
    std::map<Shape, Extent> byShape_; ///< the first of the shape
};

} // namespace

bool layOutRecords(Model& model, const Platform& platform, unsigned largest,
                   Diagnostics& diagnostics) {
    Layout layout(platform, largest, diagnostics);
    for (Type& type : model.types) {
        layout.settle(type);
    }
    return !diagnostics.failed();
}

} // namespace notation
