#!/bin/sh
# Installs the SDK from the build tree into a fresh prefix, then configures,
# builds and runs the consumer project against it, as a module author would:
# its program uses the runtime, and krhost from the SDK checks and loads its
# modules (one built with nothing but an entry point, two signed with a
# publisher's certificate, made here, as a PFX file and as a PEM pair).
set -e
build="$1"
source="$2"
work="$build/sdk-consumer"
rm -rf "$work"
mkdir -p "$work/publisher"
cmake --install "$build" --prefix "$work/sdk" >/dev/null

cd "$work/publisher"
openssl req -x509 -newkey rsa:2048 -nodes -days 30 -keyout ca.key -out ca.pem -subj "/CN=Consumer test CA" \
  -addext "basicConstraints=critical,CA:TRUE" -addext "keyUsage=critical,keyCertSign" 2>/dev/null
openssl req -newkey rsa:2048 -nodes -keyout publisher.key -out publisher.csr -subj "/CN=Consumer test publisher" 2>/dev/null
printf 'extendedKeyUsage=codeSigning\n' > codesign.cnf
openssl x509 -req -days 30 -in publisher.csr -CA ca.pem -CAkey ca.key -CAcreateserial -extfile codesign.cnf \
  -out publisher.pem 2>/dev/null
echo "consumer-secret" > password.txt
openssl pkcs12 -export -inkey publisher.key -in publisher.pem -certfile ca.pem -out publisher.pfx \
  -passout file:password.txt
cd - >/dev/null

cmake -S "$source/tests/sdk/consumer" -B "$work/build" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$work/sdk/lib/cmake/Kestrune/toolchain-mingw64.cmake" \
  -DCMAKE_PREFIX_PATH="$work/sdk" -DPUBLISHER_DIR="$work/publisher" >/dev/null
cmake --build "$work/build" >/dev/null
cp "$work/sdk/bin/kr1st20.dll" "$work/build/"
cd "$work/build"
run="$work/sdk/lib/cmake/Kestrune/wine-run.sh"
export KR_WINEPREFIX="$build/wineprefix"
"$run" consumer.exe | grep "runtime is up"
"$run" "$work/sdk/bin/krhost.exe" check plain.krx signed_pfx.krx signed_pem.krx | grep "Every module would load: yes"
"$run" "$work/sdk/bin/krhost.exe" load plain.krx signed_pfx.krx signed_pem.krx | grep "Every module loaded: yes"
