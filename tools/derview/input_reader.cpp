#include "input_reader.h"

#include <algorithm>
#include <climits>
#include <string_view>

#include <brevantis/asn1/runtime.h>

#include "escape.h"
#include "header.h"
#include "text/message/pem.h"

namespace derview {

namespace {

constexpr unsigned char Sequence = 0x30;

bool isBlank(unsigned char octet) {
    return octet == ' ' || (octet >= '\t' && octet <= '\r');
}

int hexDigit(unsigned char octet) {
    if (octet >= '0' && octet <= '9') {
        return octet - '0';
    }
    const int letter = octet | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

bool isHexText(unsigned char octet) {
    return hexDigit(octet) >= 0 || isBlank(octet) || octet == ':';
}

bool isBase64Text(unsigned char octet) {
    return (octet >= '0' && octet <= '9') || ((octet | 0x20) >= 'a' && (octet | 0x20) <= 'z') ||
           octet == '+' || octet == '/' || octet == '=' || isBlank(octet);
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

/// Size of what editors put in front of text: a byte order mark, blanks.
std::size_t prefixSize(std::string_view text) {
    const std::size_t mark = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    const std::size_t first = text.find_first_not_of(" \t\n\v\f\r", mark);
    return first != std::string_view::npos ? first : mark;
}

/// Size of the "0x" that hexadecimal digits may begin with.
std::size_t hexPrefixSize(std::string_view text) {
    return text.starts_with("0x") || text.starts_with("0X") ? 2 : 0;
}

/// @return Auto for text that is none of the forms
InputForm formOf(Octets octets) {
    // Octets behind a short block do not make the block one of octets.
    if (!looksLikeText(octets) && !textOf(octets).starts_with("-----BEGIN ")) {
        return InputForm::Der;
    }
    if (pem::isPem(textOf(octets))) {
        return InputForm::Pem;
    }
    const Octets digits = octets.subspan(hexPrefixSize(textOf(octets)));
    if (std::all_of(digits.begin(), digits.end(), isHexText)) {
        return InputForm::Hex;
    }
    if (std::all_of(octets.begin(), octets.end(), isBase64Text)) {
        return InputForm::Base64;
    }
    return firstElementSize(octets) == octets.size() ? InputForm::Der : InputForm::Auto;
}

/// Decodes base64 in which several messages may follow each other, each with its padding.
/// @return what is wrong with the text, or nothing
std::string decodeBase64(std::string_view text, OctetStore& octets) {
    while (!text.empty()) {
        const std::size_t padding = text.find('=');
        const std::size_t end = text.find_first_not_of("= \t\n\v\f\r", padding);
        const std::string_view piece = text.substr(0, end);
        if (const char* const problem = pem::decodeBase64(piece, octets)) {
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

/// Size of the message of indefinite length that octets begin with, counting what is missing: the
/// rest of the last element in it and the end-of-contents octets of those that are open.
/// @param open receives how many are open
std::size_t sizeWithEnd(Octets octets, std::size_t& open) {
    constexpr std::size_t longestHeader = 16;
    std::size_t place = 0;
    do {
        const Octets rest = octets.subspan(place);
        Header header = readHeader(rest);
        if (header.size == 0 && rest[0] == 0) { // half an end-of-contents
            break;
        }
        if (header.size == 0) {
            OctetStore filled(rest.begin(), rest.end());
            filled.resize(filled.size() + longestHeader);
            header = readHeader(filled);
        }
        if (header.size == 0) {
            return 0;
        }
        if (header.identifier == 0 && header.length == 0) {
            --open;
        } else if (header.indefinite) {
            ++open;
        }
        place += header.size + header.length;
    } while (open != 0 && place < octets.size());
    return std::max(place + EndOfContentsSize * open, octets.size());
}

/// Whether what follows a message is another one, rather than something left behind it.
bool beginsMessage(Octets rest, unsigned char first) {
    return rest[0] == Sequence || rest[0] == first;
}

} // namespace

std::size_t firstElementSize(Octets octets) {
    if (octets.empty()) {
        return 0;
    }
    const int limit = static_cast<int>(std::min<std::size_t>(octets.size(), INT_MAX));
    ASN1BERDecodeBuffer buffer;
    int size = 0;
    if (xd_setp(buffer.getCtxtPtr(), octets.data(), limit, nullptr, &size) != ASN1S_SUCCESS) {
        return 0;
    }
    if (size == ASN1IndefiniteLength) {
        size = xd_indeflen_ex(octets.data(), limit);
    }
    return size > 0 && size <= limit ? static_cast<std::size_t>(size) : 0;
}

InputReader::InputReader(const std::string& path, InputForm form) : path_(path), file_(path) {
    const Octets octets = file_.octets();
    if (octets.empty()) {
        parts_.push_back({"", {}, "the input is empty"});
        return;
    }
    const std::size_t prefix = prefixSize(textOf(octets));
    const Octets behind = octets.subspan(prefix);
    if (form == InputForm::Auto) {
        form = formOf(behind);
        // A whole SEQUENCE behind blanks is likelier than what the blanks mean as a header.
        if (form == InputForm::Der && !behind.empty() && behind[0] == Sequence &&
            firstElementSize(behind) != 0 && firstElementSize(octets) != octets.size()) {
            offset_ = prefix;
        }
    }
    const std::string_view text = textOf(behind);
    text_ = form != InputForm::Der;
    Part part;
    switch (form) {
    case InputForm::Pem:
        for (pem::Block& block : pem::read(text)) {
            const char* const problem = block.problem;
            parts_.push_back({std::move(block.label), std::move(block.octets),
                              problem != nullptr
                                  ? problem + (", line " + std::to_string(block.line))
                                  : std::string()});
        }
        if (const std::size_t binary = findBinary(text); binary != std::string_view::npos) {
            parts_.push_back({"",
                              {},
                              "octets outside of the PEM blocks are no text, at offset " +
                                  std::to_string(prefix + binary) + " of the file"});
        }
        if (parts_.empty()) {
            parts_.push_back({"", {}, "there is no PEM block"});
        }
        return;
    case InputForm::Base64:
        part.problem = decodeBase64(text, part.store);
        break;
    case InputForm::Hex:
        part.problem = decodeHex(octets, prefix + hexPrefixSize(text), part.store);
        break;
    case InputForm::Auto:
        part.problem = "text that is neither PEM nor base64 nor hexadecimal digits; --input der "
                       "takes it as it stands";
        break;
    default:
        break;
    }
    parts_.push_back(std::move(part));
}

Octets InputReader::octetsOf(const Part& part) const {
    return text_ ? Octets(part.store) : file_.octets();
}

bool InputReader::hasMore() const {
    return part_ < parts_.size();
}

void InputReader::pad(Message& message) {
    constexpr std::size_t largest = INT_MAX;
    message.shown = message.octets;
    const Header header = readHeader(message.octets);
    if (header.size == 0 || header.length > largest - header.size) {
        return;
    }
    const std::size_t size =
        header.indefinite ? sizeWithEnd(message.octets, message.open) : header.size + header.length;
    if (size > message.octets.size() && size <= largest) {
        padded_ = std::make_unique<PaddedOctets>(message.octets, size);
        message.shown = padded_->octets().empty() ? message.octets : padded_->octets();
    }
}

std::optional<Message> InputReader::next() {
    if (!hasMore()) {
        return std::nullopt;
    }
    const Part& part = parts_[part_];
    Message message;
    message.file = path_;
    message.number = ++count_;
    message.offset = offset_;
    message.label = escapeName(part.label);
    const Octets rest = octetsOf(part).subspan(offset_);
    message.problem = part.problem;
    if (message.problem.empty() && rest.empty()) {
        message.problem = "there are no octets";
    } else if (message.problem.empty() && rest[0] == 0) {
        message.problem = "no message begins with the octet 00 (end-of-contents)";
    }
    const std::size_t size = message.problem.empty() ? firstElementSize(rest) : 0;
    message.octets =
        message.problem.empty() ? rest.first(size != 0 ? size : rest.size()) : Octets();
    pad(message);
    const Octets behind = rest.subspan(message.octets.size());
    if (!behind.empty() && message.problem.empty() && beginsMessage(behind, rest[0])) {
        offset_ += message.octets.size();
    } else {
        message.trailing = message.problem.empty() ? behind.size() : 0;
        offset_ = 0;
        ++part_;
    }
    message.place = escapeName(path_ == "-" ? "standard input" : path_);
    if (message.number > 1 || hasMore()) {
        message.place += "#" + std::to_string(message.number);
    }
    return message;
}

} // namespace derview
