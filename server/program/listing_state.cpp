#include "program/listing_state.h"

#include "app/setup_stream.h"
#include "base/setup_file_list.h"

namespace quillpg {

Status LISTING_STATE::Initialize() {
  firstReference = -1;
  secondReference = -1;
  displayValue4 = 1;
  displayValue5 = 1;
  return S_OK;
}

Status LISTING_STATE::DeleteAll() {
  groupStates.Clear();
  return S_OK;
}

Status LISTING_STATE::Assign(const LISTING_STATE& source) {
  if (this == &source) return S_OK;
  const Status status = groupStates.CopyFrom(source.groupStates);
  if (Failed(status)) return status;
  firstReference = source.firstReference;
  secondReference = source.secondReference;
  displayValue4 = source.displayValue4;
  displayValue5 = source.displayValue5;
  return S_OK;
}

// Display values 4 and 5 are not stored in files.
std::uint64_t LISTING_STATE::GetSize() const { return 12 + groupStates.SizeOfAll(); }

Status LISTING_STATE::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status LISTING_STATE::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status LISTING_STATE::Read(CSetupFileReader& reader) {
  (void)DeleteAll();
  (void)Initialize();  // files do not hold display values 4 and 5
  LayOutListingState(reader, *this,
                     [&] { (void)ReadRecords(reader, GROUP_STATE_LIST, groupStates); });
  return reader.GetStatus();
}

Status LISTING_STATE::Write(CByteWriter& writer) const {
  LayOutListingState(writer, *this,
                     [&] { (void)WriteRecords(writer, GROUP_STATE_LIST, groupStates); });
  return writer.GetStatus();
}

}  // namespace quillpg
