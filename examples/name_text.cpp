#include "name_text.h"

#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/runtime.h>

namespace {

/// Universal tags of the strings (X.680, 8.4).
enum StringTag : ASN1TAG {
    Utf8String = 12,
    NumericString = 18,
    PrintableString = 19,
    TeletexString = 20,
    Ia5String = 22,
    VisibleString = 26,
    UniversalString = 28,
    BmpString = 30
};

/// At least @p digits digits.
std::string hexadecimal(unsigned value, std::size_t digits) {
    std::string text;
    for (; value != 0 || text.size() < digits; value >>= 4) {
        text.insert(text.begin(), "0123456789ABCDEF"[value & 15]);
    }
    return text;
}

/// Control characters, and format characters that reorder or hide what stands beside them.
bool isHarmful(unsigned character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) ||
           (character >= 0x200B && character <= 0x200F) ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2060 && character <= 0x206F) || character == 0xFEFF ||
           (character >= 0xD800 && character < 0xE000) || character > 0x10FFFF;
}

void append(std::string& text, unsigned character) {
    if (isHarmful(character)) {
        text += "\\u{" + hexadecimal(character, 4) + "}";
    } else if (character == '\\') {
        text += "\\\\";
    } else {
        char sequence[6];
        const int size = rtUTF8EncodeChar(character, sequence, sizeof sequence);
        text.append(sequence, static_cast<std::size_t>(size));
    }
}

std::string fromUtf8(ASN1CTXT* ctxt, const std::string& octets) {
    std::string text;
    std::size_t position = 0;
    while (position < octets.size()) {
        std::size_t size = octets.size() - position;
        const int character = rtUTF8DecodeChar(ctxt, octets.data() + position, &size);
        if (character < 0) {
            text += "\\x" + hexadecimal(static_cast<unsigned char>(octets[position]), 2);
            position += 1;
        } else {
            append(text, static_cast<unsigned>(character));
            position += size;
        }
    }
    return text;
}

std::string fromUtf16(const Asn116BitCharString& value) {
    std::string text;
    for (unsigned i = 0; i < value.nchars; ++i) {
        unsigned character = value.data[i];
        const bool isHigh = character >= 0xD800 && character < 0xDC00;
        if (isHigh && i + 1 < value.nchars && (value.data[i + 1] & 0xFC00) == 0xDC00) {
            ++i;
            character = 0x10000 + ((character & 0x3FF) << 10 | (value.data[i] & 0x3FFu));
        }
        append(text, character);
    }
    return text;
}

const asn1data::ASN1T_AttributeTypeAndValue* findAttribute(const asn1data::ASN1T_RDNSequence& name,
                                                           const ASN1OBJID& type) {
    for (const Asn1RTDListNode* outer = name.head; outer != nullptr; outer = outer->next) {
        const auto* rdn =
            static_cast<const asn1data::ASN1T_RelativeDistinguishedName*>(outer->data);
        for (const Asn1RTDListNode* inner = rdn->head; inner != nullptr; inner = inner->next) {
            const auto* attribute =
                static_cast<const asn1data::ASN1T_AttributeTypeAndValue*>(inner->data);
            if (attribute->type == type) {
                return attribute;
            }
        }
    }
    return nullptr;
}

} // namespace

std::string displayText(const unsigned char* element, unsigned size) {
    ASN1BERDecodeBuffer buffer;
    ASN1CTXT* ctxt = buffer.getCtxtPtr();
    ASN1TAG tag = 0;
    int length = 0;
    if (buffer.setBuffer(element, static_cast<int>(size)) != 0 ||
        xd_tag_len(ctxt, &tag, &length, ASN1MatchAdvance) != 0) {
        return "-";
    }
    tag &= ~static_cast<ASN1TAG>(ASN1TagConstructed);
    const unsigned char* octets = nullptr;
    unsigned count = 0;
    std::string text;
    switch (tag) {
    case Utf8String:
    case NumericString:
    case PrintableString:
    case Ia5String:
    case VisibleString:
        // Read as octets: a NUL inside must not end the text.
        if (xd_octstr(ctxt, &octets, &count, ASN1TagImplicit, length) != 0) {
            return "-";
        }
        return fromUtf8(ctxt, std::string(octets, octets + count));
    case TeletexString:
        if (xd_octstr(ctxt, &octets, &count, ASN1TagImplicit, length) != 0) {
            return "-";
        }
        for (unsigned i = 0; i < count; ++i) {
            append(text, octets[i]);
        }
        return text;
    case BmpString: {
        Asn116BitCharString value{};
        return xd_16BitCharStr(ctxt, &value, ASN1TagImplicit, tag, length) == 0 ? fromUtf16(value)
                                                                                : "-";
    }
    case UniversalString: {
        Asn132BitCharString value{};
        if (xd_32BitCharStr(ctxt, &value, ASN1TagImplicit, tag, length) != 0) {
            return "-";
        }
        for (unsigned i = 0; i < value.nchars; ++i) {
            append(text, value.data[i]);
        }
        return text;
    }
    default:
        return "-";
    }
}

std::string displayName(const asn1data::ASN1T_Name& name) {
    using namespace asn1data;
    for (const ASN1OBJID* type :
         {&id_at_commonName, &id_at_organizationName, &id_at_organizationalUnitName}) {
        if (const auto* attribute = findAttribute(*name.u.rdnSequence, *type)) {
            return displayText(attribute->value.data, attribute->value.numocts);
        }
    }
    return "-";
}
