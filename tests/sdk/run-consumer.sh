#!/bin/sh
# Makes the SDK package from the build tree and unpacks it into a fresh
# folder, then, as a module author would, builds the package's samples and
# the consumer project against it and runs them: the consumer's program uses
# the runtime, and krhost from the package checks and loads the modules (one
# built with nothing but an entry point, one with a version resource, two
# signed with a publisher's certificate, made here, as a PFX file and as a
# PEM pair, and the samples).
set -e
build="$1"
source="$2"
work="$build/sdk-consumer"
rm -rf "$work"
mkdir -p "$work/publisher" "$work/sdk"
cmake --build "$build" --target package >/dev/null
zip=$(ls "$build"/kestrune-sdk-*-win64.zip)
version=${zip##*/kestrune-sdk-}
version=${version%-win64.zip}
(cd "$work/sdk" && cmake -E tar xf "$zip")

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
cmake -S "$work/sdk/samples" -B "$work/samples" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$work/sdk/lib/cmake/Kestrune/toolchain-mingw64.cmake" -DCMAKE_PREFIX_PATH="$work/sdk" >/dev/null
cmake --build "$work/samples" >/dev/null
cp "$work/sdk/bin/kr1st20.dll" "$work/build/"
cd "$work/build"
run="$work/sdk/lib/cmake/Kestrune/wine-run.sh"
krhost="$work/sdk/bin/krhost.exe"
export KR_WINEPREFIX="$build/wineprefix"
"$run" "$krhost" --version | grep -x "krhost $version"
"$run" consumer.exe | grep "runtime is up"
"$run" "$krhost" check --json probe.krx | grep -q '"version":"3.1.4","description":"Versioned probe module"'
"$run" "$krhost" check plain.krx probe.krx signed_pfx.krx signed_pem.krx | grep "Every module would load: yes"
"$run" "$krhost" load probe.krx
"$run" "$krhost" load plain.krx signed_pfx.krx signed_pem.krx "$work/samples/bin/samples/shapes.krx" \
  "$work/samples/bin/samples/greeter.kra" | grep "Every module loaded: yes"
