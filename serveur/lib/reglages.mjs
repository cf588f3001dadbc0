import { randomBytes } from 'node:crypto';
import { mkdirSync, readFileSync } from 'node:fs';
import { userInfo } from 'node:os';
import { join } from 'node:path';
import { ecrireToutDeSuite, rendrePrive } from './fichiers.mjs';

const PORT_PAR_DEFAUT = 7777;

// L’application et le serveur doivent tomber sur le même dossier : un HOME vide ne compte pas.
export function maison() {
  return process.env.HOME || userInfo().homedir;
}

export function dossierCache() {
  return join(maison(), '.zelcor');
}

export function creerDossierCache() {
  mkdirSync(dossierCache(), { recursive: true, mode: 0o700 });
}

// Mêmes règles que l’application, qui attend le serveur sur le port qu’elle lit elle-même dans ce fichier.
export function portSouhaite() {
  try {
    const { port } = JSON.parse(readFileSync(join(dossierCache(), 'keltrove.json'), 'utf8'));
    return Number.isInteger(port) && port >= 1 && port <= 65535 ? port : PORT_PAR_DEFAUT;
  } catch {
    return PORT_PAR_DEFAUT;
  }
}

export function lireOuCreerJeton() {
  const chemin = join(dossierCache(), 'keltrove-jeton');
  const connu = lireJeton(chemin);
  if (connu) return connu;
  const neuf = randomBytes(32).toString('hex');
  ecrireToutDeSuite(chemin, `${neuf}\n`);
  return neuf;
}

function lireJeton(chemin) {
  try {
    rendrePrive(chemin);
    return readFileSync(chemin, 'utf8').trim();
  } catch (erreur) {
    if (erreur.code === 'ENOENT') return '';
    throw erreur;
  }
}
