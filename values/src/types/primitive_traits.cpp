#include <brevantis/asn1/values/types/primitive_traits.h>

#include <cstring>

#include <brevantis/asn1/runtime/character_string.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>

#include "util/utf8_text.h"

namespace Brevantis::ASN1 {

namespace {

/// A copy of octets in a block on the context's heap.
unsigned char* copyOctets(ASN1CTXT* ctxt, const unsigned char* octets, unsigned long size) {
    if (size != 0) {
        requireValue(octets);
    }
    auto* block = static_cast<unsigned char*>(allocateBlock(ctxt, size));
    if (size != 0) {
        std::memcpy(block, octets, size);
    }
    return block;
}

/// A copy of a text, terminator included.
char* copyText(ASN1CTXT* ctxt, const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(allocateBlock(ctxt, size), text, size));
}

const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

/// Octets that records of all kinds hold as a count and a pointer.
template <class Record>
void setOctets(ASN1CTXT* ctxt, Record& record, const unsigned char* octets, unsigned long size) {
    record.data = copyOctets(ctxt, octets, size);
    record.numocts = static_cast<unsigned>(size);
}

unsigned long octetsOfBits(unsigned numbits) {
    return numbits / 8 + (numbits % 8 != 0 ? 1 : 0);
}

constexpr ASN1TAG generalizedTimeTag = 24;

} // namespace

void ASN1IA5String_traits::set(ASN1CTXT* ctxt, const char*& record, const char* value) {
    record = copyText(ctxt, orEmpty(value));
}

void ASN1IA5String_traits::get(const char* const& record, CStringProxy& value) {
    value = CStringProxy(record);
}

void ASN1IA5String_traits::copy(ASN1CTXT* ctxt, const char* const& source, const char*& target) {
    copyText(ctxt, orEmpty(source));
    target = source;
}

void ASN1UTF8String_traits::set(ASN1CTXT* ctxt, const char*& record, const wchar_t* value) {
    record = encodeUTF8(ctxt, value != nullptr ? value : L"", E_INVALIDARG);
}

void ASN1UTF8String_traits::get(const char* const& record, CWStringProxy& value) {
    value = CWStringProxy(decodeUTF8(record, CRYPT_E_ASN1_INTERNAL));
}

void ASN1UTF8String_traits::copy(ASN1CTXT* ctxt, const char* const& source, const char*& target) {
    target = copyText(ctxt, orEmpty(source));
}

void ASN1TDynOctStr_traits::set(ASN1CTXT* ctxt, ASN1TDynOctStr& record, const CBlob& value) {
    setOctets(ctxt, record, value.pbData(), value.cbData());
}

void ASN1TDynOctStr_traits::get(const ASN1TDynOctStr& record, CBlob& value) {
    value.assign(record.data, record.numocts);
}

void ASN1TDynOctStr_traits::copy(ASN1CTXT* ctxt, const ASN1TDynOctStr& source,
                                 ASN1TDynOctStr& target) {
    setOctets(ctxt, target, source.data, source.numocts);
}

void ASN1TDynBitStr_traits::set(ASN1CTXT* ctxt, ASN1TDynBitStr& record, const CBlob& value) {
    if (value.cbData() > 0x1FFFFFFFul) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_MEMORY);
    }
    record.data = copyOctets(ctxt, value.pbData(), value.cbData());
    record.numbits = static_cast<unsigned>(value.cbData() * 8);
}

void ASN1TDynBitStr_traits::get(const ASN1TDynBitStr& record, CBlob& value) {
    value.assign(record.data, octetsOfBits(record.numbits));
}

void ASN1TDynBitStr_traits::copy(ASN1CTXT* ctxt, const ASN1TDynBitStr& source,
                                 ASN1TDynBitStr& target) {
    target.data =
        source.numbits != 0 ? copyOctets(ctxt, source.data, octetsOfBits(source.numbits)) : nullptr;
    target.numbits = source.numbits;
}

