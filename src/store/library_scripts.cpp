#include "store/library_scripts.h"

#include "store/row_surroundings.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

const std::array par_names{u"Par1"_s, u"Par2"_s, u"Par3"_s, u"Par4"_s};

QString scripts_of(std::int32_t set_id) {
    return u"SELECT * FROM Scripte WHERE SetID = "_s + QString::number(set_id);
}

QString states_of(std::int32_t script_id) {
    return u"SELECT * FROM Scriptstates WHERE ScriptID = "_s + QString::number(script_id);
}

QString one_script(std::int32_t set_id, const scripts::cls_script& script) {
    return scripts_of(set_id) + u" AND ScriptID = "_s + QString::number(script.ScriptID);
}

/// The columns of a stored line that differ from what the line is to be.
ado::Row differences(const scripts::cls_Scriptstate& stored,
                     const scripts::cls_Scriptstate& wanted) {
    ado::Row row;
    if (stored.GetCommand() != wanted.GetCommand())
        row.emplace_back(u"Command"_s, ado::value(wanted.GetCommand()));
    for (std::size_t i = 0; i < par_names.size(); ++i) {
        const int par = static_cast<int>(i);
        if (stored.GetPar(par) != wanted.GetPar(par))
            row.emplace_back(par_names[i], ado::value(wanted.GetPar(par)));
    }
    if (stored.Info != wanted.Info) row.emplace_back(u"Info"_s, ado::value(wanted.Info));
    return row;
}

ado::Row new_row(const scripts::cls_script& script, std::int32_t number) {
    const scripts::cls_Scriptstate& state = script.GetState(number);
    ado::Row row{{u"ScriptID"_s, ado::value(script.ScriptID)},
                 {u"State"_s, ado::value(number)},
                 {u"Command"_s, ado::value(state.GetCommand())}};
    for (std::size_t i = 0; i < par_names.size(); ++i)
        row.emplace_back(par_names[i], ado::value(state.GetPar(static_cast<int>(i))));
    row.emplace_back(u"Info"_s, ado::value(state.Info));
    return row;
}

void fill_state(scripts::cls_Scriptstate& state, ado::Recordset& row) {
    state.SetCommand(row.number(u"Command").value_or(0));
    for (std::size_t i = 0; i < par_names.size(); ++i)
        state.SetPar(static_cast<int>(i), row.number(par_names[i]).value_or(0));
    state.Info = row.text(u"Info").value_or(QString());
}

std::vector<std::int32_t> keys(const scripts::cls_script_coll& of) {
    std::vector<std::int32_t> found;
    for (const auto& script : of) found.push_back(script->ScriptID);
    return found;
}

/// Adds a state to what tells these states from others.
std::size_t with_state(std::size_t print, std::int32_t number,
                       const scripts::cls_Scriptstate& state) {
    return qHashMulti(print, number, state.GetCommand(), state.GetPar(0), state.GetPar(1),
                      state.GetPar(2), state.GetPar(3), state.Info);
}

bool is_line(std::int32_t number) {
    return number >= 0 && number < scripts::cls_script::max_states;
}

/// How the stored lines of a script become those that it has now: what is equal stays, what differs
/// is changed where it stands, so that columns of other programs keep what they hold. Numbers that
/// no script can have are nobody's lines and stay, too.
class Line_Storage {
public:
    Line_Storage(Library_File& file, const scripts::cls_script& script)
        : script_(script),
          count_(std::clamp(script.StateCount, 0, scripts::cls_script::max_states)),
          rows_(file.rows(states_of(script.ScriptID) + u" ORDER BY State"_s)) {
        std::size_t place = 0;
        for (; !rows_.at_end(); rows_.move_next(), ++place) {
            const std::int32_t number = rows_.number(u"State").value_or(0);
            numbers_.push_back(number);
            if (number >= 0 && number < count_) kept_[static_cast<std::size_t>(number)] = place;
        }
    }

    /// Refuses what has no room, before anything is changed.
    void check() {
        visit([&](std::int32_t number) {
            if (prepare(number)) rows_.check();
        });
        for (int number = 0; number < count_; ++number)
            if (!kept_[static_cast<std::size_t>(number)]) {
                prepare_new(number);
                rows_.check();
            }
    }

