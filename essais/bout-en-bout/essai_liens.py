"""Les liens de la page s’ouvrent dans le navigateur du bureau, et la page reste."""

import os

import ecran
import page_notee
from application import VERT, attendre, attendre_le_clavier, couleur, lire, touches
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


class Liens(Cas):
    def ouvrir(self, avec_navigateur=True):
        application = self.application(code=PAGE)
        self.recues = os.path.join(application.racine, "adresses")
        donnees = os.path.join(application.maison, "données")
        application.variables.update(XDG_DATA_HOME=donnees, XDG_CONFIG_HOME=os.path.join(application.maison, "réglages"))
        if avec_navigateur:
            self.poser_un_navigateur(application, donnees)
        application.lancer().attendre("page-affichee")
        attendre_la_note(application, "prete")
        attendre_le_clavier(application)
        return application

    def poser_un_navigateur(self, application, donnees):
        programme = os.path.join(application.maison, "navigateur.sh")
        with open(programme, "w") as fichier:
            fichier.write(f"#!/bin/sh\necho \"$1 ${{GSK_RENDERER:-intact}}\" >> '{self.recues}'\n")
        os.chmod(programme, 0o755)
        os.makedirs(os.path.join(donnees, "applications"))
        with open(os.path.join(donnees, "applications/navigateur.desktop"), "w") as fichier:
            fichier.write(f'[Desktop Entry]\nType=Application\nName=Navigateur\nExec="{programme}" %u\n'
                          "MimeType=x-scheme-handler/http;x-scheme-handler/https;x-scheme-handler/mailto;\n")
        with open(os.path.join(donnees, "applications/mimeapps.list"), "w") as fichier:
            fichier.write("[Default Applications]\n" + "".join(
                f"x-scheme-handler/{sorte}=navigateur.desktop\n" for sorte in ("http", "https", "mailto")))

    def adresses(self):
        return lire(self.recues).decode().split("\n")[:-1] if os.path.exists(self.recues) else []

    def test_chaque_lien_va_au_navigateur_une_fois_et_la_page_reste(self):
        application = self.ouvrir()
        voulues = []
        for touche, adresse in (("a", "https://exemple.fr/a?b=c&d"), ("b", "mailto:moi@exemple.fr"),
                                ("c", "http://exemple.fr/nouvelle"), ("d", "https://exemple.fr/cible"),
                                ("e", "https://exemple.fr/script")):
            touches(touche)
            voulues.append(adresse + " intact")
            attendre(lambda: self.adresses() == voulues, quoi=f"{adresse} (vu : {self.adresses()})")
        touches("f", "g")
        attendre_la_note(application, "#ici")
        self.assertEqual(self.adresses(), voulues)
        self.assertEqual(couleur(680, 500), VERT)
        self.assertEqual(application.etapes().count("page-affichee"), 1)
        application.quitter()

    def test_une_page_qui_en_ouvre_en_boucle_n_ouvre_rien_sans_geste_et_peu_sur_un_seul(self):
        application = self.ouvrir()
        touches("h")
        attendre_la_note(application, "boucle finie")
        touches("a")
        attendre(lambda: self.adresses(), quoi="le lien suivi d’un geste")
        self.assertEqual(self.adresses(), ["https://exemple.fr/a?b=c&d intact"])
        touches("i")
        attendre(lambda: len(self.adresses()) == 10, quoi=lambda: f"dix liens (vu : {self.adresses()})")
        touches("a", "g")
        attendre_la_note(application, "#ici")
        self.assertEqual(len(self.adresses()), 10)
        application.quitter()

    def test_sans_application_pour_l_ouvrir_un_bandeau_le_dit(self):
        application = self.ouvrir(avec_navigateur=False)
        touches("b")
        application.attendre("bandeau")
        ecran.attendre_le_texte(application.processus.pid, "Aucune application ne sait ouvrir ce lien : mailto:moi@exemple.fr")
        self.assertEqual(couleur(680, 500), VERT)
        application.quitter()
