#!/usr/bin/env bash
# Copies programs into OUT/acme and OUT/mallory, signed by one each of whom only Acme is trusted, and
# into OUT/unsigned:
#   sign.sh linux|windows OUT PROGRAM...
set -euo pipefail

platform=$1 out=$2
shift 2
rm -rf "$out"/{acme,mallory,unsigned,trust,keys}
mkdir -p "$out"/{unsigned,trust,keys}

# sign SIGNER FILE
sign() {
    local key=$out/keys/$1.key certificate=$out/keys/$1.pem file=$2
    if [ "$platform" = windows ]; then
        osslsigncode sign -h sha256 -key "$key" -certs "$certificate" -in "$file" -out "$file.signed" >/dev/null
        mv "$file.signed" "$file"
    else
        openssl cms -sign -binary -outform DER -md sha256 -signer "$certificate" -inkey "$key" \
            -in "$file" -out "$file.p7s"
    fi
}

cp "$@" "$out/unsigned"
for signer in acme mallory; do
    openssl req -x509 -newkey rsa:2048 -nodes -days 3650 -subj "/CN=${signer^}" \
        -addext extendedKeyUsage=codeSigning -addext keyUsage=digitalSignature \
        -keyout "$out/keys/$signer.key" -out "$out/keys/$signer.pem" 2>/dev/null
    cp -r "$out/unsigned" "$out/$signer"
    for program in "$@"; do sign "$signer" "$out/$signer/${program##*/}"; done
done
cp "$out/keys/acme.pem" "$out/trust"
