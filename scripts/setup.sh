#!/bin/sh
# Installs what building and running the project needs on Debian 12, quietly
# and only when something is missing. Run as root.
set -e
# wine (the command) comes with wine64 as a recommended package; clang and
# its run-time libraries build the native fuzz targets; nlohmann-json is
# krhost's JSON writer; doxygen and graphviz build the API reference.
packages="g++-mingw-w64-x86-64-posix wine64 wine googletest osslsigncode cmake ninja-build openssl
  clang libclang-rt-14-dev nlohmann-json3-dev doxygen graphviz"
missing=""
for package in $packages; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "ok installed" || missing="$missing $package"
done
if [ -n "$missing" ]; then
  echo "Installing:$missing"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq $missing >/dev/null
fi
