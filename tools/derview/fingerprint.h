#ifndef DERVIEW_FINGERPRINT_H
#define DERVIEW_FINGERPRINT_H

#include <string>

#include "octets.h"

namespace derview {

/// Whether this program can compute fingerprints.
bool hasFingerprints();

/// "sha256 cd2eca35...": SHA-256 of octets.
std::string fingerprintText(Octets octets);

} // namespace derview

#endif
