"""La vérification d’un dossier signé, en ligne de commande."""

import os
import shutil
import stat
import subprocess
import tempfile

from application import CONSTRUCTION
from cas import Cas

KELTROVE = os.path.join(CONSTRUCTION, "keltrove")
RACINE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../..")
SIGNER = os.path.join(RACINE, "outils/signer-inventaire")


def executer(*commande, **variables):
    """Ni écran, ni bus, ni attente : une réponse en quelques secondes."""
    propre = {cle: valeur for cle, valeur in os.environ.items()
              if cle not in ("DISPLAY", "WAYLAND_DISPLAY", "KELTROVE_MAJ_CLE")}
    return subprocess.run([os.fsencode(mot) for mot in commande], env={**propre, **variables}, capture_output=True,
                          timeout=20)


class AvecUnDossierSigne(Cas):
    def setUp(self):
        self.racine = tempfile.mkdtemp(prefix="inventaire d’été ")
        self.addCleanup(shutil.rmtree, self.racine)
        self.dossier = os.path.join(self.racine, "code")
        self.privee, self.publique = (os.path.join(self.racine, nom) for nom in ("privée.pem", "publique.pem"))
        self.ecrire("serveur.mjs", b"bonjour")
        self.ecrire("lib/l'outil \"d'été\"\n.mjs", b"outil")
        self.ecrire("lib/__proto__", b"un nom comme un autre")
        self.ecrire("node_modules/ws/index.js", b"hors inventaire")
        self.ecrire("vide", b"")
        os.symlink("serveur.mjs", os.path.join(self.dossier, "lien"))
        os.symlink("/nulle/part", os.path.join(self.dossier, "brisé"))
        self.assertEqual(executer(SIGNER, "cle", self.privee, self.publique).returncode, 0)
        self.signer()

    def ecrire(self, nom, octets):
        chemin = os.path.join(self.dossier, nom)
        os.makedirs(os.path.dirname(chemin), exist_ok=True)
        with open(chemin, "wb") as fichier:
            fichier.write(octets)

    def signer(self):
        rendu = executer(SIGNER, "signer", self.dossier, self.privee)
        self.assertEqual(rendu.returncode, 0, rendu.stderr.decode())

    def verdict(self, *arguments, **variables):
        """Le message, et rien d’autre nulle part."""
        rendu = executer(KELTROVE, "verifier-inventaire", *arguments, **variables)
        self.assertEqual(rendu.stdout, b"")
        if rendu.returncode == 0:
            self.assertEqual(rendu.stderr, b"")
            return ""
        self.assertEqual(rendu.returncode, 1)
        message = rendu.stderr.decode()
        self.assertTrue(message.endswith("\n"))
        return message[:-1]


