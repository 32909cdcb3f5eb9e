#pragma once

#include <QIdentityProxyModel>

namespace ui_desktop {

/// The files of a dialog with sizes and dates as the program speaks. Qt's own model writes them in
/// the language of the system, whatever language the program has.
class German_Files final : public QIdentityProxyModel {
    Q_OBJECT
public:
    using QIdentityProxyModel::QIdentityProxyModel;
    QVariant data(const QModelIndex& index, int role) const override;
};

} // namespace ui_desktop
