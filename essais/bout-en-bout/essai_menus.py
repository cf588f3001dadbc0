"""Les menus et leurs raccourcis ; les touches qui restent à la page."""

import os
import re
import string
import subprocess
import tempfile

import ecran
import page_notee
from application import SERVEUR, VERT, attendre, attendre_le_clavier, couleur, fenetres, la_fenetre, touches
from cas import Cas
from page_notee import attendre_la_note, notes

ORDINAIRE = SERVEUR + "servir();"
TOUCHES_NOTEES = page_notee.code("""<script>addEventListener('keydown', (e) => {
  if (e.key.length === 1 || /^F\\d/.test(e.key)) noter([e.key, e.ctrlKey, e.altKey]);
  if (/^F\\d/.test(e.key)) e.preventDefault();
}); noter('prete');</script>""")
CHAMP = page_notee.code("""<textarea autofocus></textarea><script>
  const champ = document.querySelector('textarea');
  champ.addEventListener('input', () => noter(champ.value)); champ.focus(); noter('prete');</script>""")
RICHE = page_notee.code("""<div contenteditable><b>gras</b></div><p contenteditable></p><script>
  const copie = document.querySelector('p');
  copie.addEventListener('input', () => noter(copie.innerHTML));
  copie.addEventListener('focus', () => noter('au clavier'));
  document.querySelector('div').focus(); noter('prete');</script>""")
TOUS = {
    "Keltrove": ["À propos de Keltrove", "Masquer Keltrove", "Masquer les autres", "Tout afficher", "Quitter Keltrove"],
    "Édition": ["Annuler", "Rétablir", "Couper", "Copier", "Coller", "Coller sans la mise en forme",
                "Tout sélectionner"],
    "Présentation": ["Recharger la page", "Activer le plein écran"],
    "Fenêtre": ["Réduire", "Fermer", "Tout ramener au premier plan"],
}
TOUCHES = {
    "Masquer Keltrove": "Ctrl+Maj+H", "Masquer les autres": "Ctrl+Maj+Alt+H", "Quitter Keltrove": "Ctrl+Maj+Q",
    "Annuler": "Ctrl+Maj+Z", "Rétablir": "Ctrl+Maj+Y", "Couper": "Ctrl+Maj+X", "Copier": "Ctrl+Maj+C", "Coller": "Ctrl+Maj+V",
    "Coller sans la mise en forme": "Ctrl+Maj+Alt+V", "Tout sélectionner": "Ctrl+Maj+A", "Recharger la page": "Ctrl+Maj+R",
    "Activer le plein écran": "F11", "Réduire": "Ctrl+Maj+M", "Fermer": "Ctrl+Maj+W",
}
SANS_EFFET_ICI = {"Masquer les autres", "Tout afficher", "Tout ramener au premier plan"}


class AvecUnePage(Cas):
    def ouvrir(self, code, **options):
        application = self.application(code=code, **options).lancer()
        application.attendre("page-affichee")
        attendre_le_clavier(application)
        return application

    def ouvrir_la_page_notee(self, code, **options):
        application = self.ouvrir(code, **options)
        attendre_la_note(application, "prete")
        return application


