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
    const iterator place = find(item.get_infoType());
    if (place != end()) {
        *place = item;
    } else {
        push_back(item);
    }
}

void CInfoTypeAndValueList::remove(const char* oid) {
    const iterator place = find(oid);
    if (place != end()) {
        erase(place);
    }
}

} // namespace Brevantis::ASN1
