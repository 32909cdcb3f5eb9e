#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <optional>

namespace ui_parts {
class Name_Field;
class Number_Field;
} // namespace ui_parts

namespace ui_main {

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

    /// @param name_width longest name in characters; of a longer text the rest is not taken, which
    /// the dialog says
    frm_get_2_string(QWidget* parent, int name_width);

    /// @param name as it is stored; it comes back as it is, whatever is shown of it, unless it is
    /// changed
    /// @param number as it is stored; nothing for a set that has none yet
    void set_texts(const QString& caption, const QString& name, std::optional<int> number);
    /// Shows the dialog until it is closed.
    Two_Strings Get_2_Strings();
    bool name_was_cut() const;

    void setVisible(bool visible) override;

private:
    void hint(QString& of_field, const QString& sentence);

    QLabel* Label1;
    QLabel* Label2;
    ui_parts::Name_Field* Text1;
    ui_parts::Number_Field* Text2;
    QLabel* lab_hint;
    QPushButton* cmd_ok;
    QPushButton* cmd_cancel;
    QString name_hint_; ///< of the last change of the name, else empty
    QString number_hint_;
    Two_Strings given_; ///< the name as it is stored, and as it is shown
};

} // namespace ui_main
