// Comment les terminaux d’un groupe se partagent la page. Une feuille est l’identifiant de l’un d’eux ; une division range
// les siennes en colonnes ou en lignes, et dit la part de chacune, sur un.
const SENS = ['colonnes', 'lignes'];

const estUneFeuille = (noeud) => typeof noeud === 'string';
const listerLesFeuilles = (noeud) => (estUneFeuille(noeud) ? [noeud] : noeud.enfants.flatMap(listerLesFeuilles));
const ramenerAUn = (parts) => parts.map((part) => part / parts.reduce((somme, autre) => somme + autre, 0));
const sontEgales = (parts) => parts.every((part) => Math.abs(part - parts[0]) < 1e-6);
const sontDesParts = (parts, nombre) => (
  Array.isArray(parts) && parts.length === nombre && parts.every((part) => Number.isFinite(part) && part > 0)
);

// L’arbre qui montre ces terminaux-là, dans cet ordre : ceux qui sont partis laissent leur place à leurs voisins, et un
// neuf prend, dans le sens voulu, la moitié de celle de son voisin.
export function accorder(arbre, ids, sens = 'colonnes') {
  let accorde = arbre ? oter(arbre, new Set(ids)) : composer(sens, ids.map((id) => [id, 1]));
  for (const [rang, id] of ids.entries()) {
    const presents = accorde === null ? [] : listerLesFeuilles(accorde);
    if (presents.length === 0) accorde = id;
    else if (!presents.includes(id)) accorde = ajouter(accorde, { id, voisin: ids[rang - 1] ?? presents[0], avant: rang === 0, sens });
  }
  return listerLesFeuilles(accorde).length === ids.length ? remplir(accorde, [...ids]) : accorder(null, ids, sens);
}

// Les parts de la division où mène ce chemin, rang par rang ; celles qui n’ont pas de sens ne changent rien.
export function repartir(noeud, [rang, ...suite], parts) {
  if (!noeud || estUneFeuille(noeud)) return noeud;
  if (rang === undefined) return sontDesParts(parts, noeud.enfants.length) ? { ...noeud, parts: ramenerAUn(parts) } : noeud;
  return { ...noeud, enfants: noeud.enfants.map((enfant, autre) => (autre === rang ? repartir(enfant, suite, parts) : enfant)) };
}

// Ce que le carnet a gardé, s’il se tient.
export function estUneDivision(noeud) {
  return SENS.includes(noeud?.sens) && Array.isArray(noeud.enfants) && noeud.enfants.length > 1
    && sontDesParts(noeud.parts, noeud.enfants.length) && noeud.enfants.every((enfant) => estUneFeuille(enfant) || estUneDivision(enfant));
}

export const estUnSens = (valeur) => SENS.includes(valeur);

// Une division dans une autre de même sens n’en ferait qu’une ; d’un seul, ce n’en est plus une.
function composer(sens, morceaux) {
  const plats = morceaux.flatMap(([noeud, part]) => (
    noeud.sens === sens ? noeud.enfants.map((enfant, rang) => [enfant, part * noeud.parts[rang]]) : [[noeud, part]]
  ));
  if (plats.length < 2) return plats[0]?.[0] ?? null;
  return { sens, parts: ramenerAUn(plats.map(([, part]) => part)), enfants: plats.map(([noeud]) => noeud) };
}

function oter(noeud, gardes) {
  if (estUneFeuille(noeud)) return gardes.has(noeud) ? noeud : null;
  const restes = noeud.enfants.map((enfant, rang) => [oter(enfant, gardes), noeud.parts[rang]]);
  return composer(noeud.sens, restes.filter(([enfant]) => enfant !== null));
}

// Des parts égales le restent.
function ajouter(noeud, ajout) {
  const { id, voisin, avant, sens } = ajout;
  if (noeud === voisin) return composer(sens, (avant ? [id, noeud] : [noeud, id]).map((feuille) => [feuille, 1]));
  if (estUneFeuille(noeud)) return noeud;
  const neuf = composer(noeud.sens, noeud.enfants.map((enfant, rang) => [ajouter(enfant, ajout), noeud.parts[rang]]));
  const egal = noeud.sens === sens && noeud.enfants.includes(voisin) && sontEgales(noeud.parts);
  return egal ? { ...neuf, parts: neuf.parts.map(() => 1 / neuf.parts.length) } : neuf;
}

function remplir(noeud, ids) {
  return estUneFeuille(noeud) ? ids.shift() : { ...noeud, enfants: noeud.enfants.map((enfant) => remplir(enfant, ids)) };
}
