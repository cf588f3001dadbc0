"""Ce qu’il faut à chaque scénario : son serveur, son environnement, et comment son journal doit finir."""

import dataclasses
import signal

ARRETE = ["arret-demande", "arret-fini"]
LAISSE = ["quitte-sans-toucher-au-serveur"]

# Un serveur qui répond, obéit aux fichiers que l’on pose à côté de lui, et dit son identité.
OBEISSANT = """
import fs from 'node:fs';
import http from 'node:http';
fs.writeFileSync('pid', String(process.pid));
fs.rmSync('fin', { force: true });
let gele = false;
fs.watch('.', (_, nom) => {
  if (nom === 'fin' && fs.existsSync('fin')) process.exit(3);
  if (nom !== 'geler' || gele) return;
  gele = true;
  process.kill(process.pid, 'SIGSTOP');
});
http.createServer((q, r) => r.end(q.url === '/api/sante' ? '{"version":"1","carnet":{"terminaux":0}}'
  : '<meta name="keltrove-jeton" content="x">')).listen(%PORT%, '127.0.0.1');
"""
BAVARD = OBEISSANT + "console.log('MESSAGE=Voici du neuf');\n"
LENT_A_PARTIR = OBEISSANT + """
const partir = () => fs.existsSync('adieu') && process.exit(0);
process.on('SIGTERM', () => {
  fs.watch('.', partir);
  partir();
});
"""
ETRANGER = "import http from 'node:http';\nhttp.createServer((q, r) => r.end('autre chose')).listen(%PORT%, '127.0.0.1');\n"


@dataclasses.dataclass
class Cas:
    serveur: str = "vrai"  # celui qui accompagne l’application, ou un code à la place ; vide : aucun
    lanceur: str = ""  # le script de démarrage d’une copie installée
    voisin: str = ""  # qui tient déjà le port : un « vrai » serveur, ou un code
    sans_node: bool = False
    signaux_ignores: list = dataclasses.field(default_factory=list)  # de qui lance l’application
    reste: bool = False  # celui que l’application a lancé, puis rejoint à un nouvel essai, lui survit
    fin: list = dataclasses.field(default_factory=lambda: ARRETE)
    environnement: dict = dataclasses.field(default_factory=dict)
    nu: bool = False  # lancé hors de son paquet
    reglages_illisibles: bool = False
    lancements: int = 1
    dit: str = ""  # une ligne de sa sortie d’erreur, en expression rationnelle
    duree: int = 0  # en secondes, pour ne pas finir par lui


def sans_serveur(**autres):
    return Cas(serveur="", fin=LAISSE, **autres)


def obeissant(**autres):
    return Cas(serveur=OBEISSANT, **autres)


def rejoint(**autres):
    return obeissant(reste=True, fin=LAISSE, **autres)


