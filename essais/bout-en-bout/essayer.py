"""Lance les essais de ce dossier et dit en une ligne ce qu’il en est."""

import os
import sys
import unittest


class Compte(unittest.TextTestResult):
    reussis = 0

    def addSuccess(self, test):
        super().addSuccess(test)
        self.reussis += 1


def aplatir(suite):
    for essai in suite:
        yield from aplatir(essai) if isinstance(essai, unittest.TestSuite) else [essai]


chargeur = unittest.TestLoader()
voulus = [filtre for filtre in sys.argv[1:] if not filtre.startswith("-")]
ecartes = [filtre[1:] for filtre in sys.argv[1:] if filtre.startswith("-")]
if voulus:
    chargeur.testNamePatterns = [f"*{filtre}*" for filtre in voulus]
suite = unittest.TestSuite(essai for essai in aplatir(chargeur.discover(".", pattern=os.environ.get("KELTROVE_ESSAIS", "essai_*.py")))
                           if not any(ecarte in essai.id() for ecarte in ecartes))
resultat = unittest.TextTestRunner(verbosity=2, resultclass=Compte).run(suite)
rates = len(resultat.failures) + len(resultat.errors)
sys.stderr.flush()
print(f"{resultat.reussis} passed, {rates} failed", flush=True)
sys.exit(0 if rates == 0 and resultat.reussis > 0 else 1)
