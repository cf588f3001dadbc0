"""La table de parité, jouée par le bureau Linux : sa vraie fenêtre, WebKit, et un vrai serveur."""

import os
import pathlib
import signal
import subprocess
import sys
import unittest

import ecran
from application import active, attendre, attendre_le_clavier, fenetres, touches
from bus import Bus
from cas import Cas

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "parite"))
from joueur import Partie  # noqa: E402
from table import SCENARIOS, SERVEUR, est_keltrove  # noqa: E402


class BureauLinux:
    def __init__(self, cas):
        self.cas, self.bus = cas, Bus(cas)

    @property
    def port(self):
        return self.application.port

    def preparer(self, depart):
        self.application = self.cas.application(reste_un_serveur=True, variables=dict(self.bus.variables))
        pathlib.Path(self.application.maison, ".zelcor", "keltrove-jeton").write_text("abc")
        self.poser("serveur.mjs", SERVEUR.read_text())
        self.poser("conduite", depart.get("code", "ordinaire"))
        if depart.get("déjà là") == "un serveur":
            self.lancer_un_serveur()

    def lancer_un_serveur(self):
        subprocess.Popen(["node", self.dossier("serveur.mjs")], env=self.application.environnement(), start_new_session=True)
        attendre(self.repond, quoi="le serveur déjà là")

    def dossier(self, nom):
        return os.path.join(self.application.ressources, "keltrove", nom)

    def poser(self, nom, contenu=""):
        """Entier dès qu’il se voit."""
        self.application.poser(f"keltrove/{nom}.tmp", contenu)
        os.rename(self.dossier(f"{nom}.tmp"), self.dossier(nom))

    def repond(self):
        return est_keltrove(self.port)

    # Les gestes.
    def faire(self, geste, objet):
        if geste != "le temps passe":
            getattr(self, GESTES[geste])(*[objet] if objet else [])

    def lancer(self):
        self.application.lancer()

    def reessayer(self):
        ecran.presser(self.application.processus.pid, "Réessayer")

    def presser(self, touche):
        attendre_le_clavier(self.application)
        touches(touche)

    def quitter(self):
        self.presser("ctrl+shift+q")

    def fermer_la_fenetre(self):
        self.presser("alt+F4")

    def finir_la_session(self):
        self.application.processus.send_signal(signal.SIGTERM)

    def la_page_vient(self):
        self.poser("page", "vient")

    def le_serveur_meurt(self):
        self.poser("meurs")
        attendre(lambda: not self.repond(), quoi="le serveur parti")
        os.remove(self.dossier("meurs"))

    # Ce que l’on en voit.
    def suite(self, voix):
        if voix == "journal":
            return [ligne.strip() for ligne in self.application.lignes if ligne.startswith("  [keltrove] ")]
        return []

    def etat(self, voix):
        return getattr(self, "etat_" + ETATS[voix])()

    def etat_de_l_ecran(self):
        titre, *_ = [*self.textes(), "page"]
        return " | ".join([titre, *ecran.boutons(self.application.processus.pid)])

    def textes(self):
        """Ceux de l’écran d’attente, après les titres des menus."""
        return ecran.textes(self.application.processus.pid)[len(MENUS):]

    def etat_de_la_phrase(self):
        return self.textes()[1]

    def etat_de_la_fenetre(self):
        return "devant" if active() in map(str, fenetres(self.application)) else "cachée"

    def etat_du_serveur(self):
        return "répond" if self.repond() else "parti"

    def etat_de_l_application(self):
        etat = self.application.processus.poll()
        return "en marche" if etat is None else "partie" if etat == 0 else f"sortie avec {etat}"


GESTES = {"lancer": "lancer", "réessayer": "reessayer", "quitter": "quitter", "fermer la fenêtre": "fermer_la_fenetre",
          "finir la session": "finir_la_session", "la page vient": "la_page_vient", "le serveur meurt": "le_serveur_meurt"}
MENUS = ("Keltrove", "Édition", "Présentation", "Fenêtre")
ETATS = {"écran": "de_l_ecran", "phrase": "de_la_phrase", "fenêtre": "de_la_fenetre", "serveur": "du_serveur", "application": "de_l_application"}


class Parite(Cas):
    def __init__(self, scenario):
        super().__init__("jouer")
        self.scenario = scenario

    def id(self):
        return f"essai_parite.{self.scenario.nom}"

    __str__ = id

    def jouer(self):
        Partie(self.scenario, BureauLinux(self), "gtk").jouer()


def load_tests(_chargeur, _trouves, _motif):
    return unittest.TestSuite(map(Parite, SCENARIOS))
