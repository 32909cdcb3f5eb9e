#include "scripts/script_session.h"

#include "scripts/line_columns.h"

#include <utility>

namespace scripts {
namespace {

constexpr std::size_t most_steps = 1000;
constexpr int copied_parameters = 5; ///< that copying a line takes along

/// Whether a line says the same; where it jumps to is another matter.
bool same_but_for_target(const cls_Scriptstate& one, const cls_Scriptstate& other) {
    if (one.GetCommand() != other.GetCommand()) return false;
    const auto target = scripts_catalogue::JumpParameter(one.GetCommand());
    for (int par = 0; par < copied_parameters; ++par)
        if (par != target && one.GetPar(par) != other.GetPar(par)) return false;
    return true;
}

} // namespace

Script_Session::Script_Session(const cls_script& stored) {
    now_.script.Import_vqx_2_Listindex(stored);
    now_.origins.resize(cls_script::max_states);
    for (int line = 0; line < lines(); ++line)
        origin(line) = Origin{stored.GetState(line), std::as_const(now_.script).GetState(line)};
}

void Script_Session::write_back(cls_script& stored) const {
    for (int line = 0; line < lines(); ++line) {
        const cls_Scriptstate& edited = now_.script.GetState(line);
        const std::optional<Origin>& from = now_.origins[static_cast<std::size_t>(line)];
        cls_Scriptstate& state = stored.GetState(line);
        if (from && same_but_for_target(edited, from->editor)) {
            state = from->decoder;
            if (const auto target = scripts_catalogue::JumpParameter(edited.GetCommand()))
                state.SetPar(*target, edited.GetPar(*target));
            state.Info = edited.Info;
        } else {
            state.Import_Listindex_2_vqx(edited);
        }
    }
    stored.StateCount = lines();
}

// Steps

void Script_Session::begin(Kind kind, int line, bool typing) {
    const bool goes_on = typing && typed_ == line && !undo_.empty();
    typed_ = typing ? std::optional(line) : std::nullopt;
    if (!goes_on) {
        undo_.push_back({now_, kind, line});
        redo_before_typing_ = std::exchange(redo_, {});
    }
    if (undo_.size() > most_steps) undo_.pop_front();
    redo_.clear();
    now_.number = ++last_number_;
}

void Script_Session::tell(Kind kind, int line) {
    if (listener_ == nullptr) return;
    if (kind == Kind::inserted) listener_->line_inserted(line);
    if (kind == Kind::deleted) listener_->line_deleted(line);
    listener_->lines_changed();
}

int Script_Session::move(Steps& from, Steps& to) {
    if (from.empty()) return 0;
    typed_.reset();
    Step step = std::move(from.back());
    from.pop_back();
    std::swap(step.content, now_);
    const int line = step.line;
    Kind back = step.kind;
    if (&from == &undo_ && back != Kind::other)
        back = back == Kind::inserted ? Kind::deleted : Kind::inserted;
    to.push_back(std::move(step));
    tell(back, line);
    return line;
}

void Script_Session::take_back_typing() {
    if (!typed_) return;
    move(undo_, redo_);
    redo_ = std::exchange(redo_before_typing_, {});       // as if nothing had been
    if (listener_ != nullptr) listener_->lines_changed(); // of what can be done again, too
}

// Changes

void Script_Session::insert(int line) {
    if (!has(line) || lines() >= cls_script::max_states) return;
    begin(Kind::inserted, line);
    now_.script.Insert_ScriptState(line);
    now_.origins.insert(now_.origins.begin() + line, std::nullopt);
    now_.origins.pop_back();
    now_.inserted = line;
    tell(Kind::inserted, line);
}

void Script_Session::copy_to_inserted(int line) {
    if (!now_.inserted || !has(line)) return;
    const int to = *now_.inserted;
    begin(Kind::other, to);
    now_.inserted.reset();
    if (line != to) {
        now_.script.Copy_ScriptState(line, to);
        origin(to) = origin(line);
    }
    tell(Kind::other, to);
}

void Script_Session::erase(int line) {
    if (!has(line)) return;
    begin(Kind::deleted, line);
    now_.script.Delete_ScriptState(line);
    now_.origins.erase(now_.origins.begin() + line);
    now_.origins.emplace_back();
    if (now_.inserted == line)
        now_.inserted.reset();
    else if (now_.inserted > line)
        --*now_.inserted;
    tell(Kind::deleted, line);
}

void Script_Session::choose_command(int line, std::int32_t code, bool typing) {
    const bool grows = line == lines() && line < cls_script::max_states && code != 0;
    if (!grows && (!has(line) || now_.script.GetState(line).GetCommand() == code)) return;
    cls_Scriptstate from = grows ? cls_Scriptstate() : now_.script.GetState(line);
    if (typing && typed_ == line && !undo_.empty()) { // what it led to on the way costs nothing
        const cls_script& earlier = undo_.back().content.script;
        from = line < earlier.StateCount ? earlier.GetState(line) : cls_Scriptstate();
        if (from.GetCommand() == code) return take_back_typing();
    }
    begin(Kind::other, line, typing);
    if (grows) {
        origin(line).reset();
        now_.script.StateCount = line + 1;
    }
    scripts::choose_command(from, code);
    now_.script.SetState(line, from);
    if (now_.inserted == line) now_.inserted.reset();
    tell(Kind::other, line);
}

void Script_Session::choose(int line, int column, int entry) {
    if (!has(line)) return;
    cls_Scriptstate changed = now_.script.GetState(line);
    choose_entry(changed, column, entry);
    if (changed == std::as_const(now_.script).GetState(line)) return;
    begin(Kind::other, line);
    now_.script.SetState(line, changed);
    tell(Kind::other, line);
}

void Script_Session::put_info(int line, const QString& info) {
    if (!has(line) || now_.script.GetState(line).Info == info) return;
    begin(Kind::other, line);
    now_.script.GetState(line).Info = info;
    tell(Kind::other, line);
}

} // namespace scripts
