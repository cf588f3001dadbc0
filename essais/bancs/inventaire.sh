#!/usr/bin/env bash
# Mesure « verifier-inventaire » à côté d’outils ordinaires, dans la même passe, cache chaud. Médianes de cinq.
#   essais/bancs/inventaire.sh [construction]
set -euo pipefail
. "$(dirname "$0")/../../outils/commun.sh"
keltrove=$(realpath "${1:-$racine/build/release}")/keltrove
[ -x "$keltrove" ] || abandonner "Construisez d’abord : cmake --preset release && cmake --build --preset release"
dossier=$(mktemp -d)
trap 'rm -rf "$dossier"' EXIT
exec /usr/bin/python3 "$racine/essais/bancs/inventaire.py" "$keltrove" "$racine/outils/signer-inventaire" "$dossier"
