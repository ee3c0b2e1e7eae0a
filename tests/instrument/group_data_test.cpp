#include "plain/group_text.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>

namespace quillpg {
namespace {

constexpr Radix kRadixes[] = {Radix::Hex, Radix::Decimal, Radix::Octal, Radix::Binary};

// The bytes of the block, to see what a write left alone.
std::string Bytes(const BLOCK& block) {
  const auto size = static_cast<std::size_t>(block.GetBlockSize()) * block.RowBytes();
  return {reinterpret_cast<const char*>(block.Data()), size};
}

class CRandomGroups {
 public:
  int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }

  void Fill(BLOCK& block) {
    const auto size = static_cast<std::size_t>(block.GetBlockSize()) * block.RowBytes();
    for (std::size_t i = 0; i < size; ++i) block.Data()[i] = static_cast<std::uint8_t>(m_random());
  }

  // A group named `name` of `count` channels: in a row, with breaks, scattered, with absurd
  // numbers.
  void Make(CGroupManager& groups, const std::string& name, int count) {
    (void)groups.DeleteAll();
    ASSERT_EQ(groups.AddGroup(name), S_OK);
    GROUP* group = Find(groups, &CGroupManager::GetGroup, name);
    const int kind = Number(0, 3);
    int channel = Number(0, count + 40);
    for (int i = 0; i < count; ++i, --channel) {
      if (kind == 2 || Number(0, 9) < kind) channel = Number(-10, 400);
      const int absurd = i % 2 == 0 ? 2147483647 : -2147483647;
      ASSERT_EQ(group->AddChannel(kind == 3 && i % 7 == 0 ? absurd : channel, -1), S_OK);
    }
  }

  std::string Text(int count) {
    static constexpr char kCharacters[] = "0123456789ABCDEFabcdef01010101 -xGz,";
    std::string text(static_cast<std::size_t>(Number(0, count)), '0');
    const int last = Number(0, 1) != 0 ? 1 : static_cast<int>(sizeof kCharacters) - 2;
    for (char& c : text) c = kCharacters[Number(0, last)];
    return text;
  }

