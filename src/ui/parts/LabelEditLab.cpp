#include "ui/parts/LabelEditLab.h"

#include <QEvent>
#include <algorithm>

namespace ui_parts {

// What is half destroyed still has its events, and is no label any more.
QLabel* LabelEditLab::label() const { return qobject_cast<QLabel*>(label_.data()); }

void LabelEditLab::Init(const std::vector<QLabel*>& labels, QObject* owner) {
    setParent(owner);
    labels_.assign(labels.begin(), labels.end());
    if (!labels.empty()) make_box(*labels.front()->parentWidget());
}

void LabelEditLab::start(int i) {
    end();
    if (i < 0 || i >= static_cast<int>(labels_.size())) return;
    label_ = labels_[static_cast<std::size_t>(i)];
    if (label() == nullptr || box() == nullptr) return;
    index_ = i;
    label_->installEventFilter(this);
    connect(label_, &QObject::destroyed, this, &Label_Edit::drop);
    box()->setAlignment(label()->alignment());
    place();
    open();
}

// Large enough for its text cursor where the label is not.
void LabelEditLab::place() {
    QRect over = label()->geometry();
    const int missing = std::max(box()->minimumSizeHint().height() - over.height(), 0);
    over.adjust(0, -missing / 2, 0, missing - missing / 2);
    box()->setGeometry(over);
}

bool LabelEditLab::eventFilter(QObject* watched, QEvent* event) {
    const bool moves = event->type() == QEvent::Move || event->type() == QEvent::Resize;
    if (moves && editing() && watched == label()) place();
    return false;
}

QString LabelEditLab::shown_text() const {
    return label() == nullptr ? QString() : label()->text();
}

std::function<void()> LabelEditLab::news(const QString& text) {
    if (label() == nullptr) return {};
    return [this, index = index_, text] { Q_EMIT TextChanged(index, text); };
}

void LabelEditLab::closed() {
    if (label_ == nullptr) return;
    label_->removeEventFilter(this);
    disconnect(label_, &QObject::destroyed, this, nullptr); // others may have connected more
    label_ = nullptr;
}

} // namespace ui_parts