class Ligne(AvecUnDossierSigne):
    def test_ce_que_l_outil_signe_se_verifie_et_un_octet_change_se_voit(self):
        self.assertEqual(self.verdict(self.dossier, self.publique), "")
        self.ecrire("lib/__proto__", b"un nom comme un Autre")
        self.assertEqual(self.verdict(self.dossier, self.publique), "fichier modifié : lib/__proto__")
        self.signer()
        self.assertEqual(self.verdict(self.dossier, self.publique), "", "signer de nouveau remplace")

    def test_la_cle_vient_de_l_argument_puis_de_l_environnement_puis_de_nulle_part(self):
        self.assertEqual(self.verdict(self.dossier, KELTROVE_MAJ_CLE=self.publique), "")
        self.assertEqual(self.verdict(self.dossier, self.publique, KELTROVE_MAJ_CLE="/fausse"), "")
        self.assertEqual(self.verdict(self.dossier, self.publique, "en", "trop"), "")
        self.assertEqual(self.verdict(self.dossier, "/fausse", KELTROVE_MAJ_CLE=self.publique),
                         "clé publique illisible : /fausse")
        self.assertEqual(self.verdict(self.dossier, "", KELTROVE_MAJ_CLE=self.publique), "clé publique illisible : ")
        self.assertEqual(self.verdict(self.dossier, KELTROVE_MAJ_CLE=""), "clé publique illisible : ")
        self.assertEqual(self.verdict(self.dossier), "clé publique illisible : ")

    def test_sans_dossier_c_est_un_dossier_sans_nom(self):
        self.assertEqual(self.verdict(), "inventaire absent : inventaire.json")

    def test_un_mot_voisin_ouvre_le_bureau(self):
        for mot in ("Verifier-inventaire", "--verifier-inventaire", "verifier-inventaire ", ""):
            rendu = executer(KELTROVE, mot, self.dossier, self.publique)
            self.assertTrue(rendu.stderr.decode().startswith("Keltrove n’a trouvé aucun écran"), mot)

    def test_verifier_n_ecrit_aucun_journal(self):
        maison = os.path.join(self.racine, "maison")
        os.makedirs(os.path.join(maison, ".zelcor"))
        self.assertEqual(self.verdict(self.dossier, self.publique, HOME=maison, KELTROVE_ESSAI="1"), "")
        self.assertEqual(os.listdir(os.path.join(maison, ".zelcor")), [])

    def test_un_dossier_introuvable_ou_au_nom_illisible_se_dit(self):
        self.assertEqual(self.verdict("/nulle/part", self.publique), "inventaire absent : /nulle/part/inventaire.json")
        self.assertEqual(self.verdict(b"/tmp/\xff", self.publique), "inventaire absent : /tmp/\ufffd/inventaire.json")

    def test_un_tube_a_la_place_de_chaque_fichier_ne_fait_pas_attendre(self):
        for chemin in (os.path.join(self.dossier, "inventaire.json"), os.path.join(self.dossier, "inventaire.sig"),
                       self.publique, os.path.join(self.dossier, "vide")):
            with self.subTest(chemin=chemin):
                garde = os.path.join(self.racine, "garde")
                os.rename(chemin, garde)
                os.mkfifo(chemin)
                self.assertRegex(self.verdict(self.dossier, self.publique), "absent|illisible")
                os.rename(garde, chemin)

    def test_la_verification_ne_charge_aucune_bibliotheque_du_bureau(self):
        liens = subprocess.run(["ldd", KELTROVE], capture_output=True, text=True, check=True).stdout
        self.assertNotRegex(liens, "gtk|gdk|webkit|glib|gio|curl|dbus")


class Outil(AvecUnDossierSigne):
    def test_il_n_ecrase_aucune_cle_et_garde_la_privee_pour_soi(self):
        self.assertEqual(stat.S_IMODE(os.stat(self.privee).st_mode), 0o600)
        rendu = executer(SIGNER, "cle", self.privee, self.publique)
        self.assertEqual(rendu.returncode, 1)
        self.assertIn("existe déjà", rendu.stderr.decode())
        self.assertEqual(self.verdict(self.dossier, self.publique), "")

    def test_il_refuse_ce_que_la_verification_refuserait(self):
        for nom, poser, raison in (("nom", lambda c: open(os.fsencode(c) + b"\xff", "w").close(), "UTF-8"),
                                   ("tube", os.mkfifo, "n’est pas un fichier ordinaire"),
                                   ("boucle", lambda c: os.symlink(self.dossier, c), "ramène à un dossier")):
            with self.subTest(nom=nom):
                chemin = os.path.join(self.dossier, nom)
                poser(chemin)
                rendu = executer(SIGNER, "signer", self.dossier, self.privee)
                self.assertEqual(rendu.returncode, 1)
                self.assertIn(raison, rendu.stderr.decode())
                os.remove(os.fsencode(chemin) + (b"\xff" if nom == "nom" else b""))

    def test_il_explique_ses_arguments_et_une_cle_d_une_autre_sorte(self):
        self.assertIn("Usage", executer(SIGNER).stderr.decode())
        rsa = os.path.join(self.racine, "rsa.pem")
        subprocess.run(["openssl", "genrsa", "-out", rsa, "2048"], check=True, capture_output=True)
        self.assertIn("n’est pas une clé Ed25519", executer(SIGNER, "signer", self.dossier, rsa).stderr.decode())

    def test_sceller_signe_d_une_cle_oubliee_ou_donnee(self):
        autre = os.path.join(self.racine, "autre.pem")
        self.assertEqual(executer(SIGNER, "sceller", self.dossier, autre).returncode, 0)
        self.assertEqual(self.verdict(self.dossier, autre), "")
        self.assertNotEqual(self.verdict(self.dossier, self.publique), "")
        self.assertEqual(executer(SIGNER, "sceller", self.dossier, autre, self.privee).returncode, 0)
        self.assertEqual(self.verdict(self.dossier, self.publique), "")
        self.assertEqual(self.verdict(self.dossier, autre), "")
