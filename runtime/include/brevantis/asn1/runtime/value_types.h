#ifndef BREVANTIS_ASN1_RUNTIME_VALUE_TYPES_H
#define BREVANTIS_ASN1_RUNTIME_VALUE_TYPES_H

/// @file
/// Plain records and scalar names that coders and values share.

/// A tag: class in bits 31 and 30, constructed form in bit 29, number in bits 28 to 0.
using ASN1TAG = unsigned int;

/// Parts of an ASN1TAG, and what stands for none.
enum : ASN1TAG {
    ASN1TagConstructed = 0x20000000u, ///< form bit of an ASN1TAG
    ASN1TagNumberMask = 0x1FFFFFFFu,  ///< the tag number of an ASN1TAG
    ASN1TagNone = 0xFFFFFFFFu         ///< no tag; stop tag of an open extension list
};

/// Who deals with a value's own tag and length.
enum ASN1TagType : int {
    ASN1TagImplicit = 0, ///< the caller; a decoder gets the content length as an argument
    ASN1TagExplicit = 1  ///< the coder
};

/// The indefinite length wherever a length travels as a signed integer.
enum : int { ASN1IndefiniteLength = -9999 };

/// OCTET STRING of any size. Like the strings below it starts out empty.
struct ASN1TDynOctStr {
    unsigned int numocts = 0; ///< octets in `data`
    /// Not owned: on the heap of a context, in the message (ASN1F_NO_COPY), or a program's own.
    const unsigned char* data = nullptr;
};

/// BIT STRING of any size; the first bit is the high bit of the first octet.
struct ASN1TDynBitStr {
    unsigned int numbits = 0;            ///< bits in `data`
    const unsigned char* data = nullptr; ///< as in ASN1TDynOctStr
};

/// BMPString: 16-bit characters in host order.
struct Asn116BitCharString {
    unsigned int nchars = 0;        ///< characters in `data`
    unsigned short* data = nullptr; ///< on the heap of a context, or a program's own
};

/// UniversalString: 32-bit characters in host order.
struct Asn132BitCharString {
    unsigned int nchars = 0;      ///< characters in `data`
    unsigned int* data = nullptr; ///< on the heap of a context, or a program's own
};

/// One whole encoded element whose type the runtime does not know.
struct ASN1OpenType {
    unsigned int numocts;      ///< octets in `data`, header included
    const unsigned char* data; ///< as in ASN1TDynOctStr
};

/// ASN1OpenType that starts out empty.
struct ASN1TOpenType : ASN1OpenType {
    /// No octets.
    ASN1TOpenType() noexcept : ASN1OpenType{0, nullptr} {}
    /// @param count octets at @p octets, header included
    /// @param octets not copied: they outlive the value
    ASN1TOpenType(unsigned int count, const unsigned char* octets) noexcept
        : ASN1OpenType{count, octets} {}
};

/// Slot of an open value: the raw element and, when its type is known, the typed value.
struct Asn1Object : ASN1OpenType {
    void* decoded; ///< the typed record, null when there is none
};

/// Asn1Object that starts out empty.
struct Asn1TObject : Asn1Object {
    /// No octets and no typed value.
    Asn1TObject() noexcept : Asn1Object{{0, nullptr}, nullptr} {}
};

/// Bounds of a constructed value being decoded.
struct ASN1ElementScope {
    const unsigned char* start; ///< first content octet
    int length;                 ///< content length, or ASN1IndefiniteLength
};

#endif
