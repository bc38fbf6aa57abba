#include <brevantis/asn1.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The interface as a program in plain C11 sees it. */

static int failures = 0;

#define CHECK(condition)                                                                           \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            printf("%s:%d: %s\n", __FILE__, __LINE__, #condition);                                 \
            ++failures;                                                                            \
        }                                                                                          \
    } while (0)

static const unsigned char extension[] = {0x30, 0x0C, 0x06, 0x03, 0x55, 0x1D, 0x13,
                                          0x04, 0x05, 0x30, 0x03, 0x01, 0x01, 0xFF};
static const char extension_json[] =
    "{\"extnID\":{\"oid\":\"2.5.29.19\",\"name\":\"id_ce_basicConstraints\"},"
    "\"extnValue\":{\"basicConstraints\":{\"cA\":true}}}\n";

struct text {
    char octets[4096];
    size_t size;
    int calls_left;
};

static int collect(void* user, const char* piece, size_t size) {
    struct text* text = user;
    if (text->calls_left-- == 0 || size >= sizeof text->octets - text->size) {
        return 1;
    }
    memcpy(text->octets + text->size, piece, size);
    text->size += size;
    text->octets[text->size] = '\0';
    return 0;
}

static int is_text(const char* text, const char* wanted) {
    if (text == NULL || strcmp(text, wanted) != 0) {
        printf("    %s\n", text != NULL ? text : "(null)");
        return 0;
    }
    return 1;
}

static void check_types(void) {
    size_t count = 0;
    for (const basn1_type* type = basn1_type_at(0); type != NULL; type = basn1_type_at(++count)) {
        CHECK(basn1_find_type(basn1_type_name(type)) == type);
        CHECK(basn1_type_notation(type) != NULL);
    }
    CHECK(count > 500);
    CHECK(basn1_find_type("") == NULL && basn1_find_type("certificate") == NULL);
    CHECK(is_text(basn1_status_name(BASN1_MISSING_ELEMENT), "ASN1S_MISSING_ELEMENT"));
    CHECK(strchr(basn1_version(), '.') != NULL);
}

static void check_conversions(basn1_handle* handle, const basn1_type* type) {
    struct text text = {"", 0, -1};
    CHECK(basn1_check(handle, type, extension, sizeof extension) == 0);
    CHECK(is_text(basn1_failure_text(handle, BASN1_FAILURE_WHOLE), ""));
    CHECK(basn1_to_json(handle, type, extension, sizeof extension, 0, collect, &text) == 0);
    CHECK(is_text(text.octets, extension_json));

    unsigned char* der = NULL;
    size_t size = 0;
    CHECK(basn1_from_json(handle, type, text.octets, text.size, &der, &size) == 0);
    CHECK(size == sizeof extension && memcmp(der, extension, size) == 0);
    basn1_free(der);

    /* An indefinite length becomes a definite one. */
    const unsigned char ber[] = {0x30, 0x80, 0x01, 0x01, 0xFF, 0x00, 0x00};
    const basn1_type* constraints = basn1_find_type("BasicConstraintsSyntax");
    CHECK(basn1_to_der(handle, constraints, ber, sizeof ber, &der, &size) == 0);
    CHECK(size == 5 && der[1] == 3);
    basn1_free(der);
    CHECK(basn1_set_policy(handle, BASN1_DER) == 0);
    CHECK(basn1_check(handle, constraints, ber, sizeof ber) < 0);
    CHECK(basn1_failure_text(handle, BASN1_FAILURE_FOUND)[0] != '\0');
    CHECK(basn1_to_der(handle, constraints, ber, sizeof ber, &der, &size) < 0);
    CHECK(der == NULL && size == 0);
    CHECK(basn1_set_policy(handle, 0) == 0);

    text.calls_left = 0;
    CHECK(basn1_to_json(handle, type, extension, sizeof extension, 0, collect, &text) ==
          BASN1_STOPPED);
}

