// Scripts and their states.

#include "scripts/cls_Script_Sets.h"
#include "store/clsDBConn_inside.h"

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

QString one_script(std::int32_t set_id, std::int32_t script_id) {
    return scripts_of(set_id) + u" AND ScriptID = "_s + QString::number(script_id);
}

ado::Row row_of(const scripts::cls_Scriptstate& state, std::int32_t script_id,
                std::int32_t number) {
    ado::Row row{{u"ScriptID"_s, ado::value(script_id)},
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

} // namespace

void clsDBConn::Inside::load_states(scripts::cls_script& script) {
    ado::Recordset rows;
    commands[2].text = states_of(script.ScriptID) + u" ORDER BY State"_s;
    rows.open(commands[2]);
    for (; !rows.at_end(); rows.move_next()) {
        const std::int32_t number = rows.number(u"State").value_or(0);
        if (number < 0 || number >= scripts::cls_script::max_states) {
            ++script.States_Left_Out;
            continue;
        }
        fill_state(script.GetState(number), rows);
        script.StateCount = number + 1;
    }
}

void clsDBConn::Inside::load_scripts(scripts::cls_script_coll& into, std::int32_t set_id,
                                     bool with_names) {
    ado::Recordset rows;
    commands[1].text = scripts_of(set_id) + u" ORDER BY ScriptID"_s;
    rows.open(commands[1]);
    for (; !rows.at_end(); rows.move_next()) {
        scripts::cls_script& script = into.AddScript();
        script.ScriptID = rows.number(u"ScriptID").value_or(0);
        if (with_names) script.ScriptName = rows.text(u"ScriptName").value_or(script.ScriptName);
        load_states(script);
    }
}

void clsDBConn::Fill_Scripts_in_ScriptsObj(scripts::cls_Script_Sets& sets) {
    Inside& inside = *inside_;
    if (!inside.active) return;
    sets.Clear();
    inside.reading(ado::Extent::whole, [&] {
        ado::Recordset& rows =
            inside.query(u"SELECT DISTINCT Scripte.SetID, Sets.Nummer FROM Scripte LEFT JOIN Sets "
                         u"ON Scripte.SetID = Sets.SetID ORDER BY Scripte.SetID"_s);
        std::optional<std::int32_t> last; // several rows where a SetID is not unique in Sets
        for (; !rows.at_end(); rows.move_next()) {
            const auto id = rows.number(u"SetID");
            if (!id || id == last) continue;
            last = id;
            const auto scripts = std::make_shared<scripts::cls_script_coll>();
            scripts->Nummer = rows.number(u"Nummer").value_or(0);
            inside.load_scripts(*scripts, *id, false);
            sets.Add(scripts, QString::number(*id));
        }
    });
}

void clsDBConn::DB_Load_Scripts() {
    Inside& inside = *inside_;
    scripts::cls_script_coll& scripts = scripts::AktScripts();
    if (!inside.active || inside.akt_set == 0) return;
    scripts.Clear();
    inside.reading(ado::Extent::some, [&] { inside.load_scripts(scripts, inside.akt_set, true); });
}

bool clsDBConn::Inside::changing_script(std::int32_t position,
                                        const std::function<void(scripts::cls_script&)>& work) {
    return changing_current_set([&] {
        if (!scripts::AktScripts().exists(position)) throw gone(u"script"_s, position);
        whole([&] { work(*scripts::AktScripts().Item(position)); });
    });
}

bool clsDBConn::DB_Add_Script(std::int32_t position) {
    Inside& inside = *inside_;
    return inside.changing_script(position, [&](scripts::cls_script& script) {
        ado::Recordset& row = inside.query(u"SELECT * FROM Scripte"_s);
        row.add_new();
        row.set(u"SetID"_s, ado::value(inside.akt_set));
        row.set(u"ScriptName"_s, ado::value(script.ScriptName));
        row.update();
        script.ScriptID = row.number(u"ScriptID").value_or(0);
    });
}

bool clsDBConn::DB_Save_Script_States(std::int32_t position) {
    Inside& inside = *inside_;
    return inside.changing_script(position, [&](scripts::cls_script& script) {
        const std::int32_t id = script.ScriptID;
        if (inside.query(one_script(inside.akt_set, id)).at_end())
            throw inside.gone(u"Scripte"_s, id);
        const int count = std::clamp(script.StateCount, 0, scripts::cls_script::max_states);
        std::vector<ado::Row> states;
        for (int number = 0; number < count; ++number) {
            states.push_back(row_of(script.GetState(number), id, number));
            inside.connection.session().check(u"Scriptstates"_s, states.back());
        }
        inside.execute(u"DELETE FROM Scriptstates WHERE ScriptID = "_s + QString::number(id));
        ado::Recordset& rows = inside.query(states_of(id));
        for (const ado::Row& state : states) {
            rows.add_new();
            for (const auto& [name, value] : state) rows.set(name, value);
            rows.update();
        }
    });
}

bool clsDBConn::DB_Rename_Script(std::int32_t position) {
    Inside& inside = *inside_;
    return inside.changing_script(position, [&](scripts::cls_script& script) {
        ado::Recordset& row = inside.query(one_script(inside.akt_set, script.ScriptID));
        if (row.at_end()) throw inside.gone(u"Scripte"_s, script.ScriptID);
        row.set(u"ScriptName"_s, ado::value(script.ScriptName));
        row.update();
    });
}

void clsDBConn::Inside::delete_script(std::int32_t script_id) {
    const QString id = QString::number(script_id); // children first: their key forbids the rest
    execute(u"DELETE FROM Scriptstates WHERE ScriptID = "_s + id);
    execute(u"DELETE FROM Scripte WHERE ScriptID = "_s + id);
}

void clsDBConn::Inside::delete_scripts_of(std::int32_t set_id) {
    std::vector<std::int32_t> ids;
    for (ado::Recordset& rows = query(scripts_of(set_id)); !rows.at_end(); rows.move_next())
        if (const auto id = rows.number(u"ScriptID")) ids.push_back(*id);
    for (const std::int32_t id : ids) delete_script(id);
}

bool clsDBConn::DB_Delete_Script(std::int32_t position) {
    Inside& inside = *inside_;
    return inside.changing_script(
        position, [&](scripts::cls_script& script) { inside.delete_script(script.ScriptID); });
}

std::int32_t clsDBConn::DB_Count_Scripts(std::int32_t SetID) {
    int count = 0;
    inside_->reading(ado::Extent::some,
                     [&] { count = inside_->query(scripts_of(SetID)).record_count(); });
    return count;
}

void clsDBConn::Inside::with_script_row(std::int32_t script_id,
                                        const std::function<void(ado::Recordset&)>& work) {
    reading(ado::Extent::some, [&] {
        ado::Recordset& row =
            query(u"SELECT * FROM Scripte WHERE ScriptID = "_s + QString::number(script_id));
        if (!row.at_end()) work(row);
    });
}

std::int32_t clsDBConn::set_of_script(std::int32_t ScriptID) {
    std::int32_t id = 0;
    inside_->with_script_row(ScriptID, [&](auto& row) { id = row.number(u"SetID").value_or(0); });
    return id;
}

QString clsDBConn::script_name(std::int32_t ScriptID) {
    QString name;
    inside_->with_script_row(
        ScriptID, [&](auto& row) { name = row.text(u"ScriptName").value_or(QString()); });
    return name;
}

} // namespace store
