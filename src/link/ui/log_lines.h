#pragma once

#include "link/types/link_values.h"

#include <QAbstractListModel>
#include <QStringList>

namespace link_ui {

/// The lines of the link's log, the newest 100,000 of this run. Belongs to the window's thread.
class Log_Lines final : public QAbstractListModel, public link_types::Link_Log {
    Q_OBJECT
public:
    static constexpr qsizetype most = 100'000;

    using QAbstractListModel::QAbstractListModel;
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    void line(const QString& text) override { add({text}); }
    void add(const QStringList& lines);
    /// For the clipboard: each line followed by the character 13 alone.
    QString text() const;

private:
    QStringList lines_;
};

} // namespace link_ui
