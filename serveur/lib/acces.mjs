import { timingSafeEqual } from 'node:crypto';

const NOMS_DE_LA_MACHINE = ['localhost', '127.0.0.1', '[::1]'];

// Ce qui ferme la porte, en une phrase ; rien quand elle est ouverte. De la page qui demande une liaison, un navigateur
// dit toujours l’origine ; de celle qui demande un fichier, seulement quand elle est d’ailleurs.
export function raisonDuRefus({ socket, headers }, { origineExigee = false } = {}) {
  const { host, origin } = headers;
  // Un nom étranger qui pointerait sur cette machine ne doit pas faire lire la page, et donc le jeton, à un autre site.
  if (!estDIci(`http://${host}`, socket.localPort)) return 'Adresse refusée.';
  // Un autre site ne fait ni lire ni même ouvrir cette page : ni cadre, ni image, ni lien.
  if (headers['sec-fetch-site'] === 'cross-site') return 'Demande venue d’un autre site : refusée.';
  const admise = origin === undefined ? !origineExigee : estDIci(origin, socket.localPort);
  return admise ? null : 'Origine refusée.';
}

function estDIci(adresse, port) {
  const fins = port === 80 ? ['', ':80'] : [`:${port}`];
  return NOMS_DE_LA_MACHINE.some((nom) => fins.some((fin) => adresse === `http://${nom}${fin}`));
}

// À temps constant ; la longueur du jeton, elle, n’est pas un secret.
export function jetonJuste(presente, attendu) {
  const [a, b] = [presente, attendu].map((jeton) => Buffer.from(String(jeton)));
  return typeof presente === 'string' && a.length === b.length && timingSafeEqual(a, b);
}
