"""Les pannes, à chaque moment de la vie : ce que l’écran et le journal en disent, et ce qu’il reste après.

Une table par mode ; une ligne par panne, une colonne par moment ; dans la case, ce que l’on attend ensuite, ou pourquoi
il n’y a rien à essayer. Dans tous les cas l’application ne s’arrête pas d’elle-même, ne se fige pas, quitte quand on le
lui demande, ne laisse ni zombie, ni programme de la page, ni serveur qu’elle aurait dû fermer, et ne touche à aucun
fichier de l’utilisateur.
"""

import concurrent.futures
import os
import subprocess
import tempfile
import unittest
import weakref

from attendus import *  # noqa: F403
from banc_de_fautes import MOMENTS, Banc
from pannes import PANNES
from partage import Places

ICI = os.path.dirname(os.path.abspath(__file__))
A_LA_FOIS = (os.cpu_count() or 2) + 1  # les applications que l’on mène ensemble…
EN_ATTENTE = 12  # … et celles qui n’attendent que le temps qui passe

# Rien à essayer, parce que :
PAS_NE = "le serveur n’est pas encore né"
PAS_DIT = "le serveur n’a encore rien à répondre"
PLUS_DIT = "plus rien ne demande de réponse au serveur"
PAS_PEINTE = "aucun programme ne dessine encore la page"
PAS_PARTIE = "l’application n’est pas encore partie"
DEJA = "le serveur répond déjà : il n’y a pas d’attente"
AILLEURS = "ce qu’un serveur d’avant écrit ne vient pas jusqu’ici"
UN_SAUT = "une heure fausse dès le départ n’est pas un saut"
LIBRE = "sans serveur, c’est un lancement"
SEULE = "la perte fait déjà partir aussitôt, comme en usage"
SANS_OBJET = (PAS_NE, PAS_DIT, PLUS_DIT, PAS_PEINTE, PAS_PARTIE, DEJA, AILLEURS, UN_SAUT, LIBRE, SEULE)

