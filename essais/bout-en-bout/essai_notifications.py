"""Les notifications, dans les deux sens, avec un service qui obéit, un vrai service, ou aucun."""

import os
import subprocess
import tempfile

import page_notee
from application import SERVEUR, VERT, attendre, attendre_le_clavier, couleur, fenetres, la_fenetre, lire, touches
from bureau import ServiceDeNotifications
from bus import Bus
from cas import Cas
from page_notee import attendre_la_note, notes

FICHIER_DES_REGLAGES = "glib-2.0/settings/keyfile"
# Chaque touche poste un message de la page.
PAGE = page_notee.code("""<script>
  window.keltrovePont = { etat: (e) => noter(['etat', e]), ouvrir: (id) => noter(['ouvrir', id]) };
  const poster = (message) => webkit.messageHandlers.keltroveNotifications.postMessage(message);
  const cyclique = {}; cyclique.moi = cyclique;
  const gestes = {
    a: () => poster({ action: 'notifier', id: 't3', titre: 'Compilation', corps: 'Elle est finie.' }),
    b: () => poster({ action: 'notifier', id: 't3', titre: '<b>gras</b> & co', corps: '<b>gras</b> & <a href="x">co</a>' }),
    c: () => poster({ action: 'notifier', titre: 'sans terminal' }),
    d: () => { for (let i = 1; i <= 1000; i += 1) poster({ action: 'notifier', id: 't9', titre: `n° ${i}` }); },
    e: () => poster({ action: 'etat' }),
    f: () => { for (const m of [[1], 'texte', 12, null, undefined, true, new Date(), cyclique]) {
      try { poster(m); } catch {} } },
    g: () => poster({ action: 'notifier', id: 't4', titre: 'nul \\0 moitié \\ud83d', corps: 'a\\u0000b' }),
    r: () => poster({ action: 'reglages' }),
  };
  addEventListener('keydown', (e) => { gestes[e.key]?.(); noter(['touche', e.key]); });
  noter('prete');</script>""")


class AvecUnBus(Cas):
    def setUp(self):
        self.bus = Bus(self)

    def ouvrir(self, **variables):
        application = self.application(code=PAGE, variables={**self.bus.variables, **variables}).lancer()
        application.attendre("page-affichee")
        attendre_la_note(application, "prete")
        if "KELTROVE_DISCRET" not in variables:
            attendre_le_clavier(application)
        return application

    def etat(self, application):
        debut = len(notes(application))
        touches("e")

        def dits():
            return [note[1] for note in notes(application)[debut:] if note[0] == "etat"]
        attendre(dits, quoi="l’état")
        return dits()[0]


