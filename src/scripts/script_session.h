#pragma once

#include "scripts/cls_script.h"

#include <cstdint>
#include <deque>
#include <optional>

namespace scripts {

/// Who follows what is done to the lines: a view, break points.
class Session_Listener {
public:
    virtual ~Session_Listener() = default;
    virtual void line_inserted(int line) = 0; ///< it and those behind it had one number less before
    virtual void line_deleted(int line) = 0;
    virtual void lines_changed() = 0; ///< after either of them, and after everything else
};

/// A script that is being edited: the working copy in editor form, with its own undo. A line that
/// nobody touches keeps the bytes that it came with, whatever they are.
class Script_Session {
public:
    /// @param stored in decoder form
    explicit Script_Session(const cls_script& stored);

    cls_script& working() { return now_.script; }
    const cls_script& working() const { return now_.script; }
    int lines() const { return now_.script.StateCount; }
    /// Whether something differs from what was loaded or written back last.
    bool changed() const { return now_.number != kept_; }
    void listen(Session_Listener* listener) { listener_ = listener; }

    // Each a step of undo, if it changes anything. A line that the script does not have changes
    // nothing, unless it is said what it does.

    /// An empty line before this one, which is marked to take a copy. Nothing in a full script.
    void insert(int line);
    /// The marked line becomes a copy of this one; the mark goes.
    void copy_to_inserted(int line);
    void erase(int line);
    /// On the line behind the last one the script grows, unless it is the empty command.
    /// @param typing one of several changes of the same line, of which only the last is meant
    void choose_command(int line, std::int32_t code, bool typing = false);
    void choose(int line, int column, int entry);
    void put_info(int line, const QString& info);
    /// What is being typed has come to nothing: as before it.
    void take_back_typing();
    void end_typing() { ///< what is typed next is a step of its own
        typed_.reset();
        redo_before_typing_.clear();
    }

    /// The line that waits for a copy.
    std::optional<int> inserted() const { return now_.inserted; }

    bool can_undo() const { return !undo_.empty(); }
    bool can_redo() const { return !redo_.empty(); }
    /// @return the line where something has changed
    int undo() { return move(undo_, redo_); }
    int redo() { return move(redo_, undo_); }

    /// The decoder form into what it came from: its lines only, for its name may be another one by
    /// now.
    void write_back(cls_script& stored) const;
    void kept() { kept_ = now_.number; } ///< what was written back is stored

private:
    /// What a line was before anybody touched it.
    struct Origin {
        cls_Scriptstate decoder, editor;
    };
    struct Content {
        cls_script script;
        std::deque<std::optional<Origin>> origins; ///< of the lines
        std::optional<int> inserted;
        std::int64_t number = 0; ///< each change makes a content of its own
    };
    enum class Kind { other, inserted, deleted };
    struct Step {
        Content content; ///< before it or after it
        Kind kind;
        int line;
    };
    using Steps = std::deque<Step>;

    bool has(int line) const { return line >= 0 && line < lines(); }
    void begin(Kind kind, int line, bool typing = false);
    void tell(Kind kind, int line);
    int move(Steps& from, Steps& to);
    std::optional<Origin>& origin(int line) { return now_.origins[static_cast<std::size_t>(line)]; }

    Content now_;
    Steps undo_, redo_;
    Steps redo_before_typing_; ///< which that would bring back if nothing were typed
    std::optional<int> typed_; ///< line where typing may go on
    std::int64_t last_number_ = 0, kept_ = 0;
    Session_Listener* listener_ = nullptr;
};

} // namespace scripts
