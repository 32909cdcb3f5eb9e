#pragma once

#include "platform/desktop/desktop.h"

#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <utility>

namespace support {

/// A desktop whose dialogs answer from a script: every expected dialog must come, in its order,
/// with its text; a dialog that nobody expects is a failure and counts as cancelled.
class Scripted_Desktop : public desktop::Desktop {
public:
    ~Scripted_Desktop() override {
        for (const Expected& missing : expected_) ADD_FAILURE() << "never came: " << missing.what;
    }

    void expect_question(const QString& title, const QString& text, Answer answer) {
        const char* const words[] = {"yes", "no", ""};
        expected_.push_back({box("question", title, text),
                             QString::fromLatin1(words[static_cast<int>(answer)]),
                             {}});
    }
    void expect_information(const QString& title, const QString& text) {
        expected_.push_back({box("information", title, text), {}, {}});
    }
    /// The dialogs for files; an empty path is Cancel. What the dialog proposed is seen in
    /// `last_choice`.
    void expect_open(const QString& path) { expected_.push_back({"open", path, {}}); }
    void expect_save(const QString& path) { expected_.push_back({"save", path, {}}); }
    void expect_folder(const QString& path) { expected_.push_back({"folder", path, {}}); }
    /// Runs while the dialog expected last is open.
    void meanwhile(std::function<void()> act) { expected_.back().meanwhile = std::move(act); }

    desktop::File_Choice last_choice;
    desktop::Clipboard clipboard;
    bool clipboard_refuses = false;
    QString documents = QStringLiteral("/home/anna/Dokumente");
    QString local_data = QStringLiteral("/home/anna/.local/share");
    QStringList common_data{QStringLiteral("/opt/share"), QStringLiteral("/usr/share")};
    std::vector<desktop::Monitor> screens{{{0, 0, 1920, 1080}, {0, 0, 1920, 1080}}};

    QString documents_folder() override { return documents; }
    QString local_data_folder() override { return local_data; }
    QStringList common_data_folders() override { return common_data; }
    std::vector<desktop::Monitor> monitors() override { return screens; }
    desktop::Clipboard Get_Clipboard_Text() override { return clipboard; }
    bool Set_Clipboard_Text(const desktop::Clipboard& content) override {
        if (clipboard_refuses) return false;
        clipboard = content;
        return true;
    }
    std::optional<QString> ask_open_file(const desktop::File_Choice& choice) override {
        last_choice = choice;
        return file(answer("open"));
    }
    std::optional<QString> ask_save_file(const desktop::File_Choice& choice) override {
        last_choice = choice;
        return file(answer("save"));
    }
    std::optional<QString> ask_folder(const QString& /*initial*/) override {
        return file(answer("folder"));
    }
    Answer ask_yes_no_cancel(const QString& title, const QString& text) override {
        const QString said = answer(box("question", title, text));
        return said.isEmpty() ? Answer::cancel : said == u"yes" ? Answer::yes : Answer::no;
    }
    Answer ask_whether_to_keep(const QString& title, const QString& text) override {
        return ask_yes_no_cancel(title, text);
    }
    bool ask_yes_no(const QString& title, const QString& text) override {
        return answer(box("question", title, text)) == u"yes";
    }
    void inform(const QString& title, const QString& text) override {
        answer(box("information", title, text));
    }

private:
    struct Expected {
        std::string what;
        QString answer;
        std::function<void()> meanwhile;
    };

    static std::string box(const char* kind, const QString& title, const QString& text) {
        return kind + (QStringLiteral(" ") + title + QStringLiteral(": ") + text).toStdString();
    }

    static std::optional<QString> file(const QString& path) {
        if (path.isEmpty()) return {};
        return path;
    }

    QString answer(const std::string& came) {
        if (expected_.empty() || expected_.front().what != came) {
            ADD_FAILURE() << "came unexpectedly: " << came << "\nexpected: "
                          << (expected_.empty() ? "nothing" : expected_.front().what);
            return {};
        }
        const Expected now = expected_.front();
        expected_.pop_front();
        if (now.meanwhile) now.meanwhile();
        return now.answer;
    }

    std::deque<Expected> expected_;
};

} // namespace support
