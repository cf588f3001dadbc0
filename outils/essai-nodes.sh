#!/usr/bin/env bash
# Passe les essais du serveur sous chaque version de Node qu’une Debian peut apporter.
#   outils/essai-nodes.sh [version…]     par défaut : 18 20 22
# À la main ; demande le réseau, et quelques minutes par version.
set -euo pipefail
. "$(dirname "$0")/commun.sh"
versions=("$@")
[ $# -gt 0 ] || versions=(18 20 22)
installer_ce_qui_manque "${paquets_execution[@]}" "${paquets_essais[@]}"
cd "$racine/serveur"
npm ci --ignore-scripts --no-audit --no-fund --loglevel=error
essais=$(node -p 'require("./package.json").scripts.test')

ailleurs=$(mktemp -d)
chmod 755 "$ailleurs" # des essais s’y servent de Node sous un autre compte
trap 'rm -rf "$ailleurs"' EXIT
ratees=()
for version in "${versions[@]}"; do
  npm install --prefix "$ailleurs/$version" --no-audit --no-fund --loglevel=error "node@$version" >/dev/null ||
    abandonner "Node $version n’a pas pu être installé."
  node=$("$ailleurs/$version/node_modules/.bin/node" --version)
  dire "Essais du serveur, Node $node…"
  PATH=$ailleurs/$version/node_modules/.bin:$PATH sh -c "$essais" || ratees+=("$version")
done
[ ${#ratees[@]} = 0 ] || abandonner "Des essais du serveur échouent sous Node ${ratees[*]}."
dire "Les essais du serveur passent sous Node ${versions[*]}."
