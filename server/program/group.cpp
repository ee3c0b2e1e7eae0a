#include "program/group.h"

#include "app/setup_stream.h"
#include "base/guard.h"
#include "base/setup_file_format.h"
#include "program/group_plan.h"
#include "quillpg/limits.h"

#include <algorithm>

namespace quillpg {

GROUP::GROUP() = default;

GROUP::~GROUP() = default;

GROUP& GROUP::operator=(const GROUP& other) {
  if (this == &other) return *this;
  (void)StoreText(m_name, other.m_name);  // out of memory: the old name stays
  m_revision.Touch();
  (void)DeleteAll();  // the channels go, the channel-names text stays: deliberate
  return *this;
}

Status GROUP::Initialize() {
  m_name.clear();
  m_channelNames.clear();
  m_revision.Touch();
  return DeleteAll();
}

Status GROUP::SetGroupName(const std::string& name) {
  const Status status = StoreText(m_name, name);
  m_revision.Touch();
  return status;
}

Status GROUP::SetChannelNames(const std::string& text) { return StoreText(m_channelNames, text); }

Status GROUP::AddChannel(int channel, int position) {
  if (position >= MAX_LIST_POSITIONS) return S_OK;
  return GuardAllocation([&] {
    const int place = position < 0 ? GetNoOfChannels() : position;
    const int gap = std::max(place - GetNoOfChannels(), 0);
    const auto at = m_channels.begin() + (place - gap);
    m_channels.insert(at, static_cast<std::size_t>(gap) + 1, 0);
    m_channels[static_cast<std::size_t>(place)] = channel;
    m_plan.reset();
    m_revision.Touch();
    return S_OK;
  });
}

Status GROUP::FindChannel(int channel, int& index) const {
  const auto found = std::ranges::find(m_channels, channel);
  index = found == m_channels.end() ? -1 : static_cast<int>(found - m_channels.begin());
  return index < 0 ? E_FAIL : S_OK;
}

Status GROUP::DeleteChannel(int channel) {
  const auto found = std::ranges::find(m_channels, channel);
  if (found == m_channels.end()) return E_FAIL;
  m_channels.erase(found);
  m_plan.reset();
  m_revision.Touch();
  return S_OK;
}

Status GROUP::DeleteAll() {
  m_channels.clear();
  m_plan.reset();
  m_revision.Touch();
  return S_OK;
}

void GROUP::GetChannelId(int index, int& channel) const {
  const bool valid = index >= 0 && index < GetNoOfChannels();
  channel = valid ? m_channels[static_cast<std::size_t>(index)] : -1;
}

Status GROUP::GetTextLength(Radix radix, int& length) const {
  const int channels = GetNoOfChannels();
  switch (radix) {
    case Radix::Hex:
      length = (channels + 3) / 4;
      break;
    case Radix::Octal:
      length = (channels + 2) / 3;
      break;
    case Radix::Binary:
      length = channels;
      break;
    default:  // decimal: the caller knows the number of digits
      break;
  }
  return S_OK;
}

std::uint64_t GROUP::GetSize() const {
  return m_name.size() + m_channelNames.size() + 4 * m_channels.size() + 14;
}

Status GROUP::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status GROUP::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status GROUP::Read(CSetupFileReader& reader) {
  int channels = 0;
  const Status status = GuardAllocation([&] {
    LayOutGroup(reader, reader.Form().hasNamesAndRows, m_name, channels, m_channelNames, [&](int) {
      int channel = 0;
      reader.Field("channel", channel);
      if (reader.Good()) m_channels.push_back(channel);
    });
    return S_OK;
  });
  if (Failed(status)) reader.Refuse("channel");
  m_plan.reset();
  m_revision.Touch();
  return reader.GetStatus();
}

Status GROUP::Write(CByteWriter& writer) const {
  const int channels = GetNoOfChannels();
  LayOutGroup(writer, true, m_name, channels, m_channelNames, [&](int index) {
    writer.Field("channel", m_channels[static_cast<std::size_t>(index)]);
  });
  return writer.GetStatus();
}

void GROUP::MakePlan() const { m_plan = std::make_unique<CGroupPlan>(m_channels); }

}  // namespace quillpg
