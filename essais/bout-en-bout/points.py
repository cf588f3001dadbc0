"""Les points de l’écran, lus d’un coup, et le contraste de deux d’entre eux."""

import subprocess


class Image:
    def __init__(self):
        taille = subprocess.run(["xdotool", "getdisplaygeometry"], capture_output=True, text=True, check=True).stdout
        self.largeur, self.hauteur = map(int, taille.split())
        self.octets = subprocess.run(["import", "-window", "root", "-depth", "8", "rgb:-"], capture_output=True, check=True).stdout

    def point(self, x, y):
        debut = 3 * (y * self.largeur + x)
        return tuple(self.octets[debut:debut + 3])

    def etendue(self, couleur):
        """Le plus petit rectangle qui contient tout ce qui est de cette couleur : gauche, haut, droite, bas ; rien sinon."""
        rangs = {}
        trouve = self.octets.find(bytes(couleur))
        while trouve >= 0:
            if trouve % 3 == 0:
                y, x = divmod(trouve // 3, self.largeur)
                rangs.setdefault(y, []).append(x)
            trouve = self.octets.find(bytes(couleur), trouve + 1)
        if not rangs:
            return None
        return (min(map(min, rangs.values())), min(rangs), max(map(max, rangs.values())) + 1, max(rangs) + 1)


def _clarte(couleur):
    parts = [octet / 255 for octet in couleur]
    rouge, vert, bleu = [p / 12.92 if p <= 0.03928 else ((p + 0.055) / 1.055) ** 2.4 for p in parts]
    return 0.2126 * rouge + 0.7152 * vert + 0.0722 * bleu


def contraste(une, autre):
    sombre, claire = sorted(map(_clarte, (une, autre)))
    return (claire + 0.05) / (sombre + 0.05)
