// Le reste est importé plus tard, exprès : ainsi même un module absent donne une phrase, pas une pile d’appels.
import { setFlagsFromString } from 'node:v8';

// Le texte d’une inondation ne fait que passer : agrandie pour lui, la mémoire où il naît ne se rendrait pas.
setFlagsFromString('--semi-space-growth-factor=1');

// L’application peut mourir avant le serveur et fermer le tuyau où il écrit ; il doit vivre assez pour ranger sa liste.
for (const tuyau of [process.stdout, process.stderr]) tuyau.on('error', () => {});

process.on('uncaughtException', (erreur) => {
  const raison = String(erreur?.message ?? erreur).split('\n')[0];
  process.stderr.write(`keltrove s’arrête sur une erreur imprévue : ${raison}\n`);
  process.exit(1);
});

const { demarrer } = await import('./lib/demarrage.mjs');
await demarrer();
