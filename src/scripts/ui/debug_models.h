#pragma once

#include "sim/debugger.h"

#include <QAbstractTableModel>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace scripts_ui {

/// The steps that the debugger remembers, the latest last. Keeps none of them: it reads its ring.
class Trace_Model final : public QAbstractTableModel {
public:
    enum Column { number, line, command, next_line, changes, columns };

    explicit Trace_Model(const sim::Debugger& debugger);

    /// Notices how many steps there were since it was called last.
    void count_steps();
    /// Brings the rows in step with what has been counted.
    void show_steps();
    int line_of(int row) const; ///< that was executed; -1 for no row

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::optional<std::size_t> step_of(int row) const; ///< as the debugger counts them
    QString text(std::size_t number, int row, int column) const;

    const sim::Debugger& debugger_;
    // Steps are numbered from 0, since the debugger forgot them last.
    std::uint64_t counted_ = 0;
    std::size_t remembered_ = 0;        ///< of them, by the debugger
    bool forgotten_ = false;            ///< all that is shown
    std::uint64_t first_ = 0, end_ = 0; ///< those that have rows
};

/// A few rows that are made anew each time; rows that stay keep their place in views.
template <class Row>
class Row_Model : public QAbstractTableModel {
public:
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }
    const Row* row(int number) const {
        return number >= 0 && number < rowCount() ? &rows_[static_cast<std::size_t>(number)]
                                                  : nullptr;
    }

protected:
    /// Takes over new rows. @param same whether two rows are about the same thing
    template <class Same>
    void replace(std::vector<Row> now, Same same) {
        std::size_t before = 0, after = 0; // rows that stay, at the beginning and at the end
        const std::size_t most = std::min(now.size(), rows_.size());
        while (before < most && same(rows_[before], now[before])) ++before;
        while (after < most - before &&
               same(rows_[rows_.size() - 1 - after], now[now.size() - 1 - after]))
            ++after;
        const auto at = [&](auto& rows, std::size_t i) { return rows.begin() + std::ptrdiff_t(i); };
        const std::size_t old_end = rows_.size() - after, new_end = now.size() - after;
        if (old_end > before) {
            beginRemoveRows({}, int(before), int(old_end) - 1);
            rows_.erase(at(rows_, before), at(rows_, old_end));
            endRemoveRows();
        }
        if (new_end > before) {
            beginInsertRows({}, int(before), int(new_end) - 1);
            rows_.insert(at(rows_, before), at(now, before), at(now, new_end));
            endInsertRows();
        }
        if (rows_ == now) return;
        rows_ = std::move(now);
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }

private:
    std::vector<Row> rows_;
};

struct Watch_Row {
    sim::Value_Ref value;
    std::int32_t now = 0;
    bool changed = false;
    bool operator==(const Watch_Row&) const = default;
};

/// Values that are watched; those that the last step changed are tinted and bold.
class Watch_Model final : public Row_Model<Watch_Row> {
public:
    enum Column { name, now, columns };

    Watch_Model(const sim::Debugger& debugger, const sim::Simulated_Decoder& decoder)
        : debugger_(debugger), decoder_(decoder) {}
    void refresh();

    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const sim::Debugger& debugger_;
    const sim::Simulated_Decoder& decoder_;
};

struct Break_Row {
    int line = 0;
    std::optional<sim::Condition> condition;
    bool operator==(const Break_Row&) const = default;
};

/// Break points by their lines.
class Break_Model final : public Row_Model<Break_Row> {
public:
    enum Column { line, condition, columns };

    explicit Break_Model(const sim::Debugger& debugger) : debugger_(debugger) {}
    void refresh();

    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const sim::Debugger& debugger_;
};

} // namespace scripts_ui
