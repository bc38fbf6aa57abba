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

std::string printComponents(const char* keyword, const TypeNode& type, unsigned depth) {
    if (type.components.empty() || depth == 0) {
        return std::string(keyword) + (depth == 0 ? " { ... }" : " {}");
    }
    std::string text = std::string(keyword) + " {";
    const char* separator = "\n";
    for (const ComponentNode& component : type.components) {
        text += separator + indented(printComponent(component, depth - 1));
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
    text += type.furtherText;
    if (type.containing) {
        text += " (CONTAINING " + printType(*type.containing) + ")";
    }
    if (type.table) {
        text += " (" + (type.table->set.empty() ? type.table->text : "{" + type.table->set + "}");
        text += type.table->field.empty() ? ")" : "{@" + type.table->field + "})";
    }
    return text;
}

std::string printPlain(const TypeNode& type, unsigned depth) {
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
        return printComponents("SEQUENCE", type, depth);
    case TypeNode::Set:
        return printComponents("SET", type, depth);
    case TypeNode::Choice:
        return printComponents("CHOICE", type, depth);
    case TypeNode::SequenceOf:
    case TypeNode::SetOf:
        return std::string(type.kind == TypeNode::SetOf ? "SET" : "SEQUENCE") +
               (type.sizes.empty() ? "" : " SIZE (" + printRanges(type.sizes) + ")") + " OF " +
               printType(*type.element, depth > 0 ? depth - 1 : 0);
    case TypeNode::ClassField: {
        std::string text = type.className;
        for (const std::string& field : type.fieldPath) {
            text += ".&" + field;
        }
        return text + ".&" + type.fieldName;
    }
    case TypeNode::Any:
        return type.text;
    case TypeNode::Tagged:
        return printType(*type.element, depth > 0 ? depth - 1 : 0);
    case TypeNode::Selection:
        return type.fieldName + " < " + printType(*type.element);
    case TypeNode::CharacterString:
    case TypeNode::Reference:
        break;
    }
    std::string text = type.reference;
    if (!type.arguments.empty()) {
        text += " {" + spelled(&type.arguments.front(), &type.arguments.back()) + "}";
    }
    return text;
}

} // namespace

std::string printValue(const ValueNode& value) {
    switch (value.kind) {
    case ValueNode::Number:
        return value.digits.empty() ? std::to_string(value.number) : value.digits;
    case ValueNode::Boolean:
        return value.boolean ? "TRUE" : "FALSE";
    case ValueNode::Reference:
        return (value.module.empty() ? "" : value.module + ".") + value.reference;
    case ValueNode::Text:
        return "\"" + value.text + "\"";
    case ValueNode::Other:
        return value.text;
    case ValueNode::Braces:
        break;
    }
    std::string text = "{ ";
    for (const ValueNode::Arc& arc : value.arcs) {
        const std::string& number = arc.number.empty() ? arc.reference : arc.number;
        text += arc.name.empty() ? number
                : number.empty() ? arc.name
                                 : arc.name + "(" + number + ")";
        text += " ";
    }
    return text + "}";
}

std::string printType(const TypeNode& type, unsigned depth) {
    return (type.tag ? printTag(*type.tag) : "") + printPlain(type, depth) + printConstraints(type);
}

std::string printComponent(const ComponentNode& component, unsigned depth) {
    if (component.extensionMarker) {
        return "...";
    }
    std::string text = component.name + " " + printType(*component.type, depth);
    if (component.optional) {
        text += " OPTIONAL";
    }
    if (component.defaultValue) {
        text += " DEFAULT " + printValue(*component.defaultValue);
    }
    return text;
}

} // namespace notation
