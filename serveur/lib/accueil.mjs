import { readdirSync, readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { extname } from 'node:path';
import { fileURLToPath } from 'node:url';
import { jetonJuste, raisonDuRefus } from './acces.mjs';

const PAGE = fileURLToPath(new URL('../page/', import.meta.url));
const MODULES = ['xterm', 'addon-fit', 'addon-image', 'addon-unicode-graphemes', 'addon-unicode11', 'addon-web-links'];
const trouverModule = createRequire(import.meta.url).resolve;

// Liste fermée au démarrage : aucun chemin demandé ne devient jamais un chemin de fichier.
const CHEMINS = [
  ...readdirSync(PAGE).map((nom) => [nom === 'index.html' ? '/' : `/${nom}`, PAGE + nom]),
  ...MODULES.map((nom) => [`/xterm/${nom}.mjs`, trouverModule(`@xterm/${nom}/lib/${nom}.mjs`)]),
  ['/xterm/xterm.css', trouverModule('@xterm/xterm/css/xterm.css')],
];
const enAttribut = (texte) => texte.replace(/[&<>"']/g, (signe) => `&#${signe.charCodeAt(0)};`);
// Ce que la page ne demandera jamais, et que rien de ce qui s’y glisserait n’obtiendra.
const SANS_USAGE = [
  'accelerometer', 'bluetooth', 'camera', 'display-capture', 'geolocation', 'gyroscope', 'hid', 'magnetometer', 'microphone',
  'midi', 'payment', 'serial', 'usb', 'xr-spatial-tracking',
];
const TYPES = { '.css': 'text/css', '.html': 'text/html', '.js': 'text/javascript', '.mjs': 'text/javascript' };

// Répond aux demandes de page, de fichiers et de santé.
export function creerLAccueil({ jeton, direLaSante }) {
  // Lus une fois pour toutes : la page reste d’accord avec le serveur même si le dossier est remplacé en route.
  const fichiers = new Map(CHEMINS.map(([route, chemin]) => {
    const texte = readFileSync(chemin, 'utf8');
    const corps = route === '/' ? texte.replace('__JETON__', () => enAttribut(jeton)) : texte;
    return [route, { corps: Buffer.from(corps), type: TYPES[extname(chemin)] }];
  }));

  return (requete, reponse) => {
    const raison = raisonDuRefus(requete);
    if (raison) return envoyer(reponse, 403, `${raison}\n`);
    const lecture = ['GET', 'HEAD'].includes(requete.method);
    if (!lecture) return envoyer(reponse, 405, 'Méthode refusée.\n', { Allow: 'GET, HEAD' });
    const route = requete.url.split('?')[0];
    const { corps, type } = fichiers.get(route) ?? {};
    const entetes = route === '/' ? entetesDeLaPage(requete.headers) : {};
    if (corps) return envoyer(reponse, 200, corps, entetes, type);
    const connu = jetonJuste(requete.headers['x-keltrove-jeton'], jeton);
    if (!connu) return envoyer(reponse, 401, 'Jeton absent ou faux.\n');
    if (route !== '/api/sante') return envoyer(reponse, 404, 'Rien à cette adresse.\n');
    envoyer(reponse, 200, JSON.stringify(direLaSante()), {}, 'application/json');
  };
}

function envoyer(reponse, statut, corps, entetes = {}, type = 'text/plain') {
  reponse.writeHead(statut, {
    'Cache-Control': 'no-store',
    'Cross-Origin-Resource-Policy': 'same-origin',
    'Referrer-Policy': 'no-referrer',
    'X-Content-Type-Options': 'nosniff',
    'Content-Type': `${type}; charset=utf-8`,
    'Content-Length': Buffer.byteLength(corps),
    ...entetes,
  });
  reponse.end(corps);
}

function entetesDeLaPage({ host, 'user-agent': navigateur = '' }) {
  // La fenêtre de l’application n’a été ouverte par aucune page : cet en-tête n’y ferait que changer de processus, et
  // garder le premier pour rien.
  const ouvreur = / Keltrove\//.test(navigateur) ? {} : { 'Cross-Origin-Opener-Policy': 'same-origin' };
  return {
    ...ouvreur,
    'Content-Security-Policy': politique(host),
    'Permissions-Policy': SANS_USAGE.map((nom) => `${nom}=()`).join(', '),
    'X-Frame-Options': 'DENY',
  };
}

function politique(hote) {
  return [
    "default-src 'none'",
    // Les images des programmes se décodent en WebAssembly ; cela n’admet aucun script de plus.
    "script-src 'self' 'wasm-unsafe-eval'",
    // Le terminal pose ses couleurs et ses mesures dans des feuilles de style qu’il crée lui-même.
    "style-src 'self' 'unsafe-inline'",
    // Tous les moteurs ne comptent pas ws: dans 'self'.
    `connect-src 'self' ws://${hote}`,
    "img-src 'self' data:",
    "font-src 'self' data:",
    "base-uri 'none'",
    "form-action 'none'",
    "frame-ancestors 'none'",
  ].join('; ');
}
