import { readFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { join } from 'node:path';
import { Accueil } from './Accueil.mjs';
import { Carnet } from './Carnet.mjs';
import { prendreUnPort } from './ecoute.mjs';
import { balayerLesProvisoires } from './fichiers.mjs';
import { Liaison } from './Liaison.mjs';
import { creerDossierCache, dossierCache, lireOuCreerJeton, portSouhaite } from './reglages.mjs';
import { Terminaux } from './Terminaux.mjs';

const DELAI_DES_ADIEUX = 1000;

const { version } = JSON.parse(readFileSync(new URL('../package.json', import.meta.url), 'utf8'));

function dire(phrase) {
  process.stdout.write(`${phrase}\n`);
}

export async function demarrer() {
  let allume = null;
  for (const signal of ['SIGTERM', 'SIGINT', 'SIGHUP']) process.on(signal, () => eteindre(allume));

  const serveur = createServer();
  const souhaite = portSouhaite();
  const { issue, port } = await prendreUnPort(serveur, souhaite);
  if (issue === 'dejaLa') {
    dire(`keltrove tourne déjà sur http://127.0.0.1:${port}/ : rien à allumer.`);
    process.exit(0);
  }
  // Jeton et liste ne sont touchés qu’une fois le port obtenu : un second serveur lancé par mégarde ne les abîme pas.
  // Rien n’attend plus d’ici à la fin : aucune requête ne peut donc arriver avant que tout soit branché.
  allume = allumer(serveur);
  if (issue === 'libre') dire(`Le port ${souhaite} n’est pas libre : keltrove prend le port ${port}.`);
  dire(`keltrove ${version} écoute sur http://127.0.0.1:${port}/`);
}

function allumer(serveur) {
  creerDossierCache();
  balayerLesProvisoires(dossierCache());
  const jeton = lireOuCreerJeton();
  const terminaux = new Terminaux();
  const liaison = new Liaison({ terminaux, jeton });
  const accueil = new Accueil({ jeton, version, compterLesTerminaux: () => terminaux.nombre });

  const carnet = new Carnet({
    chemin: join(dossierCache(), 'keltrove-carnet.json'),
    version,
    decrire: () => terminaux.pourLeCarnet(),
    signaler(phrase) {
      dire(phrase);
      liaison.aviser(phrase);
    },
  });

  terminaux.quandSortie = (id, texte) => {
    liaison.diffuserLaSortie(id, texte);
    carnet.noter();
  };
  terminaux.quandListeChange = () => {
    carnet.noter();
    liaison.diffuserLaListe();
  };
  carnet.quandEcrit = () => liaison.diffuserLaListe();
  const garde = carnet.lire();
  if (estPlusRecente(version, garde.serveur)) dire(`MESSAGE=Keltrove a été mis à jour : voici la version ${version}.`);
  terminaux.restaurer(garde.terminaux);

  serveur.on('request', (requete, reponse) => accueil.repondre(requete, reponse));
  serveur.on('upgrade', (requete, prise, tete) => liaison.accueillir(requete, prise, tete));
  return { serveur, terminaux, carnet, liaison, enArret: false };
}

async function eteindre(allume) {
  if (!allume) process.exit(0);
  if (allume.enArret) return;
  allume.enArret = true;
  // La liste d’abord : dès que les interpréteurs raccrochent, leurs dossiers de travail ne se lisent plus ; et le
  // serveur qui prendrait le port aussitôt libre doit la trouver entière.
  await allume.carnet.clore();
  allume.serveur.close();
  allume.liaison.fermer();
  await Promise.race([
    allume.terminaux.raccrocher(),
    new Promise((suite) => setTimeout(suite, DELAI_DES_ADIEUX)),
  ]);
  process.exit(0);
}

function estPlusRecente(version, ancienne) {
  if (!/^\d+(\.\d+)*$/.test(ancienne)) return false;
  return version.localeCompare(ancienne, 'fr', { numeric: true }) > 0;
}