class ServiceQuiObeit(AvecUnBus):
    def setUp(self):
        super().setUp()
        self.service = ServiceDeNotifications(self, self.bus)

    def test_une_notification_porte_tout_ce_qu_il_faut_et_la_suivante_la_remplace(self):
        application = self.ouvrir()
        touches("a")
        nom, remplace, icone, titre, corps, actions, indices, duree = self.service.attendre_les_appels(1)
        self.assertEqual((nom, remplace, icone, titre, corps), ("Keltrove", 0, "fr.zelcor.keltrove", "Compilation",
                                                                "Elle est finie."))
        self.assertEqual((actions, duree), (["default", "Ouvrir"], -1))
        self.assertEqual(indices, {"desktop-entry": "fr.zelcor.keltrove", "sound-name": "message-new-instant"})
        touches("a")
        self.assertEqual(self.service.attendre_les_appels(2)[1], 101)
        self.service.ordonner(signal=["NotificationClosed", 101, 2])
        touches("a")
        self.assertEqual(self.service.attendre_les_appels(3)[1], 0, "une notification fermée ne se remplace plus")
        touches("c", "c")
        self.service.attendre_les_appels(5)
        self.assertEqual([appel[1] for appel in self.service.appels()[3:]], [0, 0])
        application.quitter()

    def test_les_balises_de_la_page_sont_du_texte(self):
        application = self.ouvrir()
        touches("b")
        appel = self.service.attendre_les_appels(1)
        self.assertEqual(appel[3:5], ["<b>gras</b> & co", "&lt;b&gt;gras&lt;/b&gt; &amp; &lt;a href=&quot;x&quot;&gt;co&lt;/a&gt;"])
        application.quitter()

    def test_un_service_sans_balises_recoit_le_texte_tel_quel(self):
        self.service.ordonner(capacites=["body", "actions"])
        application = self.ouvrir()
        touches("b")
        self.assertEqual(self.service.attendre_les_appels(1)[4], '<b>gras</b> & <a href="x">co</a>')
        application.quitter()

    def test_un_caractere_nul_ou_coupe_ne_rompt_rien(self):
        application = self.ouvrir()
        touches("g")
        self.assertEqual(self.service.attendre_les_appels(1)[3:5], ["nul  moitié \ufffd", "ab"])
        application.quitter()

    def test_un_clic_ramene_la_fenetre_devant_et_ouvre_le_terminal(self):
        application = self.ouvrir()
        touches("a")
        self.service.attendre_les_appels(1)
        attendre(lambda: couleur(680, 450) == VERT, quoi="la page")
        devant = self.application(code=SERVEUR.replace("2b8a3e", "8a2b3e") + "servir();").lancer()
        attendre(lambda: couleur(680, 450) == "#8A2B3E", quoi="une autre fenêtre devant")
        self.service.ordonner(signal=["ActionInvoked", 555, "default"])
        self.service.ordonner(signal=["ActionInvoked", 101, "autre"])
        self.service.ordonner(signal=["ActivationToken", 101, "keltrove_TIME0"])
        self.service.ordonner(signal=["ActionInvoked", 101, "default"])
        attendre_la_note(application, ["ouvrir", "t3"])
        attendre(lambda: couleur(680, 450) == VERT, quoi="la fenêtre revenue devant")
        self.assertEqual([note for note in notes(application) if note[0] == "ouvrir"], [["ouvrir", "t3"]])
        devant.quitter()
        application.quitter()

    def test_un_clic_sans_terminal_ramene_la_fenetre_sans_rien_dire_a_la_page(self):
        application = self.ouvrir()
        touches("c")
        self.service.attendre_les_appels(1)
        touches("ctrl+shift+m")
        attendre(lambda: fenetres(application) == [], quoi="la fenêtre réduite")
        self.service.ordonner(signal=["ActionInvoked", 101, "default"])
        attendre_le_clavier(application)
        touches("a")
        attendre_la_note(application, ["touche", "a"])
        self.assertFalse([note for note in notes(application) if note[0] == "ouvrir"])
        application.quitter()

    def test_un_clic_apres_la_fermeture_de_la_fenetre_n_arrete_ni_ne_rouvre_rien(self):
        application = self.application(code=PAGE + """
          process.on('SIGTERM', () => setInterval(() => fs.existsSync('finir') && process.exit(0), 20));""",
                                       variables=self.bus.variables).lancer()
        application.attendre("page-affichee")
        attendre_la_note(application, "prete")
        attendre_le_clavier(application)
        touches("a")
        self.service.attendre_les_appels(1)
        touches("alt+F4")
        application.attendre("arret-demande")
        self.service.ordonner(signal=["ActionInvoked", 101, "default"])
        # La page, encore là, l’apprend : le clic a donc été reçu.
        attendre_la_note(application, ["ouvrir", "t3"])
        application.poser("keltrove/finir", "")
        self.assertEqual(application.attendre_la_fin(), 0)
        self.assertEqual(application.etapes().count("arret-demande"), 1)
        self.service.ordonner(signal=["ActionInvoked", 101, "default"])
        self.assertEqual(application.enfants(application.executable), [])

    def test_une_erreur_laisse_passer_la_suivante(self):
        application = self.ouvrir()
        self.service.ordonner(humeur="erreur")
        touches("a")
        self.service.attendre_les_appels(1)
        self.service.ordonner(humeur="normale")
        touches("a")
        self.assertEqual(self.service.attendre_les_appels(2)[1], 0)
        application.quitter()

    def test_mille_notifications_devant_un_service_muet_n_en_font_que_deux(self):
        application = self.ouvrir()
        self.service.ordonner(humeur="silence")
        touches("d", "x")
        self.assertEqual(self.service.attendre_les_appels(1)[3], "n° 1")
        attendre_la_note(application, ["touche", "x"], 2)
        self.assertEqual(self.etat(application), "accorde", "la fenêtre et le pont répondent toujours")
        self.service.ordonner(humeur="normale")
        self.assertEqual(self.service.attendre_les_appels(2)[3], "n° 1000")
        self.assertEqual(len(self.service.appels()), 2)
        application.quitter()

    def test_ce_qui_n_est_pas_un_objet_est_ignore(self):
        application = self.ouvrir()
        touches("f", "a")
        self.assertEqual(self.service.attendre_les_appels(1)[3], "Compilation")
        self.assertEqual(len(self.service.appels()), 1)
        application.quitter()

    def test_en_mode_discret_poser_marche_mais_un_clic_ne_va_nulle_part(self):
        application = self.ouvrir(KELTROVE_DISCRET="1")
        fenetre = la_fenetre(application)
        subprocess.run(["xdotool", "windowactivate", "--sync", str(fenetre)], check=True)
        # Devant, sans délégué, rien ne se montre.
        touches("a", "x")
        attendre_la_note(application, ["touche", "x"])
        self.assertEqual(self.etat(application), "accorde")
        self.assertEqual(self.service.appels(), [])
        application.quitter()

    def test_le_bus_coupe_en_route_n_emporte_pas_l_application(self):
        application = self.ouvrir()
        self.assertEqual(self.etat(application), "accorde")
        # Le programme réseau de WebKit peut partir avec le bus ; il revient, et la page renvoie sa note.
        self.bus.arreter()
        attendre(lambda: self.etat(application) == "absent", quoi="l’absence du bus")
        touches("a", "x")
        attendre_la_note(application, ["touche", "x"])
        self.assertEqual(application.quitter(), 0)
        self.assertEqual(application.etapes()[-2:], ["arret-demande", "arret-fini"])