 private:
  std::mt19937 m_random{20240607};
};

TEST(GroupData, AgreesWithThePlainConversion) {
  CRandomGroups random;
  std::unique_ptr<CInstrumentFixture> engine;
  for (int round = 0; round < 400; ++round) {
    const int count = round % 40 < 33 ? round % 40 * 10 + round / 40 : random.Number(0, 400);
    if (round % 40 == 0) {
      engine.reset();  // there is one server at a time
      engine = std::make_unique<CInstrumentFixture>(1 + round / 40 % 5);
      const auto mode = round < 200 ? ChannelMode::Full : ChannelMode::Half;
      (void)engine->Instrument().SetChannelMode(mode);
    }
    CInstrumentFixture& fixture = *engine;
    CInstrument& instrument = fixture.Instrument();
    const CPlainGroupText plain(instrument);
    BLOCK& block = fixture.BlockAt(0);
    random.Make(fixture.Groups(), "Bus", count);
    random.Fill(block);
    const std::string before = Bytes(block);
    for (const Radix radix : kRadixes) {
      const std::string input = random.Text(2 * count + 3);
      SCOPED_TRACE(std::to_string(count) + " channels, radix " +
                   std::to_string(static_cast<int>(radix)) + ", text " + input);
      const int last = block.GetBlockSize() - 1;  // behind it a sanitizer sees a byte too many
      const int vector = radix == Radix::Hex ? last : random.Number(0, last);
      std::string text = "stale";
      std::string expected;
      ASSERT_EQ(instrument.GetGroupData(" bus ", 0, vector, radix, text), S_OK);
      ASSERT_EQ(plain.Get("Bus", 0, vector, radix, expected), S_OK);
      ASSERT_EQ(text, expected);

      ASSERT_EQ(plain.Set("Bus", 0, vector, radix, input), S_OK);
      const std::string wanted = Bytes(block);
      std::copy(before.begin(), before.end(), reinterpret_cast<char*>(block.Data()));
      ASSERT_EQ(instrument.SetGroupData("Bus", 0, vector, radix, input), S_OK);
      ASSERT_EQ(Bytes(block), wanted);
      std::copy(before.begin(), before.end(), reinterpret_cast<char*>(block.Data()));
    }
  }
}

TEST(GroupData, SingleBitsAreBoundedByTheBlockItself) {
  CInstrumentFixture fixture;
  CInstrument& instrument = fixture.Instrument();
  const std::tuple<int, int, int, Status> rows[] = {
      {0, 0, 0, S_OK},    {63, 0, 39, S_OK},  {64, 0, 0, E_FAIL},
      {-1, 0, 1, E_FAIL}, {-8, 0, 1, E_FAIL}, {0, 0, -1, E_FAIL},
      {0, 0, 40, E_FAIL}, {0, 1, 0, E_FAIL},  {0, -1, 0, E_FAIL},
  };
  for (const auto& [channel, block, vector, status] : rows) {
    SCOPED_TRACE(std::to_string(channel) + "," + std::to_string(vector));
    const std::string before = Bytes(fixture.BlockAt(0));
    int bit = -1;
    EXPECT_EQ(instrument.GetChannelData(channel, block, vector, bit), status);
    EXPECT_EQ(bit, status == S_OK ? 1 : 0);
    EXPECT_EQ(instrument.SetChannelData(channel, block, vector, 0), status);
    EXPECT_EQ(Bytes(fixture.BlockAt(0)) == before, status != S_OK);
  }
  const BLOCK& block = fixture.BlockAt(0);
  EXPECT_EQ(block.Data()[0], 0xFE);
  EXPECT_EQ(block.Data()[39 * 8 + 7], 0x7F);
}

TEST(GroupData, ARunIsCutAtTheBlock) {
  struct Row {
    int vector, count, first, end;  // written: from `first` up to `end`
  };
  constexpr int kMost = 2147483647;
  const Row rows[] = {
      {5, 3, 5, 8},      {5, 1, 5, 6},         {5, 0, 5, 6},     {5, -kMost, 5, 6}, {38, 3, 38, 40},
      {0, kMost, 0, 40}, {39, kMost, 39, 40},  {-2, 4, 0, 2},    {40, 9, 0, 0},     {-1, 1, 0, 0},
      {-9, 9, 0, 0},     {kMost, kMost, 0, 0}, {-kMost, 9, 0, 0}};
  CInstrumentFixture fixture;
  BLOCK& block = fixture.BlockAt(0);
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.vector) + " x " + std::to_string(row.count));
    std::fill_n(block.Data(), 40 * 8, 0xFF);
    (void)block.SetChanged(0);
    EXPECT_EQ(
        fixture.Instrument().SetGroupData("UserGrp1", 0, row.vector, Radix::Hex, "2", row.count),
        S_OK);
    EXPECT_EQ(block.IsChanged(), row.first < row.end);
    for (int vector = 0; vector < 40; ++vector) {
      const bool written = vector >= row.first && vector < row.end;
      EXPECT_EQ(Bit(fixture.Instrument(), 0, 0, vector), written ? 0 : 1) << vector;
      EXPECT_EQ(Bit(fixture.Instrument(), 16, 0, vector), 1) << vector;  // of another group
    }
  }
  for (const char* group : {"UserGrp1", "none"}) {
    const int missing = group[0] == 'U' ? 1 : 0;
    EXPECT_EQ(fixture.Instrument().SetGroupData(group, missing, 0, Radix::Hex, "2", 2), E_FAIL);
  }
}

TEST(GroupData, PodDHoldsPodsInHighImpedance) {
  for (const ChannelMode mode : {ChannelMode::Full, ChannelMode::Half}) {
    SCOPED_TRACE(static_cast<int>(mode));
    CInstrumentFixture fixture(2);
    CInstrument& instrument = fixture.Instrument();
    ASSERT_EQ(instrument.SetChannelMode(mode), S_OK);
    const int pod = mode == ChannelMode::Full ? 16 : 8;
    const int slave = 4 * pod;
    const int control = slave + 3 * pod + 4;  // of the slave's pod A
    ASSERT_EQ(instrument.SetInhibitByPodD(1, 0, 1), S_OK);

    int mask = -1;
    EXPECT_EQ(instrument.GetChannelInhibitMask(slave + pod - 1, 0, 5, mask), S_OK);
    EXPECT_EQ(mask, 1);
    EXPECT_EQ(instrument.SetChannelInhibitMask(slave, 0, 5, 0), S_OK);
    EXPECT_EQ(Bit(instrument, control, 0, 5), 0);
    EXPECT_EQ(instrument.GetChannelInhibitMask(slave, 0, 5, mask), S_OK);
    EXPECT_EQ(mask, 0);

    // Not inhibited by data: mask 0, and only 0 can be set. No probe: a failure.
    EXPECT_EQ(instrument.GetChannelInhibitMask(0, 0, 5, mask), S_OK);
    EXPECT_EQ(mask, 0);
    EXPECT_EQ(instrument.SetChannelInhibitMask(0, 0, 5, 0), S_OK);
    EXPECT_EQ(instrument.SetChannelInhibitMask(0, 0, 5, 1), E_FAIL);
    EXPECT_EQ(instrument.GetChannelInhibitMask(pod, 0, 5, mask), E_FAIL);
    EXPECT_EQ(instrument.SetChannelInhibitMask(pod, 0, 5, 0), E_FAIL);
  }
}

}  // namespace
}  // namespace quillpg
