#include "emitter.h"

// Control classes and plain functions of a type: one line each over the engine.

namespace asn1gen {
namespace {

// How the base class is told about a value, and about the copy in a copied object.
std::string baseOnValue(ControlBase kind, const std::string& context, const Type& type,
                        const std::string& value) {
    const std::string first = context.empty() ? "" : context + ", ";
    switch (kind) {
    case ControlBase::List:
        return "ASN1CSeqOfList(" + first + value + ")";
    case ControlBase::BitString:
        return "ASN1CBitStr(" + first + value + ")";
    case ControlBase::FixedBitString:
        return "ASN1CBitStr(" + first + value + ".data, " + value + ".numbits, " +
               std::to_string(type.capacity) + ")";
    case ControlBase::Time:
        return "ASN1CGeneralizedTime(" + first + value + ")";
    default:
        return "ASN1CType(" + context + ")";
    }
}

} // namespace

void Emitter::controlDefinitions(Writer& out, const Type& type) {
    const ControlBase kind = controlBase(type);
    const std::string name = controlName(type);
    const std::string value = recordName(type);
    const std::string family = engine("family::");
    const std::string row = "types::" + type.name;
    const std::string scope = name + "::";
    const auto construct = [&](const std::vector<std::string>& arguments,
                               const std::vector<std::string>& initializers,
                               const std::string& body) {
        out.constructor(scope + name, arguments, initializers, body);
    };
    out.line();
    if (kind == ControlBase::Null) {
        out.line(scope + name + "() = default;");
        construct({"ASN1MessageBufferIF& buffer"}, {"ASN1CType(buffer)"}, " {}");
        construct({name + "& other"}, {"ASN1CType(other)"}, " {}");
        for (const bool encode : {true, false}) {
            out.line();
            out.function(std::string("int ") + scope + (encode ? "EncodeTo" : "DecodeFrom"),
                         {"ASN1MessageBufferIF& buffer"},
                         "return " + family + (encode ? "encodeTo" : "decodeFrom"),
                         {"*this", "buffer", row, "nullptr"});
        }
        return;
    }
    const std::string buffer = "ASN1MessageBufferIF& buffer";
    const bool alias = kind == ControlBase::Alias;
    if (alias) {
        const std::string base = controlName(*type.aliasOf);
        construct({value + "& value"}, {base + "(value)"}, " {}");
        construct({buffer, value + "& value"}, {base + "(buffer, value)"}, " {}");
        if (type.copyable) {
            construct({name + "& other"}, {base + "(other)"}, " {}");
        }
    } else {
        construct({value + "& value"}, {baseOnValue(kind, "", type, "value"), "msgData(&value)"},
                  " {}");
        construct({buffer, value + "& value"},
                  {baseOnValue(kind, "buffer", type, "value"), "msgData(&value)"}, " {}");
        if (type.copyable && kind == ControlBase::Plain) {
            construct({name + "& other"},
                      {"ASN1CType(other)", "msgData(&" + family + "copiedValue(other))"}, " {}");
        } else if (type.copyable) {
            construct({name + "& other"}, {name + "(other, " + family + "copiedValue(other))"},
                      " {}");
            construct({name + "& other", value + "& copy"},
                      {baseOnValue(kind, "*other.getContext()", type, "copy"), "msgData(&copy)"},
                      " {");
            out.line("    msgBuf = other.msgBuf;");
            out.line("}");
        }
    }
    // What the base and its iterators know of the value has to follow one that was replaced.
    const std::string refresh =
        kind == ControlBase::List        ? "++modCount;"
        : kind == ControlBase::BitString ? "init(*msgData);"
        : kind == ControlBase::FixedBitString
            ? "init(msgData->data, msgData->numbits, " + std::to_string(type.capacity) + ");"
        : kind == ControlBase::Time ? "parsed = 0;"
                                    : "";
    if (type.copyable) {
        out.line();
        out.call(name + "& " + scope + "operator=", {name + "& other"}, " {");
        if (alias) {
            out.line("    " + controlName(*type.aliasOf) + "::operator=(other);");
        } else {
            out.line("    if (msgData != other.msgData) {");
            out.call("        " + family + "assign", {"*this", row, "other.msgData", "msgData"},
                     ";");
            if (!refresh.empty()) {
                out.line("        " + refresh);
            }
            out.line("    }");
        }
        out.line("    return *this;");
        out.line("}");
    }
    const std::vector<std::string> served = {"*this", "buffer", row, "msgData"};
    out.line();
    out.function("int " + scope + "EncodeTo", {buffer}, "return " + family + "encodeTo", served);
    out.line();
    if (refresh.empty()) {
        out.function("int " + scope + "DecodeFrom", {buffer}, "return " + family + "decodeFrom",
                     served);
    } else {
        out.call("int " + scope + "DecodeFrom", {buffer}, " {");
        out.call("    const int status = " + family + "decodeFrom", served, ";");
        out.line("    " + refresh);
        out.line("    return status;");
        out.line("}");
    }
    if (type.copyable) {
        out.line();
        out.function(value + "* " + scope + "getCopy", {value + "* target"},
                     "return " + family + "getCopy", {"*this", row, "msgData", "target"});
        out.line();
        out.function(value + "* " + scope + "newCopy", {}, "return " + family + "newCopy",
                     {"*this", row, "msgData"});
    }
}

void Emitter::functionDefinitions(Writer& out, const Type& type) {
    const std::string pointer = recordName(type) + "*";
    const std::string family = engine("family::");
    const std::string row = "types::" + type.name;
    const auto define = [&](const std::string& result, const std::string& prefix,
                            std::vector<std::string> arguments, const std::string& callee,
                            std::vector<std::string> passed) {
        arguments.insert(arguments.begin(), "ASN1CTXT* ctxt");
        passed.insert(passed.begin(), {"ctxt", row});
        out.line();
        out.function(result + " " + prefix + type.name, arguments, callee, passed);
    };
    if (type.shape == Shape::Null) {
        define("int", "asn1E_", {"ASN1TagType tagging"}, "return " + family + "encode",
               {"nullptr", "tagging"});
        define("int", "asn1D_", {"ASN1TagType tagging", "int length"},
               "return " + family + "decode", {"nullptr", "tagging", "length"});
        return;
    }
    define("int", "asn1E_", {pointer + " value", "ASN1TagType tagging"},
           "return " + family + "encode", {"value", "tagging"});
    define("int", "asn1D_", {pointer + " value", "ASN1TagType tagging", "int length"},
           "return " + family + "decode", {"value", "tagging", "length"});
    if (type.copyable) {
        define("void", "asn1Copy_", {pointer + " source", pointer + " target"}, family + "copy",
               {"source", "target"});
    }
    if (type.holdsMemory) {
        define("void", "asn1Free_", {pointer + " value"}, family + "release", {"value"});
    }
    if (type.table) {
        define("int", "asn1ETC_", {pointer + " value"}, "return " + family + "encodeOpenValue",
               {"value"});
        define("int", "asn1DTC_", {pointer + " value"}, "return " + family + "decodeOpenValue",
               {"value"});
    }
}

} // namespace asn1gen
