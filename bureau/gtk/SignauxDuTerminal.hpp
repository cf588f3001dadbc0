// SignauxDuTerminal : Ctrl+C dans le terminal de lancement s’adresse à l’application, pas aux
// programmes de WebKit.
//
// Ils sont pourtant dans son groupe, donc atteints aussi ; et si l’un d’eux meurt pendant qu’il le lance,
// WebKit arrête l’application entière. Ils héritent de ce qu’elle retient : un fil à part, seul, reçoit ces
// signaux pour elle.
#pragma once

namespace keltrove::bureau {

// Avant tout autre fil, qui hériterait sinon de l’ancien état. Sans fil à donner, ne change rien.
void retenirLesSignauxDuTerminal();

// Rend ces signaux au fil principal, le temps de lancer un programme de l’utilisateur, qui doit pouvoir les
// recevoir. Plusieurs peuvent se chevaucher. Fil principal seulement.
class SignauxRendus {
public:
  SignauxRendus();
  SignauxRendus(const SignauxRendus&) = delete;
  SignauxRendus& operator=(const SignauxRendus&) = delete;
  ~SignauxRendus();
};

} // namespace keltrove::bureau