    void store() {
        visit([](std::int32_t) {},
              [&](std::int32_t number) {
                  if (is_line(number)) rows_.erase();
              });
        try {
            visit([&](std::int32_t number) {
                if (prepare(number)) rows_.update();
            });
        } catch (const ado::Error& error) {
            // A rule of another program for several lines, which they break only on the way.
            if (error.kind != ado::Failure::refused) throw;
            visit([&](std::int32_t) { rows_.erase(); });
            kept_.fill(std::nullopt);
        }
        for (int number = 0; number < count_; ++number)
            if (!kept_[static_cast<std::size_t>(number)]) {
                prepare_new(number);
                rows_.update();
            }
    }

private:
    /// Of several rows with one number the last is the line, as in loading.
    void visit(
        const std::function<void(std::int32_t)>& line,
        const std::function<void(std::int32_t)>& other = [](std::int32_t) {}) {
        rows_.move_first();
        for (std::size_t place = 0; place < numbers_.size(); ++place, rows_.move_next()) {
            const std::int32_t number = numbers_[place];
            const bool is_kept =
                number >= 0 && number < count_ && kept_[static_cast<std::size_t>(number)] == place;
            (is_kept ? line : other)(number);
        }
    }
    /// @return whether the current row is to be changed
    bool prepare(std::int32_t number) {
        scripts::cls_Scriptstate stored;
        fill_state(stored, rows_);
        const ado::Row row = differences(stored, script_.GetState(number));
        for (const auto& [name, value] : row) rows_.set(name, value);
        return !row.empty();
    }
    void prepare_new(int number) {
        rows_.add_new();
        for (const auto& [name, value] : new_row(script_, number)) rows_.set(name, value);
    }

    const scripts::cls_script& script_;
    int count_;
    ado::Recordset rows_;
    std::vector<std::int32_t> numbers_; ///< of the rows
    std::array<std::optional<std::size_t>, scripts::cls_script::max_states>
        kept_{}; ///< row of a line
};

} // namespace

std::size_t Library_Scripts::visit_states(
    std::int32_t ScriptID,
    const std::function<void(std::int32_t number, const scripts::cls_Scriptstate&)>& visit) {
    std::size_t print = 0;
    ado::Recordset rows = file_.rows(states_of(ScriptID) + u" ORDER BY State"_s);
    for (scripts::cls_Scriptstate state; !rows.at_end(); rows.move_next()) {
        const std::int32_t number = rows.number(u"State").value_or(0);
        fill_state(state, rows);
        print = with_state(print, number, state);
        visit(number, state);
    }
    return print;
}

void Library_Scripts::load_states(Script& script) {
    script.Stored_States =
        visit_states(script.ScriptID, [&](std::int32_t number, const auto& state) {
            if (!is_line(number)) {
                ++script.States_Left_Out;
                return;
            }
            script.SetState(number, state);
            script.StateCount = number + 1;
        });
}

void Library_Scripts::load_all(scripts::cls_script_coll& into, std::int32_t SetID,
                               bool with_names) {
    ado::Recordset rows = file_.rows(scripts_of(SetID) + u" ORDER BY ScriptID"_s);
    for (; !rows.at_end(); rows.move_next()) {
        Script& script = into.AddScript();
        script.ScriptID = rows.number(u"ScriptID").value_or(0);
        if (with_names) script.ScriptName = rows.text(u"ScriptName").value_or(script.ScriptName);
        load_states(script);
    }
}

void Library_Scripts::fill(scripts::cls_Script_Sets& sets) {
    sets.Clear();
    operation_.reading(ado::Extent::whole, [&] {
        ado::Recordset rows =
            file_.rows(u"SELECT DISTINCT Scripte.SetID, Sets.Nummer FROM Scripte LEFT JOIN Sets "
                       u"ON Scripte.SetID = Sets.SetID ORDER BY Scripte.SetID"_s);
        std::optional<std::int32_t> last; // several rows where a SetID is not unique in Sets
        for (; !rows.at_end(); rows.move_next()) {
            const auto id = rows.number(u"SetID");
            if (!id || id == last) continue;
            last = id;
            const auto scripts = std::make_shared<scripts::cls_script_coll>();
            scripts->Nummer = rows.number(u"Nummer").value_or(0);
            load_all(*scripts, *id, false);
            sets.Add(scripts, QString::number(*id));
        }
    });
}

void Library_Scripts::load(scripts::cls_script_coll& into, std::int32_t SetID) {
    into.Clear();
    into.SetID = SetID;
    operation_.reading(ado::Extent::some, [&] { load_all(into, SetID, true); });
}

bool Library_Scripts::changing(std::int32_t SetID, scripts::cls_script_coll& of,
                               std::int32_t position, const std::function<void(Script&)>& work) {
    return operation_.changing_set(SetID, [&] {
        if (!of.exists(position) || (of.SetID != 0 && of.SetID != SetID))
            throw gone(u"script"_s, position);
        operation_.whole([&] { work(*of.Item(position)); });
    });
}

