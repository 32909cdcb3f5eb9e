#pragma once

#include "ui/compare/frm_Compare.h"
#include "ui/main/surroundings.h"

#include <QObject>

namespace ui_main {

/// What differs between two sets.
class Compare_Commands final : public QObject {
public:
    explicit Compare_Commands(const Surroundings& at);

private:
    void compare_sets();
    std::vector<ui_compare::Choice> choices();
    void note_selected();
    ui_compare::Pair proposed(const std::vector<ui_compare::Choice>& sets) const;

    Surroundings at_;
    std::int32_t selected_ = 0; ///< in the list of sets, and the one before it
    std::int32_t selected_before_ = 0;
};

} // namespace ui_main