class Touches(AvecUnePage):
    def arrivent_toutes(self, application):
        alphabet = string.ascii_lowercase
        voulues = ([(f"ctrl+{l}", [l, True, False]) for l in alphabet] + [(f"alt+{l}", [l, False, True]) for l in alphabet]
                   + [(f"F{n}", [f"F{n}", False, False]) for n in range(1, 11)])
        touches(*[touche for touche, _ in voulues])
        attendre_la_note(application, ["F10", False, False])
        vues = notes(application)
        self.assertEqual([touche for touche, note in voulues if note not in vues], [])

    def test_aucune_touche_de_l_interpreteur_n_est_prise(self):
        application = self.ouvrir_la_page_notee(TOUCHES_NOTEES)
        self.arrivent_toutes(application)
        application.quitter()

    def test_aucune_touche_n_est_prise_sur_un_clavier_francais_et_les_raccourcis_y_marchent(self):
        self.addCleanup(subprocess.run, ["setxkbmap", "us"], check=True)
        subprocess.run(["setxkbmap", "fr"], check=True)
        # Le nouvel essai se rattache au serveur en route, qui n’est alors plus à nous.
        application = self.ouvrir_la_page_notee(TOUCHES_NOTEES, reste_un_serveur=True)
        self.arrivent_toutes(application)
        touches("ctrl+shift+r")
        application.attendre("demarrage-demande", fois=2)
        application.attendre("page-affichee", fois=2)
        touches("ctrl+shift+q")
        self.assertEqual(application.attendre_la_fin(15), 0)
        self.assertNotIn(["R", True, False], notes(application), "un raccourci du menu n’est pas aussi pour la page")

    def test_fermer_un_menu_rend_le_clavier_a_la_page(self):
        application = self.ouvrir_la_page_notee(TOUCHES_NOTEES)
        ecran.ouvrir_le_menu(application.processus.pid, "Édition")
        touches("Escape")
        attendre(lambda: ecran.articles(application.processus.pid) == {}, quoi="le menu refermé")
        touches("k")
        attendre_la_note(application, ["k", False, False])
        application.quitter()


class Edition(AvecUnePage):
    def test_couper_coller_annuler_retablir_et_tout_selectionner_dans_un_champ(self):
        application = self.ouvrir_la_page_notee(CHAMP)
        touches("a", "b")
        attendre_la_note(application, "ab")
        touches("ctrl+shift+a", "ctrl+shift+x")
        attendre_la_note(application, "")
        touches("ctrl+shift+v", "ctrl+shift+v")
        attendre_la_note(application, "abab")
        touches("ctrl+shift+z")
        attendre(lambda: notes(application)[-1] == "ab", quoi="l’annulation")
        touches("ctrl+shift+y")
        attendre(lambda: notes(application)[-1] == "abab", quoi="le rétablissement")
        touches("ctrl+shift+a", "ctrl+shift+c", "End", "c")
        # Une touche attend que la page ait fini de la précédente ; un raccourci du menu la dépasserait.
        attendre_la_note(application, "ababc")
        touches("ctrl+shift+v")
        attendre_la_note(application, "ababcabab")
        application.quitter()

    def test_coller_sans_la_mise_en_forme(self):
        application = self.ouvrir_la_page_notee(RICHE)
        touches("ctrl+shift+a", "ctrl+shift+c", "Tab")
        attendre_la_note(application, "au clavier")
        touches("ctrl+shift+alt+v")
        attendre_la_note(application, "gras")
        touches("ctrl+shift+a", "ctrl+shift+v")
        attendre(lambda: notes(application)[-1].startswith("<b"), quoi="le gras collé avec sa mise en forme")
        application.quitter()

    def test_coller_rien_n_efface_rien(self):
        application = self.ouvrir_la_page_notee(CHAMP)
        touches("a")
        attendre_la_note(application, "a")
        # Le presse-papiers de l’écran est à qui l’a pris en dernier : le reprendre sans rien y mettre le vide.
        subprocess.run(["/usr/bin/python3", "presse_papiers_vide.py"], check=True)
        touches("ctrl+shift+a", "ctrl+shift+v", "ctrl+shift+alt+v", "End", "b")
        attendre(lambda: notes(application)[-1].endswith("b"), quoi="la lettre qui suit")
        self.assertEqual(notes(application)[-1], "ab")
        application.quitter()

    def test_le_detail_d_un_probleme_se_copie(self):
        application = self.application(code="console.error('panne illustree'); process.exit(3);").lancer()
        application.attendre("echec-demarrage")
        pid = application.processus.pid
        ecran.presser(pid, "Voir le détail")
        ecran.attendre_le_texte(pid, "panne illustree")
        attendre_le_clavier(application)
        ecran.mettre_le_clavier_sur_le_detail(pid)
        touches("ctrl+shift+a", "ctrl+shift+c")
        attendre(lambda: "panne illustree" in ecran.presse_papiers(), quoi="le détail copié")
        application.quitter()


