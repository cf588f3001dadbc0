"""Ce que l’on attend après une panne : les étapes du journal, l’écran, ce qui reste.

Chaque attendu laisse l’application en marche, prête à quitter, ou dit qu’elle est partie.
"""

import re

from partage import guetter

MAUVAISES = ("echec-demarrage", "serveur-ne-repond-plus", "serveur-mort-en-route", "page-ratee")
MORT = "Le serveur s’est arrêté aussitôt"
MUET = "Le serveur ne répond pas"


def lente(attendu):
    """Attend de vraies dizaines de secondes."""
    attendu.lente = True
    return attendu


def _la_page_revient(banc):
    """On répare, on réessaie, et la page est là ; un serveur retrouvé en vie n’est plus à nous."""
    banc.panne.defaire(banc)
    fois = banc.application.etapes().count("page-affichee")
    banc.reessayer()
    banc.attendre("page-affichee", fois=fois + 1)
    trouvailles = [etape for etape in banc.application.etapes() if etape in ("allume", "rattache")]
    banc.reste = trouvailles[-1] == "rattache"


def _echec(banc, cause, secondes=30):
    banc.attendre("echec-demarrage", secondes)
    banc.verifier.assertEqual(banc.application.details("echec-demarrage")[-1], "cause=" + cause)
    banc.attendre_le_texte(cause)


# Le serveur ne s’ouvre pas.
def echec_mort(banc):
    banc.liberer()
    _echec(banc, MORT)
    banc.reste = False


def echec_mort_puis_page(banc):
    banc.liberer()
    _echec(banc, MORT)
    _la_page_revient(banc)


@lente
def echec_muet(banc):
    """Et quitter ferme tout de même le serveur muet."""
    banc.liberer()
    with banc.places.longue_attente():
        banc.attendre("echec-demarrage", 60)
    _echec(banc, MUET)


@lente
def echec_muet_puis_page(banc):
    echec_muet(banc)
    _la_page_revient(banc)


def allume_le_sien(banc):
    banc.liberer()
    banc.attendre("allume")
    banc.attendre("page-contenu")
    banc.reste = False


def attend_la_bonne_reponse(banc):
    banc.liberer()
    banc.attendre_les_sondes(2)
    banc.verifier.assertNotIn("allume", banc.application.etapes())
    banc.panne.defaire(banc)
    banc.attendre("page-contenu")


# Le serveur s’en va, ou se tait.
def mort_puis_page(banc):
    banc.attendre("serveur-mort-en-route")
    # La page qu’il servait à cet instant échoue aussi ; l’un ou l’autre se lit, et tous deux proposent de réessayer.
    page = ["La page de keltrove ne s’affiche pas"] if banc.moment == "chargement" else []
    banc.attendre_le_texte("Le serveur s’est arrêté", *page)
    banc.liberer()
    _la_page_revient(banc)
    banc.verifier.assertEqual(banc.application.etapes().count("allume"), 2)


def mort_puis_echec(banc):
    banc.attendre("serveur-mort-en-route")
    banc.liberer()
    banc.reessayer()
    _echec(banc, MORT)


def page_apres_le_degel(banc):
    if banc.moment != "attente":
        banc.attendre_un_client()  # qui vient donc pendant le gel
    banc.liberer()
    banc.verifier.assertNotIn("page-affichee", banc.application.etapes())
    banc.panne.defaire(banc)
    banc.attendre("page-contenu")


@lente
def silence_puis_page(banc):
    banc.liberer()
    with banc.places.longue_attente():
        banc.attendre("serveur-ne-repond-plus", 60)
    page = ["La page de keltrove ne s’affiche pas"] if banc.panne.peut_perdre_la_page else []
    banc.attendre_le_texte("Le serveur de keltrove ne répond plus", *page)
    _la_page_revient(banc)