static void check_elements(basn1_handle* handle, const basn1_type* type) {
    size_t offset = 1;
    size_t length = 0;
    const char* path = NULL;
    CHECK(basn1_find(handle, type, extension, sizeof extension, "extnValue.basicConstraints.cA",
                     &offset, &length) == 0);
    CHECK(offset == 11 && length == 3);
    CHECK(basn1_path_at(handle, type, extension, sizeof extension, 13, &path) == 0);
    CHECK(is_text(path, "extnValue.basicConstraints.cA"));
    CHECK(basn1_path_at(handle, type, extension, sizeof extension, 14, &path) ==
          BASN1_MISSING_ELEMENT);
    CHECK(path == NULL);
    CHECK(basn1_find(handle, type, extension, sizeof extension, "critical", &offset, &length) ==
          BASN1_MISSING_ELEMENT);
    CHECK(is_text(basn1_failure_text(handle, BASN1_FAILURE_PATH), "critical"));
    CHECK(basn1_find(handle, type, extension, sizeof extension, "..", &offset, &length) ==
          BASN1_INVALID_PARAMETER);
}

static void check_failures(basn1_handle* handle, const basn1_type* type) {
    CHECK(basn1_check(handle, type, extension, sizeof extension - 1) < 0);
    CHECK(basn1_failure_offset(handle) != 0);
    const unsigned char longer[] = {0x30, 0x05, 0x06, 0x01, 0x2A, 0x04, 0x00, 0x05, 0x00};
    CHECK(basn1_check(handle, type, longer, sizeof longer) == BASN1_EXTRA_ELEMENT);
    CHECK(basn1_failure_offset(handle) == 7);
    CHECK(is_text(basn1_failure_text(handle, BASN1_FAILURE_WHOLE),
                  "at offset 7: expected the end of the message, found 2 octets "
                  "(ASN1S_EXTRA_ELEMENT)"));

    unsigned char* der = NULL;
    size_t size = 1;
    const char json[] = "{\"extnID\": \"2.5.29.19\",\n \"extnValue\": 5}";
    CHECK(basn1_from_json(handle, type, json, strlen(json), &der, &size) == BASN1_BAD_VALUE);
    CHECK(der == NULL && size == 0);
    CHECK(is_text(basn1_failure_text(handle, BASN1_FAILURE_PATH), "extnValue"));
    CHECK(is_text(basn1_failure_text(handle, BASN1_FAILURE_FOUND), "a number"));
    CHECK(strstr(basn1_failure_text(handle, BASN1_FAILURE_EXPECTED), "identifier") != NULL);
    CHECK(strstr(basn1_failure_text(handle, BASN1_FAILURE_WHOLE), "line 2, column 15") != NULL);
    CHECK(basn1_failure_offset(handle) == strlen(json) - 2);

    CHECK(basn1_set_limit(handle, BASN1_LIMIT_TEXT, 10) == 0);
    CHECK(basn1_from_json(handle, type, json, strlen(json), &der, &size) == BASN1_STRING_OVERFLOW);
    CHECK(basn1_set_limit(handle, BASN1_LIMIT_TEXT, 1000) == 0);
    CHECK(basn1_set_limit(handle, BASN1_LIMIT_ELEMENTS, 2) == 0);
    CHECK(basn1_check(handle, type, extension, sizeof extension) == BASN1_NO_MEMORY);
    CHECK(basn1_set_limit(handle, BASN1_LIMIT_ELEMENTS, 0) == 0);
    CHECK(basn1_set_limit(handle, BASN1_LIMIT_MEMORY, 100) == 0);
    CHECK(basn1_to_der(handle, type, extension, sizeof extension, &der, &size) == BASN1_NO_MEMORY);
    CHECK(basn1_failure_text(handle, BASN1_FAILURE_WHOLE)[0] != '\0');
    CHECK(basn1_set_limit(handle, BASN1_LIMIT_MEMORY, 0) == 0);
    CHECK(basn1_set_limit(handle, BASN1_LIMIT_DEPTH, 65) == BASN1_INVALID_PARAMETER);
    CHECK(basn1_set_limit(handle, 99, 0) == BASN1_INVALID_PARAMETER);
    CHECK(basn1_set_policy(handle, 0x80000000u) == BASN1_INVALID_PARAMETER);
}