LANCE = {
    # panne: (avant, attente, reponse, chargement, usage, fermeture)
    "serveur-tue": (PAS_NE, echec_mort, echec_mort, mort_puis_page, mort_puis_page, ferme_proprement),
    "serveur-gele": (PAS_NE, page_apres_le_degel, page_apres_le_degel, page_apres_le_degel, silence_puis_page,
                     ferme_sans_attendre_davantage),
    "etranger": (echec_mort, echec_mort, echec_mort, mort_puis_echec, mort_puis_echec, ferme_proprement),
    "sans-marque": (PAS_DIT, echec_muet, attend_la_bonne_reponse, silence_puis_page, silence_puis_page, PLUS_DIT),
    "sans-fin": (PAS_DIT, echec_muet_puis_page, attend_la_bonne_reponse, silence_puis_page, silence_puis_page, PLUS_DIT),
    "inondation": (PAS_NE, rien_ne_change, rien_ne_change, rien_ne_change, rien_ne_change, ferme_proprement),
    "disque-plein": (rien_ne_change, rien_ne_change, rien_ne_change, rien_ne_change, rien_ne_change, ferme_proprement),
    "lecture-seule": (rien_ne_change, rien_ne_change, rien_ne_change, rien_ne_change, rien_ne_change, ferme_proprement),
    "sans-descripteurs": (dit_sans_ressources, echec_muet_puis_page, page_refusee_puis_page, silence_puis_page,
                          silence_puis_page, ferme_proprement),
    "sans-processus": (dit_sans_ressources, page_refusee_puis_page, page_refusee_puis_page, silence_puis_page,
                       silence_puis_page, ferme_proprement),
    "horloge-avance": (UN_SAUT, rien_ne_change, rien_ne_change, rien_ne_change, rien_ne_change, ferme_proprement),
    "horloge-recule": (UN_SAUT, rien_ne_change, rien_ne_change, rien_ne_change, rien_ne_change, ferme_proprement),
    "page-tuee": (PAS_PEINTE, PAS_PEINTE, PAS_PEINTE, page_ratee_puis_page, page_ratee_puis_page, ferme_proprement),
    "bus-parti": (rien_ne_change, rien_ne_change, rien_ne_change, page_ratee, rien_ne_change, ferme_proprement),
    "ecran-parti": (dit_sans_ecran, part_en_arretant, part_en_arretant, part_en_arretant, part_en_arretant,
                    part_sans_attendre),
    "application-tuee": (PAS_PARTIE, suivante_rattachee, suivante_rattachee, suivante_rattachee, suivante_rattachee,
                         suivante_allume),
}
RATTACHE = {
    # panne: (avant, attente, reponse, chargement, usage, fermeture)
    "serveur-tue": (allume_le_sien, DEJA, allume_le_sien, page_ratee_puis_page, silence_puis_page, quitte_aussitot),
    "serveur-gele": (echec_mort_puis_page, DEJA, echec_mort_puis_page, page_apres_le_degel, silence_puis_page,
                     quitte_aussitot),
    "etranger": (LIBRE, DEJA, echec_mort, page_ratee_puis_echec, silence_puis_echec, quitte_aussitot),
    "sans-marque": (echec_mort_puis_page, DEJA, echec_mort_puis_page, silence_puis_page, silence_puis_page,
                    quitte_aussitot),
    "sans-fin": (echec_mort_puis_page, DEJA, echec_mort_puis_page, silence_puis_page, silence_puis_page, quitte_aussitot),
    "inondation": (AILLEURS,) * 6,
    "disque-plein": (rien_ne_change, DEJA, rien_ne_change, rien_ne_change, rien_ne_change, quitte_aussitot),
    "lecture-seule": (rien_ne_change, DEJA, rien_ne_change, rien_ne_change, rien_ne_change, quitte_aussitot),
    "sans-descripteurs": (dit_sans_ressources, DEJA, page_refusee_puis_page, silence_puis_page, silence_puis_page,
                          quitte_aussitot),
    "sans-processus": (dit_sans_ressources, DEJA, page_refusee_puis_page, silence_puis_page, silence_puis_page,
                       quitte_aussitot),
    "horloge-avance": (UN_SAUT, DEJA, rien_ne_change, rien_ne_change, rien_ne_change, quitte_aussitot),
    "horloge-recule": (UN_SAUT, DEJA, rien_ne_change, rien_ne_change, rien_ne_change, quitte_aussitot),
    "page-tuee": (PAS_PEINTE, DEJA, PAS_PEINTE, page_ratee_puis_page, page_ratee_puis_page, quitte_aussitot),
    "bus-parti": (rien_ne_change, DEJA, rien_ne_change, page_ratee, rien_ne_change, quitte_aussitot),
    "ecran-parti": (dit_sans_ecran, DEJA, part_sans_toucher, part_sans_toucher, part_sans_toucher, SEULE),
    "application-tuee": (PAS_PARTIE, DEJA, suivante_rattachee, suivante_rattachee, suivante_rattachee, SEULE),
}
TABLES = {"lance": LANCE, "rattache": RATTACHE}
CASES = {f"test_{mode}_{moment}_{panne}".replace("-", "_"): (mode == "rattache", moment, panne, attendu)
         for mode, table in TABLES.items() for panne, attendus in table.items()
         for moment, attendu in zip(MOMENTS, attendus) if callable(attendu)}


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
    def jouer(cls, rattache, moment, panne, attendu):
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
            attendu(banc)
            banc.conclure()
            banc.panne.temoigner(banc)

    def test_chaque_panne_a_une_case_pour_chaque_moment(self):
        for table in TABLES.values():
            self.assertEqual(list(table), list(PANNES))
            for panne, attendus in table.items():
                self.assertEqual(len(attendus), len(MOMENTS), panne)
                self.assertEqual([a for a in attendus if not callable(a) and a not in SANS_OBJET], [], panne)


def est_lente(case):
    return getattr(case[-1], "lente", False)


for nom in CASES:
    setattr(Pannes, nom, lambda self, nom=nom: self.travaux[nom].result())
