"""La préférence claire ou sombre du bureau atteint la page, et la suit quand elle change."""

import os
import subprocess

from application import SERVEUR, attendre, couleur
from cas import Cas

CLAIR, SOMBRE = "#F0E68C", "#402060"
PAGE = SERVEUR.replace(
    '<body style="margin:0;background:#2b8a3e">',
    f"<style>body{{background:{CLAIR}}}@media(prefers-color-scheme:dark){{body{{background:{SOMBRE}}}}}</style><body>")


class Theme(Cas):
    def test_la_page_suit_la_preference_du_bureau(self):
        application = self.application(code=PAGE + "servir();", variables={"GTK_THEME": None}).avoir_un_bus()
        portail = subprocess.Popen(["/usr/bin/python3", os.path.join(os.path.dirname(__file__), "portail.py"), "1"],
                                   env={**os.environ, **application.bus.variables}, stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, text=True)
        self.addCleanup(portail.communicate)
        self.assertEqual(portail.stdout.readline(), "pret\n")
        application.lancer().attendre("page-affichee")
        attendre(lambda: couleur(680, 450) == SOMBRE, quoi="la page sombre")
        print(2, file=portail.stdin, flush=True)
        attendre(lambda: couleur(680, 450) == CLAIR, quoi="la page claire")
        application.quitter()

    def test_sans_portail_la_page_est_claire(self):
        application = self.application(code=PAGE + "servir();", variables={"GTK_THEME": None}).lancer()
        application.attendre("page-affichee")
        attendre(lambda: couleur(680, 450) == CLAIR, quoi="la page claire")
        application.quitter()