static void check_messages(basn1_handle* handle) {
    const char input[] = "-----BEGIN CERTIFICATE-----\nMAA=\n-----END CERTIFICATE-----\n"
                         "-----BEGIN X-----\n!\n-----END X-----\n"
                         "-----BEGIN Y-----\nMAAwAA==\n-----END Y-----\n";
    basn1_messages* messages = NULL;
    const unsigned char* message = NULL;
    size_t size = 0;
    const char* label = NULL;
    CHECK(basn1_messages_open(handle, (const unsigned char*)input, strlen(input), &messages) == 0);
    CHECK(basn1_messages_next(messages, &message, &size, &label) == 0);
    CHECK(size == 2 && message[0] == 0x30 && is_text(label, "CERTIFICATE"));
    CHECK(basn1_messages_next(messages, &message, &size, &label) == BASN1_BAD_VALUE);
    CHECK(message == NULL && is_text(label, "X"));
    for (int i = 0; i < 2; ++i) {
        CHECK(basn1_messages_next(messages, &message, &size, NULL) == 0);
        CHECK(size == 2);
    }
    CHECK(basn1_messages_next(messages, &message, &size, &label) == 0);
    CHECK(message == NULL && size == 0);
    basn1_messages_close(messages);

    const char objects[] =
        "{\"file\":\"-\",\"type\":\"GeneralName\",\"value\":{\"dNSName\":\"a\"}}\n"
        "{\"file\":\"-\",\"type\":null,\"hex\":\"0500\"}"
        "{\"file\":\"-\",\"type\":\"Absent\",\"value\":1}";
    const unsigned char* first = NULL;
    CHECK(basn1_messages_open(handle, (const unsigned char*)objects, strlen(objects), &messages) ==
          0);
    CHECK(basn1_messages_next(messages, &first, &size, NULL) == 0 && size == 3);
    CHECK(basn1_messages_next(messages, &message, &size, NULL) == 0 && size == 2);
    CHECK(first[0] == 0x82 && message[0] == 0x05);
    CHECK(basn1_messages_next(messages, &message, &size, NULL) == BASN1_BAD_VALUE);
    CHECK(basn1_messages_next(messages, &message, &size, NULL) == 0 && message == NULL);
    basn1_messages_close(messages);

    const basn1_type* type = NULL;
    const unsigned char name[] = {0x30, 0x0D, 0x31, 0x0B, 0x30, 0x09, 0x06, 0x03,
                                  0x55, 0x04, 0x06, 0x13, 0x02, 0x44, 0x45};
    CHECK(basn1_recognise(handle, name, sizeof name, NULL, &type) == 0);
    CHECK(is_text(basn1_type_name(type), "Name"));
    CHECK(basn1_recognise(handle, name, 0, "NONE", &type) == BASN1_NOT_SUPPORTED && type == NULL);
}

