#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

// Each text says at its start what it is about, so that a text at the wrong control shows.
TEST_F(DialogTest, TheHelpSpeaksOfWhatIsUnderThePointer) {
  MakeCatalog({});
  controls::Control* const sources[] = {
      &ui().form,          &ui().asRestoreList, &ui().tvwDetails,    &ui().tvwSets,
      &ui().asFiles,       &ui().asSearch,      &ui().frLoadCD,      &ui().cmdAction[0],
      &ui().cmdAction[1],  &ui().cmdAction[2],  &ui().cmdAction[3],  &ui().cmdSearch[0],
      &ui().cmdSearch[3],  &ui().cmdSearch[1],  &ui().cmdSearch[2],  &ui().cmdRestore[0],
      &ui().cmdRestore[1], &ui().cmdRestore[2], &ui().cmdRestore[3], &ui().cmdRestore[4]};
  const char* const starts[] = {"INSTRUCTIONS",
                                "FILES SELECTED TO RESTORE",
                                "BACKUP SET DETAILS",
                                "BACKUP SETS",
                                "AUTO-SELECT",
                                "ADVANCED SEARCH",
                                "LOAD CD Archive",
                                "APPLY SELECTION",
                                "CLEAR ALL",
                                "EXPAND ALL",
                                "COLLAPSE ALL",
                                "ADVANCED SEARCH - APPLY",
                                "ADVANCED SEARCH - APPLY",
                                "ADVANCED SEARCH - CLEAR",
                                "ADVANCED SEARCH - FIND",
                                "RESTORE NOW",
                                "CANCEL RESTORE",
                                "REFRESH LIST",
                                "UPDATE LIST",
                                "CLEAR LIST"};
  for (std::size_t i = 0; i < std::size(sources); ++i) {
    sources[i]->MouseMove();
    EXPECT_TRUE(ui().lblHelp.Caption().starts_with(starts[i])) << starts[i];
  }
}

}  // namespace
}  // namespace kxrestore::dialog_test
