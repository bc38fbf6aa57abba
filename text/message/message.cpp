#include <brevantis/asn1/text/message.h>

#include <algorithm>
#include <climits>
#include <string_view>

#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/text/json_reader.h>
#include <brevantis/asn1/text/pem.h>

#include "hex_text.h"
#include "mail.h"
#include "json/json_texts.h"

namespace asn1text {

namespace {

constexpr unsigned char Sequence = 0x30;

bool isBlank(unsigned char octet) {
    return octet == ' ' || (octet >= '\t' && octet <= '\r');
}

bool isHexText(unsigned char octet) {
    return hexDigit(octet) >= 0 || isBlank(octet) || octet == ':';
}

bool isBase64Text(unsigned char octet) {
    return (octet >= '0' && octet <= '9') || ((octet | 0x20) >= 'a' && (octet | 0x20) <= 'z') ||
           octet == '+' || octet == '/' || octet == '=' || octet == '-' || octet == '_' ||
           isBlank(octet);
}

bool isText(unsigned char octet) {
    return isBlank(octet) || (octet >= 0x20 && octet != 0x7F);
}

/// Whether octets can be text at all. The header of a DER message of any size holds controls.
bool looksLikeText(Octets octets) {
    constexpr std::size_t enough = 1024;
    const Octets start = octets.first(std::min(octets.size(), enough));
    return std::all_of(start.begin(), start.end(), isText);
}

std::string_view textOf(Octets octets) {
    const void* const start = octets.data();
    return {static_cast<const char*>(start), octets.size()};
}

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// Size of what editors put in front of text: a byte order mark, blanks.
std::size_t prefixSize(std::string_view text) {
    const std::size_t mark = startsWith(text, "\xEF\xBB\xBF") ? 3 : 0;
    const std::size_t first = text.find_first_not_of(" \t\n\v\f\r", mark);
    return first != std::string_view::npos ? first : mark;
}

/// Size of the "0x" that hexadecimal digits may begin with.
std::size_t hexPrefixSize(std::string_view text) {
    return startsWith(text, "0x") || startsWith(text, "0X") ? 2 : 0;
}

/// @return Auto for text that is none of the forms
InputForm formOf(Octets octets) {
    // Octets behind a short block do not make the block one of octets.
    if (!looksLikeText(octets) && !startsWith(textOf(octets), "-----BEGIN ")) {
        return InputForm::Der;
    }
    if (!octets.empty() && octets[0] == '{' && !jsonMember(textOf(octets), "file").empty()) {
        return InputForm::Json;
    }
    if (pem::isPem(textOf(octets))) {
        return InputForm::Pem;
    }
    if (!partsOfMail(textOf(octets)).empty()) {
        return InputForm::Mail;
    }
    const Octets digits = octets.subspan(hexPrefixSize(textOf(octets)));
    if (std::all_of(digits.begin(), digits.end(), isHexText)) {
        return InputForm::Hex;
    }
    if (std::all_of(octets.begin(), octets.end(), isBase64Text)) {
        return InputForm::Base64;
    }
    if (octetsOfDump(textOf(octets))) {
        return InputForm::Hex;
    }
    return firstElementSize(octets) == octets.size() ? InputForm::Der : InputForm::Auto;
}

/// Decodes one text in base64, whose alphabet may be that of URLs, and which may lack its padding.
/// @return what is wrong with the text, or nothing
std::string decodePiece(std::string_view text, OctetStore& octets) {
    std::string usual;
    for (const char character : text) {
        if (!isBlank(static_cast<unsigned char>(character))) {
            usual += character == '-' ? '+' : character == '_' ? '/' : character;
        }
    }
    const bool padded = usual.find('=') != std::string::npos;
    usual.append(padded || usual.size() % 4 < 2 ? 0 : 4 - usual.size() % 4, '=');
    const char* const problem = pem::decodeBase64(usual, octets);
    return problem != nullptr ? problem : "";
}

/// Decodes lines each of which is a message by itself, without padding.
/// @return whether they are
bool decodeLines(std::string_view text, OctetStore& octets) {
    OctetStore all;
    std::size_t lines = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        OctetStore message;
        const bool blank = line.find_first_not_of(" \t\r\v\f") == std::string_view::npos;
        if (!blank && (!decodePiece(line, message).empty() || message.empty() ||
                       firstElementSize(message) != message.size())) {
            return false;
        }
        lines += blank ? 0 : 1;
        all.insert(all.end(), message.begin(), message.end());
    }
    if (lines < 2) {
        return false;
    }
    octets.insert(octets.end(), all.begin(), all.end());
    return true;
}

/// Decodes base64 in which several messages may follow each other, each with its padding, or each
/// in a line of its own.
/// @return what is wrong with the text, or nothing
std::string decodeBase64(std::string_view text, OctetStore& octets) {
    if (decodeLines(text, octets)) {
        return "";
    }
    while (!text.empty()) {
        const std::size_t padding = text.find('=');
        const std::size_t end = text.find_first_not_of("= \t\n\v\f\r", padding);
        const std::string_view piece = text.substr(0, end);
        if (std::string problem = decodePiece(piece, octets); !problem.empty()) {
            return problem;
        }
        text.remove_prefix(piece.size());
    }
    return "";
}

/// Offset of the first octet outside of PEM blocks that is no text; npos without one.
std::size_t findBinary(std::string_view text) {
    for (std::size_t place = 0; place < text.size();) {
        const std::size_t block = std::min(text.find("-----BEGIN ", place), text.size());
        const auto outside = text.substr(place, block - place);
        const auto binary = std::find_if(outside.begin(), outside.end(), [](char octet) {
            return !isText(static_cast<unsigned char>(octet));
        });
        if (binary != outside.end()) {
            return place + static_cast<std::size_t>(binary - outside.begin());
        }
        place = std::min(text.find("-----END ", block), text.size());
        place = std::min(text.find('\n', place), text.size());
    }
    return std::string_view::npos;
}

/// @param start where the digits begin in the text
/// @return what is wrong with the text, or nothing
std::string decodeHex(Octets text, std::size_t start, OctetStore& octets) {
    int high = -1;
    for (std::size_t place = start; place < text.size(); ++place) {
        const int digit = hexDigit(text[place]);
        if (digit < 0) {
            if (!isHexText(text[place])) {
                return "no hexadecimal digit at offset " + std::to_string(place) + " of the file";
            }
        } else if (high < 0) {
            high = digit;
        } else {
            octets.push_back(static_cast<unsigned char>(high << 4 | digit));
            high = -1;
        }
    }
    return high < 0 ? "" : "an odd count of hexadecimal digits";
}

/// Whether what follows a message is another one, rather than something left behind it.
bool beginsMessage(Octets rest, unsigned char first) {
    return rest[0] == Sequence || rest[0] == first;
}

} // namespace

