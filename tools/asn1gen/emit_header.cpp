#include <algorithm>
#include <set>
#include <sstream>

#include "emitter.h"
#include <notation/names.h>

// The public header of a module: records, control classes, functions.

namespace asn1gen {
namespace {

// An element's line without what its type describes in place: that is documented there.
std::string shortLine(const std::string& line) {
    const std::size_t first = line.find('\n');
    if (first == std::string::npos) {
        return line;
    }
    const std::size_t last = line.rfind('}');
    return line.substr(0, first) + " ... " + line.substr(last);
}

std::string elementComment(const Element& element) {
    return shortLine(element.line) + (element.comment.empty() ? "" : ": " + element.comment);
}

// Numbers and pointers start as 0, plain records as well; the others do so by themselves.
std::string initializer(const Type& type) {
    switch (kindOf(type.shape)) {
    case ShapeKind::Boolean:
    case ShapeKind::Number:
        return " = 0";
    case ShapeKind::BigNumber:
        return " = nullptr";
    case ShapeKind::Text:
        return traitsOf(type.shape).scalar ? " = nullptr" : "{}";
    case ShapeKind::OctetString:
    case ShapeKind::BitString:
        return isFixed(type.shape) ? "" : "{}"; // a record of its own
    case ShapeKind::Null:
    case ShapeKind::ObjectIdentifier:
    case ShapeKind::OpenType:
    case ShapeKind::Record:
    case ShapeKind::Choice:
    case ShapeKind::Repeated:
        break; // have constructors
    }
    return "";
}

void enumeration(Writer& out, const std::string& name, const std::vector<std::string>& items) {
    out.line("enum " + name + " {");
    out.items(items, 4);
    out.line("};");
}

constexpr const char* RecordCopy = R"(
    /// A deep copy of the control object's value; it keeps the context alive.
    explicit $T($C& control);
)";

constexpr const char* RecordFunctions = R"(
    $T(const $T&) = delete;
    $T& operator=(const $T&) = delete;
    /// Gives a copy's memory back to the context it came from.
    ~$T();
)";

constexpr const char* NullControl = R"(
public:
    /// What findType knows the type by.
    static constexpr const char* typeName = "$called";

    /// On a context of its own.
    $C();
    /// On the buffer and its context.
    explicit $C(ASN1MessageBufferIF& buffer);
    /// On the context and the buffer of @p other.
    $C($C& other);

    int EncodeTo(ASN1MessageBufferIF& buffer) override;
    int DecodeFrom(ASN1MessageBufferIF& buffer) override;
};
)";

constexpr const char* Constructors = R"(
public:
    /// What findType knows the type by.
    static constexpr const char* typeName = "$called";

    /// On a context of its own; the value is the caller's and outlives the object.
    explicit $C($T& value);
    /// On the buffer and its context, with a value of the caller's too.
    $C(ASN1MessageBufferIF& buffer, $T& value);
)";

constexpr const char* ControlCopy = R"(
    /// On the context and the buffer of @p other, with a deep copy of its value.
    /// @throws ASN1MessageBuffer::RTLError with ASN1S_NO_MEMORY when memory is out
    $C($C& other);
    /// Copies the other value over this one, on to this object's context. What the value held
    /// goes back to its heap: text or octets of your own must not hang from it.
    $C& operator=($C& other);
)";

constexpr const char* NoControlCopy = R"(
    $C(const $C&) = delete;
    $C& operator=(const $C&) = delete;
)";

constexpr const char* Coding = R"(

    int EncodeTo(ASN1MessageBufferIF& buffer) override;
    int DecodeFrom(ASN1MessageBufferIF& buffer) override;
)";

constexpr const char* Copying = R"(
    /// Copies the value.
    /// @param target null for a record on the context's heap, which lives as long as that
    /// @return the copy; null when memory is out
    $T* getCopy($T* target = nullptr);
    /// @return a copy made with `new`, the caller's to delete
    $T* newCopy();
)";

constexpr const char* ServedValue = R"(

    /// The value served.
    $T* msgData;
)";

