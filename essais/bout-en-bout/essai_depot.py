"""Les fichiers déposés dans la page, par un vrai glissement d’une autre fenêtre."""

import http.server
import os
import signal
import tempfile
import threading

import ecran
import page_notee
from application import VERT, attendre, couleur, fenetres, la_fenetre, regler_la_resolution
from cas import Cas
from compositeur import DANS_UNE_FENETRE, Compositeur
from glissement import Source, souris
from page_notee import attendre_la_note, notes
from points import Image

ACCROCHES = page_notee.code("""<script>
  addEventListener('dragover', (e) => noter(['vue-par-la-page', e.dataTransfer.types.join()]));
  window.keltroveSurvolChemins = (x, y) => noter(['survol', x, y]);
  window.keltroveDeposerChemins = (chemins, x, y) => noter(['depot', chemins, x, y]);
  noter(['marque', window.keltroveApp.depotChemins, (() => {
    'use strict'; try { window.keltroveApp.depotChemins = 3; return 'change'; } catch { return 'fixe'; } })()]);
</script>""")
CHAMP = page_notee.code("""<textarea style="width:100%; height:100%"></textarea><script>
  window.keltroveSurvolChemins = () => noter('survol'); window.keltroveDeposerChemins = () => noter('depot');
  const champ = document.querySelector('textarea');
  addEventListener('dragover', () => noter('vu'));
  champ.addEventListener('input', () => noter(champ.value)); noter('prete');</script>""")
# Occupée, elle ne voit entrer un glissement qu’après coup.
LENTE = page_notee.code("""<script>
  addEventListener('dragenter', () => { for (const debut = Date.now(); Date.now() - debut < 300;); });
  addEventListener('dragover', (e) => e.preventDefault());
  addEventListener('drop', (e) => {
    e.preventDefault();
    noter(['recu', e.dataTransfer.getData('text/uri-list') || e.dataTransfer.getData('text/plain')]);
  });
  noter('prete');</script>""")
SANS_ACCROCHE = page_notee.code("""<script>
  addEventListener('error', (e) => noter(['erreur', e.message]));
  addEventListener('unhandledrejection', (e) => noter(['erreur', String(e.reason)])); noter('prete');</script>""")
CENTRE = (680, 500)
TEINTE_DE_LA_PAGE = (0x2B, 0x8A, 0x3E)


class Noteur:
    """De quoi recevoir ce que dit une page dont le serveur n’est plus."""

    def __enter__(self):
        self.recus = recus = []

        class Reception(http.server.BaseHTTPRequestHandler):
            def do_POST(self):
                recus.append(self.rfile.read(int(self.headers["Content-Length"])).decode())
                self.send_response(204)
                self.end_headers()

            def log_message(self, *_):
                pass

        self.serveur = http.server.HTTPServer(("127.0.0.1", 0), Reception)
        self.port = self.serveur.server_port
        threading.Thread(target=self.serveur.serve_forever, daemon=True).start()
        return self

    def __exit__(self, *_):
        self.serveur.shutdown()
        self.serveur.server_close()


