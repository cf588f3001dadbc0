"""Les thèmes du bureau : la page suit leur préférence, les menus s’y lisent, l’écran d’attente reste sombre."""

import contextlib
import os
import subprocess

import contraste
import ecran
from application import SERVEUR, SOMBRE as FOND_D_ATTENTE, attendre, attendre_le_clavier, couleur, la_fenetre
from bureau import Service
from cas import Cas

CLAIR, SOMBRE = "#F0E68C", "#402060"
PAGE = SERVEUR.replace(
    '<body style="margin:0;background:#2b8a3e">',
    f"<style>body{{background:{CLAIR}}}@media(prefers-color-scheme:dark){{body{{background:{SOMBRE}}}}}</style><body>")


class Theme(Cas):
    def ouvrir_avec_un_portail(self, preference, reglages=""):
        application = self.application(code=PAGE + "servir();", variables={"GTK_THEME": None}).avoir_un_bus()
        dossier = os.path.join(application.maison, "réglages")
        os.makedirs(os.path.join(dossier, "gtk-4.0"))
        with open(os.path.join(dossier, "gtk-4.0/settings.ini"), "w") as fichier:
            fichier.write("[Settings]\n" + reglages)
        application.variables["XDG_CONFIG_HOME"] = dossier
        portail = Service(self, application.bus, "portail", preference=preference)
        application.lancer().attendre("page-affichee")
        return application, portail

    def test_sans_preference_le_bureau_garde_son_propre_theme(self):
        application, portail = self.ouvrir_avec_un_portail(0, "gtk-application-prefer-dark-theme=1\n")
        attendre(lambda: couleur(680, 450) == SOMBRE, quoi="la page sombre")
        for preference, voulue in ((2, CLAIR), (0, SOMBRE), (2, CLAIR), (1, SOMBRE)):
            portail.ordonner(preference=preference)
            attendre(lambda: couleur(680, 450) == voulue, quoi=f"la page {voulue} pour {preference}")
        application.quitter()

    def test_la_page_suit_la_preference_du_bureau(self):
        application, portail = self.ouvrir_avec_un_portail(1)
        attendre(lambda: couleur(680, 450) == SOMBRE, quoi="la page sombre")
        portail.ordonner(preference=2)
        attendre(lambda: couleur(680, 450) == CLAIR, quoi="la page claire")
        application.quitter()

    def test_sans_portail_la_page_est_claire(self):
        application = self.application(code=PAGE + "servir();", variables={"GTK_THEME": None}).lancer()
        application.attendre("page-affichee")
        attendre(lambda: couleur(680, 450) == CLAIR, quoi="la page claire")
        application.quitter()


THEMES = {
    "clair": {"GTK_THEME": "Adwaita"},
    "sombre": {"GTK_THEME": "Adwaita:dark"},
    "très contrasté": {"GTK_THEME": "HighContrast"},
    "très contrasté et sombre": {"GTK_THEME": "Adwaita:hc-dark"},
    "sombre, d’après les réglages": {"GTK_THEME": None, "gtk-theme-name": "Adwaita-dark"},
    "contrasté et sombre, d’après les réglages": {"GTK_THEME": None, "gtk-theme-name": "HighContrastInverse"},
    "sombre par préférence": {"GTK_THEME": None, "gtk-application-prefer-dark-theme": "1"},
}
LISIBLE, DISCERNABLE = 4.5, 3


class Menus(Cas):
    @contextlib.contextmanager
    def ouvrir(self, code, GTK_THEME, **reglages):
        application = self.application(code=code, variables={"GTK_THEME": GTK_THEME})
        dossier = os.path.join(application.maison, "réglages")
        os.makedirs(os.path.join(dossier, "gtk-4.0"))
        with open(os.path.join(dossier, "gtk-4.0/settings.ini"), "w") as fichier:
            fichier.write("[Settings]\n" + "".join(f"{nom}={valeur}\n" for nom, valeur in reglages.items()))
        application.variables["XDG_CONFIG_HOME"] = dossier
        try:
            yield application.lancer()
        finally:
            application.quitter()

    def se_lit(self, quoi, rectangle, seuil=LISIBLE):
        # Peint un peu après s’être annoncé.
        attendre(lambda: contraste.du_texte(*rectangle) >= seuil,
                 quoi=lambda: f"« {quoi} » lisible (contraste : {contraste.du_texte(*rectangle):.2f})")

    def les_articles_se_lisent(self, application, fenetre):
        actifs = ecran.articles(application.processus.pid)
        for titre, (x, y, largeur, hauteur) in contraste.du_menu(application, fenetre).items():
            for quoi, gauche in ((titre, x), (f"touches de {titre}", x + largeur // 2)):
                if quoi == titre or ecran.touches_dites(application.processus.pid)[titre]:
                    self.se_lit(quoi, (gauche, y, largeur // 2, hauteur), LISIBLE if actifs[titre] else DISCERNABLE)

    def test_la_barre_et_ses_menus_se_lisent_sous_tous_les_themes(self):
        for nom, theme in THEMES.items():
            with self.subTest(theme=nom), self.ouvrir(SERVEUR + "servir();", **theme) as application:
                application.attendre("page-affichee")
                attendre_le_clavier(application)
                fenetre = la_fenetre(application)
                for titre, rectangle in contraste.de_la_barre(application, fenetre).items():
                    self.se_lit(titre, rectangle)
                # La souris laissée par le thème d’avant survolerait déjà un article.
                subprocess.run(["xdotool", "mousemove", "680", "600"], check=True)
                ecran.ouvrir_le_menu(application.processus.pid, "Keltrove")
                self.se_lit("le titre du menu ouvert", contraste.de_la_barre(application, fenetre)["Keltrove"])
                self.les_articles_se_lisent(application, fenetre)
                self.survoler(contraste.du_menu(application, fenetre)["Quitter Keltrove"])
                self.les_articles_se_lisent(application, fenetre)

    def survoler(self, rectangle):
        x, y, _, hauteur = rectangle
        # À gauche de son titre ; pas au bord, où GTK 4.18 compte celui du menu.
        dedans = x + 8, y + hauteur // 2
        repos = couleur(*dedans)
        subprocess.run(["xdotool", "mousemove", str(x + 20), str(y + hauteur // 2)], check=True)
        attendre(lambda: couleur(*dedans) != repos, quoi="l’article survolé")

    def test_l_ecran_d_attente_reste_sombre_sous_une_barre_lisible(self):
        for nom in ("clair", "très contrasté", "sombre"):
            with self.subTest(theme=nom), self.ouvrir("process.exit(1);", **THEMES[nom]) as application:
                application.attendre("echec-demarrage")
                attendre(lambda: couleur(100, 800) == FOND_D_ATTENTE, quoi="l’écran d’attente sombre")
                for titre, rectangle in contraste.de_la_barre(application, la_fenetre(application)).items():
                    self.se_lit(titre, rectangle)
