#pragma once

#include "app/job_state.h"

#include <QKeySequence>
#include <QMainWindow>
#include <functional>
#include <vector>

class QAction;
class QMenu;

namespace ui_main {

/// Decoder family that has a command.
enum class Family { any, qr, qd };

/// One command that somebody brings for an entry of the menus.
struct Command {
    /// Whether it can be chosen now, and what its caption says beyond its own words.
    struct Now {
        bool possible = true;
        QString more;
    };

    const char* name; ///< of the entry
    std::function<void()> run;
    Family family = Family::any;
    /// Asked whenever its menu opens. While the menu is closed its keys work, and it says itself
    /// what there is to say.
    std::function<Now()> now = {};
    QKeySequence keys = {};
    bool during_job = false; ///< can be chosen while a job runs
};

/// The described menus. They are there from the start; what each entry does, somebody brings.
class Menus final : public QObject {
    Q_OBJECT
public:
    Menus(QMainWindow& window, const app::Job_State& job);

    /// An entry without a command is shown and cannot be chosen. Each name is in the menus, and no
    /// two commands come for one.
    void bring(std::vector<Command> commands);
    QMenu& menu(const char* name) const;
    void choose_family(Family family);

Q_SIGNALS:
    void opening(); ///< a menu; what is not yet stored is to be, before it tells what can be done

private:
    void build();
    void enable();
    void tell_what_is_possible(const QMenu& menu);
    QAction& entry(const char* name) const;

    QMainWindow& window_;
    const app::Job_State& job_;
    std::vector<QAction*> actions_; ///< of all entries, in their order
    std::vector<Command> commands_;
    Family family_ = Family::qr;
};

} // namespace ui_main
