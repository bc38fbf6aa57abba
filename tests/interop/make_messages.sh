#!/usr/bin/env bash
# Makes the messages that interop_test reads, with the openssl command: DIRECTORY/TYPE/NAME.der, or
# NAME.ber for one that is not in DER, whose NAME.check is the command that accepts it, run in
# DIRECTORY/work (@ stands for its file). The file DIRECTORY/complete tells that all are there.
#
# Usage: make_messages.sh DIRECTORY
set -euo pipefail

directory=$1
source_directory=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

if [[ -e $directory && ! -d $directory/work ]]; then
    echo "$directory is there and was not made by this script"
    exit 1
fi
rm -rf "$directory"
if [[ $(openssl version 2>/dev/null) != "OpenSSL 3."* ]]; then
    echo "skipped: the openssl command, version 3, is missing"
    exit 77
fi
mkdir -p "$directory/work"
cd "$directory/work"
cp "$source_directory/openssl.cnf" .
export OPENSSL_CONF=$PWD/openssl.cnf STATUS=2
server=
last=
finish() {
    local status=$?
    [[ -z $server ]] || kill "$server" 2>/dev/null || true
    if ((status != 0)); then
        echo "FAILED: openssl $last"
        cat log
    fi
}
trap finish EXIT

# Runs the command in bounded time; its output is shown when the script fails.
run() {
    last="$*"
    timeout 60 openssl "$@" >log 2>&1
}

# put TYPE NAME [FILE]: the file, out.der by default, is a message of the type.
put() {
    mkdir -p "../$1"
    mv "${3:-out.der}" "../$1/$2.der"
}

# put_ber TYPE NAME CHECK [FILE]: the same for one in the indefinite form.
put_ber() {
    local octets
    octets=$(head -c 2 "${4:-out.der}" | od -An -tx1)
    [[ $octets == " 30 80" ]] || { echo "$1/$2 is not in the indefinite form"; exit 1; }
    put_unsorted "$@"
}

# put_unsorted TYPE NAME CHECK [FILE]: the same for one in which the members of a SET may stand in
# another order than DER has them: those that the command makes in its older form, PKCS #7.
put_unsorted() {
    mkdir -p "../$1"
    mv "${4:-out.der}" "../$1/$2.ber"
    echo "$3" >"../$1/$2.check"
}

# certificate NAME KEY SECTION [OPTION...]: NAME.pem, issued by the root authority.
certificate() {
    local name=$1 key=$2 section=$3
    shift 3
    run req -new -key "$key.key" -subj "/C=DE/O=Interop/CN=$name" -out "$name.csr"
    run x509 -req -in "$name.csr" -CA root.pem -CAkey root.key -days 3650 -extfile openssl.cnf \
        -extensions "$section" -out "$name.pem" "$@"
}

put_certificate() {
    run x509 -in "$1.pem" -outform DER -out out.der
    put Certificate "${2:-$1}"
}

# ---- keys ---------------------------------------------------------------------------------------

for key in root rsa tsa responder; do
    run genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:2048 -out "$key.key"
done
run genpkey -algorithm RSA-PSS -pkeyopt rsa_keygen_bits:2048 -pkeyopt rsa_pss_keygen_md:sha256 \
    -pkeyopt rsa_pss_keygen_saltlen:32 -out rsa-pss.key
run genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out ec.key
run genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-384 -pkeyopt ec_param_enc:explicit \
    -out ec-explicit.key
run genpkey -algorithm EC -pkeyopt ec_paramgen_curve:sect233k1 -out ec-binary.key
for algorithm in ED25519 ED448 X25519 X448; do
    run genpkey -algorithm "$algorithm" -out "${algorithm,,}.key"
done
run genpkey -genparam -algorithm DSA -pkeyopt dsa_paramgen_bits:1024 -out dsa.parameters
run genpkey -paramfile dsa.parameters -out dsa.key
run genpkey -algorithm DHX -pkeyopt dh_rfc5114:1 -out dhx.key
run genpkey -algorithm DH -pkeyopt group:ffdhe2048 -out dh.key

for key in rsa rsa-pss ec ec-explicit ec-binary ed25519 ed448 x25519 x448 dsa dhx dh; do
    run pkey -in "$key.key" -pubout -outform DER -out out.der
    put SubjectPublicKeyInfo "$key"
    run pkcs8 -topk8 -nocrypt -in "$key.key" -outform DER -out out.der
    put PrivateKeyInfo "$key"
done