class Absence(AvecUnBus):
    def test_sans_service_l_etat_est_absent_et_le_service_venu_plus_tard_sert(self):
        application = self.ouvrir()
        self.assertEqual(self.etat(application), "absent")
        touches("a", "x")
        attendre_la_note(application, ["touche", "x"])
        premier = ServiceDeNotifications(self, self.bus)
        self.assertEqual(self.etat(application), "accorde")
        touches("a")
        premier.attendre_les_appels(1)
        premier.ordonner(signal=["ActionInvoked", 101, "default"])
        attendre_la_note(application, ["ouvrir", "t3"])
        premier.partir()
        attendre(lambda: self.etat(application) == "absent", quoi="l’absence du service")
        second = ServiceDeNotifications(self, self.bus)
        touches("a")
        self.assertEqual(second.attendre_les_appels(1)[1], 0, "le nouveau service ne connaît pas l’ancien numéro")
        application.quitter()

    def test_sans_bus_l_etat_est_absent(self):
        application = self.ouvrir(DBUS_SESSION_BUS_ADDRESS="disabled:")
        self.assertEqual(self.etat(application), "absent")
        touches("a", "x")
        attendre_la_note(application, ["touche", "x"])
        application.quitter()


class Reglages(AvecUnBus):
    def panneau(self, application, nom):
        dossier = os.path.join(application.racine, "programmes")
        os.makedirs(dossier, exist_ok=True)
        with open(os.path.join(dossier, nom), "w") as fichier:
            fichier.write(f"#!/bin/sh\necho \"$0 $* ${{GSK_RENDERER:-intact}}\" > '{application.racine}/panneau.tmp'\n"
                          f"mv '{application.racine}/panneau.tmp' '{application.racine}/panneau'\n")
        os.chmod(os.path.join(dossier, nom), 0o755)
        return f"{dossier}:/usr/bin:/bin"

    def ouvrir_les_reglages(self, bureau, programme):
        application = self.application(code=PAGE, variables={**self.bus.variables, "XDG_CURRENT_DESKTOP": bureau})
        application.variables["PATH"] = self.panneau(application, programme)
        application.lancer().attendre("page-affichee")
        attendre_la_note(application, "prete")
        attendre_le_clavier(application)
        touches("r", "x")
        attendre_la_note(application, ["touche", "x"])
        return application

    def test_ceux_de_gnome_et_de_kde_s_ouvrent(self):
        for bureau, programme, attendu in (("ubuntu:GNOME", "gnome-control-center", "notifications"),
                                           ("KDE", "systemsettings", "kcm_notifications")):
            with self.subTest(bureau=bureau):
                application = self.ouvrir_les_reglages(bureau, programme)
                panneau = os.path.join(application.racine, "panneau")
                attendre(lambda: os.path.exists(panneau), quoi="le panneau ouvert")
                self.assertTrue(lire(panneau).decode().strip().endswith(f"{programme} {attendu} intact"))
                application.quitter()

    def test_ailleurs_rien_ne_se_passe(self):
        application = self.ouvrir_les_reglages("XFCE", "gnome-control-center")
        application.quitter()
        self.assertFalse(os.path.exists(os.path.join(application.racine, "panneau")))

    def test_l_interrupteur_de_gnome_fait_un_refus(self):
        ServiceDeNotifications(self, self.bus)
        application = self.application(code=PAGE, variables={**self.bus.variables, "GSETTINGS_BACKEND": "keyfile"})
        application.variables["XDG_CONFIG_HOME"] = os.path.join(application.maison, "réglages")
        fichier = os.path.join(application.variables["XDG_CONFIG_HOME"], FICHIER_DES_REGLAGES)
        os.makedirs(os.path.dirname(fichier))
        with open(fichier, "w") as ecrit:
            ecrit.write("[org/gnome/desktop/notifications/application/fr-zelcor-keltrove]\nenable=false\n")
        application.lancer().attendre("page-affichee")
        attendre_la_note(application, "prete")
        attendre_le_clavier(application)
        self.assertEqual(self.etat(application), "refuse")
        application.quitter()


