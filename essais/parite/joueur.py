"""Joue un scénario de la table avec un bureau, et dit où ce qu’on en voit s’en écarte.

Le bureau sait : preparer(depart), faire(geste, objet), suite(voix), la liste de ce qui s’est vu, etat(voix), ce qui se voit
maintenant, et port.
"""

import time

from table import QUAND_ELLES_PEUVENT

SUITES = ("journal", "page", "notification", "système")
PATIENCE = 100  # secondes ; le plus long attend quarante secondes un serveur muet
PAS = 0.05


def est_un_survol(vue):
    return vue is not None and vue.startswith("survol(") and "null" not in vue


class Ecart(AssertionError):
    pass


class Partie:
    def __init__(self, scenario, bureau, joueur):
        self.scenario, self.bureau, self.joueur = scenario, bureau, joueur
        self.attendus = {voix: [] for voix in SUITES}

    def jouer(self):
        self.bureau.preparer(self.scenario.depart)
        for geste in self.scenario.gestes:
            self.bureau.faire(geste.nom, geste.objet)
            for ligne in geste.attendus:
                if not ligne.joueurs or self.joueur in ligne.joueurs:
                    self.attendre(ligne)
        for voix in SUITES:
            self.comparer(voix, self.attendus[voix], entiere=True)

    def attendre(self, ligne):
        if ligne.voix not in SUITES:
            return self.patienter(ligne, lambda: ligne.convient(self.bureau.etat(ligne.voix), self.bureau.port),
                                  lambda: self.bureau.etat(ligne.voix))
        if ligne.quand_elle_peut:
            return self.patienter(ligne, lambda: any(ligne.convient(vue, self.bureau.port) for vue in self.bureau.suite("journal")),
                                  lambda: self.bureau.suite("journal"))
        attendus = self.attendus[ligne.voix]
        attendus.append(ligne)
        self.patienter(ligne, lambda: self.comparer(ligne.voix, attendus), lambda: self.vues(ligne.voix))

    def patienter(self, ligne, vrai, vu):
        limite = time.monotonic() + PATIENCE
        while not vrai():
            if time.monotonic() > limite:
                self.echouer(ligne.numero, ligne.texte, vu())
            time.sleep(PAS)

    def vues(self, voix):
        suite = self.bureau.suite(voix)
        if voix == "journal":
            return [vue for vue in suite if not vue.startswith(QUAND_ELLES_PEUVENT)]
        # Combien de fois la souris a bougé ne compte pas.
        return [vue for avant, vue in zip([None, *suite], suite) if not (est_un_survol(avant) and est_un_survol(vue))]

    def comparer(self, voix, attendus, entiere=False):
        """Vrai quand toutes sont venues ; une autre à la place de l’une n’attend pas pour se dire."""
        vues = self.vues(voix)
        for ligne, vue in zip(attendus, vues):
            if not ligne.convient(vue, self.bureau.port):
                self.echouer(ligne.numero, ligne.texte, vues)
        if entiere and len(vues) > len(attendus):
            self.echouer("fin", f"rien de plus ({voix})", vues[len(attendus):])
        return len(vues) >= len(attendus)

    def echouer(self, ou, attendu, vu):
        raise Ecart(f"{self.scenario.nom}, ligne {ou} de la table :\n  attendu : {attendu}\n  vu      : {vu}")