constexpr const char* CopyConstructor = R"(

private:
    $C($C& other, $T& copy);
)";

constexpr const char* NullFunctions = R"(

/// Encodes, as family::encode tells.
${api}int asn1E_$X(ASN1CTXT* ctxt, ASN1TagType tagging);
/// Decodes, as family::decode tells.
${api}int asn1D_$X(ASN1CTXT* ctxt, ASN1TagType tagging, int length);
)";

constexpr const char* Functions = R"(

/// Encodes a value, as family::encode tells.
${api}int asn1E_$X(
    ASN1CTXT* ctxt, $T* value, ASN1TagType tagging);
/// Decodes a value, as family::decode tells.
${api}int asn1D_$X(
    ASN1CTXT* ctxt, $T* value, ASN1TagType tagging, int length);
)";

constexpr const char* CopyFunction = R"(
/// Copies a value on to the context's heap, as family::copy tells.
${api}void asn1Copy_$X(
    ASN1CTXT* ctxt, $T* source, $T* target);
)";

constexpr const char* FreeFunction = R"(
/// Gives what a value holds back to the context's heap.
${api}void asn1Free_$X(ASN1CTXT* ctxt, $T* value);
)";

constexpr const char* TableFunctions = R"(
/// Encodes the typed open value, as family::encodeOpenValue tells.
${api}int asn1ETC_$X(ASN1CTXT* ctxt, $T* value);
/// Decodes the open value, as family::decodeOpenValue tells.
${api}int asn1DTC_$X(ASN1CTXT* ctxt, $T* value);
)";

} // namespace

void Emitter::opening(Writer& out, const File& file) {
    out.line("// Generated by asn1gen from " + file.node->stem + ".asn1, digest " +
             file.node->digest + ". Do not edit.");
    out.line();
}

