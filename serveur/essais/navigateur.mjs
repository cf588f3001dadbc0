import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { existsSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { delimiter, join } from 'node:path';
import { after, before, test } from 'node:test';
import WebSocket from 'ws';
import { borner, lancer, preparerMaison } from './outils.mjs';

const NOMS = ['chromium', 'chromium-browser', 'google-chrome'];
const chemins = NOMS.flatMap((nom) => (process.env.PATH ?? '').split(delimiter).map((dossier) => join(dossier, nom)));
const programme = chemins.find((chemin) => existsSync(chemin));

export const sansNavigateur = programme ? false : 'Chromium n’est pas installé ici';

// Un vrai navigateur sans écran, mené par son protocole de mise au point.
export class Navigateur {
  #processus;
  #socket;
  #profil = mkdtempSync(join(tmpdir(), 'keltrove navigateur '));
  #demandes = new Map();
  #ecoutes = new Map();

  static async lancer(options = []) {
    const navigateur = new Navigateur();
    await navigateur.#demarrer(options);
    return navigateur;
  }

  async fermer() {
    const fin = new Promise((suite) => this.#processus.once('close', suite));
    this.#processus.kill('SIGKILL');
    await fin;
    rmSync(this.#profil, { recursive: true, force: true, maxRetries: 5 });
  }

  demander(method, params = {}, sessionId = undefined) {
    const id = this.#demandes.size + 1;
    this.#socket.send(JSON.stringify({ id, method, params, sessionId }));
    return borner(new Promise((reussir, echouer) => this.#demandes.set(id, { reussir, echouer })), () => `sans réponse : ${method}`);
  }

  ecouter(sessionId, quand) {
    this.#ecoutes.set(sessionId, quand);
  }

  async #demarrer(options) {
    this.#processus = spawn(programme, [
      '--headless=new', '--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking',
      '--remote-debugging-port=0', `--user-data-dir=${this.#profil}`, '--window-size=1000,600', ...options, 'about:blank',
    ], { stdio: ['ignore', 'ignore', 'pipe'] });
    let dit = '';
    const adresse = await borner(new Promise((suite) => {
      this.#processus.stderr.on('data', (octets) => {
        const trouve = /DevTools listening on (ws:\S+)/.exec((dit += octets));
        if (trouve) suite(trouve[1]);
      });
    }), () => `le navigateur ne démarre pas : ${dit}`);
    this.#socket = new WebSocket(adresse);
    this.#socket.on('message', (donnees) => this.#recevoir(JSON.parse(donnees)));
    await new Promise((suite) => this.#socket.once('open', suite));
  }

  #recevoir({ id, result, error, method, params, sessionId }) {
    if (!id) return this.#ecoutes.get(sessionId)?.(method, params);
    const { reussir, echouer } = this.#demandes.get(id);
    if (error) echouer(new Error(error.message));
    else reussir(result);
  }
}

// Les terminaux sont peints sur une toile : leur texte se lit dans ce que la page en sait.
const RETENIR_LES_TERMINAUX = `
  addEventListener('DOMContentLoaded', () => import('/terminaux.js').then((module) => (globalThis.terminaux = module), () => {}));`;
export const TEXTE = `[...terminaux.vues.values()].filter(({ montree }) => montree).flatMap(({ terminal: { rows, buffer: { active } } }) =>
  Array.from({ length: rows }, (_, y) => active.getLine(active.viewportY + y)?.translateToString(true) ?? '')).join('\\n')`;
const PRETE = `${TEXTE}.includes('$')`;

// La page servie par un vrai serveur, dans le navigateur ; `avant` y joue le rôle de l’application. Les bancs mesurent
// aussi celle d’un autre : elle est à `adresse`, et prête quand l’expression `prete` est vraie.
export class PageVue {
  fautes = [];
  #navigateur;
  #session;