bool canBeginMessage(Octets start) noexcept {
    ASN1Header header;
    const Octets behind = start.subspan(prefixSize(textOf(start)));
    const auto begins = [&](Octets octets) {
        const auto count = static_cast<unsigned>(std::min<std::size_t>(octets.size(), INT_MAX));
        return !octets.empty() && octets[0] != 0 &&
               rtReadHeader(octets.data(), count, &header) == 0;
    };
    return looksLikeText(behind) || begins(start) || begins(behind) ||
           startsWith(textOf(behind), "-----BEGIN ");
}

std::size_t firstElementSize(Octets octets) noexcept {
    const int limit = static_cast<int>(std::min<std::size_t>(octets.size(), INT_MAX));
    ASN1Header header;
    if (octets.empty() || rtReadHeader(octets.data(), static_cast<unsigned>(limit), &header) != 0) {
        return 0;
    }
    if (header.length == ASN1IndefiniteLength) {
        const int size = xd_indeflen_ex(octets.data(), limit);
        return size > 0 && size <= limit ? static_cast<std::size_t>(size) : 0;
    }
    const std::size_t size = std::size_t{header.size} + static_cast<unsigned>(header.length);
    return size <= octets.size() ? size : 0;
}

MessageReader::MessageReader(Octets input, InputForm form) : input_(input), form_(form) {
    if (input.empty()) {
        parts_.push_back({"", {}, "the input is empty"});
        return;
    }
    const std::size_t prefix = prefixSize(textOf(input));
    const Octets behind = input.subspan(prefix);
    if (form_ == InputForm::Auto) {
        form_ = formOf(behind);
        // A whole SEQUENCE behind blanks is likelier than what the blanks mean as a header.
        if (form_ == InputForm::Der && !behind.empty() && behind[0] == Sequence &&
            firstElementSize(behind) != 0 && firstElementSize(input) != input.size()) {
            offset_ = prefix;
        }
    }
    if (form_ == InputForm::Pem) {
        readBlocks(behind);
    } else if (form_ == InputForm::Json) {
        for (const std::string_view value : jsonValues(textOf(behind))) {
            parts_.push_back({"", OctetStore(value.begin(), value.end()), ""});
        }
    } else if (form_ == InputForm::Mail) {
        for (MailPart& part : partsOfMail(textOf(behind))) {
            parts_.push_back({"", std::move(part.octets), std::move(part.problem)});
        }
        if (parts_.empty()) {
            parts_.push_back({"", {}, "there is no part of a mail that holds a message"});
        }
    } else {
        readPart(behind);
    }
}

