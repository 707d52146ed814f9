#include "controls/list_menu.h"

#include "base/phrases.h"
#include "controls/list_rows.h"

namespace kxrestore::controls {

void AddTickItems(Menu& menu, AutoSelect& list) {
  if (list.SelectedCount() != 0) {
    menu.Add(Say(Phrase::kMenuTickSelected), [&list] { list.UserTickSelected(true); });
    menu.Add(Say(Phrase::kMenuUntickSelected), [&list] { list.UserTickSelected(false); }).keys =
        Say(Phrase::kKeyUntick);
    menu.AddLine();
  }
  if (list.Rows().Count() != 0) {
    menu.Add(Say(Phrase::kMenuTickShown), [&list] { list.UserTickShown(true); });
    menu.Add(Say(Phrase::kMenuUntickShown), [&list] { list.UserTickShown(false); });
    menu.AddLine();
  }
}

}  // namespace kxrestore::controls
