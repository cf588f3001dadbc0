#!/usr/bin/env python3
"""Met l’application dans chacun de ses états et la photographie. Lancé par captures.sh, sur un écran virtuel."""

import os
import signal
import subprocess
import sys
import tempfile

DOSSIER = os.path.abspath(sys.argv[1])
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../essais/bout-en-bout"))
from application import MUET, SERVEUR, SOMBRE, Application, attendre, commande, couleur, sans_node, touches  # noqa: E402

MORT = """console.error(`node:internal/modules/cjs/loader
  throw err;
  ^

Error: Cannot find module 'ws'
Require stack:
- keltrove/serveur.mjs
    at Module._resolveFilename (node:internal/modules/cjs/loader:1144:15)
    at Module._load (node:internal/modules/cjs/loader:985:27) {
  code: 'MODULE_NOT_FOUND'
}`);process.exit(1);"""
SOURD = SERVEUR + "servir(); console.log('Première ligne du serveur.'); process.on('SIGTERM', () => {});"


def photographier(nom, fond=SOMBRE):
    """Une fois le fond attendu peint près du bord, jusqu’à deux prises identiques : plus rien ne bouge."""
    attendre(lambda: couleur(100, 800) == fond, quoi=f"le fond {fond} pour {nom}")
    fichier = os.path.join(DOSSIER, nom + ".png")
    precedente = None
    for _ in range(20):
        subprocess.run(["import", "-window", "root", fichier], check=True)
        with open(fichier, "rb") as image:
            octets = image.read()
        if octets == precedente:
            break
        precedente = octets
    print("  " + nom, flush=True)


def photographier_replie_puis_deplie(nom):
    photographier(nom + "-replie")
    touches("Tab", "space")
    photographier(nom + "-deplie")


def avec(application, jouer):
    try:
        jouer(application.lancer())
    finally:
        application.processus.terminate()
        try:
            application.processus.wait(20)
        finally:
            application.nettoyer()


def probleme(nom, deplier=False, **options):
    def jouer(application):
        application.attendre("echec-demarrage", 60)
        (photographier_replie_puis_deplie if deplier else photographier)(nom)

    avec(Application(**options), jouer)


BASHRC = r"PS1='\[\e[1;32m\]ana@poste\[\e[0m\]:\[\e[1;34m\]\w\[\e[0m\]$ '; alias ls='ls --color'; cd ~/projet" + "\n"
CONSTRUIRE = r"""printf '\e[1mConstruction du jardin\e[0m\n'
for pas in 'lire le plan' 'tracer les allées' 'semer les haricots' 'arroser'; do
  printf '  \e[32m✓\e[0m %s\n' "$pas"
done
printf '  \e[33m!\e[0m les limaces n’ont pas signé le contrat\n'
printf '\e[32mTerminé\e[0m en 4 pas, 1 avertissement.\n'
"""


def meubler(application):
    """De quoi montrer un usage : une invite, un projet, un programme."""
    for nom in ("plan.md", "haricots.txt", "allées.svg"):
        os.makedirs(os.path.join(application.maison, "projet/semis"), exist_ok=True)
        open(os.path.join(application.maison, "projet", nom), "w").close()
    for nom, contenu in ((".bashrc", BASHRC), ("projet/construire", CONSTRUIRE)):
        with open(os.path.join(application.maison, nom), "w") as fichier:
            fichier.write(contenu)
    os.chmod(os.path.join(application.maison, "projet/construire"), 0o755)


def taper(commande):
    subprocess.run(["xdotool", "type", "--delay", "12", commande + "\n"], check=True)


def page_et_bandeau(application):
    application.attendre("page-affichee")
    photographier("bandeau", "#FBFBFC")
    application.attendre("page-contenu")
    taper("ls")
    touches("ctrl+shift+d")
    attendre(lambda: len({couleur(x, 500) for x in range(660, 700)}) > 1, quoi="le second terminal, à côté")
    taper("./construire")
    # Le bandeau dure quatre secondes : c’est la page sans lui que l’on veut.
    attendre(lambda: couleur(600, 825) == couleur(100, 800), quoi="la fin du bandeau")
    photographier("page", "#FBFBFC")


def page_ratee_et_serveur_fige(application):
    application.attendre("page-contenu")
    for pid in application.enfants("WebKitWebProcess"):
        if "bwrap" not in commande(pid):
            os.kill(pid, signal.SIGKILL)
    application.attendre("page-ratee")
    photographier_replie_puis_deplie("page-ratee")
    touches("Return")
    application.attendre("page-contenu", fois=2)
    (serveur,) = application.serveurs()
    os.kill(serveur, signal.SIGSTOP)
    application.attendre("serveur-ne-repond-plus", 60)
    photographier_replie_puis_deplie("ne-repond-plus")


def mort_en_route_et_fermeture(application):
    application.attendre("page-contenu")
    os.kill(application.serveurs()[0], signal.SIGKILL)
    application.attendre("serveur-mort-en-route")
    photographier_replie_puis_deplie("perdu-en-route")
    touches("Return")
    application.attendre("page-contenu", fois=2)
    application.processus.terminate()
    application.attendre("arret-demande")
    photographier("fermeture")


def attente_et_pas_de_reponse(application):
    application.attendre("demarrage-demande")
    photographier("attente")
    application.attendre("echec-demarrage", 60)
    photographier_replie_puis_deplie("pas-de-reponse")


def main():
    porte = ('#!/bin/sh\necho "MESSAGE=Le serveur a été mis à jour : version 0.1.0."\n'
             'exec node "$(dirname "$0")/keltrove/serveur.mjs"\n')
    application = Application(porte=porte, vrai_serveur=True)
    meubler(application)
    avec(application, page_et_bandeau)
    probleme("code-introuvable")
    probleme("lancement-impossible", porte="#!/nulle/part/interprete\n")
    probleme("mort-au-demarrage", deplier=True, code=MORT)
    probleme("code-modifie", porte="#!/bin/sh\necho MODIFIE=serveur.mjs\nexit 1\n")
    with tempfile.TemporaryDirectory() as dossier:
        probleme("node-introuvable", code=MUET, variables=sans_node(dossier))
    avec(Application(code=SOURD), mort_en_route_et_fermeture)
    avec(Application(code=SERVEUR + "servir(); console.log('Première ligne du serveur.');"), page_ratee_et_serveur_fige)
    avec(Application(code=MUET), attente_et_pas_de_reponse)


main()