encrypted_key() {
    run pkcs8 -topk8 -in rsa.key -passout pass:secret -outform DER -out out.der "${@:2}"
    put EncryptedPrivateKeyInfo "$1"
}
encrypted_key aes-256 -v2 aes-256-cbc -v2prf hmacWithSHA512
encrypted_key des3 -v2 des3 -v2prf hmacWithSHA1 -iter 1
encrypted_key scrypt -scrypt
encrypted_key pbe-sha1-3des -v1 PBE-SHA1-3DES

# ---- requests and certificates ------------------------------------------------------------------

for key in rsa rsa-pss ec ed25519 ed448 dsa; do
    run req -new -key "$key.key" -outform DER -out out.der
    put CertificationRequest "$key"
done
run req -new -key rsa.key -section request_every_attribute -out every.csr
run req -in every.csr -outform DER -out out.der
put CertificationRequest every-attribute
run req -new -key rsa.key -section request_old_strings -outform DER -out out.der
put CertificationRequest old-strings

run req -new -x509 -key root.key -subj "/C=DE/O=Interop/CN=Root" -days 20000 \
    -extensions root_extensions -out root.pem
put_certificate root
for key in rsa ec ed25519; do
    certificate "$key-every-extension" "$key" every_extension
    put_certificate "$key-every-extension"
done
certificate sub-authority rsa sub_authority_extensions -sha512
put_certificate sub-authority
certificate rare-names ec rare_names -set_serial 0xFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF
put_certificate rare-names
certificate country-address ec country_address
put_certificate country-address
certificate person-address ec person_address
put_certificate person-address
certificate odd-text ec odd_text
put_certificate odd-text
certificate dsa dsa signer_extensions
put_certificate dsa
run x509 -req -in every.csr -CA root.pem -CAkey root.key -days 1 -out plain.pem -set_serial 127
put_certificate plain version-1
run x509 -req -in every.csr -signkey rsa.key -sha1 -sigopt rsa_padding_mode:pss \
    -set_serial 128 -out pss.pem
put_certificate pss signed-with-pss
run x509 -req -in every.csr -CA root.pem -CAkey root.key -copy_extensions copyall -set_serial -129 \
    -out negative.pem
put_certificate negative negative-serial-number

# ---- revocation lists ---------------------------------------------------------------------------

list() {
    run ca -gencrl -out list.pem "${@:2}"
    run crl -in list.pem -outform DER -out out.der
    put CertificateList "$1"
}
echo 1000 >crlnumber
: >index.txt
list empty
number=10
for reason in unspecified keyCompromise CACompromise affiliationChanged superseded \
    cessationOfOperation removeFromCRL \
    holdInstruction,1.2.840.10040.2.2 holdInstruction,1.2.840.10040.2.3 \
    keyTime,20240229120000Z CAkeyTime,19991231235959Z; do
    printf 'R\t300101000000Z\t250101000000Z,%s\t%02X\tunknown\t/CN=Number %d\n' \
        "$reason" "$number" "$number" >>index.txt
    number=$((number + 19))
done
printf 'R\t300101000000Z\t250101000000Z\t00FF%030d\tunknown\t/CN=Long Number\n' 0 >>index.txt
list entries
list every-extension -crlexts list_extensions
list attribute-certificates -crlexts attribute_list_extensions
cp list.pem other-list.pem
list far-future -crldays 20000 -md sha384
list delta -crlexts delta_extensions
run ca -gencrl -out list.pem

# ---- signed messages ----------------------------------------------------------------------------

certificate signer rsa signer_extensions
certificate ec-signer ec signer_extensions
certificate pss-signer rsa-pss signer_extensions
certificate tsa tsa tsa_extensions
certificate responder responder responder_extensions
printf 'The content of the message.\r\n' >content
head -c 20000 /dev/zero >long-content

signed() {
    run cms -sign -binary -in content -signer signer.pem -inkey rsa.key -outform DER -out out.der \
        "${@:2}"
    put ContentInfo "signed-$1"
}
verify="openssl cms -verify -binary -inform DER -in @ -CAfile root.pem -purpose any -out verified"
signed_ber() {
    run cms -sign -binary -in content -signer signer.pem -inkey rsa.key -outform DER -out out.der \
        -stream "${@:2}"
    put_ber ContentInfo "signed-$1" "$verify -content content"
}
signed detached
signed attached -nodetach
signed no-attributes -nodetach -noattr
signed no-certificates -nodetach -nocerts
signed key-identifier -nodetach -keyid
signed chain -nodetach -certfile root.pem -md sha512
signed cades -nodetach -cades
signed cades-sha1 -nodetach -cades -md sha1
signed two-signers -nodetach -signer ec-signer.pem -inkey ec.key
signed pss -nodetach -keyopt rsa_padding_mode:pss
signed receipt-request -nodetach -receipt_request_all -receipt_request_to a@example.com
signed_ber streamed -nodetach
signed_ber streamed-two-signers -nodetach -signer ec-signer.pem -inkey ec.key -cades
signed_ber streamed-no-attributes -nodetach -noattr -nocerts -certfile signer.pem
run cms -sign -binary -in long-content -signer ec-signer.pem -inkey ec.key -outform DER \
    -out out.der -stream -nodetach
