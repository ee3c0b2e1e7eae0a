#pragma once

#include "app/version_info.h"
#include "persistence/fixed_section.h"
#include "support/model_json.h"

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace quillpg {

/// A file of tests/data/setup and what it holds.
struct CReferenceFile {
  explicit CReferenceFile(const std::string& name) {
    const std::string path = std::string(QUILLPG_TEST_DATA) + "/setup/" + name;
    std::ifstream file(path + ".pgs", std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(file), {});
    json = Json::parse(std::ifstream(path + ".json"));
  }

  std::vector<std::uint8_t> bytes;
  Json json;
};

inline Json SectionJson(const FIXED_SECTION& section) {
  Json entries = Json::array();
  for (const auto& entry : section.instruments) {
    entries.push_back(Json::array({entry.modules, entry.name}));
  }
  return {{"product", section.productName},      {"version", section.softwareVersion},
          {"comment", section.comment},          {"date", section.dateSaved},
          {"program", section.programDataSaved}, {"file_type", static_cast<int>(section.fileType)},
          {"entries", std::move(entries)},       {"depths", section.memoryDepths}};
}

}  // namespace quillpg
