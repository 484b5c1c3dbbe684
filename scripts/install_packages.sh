#!/usr/bin/env bash
# Installs those of the Debian packages in packages.txt, and of those that are given, that are missing.
set -euo pipefail
cd "$(dirname "$0")"

missing=()
for package in $(<packages.txt) "$@"; do
  status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
  [[ $status == installed ]] || missing+=("$package")
done
((${#missing[@]})) || exit 0

as_root=()
((EUID == 0)) || as_root=(sudo)
"${as_root[@]}" apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install --yes --no-install-recommends "${missing[@]}"
