"""Ce qu’un bureau d’essai offre à l’application : ses services, menés depuis l’essai, et ce qui ouvre ses liens."""

import json
import os
import subprocess
import tempfile
import threading

from application import attendre, lire

PROGRAMME = os.path.join(os.path.dirname(os.path.abspath(__file__)), "services_du_bureau.py")


class Service:
    """Sur ce bus jusqu’à la fin de l’essai : « portail », « accessibilite » ou « notifications », dans cet état."""

    def __init__(self, cas, bus, nom, **etat):
        self.processus = subprocess.Popen(["/usr/bin/python3", PROGRAMME, nom, json.dumps(etat)], text=True,
                                          env={**os.environ, **bus.variables}, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        cas.addCleanup(self.partir)
        self.recus = []
        self.lecture = threading.Thread(target=self.lire, daemon=True)
        self.lecture.start()
        attendre(lambda: "la" in self.recus, quoi="le service")

    def lire(self):
        for ligne in self.processus.stdout:
            self.recus.append(json.loads(ligne))

    def partir(self):
        if self.processus.poll() is not None:
            return
        self.processus.kill()
        self.processus.wait()
        self.lecture.join()
        self.processus.stdin.close()
        self.processus.stdout.close()

    def ordonner(self, **ordre):
        faits = self.recus.count("fait")
        self.processus.stdin.write(json.dumps(ordre) + "\n")
        self.processus.stdin.flush()
        attendre(lambda: self.recus.count("fait") > faits, quoi="l’ordre exécuté")


class ServiceDeNotifications(Service):
    def __init__(self, cas, bus):
        super().__init__(cas, bus, "notifications")

    def appels(self):
        """Ce que Notify a reçu : application, remplace, icône, titre, corps, actions, indices, durée."""
        return [recu[1:] for recu in self.recus if recu[0] == "Notify"]

    def attendre_les_appels(self, nombre):
        attendre(lambda: len(self.appels()) >= nombre, quoi=f"{nombre} notifications (vu : {self.appels()})")
        return self.appels()[-1]


class Ouvreur:
    """L’application par laquelle ce bureau ouvre ces types de fichiers ou d’adresses : elle note ce qu’on lui donne."""

    def __init__(self, cas, *types, forme="{programme} {donne}"):
        dossier = tempfile.TemporaryDirectory()
        cas.addCleanup(dossier.cleanup)
        self.note = os.path.join(dossier.name, "note")
        self.variables = {"XDG_DATA_HOME": dossier.name, "XDG_CONFIG_HOME": dossier.name}
        programme, applications = os.path.join(dossier.name, "ouvreur"), os.path.join(dossier.name, "applications")
        os.mkdir(applications)
        donne = "%u" if any(sorte.startswith("x-scheme-handler/") for sorte in types) else "%f"
        # Ce que l’application s’est réglé pour elle n’a pas à venir jusque-là.
        ecrire(programme, f"#!/bin/sh\necho \"$*${{GSK_RENDERER:+ sous $GSK_RENDERER}}\" >> '{self.note}'\n")
        os.chmod(programme, 0o755)
        ecrire(os.path.join(applications, "ouvreur.desktop"),
               "[Desktop Entry]\nType=Application\nName=Ouvreur\n"
               f"Exec={forme.format(programme=programme, donne=donne)}\nMimeType={';'.join(types)};\n")
        ecrire(os.path.join(applications, "mimeapps.list"),
               "[Default Applications]\n" + "".join(f"{sorte}=ouvreur.desktop\n" for sorte in types))

    def notes(self):
        return lire(self.note).decode().split("\n")[:-1] if os.path.exists(self.note) else []


def ecrire(chemin, texte):
    with open(chemin, "w") as fichier:
        fichier.write(texte)
