"""Ce que le terminal montre, point par point, dans la fenêtre de l’application."""

import re
import time

from application import attendre, lire
from essai_terminal import Terminal, taper

# L’horloge des images bat soixante fois par seconde.
REVEILS_AU_REPOS = 25


class Repos(Terminal):
    def test_la_frappe_finie_la_fenetre_ne_bat_plus_la_mesure(self):
        application = self.ouvrir()
        taper("xyz")

        def reveils():
            etat = lire(f"/proc/{application.processus.pid}/status").decode()
            return int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", etat, re.M)[1])

        def au_repos():
            avant = reveils()
            time.sleep(1)
            return reveils() - avant < REVEILS_AU_REPOS

        attendre(au_repos, secondes=6, quoi="une seconde sans battement")
        application.quitter()
