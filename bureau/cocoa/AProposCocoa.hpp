// AProposCocoa : le panneau « À propos » du système, qui porte en plus de quoi il s’agit et le journal, à
// copier.
#pragma once

namespace keltrove::bureau {

void montrerLAPropos();

} // namespace keltrove::bureau
