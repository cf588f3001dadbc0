"""Lance les essais de ce dossier et dit en une ligne ce qu’il en est."""

import fnmatch
import os
import signal
import sys
import unittest


class Compte(unittest.TextTestResult):
    reussis = 0

    def addSuccess(self, test):
        super().addSuccess(test)
        self.reussis += 1


def est_voulu(essai):
    """Un filtre nomme une partie d’un essai, avec des « * » si l’on veut ; « -filtre » l’écarte."""
    voulus = [filtre for filtre in sys.argv[1:] if not filtre.startswith("-")]
    ecartes = [filtre[1:] for filtre in sys.argv[1:] if filtre.startswith("-")]
    return (not voulus or repond_a(essai, voulus)) and not repond_a(essai, ecartes)


def repond_a(essai, filtres):
    return any(fnmatch.fnmatchcase(essai.id(), f"*{filtre}*") for filtre in filtres)


def retenir(suite):
    """La même, réduite à ce que l’on veut : une suite peut avoir sa façon de jouer ses essais."""
    retenus = [retenir(essai) if isinstance(essai, unittest.TestSuite) else essai for essai in suite]
    return type(suite)([essai for essai in retenus if isinstance(essai, unittest.TestSuite) or est_voulu(essai)])


# Qui nous lance à l’arrière-plan, ou par nohup, nous fait ignorer ces signaux ; les applications n’en doivent rien garder.
signal.signal(signal.SIGINT, signal.default_int_handler)
signal.signal(signal.SIGHUP, signal.SIG_DFL)
suite = retenir(unittest.TestLoader().discover(".", pattern=os.environ.get("KELTROVE_ESSAIS", "essai_*.py")))
resultat = unittest.TextTestRunner(verbosity=2, resultclass=Compte).run(suite)
rates = len(resultat.failures) + len(resultat.errors)
sys.stderr.flush()
print(f"{resultat.reussis} passed, {rates} failed", flush=True)
sys.exit(0 if rates == 0 and resultat.reussis > 0 else 1)
