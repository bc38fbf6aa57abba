#include <brevantis/asn1/values/cmp/info_type_and_value.h>

#include "util/find_identifier.h"

namespace Brevantis::ASN1 {

CInfoTypeAndValue::CInfoTypeAndValue(const char* oid) : infoType_(oid) {}

CInfoTypeAndValue::CInfoTypeAndValue(const char* oid, const CBlob& value)
    : infoType_(oid), infoValue_(value) {}

CInfoTypeAndValueList::iterator CInfoTypeAndValueList::find(const char* oid) {
    return findIdentifier(*this, &CInfoTypeAndValue::get_infoType, oid);
}

CInfoTypeAndValueList::const_iterator CInfoTypeAndValueList::find(const char* oid) const {
    return findIdentifier(*this, &CInfoTypeAndValue::get_infoType, oid);
}

void CInfoTypeAndValueList::insert(const CInfoTypeAndValue& item) {
    store(*this, find(item.get_infoType()), item);
}

void CInfoTypeAndValueList::remove(const char* oid) {
    eraseFound(*this, find(oid));
}

} // namespace Brevantis::ASN1
