const DELAI_DE_REPRISE = 1000;
const JETON_REFUSE = 4401;

// Le fil avec le serveur, renoué tout seul quand il casse.
export class Liaison {
  #jeton;
  #quandMessage;
  #quandCoupure;
  #socket = null;

  constructor({ jeton, quandMessage, quandCoupure }) {
    this.#jeton = jeton;
    this.#quandMessage = quandMessage;
    this.#quandCoupure = quandCoupure;
    this.#connecter();
  }

  // Sans liaison, la demande est perdue : la rejouer plus tard surprendrait.
  envoyer(message) {
    if (this.#socket.readyState === WebSocket.OPEN) this.#socket.send(JSON.stringify(message));
  }

  #connecter() {
    const socket = new WebSocket(`ws://${location.host}/terminaux`);
    this.#socket = socket;
    socket.addEventListener('open', () => this.envoyer({ type: 'bonjour', jeton: this.#jeton }));
    socket.addEventListener('message', ({ data }) => this.#quandMessage(JSON.parse(data)));
    socket.addEventListener('close', ({ code }) => {
      // Le serveur a changé de jeton depuis que cette page a été servie : la nouvelle page aura le bon.
      if (code === JETON_REFUSE) return location.reload();
      this.#quandCoupure();
      setTimeout(() => this.#connecter(), DELAI_DE_REPRISE);
    });
  }
}
