#include "json_texts.h"

#include <algorithm>

#include <brevantis/asn1/text/json_reader.h>

namespace asn1text {

namespace {

/// What may stand between the tokens of JSON (RFC 8259, 2): less than other texts have.
constexpr std::string_view JsonBlanks = " \t\r\n";

/// Behind the string that a text begins with.
std::size_t endOfString(std::string_view text) {
    std::size_t place = 1;
    while (place < text.size() && text[place] != '"') {
        place += text[place] == '\\' ? 2U : 1U;
    }
    return std::min(place + 1, text.size());
}

/// Behind the value that a text begins with.
std::size_t endOfValue(std::string_view text) {
    std::size_t open = 0;
    for (std::size_t place = 0; place < text.size();) {
        const char character = text[place];
        if (character == '"') {
            place += endOfString(text.substr(place));
        } else if (JsonBlanks.find(character) != std::string_view::npos && open == 0) {
            return place;
        } else {
            open += character == '{' || character == '[' ? 1U : 0U;
            open -= (character == '}' || character == ']') && open != 0 ? 1U : 0U;
            ++place;
        }
        if (open == 0 && (character == '"' || character == '}' || character == ']')) {
            return place;
        }
    }
    return text.size();
}

} // namespace

std::vector<std::string_view> jsonValues(std::string_view text) {
    std::vector<std::string_view> values;
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(JsonBlanks), text.size()));
        if (text.empty()) {
            return values;
        }
        const std::size_t end = endOfValue(text);
        values.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

std::string jsonMember(std::string_view object, std::string_view name) {
    if (object.substr(0, 1) != "{") {
        return "";
    }
    object.remove_prefix(1);
    while (true) {
        object.remove_prefix(std::min(object.find_first_not_of(" \t\r\n,"), object.size()));
        if (object.substr(0, 1) != "\"") {
            return "";
        }
        const std::size_t end = endOfString(object);
        const std::string_view key = object.substr(1, end - std::min<std::size_t>(end, 2));
        object.remove_prefix(end);
        object.remove_prefix(std::min(object.find_first_not_of(" \t\r\n:"), object.size()));
        if (key == name) {
            const std::size_t length = object.substr(0, 1) == "\"" ? endOfString(object) : 0;
            return length > 2 ? std::string(object.substr(1, length - 2)) : "";
        }
        // A value ends with its brackets, or in front of a comma or a brace.
        const bool nested =
            !object.empty() && (object[0] == '{' || object[0] == '[' || object[0] == '"');
        object.remove_prefix(nested ? endOfValue(object)
                                    : std::min(object.find_first_of(",}"), object.size()));
    }
}

JsonMessage
encodeJsonMessage(std::string_view object,
                  const std::function<const asn1data::TypeDescription*(const char*)>& findType,
                  const JsonLimits& limits, const IdentifierNames& names) {
    JsonMessage message;
    const std::string type = jsonMember(object, "type");
    const std::string hex = type.empty() ? jsonMember(object, "hex") : "";
    if (!hex.empty()) { // of no known type
        if (!readHex(hex, message.octets)) {
            message.problem = "\"hex\" is not an even count of hexadecimal digits";
            message.octets.clear();
        }
        return message;
    }
    JsonFailure failure;
    message.type = findType(type.c_str());
    if (message.type == nullptr) {
        message.problem = "the JSON names no known type";
    } else if (!encodeJson(*message.type, object, message.octets, failure, limits, names)) {
        message.problem = failureText(failure);
    }
    return message;
}

} // namespace asn1text
