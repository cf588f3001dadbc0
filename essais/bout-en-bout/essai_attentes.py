"""Les attentes qui durent pour de vrai : quarante, dix-huit et douze secondes, toutes à la fois."""

import os
import signal
import time

import ecran
from application import MUET, SERVEUR
from cas import Cas


class Attentes(Cas):
    def test_quarante_secondes_sans_reponse_trois_echecs_de_suite_et_un_serveur_sourd(self):
        muette = self.application(code=MUET).lancer()
        sourde = self.application(code=SERVEUR + "process.on('SIGTERM', () => {}); servir();", reste_un_serveur=True).lancer()
        hotesse = self.application(code=SERVEUR + "servir();").lancer()
        hotesse.attendre("page-affichee")
        jointe = self.application()
        jointe.regler(hotesse.port)
        jointe.lancer().attendre("page-affichee")

        # Gelé, le serveur accepte encore les connexions sans y répondre.
        (gele,) = hotesse.serveurs()
        os.kill(gele, signal.SIGSTOP)
        depart = time.monotonic()
        sourde.attendre("page-affichee")
        sourde.processus.terminate()
        demande = time.monotonic()
        self.assertEqual(sourde.attendre_la_fin(20), 0)
        self.assertGreaterEqual(time.monotonic() - demande, 11.9)
        self.assertEqual(sourde.details("arret-fini"), [
            "message=Le serveur met du temps à se fermer : je le laisse finir d’écrire sa liste."])
        self.assertEqual(len(sourde.serveurs()), 1)

        jointe.attendre("serveur-ne-repond-plus", 40)
        self.assertGreaterEqual(time.monotonic() - depart, 12)
        ecran.attendre_le_texte(jointe.processus.pid, "Le serveur de keltrove ne répond plus")
        os.kill(gele, signal.SIGCONT)
        ecran.presser(jointe.processus.pid, "Réessayer")
        jointe.attendre("page-affichee", fois=2)
        self.assertEqual(jointe.etapes().count("rattache"), 2)
        jointe.quitter()
        hotesse.quitter()

        muette.attendre("echec-demarrage", 60)
        self.assertEqual(muette.details("echec-demarrage"), ["cause=Le serveur ne répond pas"])
        ecran.attendre_le_texte(muette.processus.pid, f"toujours pas sur le port {muette.port}")
        self.assertEqual(len(muette.serveurs()), 1)
        ecran.presser(muette.processus.pid, "Voir le détail")
        ecran.attendre_le_texte(muette.processus.pid, "je réfléchis")
        self.assertEqual(muette.quitter(), 0)
        self.assertEqual(muette.serveurs(), [])