put_ber ContentInfo signed-streamed-long "$verify"

run cms -sign -binary -nodetach -in content -signer signer.pem -inkey rsa.key -outform DER \
    -receipt_request_all -receipt_request_to a@example.com -out request.der
run cms -sign_receipt -in request.der -inform DER -signer ec-signer.pem -inkey ec.key \
    -outform DER -out out.der
put ContentInfo signed-receipt
run cms -resign -in request.der -inform DER -signer ec-signer.pem -inkey ec.key -nodetach \
    -binary -outform DER -out out.der
put ContentInfo signed-again
run smime -sign -binary -nodetach -in content -signer signer.pem -inkey rsa.key \
    -certfile root.pem -outform DER -out out.der
put_unsorted ContentInfo signed-pkcs7 "${verify/cms/smime}"
run crl2pkcs7 -in list.pem -certfile root.pem -certfile signer.pem -outform DER -out out.der
put_unsorted ContentInfo certificates-and-lists \
    "openssl pkcs7 -inform DER -in @ -print_certs -out certificates && test -s certificates"

# contents_of FILE: the content of a ContentInfo, without it, in inner.der.
contents_of() {
    local offset
    offset=$(openssl asn1parse -inform DER -in "$1" | awk -F: '/d=2/ && !found++ { print $1 }')
    run asn1parse -inform DER -in "$1" -strparse "$((offset))" -noout -out inner.der
}
# nested NAME OID: a message whose signed content is the content of out.der.
nested() {
    contents_of out.der
    run cms -sign -binary -nodetach -in inner.der -econtent_type "$2" -signer ec-signer.pem \
        -inkey ec.key -outform DER -out nested.der
    put ContentInfo "nested-$1" nested.der
    run cms -sign -binary -nodetach -stream -in inner.der -econtent_type "$2" \
        -signer ec-signer.pem -inkey ec.key -outform DER -out out.der
    put_ber ContentInfo "nested-streamed-$1" "$verify"
}
run cms -sign -binary -nodetach -cades -in content -signer signer.pem -inkey rsa.key -outform DER \
    -out out.der
nested signed 1.2.840.113549.1.7.2
run cms -encrypt -binary -in content -outform DER -aes-128-cbc -out out.der signer.pem
nested enveloped 1.2.840.113549.1.7.3
run cms -digest_create -binary -in content -outform DER -out out.der
nested digested 1.2.840.113549.1.7.5

# ---- enveloped and other messages ---------------------------------------------------------------

kek=000102030405060708090A0B0C0D0E0F
# message NAME DECRYPT OPTION...: as it is and streamed; DECRYPT accepts the latter.
message() {
    local name=$1 check=$2
    shift 2
    run cms -binary -in content -outform DER -out out.der "$@"
    put ContentInfo "$name"
    run cms -binary -in content -outform DER -out out.der -stream "$@"
    put_ber ContentInfo "streamed-$name" \
        "openssl cms $check -binary -inform DER -in @ -out plain && cmp plain content"
}
decrypt_rsa="-decrypt -recip signer.pem -inkey rsa.key"
decrypt_ec="-decrypt -recip ec-signer.pem -inkey ec.key"
message enveloped-key-transport "$decrypt_rsa" -encrypt -aes-256-cbc -recip signer.pem
message enveloped-oaep "$decrypt_rsa" -encrypt -des3 -recip signer.pem \
    -keyopt rsa_padding_mode:oaep -keyopt rsa_oaep_md:sha256
message enveloped-key-identifier "$decrypt_rsa" -encrypt -aes128 -keyid -recip signer.pem
message enveloped-key-agreement "$decrypt_ec" -encrypt -aes128 -recip ec-signer.pem -aes256-wrap \
    -keyopt ecdh_kdf_md:sha256
message enveloped-kek "-decrypt -secretkey $kek -secretkeyid 00FF" -encrypt -aes128 \
    -secretkey $kek -secretkeyid 00FF
