#include "mail.h"

#include <algorithm>
#include <cctype>

#include <brevantis/asn1/text/pem.h>

namespace asn1text {

namespace {

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char octet) { return static_cast<char>(std::tolower(octet)); });
    return result;
}

bool has(const std::string& text, std::string_view word) {
    return text.find(word) != std::string::npos;
}

/// What the header of a part says.
struct Header {
    bool base64 = false;
    bool message = false;

    void read(const std::string& field) {
        const bool type = field.rfind("content-type:", 0) == 0;
        base64 =
            base64 || (field.rfind("content-transfer-encoding:", 0) == 0 && has(field, "base64"));
        message = message ||
                  (type && (has(field, "pkcs7") || has(field, "pkcs10") || has(field, "pkcs12") ||
                            has(field, "pkix") || has(field, "timestamp") || has(field, "ocsp")));
    }
};

bool isBoundary(std::string_view line) {
    return line.substr(0, 2) == "--";
}

MailPart readBody(std::string_view& text) {
    std::string body;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        if (isBoundary(line)) {
            break;
        }
        body.append(line).append("\n");
    }
    MailPart part;
    if (const char* const problem = pem::decodeBase64(body, part.octets)) {
        part = {{}, problem};
    }
    return part;
}

} // namespace

std::vector<MailPart> partsOfMail(std::string_view text) {
    std::vector<MailPart> parts;
    const std::string start = lowered(text.substr(0, std::size_t{1} << 16));
    if (!has(start, "content-type:") || !has(start, "mime-version:")) {
        return parts;
    }
    Header header;
    std::string field;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        const bool folded = !line.empty() && (line.front() == ' ' || line.front() == '\t');
        if (!folded) {
            header.read(field);
            field.clear();
        }
        if (isBoundary(line)) {
            header = {};
        } else if (line.empty()) {
            if (header.base64 && header.message) {
                parts.push_back(readBody(text));
            }
            header = {};
        } else {
            field += lowered(line);
        }
    }
    return parts;
}

} // namespace asn1text