class Depot(Cas):
    def ouvrir(self, code, pret="prete"):
        application = self.application(code=code).lancer()
        application.attendre("page-affichee")
        attendre_la_note(application, pret)
        attendre(lambda: fenetres(application) and couleur(680, 800) in (VERT, "#FFFFFF"), quoi="la page à l’écran")
        return application

    def ouvrir_avec_accroches(self):
        return self.ouvrir(ACCROCHES, ["marque", True, "fixe"])

    def vus(self, application, quoi):
        return [note for note in notes(application) if note[0] == quoi]

    def deposer(self, application, *chemins, vu=None):
        source = Source(self, "fichiers", *chemins)
        source.prendre()
        source.mener(*CENTRE, vu or (lambda: self.vus(application, "survol")), "le survol")
        issue = source.lacher()
        self.depots(application)
        return issue

    def depots(self, application):
        """Dès qu’il y en a."""
        attendre(lambda: self.vus(application, "depot"), quoi="le dépôt")
        return self.vus(application, "depot")

    def test_un_fichier_au_nom_tordu_arrive_tel_quel_au_bon_endroit(self):
        nom = "un nom d’été 'simple' \"double\" 100 %41 $HOME `date`\nà la ligne.txt"
        chemin = os.path.join(tempfile.mkdtemp(), nom)
        application = self.ouvrir_avec_accroches()
        # La page commence sous le titre et les menus, et finit au bas de la fenêtre.
        fenetre = la_fenetre(application)
        origine = self.origine_de_la_page(fenetre)
        centre = [CENTRE[0] - origine[0], CENTRE[1] - origine[1]]
        self.assertEqual(self.deposer(application, chemin, vu=lambda: ["survol", *centre] in notes(application)[-1:]), "fini")
        self.assertEqual(self.vus(application, "depot"), [["depot", [chemin], *centre]])
        self.assertEqual(self.vus(application, "vue-par-la-page"), [], "la page elle-même ne voit rien du glissement")
        self.assertNotIn(["survol", None, None], notes(application), "aucune fin de survol après un dépôt")
        application.quitter()

    def origine_de_la_page(self, fenetre):
        """Le coin de la page, cherché à l’œil : sa couleur commence là."""
        x = next(x for x in range(30, 60) if couleur(x, 500) == VERT)
        y = next(y for y in range(40, 120) if couleur(680, y) == VERT)
        return x, y

    def test_trois_fichiers_gardent_leur_ordre(self):
        application = self.ouvrir_avec_accroches()
        self.assertEqual(self.deposer(application, "/tmp/z", "/tmp/a", "/tmp/m"), "fini")
        self.assertEqual([depot[1] for depot in self.vus(application, "depot")], [["/tmp/z", "/tmp/a", "/tmp/m"]])
        application.quitter()

    def test_sortir_de_la_fenetre_finit_le_survol_une_fois_et_revenir_le_reprend(self):
        application = self.ouvrir_avec_accroches()
        source = Source(self, "fichiers", "/tmp/a")
        source.prendre()
        source.mener(*CENTRE, lambda: self.vus(application, "survol"), "le survol")
        source.mener(680, 5, lambda: ["survol", None, None] in notes(application), "la fin du survol")
        nombre = len(notes(application))
        source.mener(*CENTRE, lambda: len(notes(application)) > nombre, "le survol repris")
        source.mener(680, 5, lambda: notes(application)[-1] == ["survol", None, None], "la fin du second survol")
        source.lacher()
        self.assertEqual(notes(application).count(["survol", None, None]), 2)
        self.assertEqual(self.vus(application, "depot"), [])
        application.quitter()

    def test_le_texte_reste_a_la_vue_web(self):
        application = self.ouvrir(CHAMP)
        source = Source(self, "texte", "du texte tiré")
        source.prendre()
        source.mener(*CENTRE, lambda: "vu" in notes(application), "le survol par la page")
        source.lacher()
        attendre_la_note(application, "du texte tiré")
        self.assertNotIn("survol", notes(application))
        self.assertNotIn("depot", notes(application))
        application.quitter()

    def test_un_glissement_sans_fichier_local_est_rendu_a_la_vue_web(self):
        application = self.ouvrir(CHAMP)
        for adresses in ("http://127.0.0.1/lien\r\n", "trash:///jete\r\n", "file://ailleurs.example/tmp/q\r\n",
                         "file:///tmp/%zz\r\n", "n’importe quoi"):
            with self.subTest(adresses=adresses):
                debut = len(notes(application))
                source = Source(self, "adresses", adresses)
                source.prendre()
                source.mener(*CENTRE, lambda: "vu" in notes(application)[debut:], "le survol par la page")
                source.mener(680, 5, lambda: True, "la sortie")
                source.lacher()
                source.fermer()
                self.assertNotIn("survol", notes(application))
        self.assertNotIn("depot", notes(application))
        application.quitter()

    def test_les_fichiers_locaux_sont_pris_parmi_d_autres_adresses(self):
        application = self.ouvrir_avec_accroches()
        source = Source(self, "adresses", "# commentaire\r\nhttp://a.example/\r\nfile:///tmp/b%20c\r\n"
                                          "file://localhost/tmp/d\r\nfile:///tmp/%FF\r\n")
        source.prendre()
        source.mener(*CENTRE, lambda: self.vus(application, "survol"), "le survol")
        source.lacher()
        self.assertEqual(self.depots(application)[0][1], ["/tmp/b c", "/tmp/d"])
        application.quitter()

    def test_d_un_depot_le_fichier_au_nom_illisible_se_dit_et_les_autres_arrivent(self):
        application = self.ouvrir_avec_accroches()
        source = Source(self, "adresses", "file:///tmp/a\r\nfile:///tmp/%FF\r\nfile:///tmp/c\r\n")
        source.prendre()
        source.mener(*CENTRE, lambda: self.vus(application, "survol"), "le survol")
        source.lacher()
        application.attendre("bandeau")
        self.assertEqual(self.depots(application)[0][1], ["/tmp/a", "/tmp/c"])
        ecran.attendre_le_texte(application.processus.pid, "Un fichier n’a pas été déposé : son nom est illisible.")
        application.quitter()

    def test_la_source_qui_meurt_en_plein_survol_le_finit(self):
        application = self.ouvrir_avec_accroches()
        source = Source(self, "fichiers", "/tmp/a")
        self.addCleanup(souris, "mouseup", 1)
        source.prendre()
        source.mener(*CENTRE, lambda: self.vus(application, "survol"), "le survol")
        source.fermer()
        attendre(lambda: notes(application)[-1] == ["survol", None, None], quoi="la fin du survol")
        souris("mouseup", 1)
        suivante = Source(self, "fichiers", "/tmp/b")
        suivante.prendre()
        nombre = len(notes(application))
        suivante.mener(*CENTRE, lambda: len(notes(application)) > nombre, "le survol suivant")
        suivante.lacher()
        self.assertEqual(self.depots(application)[0][1], ["/tmp/b"])
        application.quitter()

    def test_sous_un_grand_texte_le_depot_se_fait_au_bon_endroit(self):
        self.addCleanup(regler_la_resolution, 96)
        regler_la_resolution(144)
        application = self.ouvrir_avec_accroches()
        fenetre = la_fenetre(application)
        x, y = self.origine_de_la_page(fenetre)
        source = Source(self, "fichiers", "/tmp/a")
        source.prendre()
        voulu = [(CENTRE[0] - x) / 1.5, (CENTRE[1] - y) / 1.5]
        source.mener(*CENTRE, lambda: any(abs(note[1] - voulu[0]) + abs(note[2] - voulu[1]) < 1
                                          for note in self.vus(application, "survol")[-1:] if note[1]), f"le survol en {voulu}")
        source.lacher()
        self.depots(application)
        application.quitter()

    def test_le_serveur_meurt_pendant_le_survol_qui_finit(self):
        with Noteur() as noteur:
            application = self.ouvrir(page_notee.code(f"""<script>
              const dire = (quoi) => fetch('http://127.0.0.1:{noteur.port}/', {{method: 'POST', mode: 'no-cors', body: quoi}});
              window.keltroveSurvolChemins = (x) => dire(x === null ? 'fin' : 'survol');
              window.keltroveDeposerChemins = () => dire('depot'); noter('prete');</script>"""))
            source = Source(self, "fichiers", "/tmp/a")
            source.prendre()
            source.mener(*CENTRE, lambda: "survol" in noteur.recus, "le survol")
            os.kill(application.serveurs()[0], 9)
            application.attendre("serveur-mort-en-route")
            attendre(lambda: noteur.recus[-1] == "fin", quoi="la fin du survol")
            self.assertEqual(source.lacher(), "refuse")
            self.assertNotIn("depot", noteur.recus)
            application.quitter()

    def test_une_page_sans_accroche_ne_voit_rien_et_reste_la(self):
        with tempfile.NamedTemporaryFile("w", suffix=".html") as fichier:
            fichier.write("<body style='background:#8a2b3e'>")
            fichier.flush()
            application = self.ouvrir(SANS_ACCROCHE)
            source = Source(self, "fichiers", fichier.name)
            source.prendre()
            source.mener(*CENTRE, source.admis, "le glissement admis")
            self.assertEqual(source.lacher(), "fini")
            application.attendre("page-contenu")
            self.assertEqual(couleur(*CENTRE), VERT)
            self.assertEqual(notes(application), ["prete"])
            self.assertEqual(application.etapes().count("page-affichee"), 1)
            application.quitter()

    def test_sous_l_ecran_d_attente_rien_n_est_depose(self):
        application = self.ouvrir_avec_accroches()
        serveur = application.serveurs()[0]
        os.kill(serveur, 9)
        application.attendre("serveur-mort-en-route")
        source = Source(self, "fichiers", "/tmp/a")
        source.prendre()
        for pas in range(60):
            souris("mousemove", CENTRE[0] + pas, CENTRE[1])
        self.assertFalse(source.admis())
        self.assertEqual(source.lacher(), "refuse")
        application.quitter()

    def test_ce_qui_ne_se_donne_que_pour_de_bon_reste_chez_lui(self):
        application = self.ouvrir_avec_accroches()
        source = Source(self, "fichiers", "/tmp/a", action="MOVE")
        source.prendre()
        source.mener(*CENTRE, lambda: self.vus(application, "survol"), "le survol")
        self.assertEqual(source.lacher(), "refuse")
        self.assertNotIn("admis", source.lignes)
        attendre_la_note(application, ["survol", None, None])
        self.assertEqual(self.vus(application, "depot"), [])
        application.quitter()

    def test_une_page_figee_ne_retient_pas_la_source_d_un_texte_et_recoit_le_suivant(self):
        application = self.ouvrir(LENTE)
        [page] = application.pages()
        source = Source(self, "texte", "tiré")
        source.prendre()
        os.kill(page, signal.SIGSTOP)
        source.mener(*CENTRE, source.admis, "le dépôt admis")
        source.lacher()
        os.kill(page, signal.SIGCONT)
        suivante = Source(self, "texte", "encore")
        suivante.prendre()
        suivante.mener(*CENTRE, suivante.admis, "le dépôt admis")
        suivante.lacher()
        attendre(lambda: self.vus(application, "recu"), quoi="le dépôt")
        self.assertEqual(self.vus(application, "recu"), [["recu", "encore"]])
        application.quitter()

    def ouvrir_sous_wayland(self, code, pret):
        variables = Compositeur(self, DANS_UNE_FENETRE).variables
        application = self.application(code=code, variables={**variables, "WAYLAND_DEBUG": "1"}).lancer()
        application.attendre("page-affichee")
        attendre_la_note(application, pret)
        attendre(lambda: Image().etendue(TEINTE_DE_LA_PAGE), quoi="la page à l’écran")
        return application, variables

    def jeter_jusqu_au_depot(self, source):
        """Ce que l’application n’a pas eu le temps d’accepter, le compositeur le refuse lui-même : un peu moins vite alors."""
        gauche, _, droite, bas = Image().etendue(TEINTE_DE_LA_PAGE)
        x = gauche + 40 if source.place()[0] > (gauche + droite) / 2 else droite - 40
        for pas in range(200):
            source.prendre()
            if source.jeter(x, bas - 40, pas) == "fini":
                return
        self.fail("rien n’a pu être déposé")

    def quitter_sans_en_avoir_refuse(self, application, deposes):
        """De ce que le compositeur laisse déposer, rien ; l’application finie, il ne manque aucune ligne de ce qu’il en a dit."""
        application.quitter()
        self.assertEqual(sum("drop()" in ligne for ligne in application.lignes), deposes)

    def test_sous_wayland_tout_ce_que_le_compositeur_admet_arrive(self):
        application, variables = self.ouvrir_sous_wayland(ACCROCHES, ["marque", True, "fixe"])
        source = Source(self, "fichiers", "/tmp/a", variables=variables)
        for rang in range(1, 11):
            self.jeter_jusqu_au_depot(source)
            attendre(lambda: len(self.vus(application, "depot")) == rang, quoi=f"le dépôt {rang}")
            self.assertEqual(self.vus(application, "depot")[-1][1], ["/tmp/a"])
            self.assertEqual(notes(application)[-1][0], "depot", "plus de survol après le dépôt")
        self.quitter_sans_en_avoir_refuse(application, 10)

    def test_sous_wayland_un_texte_et_un_lien_aussi_que_la_page_tarde_a_voir(self):
        application, variables = self.ouvrir_sous_wayland(LENTE, "prete")
        recu = []
        for sorte, texte in (("texte", "tiré"), ("adresses", "http://exemple.test/")):
            source = Source(self, sorte, texte, variables=variables)
            for _ in range(5):
                self.jeter_jusqu_au_depot(source)
                recu.append(["recu", texte])
                attendre(lambda: self.vus(application, "recu") == recu, quoi=f"{len(recu)} dépôts reçus")
            source.fermer()
            attendre(lambda: not source.place(), quoi="la source partie")
        self.quitter_sans_en_avoir_refuse(application, len(recu))
