#include <brevantis/asn1/values/types/name_rfc4514.h>

#include <climits>
#include <cstring>
#include <utility>

#include <brevantis/asn1/values/types/attribute_register.h>
#include <brevantis/asn1/values/types/character_string.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>
#include <brevantis/asn1/values/util/one_element.h>
#include <brevantis/asn1/values/util/utf8.h>
#include <brevantis/support/error.h>

namespace Brevantis::ASN1 {

namespace {

/// The table of RFC 4514, 3.
struct Keyword {
    const char* name;
    const char* oid;
};
constexpr Keyword keywords[] = {
    {"CN", "2.5.4.3"},
    {"L", "2.5.4.7"},
    {"ST", "2.5.4.8"},
    {"O", "2.5.4.10"},
    {"OU", "2.5.4.11"},
    {"C", "2.5.4.6"},
    {"STREET", "2.5.4.9"},
    {"DC", "0.9.2342.19200300.100.1.25"},
    {"UID", "0.9.2342.19200300.100.1.1"},
};

[[noreturn]] void refuse() {
    ATL::AtlThrowImpl(E_INVALIDARG);
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameInEitherCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (lower(a[i]) != lower(b[i])) {
            return false;
        }
    }
    return true;
}

const char* keywordOf(const char* oid) {
    for (const Keyword& each : keywords) {
        if (std::strcmp(each.oid, oid) == 0) {
            return each.name;
        }
    }
    return nullptr;
}

/// Whether arcs have an encoding that is read to the same (X.660, A.2): str2oid takes any.
bool isEncodable(const ASN1OBJID& arcs) {
    constexpr unsigned perRoot = 40;
    return arcs.numids >= 2 && (arcs.subid[0] == 2 ? arcs.subid[1] <= UINT_MAX - 2 * perRoot
                                                   : arcs.subid[0] < 2 && arcs.subid[1] < perRoot);
}

/// The type of an encoded string that decodeCharString reads, one with the same octets where its
/// own is none that can be written; StringTypeDefault for anything else.
StringType stringTypeOf(const CBlob& encoding) {
    switch (encoding.cbData() != 0 ? encoding.pbData()[0] : 0) {
    case 12: // UTF8String
    case 18: // NumericString
    case 19: // PrintableString
    case 20: // TeletexString
    case 22: // IA5String
        return StringTypeUTF8;
    case 28:
        return StringTypeUniversal;
    case 30:
        return StringTypeBMP;
    default:
        return StringTypeDefault;
    }
}

/// The text of an encoded string.
/// @return whether there is one that has all of the string: not one that a zero character ends,
///         nor one with characters that UTF-8 does not code
bool wholeText(const CBlob& encoding, std::string& text) {
    const StringType type = stringTypeOf(encoding);
    if (type == StringTypeDefault) {
        return false;
    }
    const CWStringProxy wide = decodeCharString(encoding);
    for (const wchar_t* each = wide.c_str(); *each != L'\0'; ++each) {
        if (*each >= 0xD800 && *each <= 0xDFFF) {
            return false;
        }
    }
    if (encodeCharString(wide.c_str(), type).cbData() != encoding.cbData()) {
        return false;
    }
    text = toUtf8(wide.c_str());
    return true;
}

void appendEscaped(std::string& text, const std::string& value) {
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char c = value[i];
        const bool first = i == 0 && (c == ' ' || c == '#');
        const bool last = i + 1 == value.size() && c == ' ';
        if (first || last || std::strchr("\"+,;<>\\", c) != nullptr) {
            text += '\\';
        }
        text += c;
    }
}

void appendPair(std::string& text, const CAttributeTypeAndValue& pair) {
    const CBlob value = pair.get_value();
    const char* const keyword = keywordOf(pair.get_type());
    text += keyword != nullptr ? keyword : pair.get_type();
    text += '=';
    std::string characters;
    if (keyword != nullptr && wholeText(value, characters)) {
        appendEscaped(text, characters);
        return;
    }
    text += '#';
    text += value.writeToHexString(0).c_str();
}

int digit(char c) {
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                  : -1;
}

/// Goes through a text once, from the front.
class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    CName name() {
        CName name;
        skipBlanks();
        if (atEnd()) {
            return name;
        }
        for (;;) {
            // The text begins with the leaf, the encoding with the root.
            name.push_front(relativeName());
            if (atEnd()) {
                return name;
            }
            ++at_; // a comma, or the semicolon of older texts
        }
    }

