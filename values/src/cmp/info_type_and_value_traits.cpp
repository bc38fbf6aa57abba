#include <brevantis/asn1/values/cmp/info_type_and_value_traits.h>

#include <utility>

#include <brevantis/asn1/values/types/primitive_traits.h>

namespace Brevantis::ASN1 {

namespace {

using Record = asn1data::ASN1T_InfoTypeAndValue;

/// An element in the inline form: the list looks for the node right in front of the record.
struct Element {
    _Asn1RTDListNode node;
    Record record;
};
static_assert(sizeof(_Asn1RTDListNode) % alignof(Record) == 0);

} // namespace

void ASN1TavList_Parse(const _Asn1RTDList& source, CInfoTypeAndValueList& target) {
    target.clear();
    for (const _Asn1RTDListNode* node = source.head; node != nullptr; node = node->next) {
        const Record& record = requireValue(static_cast<const Record*>(node->data));
        CStringProxy type;
        CBlob value;
        ASN1TObjId_traits::get(record.infoType, type);
        if (record.m.infoValuePresent != 0) {
            Asn1TObject_traits::get(record.infoValue, value);
        }
        target.emplace_back(type.c_str(), value);
    }
}

void ASN1TavList_Encode(const CInfoTypeAndValueList& source, _Asn1RTDList& target,
                        ASN1BERDecodeBuffer& owner) {
    ASN1CTXT* ctxt = owner.getCtxtPtr();
    for (const CInfoTypeAndValue& item : source) {
        Record& record = newRecord<Element>(ctxt).record;
        if (item.get_infoValue().cbData() != 0) {
            Asn1TObject_traits::set(ctxt, record.infoValue, item.get_infoValue());
            record.m.infoValuePresent = 1;
        }
        ASN1TObjId_traits::set(ctxt, record.infoType, item.get_infoType());
        requireSuccess(asn1data::asn1DTC_InfoTypeAndValue(ctxt, &record));
        rtDListAppendNode(ctxt, &target, &record);
    }
}

} // namespace Brevantis::ASN1
