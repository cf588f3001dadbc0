import { trouver } from '/motif.js';

// À part de la page, où une longue recherche ne fige rien et peut s’interrompre.
let lignes = [];

addEventListener('message', ({ data: { texte, motif } }) => {
  postMessage('commence');
  if (texte !== null) lignes = texte.split('\n');
  const trouves = trouver(lignes, motif);
  postMessage(trouves, [trouves.buffer]);
});
