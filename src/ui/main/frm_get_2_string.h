#pragma once

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <optional>

namespace ui_main {

class Number_Field;

/// The two texts that frm_get_2_string hands back, both empty when it was cancelled.
struct Two_Strings {
    QString first;
    QString second;
};

/// Asks for the name and the number of a CV set.
class frm_get_2_string final : public QDialog {
    Q_OBJECT
public:
    static constexpr int highest_set_number = 32767;

    /// @param name_width longest name in characters; a longer one is cut, which the dialog says
    frm_get_2_string(QWidget* parent, int name_width);

    /// @param number of the set as it is stored; nothing for a set that has none yet
    void set_texts(const QString& caption, const QString& name, std::optional<int> number);
    /// Shows the dialog until it is closed.
    Two_Strings Get_2_Strings();
    bool name_was_cut() const { return cut_; }

    void setVisible(bool visible) override;

private:
    void keep_width();

    QLabel* Label1;
    QLabel* Label2;
    QLineEdit* Text1;
    Number_Field* Text2;
    QLabel* lab_hint;
    QPushButton* cmd_ok;
    QPushButton* cmd_cancel;
    int name_width_;
    bool cut_ = false;
};

} // namespace ui_main
