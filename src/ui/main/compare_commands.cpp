#include "ui/main/compare_commands.h"

#include "store/List_Filler.h"
#include "ui/main/library_view.h"
#include "ui/main/menus.h"
#include "ui/main/texts.h"
#include "ui/parts/trouble_texts.h"

#include <algorithm>
#include <utility>

namespace ui_main {
namespace {

using ui_compare::Choice;

/// Names of sets, those of one reset CV after those of the other.
class Names final : public store::List_Filler {
public:
    void clear() override {}
    void add(const QString& text, std::int32_t item_data) override {
        names.push_back({item_data, text + more});
    }
    QString more;
    std::vector<Choice> names;
};

} // namespace

Compare_Commands::Compare_Commands(const Surroundings& at) : at_(at) {
    at.menus.bring({{"mnu_vergleichen", at_.messages.command([this] { compare_sets(); })}});
    connect(&at.view, &Library_View::shown, this, &Compare_Commands::note_selected);
}

std::vector<Choice> Compare_Commands::choices() {
    Names names;
    at_.database.Fill_Sets_in_Listbox(names, 8);
    names.more = QStringLiteral(" (CV265)");
    at_.database.Fill_Sets_in_Listbox(names, 265);
    return std::move(names.names);
}

void Compare_Commands::note_selected() {
    const std::int32_t now = at_.view.selected_set();
    if (now != 0 && now != selected_) selected_before_ = std::exchange(selected_, now);
}

// The selected set with the one that was selected before it: what was loaded, when a decoder has
// just been read. Else with its neighbour.
ui_compare::Pair Compare_Commands::proposed(const std::vector<Choice>& sets) const {
    const auto place = [&](std::int32_t SetID) {
        return std::ranges::find(sets, SetID, &Choice::SetID) - sets.begin();
    };
    const auto id = [&](std::ptrdiff_t row) { return sets[static_cast<std::size_t>(row)].SetID; };
    const auto end = std::ssize(sets);
    const auto selected = place(at_.view.selected_set());
    const auto left = selected == end ? 0 : selected;
    const auto before = place(selected_before_);
    if (before != end && before != left) return {id(left), selected_before_};
    return {id(left), id(left > 0 ? left - 1 : 1)};
}

void Compare_Commands::compare_sets() {
    if (!at_.messages.expect_library()) return;
    if (const store::Blocked why = at_.database.opening().blocked; is_incomplete(why)) {
        at_.messages.say(QStringLiteral("Nicht verglichen: ") + ui_parts::reason(why, {}));
        return;
    }
    std::vector<Choice> sets = choices();
    if (at_.messages.say_trouble()) return;
    if (sets.size() < 2) {
        at_.messages.say(QStringLiteral("Zum Vergleichen sind zwei CV-Sets nötig."));
        return;
    }
    const ui_compare::Pair first = proposed(sets);
    const auto cvs = [this](std::int32_t SetID) -> std::optional<std::vector<store::CVRec>> {
        std::vector<store::CVRec> found = at_.database.cvs_of(SetID);
        const bool read = !at_.messages.say_trouble() && !at_.database.set_gone(SetID);
        return read ? std::optional(std::move(found)) : std::nullopt;
    };
    const auto copy = [this](const QString& text) {
        return at_.desktop.Set_Clipboard_Text({text, {}});
    };
    ui_compare::frm_Compare dialog(&at_.window, {std::move(sets), cvs, copy}, first);
    dialog.exec();
}

} // namespace ui_main
