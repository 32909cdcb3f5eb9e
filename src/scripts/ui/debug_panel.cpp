#include "scripts/ui/debug_panel.h"

#include "app/mod_main.h"
#include "scripts/catalogue/commands.h"
#include "scripts/cls_script.h"
#include "scripts/ui/debug_condition.h"
#include "scripts/ui/debug_texts.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>
#include <algorithm>

namespace scripts_ui {
namespace {

constexpr int gap = 4; ///< between controls, in pixels

/// A row of controls with a list below it; one of the controls gets the room that is left.
QWidget* part(const std::vector<QWidget*>& row, const QWidget* wide, QWidget* list, int height) {
    auto* made = new QWidget;
    auto* rows = new QVBoxLayout(made);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(gap);
    auto* controls = new QHBoxLayout;
    controls->setSpacing(2 * gap);
    for (QWidget* each : row) controls->addWidget(each, each == wide ? 1 : 0);
    controls->addStrut(height);
    rows->addLayout(controls);
    rows->addWidget(list, 1);
    return made;
}

QLabel* caption_of(QWidget* list) {
    auto* caption = new QLabel(list->accessibleName());
    QFont bold = caption->font();
    bold.setBold(true);
    caption->setFont(bold);
    caption->setBuddy(list);
    return caption;
}

void hint(std::vector<std::unique_ptr<ui_parts::Empty_Hint>>& hints, QAbstractItemView& list,
          QStringView says) {
    hints.push_back(std::make_unique<ui_parts::Empty_Hint>(list));
    hints.back()->set_text(says.toString());
}

} // namespace

Debug_Panel::Debug_Panel(sim::Debugger& debugger, const sim::Simulated_Decoder& decoder,
                         QWidget* parent)
    : QWidget(parent), debugger_(debugger), trace_(debugger), watch_(debugger, decoder),
      breaks_(debugger), parts_(new QSplitter(this)), add_watch_(new Value_Choice(this)),
      condition_(new QPushButton(debug_text::edit_condition.toString(), this)) {
    setObjectName(QStringLiteral("debug_panel"));
    parts_->setObjectName(QStringLiteral("debug_parts"));
    parts_->setChildrenCollapsible(false);
    for (QWidget* each : {trace_part(), watch_part(), break_part()}) parts_->addWidget(each);
    constexpr int shares[] = {5, 2, 2};
    for (int i = 0; i < parts_->count(); ++i) parts_->setStretchFactor(i, shares[i]);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(gap, gap, gap, gap);
    all->addWidget(parts_);
}

int Debug_Panel::row_height() const {
    return std::max(add_watch_->sizeHint().height(), condition_->sizeHint().height());
}

QWidget* Debug_Panel::trace_part() {
    debug_trace_ = new Trace_List(this, "debug_trace", debug_text::trace);
    debug_trace_->setModel(&trace_);
    debug_trace_->follow(trace_);
    hint(hints_, *debug_trace_, debug_text::no_steps);
    const QString state = debug_text::trace_columns[Trace_Model::line].toString();
    debug_trace_->widen(Trace_Model::number, QStringLiteral("0000"));
    debug_trace_->widen(Trace_Model::line, state);
    debug_trace_->widen(Trace_Model::next_line,
                        debug_text::trace_columns[Trace_Model::next_line].toString());
    debug_trace_->share(Trace_Model::command, Trace_Model::changes);
    debug_trace_->add_enter_command(debug_text::go_to_line, [this](int row) {
        if (const int line = trace_.line_of(row); line >= 0) Q_EMIT line_wanted(line);
    });
    reason_ = new ui_parts::Status_Line(this);
    reason_->setObjectName(QStringLiteral("debug_reason"));
    own_clock_ = new QCheckBox(debug_text::own_clock.toString(), this);
    own_clock_->setObjectName(QStringLiteral("debug_own_clock"));
    own_clock_->setToolTip(QStringLiteral("<p>%1</p>").arg(debug_text::own_clock_tip));
    own_clock_->setAccessibleDescription(debug_text::own_clock_tip.toString());
    connect(own_clock_, &QCheckBox::clicked, this, &Debug_Panel::own_clock_wanted);
    return part({caption_of(debug_trace_), reason_, own_clock_}, reason_, debug_trace_,
                row_height());
}

QWidget* Debug_Panel::watch_part() {
    debug_watch_ = new Debug_List(this, "debug_watch", debug_text::watch);
    debug_watch_->setModel(&watch_);
    hint(hints_, *debug_watch_, debug_text::no_watch);
    debug_watch_->header()->setStretchLastSection(false);
    debug_watch_->header()->setSectionResizeMode(Watch_Model::name, QHeaderView::Stretch);
    debug_watch_->widen(Watch_Model::now, QStringLiteral("-32768"));
    debug_watch_->add_command(debug_text::remove, {QKeySequence::Delete},
                              [this](int row) { unwatch(row); });
    add_watch_->setObjectName(QStringLiteral("debug_add_watch"));
    add_watch_->setAccessibleName(debug_text::watch.toString());
    add_watch_->lineEdit()->setPlaceholderText(debug_text::add_watch.toString());
    add_watch_->setToolTip(debug_text::add_watch_tip.toString());
    add_watch_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    // Later: whoever has found a value for the box writes its name there afterwards.
    connect(add_watch_, &Value_Choice::chosen, this, &Debug_Panel::watch, Qt::QueuedConnection);
    connect(add_watch_->lineEdit(), &QLineEdit::editingFinished, add_watch_,
            &Value_Choice::show_none, Qt::QueuedConnection);
    return part({add_watch_}, add_watch_, debug_watch_, row_height());
}

QWidget* Debug_Panel::break_part() {
    debug_breaks_ = new Debug_List(this, "debug_breaks", debug_text::breaks);
    debug_breaks_->setModel(&breaks_);
    hint(hints_, *debug_breaks_, debug_text::no_breaks);
    debug_breaks_->widen(Break_Model::line,
                         debug_text::break_columns[Break_Model::line].toString());
    debug_breaks_->add_enter_command(debug_text::go_to_line, [this](int row) { go_to_break(row); });
    debug_breaks_->add_command(debug_text::edit_condition, {Qt::Key_F2},
                               [this](int row) { edit_condition(row); });
    debug_breaks_->add_command(debug_text::remove, {QKeySequence::Delete},
                               [this](int row) { remove_break(row); });
    condition_->setObjectName(QStringLiteral("debug_condition"));
    condition_->setToolTip(debug_text::edit_condition_tip.toString());
    condition_->setAutoDefault(false);
    condition_->setEnabled(false);
    const auto enable = [this] { condition_->setEnabled(debug_breaks_->currentIndex().isValid()); };
    connect(debug_breaks_->selectionModel(), &QItemSelectionModel::currentChanged, this, enable);
    for (const auto& change : {&QAbstractItemModel::rowsRemoved, &QAbstractItemModel::rowsInserted})
        connect(&breaks_, change, this, enable);
    connect(condition_, &QPushButton::clicked, this,
            [this] { edit_condition(debug_breaks_->currentIndex().row()); });
    QLabel* caption = caption_of(debug_breaks_);
    return part({caption, condition_}, caption, debug_breaks_, row_height());
}

void Debug_Panel::refresh() {
    trace_.count_steps();
    if (!isVisible()) return;
    trace_.show_steps();
    watch_.refresh();
    breaks_.refresh();
    const bool chosen = debug_breaks_->currentIndex().isValid();
    if (!chosen && breaks_.rowCount() > 0) debug_breaks_->setCurrentIndex(breaks_.index(0, 0));
}

void Debug_Panel::edit_break(int line) {
    if (line < 0 || line >= scripts::cls_script::max_states) return;
    auto* dialog = new Condition_Dialog(this, line, debugger_.condition_of(line));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog, line] {
        debugger_.put_break(line, dialog->condition());
        refresh();
        Q_EMIT breaks_changed();
    });
    dialog->open(); // steps may go on meanwhile
}

