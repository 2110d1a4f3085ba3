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
# An outside project generates classes from a schema with two CMake lines and
# reads a document through them.
mkdir -p "$tmp/gen"
cp "$root/tools/orders-gen/orders.xsd" "$root/tests/generator/orders.xml" "$tmp/gen/"
cat > "$tmp/gen/CMakeLists.txt" <<'CM'
cmake_minimum_required(VERSION 3.25)
project(outside_generated CXX)
set(CMAKE_CXX_STANDARD 17)
find_package(KoXmlLib10 CONFIG REQUIRED)
koxmllib10_generate(TARGET orders_binding SCHEMAS orders.xsd NAMESPACE_MAP urn:example:orders=shop::orders)
add_executable(read_orders main.cpp)
target_link_libraries(read_orders PRIVATE orders_binding)
CM
cat > "$tmp/gen/main.cpp" <<'CPP'
#include "OrdersBinding.h"
#include <cstdio>
int main(int argc, char** argv) {
  if (argc < 2) return 2;
  CSmartPtr<shop::orders::COrders> doc(new shop::orders::COrders);
  doc->FromXmlFile(argv[1], KoXmlLib10::CXmlSerializationContext::m_defaultContext);
  std::printf("%d orders\n", doc->GetOrders()->GetCount());
  return doc->GetOrders()->GetCount() == 2 ? 0 : 1;
}
CPP
cmake -S "$tmp/gen" -B "$tmp/gen/build" -DCMAKE_PREFIX_PATH="$tmp/prefix" >/dev/null
cmake --build "$tmp/gen/build" >/dev/null
LD_LIBRARY_PATH="$tmp/prefix/lib" "$tmp/gen/build/read_orders" "$tmp/gen/orders.xml"
echo "install check passed"
