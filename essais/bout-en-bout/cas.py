"""Le modèle commun des essais : chaque application se ferme, et rien ne reste derrière elle."""

import os
import unittest

from application import Application


class Cas(unittest.TestCase):
    def application(self, reste_un_serveur=False, **options):
        application = Application(**options)

        def verifier():
            zombies = enfants_zombies(application)
            restes = application.nettoyer()
            self.assertEqual(zombies, [], "un enfant n’a pas été recueilli")
            if not reste_un_serveur:
                self.assertEqual(restes, [], "un serveur est resté")

        self.addCleanup(verifier)
        return application


def enfants_zombies(application):
    """Les enfants de l’application encore en vie qu’elle a oublié de recueillir."""
    if application.processus is None or application.processus.poll() is not None:
        return []
    zombies = []
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{pid}/stat") as fichier:
                etat, parent = fichier.read().rsplit(")", 1)[1].split()[:2]
        except OSError:
            continue
        if etat == "Z" and int(parent) == application.processus.pid:
            zombies.append(pid)
    return zombies
