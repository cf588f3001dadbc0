import { once } from 'node:events';
import { readFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { creerLAccueil } from './accueil.mjs';
import { ouvrirLeCarnet } from './carnet.mjs';
import { Liaison } from './Liaison.mjs';
import { auDossierCache, lireOuCreerJeton, portSouhaite, preparerLeDossierCache } from './reglages.mjs';
import { Terminaux } from './Terminaux.mjs';

const ADRESSE = '127.0.0.1';
const DELAI_DE_RECONNAISSANCE = 1500;
const DELAI_DES_ADIEUX = 1000;

const { version } = JSON.parse(readFileSync(new URL('../package.json', import.meta.url), 'utf8'));
const estAncienne = (autre) => /^\d+(\.\d+)*$/.test(autre) && version.localeCompare(autre, 'fr', { numeric: true }) > 0;
const serveur = createServer();

export async function demarrer() {
  let eteindre = () => process.exit(0);
  for (const signal of ['SIGTERM', 'SIGINT', 'SIGHUP']) process.on(signal, () => eteindre());

  const souhaite = portSouhaite();
  const port = await prendreUnPort(souhaite);
  if (!port) {
    console.log(`keltrove tourne déjà sur http://${ADRESSE}:${souhaite}/ : rien à allumer.`);
    process.exit(0);
  }
  // Jeton et liste ne sont touchés qu’une fois le port obtenu : un second serveur lancé par mégarde ne les abîme pas.
  // Rien n’attend plus d’ici à la fin : aucune requête ne peut donc arriver avant que tout soit branché.
  eteindre = allumer();
  if (port !== souhaite) console.log(`Le port ${souhaite} n’est pas libre : keltrove prend le port ${port}.`);
  console.log(`keltrove ${version} écoute sur http://${ADRESSE}:${port}/`);
}

// Le port souhaité, sinon un autre, choisi par le système ; aucun quand un des nôtres répond déjà sur le premier.
async function prendreUnPort(souhaite) {
  try {
    return await ecouter(souhaite);
  } catch (erreur) {
    // EACCES : les petits ports sont réservés ; mieux vaut une page ailleurs que pas de page.
    if (erreur.code !== 'EADDRINUSE' && erreur.code !== 'EACCES') throw erreur;
  }
  return (await estDesNotres(souhaite)) ? null : ecouter(0);
}

async function ecouter(port) {
  serveur.listen({ host: ADRESSE, port, exclusive: true });
  await once(serveur, 'listening');
  return serveur.address().port;
}

function estDesNotres(port) {
  const page = fetch(`http://${ADRESSE}:${port}/`, { signal: AbortSignal.timeout(DELAI_DE_RECONNAISSANCE) });
  return page.then((reponse) => reponse.text()).then((texte) => texte.includes('keltrove-jeton'), () => false);
}

// Rend de quoi tout éteindre.
function allumer() {
  preparerLeDossierCache();
  const jeton = lireOuCreerJeton();
  const terminaux = new Terminaux();
  const liaison = new Liaison({ serveur, terminaux, jeton });
  const carnet = ouvrirLeCarnet({
    chemin: auDossierCache('keltrove-carnet.json'),
    version,
    decrire: () => terminaux.pourLeCarnet(),
    quandEcrit: () => liaison.diffuserLaListe(),
    signaler(phrase) {
      console.log(phrase);
      liaison.aviser(phrase);
    },
  });
  terminaux.quandSortie = (terminal, texte) => {
    liaison.diffuserLaSortie(terminal, texte);
    carnet.noter();
  };
  terminaux.quandListeChange = () => {
    carnet.noter();
    liaison.diffuserLaListe();
  };
  const garde = carnet.lire();
  if (estAncienne(garde.serveur)) console.log(`MESSAGE=Keltrove a été mis à jour : voici la version ${version}.`);
  terminaux.restaurer(garde.terminaux);
  const direLaSante = () => ({ version, carnet: { terminaux: terminaux.liste.length } });
  serveur.on('request', creerLAccueil({ jeton, direLaSante }));

  let enArret = false;
  return async () => {
    if (enArret) return;
    enArret = true;
    // La liste d’abord : dès que les interpréteurs raccrochent, leurs dossiers de travail ne se lisent plus ; et le
    // serveur qui prendrait le port aussitôt libre doit la trouver entière.
    await carnet.clore();
    serveur.close();
    liaison.fermer();
    setTimeout(() => process.exit(0), DELAI_DES_ADIEUX);
    await terminaux.raccrocher();
    process.exit(0);
  };
}
