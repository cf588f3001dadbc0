"""Du lancement à la page : se rattacher, allumer, trouver le port, expliquer l’échec."""

import os
import subprocess
import tempfile
import unittest

import ecran
from application import MUET, SERVEUR, SOMBRE, VERT, attendre, attendre_le_clavier, couleur, port_libre, sans_node
from cas import Cas

# Une page comme la nôtre, et le chemin de chaque requête sur la sortie.
AUTRE_COMPTE = """
import http.server, socket, sys
class Page(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        print(self.path, flush=True)
        self.send_response(200)
        self.end_headers()
        self.wfile.write(b'<meta name="keltrove-jeton" content="x">')
    def log_message(self, *_):
        pass
class Serveur(http.server.ThreadingHTTPServer):
    address_family = socket.AF_INET6 if ":" in sys.argv[1] else socket.AF_INET
serveur = Serveur((sys.argv[1], int(sys.argv[2])), Page)
print("pret", flush=True)
serveur.serve_forever()
"""


class Demarrage(Cas):
    def test_un_serveur_qui_tourne_deja_n_est_ni_relance_ni_arrete(self):
        premiere = self.application(code=SERVEUR + "servir();").lancer()
        premiere.attendre("allume")
        seconde = self.application(code=SERVEUR + "servir();")
        seconde.regler(premiere.port)
        seconde.lancer().attendre("page-affichee")
        self.assertEqual(seconde.etapes()[:2], ["demarrage-demande", "rattache"])
        self.assertEqual(seconde.details("rattache"), [f"port={premiere.port}"])
        self.assertEqual(seconde.serveurs(), [])
        self.assertEqual(seconde.quitter(), 0)
        self.assertEqual(seconde.etapes()[-1], "quitte-sans-toucher-au-serveur")
        self.assertEqual(len(premiere.serveurs()), 1)
        premiere.quitter()

    def test_un_serveur_absent_est_allume_et_sa_page_se_peint(self):
        application = self.application(code=SERVEUR + "servir();")
        with open(os.path.join(application.maison, ".zelcor/keltrove-jeton"), "w") as fichier:
            fichier.write("abc\n")
        application.lancer().attendre("page-contenu")
        self.assertEqual(application.details("allume"), [f"port={application.port}"])
        self.assertEqual(application.details("page-affichee"), [f"port={application.port}"])
        self.assertTrue(application.details("page-contenu")[0].startswith("cle=jeton-rempli elements="))
        application.attendre("sante")
        self.assertEqual(application.details("sante"), ["carnet=5 version=1.4.2"])
        attendre(lambda: couleur(680, 450) == VERT, quoi="la page verte")
        self.assertEqual(application.quitter(), 0)
        self.assertTrue(application.details("arret-fini")[0].startswith("message=Serveur fermé proprement en "))

    def test_le_petit_enfant_d_un_script_sert_et_s_arrete_avec_lui(self):
        application = self.application(code=SERVEUR + "servir();",
                                       porte='#!/bin/sh\ncd keltrove\nsh -c "node serveur.mjs; true"\ntrue\n').lancer()
        application.attendre("page-affichee")
        self.assertEqual(application.quitter(), 0)
        self.assertIn("Serveur fermé proprement", application.details("arret-fini")[0])

    def test_un_serveur_qui_a_pris_un_autre_port_est_trouve(self):
        for hote in ("127.0.0.1", "::"):
            with self.subTest(hote=hote):
                autre = port_libre()
                application = self.application(code=SERVEUR + f"servir({autre}, '{hote}');").lancer()
                application.attendre("page-affichee")
                self.assertEqual(application.details("allume"), [f"port={autre}"])
                application.quitter()

    def tenir_en_autre_compte(self, hote, port):
        autre = subprocess.Popen(["/usr/bin/python3", "-c", AUTRE_COMPTE, hote, str(port)], user=65534, group=65534, cwd="/",
                                 stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.addCleanup(autre.communicate)
        self.addCleanup(autre.kill)
        return autre, autre.stdout.readline()

    @unittest.skipUnless(os.geteuid() == 0, "prendre un autre compte demande d’être administrateur")
    def test_un_autre_compte_qui_tient_le_port_n_est_ni_interroge_ni_montre(self):
        for hote in ("127.0.0.1", "::1"):
            with self.subTest(hote=hote):
                application = self.application(vrai_serveur=True)
                autre, pret = self.tenir_en_autre_compte(hote, application.port)
                if hote == "::1" and not pret:
                    self.skipTest("cette machine n’a pas d’IPv6")
                self.assertEqual(pret, "pret\n")
                application.lancer().attendre("page-contenu")
                application.attendre("sante")
                self.assertNotIn("rattache", application.etapes())
                self.assertNotEqual(application.details("allume"), [f"port={application.port}"])
                self.assertEqual(application.details("page-affichee"), application.details("allume"))
                self.assertEqual(application.quitter(), 0)
                autre.kill()
                self.assertEqual(autre.stdout.read(), "", "aucune requête ne lui a été faite")

    def test_le_vrai_serveur_ouvre_un_vrai_terminal_qui_revient(self):
        application = self.application(vrai_serveur=True).lancer()
        application.attendre("page-contenu")
        self.assertIn("cle=jeton-rempli", application.details("page-contenu")[0])
        temoin = os.path.join(application.maison, "témoin")
        attendre_le_clavier(application)

        def repond():
            subprocess.run(["xdotool", "type", "--delay", "20", "pwd > t; mv t t'e'moin\n"], check=True)
            return os.path.exists(os.path.join(application.maison, "temoin"))
        attendre(repond, quoi="la commande tapée")
        self.assertFalse(os.path.exists(temoin))
        self.assertEqual(application.quitter(), 0)
        application.lancer().attendre("sante")
        self.assertEqual(application.details("sante")[0].split()[0], "carnet=1")
        application.attendre("page-contenu")
        application.quitter()

    def test_le_serveur_ne_recoit_ni_nos_reglages_ni_notre_groupe(self):
        application = self.application(code=SERVEUR + "servir();").lancer()
        application.attendre("allume")
        (serveur,) = application.serveurs()
        with open(f"/proc/{serveur}/environ") as fichier:
            noms = {variable.split("=")[0] for variable in fichier.read().split("\0")}
        self.assertFalse(noms & {"WEBKIT_DISABLE_DMABUF_RENDERER", "GSK_RENDERER", "GDK_DEBUG", "GDK_DISABLE",
                                 "WEBKIT_A11Y_BUS_ADDRESS", "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS"})
        self.assertEqual(os.getpgid(serveur), serveur)
        self.assertEqual(sorted(os.listdir(f"/proc/{serveur}/fd"), key=int)[:3], ["0", "1", "2"])
        application.quitter()

    def test_un_serveur_bavard_ne_retient_ni_la_page_ni_la_fermeture(self):
        application = self.application(code=SERVEUR + "servir(); const b = 'x'.repeat(65000) + '\\n';"
                                       "const dire = () => process.stdout.write(b, dire); dire();").lancer()
        application.attendre("page-contenu")
        with open(f"/proc/{application.processus.pid}/statm") as fichier:
            residentes = int(fichier.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")
        self.assertLess(residentes, 400 << 20)
        self.assertEqual(application.quitter(), 0)

    def test_un_mot_de_mise_a_jour_se_montre_dans_le_bandeau(self):
        application = self.application(code=SERVEUR + "console.log('MESSAGE=Version 2 prête'); servir();").lancer()
        application.attendre("bandeau")
        self.assertEqual(application.details("bandeau"), ["texte=Version 2 prête"])
        ecran.attendre_le_texte(application.processus.pid, "Version 2 prête")
        application.quitter()


class Echecs(Cas):
    def echec(self, cause, **options):
        application = self.application(**options).lancer()
        application.attendre("echec-demarrage")
        self.assertEqual(application.details("echec-demarrage"), [f"cause={cause}"])
        ecran.attendre_le_texte(application.processus.pid, cause)
        self.assertIn("Réessayer", ecran.boutons(application.processus.pid))
        return application

    def test_sans_code_l_ecran_dit_ou_il_a_ete_cherche(self):
        application = self.echec("Le code de keltrove est introuvable")
        ecran.attendre_le_texte(application.processus.pid, "  • " + application.ressources + "/keltrove/serveur.mjs")
        self.assertNotIn("Voir le détail", ecran.boutons(application.processus.pid))
        self.assertEqual(application.quitter(), 0)

    def test_sans_node_l_ecran_le_dit(self):
        with tempfile.TemporaryDirectory() as dossier:
            self.echec("Il manque Node sur cet ordinateur", code=MUET, variables=sans_node(dossier)).quitter()

    def test_un_script_sans_interprete_cite_le_systeme(self):
        application = self.echec("Le serveur n’a pas pu démarrer", porte="#!/nulle/part\n")
        ecran.attendre_le_texte(application.processus.pid, "Il dit : No such file or directory")
        application.quitter()

    def test_un_serveur_mort_aussitot_montre_ce_qu_il_a_ecrit_et_reessayer_repart(self):
        application = self.echec("Le serveur s’est arrêté aussitôt",
                                 code="console.error('plus de place au carnet'); process.exit(1);")
        pid = application.processus.pid
        self.assertFalse(any("plus de place au carnet" in texte for texte in ecran.textes(pid)))
        ecran.presser(pid, "Voir le détail")
        ecran.attendre_le_texte(pid, "plus de place au carnet")
        ecran.presser(pid, "Masquer le détail")
        attendre(lambda: "Voir le détail" in ecran.boutons(pid), quoi="le détail replié")
        application.poser("keltrove/serveur.mjs", SERVEUR + "servir();")
        ecran.presser(pid, "Réessayer")
        application.attendre("page-affichee")
        self.assertEqual(application.etapes().count("demarrage-demande"), 2)
        application.quitter()

    def test_une_copie_modifiee_se_dit(self):
        self.echec("Cette copie de keltrove a été modifiée",
                   porte="#!/bin/sh\necho MODIFIE=serveur.mjs\nexit 1\n").quitter()

    def test_l_ecran_est_sombre_sous_tous_les_themes(self):
        for theme in ("Adwaita", "Adwaita:dark"):
            with self.subTest(theme=theme):
                application = self.echec("Le code de keltrove est introuvable", variables={"GTK_THEME": theme})
                attendre(lambda: couleur(120, 800) == SOMBRE, quoi="le fond sombre")
                application.quitter()


if __name__ == "__main__":
    unittest.main()
