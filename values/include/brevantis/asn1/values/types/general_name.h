#ifndef BREVANTIS_ASN1_VALUES_TYPES_GENERAL_NAME_H
#define BREVANTIS_ASN1_VALUES_TYPES_GENERAL_NAME_H

#include <list>
#include <string>

#include <brevantis/asn1/values/types/choice.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// GeneralName and GeneralNames (RFC 5280, 4.2.1.6).

namespace Brevantis::ASN1 {

class CName;
struct ASN1T_GeneralName_traits;

BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<std::wstring, 2>;
BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<std::wstring, 3>;
BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<CBlob, 5>;
BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<std::wstring, 7>;
BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<CBlob, 8>;
BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<std::wstring, 9>;
BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<CBlob, 4>;
BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<CBlob, 6>;

/// Alternatives of CGeneralName.
class BREVANTIS_ASN1_API CGeneralNameImpl final
    : public ChoiceOf<ChoiceValueTraitsT<std::wstring, 2>, ChoiceValueTraitsT<std::wstring, 3>,
                      ChoiceValueTraitsT<CBlob, 5>, ChoiceValueTraitsT<std::wstring, 7>,
                      ChoiceValueTraitsT<CBlob, 8>, ChoiceValueTraitsT<std::wstring, 9>,
                      ChoiceValueTraitsT<CBlob, 1>, ChoiceValueTraitsT<CBlob, 4>,
                      ChoiceValueTraitsT<CBlob, 6>> {};

/// A name of one of six kinds. Alternatives have the numbers of their places in the published type,
/// counted from 1: 2 rfc822Name, 3 dNSName, 5 directoryName, 7 uniformResourceIdentifier,
/// 8 iPAddress, 9 registeredID. The others, 1 otherName, 4 x400Address and 6 ediPartyName, are not
/// carried but as octets: `decode` refuses them, unless open values that do not decode are
/// tolerated (asn1Decode, ReadingScope).
///
/// Narrow text is UTF-8 where it is converted; octets of a message that are none become U+FFFD, so
/// that different octets can read as equal texts.
/// @warning A decoded text ends at an octet 0 in it, if there is one. Whoever decides by such names
///          compares the encoding too.
/// @warning Two texts are equal when their first characters are, and `toString` shows no more of
///          them than that. To compare names, take `sameWhole` and `wholeText`.
class BREVANTIS_ASN1_API CGeneralName {
public:
    /// No name: alternative 0.
    CGeneralName() = default;

    /// These make a name of one kind, as the setter of that kind sets it.
    /// @throws ATL::CAtlException with E_INVALIDARG for null
    static CGeneralName rfc822Name(const wchar_t* name);
    /// The same for a host name, in the characters of an IA5String.
    static CGeneralName dNSName(const wchar_t* name);
    /// @param name the DER of a Name
    static CGeneralName directoryName(const CBlob& name);
    /// @throws as CName::encode
    static CGeneralName directoryName(const CName& name);
    /// @param identifier a URI, in the characters of an IA5String
    static CGeneralName uniformResourceIdentifier(const wchar_t* identifier);
    /// @param address its octets: 4 or 16, and as many again for a mask
    static CGeneralName iPAddress(const CBlob& address);
    /// @param identifier dotted text
    static CGeneralName registeredID(const wchar_t* identifier);

    /// @return the number of the alternative, 0 for none
    unsigned int get_type() const;

    /// The getters give null for any other alternative. What they give is valid until the name
    /// changes or goes.
    const wchar_t* get_rfc822Name() const;
    const wchar_t* get_dNSName() const;
    /// @return the DER of a Name, for CName::decode
    const CBlob* get_directoryName() const;
    /// The text of a URI.
    const wchar_t* get_uniformResourceIdentifier() const;
    /// @return the octets of an address: 4 or 16, and as many again for a mask
    const CBlob* get_iPAddress() const;
    /// @return an object identifier as dotted text
    const wchar_t* get_registeredID() const;
    /// @return the DER of the whole GeneralName, its context tag included, for the catalogue's
    ///         ASN1C_GeneralName
    const CBlob* get_otherName() const;
    /// The DER of the whole GeneralName, as for `get_otherName`.
    const CBlob* get_x400Address() const;
    const CBlob* get_ediPartyName() const;

