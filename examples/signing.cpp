#include "signing.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <brevantis/asn1/text/pem.h>

using namespace Brevantis;
using namespace Brevantis::ASN1;

namespace {

struct Free {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using Digest = std::unique_ptr<EVP_MD_CTX, Free>;

void require(bool done, const char* what) {
    if (!done) {
        throw std::runtime_error(what);
    }
}

CBlob digest(const CBlob& octets, const EVP_MD* method) {
    CBlob hash(static_cast<unsigned long>(EVP_MD_get_size(method)));
    require(EVP_Digest(octets.pbData(), octets.cbData(), hash.pbData(), nullptr, method, nullptr) ==
                1,
            "no digest");
    return hash;
}

} // namespace

Key::Key(const char* path) : key_(nullptr) {
    std::FILE* const file = std::fopen(path, "r");
    require(file != nullptr, "the key cannot be opened");
    key_ = PEM_read_PrivateKey(file, nullptr, nullptr, nullptr);
    std::fclose(file);
    require(key_ != nullptr, "no private key");
}

Key::~Key() {
    EVP_PKEY_free(static_cast<EVP_PKEY*>(key_));
}

CBlob Key::sign(const CBlob& octets) const {
    const Digest context(EVP_MD_CTX_new());
    std::size_t size = 0;
    require(EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr,
                               static_cast<EVP_PKEY*>(key_)) == 1 &&
                EVP_DigestSign(context.get(), nullptr, &size, octets.pbData(), octets.cbData()) ==
                    1,
            "no signature");
    CBlob signature(size);
    require(EVP_DigestSign(context.get(), signature.pbData(), &size, octets.pbData(),
                           octets.cbData()) == 1,
            "no signature");
    signature.resize_to(size);
    return signature;
}

CAlgorithmIdentifier Key::algorithm() const {
    if (EVP_PKEY_get_base_id(static_cast<EVP_PKEY*>(key_)) == EVP_PKEY_EC) {
        return CAlgorithmIdentifier("1.2.840.10045.4.3.2"); // ecdsa-with-SHA256
    }
    CAlgorithmIdentifier algorithm("1.2.840.113549.1.1.11"); // sha256WithRSAEncryption
    const unsigned char null[] = {5, 0};
    algorithm.put_parameters(CBlob(null, sizeof null));
    return algorithm;
}

CBlob sha1(const CBlob& octets) {
    return digest(octets, EVP_sha1());
}

CBlob sha256(const CBlob& octets) {
    return digest(octets, EVP_sha256());
}

CAlgorithmIdentifier sha256Algorithm() {
    return CAlgorithmIdentifier("2.16.840.1.101.3.4.2.1");
}

bool isSignature(const CBlob& signature, const CBlob& octets, const CBlob& publicKeyInfo) {
    const unsigned char* at = publicKeyInfo.pbData();
    const std::unique_ptr<EVP_PKEY, Free> key(
        d2i_PUBKEY(nullptr, &at, static_cast<long>(publicKeyInfo.cbData())));
    const Digest context(EVP_MD_CTX_new());
    return key != nullptr &&
           EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), signature.pbData(), signature.cbData(), octets.pbData(),
                            octets.cbData()) == 1;
}

CBlob readOctets(const char* path) {
    std::ifstream stream(path, std::ios::binary);
    require(stream.is_open(), "a file cannot be opened");
    const std::vector<unsigned char> octets{std::istreambuf_iterator<char>(stream), {}};
    return CBlob(octets.data(), octets.size());
}

CBlob readMessage(const char* path) {
    CBlob octets = readOctets(path);
    const std::string text(octets.pbData(), octets.pbData() + octets.cbData());
    if (asn1text::pem::isPem(text)) {
        const auto blocks = asn1text::pem::read(text);
        require(!blocks.empty() && blocks.front().problem == nullptr, "damaged PEM");
        octets.assign(blocks.front().octets.data(), blocks.front().octets.size());
    }
    return octets;
}

void writeOctets(const CBlob& octets, const char* path) {
    std::ofstream stream(path, std::ios::binary);
    for (unsigned long i = 0; i < octets.cbData(); ++i) {
        stream.put(static_cast<char>(octets.pbData()[i]));
    }
    require(stream.flush().good(), "a file cannot be written");
}

int runExample(const char* name, int (*example)(int, char**), int argc, char** argv) {
    try {
        return example(argc, argv);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s: %s\n", name, failure.what());
        return 1;
    }
}