  static async ouvrir(t, navigateur, { avant = '', maison, serveur, hote = 'localhost', adresse, prete = PRETE } = {}) {
    const page = new PageVue();
    page.maison = maison ?? (await preparerMaison(t));
    writeFileSync(join(page.maison.maison, '.bashrc'), "PS1='$ '\n");
    page.serveur = serveur ?? (await lancer(t, page.maison));
    page.#navigateur = navigateur;
    const { browserContextId } = await navigateur.demander('Target.createBrowserContext');
    t.after(() => navigateur.demander('Target.disposeBrowserContext', { browserContextId }));
    const { targetId } = await navigateur.demander('Target.createTarget', { url: 'about:blank', browserContextId });
    const { sessionId } = await navigateur.demander('Target.attachToTarget', { targetId, flatten: true });
    page.#session = sessionId;
    navigateur.ecouter(sessionId, (method, params) => page.#noter(method, params));
    await page.demander('Runtime.enable');
    await page.demander('Page.enable');
    await page.demander('Emulation.setFocusEmulationEnabled', { enabled: true });
    await page.demander('Page.addScriptToEvaluateOnNewDocument', { source: avant + RETENIR_LES_TERMINAUX });
    await page.demander('Page.navigate', { url: adresse ?? `http://${hote}:${page.serveur.port}/` });
    await page.attendre(prete);
    return page;
  }

  demander(methode, parametres) {
    return this.#navigateur.demander(methode, parametres, this.#session);
  }

  async evaluer(expression) {
    const { result, exceptionDetails } = await this.demander('Runtime.evaluate', { expression, awaitPromise: true, returnByValue: true });
    if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
    return result.value;
  }

  // La première valeur vraie de l’expression ; la page la relit jusque-là.
  attendre(expression) {
    const essai = `(async () => { for (;;) { const v = (() => { try { return ${expression}; } catch { return null; } })();
      if (v) return v; await new Promise((suite) => setTimeout(suite, 15)); } })()`;
    return this.evaluer(essai).catch(async (erreur) => {
      if (/sans réponse/.test(erreur.message)) erreur.message = `jamais vrai : ${expression}\nà l’écran : ${await this.texte()}`;
      // Un rechargement emporte l’attente avec la page : elle reprend dans la nouvelle.
      if (/context was destroyed|navigated/.test(erreur.message)) return this.attendre(expression);
      throw erreur;
    });
  }

  texte() {
    return this.evaluer(TEXTE);
  }

  attendreLeTexte(motif) {
    return this.attendre(`${motif}.exec(${TEXTE})?.[0]`);
  }

  ecrire(text) {
    return this.demander('Input.insertText', { text });
  }

  async taper(texte) {
    for (const text of texte) {
      await this.demander('Input.dispatchKeyEvent', { type: 'keyDown', text, key: text });
      await this.demander('Input.dispatchKeyEvent', { type: 'keyUp', key: text });
    }
  }

  // Comme au clavier : « Ctrl+Maj+F », « Entrée », « Échap ».
  async touche(nom) {
    const parties = nom.split('+');
    const nommee = parties.pop();
    const modifiers = parties.reduce((somme, partie) => somme | { Alt: 1, Ctrl: 2, Maj: 8 }[partie], 0);
    const [key, code, windowsVirtualKeyCode] = TOUCHES[nommee] ?? [nommee, `Key${nommee.toUpperCase()}`, nommee.toUpperCase().charCodeAt(0)];
    const text = key === 'Enter' ? '\r' : key.length === 1 && !(modifiers & 3) ? key : undefined;
    const commun = { key, code, windowsVirtualKeyCode, modifiers };
    await this.demander('Input.dispatchKeyEvent', { type: text ? 'keyDown' : 'rawKeyDown', text, ...commun });
    await this.demander('Input.dispatchKeyEvent', { type: 'keyUp', ...commun });
  }

  async souris(type, x, y, options = {}) {
    await this.demander('Input.dispatchMouseEvent', { type, x, y, button: 'left', buttons: type === 'mouseReleased' ? 0 : 1, clickCount: 1, ...options });
  }

  async cliquer(selecteur, options = {}) {
    const { x, y } = await this.centre(selecteur);
    await this.souris('mousePressed', x, y, options);
    await this.souris('mouseReleased', x, y, options);
  }

  centre(selecteur) {
    return this.evaluer(`(() => { const element = document.querySelector(${JSON.stringify(selecteur)});
      element.scrollIntoView({ block: 'nearest' });
      const r = element.getBoundingClientRect();
      return { x: r.x + r.width / 2, y: r.y + r.height / 2 }; })()`);
  }

  async recharger() {
    await this.evaluer('window.ancienne = true');
    await this.demander('Page.reload');
    await this.attendre(`!window.ancienne && ${PRETE}`);
  }

  #noter(methode, { type, args, exceptionDetails } = {}) {
    if (methode === 'Runtime.exceptionThrown') this.fautes.push(exceptionDetails.exception?.description ?? exceptionDetails.text);
    if (methode === 'Runtime.consoleAPICalled' && type === 'error') this.fautes.push(args.map(({ value, description }) => value ?? description).join(' '));
  }
}

// Les essais de la page : un navigateur pour tout le fichier, une page neuve pour chacun, et aucune faute dite à la console.
export function essaisDeLaPage(options) {
  let navigateur;
  before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
  after(() => navigateur?.fermer());
  return (phrase, faire) => test(phrase, { skip: sansNavigateur }, async (t) => {
    const page = await PageVue.ouvrir(t, navigateur, options);
    await faire(page, t);
    assert.deepEqual(page.fautes, []);
  });
}

const TOUCHES = {
  Entrée: ['Enter', 'Enter', 13], Échap: ['Escape', 'Escape', 27], Tab: ['Tab', 'Tab', 9],
  Menu: ['ContextMenu', 'ContextMenu', 93], Haut: ['ArrowUp', 'ArrowUp', 38], Bas: ['ArrowDown', 'ArrowDown', 40],
  Début: ['Home', 'Home', 36], Fin: ['End', 'End', 35],
  Gauche: ['ArrowLeft', 'ArrowLeft', 37], Droite: ['ArrowRight', 'ArrowRight', 39],
  PageSuivante: ['PageDown', 'PageDown', 34], PagePrécédente: ['PageUp', 'PageUp', 33],
  F2: ['F2', 'F2', 113], Espace: [' ', 'Space', 32], Plus: ['+', 'Equal', 187], Moins: ['_', 'Minus', 189],
};
