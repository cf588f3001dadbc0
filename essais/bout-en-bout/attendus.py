"""Les mots de la table des pannes : ce que l’on attend après l’une d’elles, du journal, de l’écran, de ce qui reste.

Chaque attendu laisse l’application en marche, prête à quitter, ou dit qu’elle est partie.
"""

import re

from banc_de_fautes import guetter

MAUVAISES = ("echec-demarrage", "serveur-ne-repond-plus", "serveur-mort-en-route", "page-ratee")
LENTS = ("muet", "silence", "abandon")  # attendent de vraies dizaines de secondes


def _echec(banc, cause):
    banc.attendre("echec-demarrage")
    banc.verifier.assertEqual(banc.application.details("echec-demarrage")[-1], "cause=" + cause)
    banc.attendre_le_texte(cause)


# Le serveur ne s’ouvre pas.
def mort(banc):
    """Le serveur s’arrête avant d’avoir répondu : l’écran l’explique."""
    banc.liberer()
    _echec(banc, "Le serveur s’est arrêté aussitôt")
    banc.reste = False


def muet(banc):
    """Quarante secondes sans la réponse attendue ; et quitter ferme tout de même le serveur muet."""
    banc.liberer()
    with banc.places.longue_attente():
        banc.attendre("echec-demarrage", 60)
    _echec(banc, "Le serveur ne répond pas")


def allume(banc):
    """Le serveur d’avant n’est plus : l’application allume le sien."""
    banc.liberer()
    banc.attendre("allume")
    banc.attendre("page-contenu")
    banc.reste = False


def patience(banc):
    """Une mauvaise réponse n’est pas la fin : la bonne, venue plus tard, ouvre la page."""
    banc.liberer()
    banc.attendre_les_sondes(2)  # sans rendre sa place : la bonne réponse doit venir avant quarante secondes
    banc.verifier.assertNotIn("allume", banc.application.etapes())
    banc.panne.defaire(banc)
    banc.attendre("page-contenu")


# Le serveur s’en va, ou se tait.
def perdu(banc):
    """Le serveur en service s’arrête."""
    banc.attendre("serveur-mort-en-route")
    # La page qu’il servait à cet instant échoue aussi ; l’un ou l’autre se lit, et tous deux proposent de réessayer.
    page = ["La page de keltrove ne s’affiche pas"] if banc.moment == "chargement" else []
    banc.attendre_le_texte("Le serveur s’est arrêté", *page)


def degel(banc):
    """Une connexion se perd pendant le gel, sans que rien ne s’affiche ; la page vient au dégel."""
    banc.rendre_le_temps()
    if banc.moment != "attente":
        banc.attendre_un_client()  # qui vient donc pendant le gel
    banc.liberer()
    banc.verifier.assertNotIn("page-affichee", banc.application.etapes())
    banc.panne.defaire(banc)
    banc.attendre("page-contenu")


def silence(banc):
    """La surveillance dit que le serveur ne répond plus ; ou bien la page, perdue avant, qu’elle ne s’affiche pas."""
    banc.liberer()
    perdue = {"page-ratee": "La page de keltrove ne s’affiche pas"} if banc.panne.peut_perdre_la_page else {}
    dits = {"serveur-ne-repond-plus": "Le serveur de keltrove ne répond plus", **perdue}
    with banc.places.longue_attente():
        guetter(lambda: dits.keys() & set(banc.application.etapes()), 60, quoi=lambda: f"{dits} (vu : {banc.application.lignes})")
    banc.attendre_le_texte(*dits.values())


# La page.
def page(banc):
    """« Réessayer » rend la page ; un serveur retrouvé en vie n’est plus à nous."""
    banc.attendre("page-affichee", fois=banc.pages + 1)
    trouvailles = [etape for etape in banc.application.etapes() if etape in ("allume", "rattache")]
    if "serveur-mort-en-route" in banc.application.etapes():
        banc.verifier.assertEqual(trouvailles, ["allume", "allume"])
    banc.reste = trouvailles[-1] == "rattache"


def ratee(banc):
    """La page ne s’affiche pas."""
    banc.attendre("page-ratee")
    banc.attendre_le_texte("La page de keltrove ne s’affiche pas")


