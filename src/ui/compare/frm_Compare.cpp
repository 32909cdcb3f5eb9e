#include "ui/compare/frm_Compare.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace ui_compare {
namespace {

constexpr int widest_box = 24; ///< characters; longer names are cut in the box, not in its list

QString value(const std::optional<std::int16_t>& value) {
    return value ? QString::number(*value) : u"–"_s;
}

QString counted(int differences) {
    if (differences == 0) return u"Keine Unterschiede"_s;
    return differences == 1 ? u"1 Unterschied"_s : u"%1 Unterschiede"_s.arg(differences);
}

} // namespace

frm_Compare::frm_Compare(QWidget* parent, Access access, Pair first)
    : QDialog(parent), access_(std::move(access)), cmb_links(new QComboBox(this)),
      cmb_rechts(new QComboBox(this)),
      chk_beide(new QCheckBox(u"&Nur CVs, die in beiden Sets stehen"_s, this)),
      lst_unterschiede(new QTreeWidget(this)), lab_ergebnis(new QLabel(this)),
      cmd_copy(new QPushButton(u"&Kopieren"_s, this)),
      cmd_close(new QPushButton(u"&Schließen"_s, this)) {
    setObjectName(u"frm_Compare"_s);
    setWindowTitle(u"CV-Sets vergleichen"_s);
    lay_out();
    const auto fill = [this](QComboBox* box, std::int32_t chosen) {
        for (const Choice& each : access_.sets) box->addItem(each.name, each.SetID);
        box->setCurrentIndex(std::max(0, box->findData(chosen)));
        connect(box, &QComboBox::currentIndexChanged, this, &frm_Compare::read);
    };
    fill(cmb_links, first.left);
    fill(cmb_rechts, first.right);
    connect(chk_beide, &QCheckBox::toggled, this, &frm_Compare::show_differences);
    connect(cmd_copy, &QPushButton::clicked, this, &frm_Compare::copy);
    connect(cmd_close, &QPushButton::clicked, this, &QDialog::accept);
    lst_unterschiede->installEventFilter(this);
    read();
}

void frm_Compare::lay_out() {
    cmb_links->setObjectName(u"cmb_links"_s);
    cmb_rechts->setObjectName(u"cmb_rechts"_s);
    chk_beide->setObjectName(u"chk_beide"_s);
    lst_unterschiede->setObjectName(u"lst_unterschiede"_s);
    lab_ergebnis->setObjectName(u"lab_ergebnis"_s);
    cmd_copy->setObjectName(u"cmd_copy"_s);
    cmd_close->setObjectName(u"cmd_close"_s);
    cmd_close->setDefault(true);
    cmb_links->setAccessibleName(u"Erstes CV-Set"_s);
    cmb_rechts->setAccessibleName(u"Zweites CV-Set"_s);
    lst_unterschiede->setAccessibleName(u"Unterschiede"_s);
    lst_unterschiede->setRootIsDecorated(false);
    lst_unterschiede->setUniformRowHeights(true);
    lst_unterschiede->setAllColumnsShowFocus(true);
    lst_unterschiede->setColumnCount(3);
    lst_unterschiede->header()->setSectionResizeMode(QHeaderView::Stretch);
    lst_unterschiede->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    lab_ergebnis->setWordWrap(true);

    auto* boxes = new QHBoxLayout;
    for (QComboBox* box : {cmb_links, cmb_rechts}) {
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(widest_box);
        boxes->addWidget(box, 1);
    }
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(chk_beide);
    buttons->addStretch();
    buttons->addWidget(cmd_copy);
    buttons->addWidget(cmd_close);
    auto* all = new QVBoxLayout(this);
    all->addLayout(boxes);
    all->addWidget(lst_unterschiede, 1);
    all->addWidget(lab_ergebnis);
    all->addLayout(buttons);
    resize(sizeHint().expandedTo({560, 440}));
}

void frm_Compare::read() {
    const Pair pair = compared();
    const auto left = access_.cvs(pair.left);
    const auto right = access_.cvs(pair.right);
    comparison_ = left && right ? std::optional(store::compare(*left, *right)) : std::nullopt;
    show_differences();
}

std::vector<store::Difference> frm_Compare::shown() const {
    if (!comparison_) return {};
    std::vector<store::Difference> shown = comparison_->differences;
    if (chk_beide->isChecked())
        std::erase_if(shown, [](const auto& each) { return !each.left || !each.right; });
    return shown;
}

void frm_Compare::show_differences() {
    lst_unterschiede->clear();
    lst_unterschiede->setHeaderLabels(
        {u"CV"_s, cmb_links->currentText(), cmb_rechts->currentText()});
    const std::vector<store::Difference> differences = shown();
    QList<QTreeWidgetItem*> rows;
    for (const store::Difference& each : differences)
        rows.append(
            new QTreeWidgetItem({store::cv_name(each), value(each.left), value(each.right)}));
    lst_unterschiede->addTopLevelItems(rows);
    cmd_copy->setEnabled(!differences.empty());
    if (!comparison_) {
        lab_ergebnis->setText(u"Die CVs können nicht gelesen werden."_s);
        return;
    }
    const auto in_one = std::ranges::count_if(
        comparison_->differences, [](const auto& each) { return !each.left || !each.right; });
    QString said = counted(static_cast<int>(comparison_->differences.size()));
    if (in_one > 0) said += u", davon CVs nur in einem Set: %1"_s.arg(in_one);
    said += u"; CVs mit gleichem Wert: %1"_s.arg(comparison_->equal);
    lab_ergebnis->setText(said + u'.');
}

void frm_Compare::copy() {
    const std::vector<store::Difference> differences = shown();
    if (differences.empty()) return;
    const bool copied = access_.copy(
        store::comparison_text(differences, cmb_links->currentText(), cmb_rechts->currentText()));
    lab_ergebnis->setText(copied ? counted(static_cast<int>(differences.size())) + u" kopiert."_s
                                 : u"Die Zwischenablage hat nichts angenommen."_s);
}

Pair frm_Compare::compared() const {
    return {cmb_links->currentData().toInt(), cmb_rechts->currentData().toInt()};
}

// The usual keys copy all that is listed, not the one row that happens to be current.
bool frm_Compare::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event) == QKeySequence::Copy) {
        copy();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace ui_compare
