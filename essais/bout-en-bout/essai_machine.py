"""Les modes essai et discret, les machines où il manque quelque chose, la taille retenue."""

import json
import os
import subprocess

import page_notee
from application import SERVEUR, VERT, attendre, couleur, fenetres, la_fenetre, lire
from cas import Cas
from page_notee import attendre_la_note

ORDINAIRE = SERVEUR + "servir();"
PAGE_MESUREE = page_notee.code("<script>addEventListener('resize', () => noter(innerWidth));</script>")


class Modes(Cas):
    def test_le_mode_essai_cache_la_fenetre_et_ecrit_son_journal(self):
        application = self.application(code=ORDINAIRE, variables={"KELTROVE_ESSAI": "1", "KELTROVE_ESSAI_QUITTER": "10"})
        application.lancer().attendre("page-contenu")
        self.assertEqual(fenetres(application), [])
        self.assertEqual(application.attendre_la_fin(20), 0)
        self.assertEqual(application.etapes()[-3:], ["essai-quitte-tout-seul", "arret-demande", "arret-fini"])
        with open(os.path.join(application.maison, ".zelcor/keltrove-app-etat.json")) as fichier:
            journal = json.load(fichier)["etapes"]
        self.assertEqual([etape["etape"] for etape in journal], application.etapes())
        self.assertEqual(journal[0]["seconde"], 0)
        instant = next(e["seconde"] for e in journal if e["etape"] == "essai-quitte-tout-seul")
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