    /// The setters copy their argument and choose its alternative. Its content is first looked at
    /// when it is encoded. Text is terminated.
    /// @throws ATL::CAtlException with E_INVALIDARG for null
    void put_rfc822Name(const wchar_t* name);
    void put_dNSName(const wchar_t* name);
    /// @param name the DER of a Name, as CName::encode gives it
    void put_directoryName(const CBlob& name);
    /// @param identifier a URI, in the characters of an IA5String
    void put_uniformResourceIdentifier(const wchar_t* identifier);
    /// @param address its octets: 4 or 16, and as many again for a mask
    void put_iPAddress(const CBlob& address);
    /// @param identifier dotted text
    void put_registeredID(const wchar_t* identifier);
    /// @param name the DER of a whole GeneralName of this kind
    void put_otherName(const CBlob& name);
    /// @param name as for `put_otherName`
    void put_x400Address(const CBlob& name);
    void put_ediPartyName(const CBlob& name);

    /// Takes the name away.
    void clear();

    /// The kind and the value, as "dNSName: e"; empty for no name.
    /// @warning Of a text just the first character is shown, of an address nothing. `wholeText` has
    ///          them.
    /// @throws what CName::decode and CName::toString throw, for a directoryName
    CWStringProxy toString() const;

    /// The whole value without its kind: text as it is, a directoryName as CName::toString has it,
    /// an address, or a name that is carried as octets, in hexadecimal digits; empty for no name.
    /// @throws as `toString`
    CWStringProxy wholeText() const;

    /// @return the DER
    /// @throws ATL::CAtlException with E_INVALIDARG for no name or an identifier whose text is
    ///         none, with CRYPT_E_ASN1_INTERNAL when the coder refuses the value
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no GeneralName, with
    ///         E_INVALIDARG when it is of a kind that is not carried; the name stays as it was
    void decode(const CBlob& blob);

private:
    friend struct ASN1T_GeneralName_traits;

    using Rfc822Name = ChoiceValueTraitsT<std::wstring, 2>;
    using DNSName = ChoiceValueTraitsT<std::wstring, 3>;
    using DirectoryName = ChoiceValueTraitsT<CBlob, 5>;
    using UniformResourceIdentifier = ChoiceValueTraitsT<std::wstring, 7>;
    using IPAddress = ChoiceValueTraitsT<CBlob, 8>;
    using RegisteredID = ChoiceValueTraitsT<std::wstring, 9>;
    using OtherName = ChoiceValueTraitsT<CBlob, 1>;
    using X400Address = ChoiceValueTraitsT<CBlob, 4>;
    using EdiPartyName = ChoiceValueTraitsT<CBlob, 6>;

    template <class Traits>
    const wchar_t* text() const;
    template <class Traits>
    void putText(const wchar_t* text);
    template <class Argument>
    static CGeneralName made(void (CGeneralName::*put)(Argument), Argument argument);

    ChoicePointer<CGeneralNameImpl> choice_;
};

/// Compares the alternatives, then the values.
/// @warning Texts are compared by their first characters alone.
BREVANTIS_ASN1_API bool operator==(const CGeneralName& a, const CGeneralName& b);
BREVANTIS_ASN1_API bool operator!=(const CGeneralName& a, const CGeneralName& b);

/// Compares the alternatives, then the whole values: texts character by character, in the case they
/// are in, a directoryName and all else by the octets.
BREVANTIS_ASN1_API bool sameWhole(const CGeneralName& a, const CGeneralName& b);

/// A list of names.
class BREVANTIS_ASN1_API CGeneralNames : public std::list<CGeneralName> {
public:
    using std::list<CGeneralName>::list;

    /// @return the DER
    /// @warning A list without a name is encoded too, though RFC 5280 asks for one at least.
    /// @throws as CGeneralName::encode
    CBlob encode() const;
    /// @throws as CGeneralName::decode. The list stays as it was when @p blob is no GeneralNames;
    ///         when it has a name of a kind that is not carried, the list holds the names before it
    void decode(const CBlob& blob);
};

} // namespace Brevantis::ASN1

#endif
