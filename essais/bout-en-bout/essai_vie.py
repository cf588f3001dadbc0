"""En service et à la fermeture : la mort du serveur, celle de la page, et toutes les façons de quitter."""

import os
import signal
import subprocess
import time

import ecran
from application import MUET, SERVEUR, VERT, attendre, commande, couleur, fenetres, processus_marques, touches
from cas import Cas

ORDINAIRE = SERVEUR + "servir();"


class EnService(Cas):
    def test_la_mort_du_serveur_se_dit_aussitot_et_reessayer_le_rallume(self):
        application = self.application(code=ORDINAIRE).lancer()
        application.attendre("page-affichee")
        os.kill(application.serveurs()[0], signal.SIGKILL)
        application.attendre("serveur-mort-en-route", 5)
        ecran.attendre_le_texte(application.processus.pid, "Le serveur s’est arrêté")
        ecran.presser(application.processus.pid, "Réessayer")
        application.attendre("page-affichee", fois=2)
        attendre(lambda: couleur(680, 450) == VERT, quoi="la page revenue")
        application.quitter()

    def test_la_mort_du_programme_qui_dessine_la_page_se_dit_et_entree_la_rouvre(self):
        # L’essai suivant trouve le serveur en route et s’y rattache : il n’est donc plus le nôtre à fermer.
        application = self.application(code=ORDINAIRE, reste_un_serveur=True).lancer()
        application.attendre("page-contenu")
        (dessinateur,) = [pid for pid in application.enfants("WebKitWebProcess") if "bwrap" not in commande(pid)]
        os.kill(dessinateur, signal.SIGKILL)
        application.attendre("page-ratee")
        ecran.attendre_le_texte(application.processus.pid, "La page de keltrove ne s’affiche pas")
        touches("Return")
        application.attendre("page-affichee", fois=2)
        application.quitter()

    def test_une_page_ratee_le_reste_jusqu_a_un_essai_reussi(self):
        # Le serveur répond à la sonde mais raccroche au nez de la page, jusqu’à ce qu’on le répare.
        code = SERVEUR + """http.createServer((q, r) => q.headers['user-agent'] && !fs.existsSync('repare')
            ? q.socket.destroy() : repondre(q, r)).listen(PORT, '127.0.0.1');"""
        application = self.application(code=code, reste_un_serveur=True).lancer()
        application.attendre("page-ratee")
        pid = application.processus.pid
        ecran.attendre_le_texte(pid, "C’est souvent passager")
        application.poser("keltrove/repare", "")
        # Une seconde ratée laisserait le temps à un faux « page-affichee » de se montrer.
        self.assertNotIn("page-affichee", application.etapes())
        ecran.presser(pid, "Réessayer")
        application.attendre("page-contenu")
        self.assertEqual(application.etapes().count("page-affichee"), 1)
        application.quitter()

    def test_reessayer_pendant_un_demarrage_ne_fait_rien(self):
        application = self.application(code="setTimeout(() => process.exit(1), 1500);").lancer()
        application.attendre("echec-demarrage")
        ecran.presser(application.processus.pid, "Réessayer")
        application.attendre("demarrage-demande", fois=2)
        for _ in range(3):
            touches("Return")
        application.attendre("echec-demarrage", fois=2)
        self.assertEqual(application.etapes().count("demarrage-demande"), 2)
        application.quitter()


class Fermeture(Cas):
    def test_chaque_signal_prend_le_chemin_ordinaire(self):
        for signe in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signe=signe):
                application = self.application(code=ORDINAIRE).lancer()
                application.attendre("page-affichee")
                self.assertEqual(application.quitter(signe), 0)
                self.assertEqual(application.etapes()[-2:], ["arret-demande", "arret-fini"])
                self.assertEqual(application.serveurs(), [])

    def test_fermer_la_fenetre_prend_le_meme_chemin(self):
        application = self.application(code=ORDINAIRE).lancer()
        application.attendre("page-contenu")
        touches("alt+F4")
        self.assertEqual(application.processus.wait(15), 0)
        self.assertEqual(application.etapes()[-2:], ["arret-demande", "arret-fini"])

    def test_ctrl_c_dans_le_terminal_de_lancement_n_atteint_que_l_application(self):
        application = self.application(code=ORDINAIRE + "process.on('SIGINT', () => fs.writeFileSync('interrompu', ''));")
        application.lancer().attendre("allume")
        os.killpg(os.getpgid(application.processus.pid), signal.SIGINT)
        self.assertEqual(application.processus.wait(15), 0)
        self.assertFalse(os.path.exists(os.path.join(application.ressources, "keltrove/interrompu")))
        self.assertIn("Serveur fermé proprement", application.details("arret-fini")[0])

    def test_quitter_deux_fois_ne_demande_qu_un_arret(self):
        application = self.application(code=ORDINAIRE + "process.on('SIGTERM', () => setTimeout(process.exit, 1000));")
        application.lancer().attendre("page-affichee")
        application.processus.terminate()
        application.attendre("arret-demande")
        ecran.attendre_le_texte(application.processus.pid, "Fermeture…")
        self.assertEqual(application.quitter(), 0)
        self.assertEqual(application.etapes().count("arret-demande"), 1)

    def test_quitter_pendant_un_demarrage_ne_laisse_rien(self):
        application = self.application(code=MUET).lancer()
        attendre(lambda: application.serveurs(), quoi="le serveur lancé")
        self.assertEqual(application.quitter(), 0)
        self.assertEqual(application.details("arret-fini"),
                         ["message=Le serveur n’a pas été retrouvé : rien à fermer."])
        self.assertEqual(application.serveurs(), [])

    def test_quitter_des_la_premiere_etape_ne_laisse_rien(self):
        for _ in range(5):
            application = self.application(code=ORDINAIRE).lancer()
            application.attendre("demarrage-demande")
            self.assertEqual(application.quitter(), 0)
            self.assertEqual(application.serveurs(), [])

    def test_un_serveur_tue_pendant_la_fermeture_la_termine(self):
        application = self.application(code=ORDINAIRE + "process.on('SIGTERM', () => fs.writeFileSync('sourd', ''));")
        application.lancer().attendre("page-affichee")
        application.processus.terminate()
        attendre(lambda: os.path.exists(os.path.join(application.ressources, "keltrove/sourd")), quoi="le signal reçu")
        os.kill(application.serveurs()[0], signal.SIGKILL)
        mort = time.monotonic()
        self.assertEqual(application.processus.wait(10), 0)
        self.assertLess(time.monotonic() - mort, 2)
        self.assertIn("Serveur fermé proprement", application.details("arret-fini")[0])

    def test_apres_la_fermeture_il_ne_reste_aucun_processus_de_la_page(self):
        application = self.application(code=ORDINAIRE).lancer()
        application.attendre("page-affichee")
        application.quitter()
        attendre(lambda: not [pid for pid in processus_marques(application.marque) if "WebKit" in commande(pid)],
                 quoi="la fin des processus de la page")


