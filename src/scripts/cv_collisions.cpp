#include "scripts/cv_collisions.h"

#include "scripts/catalogue/lists.h"

#include <algorithm>
#include <array>
#include <optional>

namespace scripts {
namespace {

using scripts_catalogue::first_script_cv;
using scripts_catalogue::script_cvs;

/// A mark for each script CV.
class Marks {
public:
    void mark(int cv) {
        if (is_script_cv(cv)) marks_[place(cv)] = true;
    }
    bool has(int cv) const { return marks_[place(cv)]; }

private:
    static bool is_script_cv(int cv) {
        return cv >= first_script_cv && cv < first_script_cv + script_cvs;
    }
    static std::size_t place(int cv) { return static_cast<std::size_t>(cv - first_script_cv); }

    std::array<bool, script_cvs> marks_{};
};

template <class Visit>
void for_each_line(Scripts scripts, Visit visit) {
    for (const auto& script : scripts)
        for (int place = 0; place < script->StateCount; ++place) visit(script->GetState(place));
}

/// What the scripts use by references that can be moved, and by those that stay.
struct Used {
    explicit Used(Scripts scripts) {
        for_each_line(scripts, [this](const cls_Scriptstate& line) {
            for (int which = 0; which < line.CVRefCount(); ++which)
                moving.mark(line.GetCVRef(which));
            for (int which : {0, 1})
                if (which >= line.CVRefCount()) staying.mark(line.used_cv(which));
        });
    }
    bool has(int cv) const { return moving.has(cv) || staying.has(cv); }
    Marks moving;
    Marks staying;
};

} // namespace

Cv_Collisions find_collisions(Scripts imported, Scripts in_set) {
    Used import(imported);
    const Used set(in_set);
    Cv_Collisions found;
    const int end = first_script_cv + script_cvs;
    const auto free = [&]() -> std::optional<int> {
        for (int cv = first_script_cv; cv < end; ++cv)
            if (!import.has(cv) && !set.has(cv)) return cv;
        return std::nullopt;
    };
    for (int cv = first_script_cv; cv < end; ++cv) {
        if (!set.has(cv)) continue;
        if (import.staying.has(cv)) found.fixed.push_back(cv);
        if (!import.moving.has(cv)) continue;
        found.cvs.push_back(cv);
        if (const auto other = free()) {
            found.moves.emplace_back(cv, *other);
            import.moving.mark(*other);
        } else {
            found.too_few_free = true;
        }
    }
    return found;
}

void move_cvs(Scripts imported, const Cv_Collisions& collisions) {
    if (collisions.too_few_free) return;
    for_each_line(imported, [&](cls_Scriptstate& line) {
        for (int which = 0; which < line.CVRefCount(); ++which) {
            const auto move = std::ranges::find(collisions.moves, line.GetCVRef(which),
                                                &std::pair<int, int>::first);
            if (move != collisions.moves.end()) line.SetCVRef(which, move->second);
        }
    });
}

} // namespace scripts
