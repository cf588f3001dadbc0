"""Les pannes, à chaque moment de la vie : ce que l’écran et le journal en disent, et ce qu’il reste après.

Chaque ligne : lancé ou rattaché, le moment, la panne, ce qu’on attend ensuite. Dans tous les cas, l’application ne
s’arrête pas d’elle-même, ne se fige pas, quitte quand on le lui demande, ne laisse ni zombie ni serveur lancé par elle,
et ne touche à aucun fichier de l’utilisateur.
"""

import concurrent.futures
import os
import subprocess
import tempfile
import unittest

import ecran
from application import attendre
from banc_de_fautes import Banc, Fautes, avec_un_bus, avec_un_ecran
from cas import enfants_zombies

ICI = os.path.dirname(os.path.abspath(__file__))
LANCE, RATTACHE = False, True


# Ce que l’on attend après la panne.
def etape(nom, secondes=30):
    def verifier(banc):
        banc.liberer()
        banc.application.attendre(nom, secondes)
    return verifier


def echec(cause):
    def verifier(banc):
        banc.liberer()
        banc.application.attendre("echec-demarrage", 60)
        banc.cas.assertIn(cause, banc.application.details("echec-demarrage")[0])
        ecran.attendre_le_texte(banc.application.processus.pid, cause)
    return verifier


def mort_puis_reprise(banc):
    banc.application.attendre("serveur-mort-en-route", 5)
    # La page qu’il servait à cet instant échoue aussi ; l’un ou l’autre se lit, et tous deux proposent de réessayer.
    attendre(lambda: {"Le serveur s’est arrêté", "La page de keltrove ne s’affiche pas"} & set(
        ecran.textes(banc.application.processus.pid)), quoi="le problème à l’écran")
    banc.liberer()
    banc.reessayer()
    banc.application.attendre("allume", fois=2)
    attendre(lambda: "page-affichee" in banc.application.etapes()[-4:], quoi="la page revenue")


def silence(banc):
    banc.application.attendre("serveur-ne-repond-plus", 60)
    ecran.attendre_le_texte(banc.application.processus.pid, "ne répond plus")


def silence_puis_reprise(banc):
    silence(banc)
    Fautes.degeler(banc)
    banc.reessayer()
    banc.application.attendre("page-affichee", fois=2)
    banc.reste = True  # retrouvé en vie, il n’est plus à nous


def page_ratee_puis_reprise(banc):
    banc.application.attendre("page-ratee")
    banc.liberer()
    banc.reessayer()
    banc.application.attendre("page-affichee")
    banc.reste = True


def degele_puis(nom):
    def verifier(banc):
        banc.liberer()
        Fautes.degeler(banc)
        banc.application.attendre(nom)
    return verifier


def rien_ne_change(banc):
    banc.liberer()
    banc.application.attendre("page-contenu")
    # Une surveillance au moins passe après la panne.
    attendre(lambda: ecran.boutons(banc.application.processus.pid) == {}, quoi="aucun problème à l’écran")
    for mauvaise in ("echec-demarrage", "serveur-ne-repond-plus", "serveur-mort-en-route", "page-ratee"):
        banc.cas.assertNotIn(mauvaise, banc.application.etapes())


def fini(message):
    def verifier(banc):
        banc.cas.assertEqual(banc.application.processus.wait(20), 0)
        banc.cas.assertIn(message, banc.application.details("arret-fini")[0])
    return verifier


def parti_sans_ecran(*etapes):
    def verifier(banc):
        banc.cas.assertEqual(banc.application.processus.wait(20), 1)
        banc.cas.assertEqual(tuple(banc.application.etapes()[-len(etapes):]), etapes)
    return verifier


def relance_rattache(banc):
    banc.application.lancer().attendre("rattache")
    banc.application.attendre("page-affichee")
    banc.reste = True


def une_phrase(debut):
    def verifier(banc):
        banc.cas.assertEqual(banc.application.processus.wait(10), 1)
        attendre(lambda: banc.application.lignes, quoi="la phrase")
        banc.cas.assertEqual(len(banc.application.lignes), 1)
        banc.cas.assertTrue(banc.application.lignes[0].startswith(debut), banc.application.lignes)
    return verifier


def page_refusee_puis_reussie(banc):
    banc.liberer()
    banc.application.attendre("page-ratee")
    os.remove(os.path.join(banc.fautes.name, "sans-processus"))
    banc.reessayer()
    banc.application.attendre("page-affichee")
    banc.reste = True


MORT = "Le serveur s’est arrêté"
MUET = "Le serveur ne répond pas"

