"""Un texte ou un lien tiré d’un autre programme jusque sur un terminal, et ce que le shell en reçoit."""

import os

from application import attendre, attendre_le_clavier, touches
from essai_terminal import Terminal, taper
from glissement import Source

GAUCHE = (300, 500)


class Glissement(Terminal):
    def deposer(self, application, sorte, texte):
        source = Source(self, sorte, texte)
        source.prendre()
        source.mener(*GAUCHE, source.admis, "le dépôt admis")
        self.assertEqual(source.lacher(), "fini")
        source.fermer()
        attendre_le_clavier(application)

    def test_un_texte_et_un_lien_s_ecrivent_la_ou_on_les_lache_et_la_page_reste(self):
        application = self.ouvrir()
        taper("cat > recu\n")
        self.attendre_le_fichier(application, "recu")
        # Le second terminal est choisi, et c’est le premier que l’on vise.
        touches("ctrl+shift+d")
        attendre(lambda: len(self.carnet(application)) == 2 and self.carnet(application)[1]["lignes"], quoi="le second terminal")
        self.deposer(application, "texte", "tiré\x1b[31m \x03à part")
        self.attendre_l_echo(application, "à part")
        touches("Return")
        self.contenu(application, "recu", "tiré[31m à part\n")
        self.deposer(application, "adresses", "http://exemple.test/une%20page\r\n")
        self.attendre_l_echo(application, "exemple")
        touches("Return")
        self.contenu(application, "recu", "tiré[31m à part\nhttp://exemple.test/une%20page\n")
        self.assertEqual(application.etapes().count("page-affichee"), 1)
        application.quitter()

    def test_laches_d_un_trait_ils_arrivent(self):
        application = self.ouvrir()
        taper("stty -icanon; cat > recu\n")
        self.attendre_le_fichier(application, "recu")
        recu = ""
        for sorte, texte in (("texte", "tiré "), ("fichiers", "/tmp/a"), ("adresses", "http://exemple.test/"),
                             ("texte", " encore ")):
            source = Source(self, sorte, texte)

            def jeter(pas, source=source):
                source.prendre()
                return source.jeter(*GAUCHE, pas)

            for _ in range(5):
                # Lâchée avant que l’on n’ait dit en vouloir, la source garde tout : un peu moins vite alors.
                self.assertIn("fini", map(jeter, range(200)))
                recu += texte + " " * (sorte == "fichiers")
                self.contenu(application, "recu", recu)
            source.fermer()
        application.quitter()

    def test_plusieurs_lignes_ne_partent_pas_seules(self):
        application = self.ouvrir()
        taper("cat > recu\n")
        self.attendre_le_fichier(application, "recu")
        self.deposer(application, "texte", "un\ndeux\n")
        # La question est posée ; son premier bouton annule.
        touches("Return")
        taper("fin\n")
        self.contenu(application, "recu", "fin\n")
        touches("ctrl+d")
        self.deposer(application, "texte", "touch pris\ntouch pris\n")
        touches("ctrl+u")
        taper("touch apres\n")
        self.attendre_le_fichier(application, "apres")
        self.assertFalse(os.path.exists(self.chemin(application, "pris")))
        application.quitter()