class Modes(Cas):
    def test_le_mode_essai_cache_la_fenetre_et_ecrit_son_journal(self):
        import json

        application = self.application(code=ORDINAIRE, variables={"KELTROVE_ESSAI": "1", "KELTROVE_ESSAI_QUITTER": "3"})
        application.lancer().attendre("page-contenu")
        self.assertEqual(fenetres(application), [])
        self.assertEqual(application.processus.wait(15), 0)
        self.assertEqual(application.etapes()[-3:], ["essai-quitte-tout-seul", "arret-demande", "arret-fini"])
        with open(os.path.join(application.maison, ".zelcor/keltrove-app-etat.json")) as fichier:
            journal = json.load(fichier)["etapes"]
        self.assertEqual([etape["etape"] for etape in journal], application.etapes())
        self.assertEqual(journal[0]["seconde"], 0)
        instant = next(e["seconde"] for e in journal if e["etape"] == "essai-quitte-tout-seul")
        self.assertGreaterEqual(instant, 2.9)

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
        self.assertEqual(application.processus.wait(15), 1)
        attendre(lambda: application.lignes, quoi="la phrase")
        self.assertEqual(len(application.lignes), 1, application.lignes)
        return application.lignes[0]

    def test_sans_ecran_une_phrase_et_l_etat_un(self):
        phrase = self.phrase_et_etat(code=ORDINAIRE, variables={"DISPLAY": None, "WAYLAND_DISPLAY": None})
        self.assertTrue(phrase.startswith("Keltrove n’a trouvé aucun écran"), phrase)

    def test_sans_module_du_bureau_une_phrase_et_l_etat_un(self):
        application = self.application(code=ORDINAIRE)
        os.remove(os.path.join(application.racine, "libkeltrove-bureau.so"))
        application.lancer()
        self.assertEqual(application.processus.wait(15), 1)
        attendre(lambda: application.lignes, quoi="la phrase")
        self.assertEqual(len(application.lignes), 1)
        self.assertIn("libkeltrove-bureau.so manque", application.lignes[0])

    def test_sans_entree_ni_sorties_l_application_tourne(self):
        """Nos propres fichiers ne doivent pas prendre la place des sorties absentes."""
        import json

        application = self.application(code=ORDINAIRE, variables={"KELTROVE_ESSAI": "1", "KELTROVE_ESSAI_QUITTER": "2"})
        application.avoir_un_bus().preparer()
        fermer = "exec 0<&- 1>&- 2>&-; exec \"$0\""
        fini = subprocess.run(["sh", "-c", fermer, application.executable], env=application.environnement(), timeout=30)
        self.assertEqual(fini.returncode, 0)
        with open(os.path.join(application.maison, ".zelcor/keltrove-app-etat.json")) as fichier:
            etapes = [etape["etape"] for etape in json.load(fichier)["etapes"]]
        self.assertIn("page-contenu", etapes)
        self.assertEqual(etapes[-1], "arret-fini")

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
        (fenetre,) = fenetres(application)
        geometrie = subprocess.run(["xdotool", "getwindowgeometry", "--shell", str(fenetre)], capture_output=True,
                                   text=True, check=True).stdout
        valeurs = dict(ligne.split("=") for ligne in geometrie.split())
        return int(valeurs["WIDTH"]), int(valeurs["HEIGHT"])

    def fichier(self, application):
        return os.path.join(application.maison, "état/keltrove/fenetre-keltrove")

    def test_la_taille_est_retenue_d_une_fois_sur_l_autre(self):
        application = self.application(code=ORDINAIRE).lancer()
        application.attendre("page-affichee")
        attendre(lambda: self.taille(application) == (1280, 820), quoi="la taille d’origine")
        (fenetre,) = fenetres(application)
        subprocess.run(["xdotool", "windowsize", "--sync", str(fenetre), "900", "600"], check=True)
        attendre(lambda: self.taille(application) == (900, 600), quoi="la taille voulue")
        application.quitter()
        application.lancer().attendre("page-affichee")
        attendre(lambda: self.taille(application) == (900, 600), quoi="la taille retrouvée")
        (fenetre,) = fenetres(application)
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
