#pragma once

#include "link/ui/link_center.h"
#include "ui/main/surroundings.h"

#include <QObject>

namespace ui_main {

/// Loading, reading and writing decoders, on the programming track and over SUSI.
class Link_Commands final : public QObject {
    Q_OBJECT
public:
    Link_Commands(const Surroundings& at, link_ui::Link_Center& center);

private:
    void load_set(bool susi);
    void query(bool susi);
    void read_all(bool susi);
    void write_all(bool susi);

    link_ui::Job job_on_set(link_jobs::Job_Mode mode, bool susi);
    std::optional<std::vector<store::CVRec>> cvs_of(std::int32_t SetID);
    /// Whether a set is chosen that can be written into a decoder as a whole; says why not.
    bool expect_set();
    QString set_loaded(const QString& set, bool susi, const link_jobs::Outcome& outcome);
    QString all_written(const QString& set, const link_jobs::Outcome& outcome);
    QString all_read(const link_jobs::Outcome& outcome);
    bool store_read(const link_jobs::Outcome& outcome, const QString& name);

    Surroundings at_;
    link_ui::Link_Center& center_;
};

} // namespace ui_main
