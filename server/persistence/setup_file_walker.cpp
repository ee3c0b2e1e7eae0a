#include "persistence/setup_file_walker.h"

#include "app/setup_stream.h"
#include "app/version_info.h"
#include "base/setup_file_list.h"
#include "hardware/probe_setup.h"
#include "program/waveform_data.h"

namespace quillpg {

namespace {

// What a layout wants to be told when the tracer's listener alone is interested in the values.
struct SCRATCH {
  std::int32_t number = 0;
  float real = 0;
  double wide = 0;
  std::string text;
};

// The references of a listing state; the rest of the class is of no use here.
struct REFERENCES {
  int firstReference = 0;
  int secondReference = 0;
};

class CSetupFileWalker {
 public:
  CSetupFileWalker(CSetupFileReader& reader, const CFieldTracer::Visit& visit)
      : m_tracer(reader, visit) {}

  Status Walk(SETUP_FILE_CONTENTS& contents) {
    FIXED_SECTION& section = contents.fixedSection;
    const Status status = section.Read(m_tracer, PRODUCT_NAME);
    if (Failed(status)) return status;
    CSetupFileReader& reader = m_tracer.Reader();
    reader.SetForm(FormOfVersion(section.softwareVersion, PRODUCT_VERSION));
    const int count = static_cast<int>(section.instruments.size());
    for (int i = 0; i < count && m_tracer.Good(); ++i) {
      contents.instruments.emplace_back();
      SETUP_FILE_INSTRUMENT& instrument = contents.instruments.back();
      const std::uint64_t start = reader.Offset();
      m_tracer.Record("instrument", i, [&] { Instrument(instrument, section.programDataSaved); });
      instrument.size = reader.Offset() - start;
    }
    return reader.GetStatus();
  }

  std::string FailedField() const { return m_tracer.FailedField(); }

 private:
  void Instrument(SETUP_FILE_INSTRUMENT& instrument, int programDataSaved) {
    Settings(instrument);
    List(GROUP_LIST, instrument.groups, [&] { Group(); });
    if (programDataSaved == 0) return;
    List(BLOCK_LIST, instrument.blocks, [&] { Block(); });
    List(SEQUENCE_LIST, instrument.sequenceLines, [&] {
      std::string& text = m_scratch.text;
      LayOutSequenceLine(m_tracer, text, text, text, m_scratch.number, text, text,
                         m_scratch.number);
    });
    List(SUBSEQUENCE_LIST, instrument.subsequences, [&] {
      LayOutSubSequence(m_tracer, m_scratch.text, [&] {
        List(SUBSEQUENCE_LINE_LIST,
             [&] { LayOutSubSequenceLine(m_tracer, m_scratch.text, m_scratch.number); });
      });
    });
    List(EVENT_LIST, instrument.events, [&] {
      LayOutEvent(m_tracer, m_scratch.text, [&] {
        List(EVENT_DEFINITION_LIST, [&] { LayOutEventDefinition(m_tracer, m_scratch.text); });
      });
    });
  }

  void Settings(SETUP_FILE_INSTRUMENT& instrument) {
    std::int32_t& number = m_scratch.number;
    LayOutSettings(m_tracer, instrument.name, number, instrument.channelMode, number,
                   m_scratch.wide, m_scratch.real, number, number, number, number, number, number,
                   number, number, number);
    int modules = 0;
    LayOutModules(m_tracer, modules, modules, [&](int) {
      instrument.pods.emplace_back();
      LayOutModule(m_tracer, m_scratch.real, [&](int pod) {
        PROBE_SETUP probe;
        LayOutProbe(m_tracer, instrument.pods.back()[static_cast<std::size_t>(pod)], probe, [] {});
      });
    });
  }

  void Group() {
    int channels = 0;
    LayOutGroup(m_tracer, m_tracer.Reader().Form().hasNamesAndRows, m_scratch.text, channels,
                m_scratch.text, [&](int) { m_tracer.Field("channel", m_scratch.number); });
  }

  void Block() {
    std::int32_t size = 0;
    std::int32_t width = 0;
    REFERENCES references;
    LayOutBlock(
        m_tracer, m_tracer.Reader().Form().hasNamesAndRows, ReadBlockSize(size),
        ReadBlockWidth(width), m_scratch.text,
        [&] { (void)m_tracer.Bytes("pattern data", PatternDataBytes(size, width)); },
        [&] {
          LayOutListingState(m_tracer, references, [&] {
            List(GROUP_STATE_LIST, [&] {
              std::int32_t& number = m_scratch.number;
              LayOutGroupState(m_tracer, m_scratch.text, number, number, number);
            });
          });
        },
        [&] {
          CWaveformData row;
          List(ROW_LIST, [&] { LayOutWaveformRow(m_tracer, row); });
        });
  }

  template <typename Each>
  void List(const LIST_NAMES& names, int& count, Each&& each) {
    LayOutList(m_tracer, names.count, names.record, names.leastBytes, count, [&](int) { each(); });
  }
  template <typename Each>
  void List(const LIST_NAMES& names, Each&& each) {
    int count = 0;
    List(names, count, each);
  }

  CFieldTracer m_tracer;
  SCRATCH m_scratch;
};

}  // namespace

Status WalkSetupFile(std::span<const std::uint8_t> bytes, const CFieldTracer::Visit& visit,
                     SETUP_FILE_CONTENTS& contents) {
  return GuardAllocation(
      [&] {
        contents = SETUP_FILE_CONTENTS();
        CSetupFileReader reader(bytes);
        CSetupFileWalker walker(reader, visit);
        const Status status = walker.Walk(contents);
        contents.bytesRead = reader.Offset();
        contents.failedField = walker.FailedField();
        contents.failedOffset = reader.FailedOffset();
        return status;
      },
      PG_E_INSTRUMENT_RECORD);
}

}  // namespace quillpg