std::vector<std::int32_t> Library_Scripts::stored_keys(std::int32_t SetID) {
    std::vector<std::int32_t> keys;
    auto rows = file_.rows(scripts_of(SetID) + u" ORDER BY ScriptID"_s);
    for (; !rows.at_end(); rows.move_next()) keys.push_back(rows.number(u"ScriptID").value_or(0));
    return keys;
}

bool Library_Scripts::add(std::int32_t SetID, scripts::cls_script_coll& of, std::int32_t position) {
    return changing(SetID, of, position, [&](Script& script) {
        const auto stored = stored_keys(SetID);
        auto loaded = keys(of);
        loaded.erase(loaded.begin() + (position - 1)); // it is to come
        if (of.SetID != 0 && !std::ranges::is_permutation(stored, loaded))
            throw differs(u"Sets"_s, SetID); // how many there may be is not known
        ado::Recordset row = file_.rows(u"SELECT * FROM Scripte"_s);
        row.add_new();
        row.set(u"SetID"_s, ado::value(SetID));
        row.set(u"ScriptName"_s, ado::value(script.ScriptName));
        row.update();
        script.ScriptID = row.number(u"ScriptID").value_or(0);
        script.Stored_States = 0;
    });
}

bool Library_Scripts::save_states(std::int32_t SetID, scripts::cls_script_coll& of,
                                  std::int32_t position) {
    return changing(SetID, of, position, [&](Script& script) {
        const std::int32_t id = script.ScriptID;
        if (file_.rows(one_script(SetID, script)).at_end()) throw gone(u"Scripte"_s, id);
        if (script.Stored_States != visit_states(id, [](auto, auto&) {}))
            throw differs(u"Scripte"_s, id);
        Line_Storage lines(file_, script);
        lines.check();
        lines.store();
        script.Stored_States = visit_states(id, [](auto, auto&) {});
    });
}

bool Library_Scripts::rename(std::int32_t SetID, scripts::cls_script_coll& of,
                             std::int32_t position) {
    return changing(SetID, of, position, [&](Script& script) {
        ado::Recordset row = file_.rows(one_script(SetID, script));
        if (row.at_end()) throw gone(u"Scripte"_s, script.ScriptID);
        row.set(u"ScriptName"_s, ado::value(script.ScriptName));
        row.update();
    });
}

bool Library_Scripts::erase(std::int32_t SetID, scripts::cls_script_coll& of,
                            std::int32_t position) {
    return changing(SetID, of, position, [&](Script& script) { erase_one(script.ScriptID); });
}

void Library_Scripts::erase_one(std::int32_t ScriptID) {
    const QString id = QString::number(ScriptID); // children first: their key forbids the rest
    file_.execute(u"DELETE FROM Scriptstates WHERE ScriptID = "_s + id);
    file_.execute(u"DELETE FROM Scripte WHERE ScriptID = "_s + id);
}

void Library_Scripts::erase_all(std::int32_t SetID) {
    std::vector<std::int32_t> ids;
    for (ado::Recordset rows = file_.rows(scripts_of(SetID)); !rows.at_end(); rows.move_next())
        if (const auto id = rows.number(u"ScriptID")) ids.push_back(*id);
    for (const std::int32_t id : ids) erase_one(id);
}

bool Library_Scripts::expect_positions(std::int32_t SetID, const scripts::cls_script_coll& of) {
    return operation_.changing_set(SetID, [&] {
        if (stored_keys(SetID) != keys(of)) throw differs(u"Sets"_s, SetID);
    });
}

int Library_Scripts::count(std::int32_t SetID) {
    int count = 0;
    operation_.reading(ado::Extent::some,
                       [&] { count = file_.rows(scripts_of(SetID)).record_count(); });
    return count;
}

void Library_Scripts::with_row(std::int32_t ScriptID,
                               const std::function<void(ado::Recordset&)>& work) {
    operation_.reading(ado::Extent::some, [&] {
        ado::Recordset row =
            file_.rows(u"SELECT * FROM Scripte WHERE ScriptID = "_s + QString::number(ScriptID));
        if (!row.at_end()) work(row);
    });
}

std::int32_t Library_Scripts::set_of(std::int32_t ScriptID) {
    std::int32_t id = 0;
    with_row(ScriptID, [&](auto& row) { id = row.number(u"SetID").value_or(0); });
    return id;
}

QString Library_Scripts::name(std::int32_t ScriptID) {
    QString name;
    with_row(ScriptID, [&](auto& row) { name = row.text(u"ScriptName").value_or(QString()); });
    return name;
}

} // namespace store
