#include "scripts/ui/row_view.h"

#include "app/mod_main.h"
#include "app/twips.h"
#include "scripts/line_columns.h"

#include <QApplication>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTextCursor>
#include <algorithm>

namespace scripts_ui {

namespace catalogue = scripts_catalogue;
using catalogue::List;

namespace {

constexpr app::Twips row_pitch{600};
constexpr int most_lines = scripts::cls_script::max_states;

} // namespace

Row_View::Row_View(QWidget* parent)
    : QWidget(parent), pic_script(new QWidget(this)), VScroll1(new QScrollBar(Qt::Vertical, this)) {
    pic_script->setObjectName(QStringLiteral("pic_script"));
    VScroll1->setObjectName(QStringLiteral("VScroll1"));
    setFocusPolicy(Qt::StrongFocus);
    build_headers();
    connect(VScroll1, &QScrollBar::valueChanged, this, &Row_View::scroll_to);
    connect(VScroll1, &QScrollBar::actionTriggered, this, [this] { scrolled_away_ = true; });
}

void Row_View::build_headers() {
    const auto header = [this](const QString& name, const QString& caption) {
        auto* made = new QLabel(caption, this);
        made->setObjectName(name);
        return made;
    };
    lab_State = header(QStringLiteral("lab_State"), QStringLiteral("State"));
    lab_Command = header(QStringLiteral("lab_Command"), QStringLiteral("Befehl"));
    for (std::size_t i = 0; i < lab_Param.size(); ++i)
        lab_Param[i] = header(QStringLiteral("lab_Param%1").arg(i + 1),
                              QStringLiteral("Parameter%1").arg(i + 1));
    lab_Info = header(QStringLiteral("lab_Info"), QStringLiteral("Info"));
}

void Row_View::show_session(scripts::Script_Session* session, Around around) {
    session_ = session;
    around_ = std::move(around);
    focus_line_ = first_ = 0;
    models_.clear();
    command_model_.reset();
    for (Script_Row* row : rows_) row->hide();
    if (session_ == nullptr) return;
    lay_out();
    refresh();
}

// Layout

void Row_View::show_info_column(bool on, bool single_line, int size) {
    info_on_ = on;
    info_single_ = single_line;
    info_size_ = std::clamp(size, 0, 100);
    lay_out();
    refresh();
}

/// That the longest name of a command needs.
int Row_View::command_width() const {
    int widest = 0;
    for (const catalogue::Command& command : catalogue::commands())
        widest =
            std::max(widest, fontMetrics().horizontalAdvance(command.name.in(list_language())));
    constexpr int arrow_and_frame = 52;
    return widest + arrow_and_frame;
}

void Row_View::lay_out() {
    constexpr int gap = 4;
    const QFontMetrics metrics(font());
    const int field = std::max(fontMetrics().height() + 10, app::to_pixels(app::Twips{375}));
    columns_.field_height = field;
    columns_.row_height = std::max(app::to_pixels(row_pitch), field + 8);
    columns_.single_line_info = info_single_;
    header_height_ = metrics.height() + 2 * gap;
    const int bar = VScroll1->sizeHint().width();
    const int all = std::max(0, width() - bar - gap);
    int left = 0;
    const auto span = [&](Columns::Span& column, int wide) {
        column = {left, wide};
        left += wide + gap;
    };
    span(columns_.margin, metrics.height() + 2);
    span(columns_.number, metrics.horizontalAdvance(QStringLiteral("-> 255")) + 14);
    const int rest = all - left;
    const int info = info_on_ ? rest * (10 + info_size_ * 4 / 10) / 100 : 0;
    const int fields = rest - info - (info > 0 ? gap : 0);
    span(columns_.command, std::min(command_width(), fields * 36 / 100) - gap);
    const int parameters = all - left - info;
    for (Columns::Span& parameter : columns_.parameter)
        span(parameter, parameters / Columns::parameters - gap);
    columns_.info = info > 0 ? Columns::Span{all - info, info} : Columns::Span{};
    const auto put = [&](QLabel* label, const Columns::Span& column) {
        label->setGeometry(column.left, 0, column.width, header_height_);
    };
    put(lab_State, {0, columns_.number.left + columns_.number.width});
    put(lab_Command, columns_.command);
    for (std::size_t i = 0; i < lab_Param.size(); ++i) put(lab_Param[i], columns_.parameter[i]);
    put(lab_Info, columns_.info);
    lab_Info->setVisible(info > 0);
    VScroll1->setGeometry(width() - bar, header_height_, bar, height() - header_height_);
    pic_script->setGeometry(0, header_height_, width() - bar, height() - header_height_);
    make_rows(std::min(visible_rows() + 1, most_lines));
    for (Script_Row* row : rows_) row->lay_out(columns_);
}

int Row_View::visible_rows() const {
    return columns_.row_height == 0
               ? 0
               : std::max(1, (height() - header_height_) / columns_.row_height);
}

/// A line keeps its widgets while it is seen: row i of the pool shows the lines that leave the rest
/// i. So all are dealt out anew when there are more of them.
void Row_View::make_rows(int count) {
    if (static_cast<int>(rows_.size()) >= count) return;
    const Script_Row* edited = row_of(focus_line_);
    const bool editing = edited != nullptr && edited->isAncestorOf(QApplication::focusWidget());
    if (editing) {
        commit(); // before its widgets show another line
        setFocus();
    }
    while (static_cast<int>(rows_.size()) < count) {
        rows_.push_back(new Script_Row(pic_script));
        wire(rows_.back());
    }
    refresh();
    if (!editing) return;
    take_focus(focus_line_, focus_column_);
    if (auto* info = qobject_cast<QPlainTextEdit*>(field(focus_line_, focus_column_)))
        info->moveCursor(QTextCursor::End);
}

void Row_View::wire(Script_Row* row) {
    connect(row->lab_nr, &Number_Label::clicked, this,
            [this, row](quint64 moment) { Q_EMIT number_clicked(row->line(), moment); });
    connect(row->margin, &Break_Margin::clicked, this,
            [this, row] { Q_EMIT margin_clicked(row->line()); });
    connect(row->margin, &Break_Margin::condition_wanted, this,
            [this, row] { Q_EMIT condition_wanted(row->line()); });
    connect(row->combo_Command, &Entry_Box::chosen, this, [this, row](int code) {
        if (session_ == nullptr) return;
        if (code == 0 && row->line() < session_->lines())
            Q_EMIT delete_wanted(row->line());
        else
            session_->choose_command(row->line(), code);
        refresh();
    });
    connect(row->combo_Command, &Entry_Box::typed, this, [this, row](const QString& typed) {
        if (session_ == nullptr) return;
        const auto code = scripts::command_typed(typed, list_language());
        if (code && *code != 0)
            session_->choose_command(row->line(), *code, true);
        else
            session_->take_back_typing();
    });
    connect(row->combo_Command, &Entry_Box::left, this,
            [this, row](const QString& typed) { leave_command(row->line(), typed); });
    for (int i = 0; i < Columns::parameters; ++i) {
        Entry_Box* box = row->combo_Param[static_cast<std::size_t>(i)];
        connect(box, &Entry_Box::opening, this, [this, row] {
            model_line_ = row->line();
            session_->working().CurrentState = model_line_;
        });
        connect(box, &Entry_Box::chosen, this, [this, row, i](int entry) {
            if (session_ == nullptr) return;
            session_->choose(row->line(), i, entry);
            refresh();
        });
        connect(box, &Entry_Box::left, this,
                [this, row, i](const QString& typed) { leave_parameter(row->line(), i, typed); });
        watch(box);
    }
    connect(row->txt_State_Info, &Info_Field::committed, this, [this, row](const QString& info) {
        if (session_ != nullptr) session_->put_info(row->line(), info);
    });
    connect(row->txt_State_Info, &Info_Field::entered, this,
            [this, row] { take_focus(std::min(row->line() + 1, shown_lines() - 1), info_column); });
    connect(row->txt_State_Info, &Info_Field::cut, this, &Row_View::info_cut);
    watch(row->combo_Command);
    watch(row->txt_State_Info);
}

void Row_View::watch(QWidget* field) {
    field->installEventFilter(this);
    if (auto* box = qobject_cast<QComboBox*>(field)) box->lineEdit()->installEventFilter(this);
    if (auto* text = qobject_cast<QPlainTextEdit*>(field))
        text->viewport()->installEventFilter(this);
}

void Row_View::leave_command(int line, const QString& typed) {
    if (session_ == nullptr) return;
    session_->end_typing();
    const bool says_delete = typed.trimmed() == catalogue::CommandName(0, list_language());
    // whoever goes to another window has not decided yet
    if (says_delete && line < session_->lines() && isActiveWindow()) Q_EMIT delete_wanted(line);
    refresh();
}

void Row_View::leave_parameter(int line, int column, const QString& typed) {
    if (session_ == nullptr || line >= session_->lines()) return;
    const auto& state = std::as_const(*session_).working().GetState(line);
    const List list = scripts::column_of(state, column, list_language()).list;
    if (const auto entry = scripts::entry_typed(list, typed, list_language()))
        session_->choose(line, column, *entry);
    else if (!typed.trimmed().isEmpty())
        Q_EMIT not_listed(typed);
    refresh();
}

// What is shown

int Row_View::list_language() const { return app::globals.LanguageIndex; }

int Row_View::shown_lines() const {
    return session_ == nullptr ? 0 : std::min(session_->lines() + 1, most_lines);
}

Script_Row* Row_View::row_of(int line) const {
    const bool seen = line >= first_ && line < first_ + static_cast<int>(rows_.size());
    if (!seen || rows_.empty()) return nullptr;
    Script_Row* row = rows_[static_cast<std::size_t>(line) % rows_.size()];
    return row->line() == line && !row->isHidden() ? row : nullptr;
}

void Row_View::scroll_to(int first) {
    if (first == first_) return;
    Script_Row* edited = row_of(focus_line_);
    const bool goes = focus_line_ < first || focus_line_ > first + visible_rows();
    if (edited != nullptr && goes && edited->isAncestorOf(QApplication::focusWidget())) {
        commit();
        setFocus(); // the next key brings the line back
    }
    first_ = first;
    refresh();
}

void Row_View::refresh() {
    if (session_ == nullptr) return;
    const int lines = shown_lines();
    {
        const QSignalBlocker quiet(VScroll1);
        VScroll1->setPageStep(visible_rows());
        VScroll1->setRange(0, std::max(0, lines - visible_rows()));
        VScroll1->setValue(first_);
        first_ = VScroll1->value();
    }
    const auto count = static_cast<int>(rows_.size());
    for (int line = first_; line < first_ + count; ++line) {
        Script_Row& row = *rows_[static_cast<std::size_t>(line) % rows_.size()];
        const bool seen = line < lines;
        if (seen) bind(row, line);
        row.setGeometry(0, (line - first_) * columns_.row_height, pic_script->width(),
                        columns_.row_height);
        row.setVisible(seen);
    }
    refresh_marks();
    show_captions();
}

void Row_View::bind(Script_Row& row, int line) {
    row.name_after(line);
    const bool used = line < session_->lines();
    static const scripts::cls_Scriptstate unused;
    const scripts::cls_Scriptstate& state =
        used ? std::as_const(*session_).working().GetState(line) : unused;
    const QString name = catalogue::CommandName(state.GetCommand(), list_language());
    const bool known = catalogue::command(state.GetCommand()) != nullptr;
    row.combo_Command->show_entry(commands(), known ? state.GetCommand() : -1,
                                  known ? name
                                        : QStringLiteral("Befehl %1").arg(state.GetCommand()));
    row.combo_Command->show_warm(session_->inserted() == line);
    bind_parameters(row, line, state);
    row.txt_State_Info->show_info(state.Info, around_.longest_info);
    row.txt_State_Info->setEnabled(used);
}

void Row_View::bind_parameters(Script_Row& row, int line, const scripts::cls_Scriptstate& state) {
    const scripts::Text_Context texts = around_.texts();
    for (int i = 0; i < Columns::parameters; ++i) {
        Entry_Box* box = row.combo_Param[static_cast<std::size_t>(i)];
        const scripts::Line_Column column = scripts::column_of(state, i, list_language());
        box->setVisible(column.list != List::none);
        if (column.list == List::none) continue;
        const bool listed =
            column.entry >= 0 && column.entry < scripts::offered_entries(column.list);
        const QString text =
            listed ? scripts::EntryText(column.list, column.entry, session_->working(), line, texts)
                   : QString::number(column.entry);
        box->show_entry(entries(column.list), listed ? column.entry : -1, text);
    }
}

QAbstractItemModel* Row_View::commands() {
    if (!command_model_)
        command_model_ =
            std::make_unique<Entry_Model>(catalogue::last_command + 1, [this](int code) {
                return catalogue::CommandName(code, list_language());
            });
    return command_model_.get();
}

QAbstractItemModel* Row_View::entries(List list) {
    auto& model = models_[list];
    if (!model)
        model =
            std::make_unique<Entry_Model>(scripts::offered_entries(list), [this, list](int entry) {
                return scripts::EntryText(list, entry, session_->working(), model_line_,
                                          around_.texts());
            });
    return model.get();
}

std::set<int> Row_View::jump_targets() const {
    std::set<int> targets;
    const scripts::cls_script& script = std::as_const(*session_).working();
    for (int line = 0; line < script.StateCount; ++line) {
        const auto& state = script.GetState(line);
        if (const auto target = catalogue::JumpParameter(state.GetCommand()))
            targets.insert(state.GetPar(*target));
    }
    return targets;
}

void Row_View::refresh_marks() {
    if (session_ == nullptr) return;
    const std::set<int> targets = jump_targets();
    for (Script_Row* row : rows_)
        if (!row->isHidden()) bind_marks(*row, targets);
}

void Row_View::bind_marks(Script_Row& row, const std::set<int>& targets) {
    const int line = row.line();
    const scripts::cls_Scriptstate& focused =
        std::as_const(*session_).working().GetState(std::clamp(focus_line_, 0, most_lines - 1));
    const auto target = catalogue::JumpParameter(focused.GetCommand());
    const bool has_focus = isAncestorOf(QApplication::focusWidget());
    const bool aimed_at =
        has_focus && target && focus_line_ < session_->lines() && focused.GetPar(*target) == line;
    const bool simulated = around_.simulated_line() == line;
    row.lab_nr->show_state(
        (targets.contains(line) ? QStringLiteral("-> %1") : QStringLiteral("%1")).arg(line),
        aimed_at || simulated ? Number_Label::Colour::red : Number_Label::Colour::plain);
    row.margin->show_mark(around_.mark(line), simulated);
}

void Row_View::show_captions() {
    const bool used = focus_line_ < session_->lines();
    static const scripts::cls_Scriptstate unused;
    const auto& state = used ? std::as_const(*session_).working().GetState(focus_line_) : unused;
    for (int i = 0; i < Columns::parameters; ++i) {
        const QString caption = scripts::column_of(state, i, list_language()).caption;
        QLabel* label = lab_Param[static_cast<std::size_t>(i)];
        const QString shown =
            state.GetCommand() == 0 ? QStringLiteral("Parameter%1").arg(i + 1) : caption;
        label->setToolTip(shown);
        label->setText(label->fontMetrics().elidedText(
            shown, Qt::ElideRight, columns_.parameter[static_cast<std::size_t>(i)].width));
    }
}

} // namespace scripts_ui
