import { hostname } from 'node:os';
import { basename } from 'node:path';
import { maison } from './reglages.mjs';

const NOM_D_OFFICE = /^Terminal (\d+)$/;
// Le titre que les interpréteurs se donnent d’office : tous les onglets y commenceraient par les mêmes lettres.
const QUI_ET_OU = /^[^\s@]+@([^\s:]+):\s*(.*)$/;

export const numeroDOffice = (nom) => Number(NOM_D_OFFICE.exec(nom)?.[1] ?? 0);

// Ce qui distingue un terminal des autres, en tête d’un onglet étroit : le titre que son programme lui donne, sinon ce
// programme, sinon le dossier. Le nom que l’utilisateur lui a donné prime.
export function etiqueter({ nom, titre, programme, dossier }) {
  if (numeroDOffice(nom) === 0) return nom;
  const [, machine, chemin] = QUI_ET_OU.exec(titre) ?? [];
  if (machine === undefined) return titre || programme || nommer(dossier);
  if (machine !== hostname().split('.')[0] && machine !== hostname()) return `${machine} : ${basename(chemin) || chemin}`;
  return programme || nommer(dossier);
}

const nommer = (dossier = '') => (dossier === maison() ? '~' : basename(dossier) || dossier);
