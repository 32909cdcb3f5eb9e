#pragma once

#include <QAbstractListModel>
#include <functional>

namespace scripts_ui {

/// The entries of a list, made when they are looked at: all rows of the editor share one model.
class Entry_Model final : public QAbstractListModel {
public:
    Entry_Model(int count, std::function<QString(int)> text)
        : count_(count), text_(std::move(text)) {}

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : count_;
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole)) return {};
        return text_(index.row());
    }

private:
    int count_;
    std::function<QString(int)> text_;
};

} // namespace scripts_ui
