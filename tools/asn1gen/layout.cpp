#include <algorithm>
#include <functional>
#include <set>

#include "emitter.h"
#include <notation/builtin_types.h>

// How values lie in memory and what order that asks for.

namespace asn1gen {

std::string scalarName(Shape shape) {
    for (const BuiltinType& row : builtinTypes()) {
        if (row.shape == shape) {
            return shape == Shape::Null ? "" : row.storage;
        }
    }
    return "";
}

bool isOfLibrary(const Type& type) {
    return type.module != nullptr && type.module->ofLibrary;
}

std::string recordName(const Type& type) {
    return "ASN1T_" + type.name;
}
std::string controlName(const Type& type) {
    return "ASN1C_" + type.name;
}

ControlBase controlBase(const Type& type) {
    if (type.shape == Shape::Null) {
        return ControlBase::Null;
    }
    if (type.aliasOf != nullptr) {
        return ControlBase::Alias;
    }
    switch (type.shape) {
    case Shape::List:
        return ControlBase::List;
    case Shape::BitString:
        return ControlBase::BitString;
    case Shape::FixedBitString:
        return ControlBase::FixedBitString;
    default:
        return type.generalizedTime ? ControlBase::Time : ControlBase::Plain;
    }
}

namespace {

// Types that have to be complete where `type` is defined.
std::vector<const Type*> heldByValue(const Type& type) {
    std::vector<const Type*> held;
    if (type.aliasOf != nullptr) {
        held.push_back(type.aliasOf);
        return held;
    }
    const auto hold = [&held](const Type* other) {
        if (!other->builtin) {
            held.push_back(other);
        }
    };
    for (const Element& element : type.elements) {
        // What a union points to need not be complete, yet another name has to be known.
        if (type.shape != Shape::Choice || !element.type->isIndirect() ||
            !element.type->target().hasRecord()) {
            hold(element.type);
        }
    }
    const bool refers = type.shape == Shape::Array || type.shape == Shape::List;
    if (type.shape == Shape::FixedArray || (refers && !type.element->target().hasRecord())) {
        hold(type.element);
    }
    return held;
}

// Another module's name for a type is replaced by what it names, so that a header needs no more
// headers than it has to.
const Type& inModule(const Type& type, const Module& module) {
    const Type* named = &type;
    while (named->module != &module && named->aliasOf != nullptr) {
        named = named->aliasOf;
    }
    return *named;
}

} // namespace

std::vector<const Type*> pointedTo(const Module& module) {
    std::vector<const Type*> result;
    const auto point = [&](const Type& type) {
        const Type& target = type.target();
        if (target.hasRecord() &&
            std::find(result.begin(), result.end(), &target) == result.end()) {
            result.push_back(&target);
        }
    };
    for (const Type* type : module.types) {
        if (type->aliasOf != nullptr) {
            continue;
        }
        for (const Element& element : type->elements) {
            if (type->shape == Shape::Choice && element.type->isIndirect()) {
                point(*element.type);
            }
        }
        if (type->shape == Shape::Array || type->shape == Shape::List) {
            point(*type->element);
        }
    }
    return result;
}

std::vector<const Type*> inOrderOfUse(const Modules& modules) {
    std::vector<const Type*> order;
    std::set<const Type*> seen;
    const std::set<const Module*> own(modules.begin(), modules.end());
    const std::function<void(const Type&)> visit = [&](const Type& type) {
        if (!seen.insert(&type).second) {
            return;
        }
        if (own.count(type.module) == 0) {
            // Another header's name may stand for a type of this one.
            if (type.aliasOf != nullptr) {
                visit(*type.aliasOf);
            }
            return;
        }
        for (const Type* held : heldByValue(type)) {
            visit(*held);
        }
        order.push_back(&type);
    };
    for (const Module* module : modules) {
        for (const Type* type : module->types) {
            visit(*type);
        }
    }
    return order;
}

Modules neededHeaders(const Module& module) {
    Modules needed;
    const auto need = [&](const Module* other) {
        if (other != nullptr && other != &module &&
            std::find(needed.begin(), needed.end(), other) == needed.end()) {
            needed.push_back(other);
        }
    };
    for (const Type* type : module.types) {
        for (const Type* held : heldByValue(*type)) {
            // The control class of another name is derived from that of the type.
            const Type& named = type->aliasOf != nullptr ? *held : inModule(*held, module);
            const bool foreignScalar = type->aliasOf == nullptr && !named.hasRecord();
            if (!foreignScalar) {
                need(named.module);
            }
        }
    }
    for (const Object* object : module.objects) {
        need(object->objectClass->hasRecord ? object->objectClass->module : nullptr);
    }
    for (const ObjectSet* set : module.sets) {
        need(set->objectClass->hasRecord ? set->objectClass->module : nullptr);
    }
    return needed;
}

Emitter::Emitter(const Model& model, Output output) : model_(model), output_(std::move(output)) {
    std::map<const File*, std::set<const File*>> reached;
    for (const File& file : model_.files) {
        for (const Module* module : file.modules) {
            fileOf_[module] = &file;
        }
    }
    for (const File& file : model_.files) {
        for (const Module* module : file.modules) {
            if (file.ofLibrary) {
                continue; // its headers are there already
            }
            for (const Module* other : neededHeaders(*module)) {
                reached[&file].insert(fileOf_[other]);
            }
        }
    }
    for (const File& over : model_.files) {
        for (const File& file : model_.files) {
            if (reached[&file].count(&over) != 0) {
                reached[&file].insert(reached[&over].begin(), reached[&over].end());
            }
        }
    }
    for (const File& file : model_.files) {
        const auto first =
            std::find_if(model_.files.begin(), model_.files.end(), [&](const File& other) {
                return &other == &file ||
                       (reached[&file].count(&other) != 0 && reached[&other].count(&file) != 0);
            });
        for (const Module* module : file.modules) {
            headerOf_[module] = &*first;
        }
    }
}

std::vector<Emitter::Part> Emitter::partsOf(const Modules& modules) {
    std::vector<Part> parts;
    for (const Module* module : modules) {
        const auto found = std::find_if(parts.begin(), parts.end(), [module](const Part& part) {
            return part.space == module->space;
        });
        if (found != parts.end()) {
            found->modules.push_back(module);
        } else {
            parts.push_back({module->space, {module}});
        }
    }
    return parts;
}

std::string Emitter::spaceName(const std::string& space) const {
    if (space == LibrarySpace) {
        return space.substr(2);
    }
    return output_.nameSpace + (space.empty() ? "" : "::" + space);
}

std::string Emitter::from(const Module* home, const std::string& name) const {
    return home == nullptr || home->space == here_ ? name
                                                   : "::" + spaceName(home->space) + "::" + name;
}

std::string Emitter::calledName(const Type& type) const {
    return output_.moduleNames ? type.module->node.name + "." + type.name : type.name;
}

std::string Emitter::recordFrom(const Type& type) const {
    return from(type.module, recordName(type));
}

std::string Emitter::controlFrom(const Type& type) const {
    return from(type.module, controlName(type));
}

std::string Emitter::valueName(const Type& type) const {
    if (!type.builtin) {
        return recordFrom(type);
    }
    const auto& rows = builtinTypes();
    const auto row = std::find_if(rows.begin(), rows.end(), [&type](const BuiltinType& candidate) {
        return candidate.constant == type.name;
    });
    return row->shape == Shape::Null ? "" : row->storage;
}

// A pointer names the record itself: a name for it may have to wait until the record is complete.
std::string Emitter::referredType(const Type& type, const Module& module) const {
    const Type& target = type.target();
    return target.hasRecord() ? recordFrom(target) : memberType(type, module);
}

std::string Emitter::memberType(const Type& type, const Module& module) const {
    const Type& named = inModule(type, module);
    // A scalar's or string's foreign name says no more than its value type.
    if (named.module != &module && !named.builtin && !named.hasRecord()) {
        return scalarName(named.shape);
    }
    return valueName(named);
}

std::string Emitter::exported(const std::string& keyword) const {
    return output_.exportMacro.empty() ? keyword : keyword + " " + output_.exportMacro;
}

std::string Emitter::engine(const std::string& name) const {
    return output_.nameSpace == "asn1data" ? name : "asn1data::" + name;
}

std::string Emitter::descriptorName(const Type& type) const {
    if (isOfLibrary(type)) {
        return tableName(type);
    }
    return type.builtin ? "builtin::" + type.name : from(type.module, "types::" + type.name);
}

std::string Emitter::tableName(const Type& type, const char* end) const {
    if (isOfLibrary(type)) {
        const std::string found = "asn1data::libraryType(\"" + type.name + "\")";
        return *end == '\0' ? found : found + "." + (end + 1);
    }
    return (type.module->space == here_
                ? type.name
                : "::" + spaceName(type.module->space) + "::types::" + type.name) +
           end;
}

std::string Emitter::include(const File& file) const {
    const std::string& prefix = file.ofLibrary ? LibraryPrefix : output_.includePrefix;
    return "<" + prefix + "/" + file.node->stem + ".h>";
}

} // namespace asn1gen
