// Ce que `faire` rend ; `sinon` quand il échoue, parce que ce qu’on lit est absent, fermé ou mal écrit.
export function essayer(faire, sinon = null) {
  try {
    return faire();
  } catch {
    return sinon;
  }
}