void MessageReader::readBlocks(Octets text) {
    for (pem::Block& block : pem::read(textOf(text))) {
        const char* const problem = block.problem;
        parts_.push_back({std::move(block.label), std::move(block.octets),
                          problem != nullptr ? problem + (", line " + std::to_string(block.line))
                                             : std::string()});
    }
    if (const std::size_t binary = findBinary(textOf(text)); binary != std::string_view::npos) {
        const std::size_t place = input_.size() - text.size() + binary;
        parts_.push_back({"",
                          {},
                          "octets outside of the PEM blocks are no text, at offset " +
                              std::to_string(place) + " of the file"});
    }
    if (parts_.empty()) {
        parts_.push_back({"", {}, "there is no PEM block"});
    }
}

void MessageReader::readPart(Octets text) {
    Part part;
    switch (form_) {
    case InputForm::Base64:
        part.problem = decodeBase64(textOf(text), part.store);
        break;
    case InputForm::Hex: {
        if (auto octets = octetsOfDump(textOf(text))) {
            part.store = std::move(*octets);
            break;
        }
        const std::size_t start = input_.size() - text.size() + hexPrefixSize(textOf(text));
        part.problem = decodeHex(input_, start, part.store);
        break;
    }
    case InputForm::Auto:
        part.problem = "text that is neither PEM nor base64 nor hexadecimal digits";
        break;
    default:
        break;
    }
    parts_.push_back(std::move(part));
}

Octets MessageReader::octetsOf(const Part& part) const {
    return form_ != InputForm::Der ? Octets(part.store) : input_;
}

std::optional<FoundMessage> MessageReader::next() {
    if (!hasMore()) {
        return std::nullopt;
    }
    const Part& part = parts_[part_];
    FoundMessage message;
    message.number = ++count_;
    message.offset = offset_;
    message.label = part.label;
    const Octets rest = octetsOf(part).subspan(offset_);
    message.problem = part.problem;
    if (message.problem.empty() && rest.empty()) {
        message.problem = "there are no octets";
    } else if (message.problem.empty() && rest[0] == 0) {
        message.problem = "no message begins with the octet 00 (end-of-contents)";
    }
    const bool isText = form_ == InputForm::Json;
    const std::size_t size = message.problem.empty() && !isText ? firstElementSize(rest) : 0;
    message.octets =
        message.problem.empty() ? rest.first(size != 0 ? size : rest.size()) : Octets();
    const Octets behind = rest.subspan(message.octets.size());
    if (!behind.empty() && message.problem.empty() && beginsMessage(behind, rest[0])) {
        offset_ += message.octets.size();
    } else {
        message.trailing = message.problem.empty() ? behind.size() : 0;
        offset_ = 0;
        ++part_;
    }
    return message;
}

} // namespace asn1text
