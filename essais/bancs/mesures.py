"""Ce que les bancs partagent : l’écran lu pixel par pixel, des touches, la mémoire et le processeur d’un programme."""

import contextlib
import ctypes
import os
import select
import socket

X = ctypes.CDLL("libX11.so.6")
XTST = ctypes.CDLL("libXtst.so.6")
XDAMAGE = ctypes.CDLL("libXdamage.so.1")
for fonction in (X.XOpenDisplay, X.XGetImage):
    fonction.restype = ctypes.c_void_p
for fonction in (X.XDefaultRootWindow, X.XGetPixel, X.XStringToKeysym):
    fonction.restype = ctypes.c_ulong
X.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint, ctypes.c_uint,
                        ctypes.c_ulong, ctypes.c_int]
X.XGetPixel.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_int]
X.XKeysymToKeycode.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
for fonction in (X.XDefaultRootWindow, X.XDestroyImage, X.XFlush, X.XPending, X.XConnectionNumber):
    fonction.argtypes = [ctypes.c_void_p]
X.XNextEvent.argtypes = [ctypes.c_void_p, ctypes.c_char_p]
XTST.XTestFakeKeyEvent.argtypes = [ctypes.c_void_p, ctypes.c_uint, ctypes.c_int, ctypes.c_ulong]
XDAMAGE.XDamageQueryExtension.argtypes = [ctypes.c_void_p, ctypes.POINTER(ctypes.c_int), ctypes.POINTER(ctypes.c_int)]
XDAMAGE.XDamageCreate.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int]

ecran = X.XOpenDisplay(None)
fond = X.XDefaultRootWindow(ecran)
LARGEUR, HAUTEUR = X.XDisplayWidth(ctypes.c_void_p(ecran), 0), X.XDisplayHeight(ctypes.c_void_p(ecran), 0)


class Image(ctypes.Structure):
    _fields_ = [(nom, ctypes.c_int) for nom in ("largeur", "hauteur", "decalage", "format")] + [("octets", ctypes.c_void_p)]


def pixel(x, y):
    image = X.XGetImage(ecran, fond, x, y, 1, 1, 0xFFFFFFFF, 2)
    valeur = X.XGetPixel(image, 0, 0) & 0xFFFFFF
    X.XDestroyImage(image)
    return valeur


def chercher(couleur):
    """Le milieu de la première rangée de cette couleur, d’au moins quatre pixels ; rien si elle n’est pas à l’écran."""
    image = X.XGetImage(ecran, fond, 0, 0, LARGEUR, HAUTEUR, 0xFFFFFFFF, 2)
    octets = ctypes.string_at(Image.from_address(image).octets, LARGEUR * HAUTEUR * 4)
    X.XDestroyImage(image)
    motif = couleur.to_bytes(3, "little")
    for y in range(HAUTEUR):
        rangee = octets[y * LARGEUR * 4:(y + 1) * LARGEUR * 4]
        siens = [x for x in range(LARGEUR) if rangee[x * 4:x * 4 + 3] == motif] if motif in rangee else []
        if len(siens) >= 4:
            return siens[len(siens) // 2], y
    return None


def suivre_l_ecran():
    """Dès lors, tout dessin se signale à `attendre_un_dessin`."""
    XDAMAGE.XDamageQueryExtension(ecran, ctypes.byref(ctypes.c_int()), ctypes.byref(ctypes.c_int()))
    XDAMAGE.XDamageCreate(ecran, fond, 0)


def attendre_un_dessin(secondes):
    evenement = ctypes.create_string_buffer(256)
    if not X.XPending(ecran):
        select.select([X.XConnectionNumber(ecran)], [], [], secondes)
    while X.XPending(ecran):
        X.XNextEvent(ecran, evenement)


def frapper(*noms):
    """Une touche, tenue avec celles qui la précèdent."""
    codes = [X.XKeysymToKeycode(ecran, X.XStringToKeysym(nom.encode())) for nom in noms]
    for code in codes:
        XTST.XTestFakeKeyEvent(ecran, code, 1, 0)
    for code in reversed(codes):
        XTST.XTestFakeKeyEvent(ecran, code, 0, 0)
    X.XFlush(ecran)


def arbre(racine):
    parents = {}
    for pid in filter(str.isdigit, os.listdir("/proc")):
        with contextlib.suppress(OSError), open(f"/proc/{pid}/stat") as fichier:
            parents.setdefault(int(fichier.read().rsplit(")", 1)[1].split()[1]), []).append(int(pid))
    membres, a_voir = [], [racine]
    while a_voir:
        membres.append(a_voir.pop())
        a_voir += parents.get(membres[-1], [])
    return membres


def memoire(racine):
    """La part proportionnelle (PSS) du processus et de ses enfants, en mégaoctets."""
    total = 0
    for pid in arbre(racine):
        with contextlib.suppress(OSError), open(f"/proc/{pid}/smaps_rollup") as fichier:
            total += sum(int(l.split()[1]) for l in fichier if l.startswith("Pss:"))
    return total / 1024


def processeur(racine):
    """En secondes, depuis le début."""
    tics = 0
    for pid in arbre(racine):
        with contextlib.suppress(OSError), open(f"/proc/{pid}/stat") as fichier:
            tics += sum(map(int, fichier.read().rsplit(")", 1)[1].split()[11:13]))
    return tics / os.sysconf("SC_CLK_TCK")


def port_libre():
    with socket.socket() as prise:
        prise.bind(("127.0.0.1", 0))
        return prise.getsockname()[1]
