#!/usr/bin/env python3
"""faire_icns.py <dossier d’images> <icône> : réunit des images « taille.png » en une icône de macOS.

Le fichier est une suite de (genre, taille, image) ; le genre dit la taille à laquelle l’image sert, et la densité de
l’écran. La même image sert à deux genres."""
import struct
import sys
from pathlib import Path

GENRES = {16: ["icp4"], 32: ["icp5", "ic11"], 64: ["ic12"], 128: ["ic07"], 256: ["ic08", "ic13"], 512: ["ic09", "ic14"], 1024: ["ic10"]}


def main():
    dossier, sortie = map(Path, sys.argv[1:])
    corps = b""
    for taille, genres in GENRES.items():
        image = (dossier / f"{taille}.png").read_bytes()
        for genre in genres:
            corps += genre.encode() + struct.pack(">I", 8 + len(image)) + image
    sortie.write_bytes(b"icns" + struct.pack(">I", 8 + len(corps)) + corps)


if __name__ == "__main__":
    main()
