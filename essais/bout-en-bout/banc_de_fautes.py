"""Une application et son serveur que l’on tient à un moment de leur vie."""

import contextlib
import functools
import os
import socket
import subprocess
import tempfile
import unittest

import ecran
from application import SERVEUR, Application, attendre
from cas import enfants_zombies

# Le serveur se retient et se gâte selon les fichiers de son dossier, et en pose pour dire où il en est.
TENU = SERVEUR + """
const la = (nom) => fs.existsSync(nom);
const vu = (nom) => fs.appendFileSync(nom, '.');
const quand = (nom, suite) => (la(nom) ? suite() : setTimeout(() => quand(nom, suite), 20));
const sauf = (retenue, jusqua, suite) => (la(retenue) ? quand(jusqua, suite) : suite());
// Un serveur gelé dont l’application s’en va reçoit du système SIGHUP, et le dégel.
for (const signal of ['SIGTERM', 'SIGHUP'])
  process.on(signal, () => { vu('sigterm'); sauf('retenir-fin', 'finir', () => process.exit(0)); });
process.stdout.on('error', () => {});
// La suite ne vient qu’une fois le bloc lu à l’autre bout du tube.
const inonder = () => (la('inondation')
  ? process.stdout.write('x'.repeat(65000) + '\\n', () => { vu('inonde'); inonder(); }) : setTimeout(inonder, 50));
inonder();
const sansFin = (r) => { r.write('x'.repeat(1000)); if (!r.destroyed) setTimeout(() => sansFin(r), 20); };
const recevoir = (q, r) => {
  if (q.headers['user-agent']) { vu('page-demandee'); return sauf('retenir-page', 'lacher-page', () => repondre(q, r)); }
  vu('sonde');
  sauf('retenir-sonde', 'lacher-sonde', () => {
    if (la('sans-marque')) r.end('bonjour');
    else if (la('sans-fin')) sansFin(r);
    else repondre(q, r);
  });
};
vu('lance');
sauf('retenir-ecoute', 'ecouter', () => http.createServer(recevoir).listen(PORT, '127.0.0.1'));
"""
MOMENTS = ("avant", "attente", "reponse", "chargement", "usage", "fermeture")
# Ce qui retient le serveur à un moment, ce qui l’en délivre, et ce qu’il pose en y arrivant.
RETENUES = {"attente": "retenir-ecoute", "reponse": "retenir-sonde", "chargement": "retenir-page", "fermeture": "retenir-fin"}
LIBERATIONS = {"attente": "ecouter", "reponse": "lacher-sonde", "chargement": "lacher-page", "fermeture": "finir"}
ARRIVEES = {"attente": "lance", "reponse": "sonde", "chargement": "page-demandee", "fermeture": "sigterm"}
CARNET = "à l’utilisateur"
CADRE = "# à l’utilisateur\n[cadre]\nlargeur=900\nhauteur=600\n"
CADRE_ECRIT = "[cadre]\nlargeur=900\nhauteur=600\nagrandie=false\n"  # le même, par l’application
# Pour ce qui se lit lentement, comme la liste des processus.
guetter = functools.partial(attendre, pas=0.1)


