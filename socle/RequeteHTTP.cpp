#include "socle/RequeteHTTP.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <mutex>

#include <curl/curl.h>

namespace keltrove::socle {
namespace {

using Horodatage = std::chrono::steady_clock;
using Duree = std::chrono::duration<double>;

template <auto liberer>
struct Liberateur {
  template <typename T>
  void operator()(T* objet) const {
    liberer(objet);
  }
};
using Transfert = std::unique_ptr<CURL, Liberateur<curl_easy_cleanup>>;
using Groupe = std::unique_ptr<CURLM, Liberateur<curl_multi_cleanup>>;
using Entetes = std::unique_ptr<curl_slist, Liberateur<curl_slist_free_all>>;
using Adresse = std::unique_ptr<CURLU, Liberateur<curl_url_cleanup>>;

// Au-delà, une suite de redirections ne mène nulle part ; la valeur est celle des navigateurs.
constexpr int redirectionsMaximum = 20;

struct Reception {
  std::string corps;
  std::size_t octets = 0;
  std::size_t maximum = 0;
  Horodatage::time_point dernierOctet = Horodatage::now();

  bool accepter(std::size_t taille) {
    dernierOctet = Horodatage::now();
    octets += taille;
    return octets <= maximum;
  }
};

std::size_t quandCorps(char* donnees, std::size_t, std::size_t taille, void* contexte) {
  auto& reception = *static_cast<Reception*>(contexte);
  if (!reception.accepter(taille)) return 0;
  reception.corps.append(donnees, taille);
  return taille;
}

std::size_t quandEntete(char*, std::size_t, std::size_t taille, void* contexte) {
  return static_cast<Reception*>(contexte)->accepter(taille) ? taille : 0;
}

void regler(CURL* transfert, Reception& reception, curl_slist* entetes) {
  curl_easy_setopt(transfert, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(transfert, CURLOPT_PROXY, "");
  curl_easy_setopt(transfert, CURLOPT_NOPROXY, "*");
  curl_easy_setopt(transfert, CURLOPT_NOSIGNAL, 1L);
  // Sans cela, abandonner une requête attendrait la fin d’une recherche de nom en cours.
  curl_easy_setopt(transfert, CURLOPT_QUICK_EXIT, 1L);
  curl_easy_setopt(transfert, CURLOPT_COOKIEFILE, ""); // témoins en mémoire seulement
  curl_easy_setopt(transfert, CURLOPT_HTTPHEADER, entetes);
  curl_easy_setopt(transfert, CURLOPT_WRITEFUNCTION, quandCorps);
  curl_easy_setopt(transfert, CURLOPT_WRITEDATA, &reception);
  curl_easy_setopt(transfert, CURLOPT_HEADERFUNCTION, quandEntete);
  curl_easy_setopt(transfert, CURLOPT_HEADERDATA, &reception);
}

enum class Issue { enCours, reussie, echouee };

Issue issueDe(CURLM* groupe) {
  int restants = 0;
  const auto* message = curl_multi_info_read(groupe, &restants);
  if (message == nullptr || message->msg != CURLMSG_DONE) return Issue::enCours;
  return message->data.result == CURLE_OK ? Issue::reussie : Issue::echouee;
}

// Mène un échange à son terme ou à ses limites.
bool mener(CURLM* groupe, const Reception& reception, Duree inactivite, Horodatage::time_point limite) {
  for (;;) {
    int enCours = 0;
    if (curl_multi_perform(groupe, &enCours) != CURLM_OK) return false;
    if (const auto issue = issueDe(groupe); issue != Issue::enCours) return issue == Issue::reussie;
    const auto echeance = std::min(limite, reception.dernierOctet +
                                               std::chrono::duration_cast<Horodatage::duration>(inactivite));
    const auto reste = std::chrono::ceil<std::chrono::milliseconds>(echeance - Horodatage::now()).count();
    if (reste <= 0) return false;
    curl_multi_poll(groupe, nullptr, 0, static_cast<int>(reste), nullptr);
  }
}

std::string partie(CURLU* adresse, CURLUPart laquelle) {
  char* texte = nullptr;
  if (curl_url_get(adresse, laquelle, &texte, CURLU_DEFAULT_PORT) != CURLUE_OK) return "";
  const std::unique_ptr<char, Liberateur<curl_free>> garde(texte);
  return texte;
}

bool memeOrigine(const std::string& une, const std::string& autre) {
  const Adresse a(curl_url());
  const Adresse b(curl_url());
  if (curl_url_set(a.get(), CURLUPART_URL, une.c_str(), 0) != CURLUE_OK ||
      curl_url_set(b.get(), CURLUPART_URL, autre.c_str(), 0) != CURLUE_OK)
    return false;
  return std::ranges::all_of(std::array{CURLUPART_SCHEME, CURLUPART_HOST, CURLUPART_PORT},
                             [&](CURLUPart p) { return partie(a.get(), p) == partie(b.get(), p); });
}

bool estUneRedirection(long statut) {
  return statut == 301 || statut == 302 || statut == 303 || statut == 307 || statut == 308;
}

std::optional<std::string> suite(CURL* transfert, long statut, const RequeteHTTP& requete) {
  const char* cible = nullptr;
  curl_easy_getinfo(transfert, CURLINFO_REDIRECT_URL, &cible);
  if (!estUneRedirection(statut) || cible == nullptr) return std::nullopt;
  if (requete.redirections == Redirections::memeOrigineSeule && !memeOrigine(requete.url, cible))
    return std::nullopt;
  return cible;
}

void initialiserUneFois() {
  static std::once_flag fait;
  std::call_once(fait, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

} // namespace

std::optional<ReponseHTTP> obtenir(const RequeteHTTP& requete) {
  initialiserUneFois();
  const auto limite =
      Horodatage::now() + std::chrono::duration_cast<Horodatage::duration>(Duree(requete.dureeMaximale));
  curl_slist* liste = nullptr;
  for (const auto& entete : requete.entetes)
    liste = curl_slist_append(liste, entete.c_str());
  const Entetes entetes(liste);
  const Groupe groupe(curl_multi_init());
  const Transfert transfert(curl_easy_init());
  if (!groupe || !transfert) return std::nullopt;

  auto url = requete.url;
  for (int i = 0; i <= redirectionsMaximum; ++i) {
    Reception reception;
    reception.maximum = requete.octetsMaximum;
    regler(transfert.get(), reception, entetes.get());
    curl_easy_setopt(transfert.get(), CURLOPT_URL, url.c_str());
    curl_multi_add_handle(groupe.get(), transfert.get());
    const bool complete = mener(groupe.get(), reception, Duree(requete.inactiviteMaximale), limite);
    curl_multi_remove_handle(groupe.get(), transfert.get());
    if (!complete) return std::nullopt;

    long statut = 0;
    curl_easy_getinfo(transfert.get(), CURLINFO_RESPONSE_CODE, &statut);
    const auto prochaine = suite(transfert.get(), statut, requete);
    if (!prochaine) return ReponseHTTP{statut, std::move(reception.corps)};
    url = *prochaine;
  }
  return std::nullopt;
}

} // namespace keltrove::socle
