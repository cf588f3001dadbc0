"""Un dossier personnel plein, ou en lecture seule : c’est là qu’on a besoin d’un terminal."""

import os
import subprocess
import tempfile
import unittest

from application import attendre, attendre_le_clavier
from essai_terminal import Terminal, taper


@unittest.skipUnless(os.getuid() == 0, "monter un système de fichiers demande d’être administrateur")
class MaisonSansPlace(Terminal):
    def monter(self, options):
        maison = tempfile.mkdtemp(prefix="maison d’été ")
        subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", maison], check=True)
        self.addCleanup(os.rmdir, maison)
        self.addCleanup(subprocess.run, ["umount", "-l", maison], check=True)
        return maison

    def vivre(self, maison, empecher):
        dehors = tempfile.mkdtemp()
        variables = {nom: os.path.join(maison, nom.lower()) for nom in ("XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME")}
        # Le bac à sable de la page écrit dans ce dossier-là, que le système tient hors du dossier personnel.
        variables["XDG_RUNTIME_DIR"] = tempfile.mkdtemp()
        application = self.application(vrai_serveur=True, maison=maison, variables=variables)
        application.avoir_un_bus().preparer()
        empecher()
        application.lancer()
        application.attendre("page-contenu")
        self.assertIn("allume", application.etapes())
        attendre_le_clavier(application)
        preuve = os.path.join(dehors, "preuve")
        taper(f"echo bonjour > {preuve}\n")
        attendre(lambda: os.path.exists(preuve), quoi="ce que le shell a écrit ailleurs")
        self.assertEqual(application.quitter(), 0)
        self.assertFalse(os.path.exists(os.path.join(maison, ".zelcor", "keltrove-jeton")))

    def test_en_lecture_seule_la_fenetre_donne_un_terminal(self):
        maison = self.monter("mode=700")
        self.vivre(maison, lambda: subprocess.run(["mount", "-o", "remount,ro", maison], check=True))

    def test_pleine_la_fenetre_donne_un_terminal(self):
        maison = self.monter("size=256k,mode=700")

        def remplir():
            with open(os.path.join(maison, "plein"), "wb", buffering=0) as fichier:
                try:
                    while fichier.write(b"x" * 4096):
                        pass
                except OSError:
                    pass

        self.vivre(maison, remplir)
