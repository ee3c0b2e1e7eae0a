// Reads any bytes as a simulation configuration file and asks each of its modules. The bytes up to
// the first zero are the command. A reply must be the one foretold, must come from the file or from
// an earlier command, and a module's identity must be readable without using up answers.

#include "hardware/simulation/stub_file.h"

#include "hardware/simulation/simulated_mainframe.h"
#include "hardware/simulation/stub_identity.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::size_t zero = std::min(bytes.find('\0'), size);
  const std::string command = bytes.substr(0, zero);
  std::istringstream text(bytes.substr(std::min(zero + 1, size)));
  quillpg::CStubFile file;
  if (file.Read(text) != quillpg::S_OK) return 0;

  for (int module = 0; module < std::min(file.ModuleCount(), 64); ++module) {
    const std::optional<std::string> before = file.Next(module, command);
    quillpg::SIMULATED_MODULE identity;
    quillpg::ApplyStubAnswers(file, module, identity);
    if (file.Next(module, command) != before) std::abort();
    for (int i = 0; i < 8; ++i) {
      const std::optional<std::string> next = file.Next(module, command);
      std::string reply = "untouched";
      const bool answered = file.Query(module, command, reply) == quillpg::S_OK;
      if (answered != next.has_value() || reply != next.value_or("untouched")) std::abort();
      if (answered && reply.find('\n') < command.find('\n')) std::abort();
    }
  }
  return 0;
}
