#include "base/name_index.h"

#include "base/text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace quillpg {
namespace {

// Few different characters, the neighbours of the letters and bytes beyond ASCII among them, so
// that names meet, differ in case alone, or nearly meet.
std::string RandomName(std::mt19937& random, int longest) {
  const std::string characters("aAzZ@[`{\xC3\x80\xE0\0", 12);
  std::string name(random() % static_cast<unsigned>(longest + 1), ' ');
  for (char& character : name) character = characters[random() % characters.size()];
  return name;
}

TEST(NameIndex, AnswersLikeAWalkThroughTheNames) {
  std::mt19937 random(7);
  for (const int longest : {1, 2, 3, 5, 8, 9, 16, 17, 40}) {
    SCOPED_TRACE(longest);
    std::vector<std::string> names(600);
    for (std::string& name : names) name = RandomName(random, longest);
    CNameIndex index;
    EXPECT_EQ(index.Find("a"), nullptr);   // before the first name
    if (longest % 2 == 0) index.Clear(3);  // has to grow
    for (int i = 0; i < 600; ++i) index.Add(names[static_cast<std::size_t>(i)], i);
    for (int i = 0; i < 600; ++i) {
      const std::string asked =
          i % 2 == 0 ? RandomName(random, longest) : FoldCase(names[static_cast<std::size_t>(i)]);
      int first = -1;
      int count = 0;
      for (int j = 599; j >= 0 && !asked.empty(); --j) {
        if (!EqualNoCase(names[static_cast<std::size_t>(j)], asked)) continue;
        first = j;
        ++count;
      }
      const INDEXED_NAME* found = index.Find(asked);
      EXPECT_EQ(index.First(asked), first);
      EXPECT_EQ(found ? found->count : 0, count);
    }
    index.Clear();
    EXPECT_EQ(index.Find(names[0]), nullptr);
  }
}

}  // namespace
}  // namespace quillpg