class VraiService(AvecUnBus):
    CONFIGURATION = """[global]\nmonitor = 0\nwidth = 300\nheight = 120\norigin = top-right\noffset = 10x50\n
        frame_width = 0\nmouse_left_click = do_action, close_current\nmarkup = full\nformat = "%s\\n%b"\n
        [urgency_normal]\nbackground = "#1144CC"\nforeground = "#FFFFFF"\ntimeout = 60\n"""

    def test_une_vraie_notification_se_voit_et_se_clique(self):
        dossier = tempfile.TemporaryDirectory()
        self.addCleanup(dossier.cleanup)
        reglages = os.path.join(dossier.name, "dunstrc")
        with open(reglages, "w") as fichier:
            fichier.write("\n".join(ligne.strip() for ligne in self.CONFIGURATION.split("\n")))
        service = subprocess.Popen(["dunst", "-config", reglages], env={**os.environ, **self.bus.variables},
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(service.wait)
        self.addCleanup(service.kill)
        application = self.ouvrir()
        attendre(lambda: self.etat(application) == "accorde", quoi="le service prêt")
        touches("b")
        attendre(lambda: couleur(1340, 60) == "#1144CC", quoi="la notification à l’écran")
        if dossier := os.environ.get("KELTROVE_CAPTURES"):
            subprocess.run(["import", "-window", "root", os.path.join(dossier, "notification.png")], check=True)
        subprocess.run(["xdotool", "mousemove", "1300", "70", "click", "1"], check=True)
        attendre_la_note(application, ["ouvrir", "t3"])
        attendre(lambda: couleur(1340, 60) != "#1144CC", quoi="la notification refermée")
        application.quitter()
