// Exiger : ce qui doit être vrai de toute entrée ; sinon le chercheur s’arrête et la garde.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string_view>

inline void exiger(bool vrai) {
  if (!vrai) std::abort();
}

inline std::string_view texteDe(const std::uint8_t* octets, std::size_t nombre) {
  return {reinterpret_cast<const char*>(octets), nombre};
}
