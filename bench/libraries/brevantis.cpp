// This library. Decoding is always complete: every element to its own type, open values too where
// their identifier is known, so there is no shallower form to measure. A walk reads as much, and
// stores nothing.

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime.h>

#include "operation.h"

namespace {

using bench::Kind;
using bench::Octets;
using bench::Operation;
using bench::Task;

template <typename Control, typename Value>
bool decode(Octets message) {
    ASN1BERDecodeBuffer input(message.data, static_cast<int>(message.size));
    Value value;
    Control control(input, value);
    return control.Decode() == 0;
}

template <typename Control, typename Value>
bool recode(Octets message) {
    ASN1BERDecodeBuffer input(message.data, static_cast<int>(message.size));
    Value value;
    Control control(input, value);
    if (control.Decode() != 0) {
        return false;
    }
    ASN1BEREncodeBuffer output;
    return control.EncodeTo(output) > 0;
}

/// The authenticated safe is a message of its own inside the container.
bool decodeKeyContainer(Octets message) {
    ASN1BERDecodeBuffer input(message.data, static_cast<int>(message.size));
    asn1data::ASN1T_PFX container;
    asn1data::ASN1C_PFX control(input, container);
    if (control.Decode() != 0) {
        return false;
    }
    const auto* content = static_cast<const ASN1TDynOctStr*>(container.authSafe.content.decoded);
    return content != nullptr &&
           decode<asn1data::ASN1C_AuthenticatedSafe, asn1data::ASN1T_AuthenticatedSafe>(
               {content->data, content->numocts});
}

/// Nothing but the walk itself: it goes into every element and reports it to nobody.
template <const char* type>
bool walk(Octets message) {
    static const asn1data::TypeDescription* const description = asn1data::findType(type);
    asn1data::WalkVisitor nobody;
    return asn1data::walk(*description, message.data, message.size, nobody).status == 0;
}

template <typename Control, typename Value, const char* type>
void add(std::vector<Operation>& operations, Kind kind) {
    operations.push_back({kind, Task::DecodeAll, "Decode", decode<Control, Value>});
    operations.push_back({kind, Task::Scan, "walk", walk<type>});
    operations.push_back({kind, Task::RecodeAll, "Decode, EncodeTo", recode<Control, Value>});
}

std::vector<Operation> operations() {
    static constexpr char certificate[] = "Certificate";
    static constexpr char list[] = "CertificateList";
    static constexpr char content[] = "ContentInfo";
    static constexpr char ocspRequest[] = "OCSPRequest";
    static constexpr char ocspResponse[] = "OCSPResponse";
    static constexpr char stamp[] = "TimeStampResp";
    static constexpr char request[] = "CertificationRequest";

    using namespace asn1data;
    std::vector<Operation> all;
    add<ASN1C_Certificate, ASN1T_Certificate, certificate>(all, Kind::Certificate);
    add<ASN1C_CertificateList, ASN1T_CertificateList, list>(all, Kind::RevocationList);
    add<ASN1C_ContentInfo, ASN1T_ContentInfo, content>(all, Kind::SignedData);
    add<ASN1C_OCSPRequest, ASN1T_OCSPRequest, ocspRequest>(all, Kind::OcspRequest);
    add<ASN1C_OCSPResponse, ASN1T_OCSPResponse, ocspResponse>(all, Kind::OcspResponse);
    add<ASN1C_TimeStampResp, ASN1T_TimeStampResp, stamp>(all, Kind::TimeStampResponse);
    add<ASN1C_CertificationRequest, ASN1T_CertificationRequest, request>(
        all, Kind::CertificationRequest);
    all.push_back(
        {Kind::KeyContainer, Task::DecodeAll, "Decode, authenticated safe", decodeKeyContainer});
    return all;
}

const bench::Library thisLibrary(bench::ourName, BREVANTIS_VERSION, operations());

} // namespace
