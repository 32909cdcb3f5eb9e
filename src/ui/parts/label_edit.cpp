#include "ui/parts/label_edit.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <utility>

namespace ui_parts {
namespace {

bool is_enter(const QKeyEvent& key) {
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

/// Keeps all keys to itself: the list below would move its current row.
class Laid_Over_Box final : public QLineEdit {
public:
    Laid_Over_Box(QWidget* parent, std::function<void()> enter, std::function<void()> escape,
                  std::function<void()> left)
        : QLineEdit(parent), enter_(std::move(enter)), escape_(std::move(escape)),
          left_(std::move(left)) {}

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::ShortcutOverride) {
            const auto* key = static_cast<QKeyEvent*>(event);
            if (is_enter(*key) || key->key() == Qt::Key_Escape) event->accept();
        }
        return QLineEdit::event(event);
    }
    // What is told last may destroy the box.
    void keyPressEvent(QKeyEvent* event) override {
        event->accept();
        if (is_enter(*event)) {
            enter_();
        } else if (event->key() == Qt::Key_Escape) {
            escape_();
        } else {
            QLineEdit::keyPressEvent(event);
            event->accept();
        }
    }
    void focusOutEvent(QFocusEvent* event) override {
        QLineEdit::focusOutEvent(event);
        if (event->reason() != Qt::PopupFocusReason) left_(); // its own menu is for its text
    }

private:
    std::function<void()> enter_;
    std::function<void()> escape_;
    std::function<void()> left_;
};

} // namespace

// Not at once: it may be in the middle of the key that has ended the edit.
Label_Edit::~Label_Edit() {
    editing_ = false;
    if (box_ == nullptr) return;
    box_->hide();
    box_->deleteLater();
}

void Label_Edit::make_box(QWidget& container) {
    static int made = 0;
    drop();
    if (box_ != nullptr) box_->deleteLater();
    const QPointer<Label_Edit> self(this);
    const auto call = [self](auto what) {
        return [self, what] {
            if (self != nullptr && self->editing_) what(*self);
        };
    };
    box_ = new Laid_Over_Box(&container, call([](Label_Edit& edit) { edit.end(); }),
                             call([](Label_Edit& edit) { edit.cancel(); }),
                             call([](Label_Edit& edit) { edit.end(); }));
    box_->hide();
    box_->setObjectName(QStringLiteral("txtLabelEdit_%1").arg(++made));
    box_->setFrame(false);
    box_->setAutoFillBackground(true);
    connect(box_, &QLineEdit::inputRejected, this, &Label_Edit::full);
}

void Label_Edit::longest_text(int characters) {
    if (box_ != nullptr) box_->setMaxLength(characters);
}

void Label_Edit::open() {
    editing_ = true;
    QWidget::setTabOrder(edited(), box_); // Tab goes on behind what is edited
    box_->setFont(edited()->font());
    box_->setPalette(edited()->palette());
    box_->setText(shown_text());
    opened_with_ = box_->text(); // cut where it was too long: that is nobody's edit
    box_->selectAll();
    box_->raise();
    box_->show();
    box_->setFocus();
}

// The box loses the focus by being hidden, which then ends nothing any more.
void Label_Edit::close() {
    editing_ = false;
    if (box_ != nullptr) {
        const bool focused = box_->window()->focusWidget() == box_;
        if (focused && edited() != nullptr) edited()->setFocus();
        box_->hide();
    }
    closed();
}

void Label_Edit::drop() {
    if (editing_) close();
}

void Label_Edit::cancel() {
    close();
    Q_EMIT EditEnd();
}

// A text that changed meanwhile below a box that nobody has touched is not put back.
void Label_Edit::end() {
    if (!editing_) return;
    const QString text = box_->text();
    std::function<void()> tell;
    if (text != opened_with_ && text != shown_text()) tell = news(text);
    const QPointer<Label_Edit> self(this);
    close();
    if (tell) tell();
    if (self != nullptr) Q_EMIT EditEnd();
}

} // namespace ui_parts
