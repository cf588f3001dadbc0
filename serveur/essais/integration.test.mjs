import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { test } from 'node:test';
import { spawn } from '@lydell/node-pty';
import { borner, DOSSIER_DU_SERVEUR } from './outils.mjs';

const INTEGRATION = join(DOSSIER_DU_SERVEUR, 'integration');
const LIGNE = {
  '.bashrc': '[ -z "$KELTROVE_INTEGRATION" ] || . "$KELTROVE_INTEGRATION/keltrove.bash"',
  '.zshrc': '[ -z "$KELTROVE_INTEGRATION" ] || . "$KELTROVE_INTEGRATION/keltrove.zsh"',
  '.config/fish/config.fish': 'test -z "$KELTROVE_INTEGRATION"; or source "$KELTROVE_INTEGRATION/keltrove.fish"',
};

// Un vrai interpréteur, dont la configuration est `avant`, puis la ligne que l’on y ajoute, `fois` fois.
class Interprete {
  sortie = '';
  #attente = () => {};

  constructor(t, programme, fichier, { avant = '', fois = 1, env = { KELTROVE_INTEGRATION: INTEGRATION } } = {}) {
    const maison = mkdtempSync(join(tmpdir(), 'keltrove é '));
    mkdirSync(dirname(join(maison, fichier)), { recursive: true });
    writeFileSync(join(maison, fichier), `${avant}\n${`${LIGNE[fichier]}\n`.repeat(fois)}`);
    this.pty = spawn(programme, [], { cols: 200, rows: 24, cwd: maison, env: { PATH: process.env.PATH, HOME: maison, TERM: 'xterm-256color', LANG: 'C.UTF-8', ...env } });
    const fin = new Promise((suite) => this.pty.onExit(suite));
    t.after(async () => {
      this.pty.kill('SIGKILL');
      await fin;
      rmSync(maison, { recursive: true, force: true });
    });
    this.pty.onData((texte) => {
      this.sortie += texte;
      this.#attente();
    });
  }

  attendre(motif) {
    return borner(new Promise((suite) => {
      this.#attente = () => motif.test(this.sortie) && suite();
      this.#attente();
    }), () => `jamais vu : ${motif}\n${JSON.stringify(this.sortie)}`);
  }

  // Ce que cette ligne a fait dire : C et son nom, D et son statut. L’invite vient encore après, puis la marque d’après.
  async faire(ligne) {
    this.sortie = '';
    this.pty.write(`${ligne}\r`);
    await this.attendre(/\x1b\]133;D;[^]*\x1b\]133;A/);
    return this.marques;
  }

  get marques() {
    return [...this.sortie.matchAll(/\x1b\]133;([CD])(?:;(?:cmdline_url=)?([^\x07]*))?\x07/g)].map(([, sorte, valeur]) => sorte + decodeURIComponent(valeur));
  }
}

const INTERPRETES = [['/bin/bash', '.bashrc'], ['/bin/zsh', '.zshrc'], ['/usr/bin/fish', '.config/fish/config.fish']];

// À partir de la version 4, fish annonce ses commandes de lui-même, toujours et en entier : nous n’y ajoutons rien.
const fishLesDit = !/ [0-3]\./.test(execFileSync('/usr/bin/fish', ['--version'], { encoding: 'utf8' }));

for (const [programme, fichier] of INTERPRETES) {
  const lesDit = programme.endsWith('fish') && fishLesDit;
  test(`${programme} dit ses commandes, leur nom et leur statut, une fois chacune`, async (t) => {
    const interprete = new Interprete(t, programme, fichier, { fois: 2 });
    await interprete.attendre(/\x1b\]133;A/);
    assert.deepEqual(await interprete.faire('true'), ['Ctrue', 'D0']);
    assert.deepEqual(await interprete.faire('sh -c "exit 3"'), ['Csh -c "exit 3"', 'D3']);
    assert.deepEqual(await interprete.faire("echo 'é ; 100 % 日本' a"), ["Cecho 'é ; 100 % 日本' a", 'D0']);
    assert.match(interprete.sortie, /\x1b\]133;C[^\x07]*\x07[^]*é ; 100 % 日本 a\r\n[^]*\x1b\]133;D/);
    assert.deepEqual(await interprete.faire(`echo ${'x'.repeat(1000)}`), [`Cecho ${'x'.repeat(lesDit ? 1000 : 295)}`, 'D0']);
    assert.deepEqual(await interprete.faire('sh -c "kill -INT \\$\\$"'), ['Csh -c "kill -INT \\$\\$"', 'D130']);
  });

  test(`${programme} hors de Keltrove, ou sans personne devant, ne dit rien`, async (t) => {
    const interprete = new Interprete(t, programme, fichier, { env: {} });
    interprete.pty.write('echo pret"-"la\r');
    await interprete.attendre(/pret-la/);
    assert.doesNotMatch(interprete.sortie, lesDit ? /133;C[^]*133;C/ : /133;/);
    const dedans = new Interprete(t, programme, fichier);
    await dedans.attendre(/\x1b\]133;A/);
    await dedans.faire(`${programme} -c 'echo dedans'; sh -c 'echo dehors'`);
    assert.equal(dedans.marques.length, 2);
  });
}

