"""Cent démarrages et fermetures de suite : rien ne reste, rien ne grossit."""

import os
import socket
import tempfile

from application import SERVEUR, processus_marques
from cas import Cas


def fichiers(dossier):
    return sorted(os.path.join(racine, nom) for racine, _, noms in os.walk(dossier) for nom in noms)


class Endurance(Cas):
    def test_cent_demarrages_ne_laissent_ni_processus_ni_fichier_ni_prise(self):
        temporaires = tempfile.TemporaryDirectory()
        self.addCleanup(temporaires.cleanup)
        application = self.application(code=SERVEUR + "servir();", variables={"TMPDIR": temporaires.name})
        apres_les_premiers, pointes = None, []
        for tour in range(100):
            application.lancer().attendre("page-affichee")
            with open(f"/proc/{application.processus.pid}/status") as fichier:
                pointes.append(int(next(l for l in fichier if l.startswith("VmHWM")).split()[1]))
            self.assertEqual(application.quitter(), 0)
            self.assertEqual(application.serveurs(), [])
            with socket.socket() as prise:
                self.assertNotEqual(prise.connect_ex(("127.0.0.1", application.port)), 0)
            if tour == 4:
                apres_les_premiers = fichiers(application.maison)
        self.assertEqual(fichiers(application.maison), apres_les_premiers)
        self.assertEqual(os.listdir(temporaires.name), [])
        self.assertLess(max(pointes[-20:]), 1.1 * max(pointes[:20]), "la mémoire ne grossit pas d’un lancement à l’autre")
        restes = [pid for pid in processus_marques(application.marque)]
        self.assertEqual(restes, [])
