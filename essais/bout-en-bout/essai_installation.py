"""La copie installée : où elle trouve ses parties, son refus d’avoir été modifiée, ce que le shell en complète."""

import configparser
import os
import pty
import select
import shutil
import subprocess
import tempfile
import time
import unittest

import ecran
from application import CONSTRUCTION, SERVEUR, la_fenetre
from cas import Cas

PAQUET = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../paquet")
COMPLETIONS = os.path.join(PAQUET, "completions")


class CopieInstallee(Cas):
    @classmethod
    def setUpClass(cls):
        cls.etalon = tempfile.mkdtemp(prefix="étalon ")
        cls.addClassCleanup(shutil.rmtree, cls.etalon)
        subprocess.run(["cmake", "--install", CONSTRUCTION, "--prefix", cls.etalon], check=True, capture_output=True)

    def installer(self):
        racine = tempfile.mkdtemp(prefix="copie installée ")
        self.addCleanup(shutil.rmtree, racine)
        shutil.copytree(self.etalon, racine, symlinks=True, dirs_exist_ok=True)
        return racine

    def application_installee(self, racine):
        application = self.application()
        application.executable = os.path.join(racine, "bin/keltrove")
        return application

    def test_intacte_elle_ouvre_ses_terminaux_et_se_ferme_proprement(self):
        application = self.application_installee(self.installer()).lancer()
        application.attendre("page-contenu")
        (serveur,) = application.serveurs()
        self.assertEqual(application.quitter(), 0)
        self.assertIn("Serveur fermé proprement", application.details("arret-fini")[0])
        self.assertFalse(os.path.exists(f"/proc/{serveur}"))

    def test_un_octet_change_elle_le_dit_et_ne_lance_rien(self):
        racine = self.installer()
        with open(os.path.join(racine, "share/keltrove/keltrove/lib/acces.mjs"), "r+b") as fichier:
            fichier.seek(10)
            octet = fichier.read(1)
            fichier.seek(10)
            fichier.write(bytes([octet[0] ^ 1]))
        application = self.application_installee(racine).lancer()
        application.attendre("echec-demarrage")
        ecran.attendre_le_texte(application.processus.pid, "a été modifiée")
        self.assertEqual(application.serveurs(), [])
        application.quitter()

    def test_sans_verificateur_elle_refuse_aussi(self):
        racine = self.installer()
        os.remove(os.path.join(racine, "bin/keltrove"))
        rendu = subprocess.run([os.path.join(racine, "share/keltrove/demarrer-keltrove.sh")], capture_output=True, text=True,
                               timeout=20)
        self.assertEqual((rendu.returncode, rendu.stdout), (1, "MODIFIE=le programme qui vérifie cette copie manque\n"))

    def test_elle_a_tout_ce_que_le_bureau_demande(self):
        for nom in ("lib/keltrove/libkeltrove-bureau.so", "share/keltrove/keltrove/serveur.mjs",
                    "share/keltrove/demarrer-keltrove.sh", "share/applications/fr.zelcor.keltrove.desktop",
                    "share/metainfo/fr.zelcor.keltrove.metainfo.xml", "share/man/man1/keltrove.1.gz",
                    "share/man/fr/man1/keltrove.1.gz", "share/icons/hicolor/scalable/apps/fr.zelcor.keltrove.svg",
                    "share/icons/hicolor/16x16/apps/fr.zelcor.keltrove.png"):
            self.assertTrue(os.path.isfile(os.path.join(self.etalon, nom)), nom)

    def test_son_entree_de_bureau_nomme_son_programme_son_icone_et_sa_fenetre(self):
        entree = configparser.ConfigParser(interpolation=None)
        entree.read(os.path.join(self.etalon, "share/applications/fr.zelcor.keltrove.desktop"))
        entree = entree["Desktop Entry"]
        self.assertTrue(os.access(os.path.join(self.etalon, "bin", entree["Exec"]), os.X_OK))
        self.assertTrue(os.path.exists(os.path.join(self.etalon, f"share/icons/hicolor/48x48/apps/{entree['Icon']}.png")))
        application = self.application_installee(self.installer()).lancer()
        application.attendre("page-affichee")
        fenetre = la_fenetre(application)
        classe = subprocess.run(["xprop", "-id", str(fenetre), "WM_CLASS"], capture_output=True, text=True).stdout
        self.assertIn(f"\"{entree['StartupWMClass']}\"", classe)
        application.quitter()

    def test_par_un_lien_elle_se_retrouve(self):
        racine = self.installer()
        ailleurs = os.path.join(racine, "un autre dossier d’été")
        os.mkdir(ailleurs)
        os.symlink("../bin/keltrove", os.path.join(ailleurs, "mon keltrove"))
        application = self.application_installee(racine)
        application.executable = os.path.join(ailleurs, "mon keltrove")
        application.lancer().attendre("page-contenu")
        self.assertEqual(application.quitter(), 0)


