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
    ui_compare::Pair proposed(const std::vector<ui_compare::Choice>& sets) const;

    Surroundings at_;
    ui_compare::Pair last_; ///< what the user compared last
};

} // namespace ui_main
