# shellcheck shell=bash disable=SC2034,SC2154 # lit commun.sh, et est lu par essayer.sh : après celui-là
# Les étapes de outils/essayer.sh, une fonction chacune. Toutes peuvent être lancées seules : chacune construit ce qu’il lui
# faut, et ce qui est déjà construit ne l’est pas de nouveau.

etapes_rapides=(linters unitaires serveur bout-en-bout page)
# Le calcul pur court derrière les essais, qui passent leur temps à attendre, et leur cède la place.
etapes_de_fond=(assaini courses couverture portabilite analyse macos)
# Les essais du bureau macOS ajoutent à GNUstep 0.29, celui de Debian 12, ce qu’un plus récent a déjà, autrement.
gnustep_est_connu() { [ "$(. /etc/os-release && echo "${VERSION_ID:-}")" = 12 ]; }

etapes_lentes=(paquet)
! gnustep_est_connu || etapes_lentes+=(cocoa)
etapes=("${etapes_rapides[@]}" paquet cocoa "${etapes_de_fond[@]}")

lister_les_etapes() {
  cat <<'FIN'
Étapes :
  linters       la mise en forme du C++, puis eslint, pyflakes et shellcheck
  unitaires     les essais unitaires de la version livrée, dont le comportement ne lie aucune boîte à outils
  serveur       les essais du serveur et de sa page
  bout-en-bout  l’application entière, sur un écran virtuel : son code natif, adresses et comportements indéfinis surveillés
  page          l’application entière de la version livrée : sa page, ses mesures, son installation
  paquet        le paquet Debian, contrôlé par l’outil de chacune de ses parties
  cocoa         le bureau macOS, contre GNUstep, adresses et comportements indéfinis surveillés (sous Debian 12 seulement)
  assaini       les essais unitaires, adresses et comportements indéfinis surveillés
  courses       les essais unitaires, courses surveillées
  couverture    les lignes du comportement que les essais unitaires parcourent
  portabilite   clang et libc++, puis des entrées cherchées au hasard
  analyse       clang-tidy
  macos         la version de macOS, compilée, liée et contrôlée sans Mac
FIN
}

# Ce qui éprouve la page, se mesure, se lie ou s’installe a son sens sur la version livrée ; tout le reste éprouve le code
# natif, sur la construction assainie. Rien ne court deux fois.
essais_de_la_version_livree=(essai_endurance serveur_bavard CopieInstallee ne_charge_aucune_bibliotheque
  essai_terminal essai_touches essai_frappe essai_rendu essai_recherche essai_divisions essai_images essai_onglets
  essai_chemins essai_clic_droit)
construction_native=asan # celle de la version livrée, avec --rapide

construire_la_version_livree() { construire release -DKELTROVE_STRICT=ON -DKELTROVE_ESSAIS=ON; }

essais_unitaires() {
  dire "Essais unitaires ($1)…"
  ctest --test-dir "$racine/build/$1" -j"$(nproc)" --output-on-failure ||
    abandonner "Des essais unitaires échouent ($1) : relancez « ctest --test-dir build/$1 --output-on-failure »."
}

# « npm ci » repart de zéro à chaque fois : seulement si la liste des modules a changé.
installer_les_modules() {
  cd "$racine/serveur"
  if [ ! -x node_modules/.bin/eslint ] || [ package-lock.json -nt node_modules/.package-lock.json ]; then
    npm ci --ignore-scripts --no-audit --no-fund --loglevel=error
  fi
}

etape_linters() {
  dire "Mise en forme…"
  cd "$racine"
  find socle moteur verification pont fenetre app bureau essais outils \( -name '*.[ch]pp' -o -name '*.mm' -o -name '*.m' -o -name '*.h' \) -print0 |
    xargs -0 clang-format-19 --dry-run --Werror ||
    abandonner "Des fichiers ne sont pas mis en forme : « clang-format-19 -i » les corrige."
  dire "pyflakes…"
  find essais outils -name '*.py' -print0 | xargs -0 pyflakes3
  dire "shellcheck…"
  find outils essais paquet -name '*.sh' -print0 | xargs -0 shellcheck .ci/run
  dire "eslint…"
  installer_les_modules
  npx --no-install eslint .
}

etape_unitaires() {
  local liens
  construire_la_version_livree
  essais_unitaires release
  liens=$(ldd "$racine/build/release/essais/unitaires/essais_unitaires" "$racine/build/release/keltrove")
  ! grep -E 'gtk|gdk|webkit|libgio' <<<"$liens" ||
    abandonner "Une bibliothèque du bureau est liée là où elle ne doit pas l’être."
}

etape_serveur() {
  installer_les_modules
  npm test || abandonner "Des essais du serveur échouent : relancez « npm test » dans serveur/."
}

etape_bout_en_bout() {
  construire "$construction_native" -DKELTROVE_STRICT=ON -DKELTROVE_ESSAIS=ON
  KELTROVE_CONSTRUCTION="$racine/build/$construction_native" "$racine/essais/bout-en-bout/lancer.sh" \
    "${essais_de_la_version_livree[@]/#/-}"
}

etape_page() {
  construire_la_version_livree
  "$racine/essais/bout-en-bout/lancer.sh" "${essais_de_la_version_livree[@]}"
}

etape_paquet() { "$racine/outils/paquet.sh"; }

etape_cocoa() {
  gnustep_est_connu || abandonner "Le bureau macOS ne s’essaie que sous Debian 12 : ailleurs, GNUstep n’est pas le même."
  construire cocoa -DKELTROVE_STRICT=ON
  "$racine/essais/cocoa/lancer.sh"
}

etape_assaini() {
  construire asan -DKELTROVE_STRICT=ON
  essais_unitaires asan
}

etape_courses() {
  construire tsan
  essais_unitaires tsan
}

etape_couverture() {
  construire couverture
  essais_unitaires couverture
  dire "Lignes du comportement parcourues (au moins 95 %)…"
  cd "$racine"
  gcovr -r . build/couverture -f '(socle|moteur|verification|pont|fenetre|app)/' -s --fail-under-line 95 ||
    abandonner "Les essais parcourent moins de 95 % des lignes du comportement, ou gcovr n’a pas pu les compter."
}

etape_portabilite() {
  construire libcxx -DKELTROVE_STRICT=ON
  construire fuzz -DKELTROVE_STRICT=ON
  dire "Entrées cherchées au hasard, trente secondes chacune…"
  "$racine/essais/fuzz/lancer.sh" 30
}

etape_macos() { "$racine/outils/macos/verifier.sh"; }

etape_analyse() {
  local trace
  trace=$(mktemp)
  (cd "$racine" && cmake --preset analyse) >"$trace"
  # Chaque groupe y est un fichier qui inclut les siens.
  run-clang-tidy-19 -quiet -j"$(nproc)" -checks=-bugprone-suspicious-include -p "$racine/build/analyse" /Unity/ >"$trace" 2>&1 ||
    { grep -E '(error|warning):' "$trace" | sort -u >&2; abandonner "clang-tidy a trouvé à redire."; }
  rm -f "$trace"
}
