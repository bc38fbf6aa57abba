#!/usr/bin/env bash
# Runs the program on certificates with names of every kind, and on what is no certificate.
# shellcheck source=tests/examples/prologue.sh
source "$(dirname "${BASH_SOURCE[0]}")/prologue.sh"
need openssl

# certificate FILE SUBJECT NAMES: a self-signed certificate as PEM.
certificate() {
    openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -keyout key.pem -utf8 \
        -multivalue-rdn -subj "$2" -addext "subjectAltName=$3" -out "$1" \
        -config <(printf '[req]\ndistinguished_name=d\n[d]\n[n]\nO=Other\nCN=Name\n') 2>/dev/null
}

certificate plain.pem $'/C=RU/O=A,B+OU=Unit/CN=\xD0\x96\xE2\x80\xAEx' \
    'DNS:a.example,email:b@example,URI:http://c.example/,IP:10.0.0.1,RID:1.2.3,dirName:n'
openssl x509 -in plain.pem -outform DER -out plain.der
certificate other.pem /CN=Other 'DNS:d.example,otherName:1.2.3;UTF8:x,DNS:e.example'
cat plain.pem other.pem >both.pem

# The direction mark is shown, not obeyed.
cat >plain.expected <<'TEXT'
issuer: C=RU,O=A,B+OU=Unit,CN=Ж\u{202E}x
subject: C=RU,O=A,B+OU=Unit,CN=Ж\u{202E}x
  also: a.example
  also: b@example
  also: http://c.example/
  also: 0a000001
  also: 1.2.3
  also: O=Other,CN=Name
TEXT
cat plain.expected - >both.expected <<'TEXT'
issuer: CN=Other
subject: CN=Other
  (a name of a kind that is not read here, and those behind it)
  also: d.example
TEXT
"$program" plain.pem | diff plain.expected -
"$program" plain.der | diff plain.expected -
"$program" both.pem | diff both.expected -

# refused TEXT FILE: the program ends with 1 and says TEXT.
refused() {
    local got=0
    "$program" "$2" >output 2>&1 || got=$?
    ((got == 1)) && grep -qF -- "$1" output || { echo "FAILED: $2: $got"; cat output; exit 1; }
}
head -c 100 plain.der >cut.der
refused "no certificate: ASN1S_" cut.der
refused "no certificate: ASN1S_" missing.der
sed '3s/./!/' plain.pem >bad.pem
refused "line 1: a character is not base64" bad.pem
echo "all as expected"