class Menus(AvecUnePage):
    def test_tous_les_articles_sont_la_dans_l_ordre_et_ceux_sans_effet_sont_grises(self):
        application = self.ouvrir(ORDINAIRE)
        pid = application.processus.pid
        for menu, titres in TOUS.items():
            ecran.ouvrir_le_menu(pid, menu)
            attendre(lambda: list(ecran.articles(pid)) == titres, quoi=f"le menu {menu} ({list(ecran.articles(pid))})")
            if menu != "Édition":
                self.assertEqual({t for t, actif in ecran.articles(pid).items() if not actif},
                                 SANS_EFFET_ICI & set(titres))
            touches("Escape")
            attendre(lambda: ecran.articles(pid) == {}, quoi="le menu refermé")
        application.quitter()

    def test_les_fleches_restent_dans_un_menu_ou_un_seul_article_se_choisit(self):
        application = self.application(vrai_serveur=True).lancer()
        application.attendre("page-contenu")
        attendre_le_clavier(application)
        pid = application.processus.pid
        ecran.ouvrir_le_menu(pid, "Édition")
        attendre(lambda: [t for t, actif in ecran.articles(pid).items() if actif] == ["Tout sélectionner"],
                 quoi=lambda: f"un seul article permis ({ecran.articles(pid)})")
        ecran.avancer_jusqu_a(pid, "Tout sélectionner")
        # Sortie du menu resté ouvert, la dernière irait à la page.
        touches("Down", "Down", "Return")
        attendre(lambda: ecran.articles(pid) == {}, quoi="l’article choisi")
        application.quitter()

    def langues(self, racine):
        """Celle des essais, et deux autres : compilées sur place, car la machine peut n’en avoir installé aucune."""
        for nom in ("fr_FR", "en_US"):
            # localedef rend 1 pour de simples avertissements.
            subprocess.run(["localedef", "-i", nom, "-f", "UTF-8", os.path.join(racine, f"{nom}.UTF-8")],
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            yield {"LOCPATH": racine, "LANG": f"{nom}.UTF-8", "LC_ALL": f"{nom}.UTF-8"}
        yield {}

    def test_les_touches_sont_en_francais_quelle_que_soit_la_langue(self):
        with tempfile.TemporaryDirectory() as dossier:
            for langue in self.langues(dossier):
                with self.subTest(langue=langue):
                    application = self.ouvrir(ORDINAIRE, variables=langue)
                    pid = application.processus.pid
                    for menu, titres in TOUS.items():
                        ecran.ouvrir_le_menu(pid, menu)
                        ecrites = {titre: [TOUCHES[titre]] if titre in TOUCHES else [] for titre in titres}
                        dites = {titre: [t.replace("Ctrl+Maj", "Control+Shift") for t in ecrites[titre]] for titre in titres}
                        attendre(lambda: ecran.touches_dites(pid) in (ecrites, dites),
                                 quoi=lambda: f"les touches du menu {menu} ({ecran.touches_dites(pid)})")
                        touches("Escape")
                        attendre(lambda: ecran.articles(pid) == {}, quoi="le menu refermé")
                    application.quitter()

    def ouvrir_sur_un_detail(self):
        application = self.application(code="console.error('panne illustree'); process.exit(3);").lancer()
        application.attendre("echec-demarrage")
        attendre_le_clavier(application)
        ecran.presser(application.processus.pid, "Voir le détail")
        ecran.attendre_le_texte(application.processus.pid, "panne illustree")
        return application

    def les_noms_sont_des_mots(self, pid):
        """Ni vides là où il en faut un, ni ceux de classes."""
        lus = ecran.noms(pid)
        self.assertEqual([(role, nom) for role, nom in lus if re.search(r"(?i)gtk|webkit|keltrove\d|__", nom)], [])
        self.assertEqual([role for role, nom in lus if role in ("menu", "menu bar", "menu item", ecran.BOUTON, "dialog") and not nom], [])
        return lus

    def test_les_noms_accessibles_sont_des_mots(self):
        application = self.ouvrir_sur_un_detail()
        pid = application.processus.pid
        self.assertIn(("text", "Détail"), self.les_noms_sont_des_mots(pid))
        for menu in TOUS:
            ecran.ouvrir_le_menu(pid, menu)
            self.assertIn(("menu", menu), self.les_noms_sont_des_mots(pid))
            touches("Escape")
            attendre(lambda: ecran.articles(pid) == {}, quoi="le menu refermé")
        ecran.choisir(pid, "Keltrove", "À propos de Keltrove")
        ecran.attendre_le_texte(pid, "Version 0.")
        lus = self.les_noms_sont_des_mots(pid)
        self.assertIn(("menu bar", "Menus"), lus)
        self.assertIn(("dialog", "À propos de Keltrove"), lus)
        application.quitter()

    def test_le_texte_d_un_probleme_a_son_menu_en_francais(self):
        application = self.ouvrir_sur_un_detail()
        pid = application.processus.pid
        ecran.mettre_le_clavier_sur_le_detail(pid)
        for touche in ("shift+F10", "Menu"):
            touches(touche)
            attendre(lambda: ecran.articles(pid) == {"Copier": False, "Tout sélectionner": True},
                     quoi=lambda: f"le menu du détail ({ecran.articles(pid)})")
            self.les_noms_sont_des_mots(pid)
            touches("Escape")
            attendre(lambda: ecran.articles(pid) == {}, quoi="le menu refermé")
        touches("Menu")
        ecran.avancer_jusqu_a(pid, "Tout sélectionner")
        touches("Return")
        attendre(lambda: ecran.articles(pid) == {}, quoi="le menu refermé")
        touches("Menu")
        attendre(lambda: ecran.articles(pid).get("Copier"), quoi="de quoi copier")
        ecran.avancer_jusqu_a(pid, "Copier")
        touches("Return")
        attendre(lambda: "panne illustree" in ecran.presse_papiers(), quoi="le détail copié")
        application.quitter()

    def test_l_edition_se_grise_selon_ce_que_la_page_permet(self):
        subprocess.run(["/usr/bin/python3", "presse_papiers_vide.py"], check=True)
        application = self.ouvrir_la_page_notee(CHAMP)
        pid = application.processus.pid
        touches("a")
        attendre_la_note(application, "a")

        def permis(voulu):
            ecran.ouvrir_le_menu(pid, "Édition")
            attendre(lambda: {t for t, actif in ecran.articles(pid).items() if actif} == voulu,
                     quoi=f"les articles permis {voulu} ({ecran.articles(pid)})")
            touches("Escape")
            attendre(lambda: ecran.articles(pid) == {}, quoi="le menu refermé")

        permis({"Annuler", "Tout sélectionner"})
        touches("ctrl+shift+a", "ctrl+shift+c")
        permis({"Annuler", "Couper", "Copier", "Coller", "Coller sans la mise en forme", "Tout sélectionner"})
        touches("ctrl+shift+z")
        attendre(lambda: notes(application)[-1] == "", quoi="l’annulation")
        permis({"Rétablir", "Coller", "Coller sans la mise en forme", "Tout sélectionner"})
        application.quitter()

    def test_a_propos_dit_le_nom_la_version_et_la_licence(self):
        application = self.ouvrir(ORDINAIRE)
        pid = application.processus.pid
        ecran.choisir(pid, "Keltrove", "À propos de Keltrove")
        ecran.attendre_le_texte(pid, "Version 0.")
        self.assertIn("Keltrove", ecran.textes(pid))
        self.assertTrue(any("licence MIT" in texte for texte in ecran.textes(pid)))
        touches("Escape")
        attendre(lambda: not any("Version 0." in t for t in ecran.textes(pid)), quoi="la fenêtre refermée")
        application.quitter()

    def test_a_propos_donne_a_copier_le_journal_de_ce_lancement_sans_le_jeton(self):
        application = self.application(vrai_serveur=True).lancer()
        application.attendre("page-contenu")
        attendre_le_clavier(application)
        pid = application.processus.pid
        ecran.choisir(pid, "Keltrove", "À propos de Keltrove")
        etapes = application.etapes()
        ecran.presser(pid, "Copier le journal")
        attendre(lambda: "Journal copié" in ecran.boutons(pid), quoi="la copie dite")
        attendre(lambda: "WebKitGTK" in ecran.presse_papiers(), quoi="le journal dans le presse-papiers")
        copie = ecran.presse_papiers()
        self.assertTrue(copie.startswith("Keltrove 0."), copie)
        for etape in etapes:
            self.assertIn(f" s  {etape}", copie)
        with open(os.path.join(application.maison, ".zelcor/keltrove-jeton")) as fichier:
            self.assertNotIn(fichier.read().strip(), copie)
        touches("Escape")
        attendre(lambda: "Journal copié" not in ecran.boutons(pid), quoi="la fenêtre refermée")
        attendre_le_clavier(application)
        ecran.choisir(pid, "Keltrove", "À propos de Keltrove")
        attendre(lambda: "Copier le journal" in ecran.boutons(pid), quoi="la copie de nouveau proposée")
        application.quitter()

    def test_recharger_sans_page_demande_un_essai(self):
        application = self.application(code="process.exit(1);").lancer()
        application.attendre("echec-demarrage")
        attendre_le_clavier(application)
        touches("ctrl+shift+r")
        application.attendre("demarrage-demande", fois=2)
        application.attendre("echec-demarrage", fois=2)
        application.quitter()


class Fenetre(AvecUnePage):
    def geometrie(self, fenetre):
        lue = subprocess.run(["xdotool", "getwindowgeometry", "--shell", str(fenetre)], capture_output=True, text=True,
                             check=True).stdout
        valeurs = dict(ligne.split("=") for ligne in lue.split())
        return int(valeurs["WIDTH"]), int(valeurs["HEIGHT"])

    def test_f11_remplit_l_ecran_et_le_rend(self):
        application = self.ouvrir(ORDINAIRE)
        fenetre = la_fenetre(application)
        attendre(lambda: self.geometrie(fenetre) == (1280, 820), quoi="la taille d’origine")
        touches("F11")
        attendre(lambda: self.geometrie(fenetre) == (1360, 900), quoi="le plein écran")
        touches("F11")
        attendre(lambda: self.geometrie(fenetre) == (1280, 820), quoi="la taille retrouvée")
        application.quitter()

    def test_masquer_et_reduire_rangent_la_fenetre(self):
        application = self.ouvrir(ORDINAIRE)
        for raccourci in ("ctrl+shift+h", "ctrl+shift+m"):
            attendre(lambda: couleur(680, 450) == VERT, quoi="la page visible")
            fenetre = la_fenetre(application)
            touches(raccourci)
            attendre(lambda: fenetres(application) == [], quoi="la fenêtre rangée")
            subprocess.run(["xdotool", "windowactivate", "--sync", str(fenetre)], check=True)
        application.quitter()

    def test_fermer_et_quitter_prennent_le_chemin_ordinaire(self):
        for raccourci in ("ctrl+shift+w", "ctrl+shift+q"):
            with self.subTest(raccourci=raccourci):
                application = self.ouvrir(ORDINAIRE)
                touches(raccourci)
                self.assertEqual(application.attendre_la_fin(15), 0)
                self.assertEqual(application.etapes()[-2:], ["arret-demande", "arret-fini"])

    def test_quitter_par_le_menu_aussi(self):
        application = self.ouvrir(ORDINAIRE)
        ecran.choisir(application.processus.pid, "Keltrove", "Quitter Keltrove")
        self.assertEqual(application.attendre_la_fin(15), 0)
        self.assertIn("arret-fini", application.etapes())