/* Null in every place is a status or null. */
static void check_schemas(basn1_handle* handle) {
    static const unsigned char message[] = {0x30, 0x08, 0x02, 0x01, 0x05,
                                            0x06, 0x03, 0x2A, 0x03, 0x04};
    static const char json[] =
        "{\"number\":5,\"kind\":{\"oid\":\"1.2.3.4\",\"name\":\"id_mine\"}}\n";
    static const char own[] =
        "Own DEFINITIONS ::= BEGIN IMPORTS Number FROM Other;\n"
        "id-mine OBJECT IDENTIFIER ::= { 1 2 3 4 }\n"
        "Extension ::= SEQUENCE { number Number, kind OBJECT IDENTIFIER } END";
    static const char other[] = "Other DEFINITIONS ::= BEGIN Number ::= INTEGER (0..9) END";
    const basn1_schema_text texts[] = {{"own", own, sizeof own - 1},
                                       {"other", other, sizeof other - 1}};
    struct text text = {"", 0, -1};
    unsigned char* der = NULL;
    size_t size = 0;
    CHECK(basn1_schema_type(handle, "Extension") == basn1_find_type("Extension"));
    CHECK(basn1_schema_type_at(handle, 0) == NULL);
    CHECK(basn1_add_schema(handle, texts, 1) == BASN1_BAD_VALUE);
    CHECK(is_text(basn1_failure_text(handle, BASN1_FAILURE_PATH), "own:1:47"));
    CHECK(basn1_schema_type_at(handle, 0) == NULL);
    CHECK(basn1_add_schema(handle, texts, 2) == 0);
    CHECK(is_text(basn1_type_name(basn1_schema_type_at(handle, 1)), "Number"));
    CHECK(basn1_schema_type_at(handle, 2) == NULL);
    CHECK(basn1_schema_type(handle, "Certificate") == basn1_find_type("Certificate"));
    const basn1_type* type = basn1_schema_type(handle, "Extension");
    CHECK(type == basn1_schema_type_at(handle, 0) &&
          type == basn1_schema_type(handle, "Own.Extension"));
    CHECK(basn1_to_json(handle, type, message, sizeof message, 0, collect, &text) == 0);
    CHECK(is_text(text.octets, json));
    CHECK(basn1_from_json(handle, type, json, sizeof json - 1, &der, &size) == 0);
    CHECK(size == sizeof message && memcmp(der, message, size) == 0);
    basn1_free(der);
}

