#include "fingerprint.h"

#ifdef DERVIEW_NETTLE
#include <nettle/sha2.h>
#endif

namespace derview {

#ifdef DERVIEW_NETTLE

bool hasFingerprints() {
    return true;
}

std::string fingerprintText(Octets octets) {
    sha256_ctx context;
    OctetStore digest(SHA256_DIGEST_SIZE);
    sha256_init(&context);
    sha256_update(&context, octets.size(), octets.data());
    sha256_digest(&context, digest.size(), digest.data());
    return "sha256 " + hexText(digest);
}

#else

bool hasFingerprints() {
    return false;
}

std::string fingerprintText(Octets /*octets*/) {
    return {};
}

#endif

} // namespace derview
