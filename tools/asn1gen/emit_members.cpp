#include "emitter.h"

// Control classes and plain functions of a type: one line each over the engine.

namespace asn1gen {
namespace {

/// How the base class is told about a value.
std::string baseOnValue(ControlBase kind) {
    switch (kind) {
    case ControlBase::Alias:
        return "$base($context$value)";
    case ControlBase::List:
        return "ASN1CSeqOfList($context$value)";
    case ControlBase::BitString:
        return "ASN1CBitStr($context$value)";
    case ControlBase::FixedBitString:
        return "ASN1CBitStr($context$value.data, $value.numbits, $capacity)";
    case ControlBase::Time:
        return "ASN1CGeneralizedTime($context$value)";
    default:
        return "ASN1CType($only)";
    }
}

/// The same on a context, or on one of its own where there is none.
std::string baseOn(ControlBase kind, const Type& type, const std::string& base,
                   const std::string& context, const std::string& value) {
    return filled(baseOnValue(kind), {{"base", base},
                                      {"context", context.empty() ? "" : context + ", "},
                                      {"only", context},
                                      {"value", value},
                                      {"capacity", std::to_string(type.capacity)}});
}

/// What makes the base and its iterators follow a value that was replaced.
std::string refreshment(ControlBase kind, const Type& type) {
    switch (kind) {
    case ControlBase::List:
        return "++modCount;";
    case ControlBase::BitString:
        return "init(*msgData);";
    case ControlBase::FixedBitString:
        return "init(msgData->data, msgData->numbits, " + std::to_string(type.capacity) + ");";
    case ControlBase::Time:
        return "parsed = 0;";
    default:
        return "";
    }
}

constexpr const char* NullControl = R"(
$C::$C() = default;
$C::$C(ASN1MessageBufferIF& buffer) : ASN1CType(buffer) {}
$C::$C($C& other) : ASN1CType(other) {}

int $C::EncodeTo(ASN1MessageBufferIF& buffer) {
    return ${family}encodeTo(*this, buffer, types::$X, nullptr);
}

int $C::DecodeFrom(ASN1MessageBufferIF& buffer) {
    return ${family}decodeFrom(*this, buffer, types::$X, nullptr);
}
)";

constexpr const char* AliasConstructors = R"(
$C::$C($T& value)
    : $onValue {}
$C::$C(
    ASN1MessageBufferIF& buffer, $T& value)
    : $onBuffer {}
)";

constexpr const char* Constructors = R"(
$C::$C($T& value)
    : $onValue, msgData(&value) {}
$C::$C(
    ASN1MessageBufferIF& buffer, $T& value)
    : $onBuffer, msgData(&value) {}
)";

constexpr const char* PlainCopy = R"(
$C::$C($C& other)
    : ASN1CType(other), msgData(&${family}copiedValue(other)) {}
)";

constexpr const char* CopyThroughValue = R"(
$C::$C($C& other)
    : $C(other, ${family}copiedValue(other)) {}
$C::$C($C& other, $T& copy)
    : $onCopy, msgData(&copy) {
    msgBuf = other.msgBuf;
}
)";

constexpr const char* AliasAssignment = R"(

$C& $C::operator=($C& other) {
    $base::operator=(other);
    return *this;
}
)";

constexpr const char* ValueAssignment = R"(

$C& $C::operator=($C& other) {
    if (msgData != other.msgData) {
        ${family}assign(*this, types::$X, other.msgData, msgData);$refreshed
    }
    return *this;
}
)";

constexpr const char* Encoding = R"(

int $C::EncodeTo(ASN1MessageBufferIF& buffer) {
    return ${family}encodeTo(*this, buffer, types::$X, msgData);
}
)";

constexpr const char* Decoding = R"(

int $C::DecodeFrom(ASN1MessageBufferIF& buffer) {
    return ${family}decodeFrom(*this, buffer, types::$X, msgData);
}
)";

constexpr const char* RefreshingDecoding = R"(

int $C::DecodeFrom(ASN1MessageBufferIF& buffer) {
    const int status = ${family}decodeFrom(*this, buffer, types::$X, msgData);
    $refresh
    return status;
}
)";

constexpr const char* Copying = R"(

