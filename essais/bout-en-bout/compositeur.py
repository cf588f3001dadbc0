"""Un compositeur Wayland à soi."""

import os
import subprocess
import tempfile

from application import attendre

SANS_ECRAN = ["--backend=headless-backend.so"]
# Dans une fenêtre de l’écran virtuel : il transmet les touches à ce qu’elle contient, et garde la disposition du clavier.
DANS_UNE_FENETRE = ["--backend=x11-backend.so", "--width=1300", "--height=860"]


class Compositeur:
    def __init__(self, cas, ou):
        dossier = tempfile.TemporaryDirectory()
        cas.addCleanup(dossier.cleanup)
        self.variables = {"XDG_RUNTIME_DIR": dossier.name, "WAYLAND_DISPLAY": "compositeur", "DISPLAY": None}
        self.processus = subprocess.Popen(["weston", *ou, "--no-config", "--idle-time=0", "--socket=compositeur"],
                                          env={**os.environ, "XDG_RUNTIME_DIR": dossier.name},
                                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        cas.addCleanup(self.arreter)
        attendre(lambda: os.path.exists(os.path.join(dossier.name, "compositeur")), quoi="le compositeur")

    def arreter(self):
        self.processus.kill()
        self.processus.wait()
