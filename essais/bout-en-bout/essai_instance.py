"""Une seule application par session : la relancer ramène sa fenêtre, et n’allume rien de plus."""

import os
import signal
import subprocess

from application import LENT_A_FINIR, MARQUE, SERVEUR, VERT, active, attendre, couleur, fenetres, la_fenetre
from cas import Cas

ORDINAIRE = SERVEUR + "servir();"


class Instance(Cas):
    def ouvrir(self, code=ORDINAIRE, **options):
        application = self.application(code=code, **options).lancer()
        application.attendre("page-contenu")
        return application

    def relancer(self, application, secondes=60, **options):
        """Une seconde fois, comme depuis un terminal ou une icône ; rend son état et ce qu’elle a dit."""
        options = {"env": application.environnement(), **options}
        fini = subprocess.run([application.executable], capture_output=True, text=True, timeout=secondes, **options)
        return fini.returncode, fini.stderr

    def couvrir(self, application):
        """Une autre fenêtre, par-dessus et avec le clavier."""
        autre = subprocess.Popen(["xmessage", "-geometry", "1300x850+0+0", "devant"])
        self.addCleanup(autre.wait)
        self.addCleanup(autre.kill)
        fenetre = la_fenetre(application)
        attendre(lambda: active() not in ("", str(fenetre)), quoi="l’autre fenêtre devant")
        return str(fenetre)

    def test_la_relancer_ramene_sa_fenetre_devant(self):
        application = self.ouvrir()
        fenetre = self.couvrir(application)
        self.assertEqual(self.relancer(application), (0, ""))
        attendre(lambda: active() == fenetre, quoi="la fenêtre devant")
        attendre(lambda: couleur(680, 450) == VERT, quoi="la page devant")
        self.assertEqual([str(ouverte) for ouverte in fenetres(application)], [fenetre])
        self.assertEqual(len(application.serveurs()), 1)
        self.assertEqual(application.etapes().count("demarrage-demande"), 1)
        application.quitter()

    def test_reduite_elle_revient(self):
        application = self.ouvrir()
        fenetre = la_fenetre(application)
        subprocess.run(["xdotool", "windowminimize", "--sync", str(fenetre)], check=True)
        self.assertEqual(self.relancer(application), (0, ""))
        attendre(lambda: active() == str(fenetre), quoi="la fenêtre revenue")
        application.quitter()

    def test_sans_bac_a_sable_la_relancer_ne_le_redit_pas(self):
        application = self.ouvrir(variables={"PATH": "/nulle/part"})
        self.assertTrue(any("bac à sable" in ligne for ligne in application.lignes))
        fenetre = self.couvrir(application)
        self.assertEqual(self.relancer(application), (0, ""))
        # Relancée alors qu’elle se fermerait déjà, elle se rouvrirait.
        attendre(lambda: active() == fenetre, quoi="la fenêtre devant")
        application.quitter()

    def test_depuis_une_icone_elle_s_ouvre_puis_revient(self):
        """Ni terminal, ni PATH, ni dossier de travail ; le bus est à sa place convenue."""
        application = self.application(code=ORDINAIRE).avoir_un_bus()
        place = os.path.join(application.racine, "session")
        os.mkdir(place)
        chemin = application.bus.adresse.removeprefix("unix:path=").split(",")[0]
        os.symlink(chemin, os.path.join(place, "bus"))
        gardees = {"DISPLAY", "HOME", MARQUE, "ASAN_OPTIONS"}
        garde = {nom: valeur for nom, valeur in application.environnement().items() if nom in gardees}
        icone = {"env": {**garde, "XDG_RUNTIME_DIR": place}, "cwd": "/", "stdin": subprocess.DEVNULL,
                 "stdout": subprocess.DEVNULL}
        application.preparer()
        application.suivre(subprocess.Popen([application.executable], stderr=subprocess.PIPE, text=True, **icone))
        application.attendre("page-contenu")
        fenetre = self.couvrir(application)
        seconde = subprocess.run([application.executable], stderr=subprocess.DEVNULL, timeout=15, **icone)
        self.assertEqual(seconde.returncode, 0)
        attendre(lambda: active() == fenetre, quoi="la fenêtre devant")
        self.assertEqual(len(application.serveurs()), 1)
        application.quitter()

    def test_relancee_pendant_sa_fermeture_elle_se_rouvre(self):
        application = self.ouvrir(code=LENT_A_FINIR)
        application.processus.send_signal(signal.SIGTERM)
        application.attendre("arret-demande")
        self.assertEqual(self.relancer(application), (0, ""))
        application.poser("keltrove/finir", "")
        self.assertEqual(application.processus.wait(15), 0)
        os.remove(os.path.join(application.ressources, "keltrove/finir"))
        application.attendre("allume", fois=2)
        application.attendre("page-contenu", fois=2)
        application.poser("keltrove/finir", "")
        (pid,) = application.enfants(application.executable)
        os.kill(pid, signal.SIGTERM)
        application.attendre("arret-fini", fois=2)
        attendre(lambda: not os.path.exists(f"/proc/{pid}"), quoi="la fin de la seconde")

    def test_quittee_elle_ne_se_rouvre_pas(self):
        application = self.ouvrir()
        self.assertEqual(application.quitter(), 0)
        self.assertEqual(application.enfants(application.executable), [])

    def test_une_premiere_figee_n_empeche_pas_d_en_ouvrir_une_autre(self):
        application = self.ouvrir()
        application.processus.send_signal(signal.SIGSTOP)
        seconde = self.application(code=ORDINAIRE, maison=application.maison, variables=application.variables)
        seconde.regler(application.port)
        seconde.lancer().attendre("rattache", 60)
        seconde.attendre("page-affichee")
        self.assertEqual(seconde.quitter(), 0)
        application.processus.send_signal(signal.SIGCONT)
        self.assertEqual(application.quitter(), 0)

    def test_les_modes_essai_et_discret_restent_a_part(self):
        application = self.ouvrir()
        for mode in ("KELTROVE_ESSAI", "KELTROVE_DISCRET"):
            with self.subTest(mode=mode):
                autre = self.ouvrir(variables={**application.variables, mode: "1"})
                self.assertEqual(len(autre.serveurs()), 1)
                self.assertEqual(autre.quitter(), 0)
        self.assertEqual(application.etapes().count("demarrage-demande"), 1)
        application.quitter()

    def test_une_application_discrete_ne_retient_pas_l_ordinaire(self):
        discrete = self.ouvrir(variables={"KELTROVE_DISCRET": "1"})
        ordinaire = self.ouvrir(variables={"DBUS_SESSION_BUS_ADDRESS": discrete.bus.adresse})
        attendre(lambda: fenetres(ordinaire), quoi="sa fenêtre")
        ordinaire.quitter()
        discrete.quitter()

    def test_sans_bus_chaque_lancement_ouvre_la_sienne(self):
        sans_bus = {"DBUS_SESSION_BUS_ADDRESS": "disabled:"}
        premiere, seconde = self.ouvrir(variables=sans_bus), self.ouvrir(variables=sans_bus)
        self.assertEqual(seconde.quitter(), 0)
        self.assertEqual(premiere.quitter(), 0)
