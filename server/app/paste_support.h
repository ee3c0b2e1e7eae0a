#pragma once

#include "program/block.h"
#include "program/clipboard_info.h"
#include "program/subsequence.h"
#include "quillpg/result_codes.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

// What the paste handlers of the root share.

namespace quillpg {

class CInstrument;
class CInstrumentManager;

/// Tells the user that something which a paste needs is missing; E_FAIL.
Status PasteObjectMissing();

/// Shows the notice and answers E_FAIL.
Status RefusePaste(int message);

/// The instruments that the two grids show. Both must be in the list still: a grid may have
/// outlived its instrument.
struct PASTE_SIDES {
  CInstrument* source = nullptr;
  CInstrument* target = nullptr;

  /// E_FAIL, after telling the user, without one of them.
  Status Find(const CClipboardInfo& info, const CInstrumentManager* instruments);
};

/// A range of positions, its ends included, within a list of some length.
struct PASTE_RANGE {
  int first = 0;
  int count = 0;

  /// E_FAIL for a range that is empty or leaves the list.
  Status Set(int from, int to, int listed);
};

/// Where objects go in a list of `count`: before the target, or at the end.
int TargetPosition(const CClipboardInfo& info, int count);

/// A list of program objects as a paste sees it.
template <typename T>
struct PASTE_LIST {
  int limit;                   ///< slots that it may have
  std::function<int()> count;  ///< slots that it has
  std::function<T*(int)> at;   ///< null for an empty slot
  std::function<Status(int, std::unique_ptr<T>&&)> insert;
};

template <typename T>
using PASTE_COPIES = std::vector<std::unique_ptr<T>>;

template <typename T>
Status Duplicate(const T& object, T& copy) {
  if constexpr (requires { object.Copy(copy); }) {
    return object.Copy(copy);
  } else if constexpr (requires { copy.Assign(object); }) {
    return copy.Assign(object);
  } else {
    copy = object;
    return S_OK;
  }
}

/// Copies the objects of the clipboard's range into the target list. `prepare(copies)` gives the
/// copies their names and may refuse them. Nothing is inserted before all copies are made: source
/// and target may be the same list.
template <typename T, typename Prepare>
Status PasteObjects(const CClipboardInfo& info, const PASTE_LIST<T>& source,
                    const PASTE_LIST<T>& target, Prepare&& prepare) {
  PASTE_RANGE range;
  Status status = range.Set(info.sourceFirst, info.sourceLast, source.count());
  if (Failed(status) || target.count() > target.limit - range.count) return E_FAIL;
  PASTE_COPIES<T> copies;
  for (int i = range.first; i < range.first + range.count; ++i) {
    const T* object = source.at(i);
    if (!object) return PasteObjectMissing();
    copies.push_back(std::make_unique<T>());
    status = Duplicate(*object, *copies.back());
    if (Failed(status)) return status;
  }
  status = prepare(copies);
  int position = TargetPosition(info, target.count());
  for (auto copy = copies.begin(); !Failed(status) && copy != copies.end(); ++copy) {
    // The front end may shorten the list when it hears of a copy: no gap is left. When it destroys
    // the instrument instead, the insertion fails.
    status = target.insert(std::min(position++, target.count()), std::move(*copy));
  }
  return status;
}

/// Names for copies: each its own while that is free, else what CInstrument::GetUniqueName would
/// give then; one pass over the target's names serves any number of copies.
class CPasteNames {
 public:
  /// `word` is the catalogue number of the word that new names begin with.
  explicit CPasteNames(int word);

  /// Case does not count; empty names are never in use.
  void Use(std::string_view name);
  template <typename T>
  void UseAll(const PASTE_LIST<T>& list) {
    for (int i = 0; i < list.count(); ++i) {
      if (const T* object = list.at(i)) Use(NameOf(*object));
    }
  }
  /// Gives a free name, in use from now on.
  std::string Take(const std::string& own);

 private:
  std::unordered_set<std::string> m_used;  // folded
  std::string m_word;
  int m_number = 0;
};

/// The blocks, the subsequences of an instrument, which share one name space.
PASTE_LIST<BLOCK> BlocksOf(const CInstrument& instrument);
PASTE_LIST<SUBSEQUENCE> SubSequencesOf(const CInstrument& instrument);

}  // namespace quillpg
