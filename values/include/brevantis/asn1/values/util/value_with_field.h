#ifndef BREVANTIS_ASN1_VALUES_UTIL_VALUE_WITH_FIELD_H
#define BREVANTIS_ASN1_VALUES_UTIL_VALUE_WITH_FIELD_H

#include <utility>

#include <brevantis/asn1/export.h>
#include <brevantis/support/blob.h>

/// @file
/// Values of extensions and attributes that consist of one field.
///
/// Field and encoded value agree: a constructor or setter that takes the field encodes it, a
/// constructor that takes the encoded value decodes it. Only who changes the value through
/// `value()` has to call `decode()`. An operation that throws leaves the object as it was. An
/// object that was moved from is as its default constructor makes it, or would.

namespace Brevantis::ASN1 {

/// What these classes share. The library has the instances that their headers declare.
/// @tparam Base CExtValue or CAttrValue
/// @tparam Field what the value is decoded to
template <class Base, class Field>
class BREVANTIS_ASN1_API ValueWithField : public Base {
public:
    /// Replaces the value by the DER of the field.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when the coder refuses the field,
    ///         with E_INVALIDARG when it is a text or name without meaning, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    void encode();
    /// Reads the field from the value. Octets behind it in the value are not looked at.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when the value does not decode, with
    ///         E_INVALIDARG when it has a time or name that the field cannot hold, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    void decode();

protected:
    /// An empty field and no value.
    explicit ValueWithField(const char* oid) : Base(oid) {}
    /// A value that is decoded at once.
    /// @throws as `decode`
    ValueWithField(const char* oid, const CBlob& encoded);

    // For the classes that derive from this one: whether they are copied and moved is theirs to
    // say.
    ValueWithField(const ValueWithField&) = default;
    /// Takes over field and value; @p other keeps its identifier and is empty otherwise.
    ValueWithField(ValueWithField&& other) noexcept : ValueWithField(other.get_oid()) {
        swap(other);
    }
    ValueWithField& operator=(const ValueWithField& other) {
        if (this != &other) {
            ValueWithField(other).swap(*this);
        }
        return *this;
    }
    ValueWithField& operator=(ValueWithField&& other) noexcept {
        ValueWithField(std::move(other)).swap(*this);
        return *this;
    }
    ~ValueWithField() = default;

    /// Replaces the field, and the value by its DER.
    /// @throws as `encode`
    void putField(Field field);
    /// The field as it was set or decoded last; valid until it changes or the object goes.
    const Field& field() const { return field_; }

private:
    /// The identifiers are the same and stay.
    void swap(ValueWithField& other) noexcept {
        this->value().swap(other.value());
        std::swap(field_, other.field_);
    }

    Field field_{};
};

} // namespace Brevantis::ASN1

#endif
