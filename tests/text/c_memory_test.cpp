#include <brevantis/asn1.h>

#include <cstring>

#include <gtest/gtest.h>

#include "support/failing_allocations.h"
#include "support/hex.h"

// What the interface in C does when memory is out: a status, and nothing is left behind.

namespace {

void require(int status) {
    if (status == BASN1_NO_MEMORY) {
        throw std::bad_alloc();
    }
    EXPECT_EQ(status, 0) << basn1_status_name(status);
}

struct Handle {
    Handle() { require(basn1_open(&handle)); }
    ~Handle() { basn1_close(handle); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    basn1_handle* handle = nullptr;
};

struct Output {
    ~Output() { basn1_free(octets); }

    unsigned char* octets = nullptr;
    size_t size = 0;
};

const tests::Octets Message = tests::fromHex("300C0603551D1304053003 0101FF");

TEST(CInterface, TellsThatMemoryIsOut) {
    const basn1_type* const type = basn1_find_type("Extension");
    const auto write = [](void* user, const char* text, size_t size) {
        static_cast<std::string*>(user)->append(text, size);
        return 0;
    };
    const long failures = tests::failEveryAllocation([&] {
        Handle handle;
        require(basn1_set_limit(handle.handle, BASN1_LIMIT_MEMORY, 1 << 20));
        require(basn1_check(handle.handle, type, Message.data(), Message.size()));
        Output der;
        require(basn1_to_der(handle.handle, type, Message.data(), Message.size(), &der.octets,
                             &der.size));
        std::string json;
        require(
            basn1_to_json(handle.handle, type, Message.data(), Message.size(), 1, write, &json));
        Output back;
        require(basn1_from_json(handle.handle, type, json.data(), json.size(), &back.octets,
                                &back.size));
        EXPECT_EQ(back.size, Message.size());
        const char* path = nullptr;
        require(basn1_path_at(handle.handle, type, Message.data(), Message.size(), 12, &path));
        const basn1_type* found = nullptr;
        require(basn1_recognise(handle.handle, Message.data(), Message.size(), "CRL", &found));
        basn1_messages* messages = nullptr;
        require(basn1_messages_open(handle.handle, Message.data(), Message.size(), &messages));
        const unsigned char* message = nullptr;
        size_t size = 0;
        const int status = basn1_messages_next(messages, &message, &size, nullptr);
        basn1_messages_close(messages);
        require(status);
    });
    EXPECT_GT(failures, 20);
}

TEST(CInterface, ReadsNoSchemaWhenMemoryIsOut) {
    const std::string own = "Own DEFINITIONS ::= BEGIN\n"
                            "C ::= CLASS { &id OBJECT IDENTIFIER, &T } WITH SYNTAX { &T BY &id }\n"
                            "S C ::= { { A BY { 1 2 3 } } }\n"
                            "A ::= SEQUENCE { id C.&id ({S}), a [0] C.&T ({S}{@id}) OPTIONAL } END";
    const basn1_schema_text text = {"own", own.data(), own.size()};
    const long failures = tests::failEveryAllocation([&] {
        Handle handle;
        const int status = basn1_add_schema(handle.handle, &text, 1);
        EXPECT_EQ(basn1_schema_type_at(handle.handle, 0) != nullptr, status == 0);
        require(status);
    });
    EXPECT_GT(failures, 100);
}

TEST(CInterface, TellsFailuresWhenMemoryIsOut) {
    const basn1_type* const type = basn1_find_type("Extension");
    const long failures = tests::failEveryAllocation([&] {
        Handle handle;
        const int status = basn1_check(handle.handle, type, Message.data(), Message.size() - 1);
        const bool told = *basn1_failure_text(handle.handle, BASN1_FAILURE_WHOLE) != '\0';
        EXPECT_TRUE(told);
        require(status == BASN1_NO_MEMORY ? status : 0);
        EXPECT_LT(status, 0);
        Output der;
        const int refused =
            basn1_from_json(handle.handle, type, "{\"extnID\": []}", 14, &der.octets, &der.size);
        require(refused == BASN1_NO_MEMORY ? refused : 0);
        EXPECT_EQ(refused, BASN1_BAD_VALUE);
    });
    EXPECT_GT(failures, 3);
}

} // namespace
