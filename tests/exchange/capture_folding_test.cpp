#include "exchange/capture_folding.h"

#include "quillpg/limits.h"

#include <gtest/gtest.h>

#include <random>

namespace quillpg {
namespace {

using Vectors = std::vector<std::uint64_t>;

struct CAPTURED {
  CAPTURE capture;
  SAMPLE_GRID grid;
};

CAPTURED CaptureOf(const Vectors& vectors) {
  CAPTURED result;
  result.capture.bits = 64;
  result.capture.wordsPerRow = 1;
  for (std::size_t i = 0; i < vectors.size(); ++i) {
    if (i != 0 && vectors[i] == vectors[i - 1]) continue;
    result.capture.rows.push_back(vectors[i]);
    result.capture.stamps.push_back(static_cast<std::int64_t>(i));
    result.grid.first.push_back(static_cast<std::int64_t>(i));
    result.grid.point.push_back(result.grid.point.size());
  }
  result.grid.vectors = static_cast<std::int64_t>(vectors.size());
  return result;
}

void Append(Vectors& vectors, const Vectors& more, int times = 1) {
  for (int i = 0; i < times; ++i) vectors.insert(vectors.end(), more.begin(), more.end());
}

Vectors Random(std::size_t count, unsigned seed) {
  std::mt19937_64 random(seed);
  Vectors vectors(count);
  for (std::uint64_t& vector : vectors) vector = random();
  return vectors;
}

// What the lines of the program play.
Vectors Played(const Vectors& vectors, const FOLDED_PROGRAM& program) {
  Vectors played;
  for (const FOLDED_PROGRAM::LINE& line : program.lines) {
    const auto& block = program.blocks[static_cast<std::size_t>(line.block)];
    for (int pass = 0; pass < line.repeat; ++pass) {
      for (std::int64_t i = block.first; i < block.first + block.size; ++i) {
        played.push_back(vectors[std::min(static_cast<std::size_t>(i), vectors.size() - 1)]);
      }
    }
  }
  return played;
}

struct Case {
  std::string what;
  Vectors vectors;
  std::int64_t mostMemory;  // FULL mode: what folding must reach
};

std::vector<Case> Cases() {
  std::mt19937 random(1);
  std::vector<Case> cases;
  cases.push_back({"one vector", {7}, 40});
  cases.push_back({"constant", Vectors(200'003, 5), 160});
  cases.push_back({"noise", Random(50'001, 2), 50'004});
  cases.push_back({"clock", {}, 84});
  for (int i = 0; i < 200'001; ++i) cases.back().vectors.push_back(i & 1);
  cases.push_back({"long period", {}, 3500});
  Append(cases.back().vectors, Random(997, 3), 1000);
  Case packets{"equal packets at odd times", {}, 6000};
  const Vectors packet = Random(300, 4);
  for (int i = 0; i < 1000; ++i) {
    packets.vectors.insert(packets.vectors.end(), 200 + random() % 1000, 0);
    Append(packets.vectors, packet);
  }
  cases.push_back(packets);
  // Every remainder of an idle time, with a short something before and behind it.
  for (std::size_t idle : {40, 79, 80, 81, 119, 120, 121, 159, 160, 161, 200, 239, 281}) {
    for (const std::size_t edge : {0, 1, 39, 40, 41}) {
      Vectors vectors = Random(edge, 5);
      vectors.insert(vectors.end(), idle, 9);
      Append(vectors, Random(edge, 6));
      const auto length = static_cast<std::int64_t>(vectors.size());
      cases.push_back({"idle " + std::to_string(idle) + " between " + std::to_string(edge), vectors,
                       length + 12});
    }
  }
  return cases;
}

TEST(CaptureFolding, PlaysTheCaptureExactly) {
  for (const Case& row : Cases()) {
    for (const int minSize : {40, 80}) {
      SCOPED_TRACE(row.what + ", blocks of " + std::to_string(minSize));
      const CAPTURED captured = CaptureOf(row.vectors);
      const int granularity = minSize / 10;
      FOLDED_PROGRAM program;
      ASSERT_EQ(
          CCaptureFolding(minSize, granularity).Fold(captured.capture, captured.grid, program),
          S_OK);
      Vectors played = Played(row.vectors, program);
      Vectors expected = row.vectors;
      if (expected.size() < static_cast<std::size_t>(minSize)) {
        expected.resize(static_cast<std::size_t>(minSize), expected.back());
      }
      EXPECT_TRUE(played == expected);
      EXPECT_LE(program.lines.size(), static_cast<std::size_t>(MAX_SEQUENCE_LINES));
      std::int64_t memory = 0;
      for (const auto& block : program.blocks) {
        EXPECT_GE(block.size, minSize);
        memory += (block.size + granularity - 1) / granularity * granularity;
      }
      EXPECT_EQ(program.memory, memory);
      if (minSize == 40) {
        EXPECT_LE(program.memory, row.mostMemory);
      }
      for (const auto& line : program.lines) EXPECT_TRUE(line.repeat >= 1 && line.repeat <= 65536);
    }
  }
}

TEST(CaptureFolding, FoldsHoursOfIdleTimeWithoutCountingThemOut) {
  CAPTURED captured = CaptureOf({1, 0, 1});
  captured.grid.first = {0, 3'600'000'000, 7'200'000'017};
  captured.grid.vectors = 10'800'000'123;
  FOLDED_PROGRAM program;
  ASSERT_EQ(CCaptureFolding(40, 4).Fold(captured.capture, captured.grid, program), S_OK);
  std::int64_t length = 0;
  for (const auto& line : program.lines) {
    length += program.blocks[static_cast<std::size_t>(line.block)].size * line.repeat;
  }
  EXPECT_EQ(length, captured.grid.vectors);
  EXPECT_LT(program.memory, 20'000);
  EXPECT_LT(program.lines.size(), 200u);
}

}  // namespace
}  // namespace quillpg