test('bash garde ses invites, ses pièges, le statut et le dernier mot', async (t) => {
  const bash = new Interprete(t, '/bin/bash', '.bashrc', {
    avant: `PS1='<\\w $?> '; PS0='{debut}'; PROMPT_COMMAND='vu=$?; echo "(vu $vu)"'; trap 'pieges=$((pieges + 1))' DEBUG; trap 'echo RATE' ERR; set -u`,
  });
  await bash.attendre(/> /);
  await bash.faire('sh -c "exit 3"');
  assert.match(bash.sortie, /\{debut\}\x1b\]133;C[^]*RATE\r\n\x1b\]133;D;3\x07\(vu 3\)\r\n[^]*\x1b\]133;A\x07<~ 3> \x1b\]133;B\x07/);
  assert.equal(bash.sortie.split('RATE').length, 2);
  await bash.faire('echo "statut $?"; pieges=0; echo a; echo "pieges $pieges"');
  assert.match(bash.sortie, /statut 3\r\n[^]*pieges 2\r\n/);
  // Un piège pris à chaque commande change lui-même le dernier mot.
  await bash.faire('trap - DEBUG; true dernier');
  await bash.faire('echo "mot $_"');
  assert.match(bash.sortie, /mot dernier\r\n/);
  // Un autre refait l’invite : elle est entourée de nouveau.
  await bash.faire("PS1='neuve> '");
  assert.match(bash.sortie, /\x1b\]133;A\x07neuve> \x1b\]133;B\x07/);
  bash.sortie = '';
  bash.pty.write('\r');
  await bash.attendre(/\x1b\]133;B/);
  assert.deepEqual(bash.marques, ['D0'], 'une ligne vide n’est pas une commande');
});

test('ce que l’historique ne garde pas reste sans nom', async (t) => {
  const bash = new Interprete(t, '/bin/bash', '.bashrc', { avant: 'HISTCONTROL=ignoreboth' });
  await bash.attendre(/\x1b\]133;A/);
  assert.deepEqual(await bash.faire('true a'), ['Ctrue a', 'D0']);
  assert.deepEqual(await bash.faire(' true secret'), ['C', 'D0']);
  assert.deepEqual(await bash.faire('true a'), ['C', 'D0']);
  assert.deepEqual(await bash.faire('true b'), ['Ctrue b', 'D0']);
  const zsh = new Interprete(t, '/bin/zsh', '.zshrc', { avant: 'setopt hist_ignore_space' });
  await zsh.attendre(/\x1b\]133;A/);
  assert.deepEqual(await zsh.faire(' true secret'), ['C', 'D0']);
  const fish = new Interprete(t, '/usr/bin/fish', '.config/fish/config.fish');
  await fish.attendre(/\x1b\]133;A/);
  assert.deepEqual(await fish.faire(' true secret'), [fishLesDit ? 'C true secret' : 'C', 'D0']);
});

test('zsh garde ses crochets et son invite', async (t) => {
  const zsh = new Interprete(t, '/bin/zsh', '.zshrc', { avant: "PS1='<%?> '; precmd() { print -r \"(vu $?)\" }; preexec() { print -r \"[$1]\" }" });
  await zsh.attendre(/> /);
  await zsh.faire('sh -c "exit 3"');
  assert.match(zsh.sortie, /\[sh -c "exit 3"\][^]*\(vu 3\)[^]*\x1b\]133;A\x07<3> \x1b\]133;B\x07/);
});
