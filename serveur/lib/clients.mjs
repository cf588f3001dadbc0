import { readFileSync } from 'node:fs';
import { endianness } from 'node:os';

const connus = new WeakMap();

// Tout compte de la machine peut joindre 127.0.0.1. Sous Linux, le système dit à qui est la prise d’en face. Ailleurs,
// ou si sa ligne manque, rien ne le dit : la porte reste ouverte, sinon elle se fermerait aussi à son propriétaire.
export function estDUnAutreCompte(prise) {
  if (!connus.has(prise)) connus.set(prise, lireLeCompte(prise));
  return ![undefined, 0, process.getuid?.()].includes(connus.get(prise));
}

function lireLeCompte(prise) {
  try {
    const lire = (table) => trouverLeCompte(readFileSync(table, 'latin1'), prise);
    return lire('/proc/net/tcp') ?? lire('/proc/net/tcp6');
  } catch {
    return undefined;
  }
}

// Qui tient l’autre bout de la prise, d’après une table du noyau, où son adresse peut être écrite en IPv6.
export function trouverLeCompte(table, { remoteAddress, remotePort, localAddress, localPort }) {
  const bouts = [enHexa(remoteAddress, remotePort), enHexa(localAddress, localPort)];
  const [sien, notre] = bouts.map((bout) => `(?:[0F]{24})?${bout} +`);
  const uid = new RegExp(`: ${sien}${notre}(?:\\S+ +){4}(\\d+) `).exec(table)?.[1];
  return uid && Number(uid);
}

// Le noyau écrit les octets de l’adresse dans l’ordre de la machine.
function enHexa(adresse, port) {
  const octets = adresse.split('.').map(Number);
  if (endianness() === 'LE') octets.reverse();
  return `${Buffer.from(octets).toString('hex')}:${port.toString(16).padStart(4, '0')}`.toUpperCase();
}
