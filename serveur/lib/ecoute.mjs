const ADRESSE = '127.0.0.1';
const DELAI_DE_RECONNAISSANCE = 1500;

// Issues : « souhaite » (le port voulu), « libre » (un autre, choisi par le système), « dejaLa » (un des nôtres y répond).
export async function prendreUnPort(serveur, souhaite) {
  try {
    return { issue: 'souhaite', port: await ecouter(serveur, souhaite) };
  } catch (erreur) {
    // EACCES : les petits ports sont réservés ; mieux vaut une page ailleurs que pas de page.
    if (erreur.code !== 'EADDRINUSE' && erreur.code !== 'EACCES') throw erreur;
  }
  if (await estDesNotres(souhaite)) return { issue: 'dejaLa', port: souhaite };
  return { issue: 'libre', port: await ecouter(serveur, 0) };
}

function ecouter(serveur, port) {
  return new Promise((reussir, echouer) => {
    serveur.once('error', echouer);
    serveur.listen({ host: ADRESSE, port, exclusive: true }, () => {
      serveur.off('error', echouer);
      reussir(serveur.address().port);
    });
  });
}

async function estDesNotres(port) {
  try {
    const reponse = await fetch(`http://${ADRESSE}:${port}/`, { signal: AbortSignal.timeout(DELAI_DE_RECONNAISSANCE) });
    return reponse.status === 200 && (await reponse.text()).includes('keltrove-jeton');
  } catch {
    return false;
  }
}