void openGuard(Writer& out, std::string place) {
    for (char& c : place) {
        const bool letter = c >= 'a' && c <= 'z';
        const bool kept = (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
        c = letter ? static_cast<char>(c - 'a' + 'A') : kept ? c : '_';
    }
    out.line("#ifndef " + place);
    out.line("#define " + place);
    out.line();
}

void Emitter::includes(Writer& out, const Modules& modules) {
    std::set<std::string> includes;
    if (!output_.exportMacro.empty()) {
        includes.insert("<brevantis/asn1/export.h>");
    }
    const std::string runtime = "<brevantis/asn1/runtime/";
    for (const Module* module : modules) {
        if (!module->identifiers.empty() || !module->objects.empty()) {
            includes.insert(runtime + "object_identifier.h>");
        }
        if (!module->types.empty() || !module->classes.empty()) {
            for (const char* name : {"control", "list", "object_identifier", "value_types"}) {
                includes.insert(runtime + name + ".h>");
            }
        }
        for (const Type* type : module->types) {
            switch (controlBase(*type)) {
            case ControlBase::List:
                includes.insert(runtime + "sequence_of_list.h>");
                break;
            case ControlBase::BitString:
            case ControlBase::FixedBitString:
                includes.insert(runtime + "bit_set.h>");
                break;
            case ControlBase::Time:
                includes.insert(runtime + "generalized_time.h>");
                break;
            default:
                break;
            }
        }
        for (const Module* other : neededHeaders(*module)) {
            const File* const header = headerOf_.at(other);
            if (header != headerOf_.at(module)) {
                includes.insert(include(*header));
            }
        }
    }
    for (const std::string& include : includes) {
        out.line("#include " + include);
    }
}

void Emitter::moduleComment(Writer& out, const Module& module) {
    out.comment(module.node.comment.empty() ? "Module " + module.node.name + "."
                                            : module.node.comment);
    if (!module.types.empty()) {
        out.line("///");
        out.comment(std::string("Tags in the notation below are ") +
                    (module.node.implicitTags ? "IMPLICIT" : "EXPLICIT") +
                    " where they do not say it.");
    }
}

std::string Emitter::header(const File& file) {
    Writer out;
    opening(out, file);
    openGuard(out, output_.includePrefix + "_" + file.node->stem + "_H");
    Modules modules;
    for (const auto& module : model_.modules) {
        if (headerOf_.at(module.get()) == &file) {
            modules.push_back(module.get());
        }
    }
    if (modules.empty()) {
        const File& shared = *headerOf_.at(file.modules.front());
        out.line("// Its types and those of others hold each other: they are declared together.");
        out.line("#include " + include(shared));
        out.line();
        out.line("#endif");
        return out.text();
    }
    includes(out, modules);
    out.line();
    out.line("/// @file");
    for (const Module* module : modules) {
        if (module != modules.front()) {
            out.line("///");
        }
        moduleComment(out, *module);
    }
    forwardDeclarations(out, modules);
    // Types go by what they hold; the rest goes by module.
    bool open = modules.front()->space == here_ && partsOf(modules).size() == 1;
    const auto enter = [&](const std::string& space) {
        if (open && space == here_) {
            return;
        }
        if (open) {
            out.line();
            out.line("} // namespace " + spaceName(here_));
            out.line();
            out.line("namespace " + spaceName(space) + " {");
        }
        if (!open) {
            out.line("namespace " + spaceName(space) + " {");
        }
        open = true;
        here_ = space;
    };
    for (const Module* module : modules) {
        for (const Identifier& identifier : module->identifiers) {
            enter(module->space);
            out.line();
            out.comment(arcsText(identifier.arcs, ".") +
                        (identifier.comment.empty() ? "" : ": " + identifier.comment));
            out.line(exported("extern") + " const ASN1OBJID " + identifier.name + ";");
        }
    }
    for (const Type* type : inOrderOfUse(modules)) {
        enter(type->module->space);
        out.line();
        documentType(out, *type);
        record(out, *type);
        control(out, *type);
        functions(out, *type);
    }
    for (const Module* module : modules) {
        enter(module->space);
        for (const ObjectClass* objectClass_ : module->classes) {
            objectClass(out, *objectClass_);
        }
    }
    for (const Module* module : modules) {
        enter(module->space);
        for (const Object* object_ : module->objects) {
            object(out, *object_);
        }
        for (const ObjectSet* set : module->sets) {
            objectSet(out, *set);
        }
    }
    out.line();
    out.line("} // namespace " + spaceName(here_));
    here_.clear();
    out.line();
    out.line("#endif");
    return out.text();
}

// What is named before it is complete; the namespace of the modules stays open where they share
// one.
void Emitter::forwardDeclarations(Writer& out, const Modules& modules) {
    std::map<std::string, std::set<std::string>> declarations;
    for (const Module* module : modules) {
        for (const Type* type : module->types) {
            if (type->ownsContext() && type->copyable) {
                declarations[type->module->space].insert("class " + controlName(*type) + ";");
            }
        }
        for (const Type* type : pointedTo(*module)) {
            declarations[type->module->space].insert("struct " + recordName(*type) + ";");
        }
    }
    const bool one = partsOf(modules).size() == 1;
    const std::string own = modules.front()->space;
    for (const auto& [space, lines] : declarations) {
        if (!one || space != own) {
            out.line();
            out.line("namespace " + spaceName(space) + " {");
            for (const std::string& declaration : lines) {
                out.line(declaration);
            }
            out.line("} // namespace " + spaceName(space));
        }
    }
    out.line();
    if (one) {
        here_ = own;
        out.line("namespace " + spaceName(own) + " {");
        if (declarations.count(own) != 0) {
            out.line();
            for (const std::string& declaration : declarations[own]) {
                out.line(declaration);
            }
        }
    }
}

void Emitter::documentType(Writer& out, const Type& type) {
    out.comment(type.comment.empty() ? "ASN.1 type " + type.name + "." : type.comment);
    out.line("///");
    out.notation(type.name + " ::= " + type.notation);
    if (!type.standard.empty()) {
        out.line("///");
        out.comment(type.standard);
    }
}

void Emitter::namedNumbers(Writer& out, const Type& type) {
    if (type.names.empty()) {
        return;
    }
    bool negative = false;
    for (const NamedNumber& named : type.names) {
        negative = negative || named.number < 0;
    }
    out.line();
    const bool bits = type.shape == Shape::BitString || type.shape == Shape::FixedBitString;
    out.comment(std::string(bits ? "Bits" : "Values") + " of " + recordName(type) + ".");
    std::vector<std::string> items;
    for (const NamedNumber& named : type.names) {
        items.push_back(type.name + "_" + cppName(named.name) + " = " +
                        std::to_string(named.number));
    }
    enumeration(out, "N_" + type.name + " : " + (negative ? "int" : "unsigned"), items);
}

void Emitter::sequenceMembers(Writer& out, const Type& type) {
    if (type.hasPresence()) {
        out.line("    /// Which of the optional elements are there: 1 in the bit of one that is.");
        out.line("    struct Presence {");
        for (const Element& element : type.elements) {
            if (element.presence == Presence::Optional) {
                out.line("        unsigned " + cppName(element.name) + "Present : 1;");
            }
        }
        out.line("    } m = Presence(); ///< an element without its bit is not looked at");
    }
    for (const Element& element : type.elements) {
        if (element.type->shape == Shape::Null) {
            continue; // nothing to hold
        }
        out.comment(elementComment(element), 4);
        out.line("    " + memberType(*element.type, *type.module) + " " + element.member +
                 initializer(*element.type) + ";");
        if (element.hasSlot) {
            out.comment("Typed value of `" + element.member + "`, whose octets `" + element.member +
                            "` holds.",
                        4);
            out.line("    Asn1TObject " + element.member + "Typed;");
        }
    }
    if (!type.extensionMember.empty()) {
        out.comment("Unknown elements, in the order found; the nodes point to ASN1OpenType.", 4);
        out.line("    Asn1RTDList " + type.extensionMember + "{};");
    }
}

void Emitter::choiceMembers(Writer& out, const Type& type) {
    out.comment("A T_" + type.name + "; 0 when nothing is chosen.", 4);
    out.line("    unsigned int t = 0;");
    const bool hasMembers =
        std::any_of(type.elements.begin(), type.elements.end(),
                    [](const Element& element) { return element.type->shape != Shape::Null; });
    out.line("    /// A member for each alternative that has a value.");
    out.line("    union U {");
    for (const Element& element : type.elements) {
        if (element.type->shape == Shape::Null) {
            continue;
        }
        out.comment(elementComment(element), 8);
        out.line("        " +
                 (element.type->isIndirect() ? referredType(*element.type, *type.module) + "*"
                                             : memberType(*element.type, *type.module)) +
                 " " + element.member + ";");
    }
    if (!hasMembers) {
        out.line("        /// No alternative has a value.");
        out.line("        char none;");
    }
    out.line("    } u = U(); ///< the value of the alternative that `t` tells");
}

void Emitter::recordFunctions(Writer& out, const Type& type) {
    const Values values = namesOf(type);
    out.line();
    out.lines("    $T() = default;\n", values);
    if (type.copyable) {
        out.lines(RecordCopy, values);
    }
    out.lines(RecordFunctions, values);
}

void Emitter::record(Writer& out, const Type& type) {
    const std::string name = recordName(type);
    if (!type.hasRecord()) {
        out.line("using " + name + " = " +
                 (type.aliasOf != nullptr ? recordFrom(*type.aliasOf) : scalarName(type.shape)) +
                 ";");
        namedNumbers(out, type);
        return;
    }
    const bool owns = type.ownsContext();
    const bool isEmpty =
        type.shape == Shape::Null || (type.elements.empty() && type.extensionMember.empty() &&
                                      (type.shape == Shape::Sequence || type.shape == Shape::Set));
    out.line((owns ? exported("struct") : "struct") + " " + name +
             (type.shape == Shape::List ? " : ASN1TPDUSeqOfList {"
              : isEmpty                 ? " {};"
                                        : " {"));
    if (isEmpty) {
        return;
    }
    if (owns) {
        out.line("    /// Set in a copy: the context that its memory comes from.");
        out.line("    ASN1ContextRef ownerContext;");
    }
    switch (type.shape) {
    case Shape::List:
        out.line("    /// What the nodes hold.");
        out.line("    using Element = " + referredType(*type.element, *type.module) + ";");
        break;
    case Shape::Sequence:
    case Shape::Set:
        sequenceMembers(out, type);
        break;
    case Shape::Choice:
        choiceMembers(out, type);
        break;
    case Shape::Array:
        out.line("    /// Elements in `elem`.");
        out.line("    unsigned int n = 0;");
        out.line("    " + referredType(*type.element, *type.module) +
                 "* elem = nullptr; ///< a block of the context's heap, or the caller's");
        break;
    case Shape::FixedArray: {
        const std::string start = initializer(*type.element).empty() ? "" : " = {}";
        out.line("    /// Elements in use.");
        out.line("    unsigned int n = 0;");
        out.line("    " + memberType(*type.element, *type.module) + " elem[" +
                 std::to_string(type.capacity) + "]" + start +
                 "; ///< those from `n` on are not looked at");
        break;
    }
    case Shape::FixedOctetString:
        out.line("    /// Octets in use.");
        out.line("    unsigned int numocts = 0;");
        out.line("    unsigned char data[" + std::to_string(type.capacity) +
                 "] = {}; ///< those from `numocts` on are not looked at");
        break;
    case Shape::FixedBitString:
        out.line("    /// Bits in use.");
        out.line("    unsigned int numbits = 0;");
        out.line("    unsigned char data[" + std::to_string((type.capacity + 7) / 8) +
                 "] = {}; ///< the first bit is the high bit of the first octet");
        break;
    default:
        break;
    }
    if (owns) {
        recordFunctions(out, type);
    }
    out.line("};");
    namedNumbers(out, type);
    if (type.shape == Shape::Choice && !type.elements.empty()) {
        out.line();
        out.comment("Selectors of " + name + ".");
        std::vector<std::string> items;
        for (const Element& element : type.elements) {
            items.push_back("T_" + type.name + "_" + cppName(element.name) + " = " +
                            std::to_string(items.size() + 1));
        }
        enumeration(out, "T_" + type.name + " : unsigned", items);
    }
}

void Emitter::control(Writer& out, const Type& type) {
    static const char* const bases[] = {"ASN1CType",   "ASN1CSeqOfList",       "ASN1CBitStr",
                                        "ASN1CBitStr", "ASN1CGeneralizedTime", "ASN1CType"};
    const ControlBase kind = controlBase(type);
    const Values values = namesOf(type);
    const std::string base =
        kind == ControlBase::Alias ? controlFrom(*type.aliasOf) : bases[static_cast<int>(kind)];
    out.line();
    out.comment("Ties a value of " + recordName(type) + " to a context and a message buffer.");
    out.line(exported("class") + " " + controlName(type) + " : public " + base + " {");
    if (kind == ControlBase::Null) {
        out.lines(NullControl, values);
        return;
    }
    out.lines(Constructors, values);
    out.lines(type.copyable ? ControlCopy : NoControlCopy, values);
    out.lines(Coding, values);
    if (type.copyable) {
        out.lines(Copying, values);
    }
    if (kind != ControlBase::Alias) {
        out.lines(ServedValue, values);
    }
    if (kind != ControlBase::Alias && kind != ControlBase::Plain && type.copyable) {
        out.lines(CopyConstructor, values);
    }
    out.line("};");
}

void Emitter::functions(Writer& out, const Type& type) {
    Values values = namesOf(type);
    values["api"] = output_.exportMacro.empty() ? "" : output_.exportMacro + " ";
    familyFunctions(out, type, values,
                    {NullFunctions, Functions, CopyFunction, FreeFunction, TableFunctions});
}

} // namespace asn1gen
