#include "exchange/vcd_writer.h"

#include "base/guard.h"
#include "base/text.h"
#include "exchange/vcd_lane.h"
#include "exchange/vcd_merge.h"
#include "exchange/vcd_names.h"
#include "exchange/vcd_text.h"
#include "quillpg/limits.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <set>
#include <utility>

namespace quillpg {

namespace {

constexpr int kWholeSecond = 0;
// Ticks of a period: the stamps of 16 million vectors fit into 63 bits then.
constexpr std::int64_t kMostTicks = std::int64_t{1} << 38;

// The tick on which the stamps of a period are rounded that is no whole multiple of one: the one
// asked for, else the finest that is fit.
int RoundedTick(const VCD_INSTRUMENT& instrument) {
  int tick = instrument.tickExponent;
  if (tick < 0 && tick >= VCD_FINEST_TICK) return tick;
  tick = VCD_FINEST_TICK;
  while (instrument.period.ToDouble() * std::pow(10.0, -tick) > kMostTicks) ++tick;
  return tick;
}

// The coarsest tick of which every period is a whole multiple, else the finest of those on which
// the periods are rounded.
int ChooseTick(const std::vector<VCD_INSTRUMENT>& instruments) {
  const auto holdsAll = [&instruments](int exponent) {
    return std::ranges::all_of(instruments, [exponent](const VCD_INSTRUMENT& instrument) {
      const RATIO ticks = ScaleByPowerOfTen(instrument.period, -exponent);
      return ticks.IsSet() && ticks.denominator == 1 && ticks.numerator <= kMostTicks;
    });
  };
  for (int exponent = VCD_COARSEST_TICK; exponent >= VCD_FINEST_TICK; --exponent) {
    if (holdsAll(exponent)) return exponent;
  }
  int tick = kWholeSecond;
  for (const VCD_INSTRUMENT& instrument : instruments) {
    tick = std::min(tick, RoundedTick(instrument));
  }
  return tick;
}

// A signal of the dump before it has an identifier: a whole signal, or one channel of it.
struct PART {
  std::string name;
  std::string range;
  std::vector<int> channels;
};

std::vector<PART> SplitIntoParts(const VCD_SIGNAL& signal, bool bits) {
  const int width = static_cast<int>(signal.channels.size());
  if (width == 0) return {};
  if (width == 1) return {{signal.name + signal.range, {}, signal.channels}};
  VCD_RANGE range;
  if (!ParseVcdRange(signal.range, range) || range.Width() != width) range = {width - 1, 0};
  if (!bits) {
    const std::string made = FormatText("[%d:%d]", {range.first, range.last});
    return {{signal.name, signal.range.empty() ? made : signal.range, signal.channels}};
  }
  const int step = range.first < range.last ? 1 : -1;
  std::vector<PART> parts;
  for (const int channel : signal.channels) {
    parts.push_back({signal.name + FormatText("[%d]", {range.first}), std::string(), {channel}});
    range.first += step;
  }
  return parts;
}

// Channel numbers count over the instrument's modules; a row has one word of 64 bits for each.
int RowBit(int channel, int channelsPerModule) {
  return channel / channelsPerModule * 64 + channel % channelsPerModule;
}

bool IsUsable(const VCD_INSTRUMENT& instrument) {
  if (!instrument.period.IsSet()) return false;
  if (instrument.channelsPerModule < 1 || instrument.channelsPerModule > 64) return false;
  const int channels = instrument.channelsPerModule * MAX_INSTRUMENT_MODULES;
  return std::ranges::all_of(instrument.signals, [channels](const VCD_SIGNAL& signal) {
    return std::ranges::all_of(
        signal.channels, [channels](int channel) { return channel >= 0 && channel < channels; });
  });
}

// Names that more than one instrument uses.
std::set<std::string> FindClashes(const std::vector<VCD_INSTRUMENT>& instruments) {
  std::set<std::string> seen;
  std::set<std::string> clashes;
  for (const VCD_INSTRUMENT& instrument : instruments) {
    std::set<std::string> names;
    for (const VCD_SIGNAL& signal : instrument.signals) names.insert(MakeVcdName(signal.name));
    for (const std::string& name : names) {
      if (!seen.insert(name).second) clashes.insert(name);
    }
  }
  return clashes;
}

}  // namespace

// What the header declares, made once all instruments are known.
struct CVcdWriter::PLAN {
  struct LANE {
    int module = 0;
    RATIO period;  // ticks
    std::vector<VCD_VARIABLE> variables;
    std::string lineId;
    std::string signalId;
  };
  std::string header;
  std::vector<LANE> lanes;
};

CVcdWriter::CVcdWriter() = default;

CVcdWriter::~CVcdWriter() { Discard(); }

Status CVcdWriter::Fail(Status status, std::string text) {
  m_errorText = std::move(text);
  Discard();
  return status;
}

// Writes the declarations and notes what they mean.
class CVcdWriter::CHeaderMaker {
 public:
  CHeaderMaker(PLAN& plan, const std::vector<VCD_INSTRUMENT>& instruments, VCD_OPTIONS options)
      : m_plan(plan), m_options(options), m_clashes(FindClashes(instruments)) {}

