#include "interrupt.h"

#include "exit_status.h"

#include <csignal>
#include <initializer_list>

namespace quillpg::tool {
namespace {

volatile std::sig_atomic_t caughtSignal = 0;

extern "C" void KeepSignal(int number) { caughtSignal = number; }

}  // namespace

void CatchInterrupts() {
  struct sigaction action = {};
  action.sa_handler = KeepSignal;
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  for (const int number : {SIGINT, SIGTERM}) (void)sigaction(number, &action, nullptr);
}

bool Interrupted() { return caughtSignal != 0; }

int InterruptStatus() { return STATUS_SIGNAL + caughtSignal; }

}  // namespace quillpg::tool