void ASN1TOpenType_traits::set(ASN1CTXT* ctxt, ASN1OpenType& record, const CBlob& value) {
    setOctets(ctxt, record, value.pbData(), value.cbData());
}

void ASN1TOpenType_traits::get(const ASN1OpenType& record, CBlob& value) {
    value.assign(record.data, record.numocts);
}

void ASN1TOpenType_traits::copy(ASN1CTXT* ctxt, const ASN1OpenType& source, ASN1OpenType& target) {
    setOctets(ctxt, target, source.data, source.numocts);
}

void Asn1TObject_traits::set(ASN1CTXT* ctxt, Asn1Object& record, const CBlob& value) {
    ASN1TOpenType_traits::set(ctxt, record, value);
}

void Asn1TObject_traits::get(const Asn1Object& record, CBlob& value) {
    ASN1TOpenType_traits::get(record, value);
}

void Asn1TObject_traits::copy(ASN1CTXT* ctxt, const Asn1Object& source, Asn1Object& target) {
    if (source.numocts != 0) {
        ASN1TOpenType_traits::copy(ctxt, source, target);
    } else {
        target.numocts = 0;
        target.data = nullptr;
    }
}

void ASN1TObjId_traits::set(ASN1CTXT* /*ctxt*/, ASN1OBJID& record, const char* value) {
    if (str2oid(value, &record) != 0) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
}

void ASN1TObjId_traits::set(ASN1CTXT* ctxt, ASN1OBJID& record, const CStringProxy& value) {
    set(ctxt, record, value.c_str());
}

void ASN1TObjId_traits::get(const ASN1OBJID& record, CStringProxy& value) {
    value = toOID(record);
}

void ASN1TObjId_traits::copy(ASN1CTXT* /*ctxt*/, const ASN1OBJID& source, ASN1OBJID& target) {
    target = source;
}

int ASN1TObjId_traits::encode(ASN1BEREncodeBuffer& buffer, ASN1OBJID& record) {
    return xe_objid(buffer.getCtxtPtr(), &record, ASN1TagExplicit);
}

int ASN1TObjId_traits::decode(ASN1BERDecodeBuffer& buffer, ASN1OBJID& record) {
    const int status = buffer.init();
    return status != 0 ? status : xd_objid(buffer.getCtxtPtr(), &record, ASN1TagExplicit, 0);
}

void ASN1GeneralizedTime_traits::set(ASN1CTXT* ctxt, const char*& record, const CDateTime& value) {
    record = DateToASN1GeneralizedTime(ctxt, value, true);
}

void ASN1GeneralizedTime_traits::get(const char* const& record, CDateTime& value) {
    value = CDateTime(orEmpty(record));
}

void ASN1GeneralizedTime_traits::copy(ASN1CTXT* ctxt, const char* const& source,
                                      const char*& target) {
    target = DateToASN1GeneralizedTime(ctxt, CDateTime(orEmpty(source)), true);
}

int ASN1GeneralizedTime_traits::encode(ASN1BEREncodeBuffer& buffer, const char*& record) {
    buffer.init();
    return xe_charstr(buffer.getCtxtPtr(), record, ASN1TagExplicit, generalizedTimeTag);
}

int ASN1GeneralizedTime_traits::decode(ASN1BERDecodeBuffer& buffer, const char*& record) {
    int status = buffer.init();
    if (status == 0) {
        char* text = nullptr;
        status = xd_charstr(buffer.getCtxtPtr(), &text, ASN1TagExplicit, generalizedTimeTag, 0);
        record = text;
    }
    return status;
}

const char* DateToASN1GeneralizedTime(ASN1CTXT* ctxt, const CDateTime& time, bool wholeSeconds) {
    const CDateTime written = wholeSeconds ? CDateTime(time.year(), time.month(), time.day(),
                                                       time.hour(), time.minute(), time.second())
                                           : time;
    return copyText(ctxt, written.getGeneralizedTime().c_str());
}

} // namespace Brevantis::ASN1
