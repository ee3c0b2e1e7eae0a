#include "exchange/capture_import.h"

#include "base/guard.h"
#include "base/text.h"
#include "exchange/capture_loader.h"
#include "exchange/vcd_description.h"
#include "exchange/vcd_reader.h"
#include "hardware/simulation/simulation_control.h"
#include "instrument/mode_limits.h"
#include "quillpg/app_server.h"
#include "quillpg/host_services.h"
#include "quillpg/limits.h"
#include "quillpg/message_router.h"

#include <utility>

namespace quillpg {
namespace {

constexpr ChannelMode kModes[] = {ChannelMode::Full, ChannelMode::Half};

int ModulesFor(int channels, ChannelMode mode) {
  const int each = LimitsOf(mode).ChannelsPerModule();
  return (channels + each - 1) / each;
}

std::int64_t DepthOf(ChannelMode mode, bool option) {
  const std::int64_t depth = option ? OPTION_MEMORY_DEPTH : DEFAULT_MEMORY_DEPTH;
  return depth * LimitsOf(mode).depthFactor;
}

/// What playing the capture in one channel mode takes.
struct MODE_NEED {
  ChannelMode mode = ChannelMode::Full;
  bool isPlayable = false;
  FOLDED_PROGRAM program;
  std::string refusal;  // why it is not playable
};

std::string CountText(std::int64_t count, const char* what) {
  std::string text;
  AppendNumber(text, count);
  return text + what;
}

std::string ChannelsText(int channels) {
  return CountText(channels, channels == 1 ? " channel" : " channels");
}

MODE_NEED NeedOf(const CAPTURE& capture, const SAMPLE_GRID& grid, ChannelMode mode) {
  MODE_NEED need;
  need.mode = mode;
  const int modules = ModulesFor(capture.bits, mode);
  if (modules > MAX_INSTRUMENT_MODULES) {
    need.refusal = CountText(modules, " modules for ") + ChannelsText(capture.bits) +
                   ", of at most " + CountText(MAX_INSTRUMENT_MODULES, " modules");
  } else if (!CanClock(grid.period, mode)) {
    need.refusal = "a period of " + FormatPeriod(grid.period) + ", which it cannot clock";
  } else {
    const CCaptureFolding folding(LimitsOf(mode).minBlockSize, LimitsOf(mode).blockGranularity);
    const Status status = folding.Fold(capture, grid, need.program);
    if (status == PG_E_LIMIT) {
      need.refusal = CountText(MAX_SEQUENCE_LINES, " sequence lines do not suffice");
    } else if (Failed(status)) {
      need.refusal = "more memory than this computer has";
    } else {
      need.isPlayable = true;
      need.refusal = CountText(need.program.memory, " vectors of memory, of ") +
                     CountText(DepthOf(mode, true), " with the memory option");
    }
  }
  return need;
}

}  // namespace

Status CCaptureImport::Read(const std::string& path) {
  m_aborted = false;
  m_instrument = nullptr;
  m_capture = CAPTURE();
  m_plan = CAPTURE_PLAN();
  m_notices.clear();
  m_errorText.clear();
  return GuardAllocation(
      [&]() -> Status {
        if (m_router) m_router->SetProgressTitle("Reading " + path + "...");
        CVcdReader reader;
        reader.SetProgress([this](int percent) { return ReportProgress(percent); });
        const Status status = reader.ReadFile(path, m_capture);
        if (Failed(status)) return Fail(status, reader.GetErrorText());
        m_notices = m_capture.notices;
        return S_OK;
      },
      E_OUTOFMEMORY);
}

Status CCaptureImport::Plan(RATIO period) {
  m_plan = CAPTURE_PLAN();
  if (m_capture.stamps.empty()) return Fail(E_FAIL, "no capture was read");
  return GuardAllocation(
      [&]() -> Status {
        if (m_router) m_router->SetProgressTitle("Folding " + m_capture.file + "...");
        if (!ReportProgress(0)) return PG_E_ABORTED;
        CAPTURE_PLAN plan;
        CCaptureGrid finder;
        const Status status = finder.Find(m_capture, period, plan.grid);
        if (Failed(status)) return Fail(status, m_capture.file + ": " + finder.GetErrorText());
        if (!ReportProgress(30)) return PG_E_ABORTED;
        Status chosen = ChooseHardware(plan);
        if (chosen == PG_E_LIMIT && !period.IsSet() &&
            !Failed(finder.FindCoarser(m_capture, plan.grid))) {
          const std::string refusal = m_errorText;
          chosen = ChooseHardware(plan);
          if (Failed(chosen)) m_errorText = refusal;
        }
        if (Failed(chosen)) return chosen;
        m_errorText.clear();
        m_notices = m_capture.notices;
        if (plan.grid.merged > 0) {
          m_notices.push_back(
              CountText(plan.grid.merged, " change points fell into the vector of a later one"));
        }
        m_plan = std::move(plan);
        return S_OK;
      },
      E_OUTOFMEMORY);
}

// The memory option is the last resort; FULL mode, the default, goes before HALF mode.
Status CCaptureImport::ChooseHardware(CAPTURE_PLAN& plan) {
  MODE_NEED needs[std::size(kModes)];
  std::size_t count = 0;
  for (const bool option : {false, true}) {
    for (std::size_t i = 0; i < std::size(kModes); ++i) {
      MODE_NEED& need = needs[i];
      if (i == count) {
        need = NeedOf(m_capture, plan.grid, kModes[i]);
        ++count;
        if (!ReportProgress(60)) return PG_E_ABORTED;
      }
      if (!need.isPlayable || need.program.memory > DepthOf(need.mode, option)) continue;
      plan.mode = need.mode;
      plan.modules = ModulesFor(m_capture.bits, need.mode);
      plan.memoryOption = option;
      plan.program = std::move(need.program);
      return S_OK;
    }
  }
  std::string text = m_capture.file + ": the capture does not fit: it has " +
                     CountText(plan.grid.vectors, " vectors of ") + ChannelsText(m_capture.bits) +
                     " and needs";
  for (const MODE_NEED& need : needs) {
    text += &need == needs ? " in " : "; in ";
    text += std::string(GetDisplayText(need.mode)) + " mode " + need.refusal;
  }
  return Fail(PG_E_LIMIT, text);
}

Status CCaptureImport::ConfigureSimulation(CSimulationControl& simulation) {
  if (m_plan.program.lines.empty()) return Fail(E_FAIL, "no capture was planned");
  const Status status = simulation.SetModules(m_plan.modules, m_plan.memoryOption);
  return Failed(status) ? Fail(status, "the simulation refuses the modules") : S_OK;
}

Status CCaptureImport::Load(CInstrument** instrument) {
  if (!instrument) return E_FAIL;
  if (m_plan.program.lines.empty()) return Fail(E_FAIL, "no capture was planned");
  CAppServer* server = nullptr;
  const Status started = CAppServer::GetServer(&server);
  if (Failed(started) || !server) return Fail(E_FAIL, "the server does not start");
  const CWaitCursor cursor;
  return GuardAllocation(
      [&] {
        if (m_router) m_router->SetProgressTitle("Loading " + m_capture.file + "...");
        CCaptureLoader loader(m_capture, m_plan);
        const Status status = loader.Load(
            *server, [this](int percent) { return ReportProgress(percent); }, &m_instrument);
        if (Failed(status)) return Fail(status, loader.GetErrorText());
        *instrument = m_instrument;
        return S_OK;
      },
      E_OUTOFMEMORY);
}

Status CCaptureImport::DescribeForVcd(VCD_INSTRUMENT& description) const {
  if (!m_instrument) return E_FAIL;
  return GuardAllocation([&] {
    VCD_INSTRUMENT own;
    const Status status = DescribeInstrument(*m_instrument, own);
    if (Failed(status)) return status;
    own.period = m_plan.grid.period;
    own.tickExponent = m_capture.tickExponent;
    own.signals.clear();
    for (const CAPTURE_SIGNAL& signal : m_capture.signals) {
      VCD_SIGNAL pins{signal.name, signal.range, {}};
      for (int bit = signal.width - 1; bit >= 0; --bit) {
        pins.channels.push_back(signal.firstBit + bit);
      }
      own.signals.push_back(std::move(pins));
    }
    description = std::move(own);
    return S_OK;
  });
}

// Shows how far it is and lets the front end abort.
bool CCaptureImport::ReportProgress(int percent) {
  if (m_router) m_router->SetProgressStatus(percent);
  CHostServices::Get().YieldToMessageLoop();
  return !m_aborted;
}

Status CCaptureImport::Fail(Status status, std::string_view text) {
  return GuardAllocation(
      [&] {
        m_errorText = text;
        return status;
      },
      E_OUTOFMEMORY);
}

}  // namespace quillpg
