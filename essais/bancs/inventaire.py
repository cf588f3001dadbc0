"""Les mesures de inventaire.sh : durées et mémoire de pointe, entrelacées pour que la machine soit la même pour tous."""

import os
import statistics
import subprocess
import sys
import time

KELTROVE, SIGNER, RACINE = sys.argv[1:]


def remplir(nom, fichiers):
    for chemin, octets in fichiers:
        complet = os.path.join(RACINE, nom, chemin)
        os.makedirs(os.path.dirname(complet), exist_ok=True)
        with open(complet, "wb") as fichier:
            for morceau in octets:
                fichier.write(morceau)
    dossier = os.path.join(RACINE, nom)
    subprocess.run(["find . -type f | xargs -d '\\n' sha256sum > ../" + nom + ".sommes"], shell=True, cwd=dossier, check=True)
    subprocess.run([SIGNER, "sceller", dossier, os.path.join(RACINE, nom + ".pem")], check=True, stdout=subprocess.DEVNULL)
    return dossier


def une_mesure(commande, dossier):
    """Durée en millisecondes et mémoire de pointe en Mio."""
    debut = time.perf_counter()
    enfant = subprocess.Popen(commande, cwd=dossier, stdout=subprocess.DEVNULL)
    _, etat, usage = os.wait4(enfant.pid, 0)
    duree = (time.perf_counter() - debut) * 1000
    enfant.returncode = 0
    assert etat == 0, commande
    return duree, usage.ru_maxrss / 1024


def comparer(titre, commandes, dossier, fois=5):
    mesures = {nom: [] for nom in commandes}
    for tour in range(fois + 1):
        for nom, commande in commandes.items():
            mesure = une_mesure(commande, dossier)
            if tour > 0:  # le premier tour chauffe le cache
                mesures[nom].append(mesure)
    print(f"\n{titre}")
    medianes = {nom: (statistics.median(m[0] for m in liste), max(m[1] for m in liste)) for nom, liste in mesures.items()}
    reference = list(medianes.values())[-1][0]
    for nom, (duree, memoire) in medianes.items():
        print(f"  {nom:28} {duree:10.1f} ms  {duree / reference:6.2f}  {memoire:8.1f} Mio")
    return medianes


def verifier(nom):
    return [KELTROVE, "verifier-inventaire", os.path.join(RACINE, nom), os.path.join(RACINE, nom + ".pem")]


def petits(nombre):
    # Rien n’est gardé en mémoire : un enfant commence avec la pointe de son parent.
    return ((f"{i // 100}/{i % 100}", [os.urandom(8192)]) for i in range(nombre))


un = remplir("un", [("seul", [b"x"])])
comparer("Un fichier d’un octet (but : 5 ms)", {"keltrove": verifier("un"), "/bin/true": ["/bin/true"]}, un, 25)

gros = remplir("gros", [("gros", (os.urandom(1 << 20) for _ in range(1024)))])
comparer("Un fichier de 1 Gio (but : 1,10 et 1056 Mio)",
         {"keltrove": verifier("gros"), "openssl dgst -sha256": ["openssl", "dgst", "-sha256", "gros"]}, gros)

dix = remplir("dix", petits(10000))
mesures = comparer("10 000 fichiers de 8 Kio (but : 1,0)",
                   {"keltrove": verifier("dix"), "sha256sum -c": ["sha256sum", "--quiet", "-c", "../dix.sommes"]}, dix)

cent = remplir("cent", petits(100000))
grandes = comparer("100 000 fichiers de 8 Kio",
                   {"keltrove": verifier("cent"), "sha256sum -c": ["sha256sum", "--quiet", "-c", "../cent.sommes"]}, cent)
print(f"\n100 000 contre 10 000 : {grandes['keltrove'][0] / mesures['keltrove'][0]:.1f} fois (but : 11)")
