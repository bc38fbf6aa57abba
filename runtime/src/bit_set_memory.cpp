#include <brevantis/asn1/runtime/bit_set.h>

#include <algorithm>
#include <cstring>

#include "heap_block.h"

using runtime_detail::octetsOfBits;

namespace {

/// Octets taken beyond a request, so that a run of `set` calls moves the block rarely.
constexpr int GrowthReserve = 1024;

} // namespace

ASN1CBitStr::ASN1CBitStr() = default;

ASN1CBitStr::ASN1CBitStr(ASN1MessageBufferIF& buffer) : ASN1CType(buffer) {}

ASN1CBitStr::ASN1CBitStr(ASN1Context& sharedContext) : ASN1CType(sharedContext) {}

ASN1CBitStr::ASN1CBitStr(unsigned char* data, unsigned int& numBits, unsigned int maxBits) {
    privateInit(data, numBits, maxBits);
}

ASN1CBitStr::ASN1CBitStr(ASN1MessageBufferIF& buffer, unsigned char* data, unsigned int& numBits,
                         unsigned int maxBits)
    : ASN1CType(buffer) {
    privateInit(data, numBits, maxBits);
}

ASN1CBitStr::ASN1CBitStr(ASN1Context& sharedContext, unsigned char* data, unsigned int& numBits,
                         unsigned int maxBits)
    : ASN1CType(sharedContext) {
    privateInit(data, numBits, maxBits);
}

ASN1CBitStr::ASN1CBitStr(ASN1TDynBitStr& record) {
    privateInit(record);
}

ASN1CBitStr::ASN1CBitStr(ASN1MessageBufferIF& buffer, ASN1TDynBitStr& record) : ASN1CType(buffer) {
    privateInit(record);
}

ASN1CBitStr::ASN1CBitStr(ASN1Context& sharedContext, ASN1TDynBitStr& record)
    : ASN1CType(sharedContext) {
    privateInit(record);
}

ASN1CBitStr::ASN1CBitStr(ASN1MessageBufferIF& buffer, unsigned int numBits) : ASN1CType(buffer) {
    privateInit(numBits);
}

ASN1CBitStr::ASN1CBitStr(ASN1Context& sharedContext, unsigned int numBits)
    : ASN1CType(sharedContext) {
    privateInit(numBits);
}

ASN1CBitStr::ASN1CBitStr(const ASN1CBitStr& other) : ASN1CType(other) {
    privateInit(other, 0);
}

ASN1CBitStr::ASN1CBitStr(const ASN1CBitStr& other, unsigned char extendable) : ASN1CType(other) {
    privateInit(other, extendable);
}

ASN1CBitStr::ASN1CBitStr(ASN1MessageBufferIF& buffer, const ASN1CBitStr& other,
                         unsigned char extendable)
    : ASN1CType(buffer) {
    privateInit(other, extendable);
}

ASN1CBitStr::ASN1CBitStr(ASN1Context& sharedContext, const ASN1CBitStr& other,
                         unsigned char extendable)
    : ASN1CType(sharedContext) {
    privateInit(other, extendable);
}

ASN1CBitStr::~ASN1CBitStr() {
    releaseOwnMemory();
}

void ASN1CBitStr::releaseOwnMemory() {
    if (dynamicAlloc == 0) {
        return;
    }
    dynamicAlloc = 0;
    if (pBits != &ownData) {
        if (*pBits != ownData) {
            // The record was given another value, whose octets are not this object's.
            return;
        }
        // The caller's record outlives the octets.
        *pNumBits = 0;
        *pBits = nullptr;
    }
    freeMemory(const_cast<unsigned char*>(ownData));
    ownData = nullptr;
}

void ASN1CBitStr::init(unsigned char* data, unsigned int& numBits, unsigned int maxBits) {
    releaseOwnMemory();
    pBits = &ownData;
    ownData = data;
    pNumBits = &numBits;
    maxNumBits = maxBits;
    unitsAllocated = data != nullptr ? static_cast<int>(octetsOfBits(maxBits)) : 0;
    unitsUsed = std::min(static_cast<int>(octetsOfBits(numBits)), unitsAllocated);
}

void ASN1CBitStr::init(ASN1TDynBitStr& record) {
    releaseOwnMemory();
    pBits = &record.data;
    pNumBits = &record.numbits;
    maxNumBits = Unlimited;
    unitsUsed = record.data != nullptr ? static_cast<int>(octetsOfBits(record.numbits)) : 0;
    unitsAllocated = unitsUsed;
}

