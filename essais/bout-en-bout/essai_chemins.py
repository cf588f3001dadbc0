"""Un « fichier:ligne » écrit dans un terminal s’ouvre dans l’éditeur, d’un Ctrl+clic."""

import contextlib
import os
import tempfile

from application import attendre, compter_les_pixels, touches
from essai_terminal import Terminal as CasDeTerminal, taper
from glissement import souris

PREMIERE_LIGNE = 127
HAUTEUR = 17
INDICATION = "#292929"
EN_BAS = "400x60+40+820"


class Chemins(CasDeTerminal):
    def ouvrir_avec_un_editeur(self):
        """Le bureau ouvre les textes par un programme qui les note."""
        bac = tempfile.mkdtemp()
        self.note = os.path.join(bac, "note")
        programme, applications = os.path.join(bac, "editeur"), os.path.join(bac, "applications")
        os.mkdir(applications)
        with open(programme, "w") as fichier:
            fichier.write(f"#!/bin/sh\necho \"$1\" >> '{self.note}'\n")
        os.chmod(programme, 0o755)
        with open(os.path.join(applications, "editeur.desktop"), "w") as fichier:
            fichier.write(f"[Desktop Entry]\nType=Application\nName=Éditeur\nExec={programme} %f\nMimeType=text/plain;\n")
        with open(os.path.join(applications, "mimeapps.list"), "w") as fichier:
            fichier.write("[Default Applications]\ntext/plain=editeur.desktop\n")
        return self.ouvrir(variables={"XDG_DATA_HOME": bac, "XDG_CONFIG_HOME": bac})

    def notes(self):
        if not os.path.exists(self.note):
            return []
        with open(self.note) as note:
            return note.read().splitlines()

    def survoler(self, rang, lien):
        """Le terminal ne cherche les liens que sous une souris qui bouge ; l’indication vient quand le serveur a répondu."""
        def vu():
            souris("mousemove", 400, PREMIERE_LIGNE + 8 * HAUTEUR, "mousemove", 62, PREMIERE_LIGNE + rang * HAUTEUR)
            souris("mousemove", 64, PREMIERE_LIGNE + rang * HAUTEUR)
            with contextlib.suppress(AssertionError):
                attendre(lambda: compter_les_pixels(INDICATION, EN_BAS) > 500, secondes=2)
                return lien
            return not lien

        attendre(vu, quoi=f"l’indication à la ligne {rang}")

    def test_seul_un_ctrl_clic_sur_un_fichier_qui_existe_l_ouvre(self):
        application = self.ouvrir_avec_un_editeur()
        taper("echo texte > a.txt; clear; printf 'b.txt:1:1: absent\\na.txt:12:5: erreur\\n'; touch ecrit\n")
        self.attendre_le_fichier(application, "ecrit")

        self.survoler(0, lien=False)
        souris("keydown", "ctrl", "click", 1, "keyup", "ctrl")
        self.survoler(1, lien=True)
        souris("click", 1)
        souris("keydown", "ctrl", "click", 1, "keyup", "ctrl")
        attendre(self.notes, quoi="le fichier dans l’éditeur")
        self.assertEqual(self.notes(), [self.chemin(application, "a.txt")])
        # Par le menu aussi : son « Ouvrir le lien » est pour ce que l’on survole.
        self.survoler(1, lien=True)
        souris("click", 3)
        touches("Up", "Up", "Up", "Up", "Up", "Return")
        attendre(lambda: len(self.notes()) == 2, quoi="le fichier par le menu")
        application.quitter()
