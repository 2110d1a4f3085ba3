#!/usr/bin/env bash
# The library's main job, shown on the orders schema:
# 1. orders_demo reads a 10 MB orders document into the bound classes, works
#    on them, writes XML text, Fast Infoset and gzip'd Fast Infoset, reads
#    each back and checks the object graphs match;
# 2. orders_stream reads a document generated on the fly (200 MB by
#    default) order by order in flat memory, and checks its totals against
#    the generator's own;
# 3. koxml takes a ~10 MB document XML -> Fast Infoset -> gzip -> XML and
#    checks the result is the same document.
# Any failed check ends the demo with a non-zero status.
set -euo pipefail
build=${1:-build}
size=${DEMO_SIZE:-10485760}
streamSize=${DEMO_STREAM_SIZE:-200M}
orders="$build/examples/orders"

echo "== Binding: the orders document into objects and back"
"$orders/orders_demo" "$size"
echo
echo "== Streaming: a document generated while it is read, one order at a time"
"$orders/orders_stream" --generate "$streamSize" --check --max-peak-mb 64
echo
echo "== Converting with koxml: XML -> Fast Infoset -> gzip -> XML"

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
