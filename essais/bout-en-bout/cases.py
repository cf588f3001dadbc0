"""Une case de la table des pannes est un essai ; elles se jouent ensemble."""

import concurrent.futures
import os
import subprocess
import tempfile
import unittest

import attendus
from banc_de_fautes import Banc
from pannes import PANNES
from places import Places

FAUTES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "fautes.c")
A_LA_FOIS = (os.cpu_count() or 2) + 1  # les applications que l’on mène ensemble…
EN_ATTENTE = 12  # … et celles qui n’attendent que le temps qui passe


class Case(unittest.TestCase):
    """Un essai, que désigne par exemple « lance.usage.serveur-tue »."""

    def __init__(self, mode, moment, panne, mots):
        super().__init__()
        self.mode, self.moment, self.panne, self.mots = mode, moment, panne, mots

    def id(self):
        return f"essai_fautes.{self.mode}.{self.moment}.{self.panne}"

    __str__ = id

    def est_lente(self):
        return any(mot in attendus.LENTS for mot in self.mots)

    def jouer(self, bibliotheque, places):
        panne = PANNES[self.panne]
        with places.une(), Banc(bibliotheque, self.mode == "rattache", self.moment, panne, places) as banc:
            panne.preparer(banc)
            banc.preparer()
            if self.moment == "avant":
                panne.faire(banc)
            banc.application.lancer()
            if self.moment != "avant":
                banc.mener()
                panne.faire(banc)
            self.suivre(banc)
            banc.conclure()
            panne.temoigner(banc)

    def suivre(self, banc):
        premier, *suite = self.mots
        getattr(attendus, premier)(banc)
        for mot in suite:
            banc.liberer()
            banc.panne.defaire(banc)
            banc.reessayer()
            getattr(attendus, mot)(banc)

    def runTest(self):
        self.travail.result()


class Ensemble(unittest.TestSuite):
    """Toutes les cases se jouent ensemble, et chacune se dit à son tour."""

    def run(self, resultat, debug=False):
        with tempfile.TemporaryDirectory() as dossier:
            bibliotheque = os.path.join(dossier, "fautes.so")
            subprocess.run(["cc", "-shared", "-fPIC", "-w", "-o", bibliotheque, FAUTES, "-ldl"], check=True)
            places = Places(A_LA_FOIS)
            fils = concurrent.futures.ThreadPoolExecutor(A_LA_FOIS + EN_ATTENTE)
            try:
                # Les plus lentes d’abord : les autres passent pendant qu’elles attendent.
                for case in sorted(self, key=lambda case: not case.est_lente()):
                    case.travail = fils.submit(case.jouer, bibliotheque, places)
                return super().run(resultat, debug)
            finally:
                fils.shutdown(cancel_futures=True)
