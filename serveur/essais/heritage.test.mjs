import assert from 'node:assert/strict';
import { existsSync } from 'node:fs';
import { test } from 'node:test';
import { lancerAvecUnePage, preparerMaison } from './outils.mjs';

const sansProc = !existsSync('/proc/self/fd') && 'seul Linux montre les descripteurs';

test('un interpréteur ne reçoit que son terminal : ni celui du voisin, ni rien de qui a lancé le serveur', { skip: sansProc }, async (t) => {
  // Un lanceur négligent laisse ouvert un fichier, loin après les premiers.
  const avant = ['bash', '-c', 'exec 200</etc/passwd; exec "$0" "$@"'];
  const { page } = await lancerAvecUnePage(t, await preparerMaison(t), { avant });
  page.envoyer({ type: 'ouvrir' });
  await page.attendre(() => page.terminaux.length === 2, 'deux terminaux');
  const vus = [];
  for (const { id } of page.terminaux) {
    page.envoyer({ type: 'saisie', id, texte: "exec bash -c 'ls /proc/$$/fd > vus; echo \"<\" $(cat vus) \"->\" $(readlink /proc/$$/fd/0) \">\"; exec sleep 600'\r" });
    const [, descripteurs, terminal] = await page.attendreLeTexte(id, /< ([\d ]+) -> (\/dev\/pts\/\d+) >/);
    assert.equal(descripteurs, '0 1 2');
    vus.push(terminal);
  }
  assert.notEqual(vus[0], vus[1]);
});

test('un interpréteur a les limites de qui a lancé le serveur', { skip: sansProc }, async (t) => {
  // Le serveur finit avec celui qui l’a lancé : l’essai n’arrête que lui.
  const avant = ['sh', '-c', 'ulimit -S -n 777; setpriv --pdeathsig KILL "$0" "$@"; exit'];
  const { page } = await lancerAvecUnePage(t, await preparerMaison(t), { avant });
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'saisie', id, texte: 'echo "<$(ulimit -S -n) $(ulimit -H -n)>"\r' });
  const [, douce, dure] = await page.attendreLeTexte(id, /<(\d+) (\d+|unlimited)>/);
  assert.equal(douce, '777');
  assert.notEqual(dure, '777');
});