message enveloped-password "-decrypt -pwri_password secret" -encrypt -aes192 -pwri_password secret
message enveloped-every-recipient "$decrypt_ec" -encrypt -aes128 -recip signer.pem \
    -recip ec-signer.pem -secretkey $kek -secretkeyid 00FF -pwri_password secret
message authenticated-enveloped "$decrypt_rsa" -encrypt -aes-128-gcm -recip signer.pem
message digested -digest_verify -digest_create -md sha512
message encrypted "-EncryptedData_decrypt -secretkey $kek" -EncryptedData_encrypt -aes128 \
    -secretkey $kek
message data -data_out -data_create

# ---- status of certificates ---------------------------------------------------------------------

status_request() {
    run ocsp -issuer root.pem -reqout out.der "${@:2}"
    cp out.der request.der
    put OCSPRequest "$1"
}
# status_response NAME OPTION...: the answer to the last request.
status_response() {
    run ocsp -index index.txt -CA root.pem -rsigner responder.pem -rkey responder.key \
        -reqin request.der -respout out.der "${@:2}" || [[ $1 == malformed* ]]
    put OCSPResponse "$1"
}
serial_number() {
    openssl x509 -in "$1.pem" -noout -serial | cut -d= -f2
}
printf 'V\t300101000000Z\t\t%s\tunknown\t/CN=signer\n' "$(serial_number signer)" >>index.txt
status_request good -cert signer.pem
status_response good
status_response by-key -resp_key_id -ndays 3 -nmin 5 -resp_no_certs
status_request unknown -serial 0x77 -no_nonce
status_response unknown
status_request revoked -sha256 -serial 10 -serial 29 -serial 48 -serial 143 -serial 162 \
    -serial 200 -sha1 -cert signer.pem
status_response revoked -rmd sha512 -rother root.pem
status_request signed -cert signer.pem -signer signer.pem -signkey rsa.key -sign_other root.pem
status_request signed-ec -cert signer.pem -signer ec-signer.pem -signkey ec.key
status_response signed-ec
run asn1parse -genconf openssl.cnf -genstr SEQUENCE:no_requests -noout -out request.der
cp request.der out.der
put OCSPRequest no-certificates
status_response malformed-request
for STATUS in 2 3 5 6; do
    run asn1parse -genconf openssl.cnf -genstr SEQUENCE:status_only -noout -out out.der
    put OCSPResponse "status-$STATUS"
done

# ---- time-stamps --------------------------------------------------------------------------------

echo 01 >tsa_serial
stamp_request() {
    run ts -query -data content -out request.der "${@:2}"
    cp request.der out.der
    put TimeStampReq "$1"
}
stamp_response() {
    run ts -reply -queryfile request.der -out out.der "${@:2}" || [[ $1 == rejected* ]]
    cp out.der response.der
    put TimeStampResp "$1"
}
stamp_request short -no_nonce -sha256
stamp_response short -section tsa_short
run ts -reply -in response.der -token_out -out out.der
put TimeStampToken short
stamp_request full -cert -tspolicy 2.999.1.1 -sha512
run ts -reply -queryfile request.der -out response.der
run ts -reply -in response.der -token_out -out token.der
cp token.der out.der
verify_stamp="openssl ts -verify -in @ -data content -CAfile root.pem"
put_unsorted TimeStampToken full "$verify_stamp -token_in"
cp response.der out.der
put_unsorted TimeStampResp full "$verify_stamp"
stamp_request other-policy -tspolicy 1.2.3.4 -sha256
stamp_response rejected-policy
stamp_request weak-digest -sha1
stamp_response rejected-digest
head -c 30 token.der >request.der
stamp_response rejected-format

# ---- key containers -----------------------------------------------------------------------------

container() {
    run pkcs12 -export -in signer.pem -inkey rsa.key -passout pass:secret -out out.der "${@:2}"
    put PFX "$1"
}
container encrypted -name Jörg
container old-algorithms -descert -macalg sha1 -iter 1
container plain -keypbe NONE -certpbe NONE -nomac -name "Plain key" -CSP "A provider" -LMK -keyex
container chain -keypbe AES-256-CBC -certpbe NONE -certfile root.pem -name Signer \
    -caname "The root" -macalg sha512
run pkcs12 -export -nokeys -in root.pem -certpbe NONE -passout pass:secret -out out.der
put PFX certificates-only

# ---- certificate management ---------------------------------------------------------------------

