"""Dans un terminal : note ce que les touches y envoient, jusqu’au dernier repère.

  noteur_de_touches.py <fichier> <repère> <combien> [modes à donner d’abord au terminal…]
"""

import os
import sys
import termios
import tty

fichier, repere, combien, *modes = sys.argv[1:]


def donner(etat):
    for mode in modes:
        os.write(1, f"\x1b[?{mode}{etat}".encode())


avant = termios.tcgetattr(0)
tty.setraw(0)
donner("h")
# Sa réponse à cette question dit qu’il a lu les modes.
os.write(1, b"\x1b[5n")
while os.read(0, 1) != b"n":
    pass
vus = 0
with open(fichier, "wb", buffering=0) as notes:
    while vus < int(combien):
        recu = os.read(0, 4096)
        vus += recu.count(repere.encode())
        notes.write(recu)
donner("l")
termios.tcsetattr(0, termios.TCSADRAIN, avant)
