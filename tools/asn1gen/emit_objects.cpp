#include <algorithm>

#include "emitter.h"
#include <notation/names.h>

// Information objects: their classes, the objects and the sets, declared and defined.

namespace asn1gen {
namespace {

// One of the operations that every class has, under the name that the class gives it.
struct Operation {
    std::string result;
    std::string name;
    std::string arguments;
    std::string comment;
};

std::vector<Operation> operations(const ObjectClass& objectClass) {
    const std::string& field = objectClass.typeField;
    return {
        {"void*", "constructASN1T" + field, "ASN1CTXT* ctxt",
         "A zeroed record on the context's heap; null when memory is out."},
        {"ASN1CType*", "constructASN1C" + field, "ASN1MessageBufferIF& buffer, void* value",
         "A control object for the value, on the heap of the buffer's context; null when memory is "
         "out."},
        {"void", "destructASN1C" + field, "ASN1CType* control",
         "Ends a control object of constructASN1C" + field + "."},
        {"int", "encodeBER" + field, "ASN1CTXT* ctxt, Asn1TObject& slot",
         "Encodes the typed value; octets added or a negative status."},
        {"int", "decodeBER" + field, "ASN1CTXT* ctxt, Asn1TObject& slot",
         "Decodes the typed value at the context's position; 0 or a negative status."},
        {"void", "copy" + field, "ASN1CTXT* ctxt, Asn1TObject& source, Asn1TObject& target",
         "Copies the typed value on to the context's heap."},
        {"void", "free" + field, "ASN1CTXT* ctxt, Asn1TObject& slot",
         "Gives what the typed value holds back to the context's heap."},
    };
}

constexpr const char* ClassCopy = R"(
public:
    $X(const $X&) = delete;
    $X& operator=(const $X&) = delete;

)";

constexpr const char* ClassIdentifier = R"(
    /// Tells the object among those of its set.
    ASN1TObjId id;

protected:
    /// @param count of the arcs of `id`, which are copied
    $X(unsigned char count, const unsigned* arcs);
};
)";

constexpr const char* ObjectInstance = R"(
public:
    /// The one object; it lives to the end of the process.
    static $X* instance();
)";

constexpr const char* ObjectLifetime = R"(

private:
    $X();
    ~$X() override;
};
)";

constexpr const char* Set = R"(
public:
    /// The one set, built at first use; it lives to the end of the process.
    /// @param ctxt is not looked at and may be null
    static $X* instance(ASN1CTXT* ctxt);
    /// @return the first object with this identifier, null when there is none
    $class* lookupObject(ASN1TObjId id) const;

    /// Objects in the set.
    unsigned int count;
    /// The objects, in the order of the set.
    $class** objects;

private:
    explicit $X(ASN1CTXT* ctxt);
};
)";

constexpr const char* ClassDefinitions = R"(

$X::$X(unsigned char count, const unsigned* arcs) : id(count, arcs) {}
$X::~$X() = default;
)";

// What a class does that leaves its type open.
constexpr const char* IdleOperations = R"(
void* $X::constructASN1T$field(ASN1CTXT*) {
    return nullptr;
}
ASN1CType* $X::constructASN1C$field(ASN1MessageBufferIF&, void*) {
    return nullptr;
}
void $X::destructASN1C$field(ASN1CType*) {}
int $X::encodeBER$field(ASN1CTXT*, Asn1TObject&) {
    return 0;
}
int $X::decodeBER$field(ASN1CTXT*, Asn1TObject&) {
    return 0;
}
void $X::copy$field(ASN1CTXT*, Asn1TObject&, Asn1TObject&) {}
void $X::free$field(ASN1CTXT*, Asn1TObject&) {}
)";

constexpr const char* ObjectArcs = R"(

namespace objects {
constexpr unsigned ${X}_arcs[] = {$arcs};
}
)";

constexpr const char* ObjectDefinitions = R"(

$X::$X() : $class($count, objects::${X}_arcs) {$presence}

$X::~$X() = default;

$X* $X::instance() {
    static $X* const object = new $X;
    return object;
}
)";

constexpr const char* ObjectOperations = R"(

void* $X::constructASN1T$field(ASN1CTXT* ctxt) {
    return ${family}newRecord(ctxt, $type);
}

ASN1CType* $X::constructASN1C$field(ASN1MessageBufferIF& buffer, $argument) {
    return ${family}newControl$control;
}

void $X::destructASN1C$field(ASN1CType* control) {
    ${family}endControl(control);
}