TABLE = [
    # mode, moment, panne, attendu
    (LANCE, "attente", Fautes.tuer, echec(MORT)),
    (LANCE, "reponse", Fautes.tuer, echec(MORT)),
    (LANCE, "chargement", Fautes.tuer, mort_puis_reprise),
    (LANCE, "usage", Fautes.tuer, mort_puis_reprise),
    (LANCE, "fermeture", Fautes.tuer, fini("Serveur fermé proprement")),
    (LANCE, "attente", Fautes.geler, degele_puis("page-affichee")),
    (LANCE, "reponse", Fautes.geler, degele_puis("page-affichee")),
    (LANCE, "chargement", Fautes.geler, degele_puis("page-affichee")),
    (LANCE, "avant", Fautes.etranger, echec(MORT)),
    (LANCE, "attente", Fautes.etranger, echec(MORT)),
    (LANCE, "usage", Fautes.etranger, etape("serveur-mort-en-route")),
    (LANCE, "attente", Fautes.fichier("inonder"), rien_ne_change),
    (LANCE, "chargement", Fautes.fichier("inonder"), rien_ne_change),
    (LANCE, "usage", Fautes.fichier("inonder"), rien_ne_change),
    (LANCE, "avant", Fautes.interne("disque-plein"), rien_ne_change),
    (LANCE, "avant", Fautes.interne("lecture-seule"), rien_ne_change),
    (LANCE, "usage", Fautes.interne("disque-plein"), rien_ne_change),
    (LANCE, "avant", Fautes.interne("sans-processus"), une_phrase("Keltrove ne peut pas s’ouvrir : le système n’a plus")),
    (LANCE, "attente", Fautes.interne("horloge-avance"), rien_ne_change),
    (LANCE, "attente", Fautes.interne("horloge-recule"), rien_ne_change),
    (LANCE, "usage", Fautes.interne("horloge-avance"), rien_ne_change),
    (LANCE, "fermeture", Fautes.interne("horloge-avance"), lambda banc: (banc.liberer(), fini("proprement")(banc))),
    (LANCE, "chargement", Fautes.page_tuee, page_ratee_puis_reprise),
    (LANCE, "usage", Fautes.page_tuee, page_ratee_puis_reprise),
    (LANCE, "attente", Fautes.bus_parti, rien_ne_change),
    (LANCE, "usage", Fautes.bus_parti, rien_ne_change),
    (LANCE, "fermeture", Fautes.bus_parti, lambda banc: (banc.liberer(), fini("proprement")(banc))),
    (LANCE, "attente", Fautes.ecran_parti, parti_sans_ecran("arret-demande", "arret-fini")),
    (LANCE, "usage", Fautes.ecran_parti, parti_sans_ecran("arret-demande", "arret-fini")),
    (LANCE, "usage", Fautes.soi_tue, relance_rattache),
    (RATTACHE, "chargement", Fautes.geler, degele_puis("page-affichee")),
    (RATTACHE, "usage", Fautes.page_tuee, page_ratee_puis_reprise),
    (RATTACHE, "usage", Fautes.bus_parti, rien_ne_change),
    (RATTACHE, "usage", Fautes.ecran_parti, parti_sans_ecran("quitte-sans-toucher-au-serveur")),
    (RATTACHE, "usage", Fautes.soi_tue, relance_rattache),
    (RATTACHE, "usage", Fautes.interne("horloge-recule"), rien_ne_change),
    (LANCE, "attente", Fautes.interne("sans-processus"), page_refusee_puis_reussie),
    (RATTACHE, "reponse", Fautes.interne("sans-processus"), page_refusee_puis_reussie),
    (RATTACHE, "fermeture", Fautes.geler, etape("quitte-sans-toucher-au-serveur")),
]

# Celles qui attendent de vraies dizaines de secondes passent toutes ensemble.
LENTES = [
    (LANCE, "usage", Fautes.geler, silence_puis_reprise),
    (LANCE, "usage", Fautes.fichier("sans-marque"), silence),
    (LANCE, "usage", Fautes.fichier("sans-fin"), silence),
    (LANCE, "usage", Fautes.plus_de_descripteurs, silence),
    (LANCE, "attente", Fautes.fichier("sans-marque"), echec(MUET)),
    (LANCE, "fermeture", Fautes.geler, fini("met du temps à se fermer")),
    (RATTACHE, "usage", Fautes.tuer, silence),
    (RATTACHE, "usage", Fautes.etranger, silence),
    (RATTACHE, "usage", Fautes.geler, silence_puis_reprise),
]


def nom_de(ligne):
    mode, moment, faute, attendu = ligne
    nom = faute.__name__ if faute.__name__ != "faire" and faute.__name__ != "<lambda>" else faute.__closure__[0].cell_contents
    return f"{'rattache' if mode else 'lance'}_{moment}_{nom}".replace("-", "_")


class Pannes(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.outils = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.outils.cleanup)
        cls.fautes = os.path.join(cls.outils.name, "fautes.so")
        subprocess.run(["cc", "-shared", "-fPIC", "-w", "-o", cls.fautes, os.path.join(ICI, "fautes.c"), "-ldl"], check=True)

    def jouer(self, mode, moment, faute, attendu):
        banc = Banc(self, mode, moment)
        banc.reste = mode == RATTACHE
        if faute is Fautes.bus_parti:
            avec_un_bus(banc)
        if faute is Fautes.ecran_parti:
            avec_un_ecran(banc)
        if moment == "avant":
            faute(banc)
        banc.mener()
        if moment != "avant":
            faute(banc)
        attendu(banc)
        self.assertEqual(enfants_zombies(banc.application), [])
        if banc.application.processus.poll() is None:
            self.assertEqual(banc.quitter(), 0)
        gele_a_la_fin = faute is Fautes.geler and moment == "fermeture"
        if not banc.reste and not gele_a_la_fin:
            self.assertEqual(banc.application.serveurs(), [])
        if mode == RATTACHE and faute not in (Fautes.tuer, Fautes.etranger):
            self.assertIsNone(banc.serveur.poll(), "le serveur d’un autre tourne toujours")

    def test_lentes(self):
        with concurrent.futures.ThreadPoolExecutor(len(LENTES)) as ensemble:
            travaux = {nom_de(ligne): ensemble.submit(self.jouer, *ligne) for ligne in LENTES}
        for nom, travail in travaux.items():
            with self.subTest(nom):
                travail.result()


def ajouter(ligne):
    setattr(Pannes, "test_" + nom_de(ligne), lambda self: self.jouer(*ligne))


for ligne in TABLE:
    ajouter(ligne)
