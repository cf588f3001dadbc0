"""Les liens de la page s’ouvrent dans le navigateur du bureau, et la page reste."""

import ecran
import page_notee
from application import VERT, attendre, attendre_le_clavier, couleur, touches
from bureau import Ouvreur
from cas import Cas
from page_notee import attendre_la_note

PAGE = page_notee.code("""<a id=lien></a><iframe srcdoc="x"></iframe><script>
  const lien = document.querySelector('a');
  const suivre = (adresse, cible) => { lien.href = adresse; lien.target = cible; lien.click(); };
  const gestes = {
    a: () => suivre('https://exemple.fr/a?b=c&d', ''),
    b: () => suivre('mailto:moi@exemple.fr', ''),
    c: () => window.open('http://exemple.fr/nouvelle', '_blank'),
    d: () => suivre('https://exemple.fr/cible', '_blank'),
    e: () => { location.href = 'https://exemple.fr/script'; },
    f: () => { for (const a of ['file:///etc/passwd', 'ftp://exemple.fr/', 'smb://a/b']) { suivre(a, ''); suivre(a, '_blank'); } },
    h: () => {
      // Le geste qui l’a lancée est fini depuis longtemps.
      let reste = 20;
      const boucle = () => {
        suivre('https://exemple.fr/boucle', reste % 2 ? '' : '_blank');
        if (--reste) setTimeout(boucle, 20); else noter('boucle finie');
      };
      setTimeout(boucle, 3000);
    },
    i: () => { for (let n = 0; n < 30; n += 1) suivre(`https://exemple.fr/${n}`, '_blank'); },
    g: () => { location.hash = 'ici'; noter(location.hash); },
  };
  addEventListener('keydown', (e) => { gestes[e.key]?.(); noter(['touche', e.key]); });
  noter('prete');</script>""")

DU_NAVIGATEUR = [f"x-scheme-handler/{sorte}" for sorte in ("http", "https", "mailto")]


class Liens(Cas):
    def ouvrir(self, types=DU_NAVIGATEUR, **lancement):
        application = self.application(code=PAGE)
        self.navigateur = Ouvreur(self, *types, **lancement)
        application.variables.update(self.navigateur.variables)
        application.lancer().attendre("page-affichee")
        attendre_la_note(application, "prete")
        attendre_le_clavier(application)
        return application

    def test_chaque_lien_va_au_navigateur_une_fois_et_la_page_reste(self):
        application = self.ouvrir()
        voulues = []
        for touche, adresse in (("a", "https://exemple.fr/a?b=c&d"), ("b", "mailto:moi@exemple.fr"),
                                ("c", "http://exemple.fr/nouvelle"), ("d", "https://exemple.fr/cible"),
                                ("e", "https://exemple.fr/script")):
            touches(touche)
            voulues.append(adresse)
            attendre(lambda: self.navigateur.notes() == voulues, quoi=f"{adresse} (vu : {self.navigateur.notes()})")
        touches("f", "g")
        attendre_la_note(application, "#ici")
        self.assertEqual(self.navigateur.notes(), voulues)
        self.assertEqual(couleur(680, 500), VERT)
        self.assertEqual(application.etapes().count("page-affichee"), 1)
        application.quitter()

    def test_un_navigateur_flatpak_ou_snap_les_recoit_tels_quels(self):
        flatpak = "run --branch=stable --command=navigateur --file-forwarding fr.exemple.Navigateur @@u {donne} @@"
        indice = "BAMF_DESKTOP_FILE_HINT=/var/lib/snapd/desktop/applications/navigateur.desktop"
        for forme, recu in (("{programme} " + flatpak, flatpak), (f"env {indice} {{programme}} {{donne}}", "{donne}")):
            with self.subTest(forme=forme):
                application = self.ouvrir(forme=forme)
                touches("a")
                voulu = recu.format(donne="https://exemple.fr/a?b=c&d")
                attendre(lambda: self.navigateur.notes() == [voulu], quoi=lambda: f"{voulu} (vu : {self.navigateur.notes()})")
                application.quitter()

    def test_une_page_qui_en_ouvre_en_boucle_n_ouvre_rien_sans_geste_et_peu_sur_un_seul(self):
        application = self.ouvrir()
        touches("h")
        attendre_la_note(application, "boucle finie")
        touches("a")
        attendre(self.navigateur.notes, quoi="le lien suivi d’un geste")
        self.assertEqual(self.navigateur.notes(), ["https://exemple.fr/a?b=c&d"])
        touches("i")
        attendre(lambda: len(self.navigateur.notes()) == 10, quoi=lambda: f"dix liens (vu : {self.navigateur.notes()})")
        touches("a", "g")
        attendre_la_note(application, "#ici")
        self.assertEqual(len(self.navigateur.notes()), 10)
        application.quitter()

    def test_sans_application_pour_l_ouvrir_un_bandeau_le_dit(self):
        application = self.ouvrir(types=())
        touches("b")
        application.attendre("bandeau")
        ecran.attendre_le_texte(application.processus.pid, "Aucune application ne sait ouvrir ce lien : mailto:moi@exemple.fr")
        self.assertEqual(couleur(680, 500), VERT)
        application.quitter()