static void check_null(basn1_handle* handle, const basn1_type* type) {
    enum { WRONG = BASN1_INVALID_PARAMETER };
    unsigned char* der = NULL;
    size_t size = 0;
    const char* path = NULL;
    const unsigned char* message = NULL;
    const basn1_type* found = NULL;
    basn1_messages* messages = NULL;
    struct text text = {"", 0, -1};
    CHECK(basn1_open(NULL) == WRONG);
    CHECK(basn1_set_policy(NULL, 0) == WRONG);
    CHECK(basn1_set_limit(NULL, BASN1_LIMIT_TEXT, 0) == WRONG);
    CHECK(basn1_find_type(NULL) == NULL && basn1_type_name(NULL) == NULL);
    CHECK(basn1_type_notation(NULL) == NULL);
    CHECK(basn1_failure_text(NULL, BASN1_FAILURE_PATH) == NULL && basn1_failure_offset(NULL) == 0);
    CHECK(basn1_failure_text(handle, 99) == NULL);
    CHECK(basn1_recognise(NULL, extension, 2, "", &found) == WRONG);
    CHECK(basn1_recognise(handle, NULL, 2, "", &found) == WRONG);
    CHECK(basn1_recognise(handle, extension, 2, "", NULL) == WRONG);
    CHECK(basn1_check(NULL, type, extension, 2) == WRONG);
    CHECK(basn1_check(handle, NULL, extension, 2) == WRONG);
    CHECK(basn1_check(handle, type, NULL, 2) == WRONG);
    CHECK(basn1_check(handle, type, NULL, 0) < 0);
    CHECK(basn1_to_der(NULL, type, extension, 2, &der, &size) == WRONG);
    CHECK(basn1_to_der(handle, NULL, extension, 2, &der, &size) == WRONG);
    CHECK(basn1_to_der(handle, type, NULL, 2, &der, &size) == WRONG);
    CHECK(basn1_to_der(handle, type, extension, 2, NULL, &size) == WRONG);
    CHECK(basn1_to_der(handle, type, extension, 2, &der, NULL) == WRONG);
    CHECK(basn1_to_der(handle, type, NULL, 0, &der, &size) < 0);
    CHECK(basn1_to_json(NULL, type, extension, 2, 0, collect, &text) == WRONG);
    CHECK(basn1_to_json(handle, NULL, extension, 2, 0, collect, &text) == WRONG);
    CHECK(basn1_to_json(handle, type, NULL, 2, 0, collect, &text) == WRONG);
    CHECK(basn1_to_json(handle, type, extension, 2, 0, NULL, NULL) == WRONG);
    CHECK(basn1_from_json(NULL, type, "{}", 2, &der, &size) == WRONG);
    CHECK(basn1_from_json(handle, NULL, "{}", 2, &der, &size) == WRONG);
    CHECK(basn1_from_json(handle, type, NULL, 2, &der, &size) == WRONG);
    CHECK(basn1_from_json(handle, type, NULL, 0, &der, &size) == BASN1_BAD_VALUE);
    CHECK(basn1_from_json(handle, type, "{}", 2, NULL, &size) == WRONG);
    CHECK(basn1_from_json(handle, type, "{}", 2, &der, NULL) == WRONG);
    const basn1_schema_text unnamed = {NULL, "", 0};
    const basn1_schema_text absent = {"own", NULL, 1};
    CHECK(basn1_add_schema(NULL, &unnamed, 1) == WRONG);
    CHECK(basn1_add_schema(handle, NULL, 1) == WRONG);
    CHECK(basn1_add_schema(handle, &unnamed, 0) == WRONG);
    CHECK(basn1_add_schema(handle, &unnamed, 1) == WRONG);
    CHECK(basn1_add_schema(handle, &absent, 1) == WRONG);
    CHECK(basn1_schema_type(NULL, "A") == NULL && basn1_schema_type(handle, NULL) == NULL);
    CHECK(basn1_schema_type_at(NULL, 0) == NULL);
    CHECK(basn1_find(NULL, type, extension, 2, "", &size, &size) == WRONG);
    CHECK(basn1_find(handle, NULL, extension, 2, "", &size, &size) == WRONG);
    CHECK(basn1_find(handle, type, NULL, 2, "", &size, &size) == WRONG);
    CHECK(basn1_find(handle, type, extension, 2, NULL, &size, &size) == WRONG);
    CHECK(basn1_find(handle, type, extension, 2, "", NULL, &size) == WRONG);
    CHECK(basn1_find(handle, type, extension, 2, "", &size, NULL) == WRONG);
    CHECK(basn1_path_at(NULL, type, extension, 2, 0, &path) == WRONG);
    CHECK(basn1_path_at(handle, NULL, extension, 2, 0, &path) == WRONG);
    CHECK(basn1_path_at(handle, type, NULL, 2, 0, &path) == WRONG);
    CHECK(basn1_path_at(handle, type, extension, 2, 0, NULL) == WRONG);
    CHECK(basn1_messages_open(NULL, extension, 2, &messages) == WRONG);
    CHECK(basn1_messages_open(handle, NULL, 2, &messages) == WRONG);
    CHECK(basn1_messages_open(handle, extension, 2, NULL) == WRONG);
    CHECK(basn1_messages_next(NULL, &message, &size, &path) == WRONG);
    CHECK(basn1_messages_open(handle, extension, sizeof extension, &messages) == 0);
    CHECK(basn1_messages_next(messages, NULL, &size, &path) == WRONG);
    CHECK(basn1_messages_next(messages, &message, NULL, &path) == WRONG);
    basn1_messages_close(messages);
    basn1_messages_close(NULL);
    basn1_close(NULL);
    basn1_free(NULL);
}

int main(void) {
    basn1_handle* handle = NULL;
    CHECK(basn1_open(&handle) == 0);
    const basn1_type* type = basn1_find_type("Extension");
    CHECK(type != NULL);
    check_types();
    check_conversions(handle, type);
    check_elements(handle, type);
    check_failures(handle, type);
    check_messages(handle);
    check_schemas(handle);
    check_null(handle, type);
    basn1_close(handle);
    puts(failures == 0 ? "all as expected" : "FAILED");
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