class Banc(contextlib.ExitStack):
    """`reste` : un serveur doit rester en vie à la fin. `parti` : l’application ne tourne plus."""

    def __init__(self, bibliotheque, rattache, moment, panne, places):
        super().__init__()
        self.rattache, self.moment, self.panne, self.places = rattache, moment, panne, places
        self.reste, self.parti, self.serveur = rattache, False, None
        self.verifier = unittest.TestCase()
        self.fautes = self.enter_context(tempfile.TemporaryDirectory())
        self.application = Application(code=TENU, variables={"LD_PRELOAD": bibliotheque, "KELTROVE_FAUTES": self.fautes})
        self.callback(self.application.nettoyer)
        self.carnet = self.confier(".zelcor/carnet-d-essai", CARNET)

    addCleanup = contextlib.ExitStack.callback

    def confier(self, nom, contenu):
        """Un fichier de l’utilisateur."""
        chemin = os.path.join(self.application.maison, nom)
        os.makedirs(os.path.dirname(chemin), exist_ok=True)
        with open(chemin, "w") as fichier:
            fichier.write(contenu)
        return chemin

    # Le dossier du serveur.
    def dossier(self, nom):
        return os.path.join(self.application.ressources, "keltrove", nom)

    def poser(self, nom):
        self.application.poser(os.path.join("keltrove", nom), "")

    def vus(self, nom):
        return os.path.getsize(self.dossier(nom)) if os.path.exists(self.dossier(nom)) else 0

    # Vers le moment voulu.
    def preparer(self):
        if self.moment in RETENUES and self.moment != "fermeture":
            self.poser(RETENUES[self.moment])
        if self.rattache:
            self.lancer_le_serveur()
        if self.moment == "reponse":
            self.suspendre_le_temps()

    def mener(self):
        """Jusqu’au moment voulu, et l’y tenir. Rattachée, l’application ferme sans attendre : on s’arrête juste avant."""
        if self.moment in ("usage", "fermeture"):
            self.application.attendre("page-affichee")
        if self.moment == "fermeture" and not self.rattache:
            self.poser("retenir-fin")
            self.application.processus.terminate()
        if self.moment in ARRIVEES and not (self.moment == "fermeture" and self.rattache):
            guetter(lambda: self.vus(ARRIVEES[self.moment]), quoi=lambda: f"le moment « {self.moment} » ({self.application.lignes})")

    def liberer(self):
        if self.moment in LIBERATIONS:
            self.poser(LIBERATIONS[self.moment])
        self.rendre_le_temps()

    def lancer_le_serveur(self):
        self.application.poser("keltrove/serveur.mjs", TENU)
        environnement = {**self.application.environnement(), "LD_PRELOAD": ""}
        self.serveur = subprocess.Popen(["/usr/bin/node", "serveur.mjs"], cwd=self.dossier(""), env=environnement,
                                        stdout=subprocess.DEVNULL)
        self.callback(self.serveur.wait)
        self.callback(self.serveur.kill)
        self.attendre_l_ecoute()

    def attendre_l_ecoute(self):
        def ecoute():
            with socket.socket() as prise:
                return prise.connect_ex(("127.0.0.1", self.application.port)) == 0

        guetter(ecoute, quoi="le serveur à l’écoute")

    # Une sonde n’attend sa réponse qu’une seconde et demie, et une machine lente mettrait plus à faire la panne.
    def suspendre_le_temps(self):
        with open(self.suspension(), "w"):
            pass

    def rendre_le_temps(self):
        with contextlib.suppress(FileNotFoundError):
            os.remove(self.suspension())

    def suspension(self):
        return os.path.join(self.fautes, "temps-suspendu")

    def pid_du_serveur(self):
        return self.serveur.pid if self.serveur else self.application.serveurs()[0]

    # Ce qui se passe ensuite.
    def attendre(self, etape, secondes=90, fois=1):
        self.application.attendre(etape, secondes, fois)

    def attendre_les_sondes(self, nombre):
        deja = self.vus("sonde")
        guetter(lambda: self.vus("sonde") >= deja + nombre, quoi=f"{nombre} sonde(s) de plus")

    def clients(self):
        """Les connexions que l’application tient vers le port, par leur bout à elle."""
        with open(f"/proc/{self.application.processus.pid}/net/tcp") as table:
            lignes = [ligne.split() for ligne in table][1:]
        return {ligne[1] for ligne in lignes if ligne[2].endswith(f":{self.application.port:04X}")}

    def attendre_un_client(self):
        deja = self.clients()
        guetter(lambda: self.clients() - deja, quoi="une connexion de plus")

    def finir(self, etat, secondes=60):
        self.parti = True
        self.verifier.assertEqual(self.application.attendre_la_fin(secondes), etat, self.application.lignes)

    # L’écran.
    def attendre_le_texte(self, *voulus):
        ecran.attendre_le_texte(self.application.processus.pid, *voulus)

    def reessayer(self):
        self.pages = self.application.etapes().count("page-affichee")
        ecran.presser(self.application.processus.pid, "Réessayer")

    def montre_la_page(self):
        """Une fenêtre que l’on sait lire, et sans bouton."""
        roles = [role for role, _ in ecran.noms(self.application.processus.pid)]
        return roles and ecran.BOUTON not in roles

    # La fin, la même pour tous.
    def conclure(self):
        application, verifier = self.application, self.verifier
        if not self.parti:
            verifier.assertIsNone(application.processus.poll(), f"partie d’elle-même : {application.lignes}")
            guetter(lambda: enfants_zombies(application) == [], quoi="chaque enfant recueilli")
            verifier.assertEqual(application.quitter(), 0, application.lignes)
        guetter(lambda: not application.enfants("WebKit"), quoi="la fin des programmes de la page")
        if self.reste:
            verifier.assertNotEqual(application.serveurs(), [], "le serveur devait rester")
        else:
            verifier.assertEqual(application.serveurs(), [], "un serveur est resté")
        with open(self.carnet) as fichier:
            verifier.assertEqual(fichier.read(), CARNET)
