#include "emitter.h"
#include "names.h"

// Information objects: their classes, the objects and the sets, declared and defined.

namespace asn1gen {
namespace {

// One of the operations that every class has, under the name that the class gives it.
struct Operation {
    std::string result;
    std::string name;
    std::vector<std::string> arguments;
    std::string comment;
    std::string idle; ///< what a class does that leaves its type open
};

std::vector<Operation> operations(const ObjectClass& objectClass) {
    const std::string& field = objectClass.typeField;
    const std::string slot = "Asn1TObject& ";
    return {
        {"void*",
         "constructASN1T" + field,
         {"ASN1CTXT* ctxt"},
         "A zeroed record on the context's heap; null when memory is out.",
         "return nullptr;"},
        {"ASN1CType*",
         "constructASN1C" + field,
         {"ASN1MessageBufferIF& buffer", "void* value"},
         "A control object for the value, on the heap of the buffer's context; null when memory is "
         "out.",
         "return nullptr;"},
        {"void",
         "destructASN1C" + field,
         {"ASN1CType* control"},
         "Ends a control object of constructASN1C" + field + ".",
         ""},
        {"int",
         "encodeBER" + field,
         {"ASN1CTXT* ctxt", slot + "slot"},
         "Encodes the typed value; octets added or a negative status.",
         "return 0;"},
        {"int",
         "decodeBER" + field,
         {"ASN1CTXT* ctxt", slot + "slot"},
         "Decodes the typed value at the context's position; 0 or a negative status.",
         "return 0;"},
        {"void",
         "copy" + field,
         {"ASN1CTXT* ctxt", slot + "source", slot + "target"},
         "Copies the typed value on to the context's heap.",
         ""},
        {"void",
         "free" + field,
         {"ASN1CTXT* ctxt", slot + "slot"},
         "Gives what the typed value holds back to the context's heap.",
         ""},
    };
}

// Unnamed where a body has no use for an argument.
std::vector<std::string> unnamed(const std::vector<std::string>& arguments) {
    std::vector<std::string> result;
    result.reserve(arguments.size());
    for (const std::string& argument : arguments) {
        result.push_back(argument.substr(0, argument.rfind(' ')));
    }
    return result;
}

std::string arcList(const std::vector<unsigned>& arcs) {
    std::string text;
    for (const unsigned arc : arcs) {
        text += (text.empty() ? "" : ", ") + std::to_string(arc);
    }
    return text;
}

} // namespace

void Emitter::objectClass(Writer& out, const ObjectClass& objectClass) {
    const Assignment& node = *objectClass.node;
    out.line();
    out.comment(node.comment.empty() ? "Information object class " + node.name + "."
                                     : node.comment);
    out.line(exported("class") + " " + objectClass.name + " {");
    out.line("public:");
    out.line("    " + objectClass.name + "(const " + objectClass.name + "&) = delete;");
    out.line("    " + objectClass.name + "& operator=(const " + objectClass.name + "&) = delete;");
    out.line();
    const std::string ending = objectClass.typeOptional ? ";" : " = 0;";
    const std::vector<Operation> all = operations(objectClass);
    for (std::size_t i = 0; i < all.size(); ++i) {
        out.comment(all[i].comment, 4);
        out.call("    virtual " + all[i].result + " " + all[i].name, all[i].arguments, ending);
        if (i == 2) {
            out.line("    virtual ~" + objectClass.name + "();");
        }
    }
    out.line();
    if (objectClass.hasOptionalFields()) {
        out.line("    /// Which of the optional fields are set.");
        out.line("    struct Presence {");
        for (const ClassFieldNode& field : node.fields) {
            if (field.optional) {
                out.line("        unsigned " + cppName(field.name) + "Present : 1;");
            }
        }
        out.line("    } m = Presence();");
    }
    for (const ClassFieldNode& field : node.fields) {
        if (!field.isType && field.name != "id") {
            out.line("    /// &" + field.name);
            out.line("    ASN1TObjId " + memberName(field.name) + ";");
        }
    }
    out.line("    /// Tells the object among those of its set.");
    out.line("    ASN1TObjId id;");
    out.line();
    out.line("protected:");
    out.call("    " + objectClass.name, {"unsigned char count", "const unsigned* arcs"}, ";");
    out.line("};");
}

void Emitter::object(Writer& out, const Object& object) {
    out.line();
    std::string dotted;
    for (const unsigned arc : object.arcs) {
        dotted += (dotted.empty() ? "" : ".") + std::to_string(arc);
    }
    out.comment("Object of class " + object.objectClass->name + " with the identifier " + dotted +
                (object.type == nullptr ? ", without a value type"
                 : object.type->builtin ? ""
                                        : " and values " + recordName(*object.type)) +
                (object.comment.empty() ? "." : ". " + object.comment));
    out.derived(exported("class") + " " + object.name + " final",
                "public " + object.objectClass->name);
    out.line("public:");
    out.line("    /// The one object; it lives to the end of the process.");
    out.line("    static " + object.name + "* instance();");
    if (object.type != nullptr) {
        out.line();
        for (const Operation& operation : operations(*object.objectClass)) {
            out.call("    " + operation.result + " " + operation.name, operation.arguments,
                     " override;");
        }
    }
    out.line();
    out.line("private:");
    out.line("    " + object.name + "();");
    out.line("    ~" + object.name + "() override;");
    out.line("};");
}

void Emitter::objectSet(Writer& out, const ObjectSet& set) {
    const std::string& objectClass = set.objectClass->name;
    out.line();
    out.comment(set.comment.empty() ? "Object set of class " + objectClass + "." : set.comment);
    out.line(exported("class") + " " + set.name + " {");
    out.line("public:");
    out.line("    /// The one set, built at first use; it lives to the end of the process.");
    out.line("    /// @param ctxt is not looked at and may be null");
    out.line("    static " + set.name + "* instance(ASN1CTXT* ctxt);");
    out.line("    /// @return the first object with this identifier, null when there is none");
    out.line("    " + objectClass + "* lookupObject(ASN1TObjId id) const;");
    out.line();
    out.line("    /// Objects in the set.");
    out.line("    unsigned int count;");
    out.line("    /// The objects, in the order of the set.");
    out.line("    " + objectClass + "** objects;");
    out.line();
    out.line("private:");
    out.line("    explicit " + set.name + "(ASN1CTXT* ctxt);");
    out.line("};");
}

void Emitter::objectClassDefinitions(Writer& out, const ObjectClass& objectClass) {
    const std::string& name = objectClass.name;
    out.line();
    out.constructor(name + "::" + name, {"unsigned char count", "const unsigned* arcs"},
                    {"id(count, arcs)"}, " {}");
    out.line(name + "::~" + name + "() = default;");
    if (!objectClass.typeOptional) {
        return;
    }
    for (const Operation& operation : operations(objectClass)) {
        const std::string head = operation.result + " " + name + "::" + operation.name;
        if (operation.idle.empty()) {
            out.call(head, unnamed(operation.arguments), " {}");
            continue;
        }
        out.call(head, unnamed(operation.arguments), " {");
        out.line("    " + operation.idle);
        out.line("}");
    }
}

void Emitter::objectDefinitions(Writer& out, const Object& object) {
    const std::string& name = object.name;
    const std::string& className = object.objectClass->name;
    out.line();
    out.line("namespace objects {");
    out.line("constexpr unsigned " + name + "_arcs[] = {" + arcList(object.arcs) + "};");
    out.line("}");
    out.line();
    const bool typed = object.type != nullptr && object.objectClass->typeOptional;
    out.constructor(
        name + "::" + name, {},
        {className + "(" + std::to_string(object.arcs.size()) + ", objects::" + name + "_arcs)"},
        typed ? " {" : " {}");
    if (typed) {
        out.line("    m." + cppName(object.objectClass->typeField) + "Present = 1;");
        out.line("}");
    }
    out.line();
    out.line(name + "::~" + name + "() = default;");
    out.line();
    out.line(name + "* " + name + "::instance() {");
    out.line("    static " + name + "* const object = new " + name + ";");
    out.line("    return object;");
    out.line("}");
    if (object.type == nullptr) {
        return;
    }
    const std::string type =
        (object.type->builtin ? engine("") : "") + descriptorName(*object.type);
    const std::string objects = engine("family::");
    struct Body {
        std::string callee;
        std::vector<std::string> passed;
    };
    Body control{objects + "newControl", {"buffer", "value", type}};
    const bool hasControl = !object.type->builtin;
    const bool null = object.type->shape == Shape::Null;
    if (hasControl && null) {
        control = {objects + "newControl<" + controlName(*object.type) + ">", {"buffer"}};
    } else if (hasControl) {
        control = {objects + "newControl<" + controlName(*object.type) + ", " +
                       recordName(*object.type) + ">",
                   {"buffer", "value"}};
    }
    const Body bodies[] = {
        {"return " + objects + "newRecord", {"ctxt", type}},
        {"return " + control.callee, control.passed},
        {objects + "endControl", {"control"}},
        {"return " + objects + "encodeSlot", {"ctxt", type, "slot"}},
        {"return " + objects + "decodeSlot", {"ctxt", type, "slot"}},
        {objects + "copySlot", {"ctxt", type, "source", "target"}},
        {objects + "releaseSlot", {"ctxt", type, "slot"}},
    };
    const Body* body = bodies;
    for (const Operation& operation : operations(*object.objectClass)) {
        std::vector<std::string> arguments = operation.arguments;
        if (body == bodies + 1 && hasControl && null) {
            arguments = {arguments[0], "void*"};
        }
        out.line();
        out.function(operation.result + " " + name + "::" + operation.name, arguments, body->callee,
                     body->passed);
        ++body;
    }
}

void Emitter::objectSetDefinitions(Writer& out, const ObjectSet& set) {
    const std::string& className = set.objectClass->name;
    const std::string data = engine("");
    const std::string count = std::to_string(set.objects.size());
    if (!set.objects.empty()) {
        out.line();
        out.line("namespace {");
        out.line("constexpr " + data + "ObjectDescription " + set.name + "_objects[] = {");
        for (const Object* object : set.objects) {
            const bool builtin = object->type != nullptr && object->type->builtin;
            const std::string type =
                object->type == nullptr
                    ? std::string("nullptr")
                    : "&" + (builtin ? data : std::string()) + descriptorName(*object->type);
            out.line("    {\"" + object->name + "\", objects::" + object->name + "_arcs, " +
                     std::to_string(object->arcs.size()) + ", " + type + "},");
        }
        out.line("};");
        out.line("constexpr " + data + "ObjectChains " + set.name + "_chains(" + set.name +
                 "_objects);");
        out.line("}");
    }
    out.line();
    out.line("namespace sets {");
    out.line("constexpr " + data + "ObjectSetDescription " + set.name + " = {");
    out.line("    /*name=*/\"" + set.name + "\",");
    out.line("    /*objectClass=*/\"" + className + "\",");
    out.line("    /*objects=*/" + (set.objects.empty() ? "nullptr" : set.name + "_objects") + ",");
    out.line("    /*count=*/" + count + ",");
    out.line("    /*index=*/" + (set.objects.empty() ? "{}" : set.name + "_chains.index()") + ",");
    out.line("};");
    out.line("}");
    out.line();
    out.constructor(set.name + "::" + set.name, {"ASN1CTXT*"},
                    {"count(" + count + ")",
                     set.objects.empty() ? "objects(nullptr)"
                                         : "objects(new " + className + "* [" + count + "] {})"},
                    set.objects.empty() ? " {}" : " {");
    std::size_t i = 0;
    for (const Object* object : set.objects) {
        out.line("    objects[" + std::to_string(i++) + "] = " + object->name + "::instance();");
    }
    if (!set.objects.empty()) {
        out.line("}");
    }
    out.line();
    out.line(set.name + "* " + set.name + "::instance(ASN1CTXT* ctxt) {");
    out.line("    static " + set.name + "* const set = new " + set.name + "(ctxt);");
    out.line("    return set;");
    out.line("}");
    out.line();
    out.line(className + "* " + set.name + "::lookupObject(ASN1TObjId id) const {");
    out.line("    const " + data + "ObjectDescription* found = " + engine("family::") +
             "findObject(sets::" + set.name + ", id);");
    out.line("    return found != nullptr ? objects[found - sets::" + set.name +
             ".objects] : nullptr;");
    out.line("}");
}

} // namespace asn1gen
