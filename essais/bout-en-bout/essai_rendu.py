"""Ce que le terminal montre, point par point, dans la fenêtre de l’application."""

import os
import re
import time

from application import attendre, lire, regler_la_resolution, touches
from essai_terminal import Terminal, taper
from points import Image, contraste

# L’horloge des images bat soixante fois par seconde.
REVEILS_AU_REPOS = 25

REPERE = (255, 0, 255)
TRAITS = ["4:1", "4:2", "4:3", "4:4", "4:5", "53", "9"]
MOTIF = "".join([
    # Deux cases sur deux, pleines : où l’on est, et la taille d’une case.
    "\033[2J\033[H\033[?25l", "\033[38;2;255;0;255m██\n██\033[0m\n",
    "\033[38;2;120;0;0m│ ──── ┌┬┐\n│      ├┼┤\n│      └┴┘\033[0m\n",
    "x_gjpqy\n",
    *(f"\033[{trait};58;2;120;0;0;38;2;120;0;0m    \033[0m " for trait in TRAITS),
    "\033[38;2;120;0;0m\033]8;;http://lien.test\033\\    \033]8;;\033\\\033[0m\n",
    "\033[37;44mHH\033[36;44mHH\033[33;47mHH\033[0m \033[31;41mHH\033[0m",
])


class Motif:
    """Le motif tel qu’il est à l’écran."""

    def __init__(self):
        self.image = Image()
        etendue = self.image.etendue(REPERE)
        self.trouve = etendue is not None
        if self.trouve:
            self.gauche, self.haut, droite, bas = etendue
            self.largeur, self.hauteur = (droite - self.gauche) // 2, (bas - self.haut) // 2

    def finit(self):
        """Jusqu’à sa dernière case : ce qui vient en deux morceaux se peint en deux fois."""
        return all(map(all, self.encre(7, 7, 2)))

    def case(self, colonne, rang, cases=1, rangs=1):
        x, y = self.gauche + colonne * self.largeur, self.haut + rang * self.hauteur
        return [[self.image.point(x + i, y + j) for i in range(cases * self.largeur)] for j in range(rangs * self.hauteur)]

    def encre(self, *case):
        """Vrai où quelque chose est peint."""
        fond = self.case(9, 0)[0][0]
        return [[contraste(point, fond) > 1.25 for point in ligne] for ligne in self.case(*case)]


def bandes(rangs):
    """Combien de suites de vrais."""
    return sum(1 for avant, ici in zip([False, *rangs], rangs) if ici and not avant)


class Repos(Terminal):
    def test_la_frappe_finie_la_fenetre_ne_bat_plus_la_mesure(self):
        application = self.ouvrir()
        taper("xyz")

        def reveils():
            etat = lire(f"/proc/{application.processus.pid}/status").decode()
            return int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", etat, re.M)[1])

        def au_repos():
            avant = reveils()
            time.sleep(1)
            return reveils() - avant < REVEILS_AU_REPOS

        attendre(au_repos, secondes=6, quoi="une seconde sans battement")
        application.quitter()


