import { createHash, timingSafeEqual } from 'node:crypto';
import { estDUnAutreCompte } from './clients.mjs';

const NOMS_DE_LA_MACHINE = ['localhost', '127.0.0.1', '[::1]'];

// Ce qui ferme la porte, en une phrase ; rien quand elle est ouverte. De la page qui demande une liaison, un navigateur
// dit toujours l’origine ; de celle qui demande un fichier, seulement quand elle est d’ailleurs.
export function raisonDuRefus({ socket, headers: { host, origin } }, { origineExigee = false } = {}) {
  if (estDUnAutreCompte(socket)) return 'Cette page appartient à un autre compte de cette machine.';
  if (!hoteAdmis(host, socket.localPort)) return 'Adresse refusée.';
  const origineAdmise = origin === undefined ? !origineExigee : estDIci(origin, socket.localPort);
  return origineAdmise ? null : 'Origine refusée.';
}

// Un nom étranger qui pointerait sur cette machine ne doit pas faire lire la page, et donc le jeton, à un autre site.
function hoteAdmis(hote, port) {
  return NOMS_DE_LA_MACHINE.some((nom) => hote === `${nom}:${port}` || (port === 80 && hote === nom));
}

function estDIci(origine, port) {
  return origine.startsWith('http://') && hoteAdmis(origine.slice('http://'.length), port);
}

export function jetonJuste(presente, attendu) {
  return typeof presente === 'string' && timingSafeEqual(empreinte(presente), empreinte(attendu));
}

// La comparaison à temps constant veut deux longueurs égales : les empreintes les donnent sans rien révéler.
function empreinte(texte) {
  return createHash('sha256').update(texte).digest();
}
