"""La photographie de outils/lancer.sh : la page y est, et rien ne survit à la commande."""

import json
import os
import subprocess
import tempfile
import unittest

from application import MARQUE, commande, port_libre, processus_marques

OUTIL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../outils/lancer.sh")


class Capture(unittest.TestCase):
    def test_la_page_y_est_et_rien_ne_lui_survit(self):
        with tempfile.TemporaryDirectory(prefix="capture d’été ") as maison:
            os.mkdir(os.path.join(maison, ".zelcor"))
            with open(os.path.join(maison, ".zelcor/keltrove.json"), "w") as fichier:
                json.dump({"port": port_libre()}, fichier)
            image, marque = os.path.join(maison, "image.png"), os.path.basename(maison)
            # Comme dans une racine où rien d’autre ne tourne.
            variables = {nom: valeur for nom, valeur in os.environ.items()
                         if nom not in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS", "KELTROVE_CONSTRUCTION")}
            subprocess.run([OUTIL, "--capture", image], env={**variables, "HOME": maison, MARQUE: marque}, check=True,
                           stdout=subprocess.DEVNULL)
            self.assertEqual([commande(pid) for pid in processus_marques(marque)], [])
            teintes = subprocess.run(["identify", "-format", "%k", image], capture_output=True, text=True, check=True).stdout
            self.assertGreater(int(teintes), 100, "une page et ses lettres, pas un fond uni")
