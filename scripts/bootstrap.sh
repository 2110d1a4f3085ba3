#!/usr/bin/env bash
# Installs the Debian packages the build needs, if any is missing.
# Idempotent: does nothing when everything is present.
set -eu
packages=(cmake g++ make pkg-config libexpat1-dev zlib1g-dev libpcre2-dev
          libgtest-dev libbenchmark-dev libxml2-utils
          default-jdk-headless libfastinfoset-java xsdcxx)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
if [ "$(id -u)" -eq 0 ]; then
  echo "bootstrap: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get install -y --no-install-recommends "${missing[@]}" >/dev/null || {
    apt-get update >/dev/null && apt-get install -y --no-install-recommends "${missing[@]}" >/dev/null; }
else
  echo "bootstrap: missing packages; run as root:"
  echo "  apt-get install -y ${missing[*]}"
  exit 1
fi
