"""Les pannes, à chaque moment de la vie : ce que l’écran et le journal en disent, et ce qu’il reste après.

Une table par mode ; une ligne par panne, une colonne par moment ; dans la case, ce que l’on attend ensuite, ou pourquoi
il n’y a rien à essayer. Dans tous les cas l’application ne s’arrête pas d’elle-même, ne se fige pas, quitte quand on le
lui demande, ne laisse ni zombie, ni programme de la page, ni serveur qu’elle aurait dû fermer, et ne touche à aucun
fichier de l’utilisateur.
"""

import concurrent.futures
import itertools
import os
import subprocess
import tempfile
import unittest
import weakref

import attendus
from banc_de_fautes import MOMENTS, Banc
from pannes import PANNES
from partage import Places

ICI = os.path.dirname(os.path.abspath(__file__))
A_LA_FOIS = (os.cpu_count() or 2) + 1  # les applications que l’on mène ensemble…
EN_ATTENTE = 12  # … et celles qui n’attendent que le temps qui passe

# Rien à essayer, parce que :
SANS_OBJET = {
    ".ne": "le serveur n’est pas encore né",
    ".dit": "le serveur n’a encore rien à répondre",
    ".fini": "plus rien ne demande de réponse au serveur",
    ".page": "aucun programme ne dessine encore la page",
    ".partie": "l’application n’est pas encore partie",
    ".deja": "le serveur répond déjà : il n’y a pas d’attente",
    ".ailleurs": "ce qu’un serveur d’avant écrit ne vient pas jusqu’ici",
    ".saut": "une heure fausse dès le départ n’est pas un saut",
    ".libre": "sans serveur, c’est un lancement",
    ".usage": "la perte fait déjà partir aussitôt, comme en usage",
}
# « a>b » : a se voit, on répare, on réessaie, puis b. Chaque mot est expliqué dans attendus.py.
LANCE = """
                       avant        attente       reponse       chargement    usage         fermeture
    serveur-tue        .ne          mort          mort          perdu>page    perdu>page    fermee
    serveur-gele       .ne          degel>page    degel>page    degel>page    silence>page  abandon
    etranger           mort         mort          mort          perdu>mort    perdu>mort    fermee
    sans-marque        .dit         muet          patience      silence>page  silence>page  .fini
    sans-fin           .dit         muet>page     patience      silence>page  silence>page  .fini
    inondation         .ne          rien          rien          rien          rien          fermee
    disque-plein       rien         rien          rien          rien          rien          fermee
    lecture-seule      rien         rien          rien          rien          rien          fermee
    sans-descripteurs  sans-moyens  muet>page     refusee>page  silence>page  silence>page  fermee
    sans-processus     sans-moyens  refusee>page  refusee>page  silence>page  silence>page  fermee
    horloge-avance     .saut        rien          rien          rien          rien          fermee
    horloge-recule     .saut        rien          rien          rien          rien          fermee
    page-tuee          .page        .page         .page         ratee>page    ratee>page    fermee
    bus-parti          rien         rien          rien          ratee>page    rien          fermee
    ecran-parti        sans-ecran   arret         arret         arret         arret         sans-arret
    compositeur-parti  sans-ecran   arret         arret         arret         arret         sans-arret
    application-tuee   .partie      rattachee     rattachee     rattachee     rattachee     rallumee
"""
RATTACHE = """
                       avant        attente    reponse       chargement    usage         fermeture
    serveur-tue        allume       .deja      allume        ratee>page    silence>page  quittee
    serveur-gele       mort>page    .deja      mort>page     degel>page    silence>page  quittee
    etranger           .libre       .deja      mort          ratee>mort    silence>mort  quittee
    sans-marque        mort>page    .deja      mort>page     silence>page  silence>page  quittee
    sans-fin           mort>page    .deja      mort>page     silence>page  silence>page  quittee
    inondation         .ailleurs    .ailleurs  .ailleurs     .ailleurs     .ailleurs     .ailleurs
    disque-plein       rien         .deja      rien          rien          rien          quittee
    lecture-seule      rien         .deja      rien          rien          rien          quittee
    sans-descripteurs  sans-moyens  .deja      refusee>page  silence>page  silence>page  quittee
    sans-processus     sans-moyens  .deja      refusee>page  silence>page  silence>page  quittee
    horloge-avance     .saut        .deja      rien          rien          rien          quittee
    horloge-recule     .saut        .deja      rien          rien          rien          quittee
    page-tuee          .page        .deja      .page         ratee>page    ratee>page    quittee
    bus-parti          rien         .deja      rien          ratee>page    rien          quittee
    ecran-parti        sans-ecran   .deja      sans-toucher  sans-toucher  sans-toucher  .usage
    compositeur-parti  sans-ecran   .deja      sans-toucher  sans-toucher  sans-toucher  .usage
    application-tuee   .partie      .deja      rattachee     rattachee     rattachee     .usage
"""


