"""Vingt, cinquante onglets dans la vraie fenêtre : la rangée défile, et l’onglet choisi reste sous les yeux."""

import json
import os
import re
import subprocess

from application import attendre, attendre_le_clavier, touches
from cas import Cas
from glissement import souris

CHOISI = "FBFBFC"
# Au-dessus des noms, dans les onglets.
LIGNE = "1280x1+40+80"


class Onglets(Cas):
    def ouvrir(self, nombre):
        application = self.application(vrai_serveur=True)
        terminaux = [{"id": f"t{rang}", "nom": f"Terminal {rang + 1}", "dossier": "/tmp", "lignes": []} for rang in range(nombre)]
        with open(os.path.join(application.maison, ".zelcor/keltrove-carnet.json"), "w") as fichier:
            json.dump({"terminaux": terminaux}, fichier)
        application.lancer().attendre("page-contenu", 60)
        attendre_le_clavier(application)
        return application

    def choisi(self):
        """Où commence l’onglet choisi, en pixels depuis la gauche de la fenêtre ; rien si on ne le voit pas en entier."""
        pixels = subprocess.run(["import", "-window", "root", "-crop", LIGNE, "-depth", "8", "txt:-"], capture_output=True,
                                text=True, check=True).stdout
        trouve = re.search("1{80,}", "".join("1" if p == CHOISI else "0" for p in re.findall(r"#([0-9A-F]{6})", pixels)))
        return trouve and trouve.start()

    def photographier(self, nom):
        if dossier := os.environ.get("KELTROVE_CAPTURES"):
            subprocess.run(["import", "-window", "root", os.path.join(dossier, nom + ".png")], check=True)

    def test_la_molette_fait_defiler_et_le_choisi_reste_visible(self):
        for nombre in (20, 50):
            with self.subTest(onglets=nombre):
                application = self.ouvrir(nombre)
                attendre(lambda: self.choisi() is not None, quoi="l’onglet choisi")
                self.photographier(f"onglets-{nombre}")
                debut = self.choisi()
                souris("mousemove", 600, 90, "click", 5, "click", 5)
                attendre(lambda: self.choisi() != debut, quoi="la rangée défilée")
                souris("mousemove", 600, 600)
                # Du premier au dernier, d’un geste.
                touches("ctrl+shift+Prior")
                attendre(lambda: (self.choisi() or 0) > 600, quoi=lambda: f"le dernier onglet visible (vu : {self.choisi()})")
                self.photographier(f"onglets-{nombre}-dernier")
                application.quitter()
