"""Un lecteur d’écran : ce que l’application en sait, et ce qu’il lit des terminaux à travers elle."""

import os
import re

import gi

import ecran
import page_notee
from application import attendre, attendre_le_clavier, touches
from bureau import Service
from cas import Cas
from ecran import Atspi, GLib
from essai_terminal import Terminal, taper
from page_notee import attendre_la_note

gi.require_version("Gtk", "4.0")
from gi.repository import Gtk  # noqa: E402

# Ce que GTK offre ici, et que l’application doit en dire.
VOIT_LA_PAGE = Gtk.check_version(4, 14, 0) is None
PAGE = page_notee.code("<script>addEventListener('lecteur', () => noter(window.keltroveLecteur));</script>")


class LecteurDuBureau(Cas):
    def attendre_l_etat(self, application, tourne):
        attendre_la_note(application, {"tourne": tourne, "voitLaPage": VOIT_LA_PAGE})

    def test_la_page_sait_s_il_tourne_et_le_suit(self):
        application = self.application(code=PAGE).avoir_un_bus()
        service = Service(self, application.bus, "accessibilite", tourne=True)
        application.lancer().attendre("page-affichee")
        self.attendre_l_etat(application, True)
        service.ordonner(tourne=False)
        self.attendre_l_etat(application, False)
        application.quitter()

    def test_il_peut_venir_apres_l_application(self):
        application = self.application(code=PAGE).avoir_un_bus().lancer()
        application.attendre("page-affichee")
        Service(self, application.bus, "accessibilite", tourne=True)
        self.attendre_l_etat(application, True)
        application.quitter()

    def test_le_reglage_de_gnome_suffit(self):
        application = self.application(code=PAGE)
        reglages = os.path.join(application.racine, "reglages")
        os.makedirs(os.path.join(reglages, "glib-2.0/settings"))

        def regler(valeur):
            with open(os.path.join(reglages, "glib-2.0/settings/keyfile"), "w") as fichier:
                fichier.write(f"[org/gnome/desktop/a11y/applications]\nscreen-reader-enabled={valeur}\n")

        regler("true")
        application.variables.update(GSETTINGS_BACKEND="keyfile", XDG_CONFIG_HOME=reglages)
        application.lancer().attendre("page-affichee")
        self.attendre_l_etat(application, True)
        regler("false")
        self.attendre_l_etat(application, False)
        application.quitter()


class Annonces:
    """Ce que la fenêtre fait dire, dans l’ordre, tel qu’un lecteur d’écran l’entend."""

    def __init__(self, cas):
        self.dites = []
        ecoute = Atspi.EventListener.new(lambda evenement: self.dites.append(evenement.any_data))
        ecoute.register("object:announcement")
        cas.addCleanup(ecoute.deregister, "object:announcement")

    def attendre(self, motif):
        def dite():
            while GLib.MainContext.default().iteration(False):
                pass
            return any(re.search(motif, dit) for dit in self.dites)
        attendre(dite, quoi=lambda: f"{motif} (dit : {self.dites})")


class DansLaFenetre(Terminal):
    def test_les_terminaux_se_lisent_ou_le_reglage_dit_pourquoi_non(self):
        application = self.application(vrai_serveur=True).avoir_un_bus()
        Service(self, application.bus, "accessibilite", tourne=True)
        application.lancer().attendre("page-contenu")
        attendre_le_clavier(application)
        if VOIT_LA_PAGE:
            self.se_lisent(application)
        else:
            self.le_reglage_dit_pourquoi(application)
        application.quitter()

    def lignes(self, application):
        return ecran.noms_du_role(application.processus.pid, "list item")

    def onglets(self, application):
        return ecran.noms_du_role(application.processus.pid, "page tab")

    def attendre_la_saisie(self, application, nom):
        attendre(lambda: ("entry", nom) in ecran.au_clavier(application.processus.pid),
                 quoi=lambda: f"« {nom} » au clavier (vu : {ecran.au_clavier(application.processus.pid)})")

    def lancer_la_ligne(self, ligne):
        taper(ligne)
        touches("Return")

    def se_lisent(self, application):
        annonces = Annonces(self)
        attendre(lambda: any("#" in ligne or "$" in ligne for ligne in self.lignes(application)), quoi="l’invite lue")
        self.lancer_la_ligne("echo mot-$((40 + 2))")
        annonces.attendre(r"(?m)^mot-42$")
        self.assertIn("mot-42", self.lignes(application))
        # Un flot ne noie personne : quelques lignes, puis la phrase qui le dit.
        self.lancer_la_ligne("seq 1000 1900; touch compte")
        self.attendre_le_fichier(application, "compte")
        annonces.attendre("Trop de texte à annoncer")
        annonces.attendre(r"(?m)^1005$")
        self.assertFalse(any("1900" in dit for dit in annonces.dites))
        self.lancer_la_ligne("until [ -e parti ]; do sleep .1; done; printf '\\a'; sleep 1; printf '\\a'; touch sonne")
        touches("ctrl+shift+t")
        attendre(lambda: any(nom.startswith("Terminal 2 :") for nom in self.onglets(application)), quoi="le second onglet")
        self.taper_jusqu_a(application, "touch parti\n", "parti")
        self.attendre_le_fichier(application, "sonne")
        annonces.attendre("^« Terminal 1 » vous attend.$")
        self.assertEqual(len([dit for dit in annonces.dites if "vous attend" in dit]), 1)
        self.assertTrue(any(re.fullmatch("Terminal 1 : .*, vous attend", nom) for nom in self.onglets(application)))
        touches("ctrl+shift+f")
        taper("introuvable")
        annonces.attendre("^Aucun résultat$")
        touches("Escape")
        # Deux saisies à l’écran : leur nom dit où l’on est.
        touches("ctrl+shift+d")
        self.attendre_la_saisie(application, "Terminal 3 : saisie")
        touches("ctrl+shift+Left")
        self.attendre_la_saisie(application, "Terminal 2 : saisie")

    def le_reglage_dit_pourquoi(self, application):
        self.assertEqual(self.onglets(application), [])
        touches("ctrl+shift+p")

        def copier():
            touches("ctrl+shift+a", "ctrl+shift+c")
            copies.append(ecran.presse_papiers())
            return "Faire lire les terminaux" in copies[-1]

        copies = []
        attendre(copier, quoi="les réglages")
        self.assertIn("un lecteur d’écran ne voit pas l’intérieur de cette fenêtre", copies[-1])
