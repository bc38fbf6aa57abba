#include "printer.h"

namespace notation {
namespace {

std::string indented(const std::string& text) {
    std::string result = "    ";
    for (const char c : text) {
        result += c;
        if (c == '\n') {
            result += "    ";
        }
    }
    return result;
}

std::string printBound(const BoundNode& bound) {
    switch (bound.kind) {
    case BoundNode::Min:
        return "MIN";
    case BoundNode::Max:
        return "MAX";
    default:
        return printValue(bound.value);
    }
}

std::string printRanges(const std::vector<RangeNode>& ranges) {
    std::string text;
    for (const RangeNode& range : ranges) {
        const std::string lower = printBound(range.lower);
        const std::string upper = printBound(range.upper);
        text += (text.empty() ? "" : " | ") + lower + (lower == upper ? "" : ".." + upper);
    }
    return text;
}

std::string printTag(const TagNode& tag) {
    static const char* const classes[] = {"UNIVERSAL ", "APPLICATION ", "", "PRIVATE "};
    static const char* const modes[] = {"", " IMPLICIT", " EXPLICIT"};
    return std::string("[") + classes[tag.tagClass] + std::to_string(tag.number) + "]" +
           modes[tag.mode] + " ";
}

std::string printNames(const std::vector<NamedNumber>& names) {
    if (names.empty()) {
        return "";
    }
    std::string text;
    for (const NamedNumber& named : names) {
        text +=
            (text.empty() ? "{ " : ", ") + named.name + "(" + std::to_string(named.number) + ")";
    }
    return " " + text + " }";
}

std::string printComponents(const char* keyword, const TypeNode& type) {
    if (type.components.empty()) {
        return std::string(keyword) + " {}";
    }
    std::string text = std::string(keyword) + " {";
    const char* separator = "\n";
    for (const ComponentNode& component : type.components) {
        text += separator + indented(printComponent(component));
        separator = ",\n";
    }
    return text + " }";
}

std::string printConstraints(const TypeNode& type) {
    std::string text;
    const bool list = type.kind == TypeNode::SequenceOf || type.kind == TypeNode::SetOf;
    if (!type.sizes.empty() && !list) {
        text += " (SIZE (" + printRanges(type.sizes) + "))";
    }
    if (!type.values.empty()) {
        text += " (" + printRanges(type.values) + ")";
    }
    if (type.containing) {
        text += " (CONTAINING " + printType(*type.containing) + ")";
    }
    if (type.table) {
        text += " ({" + type.table->set + "}";
        text += type.table->field.empty() ? ")" : "{@" + type.table->field + "})";
    }
    return text;
}

std::string printPlain(const TypeNode& type) {
    switch (type.kind) {
    case TypeNode::Boolean:
        return "BOOLEAN";
    case TypeNode::Integer:
        return "INTEGER" + printNames(type.names);
    case TypeNode::Enumerated:
        return "ENUMERATED" + printNames(type.names);
    case TypeNode::Null:
        return "NULL";
    case TypeNode::ObjectIdentifier:
        return "OBJECT IDENTIFIER";
    case TypeNode::OctetString:
        return "OCTET STRING";
    case TypeNode::BitString:
        return "BIT STRING" + printNames(type.names);
    case TypeNode::Sequence:
        return printComponents("SEQUENCE", type);
    case TypeNode::Set:
        return printComponents("SET", type);
    case TypeNode::Choice:
        return printComponents("CHOICE", type);
    case TypeNode::SequenceOf:
    case TypeNode::SetOf:
        return std::string(type.kind == TypeNode::SetOf ? "SET" : "SEQUENCE") +
               (type.sizes.empty() ? "" : " SIZE (" + printRanges(type.sizes) + ")") + " OF " +
               printType(*type.element);
    case TypeNode::ClassField:
        return type.className + ".&" + type.fieldName;
    case TypeNode::CharacterString:
    case TypeNode::Reference:
        break;
    }
    return type.reference;
}

} // namespace

std::string printValue(const ValueNode& value) {
    switch (value.kind) {
    case ValueNode::Number:
        return std::to_string(value.number);
    case ValueNode::Boolean:
        return value.boolean ? "TRUE" : "FALSE";
    case ValueNode::Reference:
        return value.reference;
    case ValueNode::Braces:
        break;
    }
    std::string text = "{ ";
    for (const ValueNode::Arc& arc : value.arcs) {
        text += arc.name.empty()     ? arc.number
                : arc.number.empty() ? arc.name
                                     : arc.name + "(" + arc.number + ")";
        text += " ";
    }
    return text + "}";
}

std::string printType(const TypeNode& type) {
    return (type.tag ? printTag(*type.tag) : "") + printPlain(type) + printConstraints(type);
}

std::string printComponent(const ComponentNode& component) {
    if (component.extensionMarker) {
        return "...";
    }
    std::string text = component.name + " " + printType(*component.type);
    if (component.optional) {
        text += " OPTIONAL";
    }
    if (component.defaultValue) {
        text += " DEFAULT " + printValue(*component.defaultValue);
    }
    return text;
}

} // namespace notation
