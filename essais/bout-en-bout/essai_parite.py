"""La table de parité, jouée par le bureau Linux : sa vraie fenêtre, WebKit, et un vrai serveur."""

import os
import pathlib
import signal
import socket
import subprocess
import tempfile
import threading
import unittest

import ecran
from application import active, attendre, attendre_le_clavier, fenetres, lire, sans_node, touches
from bureau import Ouvreur, ServiceDeNotifications
from bus import Bus
from cas import Cas
from glissement import Source
from joueur import Partie
from table import SCENARIOS, SERVEUR
from voisins import est_keltrove, repondre_en_etranger

CENTRE, DEHORS = (680, 500), (680, 5)
PREMIERE_NOTIFICATION = 101  # le numéro que lui donne le service
REFUS = "[org/gnome/desktop/notifications/application/fr-zelcor-keltrove]\nenable=false\n"


class BureauLinux:
    def __init__(self, cas):
        self.cas, self.bus, self.service = cas, Bus(cas), None

    @property
    def port(self):
        return self.application.port

    # Le départ.
    def preparer(self, depart):
        self.ouvreur = Ouvreur(self.cas, "x-scheme-handler/https")
        variables = {**self.bus.variables, **self.ouvreur.variables}
        if depart.get("notifications") != "absentes":
            self.service = ServiceDeNotifications(self.cas, self.bus)
        if "mode" in depart:
            variables.update({"discret": {"KELTROVE_DISCRET": "1"},
                              "essai": {"KELTROVE_ESSAI": "1", "KELTROVE_ESSAI_QUITTER": "5"}}[depart["mode"]])
        self.application = self.cas.application(reste_un_serveur=True, variables=variables)
        self.poser_le_panneau()
        if depart.get("notifications") == "refusées":
            self.refuser_les_notifications()
        pathlib.Path(self.application.maison, ".zelcor", "keltrove-jeton").write_text("abc")
        self.poser_le_code(depart.get("code", "ordinaire"))
        if "déjà là" in depart:
            {"un serveur": self.lancer_un_serveur, "un étranger": self.accueillir_un_etranger}[depart["déjà là"]]()

    def poser_le_code(self, code):
        if code == "irrecevable":
            return self.application.poser("demarrer-keltrove.sh", "#!/nulle/part\n", executable=True)
        if code == "le nôtre":
            return self.application.poser_le_vrai_serveur()
        if code == "aucun":
            return
        if code == "sans node":
            dossier = tempfile.TemporaryDirectory()
            self.cas.addCleanup(dossier.cleanup)
            self.application.variables.update(sans_node(dossier.name))
            code = "ordinaire"
        self.poser("serveur.mjs", SERVEUR.read_text())
        self.poser("conduite", code)

    def poser_le_panneau(self):
        """Celui des notifications, dans un bureau qui en a un."""
        dossier = os.path.join(self.application.racine, "programmes")
        panneau = os.path.join(dossier, "gnome-control-center")
        os.makedirs(dossier)
        pathlib.Path(panneau).write_text(f"#!/bin/sh\necho \"$1\" >> '{dossier}/ouverts'\n")
        os.chmod(panneau, 0o755)
        self.application.variables.update({"XDG_CURRENT_DESKTOP": "GNOME", "PATH": f"{dossier}:/usr/bin:/bin"})

    def refuser_les_notifications(self):
        dossier = os.path.join(self.application.maison, "réglages")
        fichier = os.path.join(dossier, "glib-2.0/settings/keyfile")
        os.makedirs(os.path.dirname(fichier))
        pathlib.Path(fichier).write_text(REFUS)
        self.application.variables.update({"GSETTINGS_BACKEND": "keyfile", "XDG_CONFIG_HOME": dossier})

    def lancer_un_serveur(self):
        serveur = subprocess.Popen(["node", self.dossier("serveur.mjs")], env=self.application.environnement(),
                                   start_new_session=True)
        self.cas.addCleanup(serveur.wait)
        self.cas.addCleanup(serveur.kill)
        attendre(self.repond, quoi="le serveur déjà là")

    def accueillir_un_etranger(self):
        prise = socket.create_server(("127.0.0.1", self.port))
        self.cas.addCleanup(prise.close)
        threading.Thread(target=repondre_en_etranger, args=(prise,), daemon=True).start()

    # Le dossier du serveur.
    def dossier(self, nom):
        return os.path.join(self.application.ressources, "keltrove", nom)

    def poser(self, nom, contenu=""):
        """Entier dès qu’il se voit."""
        self.application.poser(f"keltrove/{nom}.tmp", contenu)
        os.rename(self.dossier(f"{nom}.tmp"), self.dossier(nom))

    def ordonner_a_la_page(self, ordre):
        attendre(lambda: not os.path.exists(self.dossier("ordre")), quoi="la page qui prend l’ordre d’avant")
        self.poser("ordre", ordre)
        attendre(lambda: not os.path.exists(self.dossier("ordre")), quoi="la page qui prend l’ordre")

    def repond(self):
        return est_keltrove(self.port)

    # Les gestes.
    def faire(self, geste, objet):
        if geste != "le temps passe":
            GESTES[geste](self, *[objet] if objet else [])

    def lancer(self):
        self.application.lancer()

    def presser(self, touche):
        attendre_le_clavier(self.application)
        touches(touche)

    def presser_le_bouton(self, nom):
        ecran.presser(self.pid, nom)

    def rouvrir(self):
        subprocess.run([self.application.executable], env=self.application.environnement(), check=True, timeout=60)

    def couvrir(self):
        """Une autre fenêtre prend le clavier."""
        autre = subprocess.Popen(["xmessage", "-geometry", "1300x850+0+0", "devant"])
        self.cas.addCleanup(autre.wait)
        self.cas.addCleanup(autre.kill)
        attendre(lambda: active() not in ("", *self.fenetres()), quoi="l’autre fenêtre devant")

    def lacher_la_page(self, issue):
        if os.path.exists(self.dossier("conduite")):  # notre serveur, lui, ne la retient pas
            self.poser("page", issue)

    def tuer_la_page(self):
        for pid in self.application.pages():
            os.kill(pid, signal.SIGKILL)

    def tuer_le_serveur(self):
        self.poser("meurs")
        attendre(lambda: not self.repond(), quoi="le serveur parti")
        os.remove(self.dossier("meurs"))

    def geler_le_serveur(self):
        self.poser("gele")
        attendre(lambda: not os.path.exists(self.dossier("gele")), quoi="le serveur gelé")

    def degeler_le_serveur(self):
        os.kill(int(lire(self.dossier("pid"))), signal.SIGCONT)
        attendre(self.repond, quoi="le serveur dégelé")

    def cliquer(self, numero):
        self.service.ordonner(signal=["ActionInvoked", PREMIERE_NOTIFICATION - 1 + int(numero), "default"])

    def glisser(self, sorte, *valeurs):
        source = Source(self.cas, sorte, *valeurs)
        source.prendre()
        source.mener(*CENTRE, source.admis, "le glissement admis par la page")
        source.lacher()
        source.fermer()

    def emporter(self, chemin):
        source = Source(self.cas, "fichiers", chemin)
        source.prendre()
        # Admis avant d’être lu : il ne survole la page que si elle l’apprend avant qu’il ne parte.
        nombre = len(self.notes())
        source.mener(*CENTRE, lambda: len(self.notes()) > nombre, "le survol de la page")
        source.mener(*DEHORS, lambda: not source.admis(), "le glissement ailleurs")
        source.lacher()
        source.fermer()

    # Ce que l’on en voit.
    @property
    def pid(self):
        return self.application.processus.pid

    def suite(self, voix):
        return {"journal": self.journal, "page": self.notes, "notification": self.notifications, "système": self.ouverts}[voix]()

    def journal(self):
        return [ligne.strip() for ligne in self.application.lignes if ligne.startswith("  [keltrove] ")]

    def notes(self):
        return lignes_de(self.dossier("notes"))

    def notifications(self):
        posees = 0
        dites = []
        for _, remplace, _, titre, corps, *_ in self.service.appels() if self.service else []:
            posees += not remplace
            dites.append(f"{remplace - PREMIERE_NOTIFICATION + 1 if remplace else posees} {titre} / {corps}")
        return dites

    def ouverts(self):
        panneaux = lignes_de(os.path.join(self.application.racine, "programmes", "ouverts"))
        return [*(f"réglages des {nom}" for nom in panneaux), *(f"navigateur {adresse}" for adresse in self.ouvreur.notes())]

    def etat(self, voix):
        return ETATS[voix](self)

    def textes(self):
        """Ceux de l’écran d’attente ; un bandeau commence par deux blancs."""
        titres = [nom for nom in ecran.noms_du_role(self.pid, "label") if nom not in MENUS]
        return [nom for nom in titres if not nom.startswith("  ")]

    def ecran(self):
        return " | ".join([*self.textes()[:1], *ecran.boutons(self.pid)]) or "page"

    def texte(self, rang):
        return " ".join(self.textes()[rang:][:1]).replace("\n", " ")

    def detail(self):
        textes = ecran.textes(self.pid)[len(ecran.noms_du_role(self.pid, "label")):]
        return " ".join(filter(None, textes)) or "aucun"

    def bandeau(self):
        return " ".join(nom for nom in ecran.noms_du_role(self.pid, "label") if nom.startswith("  ")).strip() or "aucun"

    def fenetre(self):
        if active() in self.fenetres():
            return "devant"
        return "derrière" if self.fenetres() else "cachée"

    def fenetres(self):
        return list(map(str, fenetres(self.application))) if self.application.processus else []

    def vie(self):
        etat = self.application.processus.poll()
        if etat is None:
            return "en marche"
        autres = self.application.enfants(self.application.executable)
        return f"sortie avec {etat}" if etat else "rouverte" if autres else "partie"


