#!/bin/sh
# Démarre le serveur d’une copie installée, après s’être assuré que personne ne l’a modifiée.
#
# Une ligne « MODIFIE=raison » et une fin immédiate : la copie n’est pas celle qui a été signée. Sinon le serveur prend
# la place de ce script, et reçoit donc les signaux qui lui sont destinés.

ici=$(CDPATH='' cd -- "$(dirname -- "$0")" && pwd -P) || exit 1

premier_executable() {
  for candidat in "$@"; do
    if [ -f "$candidat" ] && [ -x "$candidat" ]; then
      printf '%s\n' "$candidat"
      return 0
    fi
  done
  return 1
}

refuser() {
  printf 'MODIFIE=%s\n' "$1"
  exit 1
}

verificateur=$(premier_executable "$ici/../keltrove" "$ici/../../bin/keltrove" "$ici/../MacOS/Keltrove") ||
  refuser 'le programme qui vérifie cette copie manque'
raison=$("$verificateur" verifier-inventaire "$ici/keltrove" "$ici/cle-publique.pem" 2>&1) || refuser "$raison"

# Le même ordre que l’application : un Node livré avec elle passe avant ceux du système.
node=$(premier_executable "$ici/node" "$ici/node/bin/node" /usr/local/bin/node /opt/homebrew/bin/node /usr/bin/node) || {
  echo 'Node est introuvable : installez Node 18 ou plus récent (paquet « nodejs »), puis réessayez.'
  exit 1
}
cd "$ici/keltrove" || exit 1
exec "$node" "$ici/keltrove/serveur.mjs"
