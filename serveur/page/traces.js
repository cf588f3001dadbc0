import { essayer } from './essayer.js';

// Ce que disent un compilateur, « grep -n », une trace de Node ou de Python.
const MOTIFS = [
  /(?<=^|[\s"'`<>|()[{=,;])(?:file:\/\/)?(?<chemin>[^\s:"'`<>|()[{=,;][^\s:"'`<>|()]*):(?<ligne>\d{1,9})(?!\d)(?::(?<colonne>\d{1,9})(?!\d))?/g,
  /File "(?<chemin>[^"]+)", line (?<ligne>\d{1,9})/g,
];
const MAXIMUM = 16;

// Les chemins suivis d’une ligne, et peut-être d’une colonne, qui ont l’air d’être dans ce texte.
export function reconnaitreLesChemins(texte) {
  return MOTIFS.flatMap((motif) => [...texte.matchAll(motif)]).slice(0, MAXIMUM).map(lire);
}

function lire({ 0: texte, index, groups: { chemin, ligne, colonne } }) {
  const propre = texte.startsWith('file://') ? essayer(() => decodeURIComponent(chemin), chemin) : chemin;
  return { texte, index, chemin: propre, ligne: Number(ligne), colonne: colonne && Number(colonne) };
}
