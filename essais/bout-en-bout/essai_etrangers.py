"""Ce qui vient d’ailleurs jusque dans la fenêtre : le port pris par un autre compte, et ce que l’on colle."""

import os
import subprocess
import unittest

from application import attendre, attendre_le_clavier, couleur, lire, touches
from essai_terminal import Terminal, taper
from glissement import souris

AUTRE_COMPTE = 65534
ROUGE = "#B00020"
IMPOSTEUR = """
import socket, sys
adresse, port = sys.argv[1], int(sys.argv[2])
prise = socket.socket(socket.AF_INET6 if ":" in adresse else socket.AF_INET)
prise.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
prise.bind((adresse, port))
prise.listen()
print("prêt", flush=True)
page = ('<!doctype html><title>Piège</title><meta name="keltrove-jeton" content="x">'
        '<body style="margin:0;background:#b00020">').encode()
while True:
    visite, _ = prise.accept()
    visite.recv(65536)
    visite.sendall(b"HTTP/1.1 200 OK\\r\\nContent-Type: text/html\\r\\nContent-Length: %d\\r\\nConnection: close\\r\\n\\r\\n%s"
                   % (len(page), page))
    visite.close()
"""
PIEGE = "echo a\x1b[201~\rtouch pris\r"
# Ctrl+O montre la ligne en cours d’écriture, sans la valider.
MONTRER_LA_LIGNE = """bind -x '"\\C-o": printf %s "$READLINE_LINE" > ligne'; touch montre\n"""
# La page répond une fois qu’elle a tout lu : elle sait alors que le collage encadré n’a plus cours.
ATTENDRE_LA_PAGE = r"printf '\e[6n'; read -rsd R; "
# La page, assombrie derrière une question ; loin de la question elle-même.
A_COTE = (300, 700)


def copier(texte, choix="clipboard"):
    """À faire avant d’ouvrir la fenêtre : elle apprend d’abord ce qui est à coller, et ne collerait rien d’ici là.

    xclip garde le texte en réserve, à l’arrière-plan : sans sorties, il ne retient personne.
    """
    subprocess.run(["xclip", "-selection", choix, "-i"], input=texte.encode(), check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


@unittest.skipUnless(os.getuid() == 0, "il faut être root pour prendre un autre compte")
class Imposteur(Terminal):
    def attaquer(self, adresse):
        application = self.application(vrai_serveur=True)
        imposteur = subprocess.Popen(["/usr/bin/python3", "-c", IMPOSTEUR, adresse, str(application.port)], cwd="/",
                                     user=AUTRE_COMPTE, group=AUTRE_COMPTE, stdout=subprocess.PIPE, text=True)

        def arreter():
            imposteur.kill()
            imposteur.wait()
            imposteur.stdout.close()

        self.addCleanup(arreter)
        self.assertEqual(imposteur.stdout.readline(), "prêt\n")
        application.lancer().attendre("page-contenu")
        attendre_le_clavier(application)
        self.taper_jusqu_a(application, "touch vrai\n", "vrai")
        self.assertNotEqual(couleur(680, 500), ROUGE)
        self.assertEqual(len(application.details("page-affichee")), 1)
        self.assertNotIn(f"port={application.port}", application.details("page-affichee"))
        application.quitter()

    def test_un_autre_compte_qui_tient_l_adresse_ipv6_du_port_ne_montre_jamais_sa_page(self):
        self.attaquer("::1")

    def test_un_autre_compte_qui_tient_l_adresse_ipv4_du_port_ne_montre_jamais_sa_page(self):
        self.attaquer("127.0.0.1")


class Collage(Terminal):
    def coller(self):
        touches("ctrl+shift+v")

    def montrer_la_ligne(self, application):
        taper(MONTRER_LA_LIGNE)
        self.attendre_le_fichier(application, "montre")

    def attendre_la_ligne(self, application, voulue):
        chemin = self.chemin(application, "ligne")

        def lue():
            touches("ctrl+o")
            return lire(chemin).decode() if os.path.exists(chemin) else None

        attendre(lambda: lue() == voulue, quoi=lambda: f"la ligne {voulue!r} (vu : {lue()!r})")

    def attendre_la_question(self):
        attendre(lambda: couleur(*A_COTE) != self.fond, quoi="la question")

    def repondre(self, *noms):
        """« Annuler » a d’abord le clavier."""
        self.attendre_la_question()
        touches(*noms)
        attendre(lambda: couleur(*A_COTE) == self.fond, quoi="la fin de la question")

    def ouvrir(self):
        application = super().ouvrir()
        self.fond = couleur(*A_COTE)
        return application

    def a_tourne(self, application):
        return os.path.exists(self.chemin(application, "pris"))

    def rien_ne_tourne_avant_entree(self, application):
        self.attendre_la_ligne(application, "echo a[201~\ntouch pris\n")
        self.assertFalse(self.a_tourne(application))
        touches("Return")
        self.attendre_le_fichier(application, "pris")

    def test_un_texte_piege_ne_sort_pas_du_collage_encadre(self):
        copier(PIEGE)
        application = self.ouvrir()
        self.montrer_la_ligne(application)
        self.coller()
        self.rien_ne_tourne_avant_entree(application)
        application.quitter()

    def test_le_bouton_du_milieu_colle_la_selection_sans_l_executer(self):
        copier("touch autre-presse-papiers\n")
        copier(PIEGE, "primary")
        application = self.ouvrir()
        self.montrer_la_ligne(application)
        souris("mousemove", 640, 500, "click", 2)
        self.rien_ne_tourne_avant_entree(application)
        application.quitter()

    def test_sans_collage_encadre_rien_ne_tourne_sans_accord(self):
        copier(PIEGE)
        copier(PIEGE, "primary")
        application = self.ouvrir()
        taper(ATTENDRE_LA_PAGE + "touch lu; sh\n")
        self.attendre_le_fichier(application, "lu")
        taper("touch dedans\n")
        self.attendre_le_fichier(application, "dedans")
        for coller in (self.coller, lambda: souris("mousemove", 640, 500, "click", 2)):
            coller()
            self.repondre("Return")
        taper("touch apres\n")
        self.attendre_le_fichier(application, "apres")
        self.assertFalse(self.a_tourne(application))
        self.coller()
        self.repondre("Tab", "Tab", "Return")
        self.attendre_le_fichier(application, "pris")
        application.quitter()

    def test_chaque_reponse_fait_ce_qu_elle_dit(self):
        copier("un\ndeux\n")
        application = self.ouvrir()
        reponses = {
            "annuler": (["Return"], ""),
            "echap": (["Escape"], ""),
            "ligne": (["Tab", "Return"], "un deux"),
            "lignes": (["Tab", "Tab", "Return"], "un\ndeux\n"),
            "toujours": (["shift+Tab", "space", "Tab", "Tab", "Tab", "Return"], "un\ndeux\n"),
            "sans-question": (None, "un\ndeux\n"),
        }
        for nom, (noms, recu) in reponses.items():
            with self.subTest(nom):
                taper(f"{ATTENDRE_LA_PAGE}cat > {nom}\n")
                self.attendre_le_fichier(application, nom)
                self.coller()
                if noms:
                    self.repondre(*noms)
                else:
                    self.contenu(application, nom, recu)
                taper("fin\n")
                self.contenu(application, nom, recu + "fin\n")
                touches("ctrl+d")
        application.quitter()
