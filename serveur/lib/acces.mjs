import { createHash, timingSafeEqual } from 'node:crypto';

const NOMS_DE_LA_MACHINE = ['localhost', '127.0.0.1', '[::1]'];

// Un nom étranger qui pointerait sur cette machine ne doit pas faire lire la page, et donc le jeton, à un autre site.
export function hoteAdmis(hote, port) {
  return NOMS_DE_LA_MACHINE.some((nom) => hote === `${nom}:${port}` || (port === 80 && hote === nom));
}

export function origineAdmise(origine, port) {
  return typeof origine === 'string' && origine.startsWith('http://') && hoteAdmis(origine.slice('http://'.length), port);
}

export function jetonJuste(presente, attendu) {
  return typeof presente === 'string' && timingSafeEqual(empreinte(presente), empreinte(attendu));
}

// La comparaison à temps constant veut deux longueurs égales : les empreintes les donnent sans rien révéler.
function empreinte(texte) {
  return createHash('sha256').update(texte).digest();
}
