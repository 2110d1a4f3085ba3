#!/usr/bin/env bash
# Installs into a temporary prefix and builds a tiny outside project against
# the installed package, both through CMake and through pkg-config.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
make -C "$root" install PREFIX="$tmp/prefix" >/dev/null
mkdir -p "$tmp/app"
cat > "$tmp/app/CMakeLists.txt" <<'CM'
cmake_minimum_required(VERSION 3.25)
project(outside CXX)
set(CMAKE_CXX_STANDARD 17)
find_package(KoXmlLib10 CONFIG REQUIRED)
add_executable(outside main.cpp)
target_link_libraries(outside PRIVATE KoXmlLib10::koxmllib10)
CM
cat > "$tmp/app/main.cpp" <<'CPP'
#include <KoXmlLib10.h>
#include <cstdio>
int main() {
  KoXmlLib10::SetGeneratorVersion(10, 1);
  try {
    throw KoXmlLib10::CKoValidationException("outer", KoXmlLib10::CKoInvalidValueException("inner"));
  } catch (const KoXmlLib10::CKoException& e) {
    if (e.GetFullMessage() != "outer\ninner") return 1;
  }
  int major = 0, minor = 0;
  KoXmlLib10::GetGeneratorVersion(major, minor);
  std::puts("outside project ok");
  return (major == 10 && minor == 1) ? 0 : 1;
}
CPP
cmake -S "$tmp/app" -B "$tmp/app/build" -DCMAKE_PREFIX_PATH="$tmp/prefix" >/dev/null
cmake --build "$tmp/app/build" >/dev/null
LD_LIBRARY_PATH="$tmp/prefix/lib" "$tmp/app/build/outside"
# pkg-config route
PKG_CONFIG_PATH="$tmp/prefix/lib/pkgconfig" g++ -std=c++17 "$tmp/app/main.cpp" -o "$tmp/app/pc" \
  $(PKG_CONFIG_PATH="$tmp/prefix/lib/pkgconfig" pkg-config --cflags --libs koxmllib10)
LD_LIBRARY_PATH="$tmp/prefix/lib" "$tmp/app/pc"
# The koxml tool is installed with the library and finds it from its own prefix.
"$tmp/prefix/bin/koxml" --version
printf '<r xmlns="urn:x"><a k="v">t</a></r>' > "$tmp/app/in.xml"
"$tmp/prefix/bin/koxml" convert "$tmp/app/in.xml" "$tmp/app/out.fi"
"$tmp/prefix/bin/koxml" info "$tmp/app/out.fi" | grep -q "elements:      2"
echo "install check passed"