void Debug_Panel::say(const QString& sentence) {
    if (sentence.isEmpty())
        reason_->forget();
    else
        reason_->say(sentence);
}

void Debug_Panel::take_focus() { debug_trace_->setFocus(Qt::TabFocusReason); }

void Debug_Panel::show_own_clock(bool on) { own_clock_->setChecked(on); }

QSize Debug_Panel::sizeHint() const {
    constexpr int wide = 50, high = 11; // in text lines
    return QSize(wide, high) * fontMetrics().lineSpacing();
}

void Debug_Panel::showEvent(QShowEvent* event) {
    refresh();
    QWidget::showEvent(event);
}

/// A dialog does not go with the window that it belongs to.
void Debug_Panel::hideEvent(QHideEvent* event) {
    if (!event->spontaneous())
        for (Condition_Dialog* dialog : findChildren<Condition_Dialog*>()) dialog->reject();
    QWidget::hideEvent(event);
}

void Debug_Panel::resizeEvent(QResizeEvent* event) {
    const bool side = 3 * height() > 2 * width(); // columns would be narrow and high
    parts_->setOrientation(side ? Qt::Vertical : Qt::Horizontal);
    QWidget::resizeEvent(event);
}

void Debug_Panel::watch(sim::Value_Ref value) {
    debugger_.watch(value);
    add_watch_->show_none();
    watch_.refresh();
}

void Debug_Panel::unwatch(int row) {
    if (const Watch_Row* at = watch_.row(row)) debugger_.unwatch(at->value);
    watch_.refresh();
}

void Debug_Panel::go_to_break(int row) {
    if (const Break_Row* at = breaks_.row(row)) Q_EMIT line_wanted(at->line);
}

void Debug_Panel::edit_condition(int row) {
    if (const Break_Row* at = breaks_.row(row)) edit_break(at->line);
}

void Debug_Panel::remove_break(int row) {
    const Break_Row* at = breaks_.row(row);
    if (at == nullptr) return;
    debugger_.remove_break(at->line);
    breaks_.refresh();
    Q_EMIT breaks_changed();
}

} // namespace scripts_ui
