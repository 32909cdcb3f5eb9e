#include "ui/parts/name_field.h"

#include "store/set_name.h"

#include <algorithm>

namespace ui_parts {
namespace {

// Lists and tables hand over the end of a line behind its text.
QString without_final_line_end(QString text) {
    while (text.endsWith(u'\n') || text.endsWith(u'\r')) text.chop(1);
    return text;
}

} // namespace

Name_Field::Name_Field(QWidget* parent, int width) : Guarded_Field(parent), width_(width) {
    connect(this, &QLineEdit::textChanged, this, &Name_Field::fit);
}

QString Name_Field::admitted(const QString& given, int from, int to) {
    const int room = width_ - (static_cast<int>(text().size()) - (to - from));
    return store::fitted_name(without_final_line_end(given), std::max(room, 0));
}

void Name_Field::answered(const QString& given, const QString& taken) {
    if (taken.size() >= without_final_line_end(given).size()) return;
    if (taken.isEmpty()) {
        Q_EMIT full();
        return;
    }
    cut_ = true;
    Q_EMIT cut();
}

// For a text that is set as a whole, by the program or a screen reader.
void Name_Field::fit() {
    cut_ = false;
    const QString whole = text();
    const QString name = store::fitted_name(whole, width_);
    if (name == whole) return;
    setText(name);
    answered(whole, name);
}

} // namespace ui_parts
