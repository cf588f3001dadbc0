"""Chaque touche envoie au programme ce qu’un terminal bien établi (VTE) lui enverrait."""

import itertools
import os
import shlex
import subprocess
import tempfile

from application import attendre, attendre_le_clavier, lire
from essai_terminal import Terminal, taper

ICI = os.path.dirname(os.path.abspath(__file__))
PYTHON = "/usr/bin/python3"
# Entre deux touches ; aucune n’en envoie.
REPERE = b"m"
# L’écran virtuel ne garde pas sans fin ce qui n’est pas lu.
POIGNEE = 20
AVEC = ["", "ctrl+", "shift+", "alt+", "ctrl+shift+", "ctrl+alt+", "shift+alt+", "ctrl+shift+alt+"]
LETTRES = "a c j z".split()
SIGNES = {
    "us": "1 2 3 4 5 6 7 8 9 0 minus equal bracketleft bracketright backslash semicolon apostrophe grave comma period slash".split(),
    "fr": "ampersand eacute quotedbl apostrophe parenleft minus egrave underscore ccedilla agrave parenright equal dollar "
          "ugrave asterisk comma semicolon colon exclam less dead_circumflex".split(),
}
DEPLACEMENTS = "Up Down Left Right Home End Prior Next Insert Delete".split()
AUTRES = ["space", "Tab", "Return", "Escape", "BackSpace"] + [f"F{n}" for n in range(1, 13)]
# Le curseur et le pavé numérique « d’application », et un écran à part : ce que prend un éditeur.
MODES_D_UN_EDITEUR = ["1", "66", "1049"]

# Les raccourcis de la page, de l’application et du gestionnaire de fenêtres.
# Maj+F10 ouvre le menu du terminal.
A_NOUS = {"F11", "alt+F4", "shift+F10"}
A_NOUS |= {f"{avec}Insert" for avec in AVEC if "ctrl" in avec or "shift" in avec}
A_NOUS |= {f"ctrl+shift+{touche}" for touche in "a c z 0 agrave minus equal underscore parenright Up Down Left Right Prior Next "
                                               "F10".split()}
# Une touche morte attend la suivante : elle a ses essais.
A_NOUS |= {"dead_circumflex", "shift+dead_circumflex", "alt+dead_circumflex", "shift+alt+dead_circumflex"}

# VTE y fait défiler d’une ligne, ou, plus récent, d’une invite, comme sans Alt ; sans Alt, ici, on change de terminal.
A_VTE = {f"ctrl+shift+alt+{fleche}" for fleche in ("Up", "Down", "Left", "Right")}


def est_gardee(nom, envoi):
    return nom in A_VTE and envoi == b""


def sans_l_un_des_deux(signe, envoi):
    """VTE oublie Alt, ou Ctrl, avec les signes qui ont leur commande à eux ; ici, comme dans xterm, les deux comptent."""
    return envoi.startswith(b"\x1b") and signe in (envoi[1:], b"\x1b/", b"\x1b?")


def combinaisons(touches):
    return [avec + touche for avec, touche in itertools.product(AVEC, touches) if avec + touche not in A_NOUS]


def pid_actif():
    return subprocess.run(["xdotool", "getactivewindow", "getwindowpid"], capture_output=True, text=True).stdout.strip()


class Touches(Terminal):
    maxDiff = None

    def frapper(self, combinaisons, fichier):
        """Ce que chacune envoie."""
        attendre(lambda: os.path.exists(fichier), quoi="le programme qui note")
        for debut in range(0, len(combinaisons), POIGNEE):
            poignee = combinaisons[debut:debut + POIGNEE]
            frappe = [touche for combinaison in poignee for touche in (combinaison, REPERE.decode())]
            subprocess.run(["xdotool", "key", "--delay", "6", *frappe], check=True)
            attendre(lambda: lire(fichier).count(REPERE) >= debut + len(poignee), quoi=f"la fin de {poignee}")
        return dict(zip(combinaisons, lire(fichier).split(REPERE)))

    def noter(self, fichier, combinaisons, modes):
        return [PYTHON, os.path.join(ICI, "noteur_de_touches.py"), fichier, REPERE.decode(), str(len(combinaisons)), *modes]

    def chez_nous(self, application, combinaisons, modes):
        fichier = self.chemin(application, "notes")
        with open(self.chemin(application, "noter"), "w") as script:
            script.write(shlex.join(self.noter(fichier, combinaisons, modes)))
        attendre_le_clavier(application)
        taper("sh noter\n")
        envois = self.frapper(combinaisons, fichier)
        os.remove(fichier)
        return envois

    def chez_le_temoin(self, combinaisons, modes):
        fichier = os.path.join(tempfile.mkdtemp(), "notes")
        temoin = subprocess.Popen([PYTHON, os.path.join(ICI, "temoin_vte.py"), *self.noter(fichier, combinaisons, modes)])
        self.addCleanup(temoin.wait)
        self.addCleanup(temoin.kill)
        attendre(lambda: pid_actif() == str(temoin.pid), quoi="le témoin au clavier")
        return self.frapper(combinaisons, fichier)

    def comparer(self, application, combinaisons, modes=()):
        notres = self.chez_nous(application, combinaisons, modes)
        siens = self.chez_le_temoin(combinaisons, modes)
        differences = {nom: (notre, siens[nom]) for nom, notre in notres.items()
                       if notre != siens[nom] and not est_gardee(nom, siens[nom]) and not sans_l_un_des_deux(siens[nom], notre)}
        self.assertEqual(differences, {}, "(nous, VTE)")

    def comparer_tout(self, disposition, *options):
        subprocess.run(["setxkbmap", disposition, *options], check=True)
        self.addCleanup(subprocess.run, ["setxkbmap", "us", "-option", ""], check=True)
        application = self.ouvrir()
        self.comparer(application, combinaisons(LETTRES + SIGNES[disposition] + DEPLACEMENTS + AUTRES))
        self.comparer(application, combinaisons(DEPLACEMENTS), MODES_D_UN_EDITEUR)
        application.quitter()

    def test_au_clavier_americain_chaque_touche_envoie_ce_que_vte_enverrait(self):
        self.comparer_tout("us")

    def test_au_clavier_francais_chaque_touche_envoie_ce_que_vte_enverrait(self):
        self.comparer_tout("fr", "oss")
