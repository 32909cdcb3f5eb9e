#pragma once

#include "store/List_Filler.h"

#include <QAbstractListModel>
#include <QListView>
#include <functional>
#include <optional>
#include <vector>

namespace ui_main {

/// Rows of text, each with the database key of its row.
class Entry_Model final : public QAbstractListModel {
public:
    struct Entry {
        QString text;
        std::int32_t key = 0;
    };

    using QAbstractListModel::QAbstractListModel;
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    void replace(std::vector<Entry> entries);
    const std::vector<Entry>& entries() const { return entries_; }

private:
    std::vector<Entry> entries_;
};

/// Whether no Shift, Ctrl or Alt is held: with them a key means something else.
bool is_plain(const QKeyEvent& event);

/// A list that is refilled as a whole and whose rows are known by their keys. Where one entry is the
/// single choice, no key and no click takes it away but the choice of another.
class Entry_List final : public QListView {
    Q_OBJECT
public:
    explicit Entry_List(QWidget* parent);
    void keyboardSearch(const QString& search) override;
    void selectAll() override;

    /// Replaces all entries by what `fill` adds. The view stays where it was scrolled to, nothing
    /// is selected, and no signal is sent.
    void refill(const std::function<void(store::List_Filler&)>& fill);

    int count() const;
    std::int32_t key(int row) const; ///< 0 for no row
    std::optional<int> row_of(std::int32_t key) const;

    /// The row that has the keyboard's place, whether selected or not; -1 for none.
    int current_row() const;
    bool is_selected(int row) const;
    std::vector<int> selected_rows() const; ///< from the top
    /// Key of the current row if it is selected, else 0. In a list of single choice the key of the
    /// one that is chosen: a drag moves the keyboard's place after it.
    std::int32_t selected_key() const;

    std::vector<std::int32_t> selected_keys() const; ///< from the top
    /// All keys in the order in which they are next to a row: it, those below it, those above it.
    std::vector<std::int32_t> keys_around(int row) const;
    /// Selects the rows with these keys that are there, and gives the keyboard's place to another.
    void select_keys(const std::vector<std::int32_t>& keys, std::int32_t current);

    /// Selects this row alone and brings it into view.
    void select_row(int row);
    /// Gives the row the keyboard's place and brings it into view, with nothing selected.
    void go_to_row(int row);

Q_SIGNALS:
    /// The selection changed, by whatever cause but refill.
    void selection_changed();
    /// The user clicked an entry or went to one with a plain arrow key.
    void chosen();
    /// The user went to an entry in a way that he may go on with: by searching, by extending the
    /// selection, for a menu.
    void visited();
    void delete_pressed();
    void copy_pressed();
    void paste_pressed();
    void context_menu_wanted(const QPoint& global_place);

protected:
    void selectionChanged(const QItemSelection& now, const QItemSelection& before) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    Entry_Model model_;
    bool refilling_ = false;
    bool pressed_on_entry_ = false; ///< by the last press of a mouse button
};

} // namespace ui_main
