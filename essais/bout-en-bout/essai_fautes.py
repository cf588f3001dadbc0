"""Les pannes, à chaque moment de la vie : ce que l’écran et le journal en disent, et ce qu’il reste après.

Une table par mode ; une ligne par panne, une colonne par moment ; dans la case, ce que l’on attend ensuite, ou pourquoi
il n’y a rien à essayer. Dans tous les cas l’application ne s’arrête pas d’elle-même, ne se fige pas, quitte quand on le
lui demande, ne laisse ni zombie, ni programme de la page, ni serveur qu’elle aurait dû fermer, et ne touche à aucun
fichier de l’utilisateur.
"""

import itertools
import unittest

import cases
from banc_de_fautes import MOMENTS
from pannes import PANNES

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
# « a>b » : a se voit, on répare si la panne se répare, on réessaie, puis b. Chaque mot est une fonction d’attendus.py.
LANCE = """
                       avant        attente       reponse       chargement    usage         fermeture
    serveur-tue        .ne          mort          mort          perdu>page    perdu>page    fermee
    serveur-gele       .ne          degel         degel         degel         silence>page  abandon
    etranger           mort         mort          mort          perdu>mort    perdu>mort    fermee
    sans-marque        .dit         muet          patience      silence>page  silence>page  .fini
    sans-fin           .dit         muet>page     patience      silence>page  silence>page  .fini
    inondation         .ne          rien          rien          rien          rien          fermee
    disque-plein       rien         rien          rien          rien          rien          fermee
    lecture-seule      rien         rien          rien          rien          rien          fermee
    sans-descripteurs  sans_moyens  muet>page     refusee>page  silence>page  silence>page  fermee
    sans-processus     sans_moyens  refusee>page  refusee>page  silence>page  silence>page  fermee
    horloge-avance     .saut        rien          rien          rien          rien          fermee
    horloge-recule     .saut        rien          rien          rien          rien          fermee
    page-tuee          .page        .page         .page         ratee>page    ratee>page    fermee
    bus-parti          rien         rien          rien          ratee>page    rien          fermee
    ecran-parti        sans_ecran   arret         arret         arret         arret         sans_arret
    compositeur-parti  sans_ecran   arret         arret         arret         arret         sans_arret
    application-tuee   .partie      rattachee     rattachee     rattachee     rattachee     rallumee
"""
RATTACHE = """
                       avant        attente    reponse       chargement    usage         fermeture
    serveur-tue        allume       .deja      allume        ratee>page    silence>page  quittee
    serveur-gele       mort>page    .deja      mort>page     degel         silence>page  quittee
    etranger           .libre       .deja      mort          ratee>mort    silence>mort  quittee
    sans-marque        mort>page    .deja      mort>page     silence>page  silence>page  quittee
    sans-fin           mort>page    .deja      mort>page     silence>page  silence>page  quittee
    inondation         .ailleurs    .ailleurs  .ailleurs     .ailleurs     .ailleurs     .ailleurs
    disque-plein       rien         .deja      rien          rien          rien          quittee
    lecture-seule      rien         .deja      rien          rien          rien          quittee
    sans-descripteurs  sans_moyens  .deja      refusee>page  silence>page  silence>page  quittee
    sans-processus     sans_moyens  .deja      refusee>page  silence>page  silence>page  quittee
    horloge-avance     .saut        .deja      rien          rien          rien          quittee
    horloge-recule     .saut        .deja      rien          rien          rien          quittee
    page-tuee          .page        .deja      .page         ratee>page    ratee>page    quittee
    bus-parti          rien         .deja      rien          ratee>page    rien          quittee
    ecran-parti        sans_ecran   .deja      sans_toucher  sans_toucher  sans_toucher  .usage
    compositeur-parti  sans_ecran   .deja      sans_toucher  sans_toucher  sans_toucher  .usage
    application-tuee   .partie      .deja      rattachee     rattachee     rattachee     .usage
"""


def lire(table):
    moments, *lignes = [ligne.split() for ligne in table.strip().split("\n")]
    return {(moment, panne): case for panne, *cases in lignes for moment, case in zip(moments, cases, strict=True)}


TABLES = {"lance": lire(LANCE), "rattache": lire(RATTACHE)}


class LaTable(unittest.TestCase):
    def test_chaque_panne_a_une_case_pour_chaque_moment(self):
        for table in TABLES.values():
            self.assertEqual(set(table), set(itertools.product(MOMENTS, PANNES)))


def load_tests(chargeur, _trouves, _motif):
    voulues = [cases.Case(mode, moment, panne, case.split(">")) for mode, table in TABLES.items()
             for (moment, panne), case in table.items() if case not in SANS_OBJET]
    return unittest.TestSuite([chargeur.loadTestsFromTestCase(LaTable), cases.Ensemble(voulues)])
