#ifndef EXAMPLES_SIGNING_H
#define EXAMPLES_SIGNING_H

#include <stdexcept>
#include <string>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/values.h>

/// @file
/// What the examples need beside the library: files, and the cryptography, which libcrypto does.

/// A private key, for ECDSA or RSA with SHA-256.
class Key {
public:
    /// @param path a PEM file
    /// @throws std::runtime_error when there is no key in it
    explicit Key(const char* path);
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key();

    Brevantis::CBlob sign(const Brevantis::CBlob& octets) const;
    /// What `sign` signs with.
    Brevantis::ASN1::CAlgorithmIdentifier algorithm() const;

private:
    void* key_;
};

Brevantis::CBlob sha1(const Brevantis::CBlob& octets);
Brevantis::CBlob sha256(const Brevantis::CBlob& octets);
Brevantis::ASN1::CAlgorithmIdentifier sha256Algorithm();
/// Whether a signature with SHA-256 is one of a public key.
/// @param publicKeyInfo the DER of a SubjectPublicKeyInfo
bool isSignature(const Brevantis::CBlob& signature, const Brevantis::CBlob& octets,
                 const Brevantis::CBlob& publicKeyInfo);

/// The octets of a file; of a PEM file those of its first block.
/// @throws std::runtime_error when there is none
Brevantis::CBlob readMessage(const char* path);
/// The octets of a file, whatever they are.
Brevantis::CBlob readOctets(const char* path);
void writeOctets(const Brevantis::CBlob& octets, const char* path);

/// The DER of a record, by its control class.
/// @throws std::runtime_error when it does not encode
template <class Control, class Record>
Brevantis::CBlob encoded(Record& record) {
    ASN1BEREncodeBuffer buffer;
    Control control(buffer, record);
    const int size = control.EncodeTo(buffer);
    if (size < 0) {
        throw std::runtime_error(std::string("cannot be encoded: ") + rtStatusName(size));
    }
    return Brevantis::CBlob(buffer.getMsgPtr(), static_cast<unsigned long>(size));
}

/// A message and the record that it was decoded to. Both live as long as this.
template <class Control, class Record>
struct Decoded {
    /// @throws std::runtime_error when it does not decode, telling where and why
    explicit Decoded(const Brevantis::CBlob& message)
        : octets(message), buffer(octets.pbData(), static_cast<int>(octets.cbData())) {
        Control control(buffer, record);
        if (control.Decode() != 0) {
            throw std::runtime_error(asn1data::failureText(asn1data::explain(
                *asn1data::findType(Control::typeName), octets.pbData(), octets.cbData())));
        }
    }
    ASN1CTXT* context() { return buffer.getCtxtPtr(); }

    Brevantis::CBlob octets;
    ASN1BERDecodeBuffer buffer;
    Record record;
};

/// Octets as a record holds them: it points to them, so they have to stay.
inline ASN1TDynOctStr octetString(const Brevantis::CBlob& octets) {
    return {static_cast<unsigned>(octets.cbData()), octets.pbData()};
}
inline ASN1TDynBitStr bitString(const Brevantis::CBlob& octets) {
    return {static_cast<unsigned>(octets.cbData() * 8), octets.pbData()};
}
inline Brevantis::CBlob octetsOf(const ASN1TDynBitStr& bits) {
    return Brevantis::CBlob(bits.data, bits.numbits / 8);
}

/// Runs an example, and tells of what it throws.
int runExample(const char* name, int (*example)(int argc, char** argv), int argc, char** argv);

#endif
