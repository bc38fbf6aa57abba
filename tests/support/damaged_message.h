#ifndef TESTS_SUPPORT_DAMAGED_MESSAGE_H
#define TESTS_SUPPORT_DAMAGED_MESSAGE_H

#include <cstring>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <gtest/gtest.h>

#include "support/heap_copy.h"

namespace tests {

/// What is done with damaged messages of one type. The sanitizers judge every access, for which the
/// messages stand in blocks of exactly their size; the checks here judge what comes out.
template <class Record, class Control, void (*Release)(ASN1CTXT*, Record*)>
class DamagedMessage {
public:
    /// Goes through all messages that differ from @p original in one octet, for the values that
    /// turn tags, lengths and continuation bits: the least, the greatest and the two in the middle.
    void changeEveryOctet(const Octets& original) {
        constexpr unsigned char Values[] = {0x00, 0x7F, 0x80, 0xFF};
        const HeapCopy message(original);
        for (std::size_t i = 0; i < original.size(); ++i) {
            for (unsigned char value : Values) {
                if (value != original[i]) {
                    message.data()[i] = value;
                    decode(message.data(), original.size());
                }
            }
            message.data()[i] = original[i];
            if (testing::Test::HasFailure()) {
                FAIL() << "after octet " << i << " of " << toHex(original);
            }
        }
    }

    /// Goes through all messages that end too early. None of them may decode, not even when lengths
    /// are taken for granted, so that every reader meets the end by itself.
    void cutAtEveryOctet(const Octets& original) {
        for (std::size_t size = 0; size < original.size(); ++size) {
            const HeapCopy message(
                Octets(original.begin(), original.begin() + static_cast<std::ptrdiff_t>(size)));
            ASSERT_LT(decode(message.data(), size), 0) << size << " octets of " << toHex(original);
            ASSERT_LT(decode(message.data(), size, ASN1F_LENGTH_UNCHECKED), 0)
                << size << " octets of " << toHex(original) << ", lengths unchecked";
        }
    }

    /// Decodes; what decodes is copied, encoded, decoded again and released.
    /// @param flags ASN1ContextFlag bits to decode with
    /// @return the status of decoding
    int decode(const unsigned char* message, std::size_t size, int flags = 0) {
        ASN1BERDecodeBuffer input(message, static_cast<int>(size));
        rtCtxtSetFlag(input.getCtxtPtr(), flags);
        Record record;
        Control control(input, record);
        const int status = control.Decode();
        if (status == 0) {
            ++decoded_;
            recode(control, record);
        } else {
            EXPECT_LT(status, 0);
        }
        // A value that was decoded in part must be fit for this, too.
        Release(input.getCtxtPtr(), &record);
        return status;
    }

    std::size_t decoded() const { return decoded_; }

private:
    void recode(Control& control, Record& record) {
        Record copy(control);
        const int size = Control(output_, record).Encode();
        if (size < 0) {
            return;
        }
        const unsigned char* encoded = output_.getMsgPtr();
        expectSame(Control(copyOutput_, copy).Encode(), size, encoded, "the copy");

        // What went out is DER: it comes back, and then goes out as the same octets.
        ASN1BERDecodeBuffer again(encoded, size);
        Record returned;
        ASSERT_EQ(Control(again, returned).Decode(), 0)
            << toHex(encoded, static_cast<std::size_t>(size));
        expectSame(Control(copyOutput_, returned).Encode(), size, encoded, "the second round");
    }

    void expectSame(int count, int size, const unsigned char* encoded, const char* what) {
        ASSERT_EQ(count, size) << what;
        ASSERT_EQ(std::memcmp(copyOutput_.getMsgPtr(), encoded, static_cast<std::size_t>(size)), 0)
            << what;
    }

    ASN1BEREncodeBuffer output_;
    ASN1BEREncodeBuffer copyOutput_;
    std::size_t decoded_ = 0;
};

} // namespace tests

#endif
