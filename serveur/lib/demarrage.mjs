import { readFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { creerLAccueil } from './accueil.mjs';
import { ouvrirLeCarnet } from './carnet.mjs';
import { chargerLaBibliotheque } from './dernieresLignes.mjs';
import { fermerLesDescripteursRecus } from './heritage.mjs';
import { Liaison } from './Liaison.mjs';
import { estTenuParUnAutre } from './pairs.mjs';
import { Porte } from './porte.mjs';
import { auDossierCache, lireOuCreerJeton, portSouhaite, preparerLeDossierCache } from './reglages.mjs';
import { Terminaux } from './Terminaux.mjs';

const DELAI_DE_RECONNAISSANCE = 1500;
const DELAI_DES_ADIEUX = 1000;
const DELAI_DE_PREPARATION = 2000;

const FAUTES = {
  EACCES: 'votre dossier personnel refuse d’être écrit',
  EDQUOT: 'votre part de disque est pleine',
  ENOSPC: 'le disque est plein, faites-y de la place',
  EROFS: 'votre dossier personnel est en lecture seule',
};

const { version } = JSON.parse(readFileSync(new URL('../package.json', import.meta.url), 'utf8'));
const estAncienne = (autre) => /^\d+(\.\d+)*$/.test(autre) && version.localeCompare(autre, 'fr', { numeric: true }) > 0;
const serveur = createServer();
const adresseDe = (port) => `http://127.0.0.1:${port}/`;

export async function demarrer() {
  let eteindre = () => process.exit(0);
  for (const signal of ['SIGTERM', 'SIGINT', 'SIGHUP']) process.on(signal, () => eteindre());

  fermerLesDescripteursRecus();
  const souhaite = portSouhaite();
  const porte = await prendreUnPort(souhaite);
  if (!porte) {
    console.log(`keltrove tourne déjà sur ${adresseDe(souhaite)} : rien à allumer.`);
    process.exit(0);
  }
  // Jeton et liste ne sont touchés qu’une fois le port obtenu : un second serveur lancé par mégarde ne les abîme pas.
  // Rien n’attend plus d’ici à la fin : aucune requête ne peut donc arriver avant que tout soit branché.
  eteindre = allumer(porte);
  if (porte.port !== souhaite) console.log(`Le port ${souhaite} n’est pas libre : keltrove prend le port ${porte.port}.`);
  console.log(`keltrove ${version} écoute sur ${adresseDe(porte.port)}`);
  setTimeout(chargerLaBibliotheque, DELAI_DE_PREPARATION);
}

// Le port souhaité, sinon un autre, choisi par le système ; aucun quand un des nôtres répond déjà sur le premier.
async function prendreUnPort(souhaite) {
  const recevoir = (prise) => serveur.emit('connection', prise);
  try {
    return await Porte.ouvrir(souhaite, recevoir);
  } catch (erreur) {
    // EACCES : les petits ports sont réservés ; mieux vaut une page ailleurs que pas de page.
    if (erreur.code !== 'EADDRINUSE' && erreur.code !== 'EACCES') throw erreur;
  }
  return (await estDesNotres(souhaite)) ? null : Porte.ouvrir(0, recevoir);
}

// Un autre compte peut servir une page qui ressemble à la nôtre.
async function estDesNotres(port) {
  if (estTenuParUnAutre(port)) return false;
  const page = fetch(adresseDe(port), { signal: AbortSignal.timeout(DELAI_DE_RECONNAISSANCE) });
  return page.then((reponse) => reponse.text()).then((texte) => texte.includes('keltrove-jeton'), () => false);
}

// Rend de quoi tout éteindre.
function allumer(porte) {
  preparerLeDossierCache();
  const { jeton, faute } = lireOuCreerJeton();
  const terminaux = new Terminaux();
  const liaison = new Liaison({ serveur, terminaux, jeton, quandReconnue: (prise) => porte.confier(prise) });
  // Une fois par panne au journal ; à la page, aussi longtemps qu’elle dure.
  const direLaFaute = (erreur) => {
    const phrase = erreur && `Vos terminaux ne sont plus gardés : ${FAUTES[erreur.code] ?? erreur.message}. Keltrove réessaie de lui-même.`;
    if (liaison.alerter(phrase) && phrase) console.log(phrase);
  };
  const carnet = ouvrirLeCarnet({
    chemin: auDossierCache('keltrove-carnet.json'),
    version,
    decrire: (options) => terminaux.pourLeCarnet(options),
    quandEcriture: direLaFaute,
    signaler(phrase) {
      console.log(phrase);
      liaison.aviser(phrase);
    },
  });
  direLaFaute(faute);
  terminaux.quandSortie = (terminal, texte) => {
    liaison.diffuserLaSortie(terminal, texte);
    carnet.noterLesLignes();
  };
  terminaux.quandAppel = (terminal, appel) => liaison.diffuserUnAppel(terminal, appel);
  terminaux.quandListeChange = () => liaison.diffuserLaListe();
  terminaux.quandRangementChange = () => carnet.noterLeRangement();
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
    porte.fermer();
    liaison.fermer();
    setTimeout(() => process.exit(0), DELAI_DES_ADIEUX);
    await terminaux.raccrocher();
    process.exit(0);
  };
}