class Points(Terminal):
    def ouvrir_sur_le_motif(self, **variables):
        application = self.ouvrir(variables=variables)
        with open(os.path.join(application.maison, "motif"), "w") as fichier:
            fichier.write(MOTIF)
        taper("cat motif; read\n")
        return application

    def motif(self, corps, echelle):
        """Une fois le corps changé : la case a la hauteur de la police, à un point près ou deux."""
        vu = None

        def present():
            nonlocal vu
            vu = Motif()
            return vu.trouve and abs(vu.hauteur - 1.164 * corps * echelle) <= 2 and vu.finit()

        attendre(present, quoi=f"le motif au corps {corps}")
        return vu

    def verifier(self, corps, echelle=1):
        motif = self.motif(corps, echelle)
        with self.subTest(corps=corps, echelle=echelle):
            self.verifier_les_filets(motif)
            self.verifier_les_jambages(motif, corps * echelle)
            self.verifier_les_traits(motif)
            self.verifier_les_contrastes(motif)

    def verifier_les_filets(self, motif):
        self.assertEqual({point for ligne in motif.case(0, 0, 2, 2) for point in ligne}, {REPERE}, "le pavé a une couture")
        debout = motif.encre(0, 2, 1, 3)
        self.assertTrue(any(debout[0]))
        self.assertTrue(all(ligne == debout[0] for ligne in debout), "le filet vertical a un trou")
        couche = motif.encre(2, 2, 4, 1)
        colonnes = [list(colonne) for colonne in zip(*couche)]
        self.assertTrue(any(colonnes[0]))
        self.assertTrue(all(colonne == colonnes[0] for colonne in colonnes), "le filet horizontal a un trou")
        cadre = motif.encre(7, 2, 3, 3)
        milieu_x, milieu_y = [len(serie) // 2 for serie in (cadre[0], cadre)]
        croix = [colonne for colonne in zip(*cadre[motif.hauteur:-motif.hauteur]) if all(colonne)]
        self.assertTrue(croix, "le croisement n’est pas traversé de haut en bas")
        self.assertTrue(any(all(ligne[motif.largeur:-motif.largeur]) for ligne in cadre[motif.hauteur:-motif.hauteur]))
        self.assertTrue(any(any(ligne[:milieu_x]) for ligne in cadre[:milieu_y]))

    def verifier_les_jambages(self, motif, corps):
        bas = {}
        for colonne, lettre in enumerate("x_gjpqy"):
            encrees = [y for y, ligne in enumerate(motif.encre(colonne, 5)) if any(ligne)]
            self.assertTrue(encrees, f"« {lettre} » ne se voit pas")
            bas[lettre] = encrees[-1] + 1
        # La mise au point des contours peut prendre un point à un jambage ; « _ » descend au moins aussi bas.
        for lettre in "gjpqy":
            self.assertGreaterEqual(bas[lettre] - bas["x"], max(1, int(0.2 * corps) - 1), f"le bas de « {lettre} » manque")
            self.assertGreaterEqual(bas["_"], bas[lettre])

    def verifier_les_traits(self, motif):
        encres = [motif.encre(5 * rang, 6, 4) for rang in range(8)]
        simple, double, ondule, pointille, tirete, surligne, barre, lien = encres
        empilees = [bandes([any(ligne) for ligne in encre]) for encre in encres]
        self.assertEqual(empilees, [1, 2, 1, 1, 1, 1, 1, 1])
        pleines = [max(map(sum, encre)) / len(encre[0]) for encre in encres]
        for plein in (simple, double, surligne, barre):
            self.assertTrue(any(all(ligne) for ligne in plein))
        self.assertTrue(all(any(colonne) for colonne in zip(*ondule)), "l’onde est coupée")
        self.assertGreater(sum(map(any, ondule)), sum(map(any, simple)), "l’onde est plate")
        self.assertTrue(all(0.3 < plein < 0.9 for plein in (pleines[3], pleines[4], pleines[7])))
        decoupes = [bandes([any(colonne) for colonne in zip(*encre)]) for encre in (pointille, tirete, lien)]
        self.assertGreater(decoupes[0], decoupes[1])
        self.assertEqual(decoupes[1], decoupes[2])
        hauteurs = [[any(ligne) for ligne in encre].index(True) for encre in (surligne, barre, simple)]
        self.assertEqual(hauteurs, sorted(hauteurs))

    def verifier_les_contrastes(self, motif):
        for colonne in (0, 2, 4):
            points = [point for ligne in motif.case(colonne, 7, 2) for point in ligne]
            # Une lettre petite n’atteint jamais tout à fait sa couleur.
            voulu = 4.4 if motif.hauteur > 30 else 2
            self.assertGreaterEqual(max(contraste(point, points[0]) for point in points), voulu, f"illisible, colonne {colonne}")
        cache = {point for ligne in motif.case(7, 7, 2) for point in ligne}
        self.assertEqual(len(cache), 1, "ce que le programme cache se voit")

    def test_filets_jambages_traits_et_contrastes_sont_justes_a_tous_les_corps(self):
        application = self.ouvrir_sur_le_motif()
        self.verifier(14)
        touches(*["ctrl+shift+minus"] * 6)
        self.verifier(8)
        touches(*["ctrl+shift+plus"] * 24)
        self.verifier(32)
        touches("Return")
        application.quitter()

    def test_sur_un_ecran_a_points_doubles_aussi(self):
        application = self.ouvrir_sur_le_motif(GDK_SCALE="2")
        self.verifier(14, echelle=2)
        touches(*["ctrl+shift+minus"] * 6)
        self.verifier(8, echelle=2)
        touches("Return")
        application.quitter()

    def test_sous_un_texte_agrandi_par_le_bureau_aussi(self):
        self.addCleanup(regler_la_resolution, 96)
        for echelle in (1.25, 1.5):
            regler_la_resolution(round(96 * echelle))
            application = self.ouvrir_sur_le_motif()
            self.verifier(14, echelle)
            touches(*["ctrl+shift+minus"] * 6)
            self.verifier(8, echelle)
            touches("Return")
            application.quitter()
