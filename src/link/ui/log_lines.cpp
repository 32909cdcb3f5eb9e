#include "link/ui/log_lines.h"

#include <algorithm>

namespace link_ui {

int Log_Lines::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

QVariant Log_Lines::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    return lines_.at(index.row());
}

void Log_Lines::add(const QStringList& lines) {
    if (lines.isEmpty()) return;
    const qsizetype given = std::min(lines.size(), most);
    const qsizetype surplus = lines_.size() + given - most;
    if (surplus > 0) {
        beginRemoveRows({}, 0, static_cast<int>(surplus) - 1);
        lines_.remove(0, surplus);
        endRemoveRows();
    }
    const auto first = static_cast<int>(lines_.size());
    beginInsertRows({}, first, first + static_cast<int>(given) - 1);
    lines_.append(lines.last(given));
    endInsertRows();
}

QString Log_Lines::text() const {
    QString all;
    for (const QString& line : lines_) all += line + u'\r';
    return all;
}

} // namespace link_ui