def lire(table):
    moments, *lignes = [ligne.split() for ligne in table.strip().split("\n")]
    return {(moment, panne): case for panne, *cases in lignes for moment, case in zip(moments, cases, strict=True)}


def attendu(case):
    return getattr(attendus, case.replace(">", "_puis_").replace("-", "_"))


TABLES = {"lance": lire(LANCE), "rattache": lire(RATTACHE)}
CASES = {f"test_{mode}_{moment}_{panne}".replace("-", "_"): (mode == "rattache", moment, panne, attendu(case))
         for mode, table in TABLES.items() for (moment, panne), case in table.items() if case not in SANS_OBJET}


class Pannes(unittest.TestCase):
    """Chaque case est un essai ; tous se jouent ensemble, et chacun attend le sien."""

    choisis = weakref.WeakSet()  # ceux qu’un filtre écarte n’existent plus

    def __init__(self, methode):
        super().__init__(methode)
        Pannes.choisis.add(self)

    @classmethod
    def setUpClass(cls):
        outils = tempfile.TemporaryDirectory()
        cls.addClassCleanup(outils.cleanup)
        cls.bibliotheque = os.path.join(outils.name, "fautes.so")
        source = os.path.join(ICI, "fautes.c")
        subprocess.run(["cc", "-shared", "-fPIC", "-w", "-o", cls.bibliotheque, source, "-ldl"], check=True)
        cls.places = Places(A_LA_FOIS)
        ensemble = concurrent.futures.ThreadPoolExecutor(A_LA_FOIS + EN_ATTENTE)
        cls.addClassCleanup(ensemble.shutdown, cancel_futures=True)
        noms = [essai.id().split(".")[-1] for essai in cls.choisis]
        # Les plus lentes d’abord : les autres passent pendant qu’elles attendent.
        ordre = sorted((nom for nom in noms if nom in CASES), key=lambda nom: (not est_lente(CASES[nom]), nom))
        cls.travaux = {nom: ensemble.submit(cls.jouer, *CASES[nom]) for nom in ordre}

    @classmethod
    def jouer(cls, rattache, moment, panne, verifier):
        with cls.places.une(), Banc(cls.bibliotheque, rattache, moment, cls.places) as banc:
            banc.panne = PANNES[panne]
            banc.panne.preparer(banc)
            banc.preparer()
            if moment == "avant":
                banc.panne.faire(banc)
            banc.application.lancer()
            if moment != "avant":
                banc.mener()
                banc.panne.faire(banc)
            verifier(banc)
            banc.conclure()
            banc.panne.temoigner(banc)

    def test_chaque_panne_a_une_case_pour_chaque_moment(self):
        for table in TABLES.values():
            self.assertEqual(set(table), set(itertools.product(MOMENTS, PANNES)))


def est_lente(case):
    return getattr(case[-1], "lente", False)


def essai(nom):
    def attendre_la_case(self):
        self.travaux[nom].result()

    return attendre_la_case


for nom in CASES:
    setattr(Pannes, nom, essai(nom))
