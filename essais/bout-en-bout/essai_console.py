"""Ce qu’un lancement sain laisse sur la console : le journal, et rien d’autre."""

import glob
import os
import subprocess
import unittest

from application import SERVEUR, lire
from bus import Bus
from cas import Cas

SANS_CARTE = not glob.glob("/dev/dri/renderD*")
DEMANDER_GL = """
import gi
gi.require_version("Gdk", "4.0")
gi.require_version("Gtk", "4.0")
from gi.repository import Gdk, GLib, Gtk
Gtk.init()
try:
    print(Gdk.Display.get_default().prepare_gl())
except GLib.Error:
    print("refusé")
"""


class Console(Cas):
    def autres_lignes(self, **variables):
        application = self.application(code=SERVEUR + "servir();", variables=variables).lancer()
        application.attendre("page-contenu")
        # Ce que l’application dit d’elle-même, par exemple d’une machine qui refuse le bac à sable, est voulu.
        autres = [ligne for ligne in application.lignes if not ligne.startswith(("  [keltrove] ", "Keltrove : "))]
        self.assertEqual(application.quitter(), 0)
        return autres

    def test_avec_l_accessibilite_rien(self):
        self.assertEqual(self.autres_lignes(), [])

    def test_sans_service_d_accessibilite_rien_non_plus(self):
        self.assertEqual(self.autres_lignes(AT_SPI_BUS_ADDRESS=None, GTK_A11Y=None, **Bus(self).variables), [])

    def test_sans_aucun_bus_rien_non_plus(self):
        self.assertEqual(self.autres_lignes(AT_SPI_BUS_ADDRESS=None, GTK_A11Y=None, DBUS_SESSION_BUS_ADDRESS=None), [])


class Rendu(Cas):
    @unittest.skipUnless(SANS_CARTE, "cette machine a une carte graphique")
    def test_sans_carte_graphique_cette_version_de_gtk_se_passe_de_gl(self):
        application = self.application(code=SERVEUR + "servir();").lancer()
        application.attendre("page-contenu")
        # Le programme de la page a reçu les réglages que l’application s’est donnés.
        [page] = application.pages()
        recues = dict(variable.split("=", 1) for variable in lire(f"/proc/{page}/environ").decode().split("\0") if variable)
        choisies = {nom: valeur for nom, valeur in recues.items() if nom.startswith("GDK_D")}
        reponse = subprocess.run(["/usr/bin/python3", "-c", DEMANDER_GL], env={**os.environ, **choisies},
                                 capture_output=True, text=True)
        self.assertEqual((reponse.stdout, reponse.stderr), ("refusé\n", ""))
        application.quitter()
