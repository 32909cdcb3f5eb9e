#pragma once

#include "scripts/script_session.h"
#include "scripts/script_texts.h"
#include "scripts/ui/entry_model.h"
#include "scripts/ui/script_row.h"

#include <QLabel>
#include <QScrollBar>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace scripts_ui {

/// The lines of a script, one row of fields each, with the unused line behind the last one. There
/// are fields only for what is seen.
class Row_View final : public QWidget {
    Q_OBJECT
public:
    /// What the rows show besides the session.
    struct Around {
        std::function<scripts::Text_Context()> texts;
        std::function<Break_Margin::Mark(int line)> mark;
        std::function<int()> simulated_line; ///< -1: nothing is simulated
        int longest_info = 255;
    };

    explicit Row_View(QWidget* parent);
    /// Another script; null before it goes.
    void show_session(scripts::Script_Session* session, Around around);

    void refresh();                                             ///< everything that is seen
    void refresh_marks();                                       ///< numbers, colours, break points
    void show_info_column(bool on, bool single_line, int size); ///< size 0..100

    enum class Wish { running, asked }; ///< asked: somebody has made the step, or it stands now
    /// Scrolls so that the simulation's line is seen. While it runs, a row that has the focus stays,
    /// and what the user has scrolled to; in any case a row that is being written in.
    void follow(int line, Wish wish);
    void show_line(int line); ///< scrolls as little as needed
    void take_focus(int line, int column);
    void take_focus_again(); ///< to the field that had it, where the rows have it now
    int focus_line() const { return focus_line_; }
    /// Ends what is being typed, as leaving the field does.
    void commit();
    int visible_rows() const;

    static constexpr int command_column = 0; ///< parameters follow
    static constexpr int info_column = 1 + Columns::parameters;

Q_SIGNALS:
    void number_clicked(int line, quint64 moment);
    void margin_clicked(int line);
    void condition_wanted(int line);
    void delete_wanted(int line);
    void undo_wanted();
    void redo_wanted();
    void info_cut(int longest);
    void not_listed(const QString& typed); ///< no entry or command, and nothing was changed
    void left(bool forward);               ///< by Tab, behind the last or before the first field

protected:
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override; ///< when no field has the focus
    void wheelEvent(QWheelEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void changeEvent(QEvent* event) override;

private:
    struct Place {
        int line = 0, column = 0;
    };

    void build_headers();
    void lay_out();
    int command_width() const;
    void make_rows(int count);
    void wire(Script_Row* row);
    void watch(QWidget* field);
    void scroll_to(int first);
    void bind(Script_Row& row, int line);
    void bind_parameters(Script_Row& row, int line, const scripts::cls_Scriptstate& state);
    void bind_marks(Script_Row& row, const std::set<int>& targets);
    std::set<int> jump_targets() const;
    QAbstractItemModel* entries(scripts_catalogue::List list);
    QAbstractItemModel* commands();
    void show_captions();
    void leave_command(int line, const QString& typed);
    void leave_parameter(int line, int column, const QString& typed);

    int shown_lines() const; ///< with the unused one
    Script_Row* row_of(int line) const;
    bool writing() const; ///< in a field, and it is not done
    QWidget* field(int line, int column) const;
    bool takes_focus(int line, int column) const;
    Place place_of(const QWidget* field) const;
    bool handle_key(const QKeyEvent& key, Place at);
    bool goes_to_field(const QKeyEvent& key, const QObject* field) const;
    int list_language() const;

    scripts::Script_Session* session_ = nullptr;
    Around around_;
    QWidget* pic_script;
    QScrollBar* VScroll1;
    QLabel* lab_State;
    QLabel* lab_Command;
    std::array<QLabel*, Columns::parameters> lab_Param;
    QLabel* lab_Info;
    Columns columns_;
    int header_height_ = 0;
    bool info_on_ = true, info_single_ = true;
    int info_size_ = 30;
    int first_ = 0;              ///< line of the first row
    bool scrolled_away_ = false; ///< by the user, from the running line
    int turned_ = 0;             ///< by the wheel, and not yet a row
    std::vector<Script_Row*> rows_;
    std::map<scripts_catalogue::List, std::unique_ptr<Entry_Model>> models_;
    std::unique_ptr<Entry_Model> command_model_;
    int model_line_ = 0; ///< whose entries the lists show
    int focus_line_ = 0, focus_column_ = 0;
};

} // namespace scripts_ui
