#!/usr/bin/env bash
# Makes the messages that the benchmarks measure, with the openssl command and fresh keys:
# DIRECTORY/NAME.der, or NAME.ber for one with indefinite lengths. What they hold stands in
# openssl.cnf. A DIRECTORY that is there has to be empty or of an earlier run, and is then renewed.
#
# Usage: make_corpus.sh DIRECTORY
set -euo pipefail

messages=(certificate-ec.der certificate-gost.der certificate-long.der certificate.der
    certification-request.der certification-response.der key-container-ec.der key-container.der
    ocsp-request.der ocsp-response.der signed-1k.ber signed-1k.der signed-1m.ber signed-1m.der
    signed-ec.der time-stamp-of-signature.der time-stamp-response.der)

fail() {
    echo "make_corpus.sh: $1" >&2
    exit 1
}

(($# == 1)) || fail "usage: make_corpus.sh DIRECTORY"
directory=$1
[[ $directory == /* ]] || directory=$PWD/$directory
source_directory=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

# Other files, or not just these, may be anybody's.
if [[ -e $directory || -L $directory ]]; then
    [[ -d $directory ]] || fail "$directory is no directory"
    found=$(LC_ALL=C ls -A "$directory")
    [[ -z $found || $found == "$(printf '%s\n' "${messages[@]}")" ]] ||
        fail "$directory is there and was not made by this script"
fi
[[ $(timeout 60 openssl version 2>/dev/null) == "OpenSSL 3."* ]] ||
    fail "the openssl command, version 3, is missing"

work=$(mktemp -d)
last=
finish() {
    if [[ -n $last ]]; then
        echo "FAILED: openssl $last" >&2
        cat "$work/log" >&2
    fi
    rm -rf "$work"
}
trap finish EXIT
mkdir "$work/messages"
cd "$work"

# Two timestamps of certificate logs, one behind the other (RFC 6962, 3.3): each has a version, the
# log, a time, no extensions, and a signature with ECDSA and SHA-256.
timestamps() {
    local log
    printf 00f2
    for log in 1 2; do
        printf 007700%064x%016x00000403 "$log" 1700000000000
        printf 00483046022100ff%062x022100ff%062x "$log" "$log"
    done
}
OPENSSL_CONF=$source_directory/openssl.cnf
TIMESTAMPS=$(timestamps)
export OPENSSL_CONF TIMESTAMPS

# Runs the command in bounded time; its output is shown when the script fails.
run() {
    last="$*"
    timeout 60 openssl "$@" >log 2>&1
    last=
}

# certificate NAME KEY ISSUER [OPTION...]: NAME.pem, with the name and the extensions of the sections
# NAME and NAME_extensions.
certificate() {
    run req -new -x509 -section "$1" -extensions "$1_extensions" -key "$2.key" -days 3650 \
        -CA "$3.pem" -CAkey "$3.key" -out "$1.pem" "${@:4}"
}

for key in root authority subject; do
    run genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:2048 -out "$key.key"
done
run req -new -x509 -section root -extensions root_extensions -key root.key -days 3650 -out root.pem
certificate authority authority root
serial_number=5A0C3E91D7264BF883A16E5F7720C94D
certificate subject subject authority -set_serial 0x$serial_number
certificate service subject authority
cat authority.pem root.pem >chain.pem
run x509 -in subject.pem -outform DER -out messages/certificate.der
run req -new -section subject -reqexts request_extensions -key subject.key -outform DER \
    -out messages/certification-request.der

run rand -out content-1k 1024
run rand -out content-1m 1048576
sign() {
    run cms -sign -binary -nodetach -cades -in "content-$1" -signer subject.pem -inkey subject.key \
        -certfile chain.pem -outform DER -out "messages/signed-$1.$2" "${@:3}"
}
for size in 1k 1m; do
    sign $size der
    sign $size ber -stream
done

printf 'V\t300101000000Z\t\t%s\tunknown\t/CN=subject\n' $serial_number >index.txt
run ocsp -issuer authority.pem -cert subject.pem -reqout messages/ocsp-request.der
run ocsp -index index.txt -CA authority.pem -rsigner service.pem -rkey subject.key -ndays 7 \
    -reqin messages/ocsp-request.der -respout messages/ocsp-response.der

echo 01 >serial
run ts -query -data content-1k -sha256 -cert -out request
run ts -reply -queryfile request -out messages/time-stamp-response.der

run pkcs12 -export -in subject.pem -inkey subject.key -certfile chain.pem -name subject \
    -passout pass:secret -out messages/key-container.der

# ---- messages that nothing is tuned to ----------------------------------------------------------

for key in root_ec subject_ec; do
    run genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out "$key.key"
done
# The enrolment below takes an authority that signs its answers itself.
run req -new -x509 -section authority -extensions authority_extensions -key root_ec.key -days 3650 \
    -out root_ec.pem
certificate subject_ec subject_ec root_ec -set_serial 0x$serial_number
certificate subject_long subject root -set_serial 0x$serial_number
run x509 -in subject_ec.pem -outform DER -out messages/certificate-ec.der
run x509 -in subject_long.pem -outform DER -out messages/certificate-long.der
# The command has no such algorithms by itself, but writes any structure that it is told.
run asn1parse -genconf "$source_directory/gost_certificate.cnf" -noout \
    -out messages/certificate-gost.der

run rand -out content-200 200
run cms -sign -binary -nodetach -cades -in content-200 -signer subject_ec.pem \
    -inkey subject_ec.key -certfile root_ec.pem -outform DER -out messages/signed-ec.der
# The signature is the last thing in the message.
length=$(openssl asn1parse -inform DER -in messages/signed-ec.der |
    sed -n '$s/.* l= *\([0-9]*\) .*/\1/p')
tail -c "$length" messages/signed-ec.der >signature
run ts -query -data signature -sha256 -cert -out request
run ts -reply -queryfile request -out messages/time-stamp-of-signature.der

run cmp -cmd ir -use_mock_srv -srv_cert root_ec.pem -srv_key root_ec.key -srv_trusted root_ec.pem \
    -rsp_cert subject_ec.pem -rsp_extracerts root_ec.pem -rsp_capubs root_ec.pem \
    -trusted root_ec.pem -cert subject_ec.pem -key subject_ec.key -newkey subject_ec.key \
    -subject /CN=www.example.com -implicit_confirm -certout enrolled.pem \
    -rspout messages/certification-response.der

run pkcs12 -export -in subject_ec.pem -inkey subject_ec.key -certfile root_ec.pem -name subject \
    -keypbe NONE -certpbe NONE -passout pass:secret -out messages/key-container-ec.der

mkdir -p "$directory"
mv messages/* "$directory"