def icones_de_la_fenetre(fenetre):
    """Ce que montre une barre des tâches : pour chaque taille, les points, rangée après rangée."""
    dites = subprocess.run(["xprop", "-id", str(fenetre), "-notype", "32c", "_NET_WM_ICON"], capture_output=True, text=True).stdout
    nombres = [int(nombre) for nombre in dites.partition("=")[2].split(",")]
    icones = {}
    while nombres:
        largeur, hauteur = nombres[:2]
        icones[largeur] = nombres[2:2 + largeur * hauteur]
        del nombres[:2 + largeur * hauteur]
    return icones


class ArbreConstruit(Cas):
    def test_par_un_lien_il_trouve_son_module_et_son_serveur(self):
        application = self.application(code=SERVEUR + "servir();")
        ailleurs = os.path.join(application.racine, "un autre dossier d’été")
        os.mkdir(ailleurs)
        os.symlink(application.executable, os.path.join(ailleurs, "mon keltrove"))
        application.executable = os.path.join(ailleurs, "mon keltrove")
        application.lancer().attendre("page-affichee")
        self.assertEqual(application.quitter(), 0)


    def test_sa_fenetre_porte_son_icone(self):
        application = self.application()
        application.executable = os.path.join(CONSTRUCTION, "keltrove")
        application.lancer().attendre("page-affichee")
        icones = icones_de_la_fenetre(la_fenetre(application))
        self.assertEqual(application.quitter(), 0)
        self.assertLessEqual({16, 48, 128}, set(icones))
        for taille in (16, 48, 128):
            voulue = subprocess.run(["convert", os.path.join(PAQUET, "icones", f"{taille}.png"), "-depth", "8", "bgra:-"],
                                    capture_output=True, check=True).stdout
            milieu = 4 * (taille // 2 * taille + taille // 2)
            self.assertEqual(icones[taille][taille // 2 * taille + taille // 2].to_bytes(4, "little"), voulue[milieu:milieu + 4])


class Completions(unittest.TestCase):
    """Tapées dans un vrai shell interactif."""

    def taper(self, shell, preparation, frappe, attendu):
        with tempfile.TemporaryDirectory(prefix="complétion ") as dossier:
            os.makedirs(os.path.join(dossier, "sous dossier"))
            pid, maitre = pty.fork()
            if pid == 0:
                os.chdir(dossier)
                os.execvpe(shell[0], shell, {"PATH": os.environ["PATH"], "HOME": dossier, "TERM": "xterm", "LANG": "C.UTF-8"})
            try:
                self.lire_jusqu_a(maitre, "pret>", f"{preparation}\n")
                self.lire_jusqu_a(maitre, attendu, frappe)
            finally:
                os.close(maitre)
                os.waitpid(pid, 0)

    def lire_jusqu_a(self, maitre, attendu, frappe):
        os.write(maitre, frappe.encode())
        lu, limite = "", time.monotonic() + 20
        while attendu not in lu:
            pret = select.select([maitre], [], [], max(0, limite - time.monotonic()))[0]
            self.assertTrue(pret, f"« {attendu} » n’est pas venu ; lu : {lu!r}")
            lu += os.read(maitre, 4096).decode(errors="replace")

    def test_bash_complete_la_commande_puis_un_dossier(self):
        bash = ["bash", "--norc", "--noprofile", "-i"]
        preparation = f". '{COMPLETIONS}/keltrove.bash'; PS1='pret''>'"
        self.taper(bash, preparation, "keltrove ver\t", "keltrove verifier-inventaire ")
        self.taper(bash, preparation, "keltrove verifier-inventaire so\t", r"sous\ dossier")

    def test_zsh_complete_la_commande_puis_un_dossier(self):
        zsh = ["zsh", "-f", "-i"]
        preparation = f"fpath=('{COMPLETIONS}' $fpath); autoload -U compinit; compinit -u; PS1='pret''>'"
        self.taper(zsh, preparation, "keltrove ver\t", "rifier-inventaire")
        self.taper(zsh, preparation, "keltrove verifier-inventaire so\t", r"sous\ dossier")
