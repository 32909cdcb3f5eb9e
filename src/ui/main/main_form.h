#pragma once

#include "ui/main/entry_list.h"
#include "ui/parts/empty_hint.h"
#include "ui/parts/number_field.h"

#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QWidget>
#include <array>
#include <memory>

namespace scripts_ui {
class UC_Scripte;
}

namespace ui_main {

/// The controls of the main window and where they stand. Knows nothing of what they do.
class Main_Form final : public QWidget {
    Q_OBJECT
public:
    static constexpr int width_twips = 15945;
    static constexpr int least_height_twips = 7560;

    explicit Main_Form(QWidget* parent);

    QGroupBox* Frame_Sets;
    QGroupBox* Frame_Reset;
    QGroupBox* Frame3;
    QGroupBox* Frame_CVs;
    QGroupBox* Frame4;
    Entry_List* lst_sets;
    Entry_List* lst_CVs;
    std::array<QRadioButton*, 2> opt_rescv{};
    std::array<QRadioButton*, 2> opt_dec{};
    QLabel* lab_cv_num;
    QLabel* lab_cv_wert;
    QLabel* lab_cv_page_hi;
    QLabel* lab_cv_page_lo;
    QLabel* lab_anz_cvs_txt;
    QLabel* lab_Anz_CVs;
    ui_parts::Number_Field* txt_cv_nummer;
    ui_parts::Number_Field* txt_cv_wert;
    std::array<ui_parts::Number_Field*, 2> txt_cv_page{};
    scripts_ui::UC_Scripte* UC_Scripte1;
    std::unique_ptr<ui_parts::Empty_Hint> sets_hint;
    std::unique_ptr<ui_parts::Empty_Hint> cvs_hint;

    void Show_Page_Fields(bool visible);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void build_sets();
    void build_cvs();
    void build_scripts();
    void set_tab_order();
    void explain();
    void arrange();

    QWidget* options_;   ///< the two option groups below the set list
    QWidget* cv_fields_; ///< the four fields below the CV list
};

} // namespace ui_main