CAS = {
    "unServeurQuiTourneDejaEstRejointEtLaisse": Cas(voisin="vrai", fin=LAISSE),
    "enModeEssaiRienNeSeMontreEtToutSArreteSeul": Cas(
        environnement={"KELTROVE_ESSAI": "1", "KELTROVE_ESSAI_QUITTER": "8"}, duree=8,
        fin=["essai-quitte-tout-seul", *ARRETE]),
    "enModeDiscretLaFenetreEstDerriereEtDitSonNumero": Cas(
        environnement={"KELTROVE_DISCRET": "1"}, dit=r"  \[keltrove\] numero-fenetre [1-9]\d*"),
    "leCadreEstRetenuDUneFoisSurLAutre": sans_serveur(lancements=2),
    "uneFenetreDontLEcranSEnVaRevient": sans_serveur(),
    "quiEcouteLaPageEstRenduAvecSaFenetre": sans_serveur(),
    "unPortPrisParUnAutreEstContourne": Cas(voisin=ETRANGER),
    "desReglagesQueLOnNePeutEcrireNEmpechentRien": obeissant(reglages_illisibles=True),
    "chacuneDesSeptErreursSExplique": sans_serveur(),
    "entreePresseReessayerTantQuIlSeVoit": sans_serveur(),
    "leDetailDUnServeurMortSeDeplieEtSeReplie": Cas(serveur="console.log('aïe « é »'); process.exit(3);"),
    "lEcranALeDessinConvenu": sans_serveur(),
    "leBandeauEtLeFondOntLeDessinConvenu": sans_serveur(),
    "nodeAbsentSeDit": Cas(sans_node=True, fin=LAISSE),
    "unLancementQueLeSystemeRefuseSeDit": sans_serveur(lanceur="#!/un/interprete/absent\n"),
    "unServeurMuetSeDitAuBoutDeQuaranteSecondes": Cas(
        serveur="console.log('je réfléchis'); setInterval(() => {}, 1000);", duree=42),
    "unCodeModifieSeDit": Cas(serveur="console.log('MODIFIE=serveur.mjs'); process.exit(1);"),
    "laMortDuServeurEnUsageSeMontreEtSeRepare": obeissant(),
    "unServeurGeleSeDitApresTroisEchecsEtSeRetrouve": rejoint(duree=40),
    "leMotDeMiseAJourSeMontreDansLeBandeau": Cas(serveur=BAVARD, duree=5),
    "unSecondBandeauDureAutantQueLePremier": sans_serveur(duree=9),
    "unePageAnnuleeNeDitRienUneRateeSExplique": rejoint(),
    "leProgrammeDeLaPagePlanteTroisFoisDeSuite": rejoint(),
    "laSondeNoteCeQueLaPageContient": obeissant(duree=5),
    "unLienSOuvreAilleursSurUnGesteSeulement": obeissant(),
    "laPageSaitSiOnLaRegardeEtQuUnLecteurTourne": obeissant(),
    "laBarreEstCelleDeLaTable": sans_serveur(),
    "chaqueRaccourciMeneASonAction": rejoint(),
    "lAProposPorteLeJournalACopier": obeissant(),
    "lesArticlesSeGrisentSelonQuiALeClavier": obeissant(),
    "desFichiersPassentParLesSeptOperations": obeissant(),
    "desFichiersQuiRepartentNeLeDisentQuUneFois": obeissant(),
    "unTexteResteAWebKit": obeissant(),
    "leZoomCompteEtNEstJamaisNul": obeissant(),
    "unFichierAuNomIllisibleSeDitEtLesAutresSeDeposent": obeissant(),
    "dixMilleFichiersSeDeposentDUnCoup": obeissant(),
    "laPermissionEstDemandeeUneFois": rejoint(),
    "laPageApprendChacunDesEtats": obeissant(),
    "horsDUnPaquetLeCentreEstAbsentEtNulNYTouche": obeissant(nu=True),
    "uneNotificationSePoseEtRemplaceCelleDuMemeTerminal": obeissant(),
    "unMessageDeNImporteQuelTypeNEmpecheRien": obeissant(),
    "unClicRameneLaFenetreEtOuvreLeTerminal": obeissant(),
    "unClicApresLaFenetreFermeeRameneEncoreLApplication": Cas(serveur=LENT_A_PARTIR),
    "lesReglagesDuSystemeSOuvrent": obeissant(),
    "laFermetureAttendLeServeurEtNEcouteQueLui": Cas(serveur=LENT_A_PARTIR),
    "uneDemandeDArretFermeParLeCheminOrdinaireEtUneSeuleFois": Cas(serveur=LENT_A_PARTIR),
    "ctrlCDansLeTerminalDeLancementFermeAussi": obeissant(),
    "laFinDuTerminalDeLancementFermeAussi": obeissant(),
    "unSignalRecuIgnoreLeReste": obeissant(signaux_ignores=[signal.SIGHUP]),
    "leServeurDejaMortLaFermetureEstImmediate": obeissant(),
    "quitterPendantUnDemarrageNeLaisseRien": obeissant(fin=[]),
}
