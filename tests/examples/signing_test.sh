#!/usr/bin/env bash
# Runs the example programs that sign, one after the other as an authority and its users would, and
# has the openssl command verify what they made.
#
# Usage: signing_test.sh DIRECTORY_OF_PROGRAMS
# shellcheck source=tests/examples/prologue.sh
source "$(dirname "${BASH_SOURCE[0]}")/prologue.sh"
need openssl
programs=$program

# says TEXT COMMAND...: the command succeeds and prints just the text.
says() {
    local text=$1
    shift
    if ! "$@" >printed 2>errors || [[ $(<printed) != "$text" ]]; then
        echo "FAILED: $*"
        cat printed errors
        exit 1
    fi
}
# verifies TEXT COMMAND...: the command succeeds and the text is in what it says.
verifies() {
    local text=$1
    shift
    if ! "$@" >printed 2>&1 || ! grep -qF -- "$text" printed; then
        echo "FAILED: $*"
        cat printed
        exit 1
    fi
}
# refuses TEXT COMMAND...: the command fails and says the text.
refuses() {
    local text=$1
    shift
    if "$@" >printed 2>&1 || ! grep -qF -- "$text" printed; then
        echo "FAILED: not refused: $*"
        cat printed
        exit 1
    fi
}

for kind in ec rsa; do
    if [[ $kind == ec ]]; then
        new=(-newkey ec -pkeyopt ec_paramgen_curve:P-256)
    else
        new=(-newkey rsa:2048)
    fi
    quiet() { "$@" >log 2>&1 || { cat log; exit 1; }; }
    quiet openssl req -x509 "${new[@]}" -nodes -keyout ca.key -out ca.pem -days 30 \
        -subj '/C=RU/O=A, B \+ C/CN=Authority' -addext 'keyUsage=critical,keyCertSign,cRLSign'
    quiet openssl req "${new[@]}" -nodes -keyout user.key -out user.csr -subj '/O=Users/CN=host'

    # A certificate from a request.
    says 'CN=host,O=Users is certified, number 0x0abc' \
        "$programs/issue_certificate" user.csr ca.pem ca.key 0x0abc host.example user.der
    quiet openssl x509 -inform DER -in user.der -out user.pem
    verifies 'user.pem: OK' openssl verify -x509_strict -purpose sslserver \
        -verify_hostname host.example -CAfile ca.pem user.pem
    openssl x509 -in user.pem -noout -text >shown
    for text in 'Serial Number: 2748' 'Digital Signature' 'TLS Web Server Authentication' \
        'Policy: 2.23.140.1.2.1' 'CPS: https://ca.example/practices' 'X509v3 Key Usage: critical'; do
        grep -qF "$text" shown || { echo "FAILED: no $text"; cat shown; exit 1; }
    done
    openssl req -in user.csr -outform DER -out user.csr.der
    # A request that was tampered with.
    LC_ALL=C sed 's/Users/Losers/; s/Losers/Loser/' user.csr.der >other.csr.der
    refuses 'not signed with its key' \
        "$programs/issue_certificate" other.csr.der ca.pem ca.key 1 host.example other.der

    # A revocation list and its index.
    says $'0x0abc: revoked, reason 1\n0x7fff: not revoked' \
        "$programs/revocation_list" ca.pem ca.key list.der 0x0abc 0x1234
    verifies 'verify OK' openssl crl -inform DER -in list.der -CAfile ca.pem -noout
    quiet openssl crl -inform DER -in list.der -out list.pem
    refuses 'certificate revoked' openssl verify -crl_check -CAfile ca.pem -CRLfile list.pem user.pem

    # An OCSP response.
    quiet openssl ocsp -issuer ca.pem -cert user.pem -reqout request.der
    says '0x0abc: good' "$programs/ocsp_response" request.der ca.pem ca.key response.der
    verifies 'user.pem: good' openssl ocsp -no_nonce -issuer ca.pem -cert user.pem -reqin request.der \
        -respin response.der -CAfile ca.pem
    grep -qF 'Response verify OK' printed
    says '0x0abc: revoked' "$programs/ocsp_response" request.der ca.pem ca.key response.der 0x0abc
    verifies 'keyCompromise' openssl ocsp -no_nonce -issuer ca.pem -cert user.pem -reqin request.der \
        -respin response.der -CAfile ca.pem

    # A time-stamp response.
    quiet openssl req -x509 "${new[@]}" -nodes -keyout tsa.key -out tsa.pem -days 30 -subj /CN=Stamps \
        -addext 'extendedKeyUsage=critical,timeStamping' -addext 'basicConstraints=critical,CA:TRUE'
    printf 'what is stamped' >content
    quiet openssl ts -query -data content -sha256 -cert -out query.tsq
    says 'number 4711' "$programs/timestamp_response" query.tsq tsa.pem tsa.key reply.tsr
    verifies 'Verification: OK' openssl ts -verify -queryfile query.tsq -in reply.tsr -CAfile tsa.pem

    # CAdES-BES signatures.
    says 'signed by number 0x0abc of CN=Authority,O=A\, B \+ C,C=RU' \
        "$programs/cades_signature" content user.der user.key signed.der
    verifies 'what is stamped' openssl cms -verify -cades -purpose any -inform DER -in signed.der \
        -CAfile ca.pem
    quiet "$programs/cades_signature" content user.pem user.key signed.der --detached
    verifies 'CAdES Verification successful' openssl cms -verify -cades -purpose any -inform DER \
        -in signed.der -content content -binary -CAfile ca.pem -out /dev/null
    printf 'something else' >other
    refuses 'failure' openssl cms -verify -purpose any -inform DER -in signed.der -content other \
        -binary -CAfile ca.pem -out /dev/null

    # An exchange of CMP.
    says $'authority: asked by CN=host,O=Users\nclient: certificate 0x0abc' \
        "$programs/cmp_exchange" user.csr user.key ca.pem ca.key user.pem answer.der
    quiet openssl asn1parse -inform DER -in answer.der
    refuses 'not protected by its sender' \
        "$programs/cmp_exchange" user.csr tsa.key ca.pem ca.key user.pem answer.der
done
echo "all as expected"