void ASN1CBitStr::privateInit(unsigned char* data, unsigned int& numBits, unsigned int maxBits) {
    numBits = std::min(numBits, maxBits);
    init(data, numBits, maxBits);
    if ((numBits & 7) != 0 && unitsUsed > 0) {
        data[unitsUsed - 1] =
            static_cast<unsigned char>(data[unitsUsed - 1] & 0xFFu << (8 - (numBits & 7)));
    }
    std::fill(data + unitsUsed, data + unitsAllocated, static_cast<unsigned char>(0));
}

void ASN1CBitStr::privateInit(ASN1TDynBitStr& record) {
    init(record);
    if (unitsUsed > 0) {
        // Kept: only the lowest bit, whatever the count says. Values built elsewhere carry their
        // meaning in the other bits past the count.
        unsigned char& last = octets()[unitsUsed - 1];
        last = static_cast<unsigned char>(last & 0xFE);
    }
}

void ASN1CBitStr::privateInit(unsigned int numBits) {
    dynamicAlloc = 1;
    if (numBits == 0) {
        maxNumBits = Unlimited;
        return;
    }
    maxNumBits = numBits;
    const int octetCount = static_cast<int>(octetsOfBits(numBits));
    ownData = allocateMemory(octetCount);
    if (ownData == nullptr) {
        fail(ASN1S_NO_MEMORY);
        return;
    }
    unitsAllocated = octetCount;
}

void ASN1CBitStr::privateInit(const ASN1CBitStr& other, unsigned char extendable) {
    dynamicAlloc = 1;
    maxNumBits = extendable != 0 ? Unlimited : other.maxNumBits;
    const int octetCount = extendable != 0 ? other.unitsUsed + GrowthReserve : other.unitsAllocated;
    if (octetCount > 0) {
        unsigned char* const block = allocateMemory(octetCount);
        if (block == nullptr) {
            fail(ASN1S_NO_MEMORY);
            return;
        }
        if (other.unitsUsed > 0) {
            std::memcpy(block, *other.pBits, static_cast<std::size_t>(other.unitsUsed));
        }
        ownData = block;
    }
    unitsAllocated = octetCount;
    unitsUsed = other.unitsUsed;
    ownNumBits = *other.pNumBits;
}

unsigned char* ASN1CBitStr::allocateMemory(int octetCount) {
    return static_cast<unsigned char*>(rtMemHeapAllocZ(&context->memHeap, octetCount));
}

unsigned char* ASN1CBitStr::reallocateMemory(unsigned char* block, int oldOctets, int newOctets) {
    auto* grown =
        static_cast<unsigned char*>(rtMemHeapRealloc(&context->memHeap, block, newOctets));
    if (grown != nullptr) {
        std::memset(grown + oldOctets, 0, static_cast<std::size_t>(newOctets - oldOctets));
    }
    return grown;
}

void ASN1CBitStr::freeMemory(unsigned char* block) {
    if (context) {
        rtMemHeapFreePtr(&context->memHeap, block);
    }
}

int ASN1CBitStr::checkCapacity(int units) {
    if (units > unitsAllocated) {
        if (maxNumBits != Unlimited) {
            return fail(ASN1S_INVALID_LENGTH);
        }
        const int newSize = units + GrowthReserve;
        unsigned char* const old = octets();
        unsigned char* block = nullptr;
        bool owned = dynamicAlloc != 0;
        if (unitsAllocated < 1) {
            block = allocateMemory(newSize);
        } else if (owned && old != nullptr) {
            block = reallocateMemory(old, unitsAllocated, newSize);
        } else {
            block = allocateMemory(newSize);
            if (block != nullptr && old != nullptr) {
                std::memcpy(block, old, static_cast<std::size_t>(unitsAllocated));
            }
            owned = true;
        }
        if (block == nullptr) {
            return fail(ASN1S_NO_MEMORY);
        }
        *pBits = block;
        unitsAllocated = newSize;
        dynamicAlloc = owned ? 1 : 0;
        ownData = owned ? block : ownData;
    }
    unitsUsed = std::max(unitsUsed, units);
    return 0;
}

ASN1CBitStr::operator ASN1TDynBitStr() const {
    return {length(), *pBits};
}

ASN1CBitStr::operator ASN1TDynBitStr*() const {
    void* const block = runtime_detail::allocateBlock(context.get(), sizeof(ASN1TDynBitStr));
    if (block == nullptr) {
        fail(ASN1S_NO_MEMORY);
        return nullptr;
    }
    auto* record = static_cast<ASN1TDynBitStr*>(block);
    *record = {length(), nullptr};
    if (unitsUsed > 0) {
        record->data =
            runtime_detail::copyBlock(context.get(), *pBits, static_cast<std::size_t>(unitsUsed));
        if (record->data == nullptr) {
            rtMemHeapFreePtr(&context->memHeap, record);
            fail(ASN1S_NO_MEMORY);
            return nullptr;
        }
    }
    return record;
}
