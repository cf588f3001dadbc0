const DELAI_DE_REPRISE = 1000;
const JETON_REFUSE = 4401;

const jeton = document.querySelector('meta[name=keltrove-jeton]').content;
let socket;

// Le fil avec le serveur, renoué tout seul quand il casse. `receptions` dit que faire d’un message, et d’une coupure.
export function relier(receptions) {
  socket = new WebSocket(`ws://${location.host}/terminaux`);
  socket.addEventListener('open', () => envoyer({ type: 'bonjour', jeton }));
  socket.addEventListener('message', ({ data }) => {
    const message = JSON.parse(data);
    receptions[message.type]?.(message);
  });
  socket.addEventListener('close', ({ code }) => {
    // Le serveur a changé de jeton depuis que cette page a été servie : la nouvelle page aura le bon.
    if (code === JETON_REFUSE) return location.reload();
    receptions.coupure();
    setTimeout(relier, DELAI_DE_REPRISE, receptions);
  });
}

// Sans liaison, la demande est perdue : la rejouer plus tard surprendrait.
export function envoyer(message) {
  if (socket.readyState === WebSocket.OPEN) socket.send(JSON.stringify(message));
}
