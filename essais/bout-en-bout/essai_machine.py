"""Les modes essai et discret, les machines où il manque quelque chose, la taille retenue."""

import glob
import json
import os
import pty
import signal
import subprocess
import termios
import unittest

import ecran as lecture
import page_notee
from application import SERVEUR, VERT, attendre, attendre_le_clavier, couleur, fenetres, la_fenetre, lire, port_libre, touches
from cas import Cas
from page_notee import attendre_la_note

ORDINAIRE = SERVEUR + "servir();"
CADRE_VOULU = ["agrandie=false", "hauteur=600", "largeur=900"]
PAGE_MESUREE = page_notee.code("<script>addEventListener('resize', () => noter(innerWidth));</script>")


class Modes(Cas):
    def journal_ecrit(self, application):
        with open(os.path.join(application.maison, ".zelcor/keltrove-app-etat.json")) as fichier:
            return json.load(fichier)["etapes"]

    def test_le_mode_essai_cache_la_fenetre_et_ecrit_son_journal(self):
        application = self.application(code=ORDINAIRE, variables={"KELTROVE_ESSAI": "1"}).lancer()
        application.attendre("page-contenu")
        self.assertEqual(fenetres(application), [])
        self.assertEqual(application.quitter(), 0)
        journal = self.journal_ecrit(application)
        self.assertEqual([etape["etape"] for etape in journal], application.etapes())
        self.assertEqual(journal[0]["seconde"], 0)

    def test_un_terminal_suspendu_ne_retient_ni_la_page_ni_la_fermeture(self):
        maitre, terminal = pty.openpty()
        self.addCleanup(os.close, maitre)
        self.addCleanup(os.close, terminal)
        termios.tcflow(terminal, termios.TCOOFF)  # comme Ctrl+S
        application = self.application(code=ORDINAIRE, variables={"KELTROVE_ESSAI": "1"}).avoir_un_bus()
        application.preparer()
        application.processus = subprocess.Popen([application.executable], env=application.environnement(), stdout=terminal,
                                                 stderr=terminal, start_new_session=True)
        attendre(lambda: "page-contenu" in self.noms_ecrits(application), quoi="la page")
        self.assertEqual(application.quitter(), 0)
        self.assertEqual(self.noms_ecrits(application)[-2:], ["arret-demande", "arret-fini"])

    def noms_ecrits(self, application):
        try:
            return [etape["etape"] for etape in self.journal_ecrit(application)]
        except FileNotFoundError:
            return []

    def test_le_mode_essai_quitte_de_lui_meme_a_l_heure_dite(self):
        # Que la page soit là ou non : une machine chargée met plus longtemps à la montrer.
        application = self.application(code=ORDINAIRE, variables={"KELTROVE_ESSAI": "1", "KELTROVE_ESSAI_QUITTER": "10"}).lancer()
        self.assertEqual(application.attendre_la_fin(), 0)
        self.assertEqual(application.etapes()[-3:], ["essai-quitte-tout-seul", "arret-demande", "arret-fini"])
        instant = next(e["seconde"] for e in self.journal_ecrit(application) if e["etape"] == "essai-quitte-tout-seul")
        self.assertGreaterEqual(instant, 9.9)

    def test_hors_du_mode_essai_ni_fichier_ni_fermeture_toute_seule(self):
        application = self.application(code=ORDINAIRE, variables={"KELTROVE_ESSAI_QUITTER": "1"}).lancer()
        application.attendre("page-contenu")  # une seconde après la page : l’heure dite est passée
        self.assertNotIn("essai-quitte-tout-seul", application.etapes())
        self.assertFalse(os.path.exists(os.path.join(application.maison, ".zelcor/keltrove-app-etat.json")))
        application.quitter()

    def test_une_heure_de_fermeture_demesuree_ne_vient_jamais(self):
        for heure in ("inf", "1e308", "5000000"):
            with self.subTest(heure=heure):
                application = self.application(code=ORDINAIRE, variables={"KELTROVE_ESSAI": "1",
                                                                          "KELTROVE_ESSAI_QUITTER": heure}).lancer()
                application.attendre("page-contenu")
                self.assertNotIn("essai-quitte-tout-seul", application.etapes())
                application.quitter()

    def test_le_mode_discret_s_ouvre_derriere_et_sans_le_clavier(self):
        devant = self.application(code=ORDINAIRE).lancer()
        devant.attendre("page-contenu")
        discrete = self.application(code=SERVEUR.replace("2b8a3e", "8a2b3e") + "servir();",
                                    variables={"KELTROVE_DISCRET": "1"}).lancer()
        discrete.attendre("page-contenu")
        (numero,) = discrete.details("numero-fenetre")
        self.assertIn(int(numero), fenetres(discrete, visible=False))
        actif = subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True).stdout.strip()
        self.assertNotEqual(actif, numero)
        self.assertEqual(couleur(680, 450), VERT, "la première fenêtre reste devant")
        discrete.quitter()
        devant.quitter()


