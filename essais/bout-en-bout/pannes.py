"""Les pannes que l’on fait à une application ou à son serveur."""

import dataclasses
import itertools
import os
import resource
import signal
import socket
import subprocess
import threading
import time
from collections.abc import Callable

import ecran
from application import port_libre
from banc_de_fautes import CADRE, CADRE_ECRIT, guetter
from bus import Bus
from compositeur import SANS_ECRAN, Compositeur
from voisins import repondre_en_etranger


def sans_suite(_banc):
    pass


@dataclasses.dataclass(frozen=True)
class Panne:
    faire: Callable
    defaire: Callable = sans_suite
    preparer: Callable = sans_suite  # avant l’application
    temoigner: Callable = sans_suite  # une fois l’application partie
    peut_perdre_la_page: bool = False  # WebKit peut en perdre le programme de plus


def tuer(banc):
    os.kill(banc.pid_du_serveur(), signal.SIGKILL)
    if banc.serveur:
        banc.serveur.wait()


def geler(banc):
    banc.gele = banc.pid_du_serveur()
    os.kill(banc.gele, signal.SIGSTOP)
    banc.callback(degeler, banc)


def degeler(banc):
    try:
        os.kill(banc.gele, signal.SIGCONT)
    except ProcessLookupError:
        pass


def prendre_le_port(banc):
    """Quelqu’un d’autre prend le port, que le serveur lui laisse en mourant s’il le tenait, et y répond autre chose."""
    if banc.moment not in ("avant", "attente"):
        tuer(banc)
    prise = banc.enter_context(socket.socket())
    prise.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    guetter(lambda: _pris(prise, banc.application.port), quoi="le port pris")
    prise.listen()
    threading.Thread(target=repondre_en_etranger, args=(prise,), daemon=True).start()


def _pris(prise, port):
    try:
        prise.bind(("127.0.0.1", port))
        return True
    except OSError:
        return False


def du_serveur(nom):
    return Panne(lambda banc: banc.poser(nom), lambda banc: os.remove(banc.dossier(nom)))


def de_l_application(nom, preparer=sans_suite, temoigner=sans_suite):
    def chemin(banc):
        return os.path.join(banc.fautes, nom)

    return Panne(lambda banc: open(chemin(banc), "w").close(), lambda banc: os.remove(chemin(banc)), preparer, temoigner)


def inonder(banc):
    banc.poser("inondation")
    if banc.moment != "avant":
        guetter(lambda: tout_est_lu(banc), quoi="l’application qui lit ce que le serveur écrit")


def tout_est_lu(banc):
    return banc.vus("inonde") > 50


def verifier_que_tout_est_lu(banc):
    banc.verifier.assertTrue(tout_est_lu(banc))


def retenir_un_cadre(banc):
    banc.cadre = banc.confier("état/keltrove/fenetre-keltrove", CADRE)


def le_cadre_est_intact(banc):
    # La taille est retenue dès la demande de fermeture : une panne qui survient ensuite la trouve déjà écrite.
    attendu = CADRE_ECRIT if banc.moment == "fermeture" and not banc.rattache else CADRE
    with open(banc.cadre) as fichier:
        banc.verifier.assertEqual(fichier.read(), attendu)
    banc.verifier.assertEqual(os.listdir(os.path.dirname(banc.cadre)), [os.path.basename(banc.cadre)])


def epuiser_les_descripteurs(banc):
    if banc.moment == "avant":
        return DESCRIPTEURS_AU_LANCEMENT.faire(banc)
    pid = banc.application.processus.pid
    banc.limites = resource.prlimit(pid, resource.RLIMIT_NOFILE)
    # Ni la boîte à outils ni les programmes de la page ne s’ouvrent sans descripteurs ; plus tard, ils sont déjà là.
    if banc.moment in ("attente", "reponse"):
        guetter(lambda: ecran.textes(pid), quoi="la fenêtre")
        guetter(banc.application.pages_reliees, quoi="le programme qui dessinera la page")
    # Ce qui se rend dans la seconde ne faisait que passer : une sonde entière y tiendrait. Celle dont on retient la réponse
    # garde les siens, et une application qui se ferme ne sonde plus.
    pas = 0 if banc.moment in ("reponse", "fermeture") else 0.05
    libre, releves = banc.limites[0], 0
    while releves < 20:
        tenus = {int(numero) for numero in os.listdir(f"/proc/{pid}/fd")}
        premier = next(i for i in itertools.count() if i not in tenus)
        releves += 1
        if premier < libre:
            libre, releves = premier, 0
            resource.prlimit(pid, resource.RLIMIT_NOFILE, (libre, banc.limites[1]))
        time.sleep(pas)


def rendre_les_descripteurs(banc):
    resource.prlimit(banc.application.processus.pid, resource.RLIMIT_NOFILE, banc.limites)


def tuer_la_page(banc):
    for pid in banc.application.pages():
        os.kill(pid, signal.SIGKILL)


def ouvrir_un_bus(banc):
    banc.bus = Bus(banc)
    banc.application.variables.update(banc.bus.variables)


def ouvrir_un_ecran(banc):
    lecture, ecriture = os.pipe()
    # Le premier numéro libre, que Xvfb prendrait, pourrait revenir à l’écran d’un autre essai une fois celui-ci parti.
    numero = port_libre() // 2
    banc.xvfb = subprocess.Popen(["Xvfb", f":{numero}", "-displayfd", str(ecriture), "-nolisten", "tcp"], pass_fds=[ecriture],
                                 stderr=subprocess.DEVNULL)
    banc.callback(retirer_l_ecran, banc)
    os.close(ecriture)
    with os.fdopen(lecture) as tube:
        banc.application.variables["DISPLAY"] = ":" + tube.readline().strip()


def retirer_l_ecran(banc):
    banc.xvfb.kill()
    banc.xvfb.wait()


def ouvrir_un_compositeur(banc):
    banc.compositeur = Compositeur(banc, SANS_ECRAN)
    banc.application.variables.update(banc.compositeur.variables)


def retirer_le_compositeur(banc):
    banc.compositeur.arreter()


def tuer_l_application(banc):
    banc.application.processus.kill()
    banc.application.processus.wait()


DESCRIPTEURS_AU_LANCEMENT = de_l_application("peu-de-descripteurs")
PANNES = {
    "serveur-tue": Panne(tuer),
    "serveur-gele": Panne(geler, degeler),
    "etranger": Panne(prendre_le_port),
    "sans-marque": du_serveur("sans-marque"),
    "sans-fin": du_serveur("sans-fin"),
    "inondation": Panne(inonder, temoigner=verifier_que_tout_est_lu),
    "disque-plein": de_l_application("disque-plein", retenir_un_cadre, le_cadre_est_intact),
    "lecture-seule": de_l_application("lecture-seule", retenir_un_cadre, le_cadre_est_intact),
    "sans-descripteurs": Panne(epuiser_les_descripteurs, rendre_les_descripteurs, peut_perdre_la_page=True),
    "sans-processus": de_l_application("sans-processus"),
    "horloge-avance": de_l_application("horloge-avance"),
    "horloge-recule": de_l_application("horloge-recule"),
    "page-tuee": Panne(tuer_la_page),
    "bus-parti": Panne(lambda banc: banc.bus.arreter(), preparer=ouvrir_un_bus),
    "ecran-parti": Panne(retirer_l_ecran, preparer=ouvrir_un_ecran),
    "compositeur-parti": Panne(retirer_le_compositeur, preparer=ouvrir_un_compositeur),
    "application-tuee": Panne(tuer_l_application),
}
