"""En service et à la fermeture : la mort du serveur, celle de la page, et toutes les façons de quitter."""

import os
import signal
import subprocess
import time

import ecran
import page_notee
from application import (LENT_A_FINIR, MUET, SERVEUR, VERT, attendre, attendre_le_clavier, commande, couleur, fenetres,
                         lire, processus_marques, touches)
from cas import Cas
from page_notee import notes

ORDINAIRE = SERVEUR + "servir();"


def est_masque(pid, masque, signe):
    """Si ce processus ignore (SigIgn) ou retient (SigBlk) ce signal."""
    (valeur,) = [ligne.split()[1] for ligne in lire(f"/proc/{pid}/status").decode().splitlines() if ligne.startswith(masque)]
    return bool(int(valeur, 16) >> (signe - 1) & 1)


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
        [dessinateur] = application.pages()
        os.kill(dessinateur, signal.SIGKILL)
        application.attendre("page-ratee")
        ecran.attendre_le_texte(application.processus.pid, "La page de keltrove ne s’affiche pas")
        attendre_le_clavier(application)
        touches("Return")
        application.attendre("page-affichee", fois=2)
        application.quitter()

    def test_celui_qui_meurt_avant_qu_il_y_ait_une_page_renait_avec_elle(self):
        code = SERVEUR + """const ecouter = () => fs.existsSync('pret')
            ? http.createServer(repondre).listen(PORT, '127.0.0.1') : setTimeout(ecouter, 50);
            ecouter();"""
        application = self.application(code=code).lancer()
        attendre(application.pages_reliees, quoi="le programme qui dessinera la page")
        [dessinateur] = application.pages_reliees()
        os.kill(dessinateur, signal.SIGKILL)
        attendre(lambda: dessinateur not in application.pages(), quoi="sa mort")
        application.poser("keltrove/pret", "")
        application.attendre("page-contenu")
        self.assertNotIn("page-ratee", application.etapes())
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

    def test_entree_presse_reessayer_de_partout_et_l_attente_n_a_plus_de_conseil(self):
        application = self.application(code="""import fs from 'node:fs';
            console.log('un mot'); fs.existsSync('muet') ? setInterval(() => {}, 1000) : process.exit(1);""")
        application.lancer()
        pid = application.processus.pid
        conseil = "Cliquez sur « Réessayer »"
        for fois, aller in enumerate((lambda: None, lambda: touches("Tab"), lambda: self.aller_sur_le_detail(pid)), 1):
            application.attendre("echec-demarrage", fois=fois)
            ecran.attendre_le_texte(pid, conseil)
            attendre_le_clavier(application)
            aller()
            if fois == 3:
                application.poser("keltrove/muet", "")
            touches("Return")
            application.attendre("demarrage-demande", fois=fois + 1)
        ecran.attendre_le_texte(pid, "S’il dort, je l’allume")
        self.assertFalse([texte for texte in ecran.textes(pid) if conseil in texte])
        application.quitter()

    def aller_sur_le_detail(self, pid):
        ecran.presser(pid, "Voir le détail")
        ecran.mettre_le_clavier_sur_le_detail(pid)

    def test_une_page_qui_se_remplace_pendant_son_chargement_n_est_pas_ratee(self):
        code = SERVEUR + """http.createServer((q, r) => {
          if (q.url === '/pendante') return vue();
          r.setHeader('content-type', 'text/html');
          r.end(q.url === '/' && q.headers['user-agent']
            ? '<meta name="keltrove-jeton" content="x"><script src="/pendante" async></script><script>location = "/suite"</script>'
            : page);
        }).listen(PORT, '127.0.0.1'); const vue = () => {};"""
        application = self.application(code=code).lancer()
        application.attendre("page-contenu")
        self.assertNotIn("page-ratee", application.etapes())
        attendre(lambda: couleur(680, 450) == VERT, quoi="la seconde page")
        application.quitter()

    def test_la_marque_est_dans_chaque_page_et_dans_aucun_cadre(self):
        application = self.application(code=page_notee.code("""<script>
          noter(['page', typeof keltroveApp]);
          const cadre = document.createElement('iframe');
          cadre.srcdoc = '<script>parent.noter(["cadre", typeof window.keltroveApp])<' + '/script>';
          document.documentElement.append(cadre);
          addEventListener('keydown', () => location.reload());</script>""")).lancer()
        for fois in (1, 2):
            application.attendre("page-affichee", fois=fois)
            attendre(lambda: len(notes(application)) == 2 * fois, quoi=lambda: f"les notes (vu : {notes(application)})")
            attendre_le_clavier(application)
            touches("r")
        application.attendre("page-affichee", fois=3)
        attendre(lambda: len(notes(application)) == 6, quoi="les dernières notes")
        self.assertEqual(notes(application), [["page", "object"], ["cadre", "undefined"]] * 3)
        application.quitter()

    def test_reessayer_pendant_un_demarrage_ne_fait_rien(self):
        code = "import fs from 'node:fs'; setInterval(() => fs.existsSync('finir') && process.exit(1), 20);"
        application = self.application(code=code)
        application.poser("keltrove/finir", "")
        application.lancer().attendre("echec-demarrage")
        attendre_le_clavier(application)
        os.remove(os.path.join(application.ressources, "keltrove/finir"))
        ecran.presser(application.processus.pid, "Réessayer")
        application.attendre("demarrage-demande", fois=2)
        # La fenêtre se réduit après les trois touches : elle les a donc vues pendant le démarrage.
        touches("Return", "Return", "Return", "ctrl+shift+m")
        attendre(lambda: fenetres(application) == [], quoi="la fenêtre réduite")
        application.poser("keltrove/finir", "")
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

    def test_un_signal_ignore_au_lancement_le_reste(self):
        application = self.application(code=ORDINAIRE).avoir_un_bus()
        application.preparer()
        application.suivre(subprocess.Popen(["nohup", application.executable], text=True, start_new_session=True,
                                            env=application.environnement(), stdout=subprocess.DEVNULL, stderr=subprocess.PIPE))
        application.attendre("page-affichee")
        self.assertTrue(est_masque(application.processus.pid, "SigIgn", signal.SIGHUP))
        self.assertEqual(application.quitter(), 0)

    def test_fermer_la_fenetre_prend_le_meme_chemin(self):
        application = self.application(code=ORDINAIRE).lancer()
        application.attendre("page-contenu")
        attendre_le_clavier(application)
        touches("alt+F4")
        self.assertEqual(application.attendre_la_fin(15), 0)
        self.assertEqual(application.etapes()[-2:], ["arret-demande", "arret-fini"])

    def test_ctrl_c_dans_le_terminal_de_lancement_n_atteint_que_l_application(self):
        application = self.application(code=ORDINAIRE + "process.on('SIGINT', () => fs.writeFileSync('interrompu', ''));")
        application.lancer().attendre("allume")
        os.killpg(os.getpgid(application.processus.pid), signal.SIGINT)
        self.assertEqual(application.attendre_la_fin(15), 0)
        self.assertFalse(os.path.exists(os.path.join(application.ressources, "keltrove/interrompu")))
        self.assertIn("Serveur fermé proprement", application.details("arret-fini")[0])

    def test_ctrl_c_n_atteint_pas_les_programmes_de_la_page_meme_pendant_leur_lancement(self):
        application = self.application(code=ORDINAIRE).lancer()
        application.attendre("page-affichee")
        programmes = application.enfants("WebKit") + application.enfants("xdg-dbus-proxy")
        self.assertGreaterEqual(len(programmes), 2)
        for pid in programmes:
            for signe in (signal.SIGINT, signal.SIGHUP):
                self.assertTrue(est_masque(pid, "SigBlk", signe), (commande(pid), signe))
        self.assertFalse(est_masque(application.serveurs()[0], "SigBlk", signal.SIGINT))
        self.assertEqual(application.quitter(signal.SIGINT), 0)

    def test_quitter_deux_fois_ne_demande_qu_un_arret(self):
        application = self.application(code=LENT_A_FINIR)
        application.lancer().attendre("page-affichee")
        application.processus.terminate()
        application.attendre("arret-demande")
        ecran.attendre_le_texte(application.processus.pid, "Fermeture…")
        application.processus.terminate()
        application.poser("keltrove/finir", "")
        self.assertEqual(application.attendre_la_fin(15), 0)
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
        application.attendre_la_fin()
        self.assertIn("Serveur fermé proprement", application.details("arret-fini")[0])

    def test_apres_la_fermeture_il_ne_reste_aucun_processus_de_la_page(self):
        application = self.application(code=ORDINAIRE).lancer()
        application.attendre("page-affichee")
        application.quitter()
        attendre(lambda: not [pid for pid in processus_marques(application.marque) if "WebKit" in commande(pid)],
                 quoi="la fin des processus de la page")
