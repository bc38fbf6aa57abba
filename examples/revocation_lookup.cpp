// Answers whether certificates are revoked, from a list of any size that stays in its file, with an
// index beside it that is made once.

#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/asn1data/revocation_list.h>
#include <brevantis/asn1/runtime/status.h>
#include <brevantis/support/blob.h>

using namespace asn1data;

namespace {

/// The octets of a file, which the system fetches as they are looked at.
class MappedFile {
public:
    explicit MappedFile(const char* path) {
        const int file = open(path, O_RDONLY | O_CLOEXEC);
        struct stat about {};
        if (file >= 0 && fstat(file, &about) == 0 && about.st_size > 0) {
            size_ = static_cast<std::size_t>(about.st_size);
            void* const octets = mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file, 0);
            data_ = octets != MAP_FAILED ? static_cast<unsigned char*>(octets) : nullptr;
        }
        if (file >= 0) {
            close(file);
        }
    }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile() {
        if (data_ != nullptr) {
            munmap(data_, size_);
        }
    }
    /// Null when the file cannot be read, or is empty.
    const unsigned char* data() const { return data_; }
    std::size_t size() const { return data_ != nullptr ? size_ : 0; }

private:
    unsigned char* data_ = nullptr;
    std::size_t size_ = 0;
};

void require(int status, const std::string& what) {
    if (status != 0) {
        throw std::runtime_error(what + ": " + rtStatusName(status));
    }
}

/// Programs that read the old file meanwhile keep it; none ever sees half of the new one.
void keep(OctetSpan index, const std::string& path) {
    const std::string unfinished = path + ".new";
    std::ofstream file(unfinished, std::ios::binary);
    file.write(static_cast<const char*>(static_cast<const void*>(index.data)),
               static_cast<std::streamsize>(index.size));
    file.close();
    if (!file || std::rename(unfinished.c_str(), path.c_str()) != 0) {
        throw std::runtime_error(path + " cannot be written");
    }
}

void print(OctetSpan text) {
    // Times of a list are text that nobody has checked.
    for (std::size_t i = 0; i < text.size; ++i) {
        const bool plain = text.data[i] >= ' ' && text.data[i] <= '~';
        std::putchar(plain ? text.data[i] : '?');
    }
}

void printEntry(const RevokedEntry& entry) {
    static const char* const reasons[] = {
        "unspecified",   "keyCompromise",        "cACompromise",    "affiliationChanged",
        "superseded",    "cessationOfOperation", "certificateHold", "7",
        "removeFromCRL", "privilegeWithdrawn",   "aACompromise"};
    std::fputs("revoked ", stdout);
    print(entry.revocationDate);
    if (entry.reason != RevokedEntry::NoReason) {
        std::printf(", %s", reasons[entry.reason]);
    }
    EntryExtension invalidity;
    if (findEntryExtension(entry, id_ce_invalidityDate, invalidity) == 0 &&
        invalidity.value.size > 2) {
        std::fputs(", invalid since ", stdout);
        print({invalidity.value.data + 2, invalidity.value.size - 2});
    }
    std::puts(entry.certificateIssuer.data != nullptr ? ", of another issuer" : "");
}

void lookUp(const char* listPath, const char* indexPath, char** serials) {
    const MappedFile file(listPath);
    RevocationList list;
    require(list.open(file.data(), file.size()), listPath);

    const MappedFile kept(indexPath);
    RevocationIndex index;
    const int status = index.load(list, kept.data(), kept.size());
    if (status != 0) {
        require(index.build(list), listPath);
        keep(index.octets(), indexPath);
    }
    std::printf("%zu entries, index %s\n", index.entryCount(), status == 0 ? "kept" : "made");

    for (; *serials != nullptr; ++serials) {
        // Serial numbers are written without their sign, so one octet 0 goes in front.
        Brevantis::CBlob serial;
        serial.readFromHexString((std::string("00") + *serials).c_str());
        RevokedMatches matches(index, serial.pbData(), serial.cbData());
        RevokedEntry entry;
        bool found = false;
        for (; matches.next(entry); found = true) {
            std::printf("%s: ", *serials);
            printEntry(entry);
        }
        if (!found) {
            std::printf("%s: not in the list\n", *serials);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: revocation_lookup LIST INDEX SERIAL...\n"
                             "Looks up serial numbers, in hexadecimal digits, in a DER file. INDEX "
                             "is made anew\nwhenever it does not fit the list.\n");
        return 2;
    }
    try {
        lookUp(argv[1], argv[2], argv + 3);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "revocation_lookup: %s\n", failure.what());
        return 1;
    }
}