def lignes_de(chemin):
    return lire(chemin).decode().splitlines() if os.path.exists(chemin) else []


MENUS = ("Keltrove", "Édition", "Présentation", "Fenêtre")
GESTES = {
    "lancer": BureauLinux.lancer,
    "réessayer": lambda bureau: bureau.presser_le_bouton("Réessayer"),
    "voir le détail": lambda bureau: bureau.presser_le_bouton("Voir le détail"),
    "recharger": lambda bureau: bureau.presser("ctrl+shift+r"),
    "quitter": lambda bureau: bureau.presser("ctrl+shift+q"),
    "fermer la fenêtre": lambda bureau: bureau.presser("alt+F4"),
    "finir la session": lambda bureau: bureau.application.processus.send_signal(signal.SIGTERM),
    "rouvrir": BureauLinux.rouvrir,
    "regarder ailleurs": BureauLinux.couvrir,
    "la page vient": lambda bureau: bureau.lacher_la_page("vient"),
    "la page rate": lambda bureau: bureau.lacher_la_page("rate"),
    "le programme de la page meurt": BureauLinux.tuer_la_page,
    "la page dit": BureauLinux.ordonner_a_la_page,
    "la page s’en va vers": lambda bureau, adresse: bureau.ordonner_a_la_page(f'{{"aller": "{adresse}"}}'),
    "suivre le lien de la page": lambda bureau: bureau.presser("l"),
    "cliquer la notification": BureauLinux.cliquer,
    "glisser des fichiers": lambda bureau, chemins: bureau.glisser("fichiers", *chemins.split()),
    "glisser un texte": lambda bureau, texte: bureau.glisser("texte", texte),
    "survoler avec un fichier": BureauLinux.emporter,
    "le serveur meurt": BureauLinux.tuer_le_serveur,
    "le serveur gèle": BureauLinux.geler_le_serveur,
    "le serveur se dégèle": BureauLinux.degeler_le_serveur,
    "le serveur finit": lambda bureau: bureau.poser("finis"),
}
ETATS = {
    "écran": BureauLinux.ecran,
    "phrase": lambda bureau: bureau.texte(1),
    "conseil": lambda bureau: bureau.texte(2),
    "détail": BureauLinux.detail,
    "bandeau": BureauLinux.bandeau,
    "fenêtre": BureauLinux.fenetre,
    "serveur": lambda bureau: "répond" if bureau.repond() else "parti",
    "application": BureauLinux.vie,
}


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