$T* $C::getCopy($T* target) {
    return ${family}getCopy(*this, types::$X, msgData, target);
}

$T* $C::newCopy() {
    return ${family}newCopy(*this, types::$X, msgData);
}
)";

constexpr const char* NullFunctions = R"(

int asn1E_$X(ASN1CTXT* ctxt, ASN1TagType tagging) {
    return ${family}encode(ctxt, types::$X, nullptr, tagging);
}

int asn1D_$X(ASN1CTXT* ctxt, ASN1TagType tagging, int length) {
    return ${family}decode(ctxt, types::$X, nullptr, tagging, length);
}
)";

constexpr const char* Functions = R"(

int asn1E_$X(ASN1CTXT* ctxt, $T* value, ASN1TagType tagging) {
    return ${family}encode(ctxt, types::$X, value, tagging);
}

int asn1D_$X(ASN1CTXT* ctxt, $T* value, ASN1TagType tagging, int length) {
    return ${family}decode(ctxt, types::$X, value, tagging, length);
}
)";

constexpr const char* CopyFunction = R"(

void asn1Copy_$X(ASN1CTXT* ctxt, $T* source, $T* target) {
    ${family}copy(ctxt, types::$X, source, target);
}
)";

constexpr const char* FreeFunction = R"(

void asn1Free_$X(ASN1CTXT* ctxt, $T* value) {
    ${family}release(ctxt, types::$X, value);
}
)";

constexpr const char* TableFunctions = R"(

int asn1ETC_$X(ASN1CTXT* ctxt, $T* value) {
    return ${family}encodeOpenValue(ctxt, types::$X, value);
}

int asn1DTC_$X(ASN1CTXT* ctxt, $T* value) {
    return ${family}decodeOpenValue(ctxt, types::$X, value);
}
)";

} // namespace

Values Emitter::namesOf(const Type& type) const {
    return {{"X", type.name},
            {"called", calledName(type)},
            {"T", recordName(type)},
            {"C", controlName(type)},
            {"family", engine("family::")}};
}

void Emitter::controlDefinitions(Writer& out, const Type& type) {
    const ControlBase kind = controlBase(type);
    const bool alias = kind == ControlBase::Alias;
    Values values = namesOf(type);
    out.line();
    if (kind == ControlBase::Null) {
        out.lines(NullControl, values);
        return;
    }
    const std::string refresh = refreshment(kind, type);
    values["base"] = alias ? controlFrom(*type.aliasOf) : "";
    values["onValue"] = baseOn(kind, type, values["base"], "", "value");
    values["onBuffer"] = baseOn(kind, type, values["base"], "buffer", "value");
    values["onCopy"] = baseOn(kind, type, values["base"], "*other.getContext()", "copy");
    values["refresh"] = refresh;
    values["refreshed"] = refresh.empty() ? "" : "\n        " + refresh;
    out.lines(alias ? AliasConstructors : Constructors, values);
    if (type.copyable && alias) {
        out.lines("$C::$C($C& other) : $base(other) {}\n", values);
    } else if (type.copyable) {
        out.lines(kind == ControlBase::Plain ? PlainCopy : CopyThroughValue, values);
    }
    if (type.copyable) {
        out.lines(alias ? AliasAssignment : ValueAssignment, values);
    }
    out.lines(Encoding, values);
    out.lines(refresh.empty() ? Decoding : RefreshingDecoding, values);
    if (type.copyable) {
        out.lines(Copying, values);
    }
}

void Emitter::familyFunctions(Writer& out, const Type& type, const Values& values,
                              const FamilyTemplates& templates) {
    if (type.shape == Shape::Null) {
        out.lines(templates.null, values);
        return;
    }
    out.lines(templates.coders, values);
    if (type.copyable) {
        out.lines(templates.copy, values);
    }
    if (type.holdsMemory) {
        out.lines(templates.free, values);
    }
    if (type.table) {
        out.lines(templates.table, values);
    }
}

void Emitter::functionDefinitions(Writer& out, const Type& type) {
    const Values values = namesOf(type);
    familyFunctions(out, type, values,
                    {NullFunctions, Functions, CopyFunction, FreeFunction, TableFunctions});
}

} // namespace asn1gen
