#ifndef BREVANTIS_ASN1_TEXT_MAIL_H
#define BREVANTIS_ASN1_TEXT_MAIL_H

#include <string>
#include <string_view>
#include <vector>

#include <brevantis/asn1/text/octets.h>

namespace asn1text {

/// A part of a mail that holds a message.
struct MailPart {
    OctetStore octets;   ///< empty when there is a problem
    std::string problem; ///< empty when there is none
};

/// The parts of a mail (RFC 2045, RFC 8551) that are of an application type of public-key
/// infrastructure and in base64; none for a text that is no mail.
std::vector<MailPart> partsOfMail(std::string_view text);

} // namespace asn1text

#endif
