"""La sélection de l’écran : un terminal la donne, et Maj+Inser ou le bouton du milieu la collent."""

import os
import subprocess
import threading

from application import attendre, touches
from essai_etrangers import ATTENDRE_LA_PAGE, copier
from essai_terminal import Terminal, taper
from glissement import souris

ICI = os.path.dirname(os.path.abspath(__file__))


def selection():
    return subprocess.run(["xclip", "-o", "-selection", "primary"], capture_output=True, text=True).stdout


class Veilleur:
    """Compte combien de fois la sélection change de main."""

    def __init__(self, cas):
        self.lignes = []
        self.processus = subprocess.Popen(["/usr/bin/python3", os.path.join(ICI, "veilleur_de_selection.py")],
                                          stdout=subprocess.PIPE, text=True)
        cas.addCleanup(self.fermer)
        threading.Thread(target=self.lire, daemon=True).start()
        attendre(lambda: "pret\n" in self.lignes, quoi="le veilleur")

    def lire(self):
        for ligne in self.processus.stdout:
            self.lignes.append(ligne)

    def fermer(self):
        self.processus.kill()
        self.processus.wait()

    def changements(self):
        return self.lignes.count("change\n")


class Selection(Terminal):
    def attendre_la_selection(self, texte):
        attendre(lambda: selection() == texte, quoi=lambda: f"{texte!r} sélectionné (vu : {selection()!r})")

    def test_ce_que_l_on_selectionne_est_donne_une_fois_avec_ses_lignes(self):
        copier("celle d’avant", "primary")
        application = self.ouvrir()
        taper("clear; yes 'mot choisi' | head -40; touch ecrit\n")
        self.attendre_le_fichier(application, "ecrit")
        veilleur = Veilleur(self)
        # Un simple clic ne sélectionne rien.
        souris("mousemove", 1000, 500, "click", 1)
        souris("mousemove", 1000, 300, "mousedown", 1)
        for y in range(304, 360, 4):
            souris("mousemove", 1000, y)
        souris("mouseup", 1)
        attendre(lambda: selection().startswith("\nmot choisi\n"), quoi=lambda: f"les lignes (vu : {selection()!r})")
        # Ce que l’on copie ensuite vient après tout ce que la souris aurait causé.
        copier("autre chose", "primary")
        self.attendre_la_selection("autre chose")
        attendre(lambda: veilleur.changements() >= 2, quoi="les changements")
        self.assertEqual(veilleur.changements(), 2, "une fois pour les lignes, une pour ce qui suit")
        application.quitter()

    def test_maj_inser_et_le_bouton_du_milieu_collent_la_selection_et_ctrl_maj_inser_le_presse_papiers(self):
        choisi, copie = "celle d’un autre", "presse-papiers"
        copier(choisi, "primary")
        copier(copie)
        application = self.ouvrir()
        collages = [(lambda: touches("shift+Insert"), choisi), (lambda: touches("ctrl+shift+Insert"), copie),
                    (lambda: souris("mousemove", 640, 500, "click", 2), choisi)]
        for rang, (coller, voulu) in enumerate(collages):
            recu = f"recu{rang}"
            taper(f"{ATTENDRE_LA_PAGE}cat > {recu}\n")
            self.attendre_le_fichier(application, recu)
            coller()
            touches("Return")
            self.contenu(application, recu, voulu + "\n")
            touches("ctrl+d")
        application.quitter()
