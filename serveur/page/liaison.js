// En millisecondes ; chaque essai manqué double la suivante.
const PREMIERE_ATTENTE = 1000;
const ATTENTE_MAXIMALE = 30_000;
const JETON_REFUSE = 4401;

const jeton = document.querySelector('meta[name=keltrove-jeton]').content;
let socket;
let enAttente = null;
let essais = 0;

// Le fil avec le serveur, renoué tout seul quand il casse. `receptions` dit que faire d’un message, et d’une coupure :
// combien d’essais elle a déjà usés, et l’attente avant le prochain.
export function relier(receptions, { renoue = false } = {}) {
  socket = new WebSocket(`ws://${location.host}/terminaux`);
  const saluer = () => envoyer({ type: 'bonjour', jeton });
  const defi = crypto.getRandomValues(new Uint8Array(16)).join('-');
  // Pendant la coupure, un inconnu a pu prendre le port : à lui de montrer qu’il connaît le jeton, avant qu’on le dise.
  socket.addEventListener('open', renoue && crypto.subtle ? () => envoyer({ type: 'defi', defi }) : saluer);
  socket.addEventListener('message', async ({ data, target }) => {
    const message = JSON.parse(data);
    if (message.type === 'accueil') essais = 0;
    if (message.type !== 'preuve') receptions[message.type]?.(message);
    else if (message.preuve === (await prouver(defi))) saluer();
    else target.close();
  });
  socket.addEventListener('close', ({ code }) => {
    // Le serveur a changé de jeton depuis que cette page a été servie : la nouvelle page aura le bon.
    if (code === JETON_REFUSE) return location.reload();
    const attente = Math.min(PREMIERE_ATTENTE * 2 ** essais, ATTENTE_MAXIMALE);
    receptions.coupure({ attente, essais });
    essais += 1;
    const minuteur = setTimeout(renouerMaintenant, attente);
    enAttente = () => {
      clearTimeout(minuteur);
      relier(receptions, { renoue: true });
    };
  });
}

// Rien pendant un essai : c’est lui que l’on attend.
export function renouerMaintenant() {
  const renouer = enAttente;
  enAttente = null;
  renouer?.();
}

// Sans liaison, la demande est perdue : la rejouer plus tard surprendrait.
export function envoyer(message) {
  if (socket.readyState === WebSocket.OPEN) socket.send(JSON.stringify(message));
}

// Ce que seul peut calculer qui connaît le jeton : le code d’authentification (HMAC, SHA-256) de ce défi.
async function prouver(defi) {
  const [cle, texte] = [jeton, defi].map((octets) => new TextEncoder().encode(octets));
  const secret = await crypto.subtle.importKey('raw', cle, { name: 'HMAC', hash: 'SHA-256' }, false, ['sign']);
  const octets = new Uint8Array(await crypto.subtle.sign('HMAC', secret, texte));
  return [...octets].map((octet) => octet.toString(16).padStart(2, '0')).join('');
}