int $X::encodeBER$field(ASN1CTXT* ctxt, Asn1TObject& slot) {
    return ${family}encodeSlot(ctxt, $type, slot);
}

int $X::decodeBER$field(ASN1CTXT* ctxt, Asn1TObject& slot) {
    return ${family}decodeSlot(ctxt, $type, slot);
}

void $X::copy$field(ASN1CTXT* ctxt, Asn1TObject& source, Asn1TObject& target) {
    ${family}copySlot(ctxt, $type, source, target);
}

void $X::free$field(ASN1CTXT* ctxt, Asn1TObject& slot) {
    ${family}releaseSlot(ctxt, $type, slot);
}
)";

constexpr const char* SetDescription = R"(

namespace sets {
${constant}${data}ObjectSetDescription $X = {
    /*name=*/"$X",
    /*objectClass=*/"$className",
    /*objects=*/$table,
    /*count=*/$count,
    /*index=*/$index,
};
}

)";

constexpr const char* SetTable = R"(

namespace sets {
${constant}${data}ObjectSetDescription $X = {
    /*name=*/"$X",
    /*objectClass=*/"$className",
    /*objects=*/$table,
    /*count=*/$count,
    /*index=*/$index,
};
}
)";

constexpr const char* SetFunctions = R"(

$X* $X::instance(ASN1CTXT* ctxt) {
    static $X* const set = new $X(ctxt);
    return set;
}

$class* $X::lookupObject(ASN1TObjId id) const {
    const ${data}ObjectDescription* found = ${family}findObject(sets::$X, id);
    return found != nullptr ? objects[found - sets::$X.objects] : nullptr;
}
)";

} // namespace

void Emitter::objectClass(Writer& out, const ObjectClass& objectClass) {
    const Assignment& node = *objectClass.node;
    const Values values = {{"X", objectClass.name}};
    out.line();
    out.comment(node.comment.empty() ? "Information object class " + node.name + "."
                                     : node.comment);
    out.line(exported("class") + " " + objectClass.name + " {");
    out.lines(ClassCopy, values);
    const std::string ending = objectClass.typeOptional ? ";" : " = 0;";
    const std::vector<Operation> all = operations(objectClass);
    for (std::size_t i = 0; i < all.size(); ++i) {
        out.comment(all[i].comment, 4);
        out.line("    virtual " + all[i].result + " " + all[i].name + "(" + all[i].arguments + ")" +
                 ending);
        if (i == 2) {
            out.line("    virtual ~" + objectClass.name + "();");
        }
    }
    out.line();
    if (objectClass.hasOptionalFields()) {
        out.line("    /// Which of the optional fields are set: 1 in the bit of one that is.");
        out.line("    struct Presence {");
        for (const ClassFieldNode& field : node.fields) {
            if (field.optional) {
                out.line("        unsigned " + cppName(field.name) + "Present : 1;");
            }
        }
        out.line("    } m = Presence(); ///< a bit each");
    }
    for (const ClassFieldNode& field : node.fields) {
        if (!field.isType && field.name != "id") {
            out.line("    /// &" + field.name);
            out.line("    ASN1TObjId " + memberName(field.name) + ";");
        }
    }
    out.lines(ClassIdentifier, values);
}

void Emitter::object(Writer& out, const Object& object) {
    if (!object.objectClass->hasRecord) {
        return; // there are its tables
    }
    const Values values = {{"X", object.name}};
    out.line();
    out.comment("Object of class " + object.objectClass->name + " with the identifier " +
                arcsText(object.arcs, ".") +
                (object.type == nullptr ? ", without a value type"
                 : object.type->builtin ? ""
                                        : " and values " + recordName(*object.type)) +
                (object.comment.empty() ? "." : ". " + object.comment));
    out.line(exported("class") + " " + object.name + " final : public " +
             from(object.objectClass->module, object.objectClass->name) + " {");
    out.lines(ObjectInstance, values);
    if (object.type != nullptr) {
        out.line();
        for (const Operation& operation : operations(*object.objectClass)) {
            out.line("    " + operation.result + " " + operation.name + "(" + operation.arguments +
                     ") override;");
        }
    }
    out.lines(ObjectLifetime, values);
}

void Emitter::objectSet(Writer& out, const ObjectSet& set) {
    if (!set.objectClass->hasRecord) {
        return;
    }
    const std::string objectClass = from(set.objectClass->module, set.objectClass->name);
    out.line();
    out.comment(set.comment.empty() ? "Object set of class " + objectClass + "." : set.comment);
    out.line(exported("class") + " " + set.name + " {");
    out.lines(Set, {{"X", set.name}, {"class", objectClass}});
}

