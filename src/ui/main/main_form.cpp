#include "ui/main/main_form.h"

#include "app/twips.h"
#include "scripts/ui/UC_Scripte.h"
#include "ui/main/texts.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionGroupBox>

namespace ui_main {
namespace {

using app::from_pixels;
using app::Twips;

// The columns of the window, whose width is fixed, in pixels.
constexpr int gap = 8;
constexpr int sets_width = 318;
constexpr int cvs_width = 266;
constexpr int inset = 9; ///< of a list in its frame

/// A frame that is only a line. That of the style is a half-transparent picture, stretched over all
/// that the lists then cover: a tenth of the time to the first sight of the window.
class Line_Frame final : public QGroupBox {
public:
    using QGroupBox::QGroupBox;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QStyleOptionGroupBox option;
        initStyleOption(&option);
        const auto place = [&](QStyle::SubControl part) {
            return style()->subControlRect(QStyle::CC_GroupBox, &option, part, this);
        };
        QRect frame = place(QStyle::SC_GroupBoxFrame);
        frame.setTop(place(QStyle::SC_GroupBoxLabel).bottom() + 2);
        QPainter painter(this);
        for (const QRect& edge : QRegion(frame) - frame.adjusted(1, 1, -1, -1))
            painter.fillRect(edge, palette().color(QPalette::Mid));
        option.subControls = QStyle::SC_GroupBoxLabel;
        style()->drawComplexControl(QStyle::CC_GroupBox, &option, &painter, this);
    }
};

QGroupBox* frame(const char* name, Text caption, QWidget* parent) {
    auto* box = new Line_Frame(text(caption), parent);
    box->setObjectName(QString::fromLatin1(name));
    return box;
}

QLabel* label(const char* name, Text caption, QWidget* parent) {
    auto* made = new QLabel(text(caption), parent);
    made->setObjectName(QString::fromLatin1(name));
    return made;
}

Entry_List* list(const char* name, Text spoken, QWidget* parent) {
    auto* made = new Entry_List(parent);
    made->setObjectName(QString::fromLatin1(name));
    made->setAccessibleName(text(spoken));
    return made;
}

ui_parts::Number_Field* field(const char* name, QLabel* caption, QWidget* parent) {
    auto* made = new ui_parts::Number_Field(parent);
    made->setObjectName(QString::fromLatin1(name));
    made->setAccessibleName(caption->text());
    caption->setBuddy(made);
    return made;
}

// A frame with two option buttons side by side, named NAME_0 and NAME_1.
std::array<QRadioButton*, 2> option_pair(QGroupBox* box, const QString& name, Text first,
                                         Text second) {
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(inset, 2, inset, 4);
    std::array<QRadioButton*, 2> pair{};
    for (std::size_t i = 0; i < pair.size(); ++i) {
        pair[i] = new QRadioButton(text(i == 0 ? first : second), box);
        pair[i]->setObjectName(name + QString::number(i));
        row->addWidget(pair[i]);
    }
    pair[0]->setChecked(true);
    return pair;
}

// Where the inside of a frame begins, below its caption.
int inside_top(const QGroupBox* box) {
    QStyleOptionGroupBox option;
    option.initFrom(box);
    option.text = box->title();
    option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
    return box->style()
        ->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxContents, box)
        .top();
}

} // namespace

Main_Form::Main_Form(QWidget* parent) : QWidget(parent) {
    build_sets();
    build_cvs();
    build_scripts();
    set_tab_order();
    explain();
}

// Words of the trade, for whoever meets them first.
void Main_Form::explain() {
    const std::pair<QWidget*, Text> words[] = {
        {Frame_Reset, Text::tip_reset_cv},  {opt_rescv[0], Text::tip_reset_cv},
        {opt_rescv[1], Text::tip_reset_cv}, {opt_dec[0], Text::tip_qr},
        {opt_dec[1], Text::tip_qd},         {lab_cv_page_hi, Text::tip_cv31},
        {txt_cv_page[0], Text::tip_cv31},   {lab_cv_page_lo, Text::tip_cv32},
        {txt_cv_page[1], Text::tip_cv32},
    };
    for (const auto& [control, tip] : words) control->setToolTip(text(tip));
}

void Main_Form::build_sets() {
    Frame_Sets = frame("Frame_Sets", Text::frame_sets, this);
    lst_sets = list("lst_sets", Text::list_of_sets, Frame_Sets);
    sets_hint = std::make_unique<ui_parts::Empty_Hint>(*lst_sets);
    options_ = new QWidget(Frame_Sets);
    Frame_Reset = frame("Frame_Reset", Text::frame_reset, options_);
    opt_rescv = option_pair(Frame_Reset, QStringLiteral("opt_rescv_"), Text::cv8, Text::cv265);
    Frame3 = frame("Frame3", Text::frame_decoder, options_);
    opt_dec = option_pair(Frame3, QStringLiteral("opt_dec_"), Text::qr, Text::qd);

    auto* row = new QHBoxLayout(options_);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(Frame_Reset);
    row->addWidget(Frame3);
    QSizePolicy keeps_place = Frame_Reset->sizePolicy();
    keeps_place.setRetainSizeWhenHidden(true);
    Frame_Reset->setSizePolicy(keeps_place);
}