class Machine(Cas):
    def phrase_et_etat(self, **options):
        application = self.application(**options).lancer()
        self.assertEqual(application.attendre_la_fin(15), 1)
        self.assertEqual(len(application.lignes), 1, application.lignes)
        return application.lignes[0]

    def test_sans_ecran_une_phrase_et_l_etat_un(self):
        phrase = self.phrase_et_etat(code=ORDINAIRE, variables={"DISPLAY": None, "WAYLAND_DISPLAY": None})
        self.assertTrue(phrase.startswith("Keltrove n’a trouvé aucun écran"), phrase)

    def test_sans_module_du_bureau_une_phrase_et_l_etat_un(self):
        application = self.application(code=ORDINAIRE)
        os.remove(os.path.join(application.racine, "libkeltrove-bureau.so"))
        application.lancer()
        self.assertEqual(application.attendre_la_fin(15), 1)
        self.assertEqual(len(application.lignes), 1)
        self.assertIn("libkeltrove-bureau.so manque", application.lignes[0])

    def test_sans_entree_ni_sorties_l_application_tourne(self):
        """Nos propres fichiers ne doivent pas prendre la place des sorties absentes."""
        application = self.application(code=ORDINAIRE, variables={"KELTROVE_ESSAI": "1"}).avoir_un_bus()
        application.preparer()
        journal = os.path.join(application.maison, ".zelcor/keltrove-app-etat.json")

        def etapes():
            return [etape["etape"] for etape in json.loads(lire(journal))["etapes"]] if os.path.exists(journal) else []

        fermer = "exec 0<&- 1>&- 2>&-; exec \"$0\""
        application.processus = subprocess.Popen(["sh", "-c", fermer, application.executable],
                                                 env=application.environnement())
        attendre(lambda: "page-contenu" in etapes(), secondes=30, quoi=lambda: f"la page ({etapes()})")
        self.assertEqual(application.quitter(), 0)
        self.assertEqual(etapes()[-1], "arret-fini")

    def test_sans_bus_de_session_l_application_tourne(self):
        application = self.application(code=ORDINAIRE, variables={
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nulle/part"}).lancer()
        application.attendre("page-contenu")
        self.assertEqual(application.quitter(), 0)

    @unittest.skipIf(glob.glob("/dev/dri/renderD*"), "cette machine a une carte graphique")
    def test_sans_carte_graphique_l_application_ne_charge_aucun_dessin_simule(self):
        application = self.application(code=ORDINAIRE).lancer()
        application.attendre("page-contenu")
        self.assertNotIn(b"libEGL_mesa", lire(f"/proc/{application.processus.pid}/maps"))
        self.assertEqual(application.quitter(), 0)

    def test_sans_bac_a_sable_l_application_le_dit_et_tourne(self):
        application = self.application(code=ORDINAIRE, variables={"PATH": "/nulle/part"}).lancer()
        application.attendre("page-contenu")
        self.assertTrue(any("bac à sable" in ligne for ligne in application.lignes))
        self.assertEqual(application.quitter(), 0)


class Taille(Cas):
    def taille(self, application):
        fenetre = la_fenetre(application)
        geometrie = subprocess.run(["xdotool", "getwindowgeometry", "--shell", str(fenetre)], capture_output=True,
                                   text=True, check=True).stdout
        valeurs = dict(ligne.split("=") for ligne in geometrie.split())
        return int(valeurs["WIDTH"]), int(valeurs["HEIGHT"])

    def fichier(self, application):
        return os.path.join(application.maison, "état/keltrove/fenetre-keltrove")

    def test_la_taille_est_retenue_d_une_fois_sur_l_autre(self):
        application = self.application(code=PAGE_MESUREE).lancer()
        application.attendre("page-affichee")
        attendre(lambda: self.taille(application) == (1280, 820), quoi="la taille d’origine")
        fenetre = la_fenetre(application)
        subprocess.run(["xdotool", "windowsize", "--sync", str(fenetre), "900", "600"], check=True)
        attendre(lambda: self.taille(application) == (900, 600), quoi="la taille voulue")
        # Le système la donne avant que l’application ne s’y soit mise ; elle ne retient que la sienne.
        attendre_la_note(application, 900)
        application.quitter()
        application.lancer().attendre("page-affichee")
        attendre(lambda: self.taille(application) == (900, 600), quoi="la taille retrouvée")
        fenetre = la_fenetre(application)
        subprocess.run(["xdotool", "windowsize", str(fenetre), "300", "200"], check=True)
        attendre(lambda: self.taille(application) == (720, 480), quoi="la taille minimale")
        application.quitter()

    def redimensionner(self, application, ecran=None):
        """Dans un écran à elle, l’application n’a pas de gestionnaire de fenêtres."""
        application.attendre("page-affichee")
        fenetre = str(la_fenetre(application, ecran))
        variables = {**os.environ, "DISPLAY": ecran or os.environ["DISPLAY"]}
        subprocess.run(["xdotool", "windowsize", fenetre, "900", "600"], check=True, env=variables)
        attendre_la_note(application, 900)
        return fenetre

    def cadre(self, application):
        return sorted(lire(self.fichier(application)).decode().split("\n")[1:-1])

    def test_la_taille_survit_a_toutes_les_facons_de_partir(self):
        def reduire(application, fenetre):
            subprocess.run(["xdotool", "windowminimize", "--sync", fenetre], check=True)
            application.quitter()

        def fermer(application, _):
            attendre_le_clavier(application)
            touches("alt+F4")
            application.attendre_la_fin()

        def quitter_par_le_menu(application, _):
            attendre_le_clavier(application)
            lecture.choisir(application.processus.pid, "Keltrove", "Quitter Keltrove")
            application.attendre_la_fin()

        def quitter_devant_un_probleme(application, _):
            os.kill(application.serveurs()[0], signal.SIGKILL)
            application.attendre("serveur-mort-en-route")
            application.quitter()

        facons = {"SIGTERM": lambda application, _: application.quitter(),
                  "SIGHUP": lambda application, _: application.quitter(signal.SIGHUP),
                  "réduite": reduire, "fermée": fermer, "par le menu": quitter_par_le_menu,
                  "devant un problème": quitter_devant_un_probleme}
        for nom, partir in facons.items():
            with self.subTest(nom):
                application = self.application(code=PAGE_MESUREE).lancer()
                partir(application, self.redimensionner(application))
                self.assertEqual(self.cadre(application), CADRE_VOULU)

    def test_la_taille_survit_a_une_fin_de_session_qui_n_attend_pas(self):
        for nom in ("deux fermetures", "tuée"):
            with self.subTest(nom):
                application = self.application(code=PAGE_MESUREE + "process.on('SIGTERM', () => {});", reste_un_serveur=True)
                self.redimensionner(application.lancer())
                application.processus.terminate()
                application.attendre("arret-demande")
                if nom == "tuée":
                    application.processus.kill()
                else:
                    application.processus.terminate()
                    os.kill(application.serveurs()[0], signal.SIGKILL)
                application.attendre_la_fin()
                self.assertEqual(self.cadre(application), CADRE_VOULU)

    def test_la_taille_survit_a_la_mort_de_l_ecran(self):
        lecture_du_numero, ecriture = os.pipe()
        numero = port_libre() // 2
        xvfb = subprocess.Popen(["Xvfb", f":{numero}", "-displayfd", str(ecriture), "-nolisten", "tcp"], pass_fds=[ecriture],
                                stderr=subprocess.DEVNULL)
        self.addCleanup(xvfb.wait)
        self.addCleanup(xvfb.kill)
        os.close(ecriture)
        with os.fdopen(lecture_du_numero) as tube:
            ecran = ":" + tube.readline().strip()
        application = self.application(code=PAGE_MESUREE, variables={"DISPLAY": ecran}).lancer()
        self.redimensionner(application, ecran)
        xvfb.kill()
        application.attendre_la_fin()
        self.assertEqual(self.cadre(application), CADRE_VOULU)

    def test_la_taille_survit_a_la_mort_du_compositeur(self):
        application = self.application(code=ORDINAIRE)
        compositeur = subprocess.Popen(["weston", "--backend=headless-backend.so", "--socket=compositeur", "--width=1600", "--height=1000"],
                                       env={**os.environ, "XDG_RUNTIME_DIR": application.racine}, stderr=subprocess.DEVNULL,
                                       stdout=subprocess.DEVNULL)
        self.addCleanup(compositeur.wait)
        self.addCleanup(compositeur.kill)
        attendre(lambda: os.path.exists(os.path.join(application.racine, "compositeur")), quoi="le compositeur")
        application.variables.update(XDG_RUNTIME_DIR=application.racine, WAYLAND_DISPLAY="compositeur", DISPLAY=None)
        application.lancer().attendre("page-affichee")
        compositeur.kill()
        application.attendre_la_fin()
        self.assertEqual(self.cadre(application), ["agrandie=false", "hauteur=820", "largeur=1280"])

    def test_un_fichier_de_taille_abime_donne_la_taille_d_origine(self):
        for contenu in ("n’importe quoi", "[cadre]\nlargeur=1\nhauteur=-5\n", "[cadre]\nlargeur=99999999\nhauteur=1e9\n"):
            with self.subTest(contenu=contenu):
                application = self.application(code=ORDINAIRE)
                os.makedirs(os.path.dirname(self.fichier(application)))
                with open(self.fichier(application), "w") as fichier:
                    fichier.write(contenu)
                application.lancer().attendre("page-affichee")
                attendre(lambda: self.taille(application) == (1280, 820), quoi="la taille d’origine")
                application.quitter()
