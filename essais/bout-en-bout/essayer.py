"""Lance les essais de ce dossier et dit en une ligne ce qu’il en est."""

import sys
import unittest


class Compte(unittest.TextTestResult):
    reussis = 0

    def addSuccess(self, test):
        super().addSuccess(test)
        self.reussis += 1


chargeur = unittest.TestLoader()
if len(sys.argv) > 1:
    chargeur.testNamePatterns = [f"*{filtre}*" for filtre in sys.argv[1:]]
suite = chargeur.discover(".", pattern="essai_*.py")
resultat = unittest.TextTestRunner(verbosity=2, resultclass=Compte).run(suite)
rates = len(resultat.failures) + len(resultat.errors)
sys.stderr.flush()
print(f"{resultat.reussis} passed, {rates} failed", flush=True)
sys.exit(0 if rates == 0 and resultat.reussis > 0 else 1)
