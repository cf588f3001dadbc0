import { readdirSync, readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { extname } from 'node:path';
import { fileURLToPath } from 'node:url';
import { jetonJuste, raisonDuRefus } from './acces.mjs';

const HTML = 'text/html; charset=utf-8';
const CSS = 'text/css; charset=utf-8';
const SCRIPT = 'text/javascript; charset=utf-8';
const TEXTE = 'text/plain; charset=utf-8';
const JSON_UTF8 = 'application/json; charset=utf-8';

const trouverModule = createRequire(import.meta.url).resolve;
const trouverPage = (nom) => fileURLToPath(new URL(`../page/${nom}`, import.meta.url));

const TYPES = { '.css': CSS, '.js': SCRIPT, '.mjs': SCRIPT };

// Liste fermée au démarrage : aucun chemin demandé ne devient jamais un chemin de fichier.
const FICHIERS = [
  ...readdirSync(trouverPage('')).map((nom) => [`/${nom}`, trouverPage(nom)]),
  ['/xterm/xterm.css', trouverModule('@xterm/xterm/css/xterm.css')],
  ['/xterm/xterm.mjs', trouverModule('@xterm/xterm/lib/xterm.mjs')],
  ...['fit', 'search', 'unicode11', 'web-links'].map((nom) => (
    [`/xterm/addon-${nom}.mjs`, trouverModule(`@xterm/addon-${nom}/lib/addon-${nom}.mjs`)]
  )),
].filter(([route]) => extname(route) in TYPES);

const ENTETES_COMMUNS = {
  'Cache-Control': 'no-store',
  'Cross-Origin-Resource-Policy': 'same-origin',
  'Referrer-Policy': 'no-referrer',
  'X-Content-Type-Options': 'nosniff',
};

export class Accueil {
  #jeton;
  #version;
  #compterLesTerminaux;
  #page;
  #fichiers;

  constructor({ jeton, version, compterLesTerminaux }) {
    this.#jeton = jeton;
    this.#version = version;
    this.#compterLesTerminaux = compterLesTerminaux;
    this.#page = readFileSync(trouverPage('index.html'), 'utf8').replace('__JETON__', () => enAttribut(jeton));
    // Lus une fois pour toutes : la page reste d’accord avec le serveur même si le dossier est remplacé en route.
    this.#fichiers = new Map(
      FICHIERS.map(([route, chemin]) => [route, { corps: readFileSync(chemin), type: TYPES[extname(route)] }]),
    );
  }

  repondre(requete, reponse) {
    const raison = raisonDuRefus(requete);
    if (raison) return envoyer(reponse, 403, TEXTE, `${raison}\n`);
    if (requete.method !== 'GET' && requete.method !== 'HEAD') {
      return envoyer(reponse, 405, TEXTE, 'Méthode refusée.\n', { Allow: 'GET, HEAD' });
    }
    const route = requete.url.split('?')[0];
    if (route === '/') return envoyer(reponse, 200, HTML, this.#page, entetesDeLaPage(requete.headers.host));
    const fichier = this.#fichiers.get(route);
    if (fichier) return envoyer(reponse, 200, fichier.type, fichier.corps);
    this.#repondreSousJeton(requete, reponse, route);
  }

  #repondreSousJeton(requete, reponse, route) {
    if (!jetonJuste(requete.headers['x-keltrove-jeton'], this.#jeton)) {
      return envoyer(reponse, 401, TEXTE, 'Jeton absent ou faux.\n');
    }
    if (route === '/api/sante') {
      const sante = { version: this.#version, carnet: { terminaux: this.#compterLesTerminaux() } };
      return envoyer(reponse, 200, JSON_UTF8, JSON.stringify(sante));
    }
    envoyer(reponse, 404, TEXTE, 'Rien à cette adresse.\n');
  }
}

function envoyer(reponse, statut, type, corps, entetes = {}) {
  reponse.writeHead(statut, {
    ...ENTETES_COMMUNS,
    'Content-Type': type,
    'Content-Length': Buffer.byteLength(corps),
    ...entetes,
  });
  reponse.end(corps);
}

function entetesDeLaPage(hote) {
  return {
    'Content-Security-Policy': [
      "default-src 'none'",
      "script-src 'self'",
      // Le terminal pose ses couleurs et ses mesures dans des feuilles de style qu’il crée lui-même.
      "style-src 'self' 'unsafe-inline'",
      // Tous les moteurs ne comptent pas ws: dans 'self'.
      `connect-src 'self' ws://${hote}`,
      "img-src 'self' data:",
      "font-src 'self' data:",
      "base-uri 'none'",
      "form-action 'none'",
      "frame-ancestors 'none'",
    ].join('; '),
  };
}

function enAttribut(texte) {
  return texte.replace(/[&<>"']/g, (signe) => `&#${signe.charCodeAt(0)};`);
}