# exchange NAME "KIND..." OPTION...: the messages NAME-KIND of an exchange, requests and answers in
# turn. One that the server refuses ends with a failure of the command.
exchange() {
    local name=$1 requests="" answers="" kind turn=0
    local -a kinds
    read -r -a kinds <<<"$2"
    shift 2
    for kind in "${kinds[@]}"; do
        if ((turn++ % 2 == 0)); then
            requests+=",$kind.message"
        else
            answers+=",$kind.message"
        fi
    done
    run cmp -config '' -reqout "${requests#,}" -rspout "${answers#,}" -ignore_keyusage \
        -recipient "/C=DE/O=Interop/CN=responder" "$@" || [[ $name == refused* ]]
    for kind in "${kinds[@]}"; do
        put PKIMessage "$name-$kind" "$kind.message"
    done
}
server_options=(-srv_cert responder.pem -srv_key responder.key -srv_trusted root.pem
    -srv_untrusted root.pem -srv_ref 1 -srv_secret pass:secret -rsp_cert signer.pem
    -rsp_capubs root.pem -rsp_extracerts root.pem -accept_raverified)
mock=(-use_mock_srv "${server_options[@]}")
by_signature=(-cert ec-signer.pem -key ec.key -extracerts root.pem -srvcert responder.pem)
by_secret=(-secret pass:secret -ref 4711)
request=(-newkey rsa.key -certout enrolled.pem)
confirmed="certConf pkiConf"

exchange initial "ir ip $confirmed" -cmd ir "${request[@]}" -subject /CN=signer \
    "${by_signature[@]}" "${mock[@]}"
exchange full "cr cp" -cmd cr "${request[@]}" -subject "/C=DE/CN=signer" -issuer "/C=DE/CN=Root" \
    -days 100 -sans "example.com 192.168.7.1 https://example.com/" -policy_oids 1.2.3.4 \
    -geninfo 1.2.3.4:int:56789 -implicit_confirm -grant_implicitconf "${by_secret[@]}" "${mock[@]}"
exchange verified-by-registration "ir ip $confirmed" -cmd ir "${request[@]}" -subject /CN=signer \
    -popo 0 "${by_secret[@]}" "${mock[@]}"
exchange refused-key-for-encryption "ir ip" -cmd ir "${request[@]}" -subject /CN=signer \
    -popo 2 "${by_secret[@]}" "${mock[@]}"
exchange request-of-pkcs10 "p10cr cp $confirmed" -cmd p10cr -csr every.csr -certout enrolled.pem \
    "${by_signature[@]}" "${mock[@]}" -rsp_cert plain.pem
exchange update "kur kup $confirmed" -cmd kur "${request[@]}" -oldcert signer.pem \
    "${by_signature[@]}" "${mock[@]}"
exchange revocation "rr rp" -cmd rr -oldcert signer.pem -revreason 4 "${by_signature[@]}" \
    "${mock[@]}"
exchange information "genm genp" -cmd genm -infotype signKeyPairTypes "${by_secret[@]}" "${mock[@]}"
exchange refused "ir ip" -cmd ir "${request[@]}" -subject /CN=signer "${by_secret[@]}" \
    "${mock[@]}" -pkistatus 2 -failurebits 67108863 -statusstring "No, für heute"
exchange refused-with-error "ir error" -cmd ir "${request[@]}" -subject /CN=signer \
    "${by_secret[@]}" "${mock[@]}" -send_error -failure 9 -statusstring "No"
exchange waiting "ir ip pollReq pollRep pollReq2 ip2 $confirmed" -cmd ir "${request[@]}" \
    -subject /CN=signer "${by_secret[@]}" "${mock[@]}" -poll_count 2 -check_after 1

# The same over HTTP, with a server of its own on a port of the loopback interface.
listening() {
    (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null
}
for ((try = 0; try < 10; ++try)); do
    port=$((20000 + RANDOM % 12000))
    listening "$port" && continue
    timeout 60 openssl cmp -config '' -port "$port" "${server_options[@]}" >server.log 2>&1 &
    server=$!
    for ((wait = 0; wait < 50; ++wait)); do
        kill -0 "$server" 2>/dev/null || break
        if listening "$port"; then
            break 2
        fi
        sleep 0.1
    done
done
if listening "$port"; then
    exchange over-http "ir ip $confirmed" -cmd ir "${request[@]}" -subject /CN=signer \
        -server "127.0.0.1:$port" -msg_timeout 20 "${by_signature[@]}"
else
    echo "no messages over HTTP: no server could be started on the loopback interface"
fi
kill "$server" 2>/dev/null || true
server=

touch ../complete
echo "$(find .. -name '*.?er' -not -path '../work*' | wc -l) messages made by $(openssl version)"
