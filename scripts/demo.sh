#!/usr/bin/env bash
# Generates a ~10 MB orders document and takes it XML -> Fast Infoset ->
# gzip -> XML with koxml, checks the result is the same document, and prints
# what each format costs to write and to read.
set -euo pipefail
build=${1:-build}
size=${DEMO_SIZE:-10485760}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
koxml="$build/tools/koxml"
"$build/tools/orders-gen" "$size" "$work/orders.xml"

# Prints "inBytes outBytes readMs writeMs" of one conversion.
convert() { "$koxml" convert "$@" --stats 2>&1 >/dev/null; }

read -r xmlBytes fiBytes xmlRead fiWrite < <(convert "$work/orders.xml" "$work/orders.fi" --strip-whitespace)
read -r _ gzBytes fiRead gzWrite < <(convert "$work/orders.fi" "$work/orders.fi.gz")
read -r _ backBytes gzRead xmlWrite < <(convert "$work/orders.fi.gz" "$work/roundtrip.xml" --indent)

row() { printf '%-22s %12s %10s %10s\n' "$@"; }
echo
row "format" "bytes" "write ms" "read ms"
row "XML text" "$xmlBytes" "$xmlWrite" "$xmlRead"
row "Fast Infoset" "$fiBytes" "$fiWrite" "$fiRead"
row "Fast Infoset + gzip" "$gzBytes" "$gzWrite" "$gzRead"
echo "(XML written by koxml with --indent: $backBytes bytes)"

canonical() { xmllint --noblanks --c14n "$1" | sha256sum | cut -d' ' -f1; }
if [ "$(canonical "$work/orders.xml")" = "$(canonical "$work/roundtrip.xml")" ]; then
  echo "round trip XML -> FI -> gzip -> XML: same document"
else
  echo "round trip XML -> FI -> gzip -> XML: the documents DIFFER" >&2
  exit 1
fi