void Main_Form::build_cvs() {
    Frame_CVs = frame("Frame_CVs", Text::frame_cvs, this);
    lst_CVs = list("lst_CVs", Text::list_of_cvs, Frame_CVs);
    cvs_hint = std::make_unique<ui_parts::Empty_Hint>(*lst_CVs);
    lst_CVs->setSelectionMode(QAbstractItemView::ExtendedSelection);

    cv_fields_ = new QWidget(Frame_CVs);
    lab_cv_page_hi = label("lab_cv_page_hi", Text::cv_page_hi, cv_fields_);
    txt_cv_page[0] = field("txt_cv_page_0", lab_cv_page_hi, cv_fields_);
    lab_cv_page_lo = label("lab_cv_page_lo", Text::cv_page_lo, cv_fields_);
    txt_cv_page[1] = field("txt_cv_page_1", lab_cv_page_lo, cv_fields_);
    lab_cv_num = label("lab_cv_num", Text::cv_number, cv_fields_);
    txt_cv_nummer = field("txt_cv_nummer", lab_cv_num, cv_fields_);
    lab_cv_wert = label("lab_cv_wert", Text::cv_value, cv_fields_);
    txt_cv_wert = field("txt_cv_wert", lab_cv_wert, cv_fields_);
    txt_cv_wert->select_on_click();

    txt_cv_page[0]->set_number(0);
    txt_cv_page[1]->set_number(1);

    auto* grid = new QGridLayout(cv_fields_);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(1);
    const std::array<std::pair<QLabel*, QWidget*>, 4> columns{{{lab_cv_page_hi, txt_cv_page[0]},
                                                               {lab_cv_page_lo, txt_cv_page[1]},
                                                               {lab_cv_num, txt_cv_nummer},
                                                               {lab_cv_wert, txt_cv_wert}}};
    for (int i = 0; i < 4; ++i) {
        const auto& [caption, box] = columns[static_cast<std::size_t>(i)];
        grid->addWidget(caption, 0, i, Qt::AlignBottom);
        grid->addWidget(box, 1, i);
        grid->setColumnStretch(i, 1);
    }
    lab_anz_cvs_txt = label("lab_anz_cvs_txt", Text::cv_count, Frame_CVs);
    lab_Anz_CVs = new QLabel(QStringLiteral("0"), Frame_CVs);
    lab_Anz_CVs->setObjectName(QStringLiteral("lab_Anz_CVs"));
}

void Main_Form::build_scripts() {
    Frame4 = frame("Frame4", Text::frame_scripts, this);
    UC_Scripte1 = new scripts_ui::UC_Scripte(Frame4);
    UC_Scripte1->setObjectName(QStringLiteral("UC_Scripte1"));
}

void Main_Form::set_tab_order() {
    const std::array<QWidget*, 10> order{
        lst_sets, opt_rescv[0],   opt_rescv[1],   opt_dec[0],    opt_dec[1],
        lst_CVs,  txt_cv_page[0], txt_cv_page[1], txt_cv_nummer, txt_cv_wert,
    };
    for (std::size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
    UC_Scripte1->set_tab_order(txt_cv_wert);
}

void Main_Form::Show_Page_Fields(bool visible) {
    for (QWidget* part :
         {static_cast<QWidget*>(lab_cv_page_hi), static_cast<QWidget*>(lab_cv_page_lo),
          static_cast<QWidget*>(txt_cv_page[0]), static_cast<QWidget*>(txt_cv_page[1])}) {
        QSizePolicy keeps_place = part->sizePolicy();
        keeps_place.setRetainSizeWhenHidden(true);
        part->setSizePolicy(keeps_place);
        part->setVisible(visible);
    }
}

void Main_Form::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void Main_Form::arrange() {
    const Twips inner = from_pixels(height());
    const Twips frame_height = inner - Twips{100};
    const int frame_pixels = to_pixels(frame_height);
    const int cvs_left = gap + sets_width + gap;
    const int scripts_left = cvs_left + cvs_width + gap;
    Frame_Sets->setGeometry(gap, 0, sets_width, frame_pixels);
    Frame_CVs->setGeometry(cvs_left, 0, cvs_width, frame_pixels);
    Frame4->setGeometry(scripts_left, 0, width() - gap - scripts_left, frame_pixels);

    const int top = inside_top(Frame_Sets) + inset / 2;
    const int list_width = sets_width - 2 * inset;
    // Large fonts need more room below the lists than these leave.
    const int least_options = options_->minimumSizeHint().height();
    const int sets_height = std::min(to_pixels(frame_height - Twips{1500}),
                                     frame_pixels - inset - 6 - top - least_options);
    lst_sets->setGeometry(inset, top, list_width, sets_height);
    const int options_top = top + sets_height + 6;
    options_->setGeometry(inset, options_top, list_width, frame_pixels - inset - options_top);

    const int cv_list_width = cvs_width - 2 * inset;
    const int count_top = std::min(to_pixels(inner - Twips{400}),
                                   frame_pixels - 2 - lab_anz_cvs_txt->sizeHint().height());
    const int least_fields = cv_fields_->minimumSizeHint().height();
    const int cvs_height =
        std::min(to_pixels(frame_height - Twips{1505}), count_top - 5 - top - least_fields);
    lst_CVs->setGeometry(inset, top, cv_list_width, cvs_height);
    const int fields_top = top + cvs_height + 3;
    cv_fields_->setGeometry(inset, fields_top, cv_list_width, count_top - 2 - fields_top);
    const int caption_width = lab_anz_cvs_txt->sizeHint().width();
    const int count_height = frame_pixels - 2 - count_top;
    lab_anz_cvs_txt->setGeometry(inset, count_top, caption_width, count_height);
    lab_Anz_CVs->setGeometry(inset + caption_width + 6, count_top,
                             cv_list_width - caption_width - 6, count_height);

    UC_Scripte1->setGeometry(inset, top, Frame4->width() - 2 * inset, frame_pixels - inset - top);
}

} // namespace ui_main
