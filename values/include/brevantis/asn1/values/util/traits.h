#ifndef BREVANTIS_ASN1_VALUES_UTIL_TRAITS_H
#define BREVANTIS_ASN1_VALUES_UTIL_TRAITS_H

#include <brevantis/asn1/runtime/list.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/runtime/value_types.h>
#include <brevantis/asn1/values/util/private_buffer.h>

/// @file
/// What traits classes are made of.
///
/// A traits class has no state and no objects, only static members:
///  - `ASN1_T`: the record type;
///  - `set(ctxt, record, value)` fills a record from a value; what hangs from the record lies on
///    the heap of `ctxt` and lives as long;
///  - `get(record, value)` fills a value from a record;
///  - `copy(ctxt, source, target)` copies a record on to the heap of `ctxt`;
///  - `encode(buffer, record)` and `decode(buffer, record)` are one operation of the wire format
///    and give what its coder gives: octets or a negative status, 0 or a negative status;
///  - `type()`, if there is one, describes the record, to tell why coding failed.

namespace Brevantis::ASN1 {

/// What a pointer in a record leads to, where the record promises a value.
/// @throws ATL::CAtlException with E_INVALIDARG for null
template <class Value>
const Value& requireValue(const Value* value) {
    if (value == nullptr) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    return *value;
}

/// The name that a control class has for its type; null for one that tells none.
template <class Control, class = void>
struct TypeNameOf {
    /// A constant text; null where there is no `typeName`.
    static constexpr const char* value = nullptr;
};
template <class Control>
struct TypeNameOf<Control, decltype(static_cast<void>(Control::typeName))> {
    static constexpr const char* value = Control::typeName;
};

/// The part of a traits class that is the same for every type of the catalogue.
template <class Record, class Control, void (*CopyRecord)(ASN1CTXT*, Record*, Record*)>
struct CatalogueTraits {
    using ASN1_T = Record;

    /// What the record is, to tell why a message is none; null for a type of another catalogue.
    static const asn1data::TypeDescription* type() noexcept {
        constexpr const char* name = TypeNameOf<Control>::value;
        return name != nullptr ? asn1data::findType(name) : nullptr;
    }

    static int encode(ASN1BEREncodeBuffer& buffer, Record& record) {
        Control control(buffer, record);
        return control.EncodeTo(buffer);
    }

    static int decode(ASN1BERDecodeBuffer& buffer, Record& record) {
        // A control object goes on with a message that is cut off, and an empty list would do as
        // its beginning.
        const int status = buffer.init();
        if (status != 0) {
            return status;
        }
        Control control(buffer, record);
        return control.DecodeFrom(buffer);
    }

    /// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
    static void copy(ASN1CTXT* ctxt, const Record& source, Record& target) {
        // A copy tells of its failure in the context alone, which keeps the first failure of all.
        const int earlier = ctxt->errInfo.status;
        ctxt->errInfo.status = 0;
        // The family's signature has no const, though a copy leaves its source as it is.
        CopyRecord(ctxt, const_cast<Record*>(&source), &target);
        const int status = ctxt->errInfo.status;
        ctxt->errInfo.status = earlier != 0 ? earlier : status;
        if (status != 0) {
            ATL::AtlThrowImpl(CRYPT_E_ASN1_MEMORY);
        }
    }
};

/// The same for a BIT STRING with named bits. All bits that the record holds are written, while the
/// control class would stop at the published ones.
template <class Record, class Control, void (*CopyRecord)(ASN1CTXT*, Record*, Record*),
          int (*EncodeRecord)(ASN1CTXT*, Record*, ASN1TagType)>
struct NamedBitsTraits : CatalogueTraits<Record, Control, CopyRecord> {
    static int encode(ASN1BEREncodeBuffer& buffer, Record& record) {
        buffer.init();
        return EncodeRecord(buffer.getCtxtPtr(), &record, ASN1TagExplicit);
    }
};

/// Exchanges the elements of a SEQUENCE OF or SET OF with a standard list.
/// @tparam Record of an element
/// @tparam ElementTraits with `set` and `get` between @p Record and @p Element
/// @tparam List a std::list of @p Element or a class derived from it
template <class Record, class ElementTraits, class Element, class List>
struct ASN1TSeqOfList_traits {
    /// Gives @p list new elements on the heap of @p ctxt, in the order of @p value. What it held
    /// before is left to its heap. When an element fails @p list is what it was.
    static void set(ASN1CTXT* ctxt, _Asn1RTDList& list, const List& value) {
        _Asn1RTDList elements{};
        for (const Element& element : value) {
            Record& record = newRecord<Record>(ctxt);
            ElementTraits::set(ctxt, record, element);
            if (rtDListAppend(ctxt, &elements, &record) == nullptr) {
                ATL::AtlThrowImpl(CRYPT_E_ASN1_MEMORY);
            }
        }
        list = elements;
    }

    /// Replaces the content of @p value. When an element fails @p value holds those before it.
    /// @throws ATL::CAtlException with E_INVALIDARG for a node without an element
    static void get(const _Asn1RTDList& list, List& value) {
        value.clear();
        for (const _Asn1RTDListNode* node = list.head; node != nullptr; node = node->next) {
            const Record& record = requireValue(static_cast<const Record*>(node->data));
            Element& element = value.emplace_back();
            try {
                ElementTraits::get(record, element);
            } catch (...) {
                value.pop_back();
                throw;
            }
        }
    }
};

} // namespace Brevantis::ASN1

#endif
