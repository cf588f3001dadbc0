// Une page connectée : ce qu’elle demande, et ce qu’elle n’a pas encore fini d’afficher.
export class PageReliee {
  quandAvance = () => {};
  #socket;
  #terminaux;
  #retards = new Map();

  constructor(socket, terminaux) {
    this.#socket = socket;
    this.#terminaux = terminaux;
  }

  presenter() {
    this.envoyer({ type: 'accueil', terminaux: this.#terminaux.pourLaPage() });
    for (const terminal of this.#terminaux.tous()) this.envoyerDuTexte('reprise', terminal.id, terminal.rejouer());
  }

  envoyer(message) {
    this.#socket.send(JSON.stringify(message), () => {});
  }

  envoyerDuTexte(type, id, texte) {
    this.#retards.set(id, this.retard(id) + texte.length);
    this.envoyer({ type, id, texte });
  }

  retard(id) {
    return this.#retards.get(id) ?? 0;
  }

  // Sans adieu : un adieu attendrait derrière tout ce que la page n’a pas encore lu.
  couper() {
    this.#socket.terminate();
  }

  // Un type inconnu est ignoré : une page d’une autre version ne doit pas être coupée pour autant.
  traiter(message) {
    const { id } = message;
    switch (message.type) {
      case 'ouvrir':
        return this.#ouvrir(message);
      case 'saisie':
        if (typeof message.texte === 'string') this.#terminaux.saisir(id, message.texte);
        return;
      case 'taille':
        return this.#terminaux.trouver(id)?.dimensionner(message.colonnes, message.lignes);
      case 'renommer':
        return this.#terminaux.renommer(id, message.nom);
      case 'fermer':
        return this.#terminaux.fermer(id);
      case 'recu':
        return this.#noterLaReception(id, message.nombre);
    }
  }

  #ouvrir({ colonnes, lignes }) {
    const terminal = this.#terminaux.ouvrir({ colonnes, lignes });
    if (terminal) this.envoyer({ type: 'ouvert', id: terminal.id });
    else this.envoyer({ type: 'avis', texte: 'Impossible d’ouvrir un terminal de plus.' });
  }

  #noterLaReception(id, nombre) {
    if (!this.#retards.has(id) || !Number.isInteger(nombre) || nombre < 0) return;
    this.#retards.set(id, Math.max(0, this.retard(id) - nombre));
    this.quandAvance(id);
  }
}