@lente
def silence_puis_echec(banc):
    with banc.places.longue_attente():
        banc.attendre("serveur-ne-repond-plus", 60)
    banc.reessayer()
    _echec(banc, MORT)
    banc.reste = False


# La page.
def page_ratee_puis_page(banc):
    banc.attendre("page-ratee")
    banc.attendre_le_texte("La page de keltrove ne s’affiche pas")
    banc.liberer()
    _la_page_revient(banc)


def page_ratee(banc):
    """Le programme réseau de WebKit part avec le bus, et avec lui ce qui se chargeait ; l’écran ne se lit plus."""
    banc.attendre("page-ratee")


def page_refusee_puis_page(banc):
    banc.liberer()
    page_ratee_puis_page(banc)


def page_ratee_puis_echec(banc):
    banc.attendre("page-ratee")
    banc.attendre_le_texte("La page de keltrove ne s’affiche pas")
    banc.liberer()
    banc.reessayer()
    _echec(banc, MORT)
    banc.reste = False


def rien_ne_change(banc):
    """La page se montre, et la surveillance passe au moins une fois après la panne."""
    banc.liberer()
    banc.attendre("page-contenu")
    banc.attendre_les_sondes(1)
    if "bus" not in vars(banc):  # son écran ne se lit que sur le bus commun
        guetter(lambda: banc.ecran().boutons() == [], quoi="un écran sans problème")
    for mauvaise in MAUVAISES:
        banc.verifier.assertNotIn(mauvaise, banc.application.etapes())


# La fermeture.
def ferme_proprement(banc):
    banc.liberer()
    banc.finir(0)
    (message,) = banc.application.details("arret-fini")
    duree = re.fullmatch(r"message=Serveur fermé proprement en (\d+\.\d) seconde\(s\)\.", message)
    banc.verifier.assertTrue(duree, message)
    banc.verifier.assertLess(float(duree[1]), 12)
    banc.verifier.assertEqual(banc.application.etapes()[-2:], ["arret-demande", "arret-fini"])


@lente
def ferme_sans_attendre_davantage(banc):
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


def quitte_aussitot(banc):
    banc.reste = banc.serveur.poll() is None
    banc.application.processus.terminate()
    banc.finir(0)
    banc.verifier.assertEqual(banc.application.etapes()[-1], "quitte-sans-toucher-au-serveur")


# L’écran s’en va.
def part_en_arretant(banc):
    banc.finir(1)
    banc.verifier.assertEqual(banc.application.etapes()[-2:], ["arret-demande", "arret-fini"])


def part_sans_attendre(banc):
    banc.finir(1)
    banc.verifier.assertEqual(banc.application.etapes()[-1], "arret-demande")
    _finit_seul(banc)


def part_sans_toucher(banc):
    banc.finir(1)
    banc.verifier.assertEqual(banc.application.etapes()[-1], "quitte-sans-toucher-au-serveur")


def _une_phrase(banc, debut):
    banc.finir(1)
    guetter(lambda: banc.application.lignes, quoi="la phrase")
    banc.verifier.assertEqual(len(banc.application.lignes), 1, banc.application.lignes)
    banc.verifier.assertTrue(banc.application.lignes[0].startswith(debut), banc.application.lignes)


def dit_sans_ecran(banc):
    _une_phrase(banc, "Keltrove n’a trouvé aucun écran")


def dit_sans_ressources(banc):
    _une_phrase(banc, "Keltrove ne peut pas s’ouvrir : le système n’a plus")


# L’application est tuée.
def suivante_rattachee(banc):
    banc.liberer()
    banc.attendre_l_ecoute()
    banc.application.lancer()
    banc.attendre("page-affichee")
    banc.verifier.assertIn("rattache", banc.application.etapes())
    banc.reste = True


def suivante_allume(banc):
    _finit_seul(banc)
    banc.application.lancer()
    banc.attendre("page-affichee")
    banc.verifier.assertIn("allume", banc.application.etapes())
