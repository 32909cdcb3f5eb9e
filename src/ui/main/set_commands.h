#pragma once

#include "ui/main/surroundings.h"

#include <QObject>

namespace ui_main {

class frm_get_2_string;

/// Adding, renaming and deleting CV sets.
class Set_Commands final : public QObject {
    Q_OBJECT
public:
    explicit Set_Commands(const Surroundings& at);

    void Delete_Set(std::int32_t SetID);

private:
    void add_set();
    void rename_set();
    void delete_set();
    void delete_set_at_once();
    void delete_shown_set(std::int32_t SetID, const QString& shown);
    QString with_cut(const QString& sentence, const frm_get_2_string& dialog) const;

    Surroundings at_;
};

} // namespace ui_main
