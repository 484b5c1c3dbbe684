#!/usr/bin/env bash
# Installs those of the Debian packages in packages.txt that are missing.
set -euo pipefail
cd "$(dirname "$0")"

missing=()
while read -r package; do
  status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
  [[ $status == installed ]] || missing+=("$package")
done < packages.txt
((${#missing[@]})) || exit 0

as_root=()
((EUID == 0)) || as_root=(sudo)
"${as_root[@]}" apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install --yes --no-install-recommends "${missing[@]}"