void Emitter::objectClassDefinitions(Writer& out, const ObjectClass& objectClass) {
    const Values values = {{"X", objectClass.name}, {"field", objectClass.typeField}};
    out.lines(ClassDefinitions, values);
    if (objectClass.typeOptional) {
        out.lines(IdleOperations, values);
    }
}

void Emitter::objectDefinitions(Writer& out, const Object& object) {
    const std::string& field = object.objectClass->typeField;
    const bool telling = object.type != nullptr && object.objectClass->typeOptional;
    Values values = {
        {"X", object.name},
        {"class", from(object.objectClass->module, object.objectClass->name)},
        {"field", field},
        {"family", engine("family::")},
        {"count", std::to_string(object.arcs.size())},
        {"arcs", arcsText(object.arcs, ", ")},
        {"presence", telling ? "\n    m." + cppName(field) + "Present = 1;\n" : ""},
    };
    out.lines(ObjectArcs, values);
    if (!object.objectClass->hasRecord) {
        return;
    }
    out.lines(ObjectDefinitions, values);
    if (object.type == nullptr) {
        return;
    }
    const Type& type = *object.type;
    const bool null = type.shape == Shape::Null && !type.builtin;
    values["type"] = (type.builtin ? engine("") : "") + descriptorName(type);
    values["argument"] = null ? "void*" : "void* value";
    values["control"] =
        type.builtin ? "(buffer, value, " + values["type"] + ")"
        : null       ? "<" + controlFrom(type) + ">(buffer)"
                     : "<" + controlFrom(type) + ", " + recordFrom(type) + ">(buffer, value)";
    out.lines(ObjectOperations, values);
}

void Emitter::objectSetDefinitions(Writer& out, const ObjectSet& set) {
    const std::string data = engine("");
    const bool empty = set.objects.empty();
    const bool lookedUp =
        std::any_of(set.objects.begin(), set.objects.end(), [](const Object* object) {
            return object->type != nullptr && isOfLibrary(*object->type);
        });
    const std::string constant = lookedUp ? "const " : "constexpr ";
    const Values values = {{"X", set.name},
                           {"constant", constant},
                           {"class", from(set.objectClass->module, set.objectClass->name)},
                           {"className", set.objectClass->name},
                           {"data", data},
                           {"family", engine("family::")},
                           {"table", empty ? "nullptr" : set.name + "_objects"},
                           {"index", empty ? "{}" : set.name + "_chains.index()"},
                           {"count", std::to_string(set.objects.size())}};
    if (!empty) {
        out.line();
        out.line("namespace {");
        // Arcs of another module's object are no constants here.
        for (const Object* object : set.objects) {
            if (object->module != set.module) {
                out.line("constexpr unsigned " + set.name + "_" + object->name + "_arcs[] = {" +
                         arcsText(object->arcs, ", ") + "};");
            }
        }
        out.line(constant + data + "ObjectDescription " + set.name + "_objects[] = {");
        for (const Object* object : set.objects) {
            const bool builtin = object->type != nullptr && object->type->builtin;
            const std::string type =
                object->type == nullptr
                    ? std::string("nullptr")
                    : "&" + (builtin ? data : std::string()) + descriptorName(*object->type);
            out.line("    {\"" + object->name + "\", " +
                     (object->module == set.module ? "objects::" : set.name + "_") + object->name +
                     "_arcs" + ", " + std::to_string(object->arcs.size()) + ", " + type + "},");
        }
        out.line("};");
        out.line(constant + data + "ObjectChains " + set.name + "_chains(" + set.name +
                 "_objects);");
        out.line("}");
    }
    out.lines(set.objectClass->hasRecord ? SetDescription : SetTable, values);
    if (!set.objectClass->hasRecord) {
        return;
    }
    if (empty) {
        out.lines("$X::$X(ASN1CTXT*) : count(0), objects(nullptr) {}\n", values);
    } else {
        out.lines("$X::$X(ASN1CTXT*) : count($count), objects(new $class* [$count] {}) {\n",
                  values);
        for (std::size_t i = 0; i < set.objects.size(); ++i) {
            out.line("    objects[" + std::to_string(i) +
                     "] = " + from(set.objects[i]->module, set.objects[i]->name) + "::instance();");
        }
        out.line("}");
    }
    out.lines(SetFunctions, values);
}

} // namespace asn1gen
