#include <brevantis/asn1/values/cmp/revocation_announcement.h>

#include <utility>

#include <brevantis/asn1/values/cmp/revocation_announcement_traits.h>
#include <brevantis/asn1/values/util/optional_member.h>
#include <brevantis/support/error.h>

namespace Brevantis::ASN1 {

struct CRevAnnContent::Record {
    Record() = default;
    Record(const Record& other)
        : status(other.status), certId(other.certId), willBeRevokedAt(other.willBeRevokedAt),
          badSinceDate(other.badSinceDate) {
        copy_to_member(crlDetails, other.crlDetails.get());
    }
    Record& operator=(const Record&) = delete;

    PKIStatusEnum status = PKIStatusEnum_accepted;
    CCertId certId;
    CDateTime willBeRevokedAt;
    CDateTime badSinceDate;
    OptionalMember<CExtensions> crlDetails;
};

CRevAnnContent::CRevAnnContent() = default;

CRevAnnContent::CRevAnnContent(const PKIStatusEnum& status, const CCertId& certId,
                               const CDateTime& willBeRevokedAt, const CDateTime& badSinceDate) {
    Record& content = record_.edit();
    content.status = status;
    content.certId = certId;
    content.willBeRevokedAt = willBeRevokedAt;
    content.badSinceDate = badSinceDate;
}

CRevAnnContent::CRevAnnContent(const CRevAnnContent& other) = default;
CRevAnnContent::CRevAnnContent(CRevAnnContent&& other) noexcept = default;
CRevAnnContent& CRevAnnContent::operator=(const CRevAnnContent& other) = default;
CRevAnnContent& CRevAnnContent::operator=(CRevAnnContent&& other) noexcept = default;
CRevAnnContent::~CRevAnnContent() = default;

const CRevAnnContent::Record& CRevAnnContent::record() const {
    const Record* content = record_.get();
    if (content == nullptr) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    return *content;
}

CRevAnnContent::Record& CRevAnnContent::record() {
    std::as_const(*this).record();
    return record_.edit();
}

const PKIStatusEnum& CRevAnnContent::get_status() const {
    return record().status;
}

const CCertId& CRevAnnContent::get_certId() const {
    return record().certId;
}

const CDateTime& CRevAnnContent::get_willBeRevokedAt() const {
    return record().willBeRevokedAt;
}

const CDateTime& CRevAnnContent::get_badSinceDate() const {
    return record().badSinceDate;
}

const CExtensions* CRevAnnContent::get_crlDetails() const {
    return record().crlDetails.get();
}

void CRevAnnContent::put_status(const PKIStatusEnum& status) {
    record().status = status;
}

void CRevAnnContent::put_certId(const CCertId& certId) {
    record().certId = certId;
}

void CRevAnnContent::put_willBeRevokedAt(const CDateTime& time) {
    record().willBeRevokedAt = time;
}

void CRevAnnContent::put_badSinceDate(const CDateTime& time) {
    record().badSinceDate = time;
}

void CRevAnnContent::put_crlDetails(const CExtensions* extensions) {
    copy_to_member(record().crlDetails, extensions);
}

CBlob CRevAnnContent::encode() const {
    return asn1Encode<ASN1T_RevAnnContent_traits>(*this);
}

void CRevAnnContent::decode(const CBlob& blob) {
    asn1Decode<ASN1T_RevAnnContent_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