  void Add(const VCD_INSTRUMENT& instrument) {
    PLAN::LANE& lane = m_plan.lanes.back();
    m_plan.header += "$scope module " + m_scopes.Claim(instrument.name) + " $end\n";
    for (const VCD_SIGNAL& signal : instrument.signals) {
      const bool clashes = m_clashes.contains(MakeVcdName(signal.name));
      for (PART& part : SplitIntoParts(signal, m_options.bits)) {
        if (clashes) part.name = instrument.name + '.' + part.name;
        VCD_VARIABLE& variable = lane.variables.emplace_back();
        variable.id = Declare(part);
        for (const int channel : part.channels) {
          variable.bits.push_back(RowBit(channel, instrument.channelsPerModule));
        }
      }
    }
    if (m_options.annotate) {
      lane.lineId = Declare({"sequence_line", "[15:0]", std::vector<int>(16)});
      lane.signalId = Declare({"signal_out", {}, std::vector<int>(1)});
    }
    m_plan.header += "$upscope $end\n";
  }

 private:
  std::string Declare(const PART& part) {
    std::string id = VcdIdentifier(m_nextId++);
    const std::string name = m_names.Claim(part.name);
    const int width = static_cast<int>(part.channels.size());
    m_plan.header += FormatText("$var wire %d %s %s", {width, id, name});
    m_plan.header += part.range.empty() ? " $end\n" : ' ' + part.range + " $end\n";
    return id;
  }

  PLAN& m_plan;
  VCD_OPTIONS m_options;
  std::set<std::string> m_clashes;
  CVcdNames m_names;
  CVcdNames m_scopes;
  int m_nextId = 0;
};

Status CVcdWriter::Prepare(const std::vector<VCD_INSTRUMENT>& instruments,
                           const VCD_OPTIONS& options, PLAN& plan) {
  const int tick = ChooseTick(instruments);
  plan.header = "$version quillpg $end\n$timescale " + FormatTimescale(tick) + " $end\n";
  CHeaderMaker maker(plan, instruments, options);
  for (const VCD_INSTRUMENT& instrument : instruments) {
    if (!IsUsable(instrument)) return E_FAIL;
    PLAN::LANE& lane = plan.lanes.emplace_back();
    lane.module = instrument.module;
    lane.period = ScaleByPowerOfTen(instrument.period, -tick);
    if (!lane.period.IsSet()) return E_FAIL;
    maker.Add(instrument);
  }
  plan.header += "$enddefinitions $end\n";
  return S_OK;
}

void CVcdWriter::AddLane(CVcdOutput output, PLAN& plan, std::size_t index) {
  PLAN::LANE& lane = plan.lanes[index];
  m_lanes.push_back(std::make_unique<CVcdLane>(std::move(output), lane.module, lane.period,
                                               std::move(lane.variables), std::move(lane.lineId),
                                               std::move(lane.signalId)));
}

Status CVcdWriter::Open(const std::string& path, const std::vector<VCD_INSTRUMENT>& instruments,
                        const VCD_OPTIONS& options) {
  Discard();
  return GuardAllocation([&]() -> Status {
    PLAN plan;
    if (instruments.empty() || Prepare(instruments, options, plan) != S_OK) {
      return Fail(E_FAIL, path + ": an instrument cannot be written as a dump");
    }
    if (Failed(m_file.Open(path, FileCare::Output))) {
      return Fail(PG_E_FILE_NOT_OPENED, path + ": " + m_file.GetErrorText());
    }
    m_path = path;
    if (plan.lanes.size() == 1) {
      AddLane(CVcdOutput(m_file), plan, 0);
      m_lanes[0]->Output().Append(plan.header);
      return S_OK;
    }
    m_header = plan.header;
    for (std::size_t i = 0; i < plan.lanes.size(); ++i) {
      m_parts.push_back(std::make_unique<CVcdPart>());
      if (!m_parts.back()->IsOpen()) {
        return Fail(PG_E_FILE_NOT_OPENED, std::string("temporary file: ") + std::strerror(errno));
      }
      AddLane(CVcdOutput(*m_parts.back()), plan, i);
    }
    return S_OK;
  });
}

Status CVcdWriter::OpenText(std::string& text, const VCD_INSTRUMENT& instrument,
                            const VCD_OPTIONS& options) {
  Discard();
  return GuardAllocation([&]() -> Status {
    PLAN plan;
    if (Prepare({instrument}, options, plan) != S_OK) {
      return Fail(E_FAIL, "the instrument cannot be written as a dump");
    }
    AddLane(CVcdOutput(text), plan, 0);
    m_lanes[0]->Output().Append(plan.header);
    return S_OK;
  });
}

void CVcdWriter::OnRun(const VECTOR_RUN& run) {
  for (const auto& lane : m_lanes) {
    if (lane->Module() == run.module) lane->Write(run);
  }
}

Status CVcdWriter::Commit() {
  const Status status = GuardAllocation([this] { return CommitLanes(); });
  Discard();
  return status;
}

Status CVcdWriter::CommitLanes() {
  if (m_lanes.empty()) return E_FAIL;
  bool good = true;
  for (const auto& lane : m_lanes) good = lane->Finish() && good;
  if (good && m_lanes.size() > 1) good = MergeLanes();
  if (!good) {
    return Fail(E_FAIL, m_path + ": could not be written: the disk is full, or time runs over");
  }
  if (m_file.IsOpen() && Failed(m_file.Commit())) {
    return Fail(E_FAIL, m_path + ": " + m_file.GetErrorText());
  }
  return S_OK;
}

bool CVcdWriter::MergeLanes() {
  return GuardAllocation([this] {
           CVcdOutput output(m_file);
           output.Append(m_header);
           return MergeChanges(m_parts, output) && output.Finish() ? S_OK : E_FAIL;
         }) == S_OK;
}

void CVcdWriter::Discard() {
  m_lanes.clear();  // before what they write to
  m_parts.clear();
  m_file.Discard();
  m_path.clear();
  m_header.clear();
}

}  // namespace quillpg