private:
    bool atEnd() const { return at_ == text_.size(); }
    char here() const { return text_[at_]; }
    void skipBlanks() {
        while (!atEnd() && here() == ' ') {
            ++at_;
        }
    }

    CRelativeDistinguishedName relativeName() {
        CRelativeDistinguishedName relative;
        for (;;) {
            relative.push_back(pair());
            if (atEnd() || here() != '+') {
                return relative;
            }
            ++at_;
        }
    }

    CAttributeTypeAndValue pair() {
        const std::size_t sign = text_.find('=', at_);
        if (sign == std::string_view::npos) {
            refuse();
        }
        std::string_view type = text_.substr(at_, sign - at_);
        while (!type.empty() && type.front() == ' ') {
            type.remove_prefix(1);
        }
        while (!type.empty() && type.back() == ' ') {
            type.remove_suffix(1);
        }
        const std::string oid = identifierOf(type);
        at_ = sign + 1;
        skipBlanks();
        if (!atEnd() && here() == '#') {
            return CAttributeTypeAndValue(oid.c_str(), encoding());
        }
        const std::wstring wide = fromUtf8(value());
        if (wide.find(L'\0') != std::wstring::npos) {
            refuse();
        }
        const auto row = CATAVRegister::find(oid.c_str());
        if (row == CATAVRegister::registered_.end()) {
            return CAttributeTypeAndValue(oid.c_str(),
                                          encodeCharString(wide.c_str(), StringTypeUTF8));
        }
        return CAttributeTypeAndValue(
            oid.c_str(), CATAVRegister::valueFromStr(oid.c_str(), wide.c_str(), StringTypeDefault));
    }

    static std::string identifierOf(std::string_view type) {
        if (type.size() > 4 && sameInEitherCase(type.substr(0, 4), "OID.")) {
            type.remove_prefix(4);
        }
        if (!type.empty() && type.front() >= '0' && type.front() <= '9') {
            // What is read has to be what is written: str2oid takes signs and cuts arcs.
            ASN1OBJID arcs{};
            std::string oid(type);
            if (str2oid(oid.c_str(), &arcs) != 0 || oid != toOID(arcs).c_str() ||
                !isEncodable(arcs)) {
                refuse();
            }
            return oid;
        }
        for (const Keyword& each : keywords) {
            if (sameInEitherCase(type, each.name)) {
                return each.oid;
            }
        }
        for (const CATAVRegister& row : CATAVRegister::registered_) {
            if (sameInEitherCase(type, toUtf8(row.name))) {
                return row.oid;
            }
        }
        refuse();
    }

    bool atSeparator() const { return atEnd() || here() == ',' || here() == ';' || here() == '+'; }

    /// The octets behind a "#".
    CBlob encoding() {
        const std::size_t begin = ++at_;
        while (!atEnd() && digit(here()) >= 0) {
            ++at_;
        }
        CBlob octets;
        octets.readFromHexString(std::string(text_.substr(begin, at_ - begin)).c_str());
        skipBlanks();
        if (!isOneElement(octets) || !atSeparator()) {
            refuse();
        }
        return octets;
    }

    /// The text of a value, without escapes and without the blanks around it.
    std::string value() {
        std::string value;
        std::size_t end = 0; // of what counts
        while (!atSeparator()) {
            if (std::strchr("\"<>", here()) != nullptr) {
                refuse();
            }
            const bool counts = here() != ' ';
            value += here() == '\\' ? escaped() : text_[at_++];
            if (counts) {
                end = value.size();
            }
        }
        value.resize(end);
        return value;
    }

    /// What an escape stands for: one of the special characters, or an octet.
    char escaped() {
        ++at_;
        if (atEnd()) {
            refuse();
        }
        if (std::strchr(" #=\"+,;<>\\", here()) != nullptr) {
            return text_[at_++];
        }
        const int high = digit(here());
        const int low = at_ + 1 < text_.size() ? digit(text_[at_ + 1]) : -1;
        if (high < 0 || low < 0) {
            refuse();
        }
        at_ += 2;
        return static_cast<char>(high * 16 + low);
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

} // namespace

std::string toRfc4514(const CName& name) {
    std::string text;
    for (auto relative = name.rbegin(); relative != name.rend(); ++relative) {
        if (relative != name.rbegin()) {
            text += ',';
        }
        bool first = true;
        for (const CAttributeTypeAndValue& pair : *relative) {
            if (!std::exchange(first, false)) {
                text += '+';
            }
            appendPair(text, pair);
        }
    }
    return text;
}

CName fromRfc4514(std::string_view text) {
    // It would end what goes on as a C string.
    if (text.find('\0') != std::string_view::npos) {
        refuse();
    }
    return Parser(text).name();
}

} // namespace Brevantis::ASN1