def refusee(banc):
    """Le serveur répond, mais plus rien ne permet d’ouvrir la page."""
    banc.liberer()
    ratee(banc)


def rien(banc):
    """La page se montre, et la surveillance passe au moins une fois après la panne."""
    banc.liberer()
    banc.attendre("page-contenu")
    with banc.places.longue_attente():
        banc.attendre_les_sondes(1)
    if banc.moment != "avant" or "bus" not in vars(banc):  # sans bus au départ, l’écran ne se lit pas
        guetter(banc.montre_la_page, quoi="un écran sans problème")
    for mauvaise in MAUVAISES:
        banc.verifier.assertNotIn(mauvaise, banc.application.etapes())


# La fermeture.
def fermee(banc):
    """Le serveur se ferme proprement, et l’application part après lui."""
    banc.liberer()
    banc.finir(0)
    (message,) = banc.application.details("arret-fini")
    duree = re.fullmatch(r"message=Serveur fermé proprement en (\d+\.\d) seconde\(s\)\.", message)
    banc.verifier.assertTrue(duree, message)
    banc.verifier.assertLess(float(duree[1]), 12)
    banc.verifier.assertEqual(banc.application.etapes()[-2:], ["arret-demande", "arret-fini"])


def abandon(banc):
    """Au bout du délai, l’application part et laisse le serveur finir."""
    with banc.places.longue_attente():
        banc.finir(0, 30)
    banc.verifier.assertIn("met du temps à se fermer", banc.application.details("arret-fini")[0])
    _finit_seul(banc)


def _finit_seul(banc):
    """Le signal lui était parvenu : il écrit sa liste et s’arrête quand il le peut."""
    banc.verifier.assertNotEqual(banc.application.serveurs(), [])
    banc.panne.defaire(banc)
    banc.liberer()
    guetter(lambda: not banc.application.serveurs(), quoi="la fin du serveur")


def quittee(banc):
    """Sur le point de quitter ; elle part sans attendre, et sans toucher au serveur."""
    banc.reste = banc.serveur.poll() is None
    banc.application.processus.terminate()
    banc.finir(0)
    banc.verifier.assertEqual(banc.application.etapes()[-1], "quitte-sans-toucher-au-serveur")


# L’écran s’en va.
def arret(banc):
    """Sans écran, l’application ferme son serveur avant de partir."""
    banc.finir(1)
    banc.verifier.assertEqual(banc.application.etapes()[-2:], ["arret-demande", "arret-fini"])


def sans_arret(banc):
    """Sans écran alors que le serveur se ferme déjà : elle part, il finit."""
    banc.finir(1)
    banc.verifier.assertEqual(banc.application.etapes()[-1], "arret-demande")
    _finit_seul(banc)


def sans_toucher(banc):
    """Sans écran, l’application part et laisse le serveur d’un autre."""
    banc.finir(1)
    banc.verifier.assertEqual(banc.application.etapes()[-1], "quitte-sans-toucher-au-serveur")


def _une_phrase(banc, debut):
    banc.finir(1)
    banc.verifier.assertEqual(len(banc.application.lignes), 1, banc.application.lignes)
    banc.verifier.assertTrue(banc.application.lignes[0].startswith(debut), banc.application.lignes)


def sans_ecran(banc):
    """Une phrase, et l’état 1."""
    _une_phrase(banc, "Keltrove n’a trouvé aucun écran")


def sans_moyens(banc):
    """Une phrase, et l’état 1."""
    _une_phrase(banc, "Keltrove ne peut pas s’ouvrir : le système n’a plus")


# L’application est tuée.
def rattachee(banc):
    """L’application suivante se rattache au serveur laissé."""
    banc.liberer()
    banc.attendre_l_ecoute()
    banc.application.lancer()
    banc.attendre("page-affichee")
    banc.verifier.assertIn("rattache", banc.application.etapes())
    banc.reste = True


def rallumee(banc):
    """Le serveur laissé finit de se fermer ; l’application suivante en allume un autre."""
    _finit_seul(banc)
    banc.application.lancer()
    banc.attendre("page-affichee")
    banc.verifier.assertIn("allume", banc.application.etapes())
